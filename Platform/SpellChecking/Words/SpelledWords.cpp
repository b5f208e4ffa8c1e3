// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/Words/SpelledWords.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>

#include <algorithm>

#include "Foundation/NSString.h"

namespace pelvor {
namespace {

constexpr char16_t kCurlyApostrophe = 0x2019, kLetterApostrophe = 0x2BC, kSoftHyphen = 0xAD;

bool isCurly(char16_t unit) { return unit == kCurlyApostrophe || unit == kLetterApostrophe; }

bool isHyphen(char16_t unit) { return unit == u'-' || unit == 0x2010 || unit == 0x2011; }

// Below U+0300 no letter is written in two ways.
bool isPlain(char16_t unit) { return unit < 0x300 && unit != kSoftHyphen && unit != kLetterApostrophe; }

bool isBlank(char16_t unit) { return u_isUWhiteSpace(unit) || unit == 0xFFFC; }

bool isLowercaseASCII(char16_t unit) { return unit >= u'a' && unit <= u'z'; }

bool isIdeographOrKana(char32_t character) {
    const auto c = static_cast<UChar32>(character);
    const int script = u_getIntPropertyValue(c, UCHAR_SCRIPT);
    return u_hasBinaryProperty(c, UCHAR_IDEOGRAPHIC) || script == USCRIPT_HIRAGANA ||
           script == USCRIPT_KATAKANA;
}

// "notes.txt", "example.org": small letters, digits and hyphens, and a short ending behind a full stop.
bool isFileOrHost(std::u16string_view word) {
    const std::size_t stop = word.rfind(u'.');
    if (stop == word.npos || stop == 0) return false;
    const std::u16string_view ending = word.substr(stop + 1);
    return ending.size() >= 2 && ending.size() <= 4 && std::ranges::all_of(ending, isLowercaseASCII) &&
           std::ranges::all_of(word, [](char16_t unit) { return isLowercaseASCII(unit) || unit == u'.'; });
}

}  // namespace

std::u16string_view plainWord(std::u16string_view word, std::u16string& room) {
    if (std::ranges::all_of(word, isPlain)) return word;
    room.clear();
    for (char16_t unit : word)
        if (unit != kSoftHyphen) room += isCurly(unit) ? u'\'' : isHyphen(unit) ? u'-' : unit;
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* composer = unorm2_getNFCInstance(&status);
    const auto length = static_cast<int32_t>(room.size());
    if (U_FAILURE(status) || unorm2_isNormalized(composer, room.data(), length, &status)) return room;
    std::u16string composed(room.size() * 3, 0);  // no character becomes more than three units
    const auto size = unorm2_normalize(composer, room.data(), length, composed.data(),
                                       static_cast<int32_t>(composed.size()), &status);
    if (U_FAILURE(status)) return room;
    composed.resize(static_cast<std::size_t>(size));
    return room = std::move(composed);
}

bool hasCurlyApostrophe(std::u16string_view word) { return std::ranges::any_of(word, isCurly); }

bool isUnspelledWord(std::u16string_view word) {
    for (std::size_t i = 0; i < word.size();) {
        UChar32 character;
        U16_NEXT(word.data(), i, word.size(), character);
        if (character == '_' || u_isdigit(character) || isIdeographOrKana(static_cast<char32_t>(character)))
            return true;
    }
    return isFileOrHost(word);
}

LanguageScripts::LanguageScripts(const std::string& language) {
    UScriptCode scripts[8];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t count = uscript_getCode(language.c_str(), scripts, 8, &status);
    if (U_SUCCESS(status)) _scripts.assign(scripts, scripts + std::min<int32_t>(count, 8));
}

bool LanguageScripts::haveLetterOf(std::u16string_view word) const {
    bool isOfThem = _scripts.empty();
    for (std::size_t i = 0; i < word.size() && !isOfThem;) {
        UChar32 character;
        U16_NEXT(word.data(), i, word.size(), character);
        isOfThem = std::ranges::any_of(_scripts, [character](int script) {
            return uscript_hasScript(character, static_cast<UScriptCode>(script));
        });
    }
    return isOfThem;
}

bool isAddress(std::u16string_view stretch) {
    constexpr std::u16string_view kBefore = u"([{<\"'\u201C\u2018\u00AB\u201E";
    stretch.remove_prefix(std::min(stretch.find_first_not_of(kBefore), stretch.size()));
    const auto begins = [&](std::u16string_view start) { return stretch.starts_with(start); };
    const auto has = [&](std::u16string_view part) { return stretch.find(part) != stretch.npos; };
    return has(u"://") || has(u"@") || has(u"\\") || begins(u"www.") || begins(u"mailto:") || begins(u"/") ||
           begins(u"~") || begins(u"./") || begins(u"../");
}

WordWalk::WordWalk(TextBoundaries& boundaries, NSString* text, NSUInteger start)
    : _boundaries(boundaries), _place(start) {
    _boundaries.setString(text);
    if (start > 0 && !_boundaries.isBoundary(start)) _place = _boundaries.following(start);
}

bool WordWalk::next(NSRange& word) {
    while (_place != NSNotFound) {
        const NSUInteger start = _place;
        _place = _boundaries.following(start);
        if (_place == NSNotFound || !_boundaries.isWordBefore(_place)) continue;
        word = {start, _place - start};
        return true;
    }
    return false;
}

NSRange stretchAround(NSString* text, NSRange word) {
    constexpr NSUInteger kReach = 256;
    const NSUInteger length = text->length();
    NSUInteger start = word.location, end = NSMaxRange(word);
    const NSUInteger first = start > kReach ? start - kReach : 0;
    const NSUInteger last = length - end > kReach ? end + kReach : length;
    while (start > first && !isBlank(text->characterAtIndex(start - 1))) --start;
    while (end < last && !isBlank(text->characterAtIndex(end))) ++end;
    return {start, end - start};
}

NSRange joinedWordAround(NSString* text, NSRange word) {
    NSRange stretch = stretchAround(text, word);
    const auto isLetter = [&](NSUInteger place) {
        const char16_t unit = text->characterAtIndex(place);
        return u_isalpha(unit) || u_charType(unit) == U_OTHER_NUMBER;
    };
    const auto belongs = [&](NSUInteger place) {
        const char16_t unit = text->characterAtIndex(place);
        return isHyphen(unit) || isCurly(unit) || unit == u'\'' || unit == kSoftHyphen || isLetter(place) ||
               U16_IS_SURROGATE(unit) || u_charType(unit) == U_NON_SPACING_MARK;
    };
    NSUInteger start = word.location, end = NSMaxRange(word);
    while (start > stretch.location && belongs(start - 1)) --start;
    while (end < NSMaxRange(stretch) && belongs(end)) ++end;
    while (start < word.location && !isLetter(start)) ++start;
    while (end > NSMaxRange(word) && !isLetter(end - 1)) --end;
    return end - start > kLongestWord ? word : NSRange{start, end - start};
}

}  // namespace pelvor
