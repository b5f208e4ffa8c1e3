// SPDX-License-Identifier: Apache-2.0
// Tests of index sets against a set of bits, and at the last indexes.
#include "Foundation/NSIndexSet.h"

#include <bitset>

#include "Foundation/NSMutableIndexSet.h"
#include "Prelude.h"

namespace {

constexpr NSUInteger kSize = 90;
using Bits = std::bitset<kSize>;

Bits bitsOf(NSIndexSet* set) {
    Bits bits;
    for (NSUInteger i = set->firstIndex(); i != NSNotFound; i = set->indexGreaterThanIndex(i)) bits.set(i);
    return bits;
}

bool areRunsApart(NSIndexSet* set) {
    auto runs = set->runs();
    for (std::size_t i = 0; i < runs.size(); ++i)
        if (!runs[i].length || (i && NSMaxRange(runs[i - 1]) >= runs[i].location)) return false;
    return true;
}

void expectQueriesAgree(NSIndexSet* set, const Bits& bits, NSRange range) {
    Bits asked;
    for (NSUInteger i = 0; i < range.length; ++i) asked.set(range.location + i);
    EXPECT_EQ(set->containsIndexesInRange(range), range.length && (bits & asked) == asked);
    EXPECT_EQ(set->intersectsIndexesInRange(range), (bits & asked).any());
    EXPECT_EQ(set->containsIndex(range.location), bits[range.location]);
    NSUInteger below = NSNotFound;
    for (NSUInteger i = 0; i <= range.location; ++i)
        if (bits[i]) below = i;
    EXPECT_EQ(set->indexLessThanOrEqualToIndex(range.location), below);
}

TEST(NSIndexSet, IsChangedAndAskedAsASetOfBits) {
    std::mt19937 random(5);
    auto set = NSMutableIndexSet::init();
    Bits bits;
    for (int step = 0; step < 5000; ++step) {
        NSRange range = NSMakeRange(random() % 80, random() % 10);
        bool adds = random() % 2;
        for (NSUInteger i = 0; i < range.length; ++i) bits.set(range.location + i, adds);
        adds ? set->addIndexesInRange(range) : set->removeIndexesInRange(range);
        ASSERT_EQ(bitsOf(set), bits);
        ASSERT_EQ(set->count(), bits.count());
        ASSERT_TRUE(areRunsApart(set));
        expectQueriesAgree(set, bits, NSMakeRange(random() % 80, range.length));
    }
}

TEST(NSIndexSet, ReachesToTheLastIndex) {
    auto set = NSMutableIndexSet::init();
    set->addIndexesInRange({0, NSNotFound});
    EXPECT_TRUE(set->count() == NSNotFound && set->lastIndex() == NSNotFound - 1);
    EXPECT_EQ(set->indexGreaterThanIndex(NSNotFound - 1), NSNotFound);
    EXPECT_FALSE(set->containsIndexesInRange({NSNotFound - 1, 0xFFFFFFFF}));
    EXPECT_EQ(set->indexLessThanIndex(0xFFFFFFFF), NSNotFound - 1);
    EXPECT_EQ(set->indexLessThanIndex(0), NSNotFound);
    EXPECT_THROW(set->addIndexesInRange({5, 0xFFFFFFFE}), NSException);
    set->removeIndexesInRange({1, 0xFFFFFFFF});
    EXPECT_EQ(set->count(), 1u);
}

TEST(NSIndexSet, IsCopiedComparedAndDescribed) {
    auto set = NSMutableIndexSet::init();
    set->addIndexes(NSIndexSet::indexSetWithIndexesInRange({2, 4}));
    set->addIndex(7);
    Retained<NSIndexSet> copy = set->copy();
    EXPECT_EQ(copy->copy(), copy);
    EXPECT_TRUE(copy->isEqual(set) && copy->hash() == set->hash());
    EXPECT_TRUE(copy->containsIndexes(NSIndexSet::indexSetWithIndex(7)));
    EXPECT_FALSE(NSIndexSet::indexSetWithIndex(7)->containsIndexes(copy));
    EXPECT_THAT(shown(copy), EndsWith(">(2-5 7)"));
    set->removeIndexes(copy->mutableCopy().get());
    EXPECT_EQ(set->firstIndex(), NSNotFound);
    EXPECT_FALSE(copy->isEqual(set));
    set->addIndexes(copy);
    set->addIndex(9);
    set->removeIndexes(set);
    EXPECT_EQ(set->count(), 0u);
}

}  // namespace
