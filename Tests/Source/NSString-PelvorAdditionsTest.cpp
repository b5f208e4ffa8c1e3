// SPDX-License-Identifier: Apache-2.0
#include "NSString-PelvorAdditions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <vector>

#include "BaseLibrary.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSData.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSSet.h"
#include "PBPostLoader.h"
#include "PBRepeatString.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"

namespace pelvor::testing {
namespace {

using Text = std::u16string_view;

NSRange wordAt(Text text, NSRange range, bool includesPrevious = false) {
    return wordRangeForRange_includePreviousWord(NSString::of(text), range, includesPrevious);
}

TEST(WordRange, FollowsTheRuleOfTheUnitAtTheCaret) {
    AutoreleasePool pool;
    PBPostLoader::processClasses();
    const struct {
        Text text;
        NSUInteger caret;
        NSRange word;
    } rows[] = {{u"I don't know", 4, {2, 5}},
                {u"I don\u2019t know", 5, {2, 5}},
                {u"the dogs' tails", 8, {8, 0}},
                {u"'tis", 0, {0, 0}},
                {u"foo bar", 4, {4, 3}},
                {u"foo bar", 7, {4, 3}},
                {u"foo bar", 3, {3, 0}},
                {u"costs $1,250.99 today", 9, {6, 9}},
                {u"costs $1,250.99 today", 6, {6, 9}},
                {u"one, two", 3, {3, 0}},
                {u"a - b", 2, {2, 0}},
                {u"end. Next", 3, {3, 0}},
                {u"ab12cd", 2, {2, 2}},
                {u"ab12cd", 1, {0, 2}},
                {u"of \u20AC12,5 each", 3, {3, 5}},
                {u" $.99 ", 1, {1, 4}},
                {u"$.99", 1, {1, 3}},
                {u"x.5", 1, {1, 0}},
                {u"1,", 1, {1, 0}},
                {u"a\u0002b", 2, {2, 1}},
                {u"e\u0301t\u00E9!", 1, {0, 4}},
                {u"", 0, {0, 0}},
                {u"foo.", 4, {4, 0}}};
    for (auto& [text, caret, word] : rows)
        EXPECT_EQ(wordAt(text, {caret, 0}), word) << NSString::of(text) << " at " << caret;
}

TEST(WordRange, CrossesOneSeparatorAndSpansTheRange) {
    AutoreleasePool pool;
    EXPECT_EQ(wordAt(u"foo bar", {4, 0}, true), NSMakeRange(0, 7));
    EXPECT_EQ(wordAt(u"foo bar", {7, 0}, true), NSMakeRange(0, 7));
    EXPECT_EQ(wordAt(u"foo  bar", {5, 0}, true), NSMakeRange(4, 4)) << "one separator of two";
    EXPECT_EQ(wordAt(u"foo. bar", {5, 0}, true), NSMakeRange(4, 4));
    EXPECT_EQ(wordAt(u" bar", {1, 0}, true), NSMakeRange(0, 4));
    EXPECT_EQ(wordAt(u"one two three", {5, 4}), NSMakeRange(4, 9)) << "from inside two to inside three";
    EXPECT_EQ(wordAt(u"one two", {0, 4}), NSMakeRange(0, 3));
    EXPECT_EQ(wordAt(u"one 12", {1, 4}), NSMakeRange(0, 4)) << "the first unit's rule holds to the end";
    EXPECT_THROW(wordAt(u"one", {4, 0}), NSException);
    EXPECT_THROW(wordAt(u"one", {2, 0xFFFFFFFF}), NSException);
}

TEST(WordRange, TrimsWordsAndWhiteSpace) {
    AutoreleasePool pool;
    NSString* text = u" \u2028(two words\u0301!) \U0001D7D8."_ns;
    NSUInteger count = text->length();
    EXPECT_EQ(rangeOfTrimmedWordForRange(text, {0, count}), NSMakeRange(3, 15)) << "with the digit pair";
    EXPECT_EQ(rangeOfTrimmedWordForRange(text, {0, 6}), NSMakeRange(3, 3));
    EXPECT_EQ(rangeOfTrimmedWordForRange(text, {0, 3}), NSMakeRange(NSNotFound, 0));
    EXPECT_EQ(nonwhitespaceRangeForRange(text, {0, 7}), NSMakeRange(2, 4));
    EXPECT_EQ(nonwhitespaceRangeForRange(text, {1, 1}), NSMakeRange(1, 0));
    EXPECT_THROW(nonwhitespaceRangeForRange(text, {count, 1}), NSException);
}

TEST(CharacterLocation, IsTheLastUnitOfAMatchBackwards) {
    AutoreleasePool pool;
    NSString* text = u"a\U0001F600b\U0001F600"_ns;
    NSCharacterSet* faces = NSCharacterSet::characterSetWithCharactersInString(u"\U0001F600"_ns);
    auto find = [&](NSStringCompareOptions options, NSUInteger location) {
        return locationOfCharacterFromSet_options_location(text, faces, options, location);
    };
    EXPECT_EQ(find(0, 0), 1u);
    EXPECT_EQ(find(0, 3), 4u);
    EXPECT_EQ(find(0, 6), NSNotFound);
    EXPECT_EQ(find(0, 0xFFFFFFFF), NSNotFound);
    EXPECT_EQ(find(NSBackwardsSearch, 3), 2u);
    EXPECT_EQ(find(NSBackwardsSearch, 0xFFFFFFFF), 5u);
    EXPECT_EQ(find(NSBackwardsSearch, 1), NSNotFound) << "half of a pair is not the pair";

    auto pairs = PBRepeatString::initWithString_length(u"\U0001F600"_ns, 20000);
    NSCharacterSet* halves = NSCharacterSet::characterSetWithRange({0xD800, 0x800});
    for (NSStringCompareOptions options : {NSLiteralSearch, NSBackwardsSearch})
        EXPECT_EQ(pairs->rangeOfCharacterFromSet_options_range(halves, options, {0, 20000}).location,
                  NSNotFound)
            << "no pair is cut by searching in pieces";
}

TEST(ParagraphRange, EndsWithItsBreak) {
    AutoreleasePool pool;
    const struct {
        Text text;
        NSRange range, paragraph, content;
    } rows[] = {{u"ab\r\ncd", {0, 0}, {0, 4}, {0, 2}},      {u"ab\r\ncd", {4, 0}, {4, 2}, {4, 2}},
                {u"ab\r\ncd", {3, 0}, {3, 1}, {3, 0}},      {u"ab\r\ncd", {0, 3}, {0, 4}, {0, 2}},
                {u"ab\r\ncd", {1, 4}, {0, 6}, {0, 6}},      {u"a\u2029b\u0085c\fd", {2, 3}, {2, 4}, {2, 3}},
                {u"a\vb\u2028c\n", {0, 1}, {0, 6}, {0, 5}}, {u"a\n\nb", {2, 0}, {2, 1}, {2, 0}},
                {u"a\n", {2, 0}, {2, 0}, {2, 0}},           {u"", {0, 0}, {0, 0}, {0, 0}}};
    for (auto& [text, range, paragraph, content] : rows) {
        EXPECT_EQ(paragraphRangeForRange(NSString::of(text), range), paragraph) << NSString::of(text);
        EXPECT_EQ(paragraphContentRangeForRange(NSString::of(text), range), content) << NSString::of(text);
    }
    NSUInteger contentsEnd = 0;
    getParagraphStart_end_contentsEnd_forRange(u"ab"_ns, nullptr, nullptr, &contentsEnd, {1, 0});
    EXPECT_EQ(contentsEnd, NSNotFound);
    for (NSRange range : {NSRange{3, 0}, NSRange{1, 2}, NSRange{1, 0xFFFFFFFF}}) {
        try {
            paragraphRangeForRange(u"ab"_ns, range);
            ADD_FAILURE();
        } catch (const NSException& exception) {
            EXPECT_EQ(exception.name(), NSRangeException);
            EXPECT_TRUE(exception.reason().ends_with("} must be in range: {0, 2}")) << exception.reason();
        }
    }
}

TEST(ParagraphRange, IsFoundInALongTextThatIsNotInOnePiece) {
    AutoreleasePool pool;
    auto text = PBRepeatString::initWithString_length(u"12345678 don't\n"_ns, 1500);
    for (NSUInteger start = 0; start < 1500; start += 15) {
        EXPECT_EQ(paragraphRangeForRange(text, {start + 7, 0}), NSMakeRange(start, 15));
        EXPECT_EQ(wordRangeForRange_includePreviousWord(text, {start + 10, 0}, false),
                  NSMakeRange(start + 9, 5));
    }
    auto endless = PBRepeatString::initWithString_length(u"a"_ns, 100000);
    EXPECT_EQ(paragraphContentRangeForRange(endless, {50000, 0}), NSMakeRange(0, 100000));
}

TEST(ComposedCharacters, AreWidenedToWholeOnes) {
    AutoreleasePool pool;
    NSString* text = u"ae\u0301\u0323o\U0001F469\u200D\U0001F692z"_ns;
    EXPECT_EQ(rangeOfComposedCharactersForRange(text, {2, 1}), NSMakeRange(1, 3));
    EXPECT_EQ(rangeOfComposedCharactersForRange(text, {3, 4}), NSMakeRange(1, 9));
    EXPECT_EQ(rangeOfComposedCharactersForRange(text, {2, 0}), NSMakeRange(2, 0));
    EXPECT_THROW(rangeOfComposedCharactersForRange(text, {10, 2}), NSException);
    EXPECT_EQ(PBRangeOfComposedCharacterSequenceAtIndex(text, 6), NSMakeRange(5, 5));
    EXPECT_EQ(PBRangeOfComposedCharacterSequenceAtIndex(text, 20), NSMakeRange(11, 0));
    EXPECT_EQ(PBRangeOfComposedCharacterSequenceAtIndex(u""_ns, 0), NSMakeRange(0, 0));
    NSString* syllables = u"\u0928\u092E\u0924\u0947\uAC00\uAC01\u11A8"_ns;
    const NSRange expected[] = {{0, 1}, {1, 1}, {2, 2}, {2, 2}, {4, 1}, {5, 2}, {5, 2}};
    for (NSUInteger i = 0; i < 7; ++i)
        EXPECT_EQ(PBRangeOfComposedCharacterSequenceAtIndex(syllables, i), expected[i]) << i;
}

TEST(CharacterRange, IsAUnitOrAPair) {
    AutoreleasePool pool;
    NSString* text = NSString::of(
        u"\xDC00"
        u"a\xD83D\xDE00"
        u"b\xD83D");
    const NSRange expected[] = {{0, 1}, {1, 1}, {2, 2}, {2, 2}, {4, 1}, {5, 1}, {6, 0}};
    for (NSUInteger i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(rangeOfCharacterAtIndex(text, i), expected[i]);
    EXPECT_EQ(rangeOfCharacterAtIndex(NSString::of(u"\xD83Dx\xDC00"), 0), NSMakeRange(0, 2));
    EXPECT_EQ(rangeOfCharacterAtIndex(NSString::of(u"\xD83Dx\xDC00"), 2), NSMakeRange(1, 2));
}

TEST(MatchingCase, TakesTheCaseOfThePattern) {
    AutoreleasePool pool;
    const std::pair<Text, Text> rows[] = {{u"Hello", u"World-Wide Don't"}, {u"HELLO", u"WORLD-WIDE DON'T"},
                                          {u"hello", u"world-wIDE don't"}, {u"H", u"WORLD-WIDE DON'T"},
                                          {u"H1", u"World-Wide Don't"},    {u"", u"world-wIDE don't"},
                                          {u"\u01C5", u"WORLD-WIDE DON'T"}};
    for (auto [pattern, result] : rows)
        EXPECT_EQ(stringByMatchingCase(u"world-wIDE don't"_ns, NSString::of(pattern))->toUTF16(), result);
    NSMutableString* own = NSMutableString::of(u"a");
    EXPECT_NE(stringByMatchingCase(own, nullptr), own) << "a copy";
}

TEST(ToggledCase, KeepsOneByteOfALetter) {
    AutoreleasePool pool;
    EXPECT_EQ(toggledcaseString(u"Hello, wORLD 1"_ns)->toUTF16(), u"hELLO, World 1");
    EXPECT_EQ(toggledcaseString(u"\u00E9\u0416"_ns)->toUTF16(), u"\u00E9\u0416") << "no letters of plain C";
    ASSERT_TRUE(std::setlocale(LC_CTYPE, "C.UTF-8"));
    NSString* result = toggledcaseString(u"\u00E9\u00C9\u0416\u00FF\u4E00"_ns);
    std::setlocale(LC_CTYPE, "C");
    EXPECT_EQ(result->toUTF16(), u"\u00C9\u00E9\u0036\u0078\u4E00");
}

TEST(Truncation, CutsAtTheLastWhiteSpace) {
    AutoreleasePool pool;
    const struct {
        Text text;
        NSUInteger length;
        Text result;
    } rows[] = {{u"The quick brown fox", 12, u"The quick"},
                {u"The quick", 9, u"The quick"},
                {u"Thequickbrown", 5, u"Thequ"},
                {u" \t The quick", 9, u"The"},
                {u"one\ntwo", 5, u"one"},
                {u"one  \n two", 7, u"one  \n"},
                {u"ab\U0001F600", 3, u"ab"},
                {u"abc", 0, u""}};
    for (auto& [text, length, result] : rows)
        EXPECT_EQ(stringByPrettyTruncationToLength(NSString::of(text), length)->toUTF16(), result);
}

TEST(HardWrapping, BreaksBeforeWhiteSpaceOrInsideLongWords) {
    AutoreleasePool pool;
    const struct {
        Text text;
        NSUInteger length;
        Text result;
    } rows[] = {{u"The quick brown fox jumps", 10, u"The quick\n brown fox\n jumps"},
                {u"abcdefghijkl", 5, u"abcd\nefghi\njkl"},
                {u"aa bb\ncc dd ee", 5, u"aa\n bb\ncc\n dd\n ee"},
                {u"ab cdefgh", 5, u"ab c\ndefgh"},
                {u"aaa bbb", 4, u"aaa\n bbb"},
                {u"abcd efghi jk", 7, u"abcd\n efghi\n jk"},
                {u"a\fbcdefg hi", 4, u"a\fbcd\nefg\n hi"},
                {u"   x   y  ", 3, u"  \n x \n  y\n  "},
                {u"x\n\n\nyyyyyy", 3, u"x\n\n\nyy\nyyy\ny"},
                {u"aa\r\nbb", 3, u"aa\n\r\nbb"},
                {u"one two", 7, u"one two"},
                {u"abc", 1, u"\na\nb\nc"},
                {u"abc", 0, u"\na\nb\nc"},
                {u"\U0001F600\U0001F600\U0001F600", 3, u"\U0001F600\n\U0001F600\n\U0001F600"},
                {u"\U0001F600\n\U0001F600z", 2, u"\U0001F600\n\U0001F600\nz"}};
    for (auto& [text, length, result] : rows)
        EXPECT_EQ(stringByHardWrappingToLineLength(NSString::of(text), length)->toUTF16(), result)
            << NSString::of(text) << " to " << length;
    std::u16string wide = u"xxxxxxxxxx\u3000" + std::u16string(69, u'y');
    EXPECT_EQ(stringByHardWrappingToLineLength(NSString::of(wide), 79)->toUTF16(), wide.insert(10, 1, u'\n'));
    NSMutableString* text = NSMutableString::of(u"short");
    EXPECT_EQ(stringByHardWrappingToLineLength(text, 5), text);
}

TEST(DerivedStrings, AreTheReceiverWhereNothingChanges) {
    AutoreleasePool pool;
    NSString* text = u"a,b,,a"_ns;
    NSCharacterSet* commas = NSCharacterSet::characterSetWithCharactersInString(u",\U0001F600"_ns);
    EXPECT_EQ(stringByReplacingAllOccurrencesOfString_withString(text, u";"_ns, u"-"_ns), text);
    EXPECT_EQ(stringByReplacingAllOccurrencesOfString_withString(text, u""_ns, u"-"_ns), text);
    EXPECT_EQ(stringByReplacingAllOccurrencesOfString_withString(text, u","_ns, u", "_ns)->toUTF16(),
              u"a, b, , a");
    EXPECT_EQ(stringByReplacingAllOccurrencesOfCharactersInSet_withString(u"ab"_ns, commas, u"-"_ns),
              u"ab"_ns);
    EXPECT_EQ(stringByReplacingAllOccurrencesOfCharactersInSet_withString(text, commas, u""_ns)->toUTF16(),
              u"aba");
    EXPECT_EQ(stringByRemovingSurroundingWhitespace(text), text);
    EXPECT_EQ(stringByRemovingSurroundingWhitespace(u"\u2028 a b\t\u00A0"_ns)->toUTF16(), u"a b");
    EXPECT_EQ(stringByRemovingSurroundingWhitespace(u" \n"_ns)->toUTF16(), u"");
    EXPECT_EQ(
        stringByLossyConversionToEncoding(u"caf\u00E9 \u2014 \u0141"_ns, NSASCIIStringEncoding)->toUTF8(),
        "cafe - L");
    EXPECT_EQ(stringByLossyConversionToEncoding(text, 12345), nullptr);
    EXPECT_TRUE(containsString(text, nullptr) && containsString(text, u""_ns) &&
                containsString(text, u",,"_ns));
    EXPECT_FALSE(containsString(text, u"A"_ns));
}

TEST(Components, LeaveOutOnlyAnEmptyLastPiece) {
    AutoreleasePool pool;
    const struct {
        Text text, separator;
        std::vector<Text> pieces;
    } rows[] = {{u"a,b,,a", u",", {u"a", u"b", u""}},
                {u"a,b,", u",", {u"a", u"b"}},
                {u"a,,", u",", {u"a", u""}},
                {u"ab", u",", {u"ab"}},
                {u"ab", u"", {u"ab"}},
                {u"", u",", {}},
                {u",", u",", {u""}},
                {u"a--b", u"--", {u"a", u"b"}}};
    for (auto& [text, separator, pieces] : rows) {
        NSSet* set = setWithComponentsSeparatedByString(NSString::of(text), NSString::of(separator));
        EXPECT_EQ(set->count(), pieces.size()) << NSString::of(text);
        for (Text piece : pieces) EXPECT_TRUE(set->containsObject(NSString::of(piece))) << NSString::of(text);
    }
}

TEST(NumbersAtAnIndex, TellHowFarTheyReach) {
    AutoreleasePool pool;
    const struct {
        Text text;
        NSUInteger index;
        int decimal;
        NSUInteger decimalEnd;
        int hexadecimal;
        NSUInteger hexadecimalEnd;
    } rows[] = {{u"ab 12 cd", 2, 12, 5, 0x12, 5},
                {u"  -12x", 0, -12, 5, 63, 0},
                {u"0x1Fg", 0, 0, 1, 0x1F, 4},
                {u"0XaB", 0, 0, 1, 0xAB, 4},
                {u"0xg", 0, 0, 1, 0, 1},
                {u"99999999999 ", 0, 0x7FFFFFFF, 11, -1, 11},
                {u"-99999999999", 0, -0x7FFFFFFF - 1, 12, 63, 0},
                {u"g", 0, 0, 0, 63, 0},
                {u"FFFFFFFE", 0, 0, 0, -2, 8},
                {u"+", 0, 0, 0, 63, 0},
                {u"1 2", 3, 0, 3, 63, 3}};
    for (auto& row : rows) {
        NSRange range{99, 99};
        NSString* text = NSString::of(row.text);
        EXPECT_EQ(intValueAtIndex_effectiveRange(text, row.index, &range), row.decimal) << text;
        EXPECT_EQ(range, NSMakeRange(row.index, std::max(row.decimalEnd, row.index) - row.index)) << text;
        EXPECT_EQ(hexIntValueAtIndex_effectiveRange(text, row.index, &range), row.hexadecimal) << text;
        EXPECT_EQ(range, NSMakeRange(row.index, std::max(row.hexadecimalEnd, row.index) - row.index)) << text;
    }
    EXPECT_EQ(hexIntValue(u"zz"_ns), 63);
    EXPECT_EQ(hexIntValue(u" 10"_ns), 16);
    EXPECT_THROW(intValueAtIndex_effectiveRange(u"1"_ns, 2, nullptr), NSException);
}

TEST(StringAdditions, AnswerBySelector) {
    AutoreleasePool pool;
    registerLibrary(baseLibrary);
    Class *plain = NSString::classObject(), *mutable_ = NSMutableString::classObject();
    NSData* data = u"na\u00EFve"_ns->dataUsingEncoding(NSISOLatin1StringEncoding);
    auto* text = send<NSString*>(mutable_, "stringWithData:encoding:"_sel, data,
                                 NSStringEncoding{NSISOLatin1StringEncoding});
    EXPECT_EQ(text->toUTF8(), "na\xC3\xAFve");
    EXPECT_TRUE(cast<NSMutableString>(text));
    EXPECT_FALSE(cast<NSMutableString>(send<NSString*>(plain, "stringWithCharacter:"_sel, unichar{u'x'})));
    EXPECT_EQ(send<NSRange>(text, "wordRangeForRange:includePreviousWord:"_sel, NSRange{1, 0}, false),
              NSMakeRange(0, 5));
    EXPECT_EQ(NSString_PelvorAdditions::stringWithData_encoding(data, NSUTF8StringEncoding), nullptr);
    unichar* units = characterBuffer(text);
    EXPECT_EQ(Text(units, 5), u"na\u00EFve");
    EXPECT_EQ(characterBuffer(u""_ns), nullptr);
}

}  // namespace
}  // namespace pelvor::testing
