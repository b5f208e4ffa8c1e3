// SPDX-License-Identifier: Apache-2.0
// Tests of character sets.
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSMutableCharacterSet.h"
#include "Platform/Foundation/Messages.h"
#include "Shared/Codepoints.h"

namespace {

TEST(NSCharacterSetTest, NamedSetsHaveTheirMembersAndNotTheirNeighbours) {
    const std::tuple<NSCharacterSet*, std::u32string_view, std::u32string_view> rows[] = {
        {NSCharacterSet::letterCharacterSet(), U"aZéß中\u0301ʰ𐐀", U"1 -_€😀"},
        {NSCharacterSet::decimalDigitCharacterSet(), U"09٣𝟘", U"a½Ⅳ²"},
        {NSCharacterSet::alphanumericCharacterSet(), U"a9Ⅳ½\u0301", U"-_ €"},
        {NSCharacterSet::whitespaceCharacterSet(), U" \t\u00A0\u3000", U"\n\r\u2028\u000Ba"},
        {NSCharacterSet::whitespaceAndNewlineCharacterSet(), U" \t\n\u000B\u000C\r\u0085\u2028\u2029\u00A0",
         U"\u0008\u000E\u0084\u200Ba"},
        {NSCharacterSet::uppercaseLetterCharacterSet(), U"AÀǅ𐐀", U"aß1\u24B6"},
        {NSCharacterSet::lowercaseLetterCharacterSet(), U"aß𐐨", U"Aǅʰ"},
        {NSCharacterSet::capitalizedLetterCharacterSet(), U"ǅᾈ", U"Aa"},
        {NSCharacterSet::punctuationCharacterSet(), U"!-_«»’", U"$+<a"},
        {NSCharacterSet::symbolCharacterSet(), U"$+<€😀", U"!a1"},
        {NSCharacterSet::controlCharacterSet(), std::u32string_view(U"\0\u001F\u007F\u200D", 4), U" a"},
        {NSCharacterSet::nonBaseCharacterSet(), U"\u0301\u0903", U"a"},
        {NSCharacterSet::decomposableCharacterSet(), U"éÅ가", U"eﬁ"},
        {NSCharacterSet::illegalCharacterSet(), U"\uFFFF\u0378\U0010FFFF", U"a\uFFFD\uE000"},
    };
    for (auto [set, members, others] : rows) {
        SCOPED_TRACE(shown(set));
        for (char32_t member : members) EXPECT_TRUE(set->longCharacterIsMember(member)) << +member;
        for (char32_t other : others) EXPECT_FALSE(set->longCharacterIsMember(other)) << +other;
    }
}

TEST(NSCharacterSetTest, NamedSetsAreMadeOnceOnAnyThread) {
    NSCharacterSet* seen[4];
    onThreads(4, [&](int number) { seen[number] = NSCharacterSet::symbolCharacterSet(); });
    for (NSCharacterSet* set : seen) EXPECT_EQ(set, seen[0]);
}

TEST(NSCharacterSetTest, RangesReachOverByteAndPlaneBounds) {
    for (NSRange range : {NSRange{0, 1}, NSRange{3, 2}, NSRange{7, 2}, NSRange{5, 40}, NSRange{8, 16},
                          NSRange{0xFFF0, 0x30}, NSRange{0xFFFF, 0x10002}, NSRange{0x10FFFF, 1}}) {
        NSCharacterSet* set = NSCharacterSet::characterSetWithRange(range);
        NSUInteger members = 0;
        for (char32_t c = 0; c <= 0x10FFFF; ++c) members += set->longCharacterIsMember(c);
        EXPECT_EQ(members, range.length);
        EXPECT_TRUE(set->longCharacterIsMember(range.location));
        EXPECT_TRUE(set->longCharacterIsMember(NSMaxRange(range) - 1));
    }
    EXPECT_THAT(shown(NSCharacterSet::characterSetWithRange({5, 0})), HasSubstr("(0 members)"));
}

TEST(NSCharacterSetTest, CharactersOfAStringArePairsAndLoneHalves) {
    NSCharacterSet* set =
        NSCharacterSet::characterSetWithCharactersInString(NSString::of(std::u16string(u"a😀\xD800")));
    EXPECT_TRUE(set->longCharacterIsMember(U'😀') && set->characterIsMember(0xD800));
    EXPECT_FALSE(set->characterIsMember(0xD83D));
    for (char32_t beyond : {0x110000u, 0xFFFFFFFFu}) EXPECT_FALSE(set->longCharacterIsMember(beyond));
    EXPECT_TRUE(set->hasMemberInPlane(1));
    EXPECT_FALSE(set->hasMemberInPlane(2) || set->hasMemberInPlane(17));
}

TEST(NSCharacterSetTest, SetsChangeAndLeaveTheirCopiesAlone) {
    auto set = NSCharacterSet::letterCharacterSet()->mutableCopy();
    auto before = set->copy();
    auto members = [](NSCharacterSet* each) {
        std::u16string found;
        for (char32_t c : std::u32string_view(U"aqz1é😀"))
            if (each->longCharacterIsMember(c)) appendCodepoint(found, c);
        return NSString::of(found)->toUTF8();
    };
    expectSteps(set.get(),
                {"removeCharactersInRange: 97,26 -> é", "addCharactersInString: '1😀 -> 1é😀",
                 "removeCharactersInString: '1é -> 😀", "addCharactersInRange: 97,17 -> aq😀", "invert -> z1é",
                 "invert -> aq😀"},
                members);
    EXPECT_EQ(members(set->invertedSet()) + members(before), "z1éaqzé");
    EXPECT_TRUE(set->invertedSet()->longCharacterIsMember(0x10FFFF) && !set->longCharacterIsMember(0x10FFFF));
    EXPECT_TRUE(before->isEqual(NSCharacterSet::letterCharacterSet()) &&
                set->invertedSet()->invertedSet()->isEqual(set));
    set->formUnionWithCharacterSet(NSCharacterSet::characterSetWithCharactersInString(u"1"_ns));
    EXPECT_EQ(members(set), "aq1😀");
    set->formIntersectionWithCharacterSet(NSCharacterSet::alphanumericCharacterSet());
    EXPECT_EQ(members(set), "aq1");
    EXPECT_TRUE(NSCharacterSet::alphanumericCharacterSet()->isSupersetOfSet(set));
    EXPECT_FALSE(set->isSupersetOfSet(NSCharacterSet::alphanumericCharacterSet()));
    EXPECT_TRUE(set->copy()->isEqual(set.get()) && set->copy()->hash() == set->hash());
}

TEST(NSCharacterSetTest, BitmapsHoldTheMembersBitByBitAndHigherPlanesFollow) {
    NSCharacterSet* set = NSCharacterSet::characterSetWithCharactersInString(u"\u0000\u0007\u0008\uFFFF"_ns);
    NSData* data = set->bitmapRepresentation();
    ASSERT_EQ(data->length(), 8192u);
    for (auto [at, bits] : {std::pair{0u, 0x81}, {1u, 0x01}, {8191u, 0x80}})
        EXPECT_EQ(data->span()[at], std::byte(bits));
    EXPECT_EQ(std::memcmp(data->bytes(), set->basicPlaneBitmap(), 8192), 0);
    EXPECT_TRUE(NSCharacterSet::characterSetWithBitmapRepresentation(data)->isEqual(set));
    for (NSCharacterSet* each : {NSCharacterSet::letterCharacterSet(), NSCharacterSet::characterSet(),
                                 NSCharacterSet::symbolCharacterSet()->invertedSet()}) {
        data = each->bitmapRepresentation();
        EXPECT_EQ(data->length() % 8193, 8192u);
        EXPECT_TRUE(NSCharacterSet::characterSetWithBitmapRepresentation(data)->isEqual(each));
        EXPECT_TRUE(NSMutableCharacterSet::characterSetWithBitmapRepresentation(data)->isEqual(each));
    }
    const std::vector<std::byte> shortOne(1, std::byte{2}), badPlane(8192 + 1 + 8192, std::byte{0xFF});
    set = NSCharacterSet::characterSetWithBitmapRepresentation(NSData::of(shortOne));
    EXPECT_TRUE(set->characterIsMember(1) && !set->characterIsMember(0) && !set->characterIsMember(9));
    set = NSCharacterSet::characterSetWithBitmapRepresentation(NSData::of(badPlane));
    EXPECT_FALSE(set->hasMemberInPlane(1));
}

}  // namespace
