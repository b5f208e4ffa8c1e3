// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/LineEndings/WRLineEndings.h"

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "PBUtil.h"
#include "Runtime/Message.h"
#include "Writer/PlugIns/LineEndings/LineEndingsPlugIn.h"

namespace pelvor {
namespace {

struct LineEndingCounts {
    unsigned lineFeeds = 0;
    unsigned pairs = 0;
    unsigned carriageReturns = 0;
    unsigned separators = 0;
    bool isLastLineEnded = false;
};

LineEndingCounts countLineEndings(std::u16string_view text) {
    LineEndingCounts counts;
    constexpr std::u16string_view kEndings = u"\n\r\u2028\u2029";
    for (std::size_t at = text.find_first_of(kEndings); at != text.npos;) {
        std::size_t next = at + 1;
        if (text.substr(at).starts_with(u"\r\n"))
            ++counts.pairs, ++next;
        else if (text[at] == u'\n')
            ++counts.lineFeeds;
        else if (text[at] == u'\r')
            ++counts.carriageReturns;
        else
            ++counts.separators;
        counts.isLastLineEnded = next == text.size();
        at = text.find_first_of(kEndings, next);
    }
    return counts;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRLineEndings, lineEndingsPlugIn) {
    methods.instance<"examineDocument:", &WRLineEndings::examineDocument>();
}

NSDictionary* WRLineEndings::examineDocument(id document) {
    auto* text = send<NSString*>(document, "text"_sel);
    StringUnits units(text ? text : u""_ns);
    const LineEndingCounts counts = countLineEndings(units);
    auto* found = NSMutableDictionary::dictionary();
    auto add = [&](NSString* key, unsigned count) {
        if (count) found->setObject_forKey(NSNumber::numberWithUnsignedInt(count), _PBDoLocalize(key, this));
    };
    add(u"_Line feed (Unix)"_ns, counts.lineFeeds);
    add(u"_Carriage return and line feed (Windows)"_ns, counts.pairs);
    add(u"_Carriage return"_ns, counts.carriageReturns);
    add(u"_Line or paragraph separator"_ns, counts.separators);
    NSString* state = counts.isLastLineEnded ? u"_ended"_ns : u"_not ended"_ns;
    found->setObject_forKey(_PBDoLocalize(state, this), _PBDoLocalize(u"_Last line"_ns, this));
    return found;
}

}  // namespace pelvor
