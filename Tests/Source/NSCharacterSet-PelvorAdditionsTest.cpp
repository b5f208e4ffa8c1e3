// SPDX-License-Identifier: Apache-2.0
#include "NSCharacterSet-PelvorAdditions.h"

#include "Prelude.h"

namespace pelvor {
namespace {

using Additions = NSCharacterSet_PelvorAdditions;

NSUInteger countOf(NSCharacterSet* set) {
    NSUInteger count = 0;
    for (char32_t c = 0; c <= 0x10FFFF; ++c) count += set->longCharacterIsMember(c);
    return count;
}

TEST(NamedCharacterSets, HoldExactlyTheirMembers) {
    NSUInteger whitespace = countOf(NSCharacterSet::whitespaceAndNewlineCharacterSet());
    struct {
        NSCharacterSet* set;
        std::u16string_view members, others;
        NSUInteger count;
    } const cases[] = {
        {Additions::hexCodeCharacterSet(), u"09afAF", u"gG/:@`", 22},
        {Additions::illegalFilenameCharacterSet(), u":/", u"\\", 2},
        {Additions::newlineCharacterSet(), u"\n\v\f\r\x85", u"\t\x2028\x2029", 5},
        {Additions::paragraphBreakCharacterSet(), u"\n\f\r\x85\x2029", u"\v\x2028", 5},
        {Additions::lineBreakCharacterSet(), u"\n\f\r\x85\x2028\x2029", u"\v", 6},
        {Additions::allWhitespaceCharacterSet(), u"\t\n\v\f\r \x85\xA0\x2028\x2029\x3000", u"\x200B",
         whitespace},
        {Additions::directionalityCharacterSet(), u"\x200E\x200F\x202A\x202E", u"\x2029\x202F", 7},
        {Additions::gremlinCharacterSet(), u"\b\v\x0E\x1F\x82\x83\x86\x9F\xE000\xF6FF",
         u"\t\n\f\r \x80\x81\x84\x85\xA0\xF700\xFFFF", 9 + 1 + 18 + 2 + 26 + 0x1700},
        {Additions::nonPrintingCharacterSet(), u"\b\t \xA0\x3000\x200E\x200F\xE000",
         u"\x202A\x80"
         u"a",
         9 + 1 + 18 + 2 + 26 + 0x1700 + whitespace - 1 + 2},
    };
    for (const auto& entry : cases) {
        for (unichar c : entry.members) EXPECT_TRUE(entry.set->characterIsMember(c)) << std::hex << int(c);
        for (unichar c : entry.others) EXPECT_FALSE(entry.set->characterIsMember(c)) << std::hex << int(c);
        EXPECT_EQ(countOf(entry.set), entry.count);
    }
}

TEST(NamedCharacterSets, AreMadeOnceButForOne) {
    EXPECT_EQ(Additions::lineBreakCharacterSet(), _PBLineBreakCharacterSet);
    EXPECT_NE(Additions::illegalFilenameCharacterSet(), Additions::illegalFilenameCharacterSet());
    EXPECT_EQ(send<id>(NSCharacterSet::classObject(), "hexCodeCharacterSet"_sel),
              Additions::hexCodeCharacterSet());
}

TEST(NamedCharacterSets, AreCopiedImmutably) {
    auto set = NSMutableCharacterSet::init();
    set->addCharactersInRange({0x1F600, 3});
    auto copy = immutableCopy(set);
    set->addCharactersInString(u"a"_ns);
    EXPECT_EQ(cast<NSMutableCharacterSet>(copy.get()), nullptr);
    EXPECT_TRUE(copy->longCharacterIsMember(0x1F602));
    EXPECT_FALSE(copy->characterIsMember(u'a'));
    EXPECT_EQ(copy->retainCount(), 1u);
}

}  // namespace
}  // namespace pelvor
