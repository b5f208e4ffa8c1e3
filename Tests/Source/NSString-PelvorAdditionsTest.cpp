// SPDX-License-Identifier: Apache-2.0
#include "NSString-PelvorAdditions.h"

#include <clocale>

#include "Foundation/NSCharacterSet.h"
#include "PBPostLoader.h"
#include "Prelude.h"
#include "Source/TextInPieces.h"

namespace {

using Text = std::u16string_view;

std::vector<Text> piecesOf(Text text, char16_t separator) {
    std::vector<Text> pieces;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find(separator, start)) != Text::npos; start = end + 1)
        pieces.push_back(text.substr(start, end - start));
    pieces.push_back(text.substr(start));
    return pieces;
}

// A text with "|" where a range begins and ends, or both, and "[", ")" and "]" where the answer starts, has
// its contents' end, and ends.
struct MarkedText {
    explicit MarkedText(Text marked) {
        for (char16_t unit : marked) {
            std::size_t kind = Text(u"|[)]").find(unit);
            if (kind == Text::npos)
                text += unit;
            else
                marks[kind].push_back(static_cast<NSUInteger>(text.size()));
        }
        strings = {NSString::of(text), inPieces(text)};
    }
    NSRange range() const { return {marks[0].front(), marks[0].back() - marks[0].front()}; }
    NSRange answer(std::size_t end = 3) const { return {marks[1][0], marks[end][0] - marks[1][0]}; }

    std::u16string text;
    std::vector<NSUInteger> marks[4];
    std::array<NSString*, 2> strings;
};

// Texts with a slash between them: "I [do|n't] know/the dogs|[]' tails".
void expectWords(Text texts, bool includesPrevious = false) {
    for (Text text : piecesOf(texts, u'/')) {
        const MarkedText marked(text);
        for (NSString* string : marked.strings)
            EXPECT_EQ(wordRangeForRange_includePreviousWord(string, marked.range(), includesPrevious),
                      marked.answer())
                << NSString::of(text);
    }
}

// The fuzz target StringAdditions compares words in texts of all kinds with a model of the rules.
TEST(WordRange, FollowsTheRuleOfTheUnitAtTheCaretAndSpansTheRange) {
    PBPostLoader::processClasses();
    expectWords(
        u"I [do|n't] know/the dogs|[]' tails/|[]'tis/[e|\u0301t\u00E9]!/|[]/foo|[] bar/foo.|[]/"
        u"costs [$1,|250.99] today/of [|\u20AC12,5] each/x|[].5/ [|$.99] /one [t|wo t|hree]/[o|ne ]1|2");
    expectWords(u"[foo |bar]/foo [ |bar]/foo.[ |bar]/[ |bar]/[a\u0002|b]", true);
}

TEST(WordRange, TrimsWordsAndWhiteSpace) {
    NSString* text = inPieces(u" \u2028(two words\u0301!) \U0001D7D8.");
    NSUInteger count = text->length();
    EXPECT_EQ(rangeOfTrimmedWordForRange(text, {0, count}), NSMakeRange(3, 15)) << "with the digit pair";
    EXPECT_EQ(rangeOfTrimmedWordForRange(text, {0, 6}), NSMakeRange(3, 3));
    EXPECT_EQ(rangeOfTrimmedWordForRange(text, {0, 3}), NSMakeRange(NSNotFound, 0));
    EXPECT_EQ(nonwhitespaceRangeForRange(text, {0, 7}), NSMakeRange(2, 4));
    EXPECT_EQ(nonwhitespaceRangeForRange(text, {1, 1}), NSMakeRange(1, 0));
}

