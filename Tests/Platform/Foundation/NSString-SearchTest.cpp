// SPDX-License-Identifier: Apache-2.0
// Tests of searching strings.
#include "Foundation/NSCharacterSet.h"
#include "FoundationTestSupport.h"
#include "Prelude.h"

namespace pelvor {
namespace {

constexpr NSRange kNothing{NSNotFound, 0};
constexpr NSStringCompareOptions kFold = NSCaseInsensitiveSearch, kLiteral = NSLiteralSearch,
                                 kBack = NSBackwardsSearch, kAnchor = NSAnchoredSearch;

struct Search {
    const char16_t* text;
    const char16_t* target;
    NSStringCompareOptions options;
    NSRange expected;
};

TEST(NSStringSearchTest, FindsByTheOptions) {
    const Search cases[] = {
        {u"abcabc", u"bc", 0, {1, 2}},
        {u"abcabc", u"bc", kBack, {4, 2}},
        {u"abcabc", u"abc", kAnchor, {0, 3}},
        {u"abcabc", u"bc", kAnchor, kNothing},
        {u"abcabc", u"bc", kAnchor | kBack, {4, 2}},
        {u"abcabc", u"ab", kAnchor | kBack, kNothing},
        {u"abcabc", u"x", 0, kNothing},
        {u"abc", u"abcd", 0, kNothing},
        {u"abc", u"", 0, kNothing},
        {u"", u"a", 0, kNothing},
        {u"aBcABC", u"abc", kFold, {0, 3}},
        {u"aBcABC", u"abc", kFold | kBack, {3, 3}},
        {u"ÉTÉ", u"été", kFold | kLiteral, {0, 3}},
        {u"x𐐀𐐨", u"𐐨", kFold, {1, 2}},
        {u"x𐐀𐐨", u"𐐀", kFold | kBack | kLiteral, {3, 2}},
        {u"die STRASSE", u"straße", kFold, {4, 7}},
        {u"die Straße", u"STRASSE", kFold, {4, 6}},
        {u"Straße", u"strasse", kFold | kLiteral, kNothing},
    };
    for (const Search& c : cases)
        for (NSString* string : everyKindOfString(c.text))
            EXPECT_EQ(string->rangeOfString_options(NSString::of(c.target), c.options), c.expected)
                << string << " " << NSString::of(c.target) << " " << c.options;
}

TEST(NSStringSearchTest, EquivalentSpellingsAreFoundAndComposedCharactersKeptWhole) {
    const Search cases[] = {
        {u"un cafe\u0301 noir", u"café", 0, {3, 5}},
        {u"un café noir", u"cafe\u0301", 0, {3, 4}},
        {u"un cafe\u0301 noir", u"CAFÉ", kFold, {3, 5}},
        {u"un cafe\u0301 noir", u"café", kLiteral, kNothing},
        {u"cafe\u0301 cafe", u"cafe", 0, {6, 4}},
        {u"cafe\u0301 cafe", u"cafe", kLiteral, {0, 4}},
        {u"cafe cafe\u0301", u"cafe", kBack, {0, 4}},
        {u"e\u0301", u"\u0301", 0, kNothing},
        {u"e\u0301", u"\u0301", kLiteral, {1, 1}},
        {u"q\u0307\u0323!", u"q\u0323\u0307", 0, {0, 3}},
        {u"x\u1100\u1161", u"가", 0, {1, 2}},
        {u"é", u"e\u0301", kAnchor, {0, 1}},
        {u"xe\u0301", u"é", kAnchor | kBack, {1, 2}},
        {u"e\u0301x", u"e", kAnchor, kNothing},
        {u"20 \u212A", u"k", kFold, {3, 1}},
    };
    for (const Search& c : cases)
        EXPECT_EQ(NSString::of(c.text)->rangeOfString_options(NSString::of(c.target), c.options), c.expected)
            << NSString::of(c.text) << " " << NSString::of(c.target) << " " << c.options;
}

TEST(NSStringSearchTest, ANearEquivalentComesBeforeAFarPlainOne) {
    const std::u16string between(20000, u'x'), parted = u"e\u0301", whole = u"é";
    NSString* partedFirst = NSString::of(parted + between + whole);
    EXPECT_EQ(partedFirst->rangeOfString(u"é"_ns), NSMakeRange(0, 2));
    EXPECT_EQ(partedFirst->rangeOfString_options(u"é"_ns, kBack), NSMakeRange(20002, 1));
    NSString* wholeFirst = NSString::of(whole + between + parted);
    EXPECT_EQ(wholeFirst->rangeOfString(u"é"_ns), NSMakeRange(0, 1));
    EXPECT_EQ(wholeFirst->rangeOfString_options(u"é"_ns, kBack), NSMakeRange(20001, 2));
}

TEST(NSStringSearchTest, OnlyTheRangeIsSearched) {
    NSString* text = u"abcabcabc"_ns;
    auto search = [&](NSStringCompareOptions options, NSUInteger location, NSUInteger length) {
        return text->rangeOfString_options_range(u"abc"_ns, options, {location, length});
    };
    EXPECT_EQ(search(0, 1, 7), NSMakeRange(3, 3));
    EXPECT_EQ(search(kBack, 0, 8), NSMakeRange(3, 3));
    EXPECT_EQ(search(kAnchor, 3, 3), NSMakeRange(3, 3));
    EXPECT_EQ(search(0, 9, 0), kNothing);
    expectRaises(NSRangeException, [&] { search(0, 9, 1); });
    expectRaises(NSRangeException, [&] { search(0, 1, 0xFFFFFFFF); });
    expectRaises(NSInvalidArgumentException, [&] { text->rangeOfString(nullptr); });
}

// Long enough for whole vectors, with few letters so that much almost matches.
TEST(NSStringSearchTest, AgreesWithTheObviousSearch) {
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        std::u16string text(random() % 120, u'a'), target(1 + random() % 6, u'a');
        for (char16_t& unit : text) unit = static_cast<char16_t>(u'a' + random() % 3);
        for (char16_t& unit : target) unit = static_cast<char16_t>(u'a' + random() % 3);
        std::size_t first = text.find(target), last = text.rfind(target);
        auto range = [&](std::size_t place) {
            return place == text.npos
                       ? kNothing
                       : NSRange{static_cast<NSUInteger>(place), static_cast<NSUInteger>(target.size())};
        };
        NSString *string = NSString::of(text), *wanted = NSString::of(target);
        ASSERT_EQ(string->rangeOfString(wanted), range(first)) << string << " " << wanted;
        ASSERT_EQ(string->rangeOfString_options(wanted, kBack), range(last)) << string << " " << wanted;
        ASSERT_EQ(string->rangeOfString_options(wanted, kFold), range(first)) << string << " " << wanted;
    }
}

// Random text of letters, marks, syllables and their parts that join in many ways.
std::u16string troublesomeText(std::mt19937& random, std::size_t longest) {
    const std::u16string_view pieces[] = {u"e",      u"é",      u"\u0301", u"\u0323", u"ẹ",  u"K",
                                          u"\u212A", u"k",      u"ß",      u"s",      u"가", u"\u1100",
                                          u"\u1161", u"\u11A8", u"𝅗𝅥",     u"😀"};
    std::u16string text;
    for (std::size_t count = random() % longest; count > 0; --count)
        text += pieces[random() % std::size(pieces)];
    return text;
}

NSString* composed(NSString* text) { return text->precomposedStringWithCanonicalMapping(); }

TEST(NSStringSearchTest, TextIsTheSameExactlyWhereItsComposedFormsAre) {
    std::mt19937 random(11);
    for (int round = 0; round < 20000; ++round) {
        AutoreleasePool pool;
        NSString *a = NSString::of(troublesomeText(random, 6)), *b = NSString::of(troublesomeText(random, 6));
        bool isSame = composed(a)->isEqualToString(composed(b));
        ASSERT_EQ(a->compare(b) == NSOrderedSame, isSame) << a << " " << b;
        ASSERT_EQ(a->compare(b), composed(a)->compare_options(composed(b), kLiteral)) << a << " " << b;
    }
}

bool isMark(unichar unit) { return unit == 0x301 || unit == 0x323; }

// The first range, in the order of its start and then of its end, that is the target in some spelling and
// does not part a letter from its marks.
NSRange obviousRange(NSString* text, NSString* target) {
    NSUInteger count = text->length();
    auto parts = [&](NSUInteger place) {
        return place > 0 && place < count &&
               (isMark(text->characterAtIndex(place)) || (text->characterAtIndex(place) & 0xFC00) == 0xDC00 ||
                text->substringFromIndex(place)->hasPrefix(u"\U0001D165"_ns));
    };
    for (NSUInteger start = 0; start < count; ++start)
        for (NSUInteger end = start + 1; end <= count && !parts(start); ++end) {
            NSString* piece = text->substringWithRange({start, end - start});
            if (!parts(end) && composed(piece)->isEqualToString(composed(target)))
                return {start, end - start};
        }
    return kNothing;
}

TEST(NSStringSearchTest, AgreesWithTheObviousSearchForEquivalentText) {
    std::mt19937 random(13);
    int found = 0;
    for (int round = 0; round < 4000; ++round) {
        AutoreleasePool pool;
        NSString *text = NSString::of(troublesomeText(random, 10)),
                 *target = NSString::of(troublesomeText(random, 3));
        if (target->length() == 0 || isMark(target->characterAtIndex(0))) continue;
        NSRange expected = obviousRange(text, target), range = text->rangeOfString(target);
        ASSERT_EQ(range, expected) << text << " " << target;
        found += range.location != NSNotFound;
    }
    EXPECT_GT(found, 200);
}

TEST(NSStringSearchTest, TextThatAlmostMatchesEverywhereTakesNoLonger) {
    std::u16string text(200000, u'a'), target(5000, u'a');
    target[2500] = u'b';
    NSString* wanted = NSString::of(target);
    for (NSRange expected : {kNothing, NSRange{100000, 5000}}) {
        if (expected.length) text.replace(100000, target.size(), target);
        for (NSStringCompareOptions options : {0u, unsigned(kBack)})
            EXPECT_EQ(NSString::of(text)->rangeOfString_options(wanted, options), expected);
    }
}

TEST(NSStringSearchTest, MembersOfASet) {
    NSCharacterSet* vowels = NSCharacterSet::characterSetWithCharactersInString(u"ae😀"_ns);
    struct {
        const char16_t* text;
        NSStringCompareOptions options;
        NSRange expected;
    } cases[] = {{u"xyabe", 0, {2, 1}},
                 {u"xyabe", kBack, {4, 1}},
                 {u"xyz", 0, kNothing},
                 {u"", kBack, kNothing},
                 {u"z😀😁", 0, {1, 2}},
                 {u"😀😁z", kBack, {0, 2}},
                 {u"xA", 0, kNothing},
                 {u"xA", kFold, {1, 1}},
                 {u"xa", kAnchor, kNothing},
                 {u"ax", kAnchor, {0, 1}},
                 {u"xa", kAnchor | kBack, {1, 1}},
                 {u"ax", kAnchor | kBack, kNothing},
                 {u"\xDE00", 0, kNothing}};
    for (auto& c : cases)
        EXPECT_EQ(NSString::of(c.text)->rangeOfCharacterFromSet_options(vowels, c.options), c.expected)
            << NSString::of(c.text) << " " << c.options;
    NSString* text = u"aba"_ns;
    EXPECT_EQ(text->rangeOfCharacterFromSet_options_range(vowels, 0, {1, 2}), NSMakeRange(2, 1));
    expectRaises(NSRangeException, [&] { text->rangeOfCharacterFromSet_options_range(vowels, 0, {2, 2}); });
}

TEST(NSStringSearchTest, ComposedCharactersAroundAnIndex) {
    struct {
        const char16_t* text;
        NSUInteger index;
        NSRange expected;
    } cases[] = {{u"abc", 1, {1, 1}},
                 {u"ae\u0301b", 1, {1, 2}},
                 {u"ae\u0301b", 2, {1, 2}},
                 {u"ae\u0301b", 3, {3, 1}},
                 {u"x😀y", 1, {1, 2}},
                 {u"x😀y", 2, {1, 2}},
                 {u"👩\u200D👩\u200D👧!", 4, {0, 8}},
                 {u"🇩🇪🇫🇷", 5, {4, 4}},
                 {u"\u1100\u1161\u11A8x", 2, {0, 3}},
                 {u"नि", 1, {0, 2}},
                 {u"a\u0301\u0302\u0303", 0, {0, 4}},
                 {u"\r\n", 1, {0, 2}},
                 {u"中文\u3099", 1, {1, 2}}};
    for (auto& c : cases)
        for (NSString* string : everyKindOfString(c.text))
            EXPECT_EQ(string->rangeOfComposedCharacterSequenceAtIndex(c.index), c.expected)
                << string << " " << c.index;
    NSString* lone = NSString::of(std::u16string(u"a\xDE00"));
    EXPECT_EQ(lone->rangeOfComposedCharacterSequenceAtIndex(1), NSMakeRange(1, 1));
    expectRaises(NSRangeException, [] { u"abc"_ns->rangeOfComposedCharacterSequenceAtIndex(3); });
}

}  // namespace
}  // namespace pelvor
