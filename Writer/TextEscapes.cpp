// SPDX-License-Identifier: Apache-2.0
#include "Writer/TextEscapes.h"

#include <string>

namespace pelvor {
namespace {

constexpr UnitEscape kEscapes[] = {{u'\n', u"\\n"}, {u'\t', u"\\t"}, {u'\\', u"\\\\"}};

}  // namespace

NSString* escapedText(NSString* text) {
    const StringUnits units(text);
    std::u16string escaped;
    for (const unichar unit : units.view()) {
        const std::u16string_view escape = escapeOfUnit(unit, kEscapes);
        escaped += escape.empty() ? std::u16string_view(&unit, 1) : escape;
    }
    return NSString::of(escaped);
}

NSString* textFromEscapes(NSString* escaped) {
    const StringUnits units(escaped);
    std::u16string text;
    for (std::u16string_view rest = units.view(); !rest.empty();) {
        std::u16string_view taken = rest.substr(0, 1);
        char16_t unit = taken[0];
        for (const UnitEscape& each : kEscapes)
            if (rest.starts_with(each.escape)) {
                taken = each.escape;
                unit = each.unit;
            }
        text += unit;
        rest.remove_prefix(taken.size());
    }
    return NSString::of(text);
}

}  // namespace pelvor
