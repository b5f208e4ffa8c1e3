// SPDX-License-Identifier: Apache-2.0
// Tests of searching strings.
#include <set>

#include "Foundation/NSCharacterSet.h"
#include "Platform/Foundation/OwnCollections.h"

namespace {

constexpr NSRange kNothing{NSNotFound, 0};
constexpr NSStringCompareOptions kFold = NSCaseInsensitiveSearch, kLiteral = NSLiteralSearch,
                                 kBack = NSBackwardsSearch, kAnchor = NSAnchoredSearch;

/// "location length", or "none".
std::string told(NSRange range) { return range == kNothing ? "none" : shown(range.location, range.length); }

/// What is found by these options in strings of every kind, in rows "text/what is looked for -> range".
void expectFound(NSStringCompareOptions options, std::initializer_list<std::string_view> rows) {
    expectAll(rows, [=](const std::string& row) {
        auto [text, target] = halves(row);
        NSRange found = text->rangeOfString_options(target, options);
        for (NSString* string : everyKindOfString(text->toUTF16()))
            EXPECT_EQ(string->rangeOfString_options(target, options), found) << row << " " << string->isa();
        return told(found);
    });
}

TEST(NSStringSearchTest, FindsByTheOptions) {
    expectFound(0,
                {"abcabc/bc -> 1 2", "abcabc/x -> none", "abc/abcd -> none", "abc/ -> none", "/a -> none"});
    expectFound(kBack, {"abcabc/bc -> 4 2"});
    expectFound(kAnchor, {"abcabc/abc -> 0 3", "abcabc/bc -> none"});
    expectFound(kAnchor | kBack, {"abcabc/bc -> 4 2", "abcabc/ab -> none"});
    expectFound(kFold, {"aBcABC/abc -> 0 3", "x𐐀𐐨/𐐨 -> 1 2", "die STRASSE/straße -> 4 7",
                        "die Straße/STRASSE -> 4 6"});
    expectFound(kFold | kBack, {"aBcABC/abc -> 3 3"});
    expectFound(kFold | kLiteral, {"ÉTÉ/été -> 0 3", "Straße/strasse -> none"});
    expectFound(kFold | kBack | kLiteral, {"x𐐀𐐨/𐐀 -> 3 2"});
}

TEST(NSStringSearchTest, EquivalentSpellingsAreFoundAndMatchesAreWholeComposedCharacters) {
    expectFound(
        0, {"un cafe\u0301 noir/café -> 3 5", "un café noir/cafe\u0301 -> 3 4", "cafe\u0301 cafe/cafe -> 6 4",
            "e\u0301/\u0301 -> none", "q\u0307\u0323!/q\u0323\u0307 -> 0 3", "x\u1100\u1161/가 -> 1 2",
            "\u1100\u1161/\u1100 -> none",
            "👩\u200D👩 👩/👩 -> 6 2",     // not the person of a family
            "👍🏽/👍 -> none",   // a hand without its colour
            "🇫🇷🇩🇪/🇷🇩 -> none",         // a flag of two other flags' halves
            "🇫🇷🇩🇪/🇩🇪 -> 4 4",          //
            "कि क/क -> 3 1",           // not the consonant without its vowel
            "किताब/ताब -> 2 3",        //
            "\n\u0301/\u0301 -> 1 1",  // a mark that nothing stands before
            "a\r\nb/\n -> 2 1", "a\r\nb/\r\n -> 1 2", "کتاب\u200Cها/کتاب -> 0 4",
            "کتاب\u200Cها/\u200Cها -> 4 3", "کتاب\u200Cها/ها -> 5 2"});
    expectFound(kFold, {"un cafe\u0301 noir/CAFÉ -> 3 5", "20 \u212A/k -> 3 1", "कि K\u0323 k/K -> 6 1"});
    expectFound(kLiteral, {"un cafe\u0301 noir/café -> none", "cafe\u0301 cafe/cafe -> 0 4",
                           "e\u0301/\u0301 -> 1 1", "👩\u200D👩/👩 -> 0 2", "🇫🇷🇩🇪/🇷🇩 -> 2 4"});
    expectFound(kBack, {"cafe cafe\u0301/cafe -> 0 4", "👩 👩\u200D👩/👩 -> 0 2", "क कि/क -> 0 1"});
    expectFound(kAnchor, {"é/e\u0301 -> 0 1", "e\u0301x/e -> none", "कि/क -> none"});
    expectFound(kAnchor | kBack, {"xe\u0301/é -> 1 2", "👩\u200D👩/👩 -> none"});
}

TEST(NSStringSearchTest, OnlyTheRangeIsSearched) {
    auto search = [&](NSStringCompareOptions options, NSUInteger location, NSUInteger length) {
        return told(u"abcabcabc"_ns->rangeOfString_options_range(u"abc"_ns, options, {location, length}));
    };
    EXPECT_EQ(joined({search(0, 1, 7), search(kBack, 0, 8), search(kAnchor, 3, 3), search(0, 9, 0)}),
              "3 3, 3 3, 3 3, none");
}

// Long enough for whole vectors, with few letters so that much almost matches.
TEST(NSStringSearchTest, AgreesWithTheObviousSearch) {
    std::mt19937 random(7);
    auto letters = [&](std::size_t count) {
        std::u16string text(count, u'a');
        for (char16_t& unit : text) unit = static_cast<char16_t>(u'a' + random() % 3);
        return text;
    };
    for (int round = 0; round < 3000; ++round) {
        const std::u16string text = letters(random() % 120), target = letters(1 + random() % 6);
        auto range = [&](std::size_t place) {
            return place == text.npos ? "none" : shown(place, target.size());
        };
        NSString *string = NSString::of(text), *wanted = NSString::of(target);
        const std::string first = range(text.find(target)), last = range(text.rfind(target));
        for (auto [options, expected] : {std::pair(0u, first), {kBack, last}, {kFold, first}})
            ASSERT_EQ(told(string->rangeOfString_options(wanted, options)), expected)
                << string << " " << wanted;
    }
}

// Random text of letters, marks, syllables and their parts that join in many ways.
std::u16string troublesomeText(std::mt19937& random, std::size_t longest) {
    const std::u16string_view pieces[] = {u"e",      u"é",      u"\u0301", u"\u0323", u"ẹ",  u"K",
                                          u"\u212A", u"k",      u"ß",      u"s",      u"가", u"\u1100",
                                          u"\u1161", u"\u11A8", u"𝅗𝅥",     u"😀",      u"\n", u"\r",
                                          u"\u200D", u"\u200C", u"कि",     u"क"};
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

// The first range, in the order of its start and then of its end, that is the target in some spelling and
// does not part a composed character.
NSRange obviousRange(NSString* text, NSString* target) {
    NSUInteger count = text->length();
    auto parts = [&](NSUInteger place) {
        if (place == 0 || place == count) return false;
        unichar before = text->characterAtIndex(place - 1), after = text->characterAtIndex(place);
        if (after == 0x200C || (before == u'\r' && after == u'\n')) return false;
        return text->rangeOfComposedCharacterSequenceAtIndex(place).location != place;
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
        if (target->length() == 0) continue;
        NSRange expected = obviousRange(text, target), range = text->rangeOfString(target);
        ASSERT_EQ(range, expected) << text << " " << target;
        found += range.location != NSNotFound;
    }
    EXPECT_GT(found, 200);
}

TEST(NSStringSearchTest, TextThatAlmostMatchesEverywhereTakesNoLongerAndTheNearestMatchCounts) {
    std::u16string text(200000, u'a'), target(5000, u'a');
    target[2500] = u'b';
    NSString* wanted = NSString::of(target);
    for (NSRange expected : {kNothing, NSRange{100000, 5000}}) {
        if (expected.length) text.replace(100000, target.size(), target);
        for (NSStringCompareOptions options : {0u, unsigned(kBack)})
            EXPECT_EQ(NSString::of(text)->rangeOfString_options(wanted, options), expected);
    }
    NSString* marked = NSString::of(u"e" + std::u16string(200000, u'\u0301'));
    for (NSStringCompareOptions options : {0u, unsigned(kBack)})
        EXPECT_EQ(marked->rangeOfString_options(u"é"_ns, options), kNothing);
    const std::u16string between(20000, u'x'), parted = u"e\u0301", whole = u"é";
    for (bool isPartedFirst : {true, false}) {
        NSString* mixed = NSString::of(isPartedFirst ? parted + between + whole : whole + between + parted);
        EXPECT_EQ(told(mixed->rangeOfString(u"é"_ns)), isPartedFirst ? "0 2" : "0 1");
        EXPECT_EQ(told(mixed->rangeOfString_options(u"é"_ns, kBack)), isPartedFirst ? "20002 1" : "20001 2");
    }
}

TEST(NSStringSearchTest, MembersOfASet) {
    NSCharacterSet* vowels = NSCharacterSet::characterSetWithCharactersInString(u"ae😀"_ns);
    auto expectMembers = [=](NSStringCompareOptions options, std::initializer_list<std::string_view> rows) {
        expectAll(rows, [=](const std::string& text) {
            return told(NSString::ofUTF8(text)->rangeOfCharacterFromSet_options(vowels, options));
        });
    };
    expectMembers(0, {"xyabe -> 2 1", "xyz -> none", "z😀😁 -> 1 2", "xA -> none"});
    expectMembers(kBack, {"xyabe -> 4 1", " -> none", "😀😁z -> 0 2"});
    expectMembers(kFold, {"xA -> 1 1"});
    expectMembers(kAnchor, {"xa -> none", "ax -> 0 1"});
    expectMembers(kAnchor | kBack, {"xa -> 1 1", "ax -> none"});
    EXPECT_EQ(NSString::of(u"\xDE00")->rangeOfCharacterFromSet(vowels), kNothing);
    EXPECT_EQ(u"aba"_ns->rangeOfCharacterFromSet_options_range(vowels, 0, {1, 2}), NSMakeRange(2, 1));
}

TEST(NSStringSearchTest, ComposedCharactersAroundAnIndex) {
    expectAll(
        {"abc@1 -> 1 1", "ae\u0301b@1 -> 1 2", "ae\u0301b@2 -> 1 2", "ae\u0301b@3 -> 3 1", "x😀y@1 -> 1 2",
         "x😀y@2 -> 1 2", "👩\u200D👩\u200D👧!@4 -> 0 8", "🇩🇪🇫🇷@5 -> 4 4", "\u1100\u1161\u11A8x@2 -> 0 3",
         "नि@1 -> 0 2", "a\u0301\u0302\u0303@0 -> 0 4", "\r\n@1 -> 0 2", "中文\u3099@1 -> 1 2"},
        [](const std::string& row) {
            auto [text, index] = halves(row, "@");
            std::set<std::string> ranges;
            for (NSString* string : everyKindOfString(text->toUTF16()))
                ranges.insert(told(string->rangeOfComposedCharacterSequenceAtIndex(
                    static_cast<NSUInteger>(index->intValue()))));
            return joined({ranges.begin(), ranges.end()});
        });
    EXPECT_EQ(told(NSString::of(u"a\xDE00")->rangeOfComposedCharacterSequenceAtIndex(1)), "1 1");
}

}  // namespace
