// SPDX-License-Identifier: Apache-2.0
#include "NSCharacterSet-PelvorAdditions.h"

#include "Foundation/NSMutableCharacterSet.h"
#include "Prelude.h"

namespace {

using Additions = NSCharacterSet_PelvorAdditions;

NSUInteger countOf(NSCharacterSet* set) {
    NSUInteger count = 0;
    for (char32_t c = 0; c <= 0x10FFFF; ++c) count += set->longCharacterIsMember(c);
    return count;
}

TEST(NamedCharacterSets, HoldExactlyTheirMembers) {
    auto expectMembers = [](NSCharacterSet* set, std::u16string_view members, std::u16string_view others,
                            NSUInteger count) {
        for (unichar c : members) EXPECT_TRUE(set->characterIsMember(c)) << std::hex << int(c);
        for (unichar c : others) EXPECT_FALSE(set->characterIsMember(c)) << std::hex << int(c);
        EXPECT_EQ(countOf(set), count);
    };
    const NSUInteger whitespace = countOf(NSCharacterSet::whitespaceAndNewlineCharacterSet());
    const NSUInteger gremlins = 9 + 1 + 18 + 2 + 26 + 0x1700;
    expectMembers(Additions::hexCodeCharacterSet(), u"09afAF", u"gG/:@`", 22);
    expectMembers(Additions::illegalFilenameCharacterSet(), u":/", u"\\", 2);
    expectMembers(Additions::newlineCharacterSet(), u"\n\v\f\r\x85", u"\t\x2028\x2029", 5);
    expectMembers(Additions::paragraphBreakCharacterSet(), u"\n\f\r\x85\x2029", u"\v\x2028", 5);
    expectMembers(Additions::lineBreakCharacterSet(), u"\n\f\r\x85\x2028\x2029", u"\v", 6);
    expectMembers(Additions::allWhitespaceCharacterSet(), u"\t\n\v\f\r \x85\xA0\x2028\x2029\x3000", u"\x200B",
                  whitespace);
    expectMembers(Additions::directionalityCharacterSet(), u"\x200E\x200F\x202A\x202E", u"\x2029\x202F", 7);
    expectMembers(Additions::gremlinCharacterSet(), u"\b\v\x0E\x1F\x82\x83\x86\x9F\xE000\xF6FF",
                  u"\t\n\f\r \x80\x81\x84\x85\xA0\xF700\xFFFF", gremlins);
    expectMembers(Additions::nonPrintingCharacterSet(), u"\b\t \xA0\x3000\x200E\x200F\xE000", u"a\x202A\x80",
                  gremlins + whitespace - 1 + 2);
}

TEST(NamedCharacterSets, AreMadeOnceButForOne) {
    EXPECT_EQ(Additions::lineBreakCharacterSet(), _PBLineBreakCharacterSet);
    EXPECT_NE(Additions::illegalFilenameCharacterSet(), Additions::illegalFilenameCharacterSet());
}

TEST(NamedCharacterSets, AreCopiedImmutably) {
    auto set = NSMutableCharacterSet::init();
    set->addCharactersInRange({0x1F600, 3});
    auto copy = immutableCopy(set);
    set->addCharactersInString(u"a"_ns);
    EXPECT_EQ(cast<NSMutableCharacterSet>(copy.get()), nullptr);
    EXPECT_TRUE(copy->longCharacterIsMember(0x1F602) && !copy->characterIsMember(u'a'));
    EXPECT_EQ(copy->retainCount(), 1u);
}

}  // namespace
