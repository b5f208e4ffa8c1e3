// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/PageLines.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "NSString-PelvorAdditions.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/TextAttributes.h"
#include "Writer/Pages/StyleSheet.h"
#include "Writer/PlugInProtocol.h"

namespace pelvor {
namespace {

constexpr unichar kSigns[] = {WRPageNumberCharacter, WRPageCountCharacter, WRTitleCharacter};
constexpr NSString* kWritten[] = {u"{page}"_ns, u"{pages}"_ns, u"{title}"_ns};

NSString* replaced(NSString* text, NSString* old, NSString* now) {
    return text->stringByReplacingOccurrencesOfString_withString(old, now);
}

bool contains(NSString* text, unichar sign) {
    return text->rangeOfString(NSString::of({&sign, 1})).location != NSNotFound;
}

Retained<NSDictionary> centred(NSDictionary* attributes) {
    auto changed =
        NSMutableDictionary::initWithDictionary(attributes ? attributes : NSDictionary::dictionary());
    auto* own = cast<NSParagraphStyle>(changed->objectForKey(NSParagraphStyleAttributeName));
    auto style = (own ? own : NSParagraphStyle::defaultParagraphStyle())->mutableCopy();
    style->setAlignment(NSCenterTextAlignment);
    changed->setObject_forKey(style.get(), NSParagraphStyleAttributeName);
    return changed;
}

}  // namespace

NSDictionary* attributesOfLine(const StyleSheet& sheet, NSString* style) {
    const NamedStyle* found = sheet.paragraphStyle(style);
    if (!found) found = sheet.paragraphStyle(kPlainStyleName);
    return found ? attributesOfStyle(*found) : nullptr;
}

Retained<NSAttributedString> lineWithText(NSString* text, NSDictionary* attributes, NSAttributedString* old) {
    for (std::size_t i = 0; i < std::size(kSigns); ++i)
        text = replaced(text, kWritten[i], NSString::of({&kSigns[i], 1}));
    if (!old || !old->length()) return NSAttributedString::initWithString_attributes(text, attributes);
    const std::u16string before = old->string()->toUTF16(), now = text->toUTF16();
    const auto isSame = [](char16_t one, char16_t other) {
        return one == other || (one == u'\n' && other == u' ');
    };
    const auto front = std::mismatch(before.begin(), before.end(), now.begin(), now.end(), isSame);
    const auto back = std::mismatch(before.rbegin(), std::make_reverse_iterator(front.first), now.rbegin(),
                                    std::make_reverse_iterator(front.second), isSame);
    auto changed = old->mutableCopy();
    changed->replaceCharactersInRange_withString(
        {static_cast<NSUInteger>(front.first - before.begin()),
         static_cast<NSUInteger>(back.first.base() - front.first)},
        NSString::of(std::u16string(front.second, back.second.base())));
    return changed;
}

NSString* textOfLine(NSAttributedString* line) {
    if (!line) return u""_ns;
    NSString* text = line->string();
    if (text->hasSuffix(u"\n"_ns)) text = text->substringToIndex(text->length() - 1);
    text = replaced(text, u"\n"_ns, u" "_ns);
    for (std::size_t i = 0; i < std::size(kSigns); ++i)
        text = replaced(text, NSString::of({&kSigns[i], 1}), kWritten[i]);
    return text;
}

bool hasPageNumber(NSAttributedString* line) {
    return line && contains(line->string(), WRPageNumberCharacter);
}

Retained<NSAttributedString> footerWithPageNumber(NSAttributedString* footer, NSDictionary* attributes) {
    auto whole = footer ? footer->mutableCopy() : NSMutableAttributedString::init();
    if (whole->length() && !whole->string()->hasSuffix(u"\n"_ns))
        whole->replaceCharactersInRange_withString({whole->length(), 0}, u"\n"_ns);
    whole->appendAttributedString(lineWithText(u"{page}"_ns, centred(attributes).get()).get());
    return whole;
}

Retained<NSAttributedString> footerWithoutPageNumber(NSAttributedString* footer) {
    auto rest = footer ? footer->mutableCopy() : NSMutableAttributedString::init();
    for (NSUInteger place = 0; place < rest->length();) {
        const NSRange paragraph = paragraphRangeForRange(rest->string(), {place, 0});
        if (contains(rest->string()->substringWithRange(paragraph), WRPageNumberCharacter))
            rest->deleteCharactersInRange(paragraph);
        else
            place = NSMaxRange(paragraph);
    }
    return rest;
}

}  // namespace pelvor
