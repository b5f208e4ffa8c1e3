// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Typography/WRTypography.h"

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "PBUtil.h"
#include "Runtime/Message.h"
#include "Writer/PlugIns/Typography/TypographyPlugIn.h"

namespace pelvor {
namespace {

struct TypographyCounts {
    unsigned curlyQuotes = 0;
    unsigned straightQuotes = 0;
    unsigned runsOfSpaces = 0;
    unsigned hyphenDashes = 0;
    unsigned threeStops = 0;
    unsigned noBreakSpaces = 0;
};

TypographyCounts countTypography(std::u16string_view text) {
    constexpr std::u16string_view kCurlyQuotes = u"“”„‟«»‹›‘‚‛";
    TypographyCounts counts;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const char16_t before = i > 0 ? text[i - 1] : u'\0';
        const char16_t after = i + 1 < text.size() ? text[i + 1] : u'\0';
        // The closing single quotation mark is left out: it is the apostrophe as well.
        counts.curlyQuotes += kCurlyQuotes.find(unit) != kCurlyQuotes.npos;
        counts.straightQuotes += unit == u'"';
        counts.runsOfSpaces += unit == u' ' && after == u' ' && before != u' ';
        counts.hyphenDashes += unit == u'-' && before == u' ' && after == u' ';
        counts.threeStops += unit == u'.' && before != u'.' && text.substr(i).starts_with(u"...");
        counts.noBreakSpaces += unit == u'\u00A0' || unit == u'\u202F';
    }
    return counts;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRTypography, typographyPlugIn) {
    methods.instance<"examineDocument:", &WRTypography::examineDocument>();
}

NSDictionary* WRTypography::examineDocument(id document) {
    auto* text = send<NSString*>(document, "text"_sel);
    StringUnits units(text ? text : u""_ns);
    const TypographyCounts counts = countTypography(units);
    auto* found = NSMutableDictionary::dictionary();
    auto add = [&](NSString* key, unsigned count) {
        found->setObject_forKey(NSNumber::numberWithUnsignedInt(count), _PBDoLocalize(key, this));
    };
    add(u"_Typographic quotation marks"_ns, counts.curlyQuotes);
    add(u"_Straight quotation marks"_ns, counts.straightQuotes);
    add(u"_Runs of several spaces"_ns, counts.runsOfSpaces);
    add(u"_Hyphens used as dashes"_ns, counts.hyphenDashes);
    add(u"_Full stops used as an ellipsis"_ns, counts.threeStops);
    add(u"_No-break spaces"_ns, counts.noBreakSpaces);
    return found;
}

}  // namespace pelvor
