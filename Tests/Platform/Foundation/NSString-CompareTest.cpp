// SPDX-License-Identifier: Apache-2.0
// Tests of comparing strings.
#include "FoundationTestSupport.h"
#include "Prelude.h"

namespace pelvor {
namespace {

struct Comparison {
    NSString* first;
    NSString* second;
    NSStringCompareOptions options;
    NSComparisonResult expected;
};

TEST(NSStringCompareTest, OrdersByTheOptions) {
    const Comparison cases[] = {
        {u"a"_ns, u"b"_ns, 0, NSOrderedAscending},
        {u"ab"_ns, u"a"_ns, 0, NSOrderedDescending},
        {u""_ns, u""_ns, 0, NSOrderedSame},
        {u"B"_ns, u"a"_ns, 0, NSOrderedAscending},
        {u"B"_ns, u"a"_ns, NSCaseInsensitiveSearch, NSOrderedDescending},
        {u"ÀB"_ns, u"àb"_ns, NSCaseInsensitiveSearch, NSOrderedSame},
        {u"Straße"_ns, u"STRASSE"_ns, NSCaseInsensitiveSearch, NSOrderedSame},
        {u"Straße"_ns, u"STRASSE"_ns, NSCaseInsensitiveSearch | NSLiteralSearch, NSOrderedDescending},
        {u"𐐀"_ns, u"𐐨"_ns, NSCaseInsensitiveSearch, NSOrderedSame},
        {u"𐐀"_ns, u"𐐨"_ns, NSCaseInsensitiveSearch | NSLiteralSearch, NSOrderedSame},
        {u"ΣΑΣ"_ns, u"σας"_ns, NSCaseInsensitiveSearch, NSOrderedSame},
        {u"file9"_ns, u"file10"_ns, 0, NSOrderedDescending},
        {u"file9"_ns, u"file10"_ns, NSNumericSearch, NSOrderedAscending},
        {u"v007b"_ns, u"v7b"_ns, NSNumericSearch, NSOrderedSame},
        {u"1.12"_ns, u"1.9"_ns, NSNumericSearch, NSOrderedDescending},
        {u"File12"_ns, u"fiLe012"_ns, NSNumericSearch | NSCaseInsensitiveSearch, NSOrderedSame},
        {u"99999999999999999999998"_ns, u"99999999999999999999999"_ns, NSNumericSearch, NSOrderedAscending},
        {u"1a"_ns, u"1"_ns, NSNumericSearch | NSLiteralSearch, NSOrderedDescending},
    };
    for (const Comparison& c : cases) {
        EXPECT_EQ(c.first->compare_options(c.second, c.options), c.expected) << c.first << " " << c.second;
        EXPECT_EQ(c.second->compare_options(c.first, c.options), -c.expected) << c.second << " " << c.first;
    }
}

TEST(NSStringCompareTest, CanonicallyEquivalentTextsAreTheSameUnlessLiteral) {
    NSString* pairs[][2] = {{u"é"_ns, u"e\u0301"_ns},       {u"caféx"_ns, u"cafe\u0301x"_ns},
                            {u"\u212B"_ns, u"Å"_ns},        {u"q\u0307\u0323"_ns, u"q\u0323\u0307"_ns},
                            {u"가"_ns, u"\u1100\u1161"_ns}, {u"ế"_ns, u"e\u0302\u0301"_ns}};
    for (auto& [a, b] : pairs) {
        EXPECT_EQ(a->compare(b), NSOrderedSame) << a;
        EXPECT_EQ(a->compare_options(b, NSCaseInsensitiveSearch), NSOrderedSame) << a;
        EXPECT_NE(a->compare_options(b, NSLiteralSearch), NSOrderedSame) << a;
    }
    EXPECT_EQ(u"É"_ns->caseInsensitiveCompare(u"e\u0301"_ns), NSOrderedSame);
    EXPECT_EQ(u"e\u0301"_ns->compare(u"z"_ns), u"é"_ns->compare(u"z"_ns));
}

// Sorting relies on it: no three texts may chase each other's tails.
TEST(NSStringCompareTest, TheOrderIsTotalHoweverTextIsWritten) {
    std::vector<NSString*> texts;
    // clang-format off
    for (const char16_t* text : {
             u"", u"e", u"é", u"e\u0301", u"ez", u"éz", u"e\u0301a", u"e\u0323", u"ẹ\u0301", u"e\u0301\u0323",
             u"f", u"z", u"😀", u"\uFB01", u"\uFFFD", u"가", u"\u1100", u"\u1100\u1161", u"K", u"\u212A", u"1",
             u"9", u"10", u"é1", u"e\u030110"})
        texts.push_back(NSString::of(text));
    // clang-format on
    for (NSStringCompareOptions options : {0u, 1u, 2u, 3u, 64u, 65u, 66u})
        for (NSString* a : texts)
            for (NSString* b : texts) {
                EXPECT_EQ(a->compare_options(b, options), -b->compare_options(a, options));
                for (NSString* c : texts) {
                    bool isChain = a->compare_options(b, options) <= 0 && b->compare_options(c, options) <= 0;
                    EXPECT_FALSE(isChain && a->compare_options(c, options) > 0)
                        << a << " " << b << " " << c << " " << options;
                }
            }
}

TEST(NSStringCompareTest, ARangeOfTheReceiverIsComparedWithTheWholeOther) {
    NSString* text = u"xabcx"_ns;
    EXPECT_EQ(text->compare_options_range(u"abc"_ns, 0, {1, 3}), NSOrderedSame);
    EXPECT_EQ(text->compare_options_range(u"abc"_ns, 0, {1, 2}), NSOrderedAscending);
    expectRaises(NSRangeException, [&] { text->compare_options_range(u"abc"_ns, 0, {3, 3}); });
    expectRaises(NSInvalidArgumentException, [&] { text->compare(nullptr); });
}

TEST(NSStringCompareTest, TheOrderOfALanguagePutsAccentsNextToTheirLetters) {
    EXPECT_EQ(u"école"_ns->localizedCompare(u"zèbre"_ns), NSOrderedAscending);
    EXPECT_EQ(u"école"_ns->compare(u"zèbre"_ns), NSOrderedDescending);
    EXPECT_EQ(u"a"_ns->localizedCompare(u"B"_ns), NSOrderedAscending);
    EXPECT_NE(u"a"_ns->localizedCompare(u"A"_ns), NSOrderedSame);
    EXPECT_EQ(u"É"_ns->localizedCaseInsensitiveCompare(u"e\u0301"_ns), NSOrderedSame);
}

TEST(NSStringCompareTest, PrefixesAndSuffixes) {
    for (NSString* string : everyKindOfString(u"héllo")) {
        EXPECT_TRUE(string->hasPrefix(u"hé"_ns) && string->hasPrefix(string) && string->hasSuffix(u"llo"_ns));
        EXPECT_FALSE(string->hasPrefix(u"héllo!"_ns) || string->hasSuffix(u"Llo"_ns));
        EXPECT_FALSE(string->hasPrefix(u""_ns) || string->hasSuffix(u""_ns));
    }
}

}  // namespace
}  // namespace pelvor
