// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRReport.h"

#include <algorithm>

#include "Writer/LocalizedText.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

constexpr bool isUnprintable(char16_t unit) {
    const bool isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
    const bool isSeparator = unit == u'\u2028' || unit == u'\u2029';
    const bool isDirection =
        (unit >= u'\u202A' && unit <= u'\u202E') || (unit >= u'\u2066' && unit <= u'\u2069');
    return isControl || isSeparator || isDirection;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRReport, writerLibrary) {
    methods.creator<"init", &WRReport::init>();
    methods.classLevel<"printableText:", &WRReport::printableText>();
    methods.instance<"addHeading:", &WRReport::addHeading>();
    methods.instance<"addLine:", &WRReport::addLine>();
    methods.instance<"addLabel:value:", &WRReport::addLabel_value>();
    methods.instance<"takeText", &WRReport::takeText>();
}

Retained<WRReport> WRReport::init(Class* cls) { return make<WRReport>(cls); }

void WRReport::addHeading(NSString* text) {
    if (std::exchange(_isBegun, true)) _text.push_back(u'\n');
    _text += printableText(text)->toUTF16();
    _text.push_back(u'\n');
}

void WRReport::addLine(NSString* text) {
    _text += u"    ";
    _text += printableText(text)->toUTF16();
    _text.push_back(u'\n');
}

void WRReport::addLabel_value(NSString* label, id value) {
    addLine(localizedFormat(u"_%@: %@"_ns, label, value));
}

NSString* WRReport::takeText() { return NSString::of(std::exchange(_text, {})); }

NSString* WRReport::printableText(NSString* text) {
    std::u16string units = text->toUTF16();
    std::replace_if(units.begin(), units.end(), isUnprintable, u'\uFFFD');
    return NSString::of(units);
}

}  // namespace pelvor
