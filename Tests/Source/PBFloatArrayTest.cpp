// SPDX-License-Identifier: Apache-2.0
// Tests of arrays of floats.
#include "PBFloatArray.h"

#include "PBFloatVector.h"
#include "Prelude.h"

namespace {

constexpr float kFive[] = {1, 2, 3, 4, 5};

TEST(PBFloatArray, ReplacesBoxesAndSumsUpToTheEndOfARange) {
    auto array = PBFloatArray::initWithFloats_count(kFive, 5);
    EXPECT_EQ(array->sumFloatsInRange({2, 2}), 10.0f);
    EXPECT_EQ(array->sumFloatsInRange({9, 0}), 0.0f);
    array->replaceObjectAtIndex_withObject(1, NSNumber::numberWithDouble(2.5));
    EXPECT_EQ(array->objectAtIndex(1)->floatValue(), 2.5f);
    for (NSRange range : {NSRange{9, 0}, {3, 2}}) array->replaceFloatsInRange_withFloatsFrom(range, kFive);
    EXPECT_EQ(array->sumFloatsInRange({4, 1}), 1 + 2.5f + 3 + 1 + 2);
    auto zeros = PBFloatArray::initWithCapacity(3), one = PBFloatArray::initWithFloats_count(kFive, 1);
    EXPECT_TRUE(zeros->count() == 3 && zeros->floatAtIndex(2) == 0);
    EXPECT_EQ(one->description()->toUTF8(), "PBFloatArray <" + addressOf(one) + "> \n   1.000000, \n");
}

TEST(PBFloatArray, RaisesForWhatIsOutside) {
    auto array = PBFloatArray::initWithFloats_count(kFive, 5);
    auto raised = [](const char* index) {
        return std::string("NSRangeException: float array index out of bounds (idx=") + index + " length=5)";
    };
    EXPECT_EQ(RAISED(array->floatAtIndex(5)), raised("5"));
    EXPECT_EQ(RAISED(array->replaceFloatsInRange_withFloatsFrom({4, 3}, kFive)), raised("6"));
    EXPECT_EQ(RAISED(array->sumFloatsInRange({0xFFFFFFFF, 4})), raised("2"));
    EXPECT_EQ(array->sumFloatsInRange({0, 5}), 15.0f);
}

// The fuzz target SortedArray compares insertions and removals with a plain vector.
TEST(PBFloatVector, GrowsAndIsEmptied) {
    auto vector = PBFloatVector::initWithCapacity(2);
    for (float value : kFive) vector->addFloat(value);
    EXPECT_EQ(shown(vector->count(), vector->floatAtIndex(4)), "5 5");
    EXPECT_THROW(vector->insertFloat_atIndex(1, 6), NSException);
    vector->removeAllFloats();
    EXPECT_EQ(vector->count(), 0u);
    EXPECT_EQ(RAISED(PBFloatVector::initWithCapacity(0)->addFloat(1)),
              "NSRangeException: insertFloat:atIndex: a vector of capacity 0 cannot grow");
}

}  // namespace
