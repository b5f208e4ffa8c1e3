// SPDX-License-Identifier: Apache-2.0
// Words, paragraphs, wrapping and replacing in random texts, beside slow and obvious models.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Foundation/NSCharacterSet.h"
#include "NSMutableString-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "PBRepeatString.h"
#include "PBUtil.h"
#include "PBUtil_Dummy.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

using Text = std::u16string;

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

bool isHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }
bool isSpace(char16_t unit) { return _pbWhitespaceCharacterSet->characterIsMember(unit); }
bool isLetter(char16_t unit) { return _pbLettersCharacterSet->characterIsMember(unit); }
bool isDigit(char16_t unit) { return _pbDecimalDigitCharacterSet->characterIsMember(unit); }

std::size_t loneHalves(const Text& text) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool isPair = isHigh(text[i]) && i + 1 < text.size() && isLow(text[i + 1]);
        count += !isPair && (isHigh(text[i]) || isLow(text[i]));
        i += isPair;
    }
    return count;
}

// MARK: Words

bool isInWord(const Text& text, std::size_t i, bool isQuantity) {
    bool hasNeighbours = i > 0 && i + 1 < text.size();
    char16_t unit = text[i], before = hasNeighbours ? text[i - 1] : u'\0',
             after = hasNeighbours ? text[i + 1] : u'\0';
    if (!isQuantity)
        return isLetter(unit) ||
               (_pbSingleQuotesCharacterSet->characterIsMember(unit) && isLetter(before) && isLetter(after));
    bool isMoney = _pbMoneyCharacterSet->characterIsMember(unit);
    return isDigit(unit) || (unit == u',' && isDigit(before) && isDigit(after)) ||
           (hasNeighbours && !isLetter(before) &&
            ((unit == u'.' && isDigit(after)) || (isMoney && (isDigit(after) || after == u'.'))));
}

NSRange modelWord(const Text& text, std::size_t location, std::size_t length, bool includesPrevious) {
    auto isSeparator = [](char16_t unit) { return isSpace(unit) || unit == 2 || unit == 3; };
    if (text.empty()) return {0, 0};
    std::size_t i = std::min(location, text.size() - 1), end = length ? location + length - 1 : location;
    bool isQuantity = isInWord(text, i, true);
    std::size_t start = i + 1;
    for (; start > 0; --start) {
        bool isBreak = isSeparator(text[start - 1]);
        if (isBreak ? !includesPrevious : !isInWord(text, start - 1, isQuantity)) break;
        if (isBreak) includesPrevious = false;
    }
    while (end < text.size() && !isSeparator(text[end]) && isInWord(text, end, isQuantity)) ++end;
    start = std::min(start, end);
    return {static_cast<NSUInteger>(start), static_cast<NSUInteger>(end - start)};
}

void checkWords(const Text& text, NSString* string, unsigned seed) {
    NSUInteger count = string->length();
    auto pieces = PBRepeatString::initWithString_length(string, count);
    for (NSUInteger i = 0; i <= count; ++i) {
        NSUInteger length = (seed + i * 7) % 5 % (count - i + 1);
        bool includesPrevious = (seed + i) & 1;
        NSRange word = wordRangeForRange_includePreviousWord(string, {i, length}, includesPrevious);
        require(isRangeInside(word, count), "a word outside");
        require(word == modelWord(text, i, length, includesPrevious), "another word");
        require(count == 0 ||
                    word == wordRangeForRange_includePreviousWord(pieces, {i, length}, includesPrevious),
                "another word in pieces");
    }
}

// MARK: Paragraphs

void checkParagraphs(const Text& text, NSString* string) {
    NSUInteger count = string->length(), place = 0;
    while (place < count) {
        NSRange whole = paragraphRangeForRange(string, {place, 0});
        NSRange content = paragraphContentRangeForRange(string, {place, 0});
        require(whole.location == place && whole.length > 0, "paragraphs do not follow each other");
        require(content.location == place && content.length <= whole.length, "content outside its paragraph");
        Text breaks = text.substr(NSMaxRange(content), whole.length - content.length);
        require(breaks == u"\r\n" || breaks.size() <= 1, "more than one break");
        require(!breaks.empty() || NSMaxRange(whole) == count, "no break");
        place = NSMaxRange(whole);
    }
}

// MARK: Wrapping

// Wraps the slow way, by inserting. Knows nothing of pairs.
Text modelWrapping(Text text, std::size_t width) {
    if (text.size() <= width) return text;
    std::size_t counted = 0, word = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n' || text[i] == u'\f') {
            counted = word = 0;
            continue;
        }
        ++counted;
        word = isSpace(text[i]) ? 0 : word + 1;
        if (counted < width) continue;
        std::size_t size = word;
        for (std::size_t k = i; k < text.size() && !isSpace(text[k]); ++k) ++size;
        if (!isSpace(text[i]) && width > size)
            for (; !isSpace(text[i]) && counted > 1; --counted) --i;
        text.insert(i++, 1, u'\n');
        counted = word = 0;
    }
    return text;
}