TEST(CharacterLocation, IsTheLastUnitOfAMatchBackwards) {
    NSString* text = inPieces(u"a\U0001F600b\U0001F600");
    NSCharacterSet* faces = NSCharacterSet::characterSetWithCharactersInString(inPieces(u"\U0001F600"));
    auto find = [&](NSStringCompareOptions options, NSUInteger location) {
        return locationOfCharacterFromSet_options_location(text, faces, options, location);
    };
    EXPECT_EQ(find(0, 0), 1u);
    EXPECT_EQ(find(0, 3), 4u);
    for (NSUInteger past : {6u, 0xFFFFFFFF}) EXPECT_EQ(find(0, past), NSNotFound);
    EXPECT_EQ(find(NSBackwardsSearch, 2), 2u);
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
    for (Text text : piecesOf(u"|[ab)\r\n]cd/ab\r\n|[cd)]/ab\r|[)\n]cd/|[ab)\r|\n]cd/[a|b\r\nc|d)]/"
                              u"a\n|[)\n]b/|[a|)\n]\nb/a\n|[)]/|[)]/"
                              u"a\u2029|[b\u0085c|)\f]d/|[a|\vb\u2028c)\n]",
                              u'/')) {
        const MarkedText marked(text);
        for (NSString* string : marked.strings) {
            EXPECT_EQ(paragraphRangeForRange(string, marked.range()), marked.answer()) << string;
            EXPECT_EQ(paragraphContentRangeForRange(string, marked.range()), marked.answer(2)) << string;
        }
    }
    NSUInteger contentsEnd = 0;
    getParagraphStart_end_contentsEnd_forRange(u"ab"_ns, nullptr, nullptr, &contentsEnd, {1, 0});
    EXPECT_EQ(contentsEnd, NSNotFound);
    for (NSRange outside : {NSRange{3, 0}, {1, 2}, {1, 0xFFFFFFFF}})
        EXPECT_EQ(reasonOf(NSRangeException, [=] { paragraphRangeForRange(u"ab"_ns, outside); }),
                  "range: " + shown(outside) + " must be in range: {0, 2}");
}

TEST(ParagraphRange, IsFoundInALongTextThatIsNotInOnePiece) {
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
    NSString* text = inPieces(u"ae\u0301\u0323o\U0001F469\u200D\U0001F692z");
    EXPECT_EQ(rangeOfComposedCharactersForRange(text, {2, 1}), NSMakeRange(1, 3));
    EXPECT_EQ(rangeOfComposedCharactersForRange(text, {3, 4}), NSMakeRange(1, 9));
    EXPECT_EQ(rangeOfComposedCharactersForRange(text, {2, 0}), NSMakeRange(2, 0));
    EXPECT_EQ(PBRangeOfComposedCharacterSequenceAtIndex(text, 6), NSMakeRange(5, 5));
    EXPECT_EQ(PBRangeOfComposedCharacterSequenceAtIndex(text, 20), NSMakeRange(11, 0));
    EXPECT_EQ(PBRangeOfComposedCharacterSequenceAtIndex(u""_ns, 0), NSMakeRange(0, 0));
    NSString* syllables = u"\u0928\u092E\u0924\u0947\uAC00\uAC01\u11A8"_ns;
    const NSRange expected[] = {{0, 1}, {1, 1}, {2, 2}, {2, 2}, {4, 1}, {5, 2}, {5, 2}};
    for (NSUInteger i = 0; i < 7; ++i)
        EXPECT_EQ(PBRangeOfComposedCharacterSequenceAtIndex(syllables, i), expected[i]) << i;
}

