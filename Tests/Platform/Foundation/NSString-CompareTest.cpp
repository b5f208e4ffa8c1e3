// SPDX-License-Identifier: Apache-2.0
// Tests of comparing strings.

#include "Platform/Foundation/OwnCollections.h"

namespace {

/// How strings compare by these options, and the other way round, in rows "first/second -> -1".
void expectOrders(NSStringCompareOptions options, std::initializer_list<std::string_view> rows) {
    expectAll(rows, [=](const std::string& row) {
        auto [first, second] = halves(row);
        EXPECT_EQ(second->compare_options(first, options), -first->compare_options(second, options)) << row;
        return static_cast<int>(first->compare_options(second, options));
    });
}

TEST(NSStringCompareTest, OrdersByTheOptions) {
    expectOrders(0, {"a/b -> -1", "ab/a -> 1", "/ -> 0", "B/a -> -1", "file9/file10 -> 1"});
    expectOrders(NSCaseInsensitiveSearch,
                 {"B/a -> 1", "ÀB/àb -> 0", "Straße/STRASSE -> 0", "𐐀/𐐨 -> 0", "ΣΑΣ/σας -> 0"});
    expectOrders(NSCaseInsensitiveSearch | NSLiteralSearch, {"Straße/STRASSE -> 1", "𐐀/𐐨 -> 0"});
    expectOrders(NSNumericSearch, {"file9/file10 -> -1", "v007b/v7b -> 0", "1.12/1.9 -> 1",
                                   "99999999999999999999998/99999999999999999999999 -> -1"});
    expectOrders(NSNumericSearch | NSCaseInsensitiveSearch, {"File12/fiLe012 -> 0"});
    expectOrders(NSNumericSearch | NSLiteralSearch, {"1a/1 -> 1"});
    // Of a range of the receiver with the whole other.
    auto compare = [](NSRange range) { return u"xabcx"_ns->compare_options_range(u"abc"_ns, 0, range) + 0; };
    EXPECT_EQ(shown(compare({1, 3}), compare({1, 2})), "0 -1");
}

TEST(NSStringCompareTest, EquivalentTextsAreTheSameUnlessLiteralAndLanguagesHaveOrdersOfTheirOwn) {
    expectOrders(
        0, {"caféx/cafe\u0301x -> 0", "\u212B/Å -> 0", "q\u0307\u0323/q\u0323\u0307 -> 0", "e\u0301/z -> 1"});
    expectOrders(NSCaseInsensitiveSearch, {"É/e\u0301 -> 0", "가/\u1100\u1161 -> 0", "ế/e\u0302\u0301 -> 0"});
    expectOrders(NSLiteralSearch, {"é/e\u0301 -> 1", "\u212B/Å -> 1"});
    EXPECT_EQ(u"É"_ns->caseInsensitiveCompare(u"e\u0301"_ns), NSOrderedSame);
    EXPECT_EQ(u"école"_ns->localizedCompare(u"zèbre"_ns), NSOrderedAscending);
    EXPECT_EQ(u"a"_ns->localizedCompare(u"B"_ns), NSOrderedAscending);
    EXPECT_NE(u"a"_ns->localizedCompare(u"A"_ns), NSOrderedSame);
    EXPECT_EQ(u"É"_ns->localizedCaseInsensitiveCompare(u"e\u0301"_ns), NSOrderedSame);
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

TEST(NSStringCompareTest, PrefixesAndSuffixes) {
    for (NSString* string : everyKindOfString(u"héllo")) {
        EXPECT_TRUE(string->hasPrefix(u"hé"_ns) && string->hasPrefix(string) && string->hasSuffix(u"llo"_ns));
        EXPECT_FALSE(string->hasPrefix(u"héllo!"_ns) || string->hasSuffix(u"Llo"_ns));
        EXPECT_FALSE(string->hasPrefix(u""_ns) || string->hasSuffix(u""_ns));
    }
}

}  // namespace
