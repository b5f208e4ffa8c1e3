// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFCharacterSet.h"

#include <bitset>

#include "Foundation/NSCharacterSet.h"
#include "PBUnichar32String.h"
#include "Prelude.h"
#include "Scanning/NSObject-OFDebugging.h"
#include "Source/TextInPieces.h"

namespace {

using Bits = std::bitset<0x10000>;

Bits membersOf(OFCharacterSet* set) {
    Bits bits;
    for (unsigned unit = 0; unit < bits.size(); ++unit)
        bits[unit] = set->characterIsMember(static_cast<unichar>(unit));
    return bits;
}

TEST(OFCharacterSet, FollowsAPlainModel) {
    std::mt19937 random(7);
    auto set = OFCharacterSet::init();
    Bits model;
    EXPECT_EQ(membersOf(set), model);
    for (int round = 0; round < 300; ++round) {
        auto location = static_cast<NSUInteger>(random() % 0x30000);
        auto length = static_cast<NSUInteger>(round % 10 == 0 ? random() : random() % 40);
        NSRange range{location, length};
        bool isAdding = random() % 2;
        isAdding ? set->addCharactersInRange(range) : set->removeCharactersInRange(range);
        for (unsigned i = 0; i < std::min(range.length, 0x10000u); ++i)
            model[(range.location + i) & 0xFFFF] = isAdding;
        if (round % 25 == 0) {
            set->invert();
            model.flip();
        }
        if (round % 20 == 0 || round == 299) {
            ASSERT_EQ(membersOf(set), model) << round;
        }
    }
}

TEST(OFCharacterSet, HoldsTheUnitsOfStringsAndOtherSets) {
    auto set = OFCharacterSet::initWithString(inPieces(u"a\U0001F600"));
    for (unichar unit : {u'a', u'\xD83D', u'\xDE00'}) EXPECT_TRUE(set->characterIsMember(unit));
    EXPECT_EQ(set->characterIsMember(u'a'), 1u << (u'a' & 7)) << "the bit where it stands";
    set->addCharactersFromCharacterSet(NSCharacterSet::characterSetWithRange({0x10061, 2}));
    EXPECT_EQ(membersOf(set).count(), 3u) << "members above U+FFFF are ignored";
    set->removeCharactersInString(inPieces(u"\U0001F600"));
    set->addCharactersFromCharacterSet(NSCharacterSet::decimalDigitCharacterSet());
    auto other = OFCharacterSet::initWithCharacterSet(NSCharacterSet::decimalDigitCharacterSet());
    other->removeCharacter(u'7');
    set->removeCharactersFromOFCharacterSet(other);
    EXPECT_EQ(membersOf(set), membersOf(OFCharacterSet::characterSetWithString(u"a7"_ns)));
}

TEST(OFCharacterSet, ReadsStringsThatAreNotInOnePiece) {
    auto text = PBUnichar32String::initWithString(NSString::of(std::u16string(100, u'x') + u"yz"));
    auto set = OFCharacterSet::initWithString(text);
    EXPECT_EQ(membersOf(set), membersOf(OFCharacterSet::characterSetWithString(u"xyz"_ns)));
    set->removeCharactersInString(text);
    EXPECT_TRUE(membersOf(set).none());
}

TEST(OFCharacterSet, IsCopiedInItsOwnClassAndChangesAlone) {
    Class* cls = Class::createSubclass("SpecialCharacterSet", OFCharacterSet::classObject());
    auto set = OFCharacterSet::initWithString(u"abc"_ns, cls);
    auto copy = set->copy();
    EXPECT_EQ(copy->isa(), cls);
    set->removeAllCharacters();
    EXPECT_EQ(membersOf(copy).count(), 3u);
    EXPECT_EQ(OFCharacterSet::whitespaceOFCharacterSet(), OFCharacterSet::whitespaceOFCharacterSet());
    EXPECT_EQ(membersOf(OFCharacterSet::whitespaceOFCharacterSet()).count(), 4u);
}

TEST(OFCharacterSet, ListsItsMembersAsRuns) {
    auto listing = [](OFCharacterSet* set) {
        auto* dictionary = cast<NSDictionary>(send<id>(set, "debugDictionary"_sel));
        EXPECT_TRUE(dictionary->objectForKey(u"__self__"_ns));
        return cast<NSString>(dictionary->objectForKey(u"ranges"_ns))->toUTF16();
    };
    auto set = OFCharacterSet::initWithString(u"cabx"_ns);
    EXPECT_EQ(listing(set), u"'a' - 'c', 'x'");
    set->removeAllCharacters();
    EXPECT_EQ(listing(set), u"");
    set->addCharactersInRange({0xFFFF, 2});
    EXPECT_EQ(listing(set), std::u16string_view(u"'\0', '\xFFFF'", 8));
}

}  // namespace