TEST(CharacterRange, IsAUnitOrAPair) {
    NSString* text = inPieces(
        u"\xDC00\xDC00\xD83D\xDE00"
        u"b\xD83D");
    const NSRange expected[] = {{0, 1}, {0, 2}, {2, 2}, {2, 2}, {4, 1}, {5, 1}, {6, 0}};
    for (NSUInteger i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(rangeOfCharacterAtIndex(text, i), expected[i]);
    EXPECT_EQ(rangeOfCharacterAtIndex(NSString::of(u"\xD83Dx\xDC00"), 0), NSMakeRange(0, 2));
    EXPECT_EQ(rangeOfCharacterAtIndex(NSString::of(u"\xD83Dx\xDC00"), 2), NSMakeRange(1, 2));
}

TEST(MatchingCase, TakesTheCaseOfThePattern) {
    expectAll({"Hello -> World-Wide Don't", "HELLO -> WORLD-WIDE DON'T", "hello -> world-wIDE don't",
               "H -> WORLD-WIDE DON'T", "H1 -> World-Wide Don't", " -> world-wIDE don't",
               "\u01C5 -> WORLD-WIDE DON'T"},
              [](const std::string& pattern) {
                  return stringByMatchingCase(inPieces(u"world-wIDE don't"), inPieces(pattern));
              });
    NSMutableString* own = NSMutableString::of(u"a");
    EXPECT_NE(stringByMatchingCase(own, nullptr), own) << "a copy";
}

TEST(ToggledCase, KeepsOneByteOfALetter) {
    EXPECT_EQ(toggledcaseString(inPieces(u"Hello, wORLD 1"))->toUTF16(), u"hELLO, World 1");
    EXPECT_EQ(toggledcaseString(u"\u00E9\u0416"_ns)->toUTF16(), u"\u00E9\u0416") << "no letters of plain C";
    ASSERT_TRUE(std::setlocale(LC_CTYPE, "C.UTF-8"));
    NSString* result = toggledcaseString(u"\u00E9\u00C9\u0416\u00FF\u4E00"_ns);
    std::setlocale(LC_CTYPE, "C");
    EXPECT_EQ(result->toUTF16(), u"\u00C9\u00E9\u0036\u0078\u4E00");
}

// "The quick br|own fox=The quick/...": what an operation makes of a text, with a bar where the length ends.
void expectResults(NSString* (*operation)(NSString*, NSUInteger), Text rows) {
    for (Text row : piecesOf(rows, u'/')) {
        const MarkedText marked(piecesOf(row, u'=')[0]);
        for (NSString* string : marked.strings)
            EXPECT_EQ(operation(string, marked.marks[0][0])->toUTF16(), piecesOf(row, u'=')[1])
                << NSString::of(row);
    }
}

TEST(Truncation, CutsAtTheLastWhiteSpace) {
    expectResults(
        &stringByPrettyTruncationToLength,
        u"The quick br|own fox=The quick/The quick|=The quick/Thequ|ickbrown=Thequ/ \t The qu|ick=The/"
        u"one\nt|wo=one/one  \n |two=one  \n/ab\xD83D|\xDE00=ab/|abc=");
}

TEST(HardWrapping, BreaksBeforeWhiteSpaceOrInsideLongWords) {
    expectResults(&stringByHardWrappingToLineLength,
                  u"The quick |brown fox jumps=The quick\n brown fox\n jumps/aaa |bbb=aaa\n bbb/"
                  u"one two|=one two/x abc|d=x ab\ncd/abcde|fghijkl=abcd\nefghi\njkl/|abc=\na\nb\nc/"
                  u"\U0001F600\xD83D|\xDE00\U0001F600=\U0001F600\n\U0001F600\n\U0001F600/"
                  u"\U0001F600|\n\U0001F600z=\U0001F600\n\U0001F600\nz");
    std::u16string wide = u"xxxxxxxxxx\u3000" + std::u16string(69, u'y');
    EXPECT_EQ(stringByHardWrappingToLineLength(NSString::of(wide), 79)->toUTF16(), wide.insert(10, 1, u'\n'));
    NSMutableString* text = NSMutableString::of(u"short");
    EXPECT_EQ(stringByHardWrappingToLineLength(text, 5), text);
}

TEST(DerivedStrings, AreTheReceiverWhereNothingChanges) {
    NSString* text = inPieces(u"a,b,,a");
    NSCharacterSet* commas = NSCharacterSet::characterSetWithCharactersInString(u",\U0001F600"_ns);
    auto replace = [=](NSString* target, NSString* with) {
        return stringByReplacingAllOccurrencesOfString_withString(text, target, with);
    };
    for (NSString* absent : {inPieces(u";"), inPieces(u"")}) EXPECT_EQ(replace(absent, u"-"_ns), text);
    EXPECT_EQ(replace(inPieces(u","), inPieces(u", "))->toUTF16(), u"a, b, , a");
    NSMutableString* plain = NSMutableString::of(u"ab");
    EXPECT_EQ(stringByReplacingAllOccurrencesOfCharactersInSet_withString(plain, commas, u"-"_ns), plain);
    EXPECT_EQ(stringByReplacingAllOccurrencesOfString_withString(plain, u","_ns, u"-"_ns), plain);
    EXPECT_EQ(
        stringByReplacingAllOccurrencesOfCharactersInSet_withString(text, commas, inPieces(u""))->toUTF16(),
        u"aba");
    const std::pair<Text, Text> trimmed[] = {{u"\u2028 a b\t\u00A0", u"a b"}, {u" \n", u""}, {u"", u""}};
    for (auto [whole, rest] : trimmed)
        EXPECT_EQ(stringByRemovingSurroundingWhitespace(inPieces(whole))->toUTF16(), rest);
    EXPECT_EQ(stringByRemovingSurroundingWhitespace(plain), plain);
    EXPECT_EQ(stringByLossyConversionToEncoding(inPieces(u"caf\u00E9 \u2014 \u0141"), NSASCIIStringEncoding)
                  ->toUTF8(),
              "cafe - L");
    EXPECT_EQ(stringByLossyConversionToEncoding(text, 12345), nullptr);
    for (NSString* part : std::initializer_list<NSString*>{nullptr, inPieces(u""), inPieces(u",,")})
        EXPECT_TRUE(containsString(text, part));
    EXPECT_FALSE(containsString(text, u"A"_ns));
}

TEST(Components, LeaveOutOnlyAnEmptyLastPiece) {
    // The text, the separator, and the pieces.
    for (Text row : {u"a,b,,a/,/a/b/", u"a,b,/,/a/b", u"a,,/,/a/", u"ab/,/ab", u"ab//ab", u"//", u"/,",
                     u",/,/", u"a--b/--/a/b"}) {
        std::vector<Text> parts = piecesOf(row, u'/');
        NSSet* set = setWithComponentsSeparatedByString(inPieces(parts[0]), inPieces(parts[1]));
        EXPECT_EQ(set->count(), parts.size() - 2) << NSString::of(row);
        for (std::size_t i = 2; i < parts.size(); ++i)
            EXPECT_TRUE(set->containsObject(NSString::of(parts[i]))) << NSString::of(row);
    }
}

TEST(NumbersAtAnIndex, TellHowFarTheyReach) {
    // The text and the index, then the decimal and the hexadecimal number with the range of each.
    expectAll(
        {"ab 12 cd 2 -> 12 {2, 3} 18 {2, 3}", "  -12x 0 -> -12 {0, 5} 63 {0, 0}",
         "0x1Fg 0 -> 0 {0, 1} 31 {0, 4}", "0XaB 0 -> 0 {0, 1} 171 {0, 4}", "0xg 0 -> 0 {0, 1} 0 {0, 1}",
         "99999999999  0 -> 2147483647 {0, 11} -1 {0, 11}", "-99999999999 0 -> -2147483648 {0, 12} 63 {0, 0}",
         "g 0 -> 0 {0, 0} 63 {0, 0}", "FFFFFFFE 0 -> 0 {0, 0} -2 {0, 8}", "+ 0 -> 0 {0, 0} 63 {0, 0}",
         "1 2 3 -> 0 {3, 0} 63 {3, 0}"},
        [](const std::string& row) {
            NSString* text = inPieces(row.substr(0, row.size() - 2));
            auto index = static_cast<NSUInteger>(row.back() - '0');
            NSRange range{99, 99}, hexRange{99, 99};
            int value = intValueAtIndex_effectiveRange(text, index, &range);
            int hexValue = hexIntValueAtIndex_effectiveRange(text, index, &hexRange);
            return shown(value, range, hexValue, hexRange);
        });
    EXPECT_EQ(hexIntValue(u"zz"_ns), 63);
    EXPECT_EQ(hexIntValue(u" 10"_ns), 16);
}

TEST(StringAdditions, MakeStringsOfDataAndBuffersOfStrings) {
    NSData* data = u"na\u00EFve"_ns->dataUsingEncoding(NSISOLatin1StringEncoding);
    using Additions = NSString_PelvorAdditions;
    NSString* text =
        Additions::stringWithData_encoding(data, NSISOLatin1StringEncoding, NSMutableString::classObject());
    EXPECT_EQ(text->toUTF8(), "na\xC3\xAFve");
    EXPECT_TRUE(cast<NSMutableString>(text));
    EXPECT_EQ(Additions::stringWithData_encoding(data, NSUTF8StringEncoding), nullptr);
    unichar* units = characterBuffer(inPieces(u"na\u00EFve"));
    EXPECT_EQ(Text(units, 5), u"na\u00EFve");
    EXPECT_EQ(characterBuffer(u""_ns), nullptr);
}

}  // namespace