void checkWrapping(const Text& text, NSString* string, std::size_t width) {
    Text wrapped = stringByHardWrappingToLineLength(string, static_cast<NSUInteger>(width))->toUTF16();
    require(loneHalves(wrapped) == loneHalves(text), "a pair is broken");
    bool hasPairs = std::any_of(text.begin(), text.end(), isLow);
    if (!hasPairs) require(wrapped == modelWrapping(text, width), "wrapped in another way");
    std::size_t place = 0, line = 0;
    for (char16_t unit : wrapped) {
        bool isEnd = unit == u'\n' || unit == u'\f';
        line = isEnd ? 0 : line + 1;
        require(line <= std::max<std::size_t>(width, 2) || text.size() <= width, "a line is too long");
        if (place < text.size() && unit == text[place])
            ++place;
        else
            require(unit == u'\n', "something else than a line feed came in");
    }
    require(place == text.size(), "something went out");
}

// MARK: Replacing

Text replaced(const Text& text, const Text& target, const Text& replacement) {
    Text result;
    std::size_t place = 0;
    if (target.empty()) return text;
    for (std::size_t found; (found = text.find(target, place)) != Text::npos; place = found + target.size())
        result += text.substr(place, found - place) + replacement;
    return result + text.substr(place);
}

template <class Change>
Text changed(const Text& text, Change change) {
    NSMutableString* string = NSMutableString::of(text);
    change(string);
    return string->toUTF16();
}

void checkReplacing(const Text& text, const Text& target, const Text& replacement) {
    Text lineFeeds = replaced(replaced(text, u"\r\n", u"\n"), u"\r", u"\n");
    auto* with = NSString::of(replacement);
    require(
        changed(text, [](auto* string) { replaceAllLineEndingsWithString(string, u"\n"_ns); }) == lineFeeds,
        "other line feeds");
    require(changed(text, [&](auto* string) { replaceAllLineEndingsWithString(string, with); }) ==
                replaced(lineFeeds, u"\n", replacement),
            "other line endings");
    auto* wanted = NSString::of(target);
    require(changed(text,
                    [&](auto* string) { replaceAllOccurrencesOfString_withString(string, wanted, with); }) ==
                replaced(text, target, replacement),
            "other replacements");

    NSCharacterSet* set = NSCharacterSet::characterSetWithCharactersInString(wanted);
    Text rest;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool isPair = isHigh(text[i]) && i + 1 < text.size() && isLow(text[i + 1]);
        char32_t character =
            isPair ? 0x10000u + ((text[i] & 0x3FFu) << 10) + (text[i + 1] & 0x3FFu) : text[i];
        if (!set->longCharacterIsMember(character)) rest += text.substr(i, isPair ? 2 : 1);
        i += isPair;
    }
    require(changed(text, [&](auto* string) { removeCharactersInSet(string, set); }) == rest,
            "other removals");
}

void checkTruncation(const Text& text, NSString* string, std::size_t size) {
    Text cut = stringByPrettyTruncationToLength(string, static_cast<NSUInteger>(size))->toUTF16();
    require(cut.size() <= size, "too long");
    require(text.find(cut) != Text::npos, "not a part of the text");
    require(loneHalves(cut) <= loneHalves(text), "half a pair is left");
}

// Half of the values are ASCII, the other half what the rules are about.
char16_t unitOf(std::uint8_t byte) {
    static const char16_t kOthers[] =
        u"\r\n\n\f   \u00A0\u2028\u2029\u0085''\u2019\u2018..,,$\u20AC\u00A3"
        u"019\u0663\u00E9\u0301\u4E00\u0002\u0003\xD83D\xDE00\xD83D\xDE01\xDC00";
    constexpr std::size_t kCount = std::size(kOthers) - 1;
    return byte < 0x80 ? byte : kOthers[(byte & 0x7F) % kCount];
}

void run(const std::uint8_t* data, std::size_t size) {
    std::size_t width = data[0] < 200 ? data[0] % 40 : data[0];
    Text text, target, replacement;
    for (std::size_t i = 2; i < size; ++i) {
        text += unitOf(data[i]);
        // A whole pair now and then, which single values rarely make.
        if (data[i] == 0xFF) text += u"\U0001F600";
    }
    target = text.substr(std::min<std::size_t>(data[1] & 31, text.size()), data[1] >> 5 & 3);
    replacement = text.substr(0, data[1] >> 6);
    NSString* string = NSString::of(text);
    checkWords(text, string, data[1]);
    checkParagraphs(text, string);
    checkWrapping(text, string, width);
    checkReplacing(text, target, replacement);
    checkTruncation(text, string, width);
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelvor::AutoreleasePool pool;
    if (!pelvor::_pbLettersCharacterSet) pelvor::PBUtil_Dummy::didLoad();
    if (size >= 2) pelvor::run(data, std::min<std::size_t>(size, 500));
    return 0;
}
