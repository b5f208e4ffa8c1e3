// SPDX-License-Identifier: Apache-2.0
// Tests of arrays of floats.
#include "PBFloatArray.h"

#include <gtest/gtest.h>

#include <functional>

#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"

namespace pelvor {
namespace {

constexpr float kFive[] = {1, 2, 3, 4, 5};

std::string reasonOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const NSException& exception) {
        return exception.name() + ": " + exception.reason();
    }
    return "";
}

TEST(PBFloatArray, ReplacesBoxesAndSumsUpToTheEndOfARange) {
    AutoreleasePool pool;
    auto array = PBFloatArray::initWithFloats_count(kFive, 5);
    EXPECT_EQ(array->sumFloatsInRange({2, 2}), 10.0f);
    EXPECT_EQ(array->sumFloatsInRange({9, 0}), 0.0f);
    array->replaceObjectAtIndex_withObject(1, NSNumber::numberWithDouble(2.5));
    EXPECT_EQ(array->objectAtIndex(1)->floatValue(), 2.5f);
    array->replaceFloatsInRange_withFloatsFrom({3, 2}, kFive);
    EXPECT_EQ(array->sumFloatsInRange({4, 1}), 1 + 2.5f + 3 + 1 + 2);
    EXPECT_EQ(PBFloatArray::initWithCapacity(3)->count(), 3u);
    EXPECT_EQ(PBFloatArray::initWithCapacity(3)->floatAtIndex(2), 0.0f);
    auto one = PBFloatArray::initWithFloats_count(kFive, 1);
    EXPECT_EQ(
        one->description()->toUTF8(),
        NSString::stringWithFormat(u"PBFloatArray <%p> \n   1.000000, \n"_ns, static_cast<void*>(one.get()))
            ->toUTF8());
}

TEST(PBFloatArray, RaisesForWhatIsOutside) {
    auto array = PBFloatArray::initWithFloats_count(kFive, 5);
    const std::string outside = "NSRangeException: float array index out of bounds (idx=";
    EXPECT_EQ(reasonOf([&] { array->floatAtIndex(5); }), outside + "5 length=5)");
    EXPECT_EQ(reasonOf([&] {
                  array->replaceFloatsInRange_withFloatsFrom({4, 3}, kFive);
              }),
              outside + "6 length=5)");
    EXPECT_EQ(reasonOf([&] { array->sumFloatsInRange({0xFFFFFFFF, 4}); }), outside + "2 length=5)");
    EXPECT_EQ(array->sumFloatsInRange({0, 5}), 15.0f);
}

TEST(PBFloatVector, GrowsInsertsAndRemoves) {
    auto vector = PBFloatVector::initWithCapacity(2);
    EXPECT_EQ(vector->count(), 0u);
    for (float value : kFive) vector->addFloat(value);
    vector->insertFloat_atIndex(9, 0);
    vector->removeFloatAtIndex(1);
    ASSERT_EQ(vector->count(), 5u);
    EXPECT_EQ(vector->floatAtIndex(0), 9.0f);
    EXPECT_EQ(vector->sumFloatsInRange({0, 5}), 9 + 2 + 3 + 4 + 5);
    EXPECT_THROW(vector->insertFloat_atIndex(1, 6), NSException);
    EXPECT_THROW(vector->removeFloatAtIndex(5), NSException);
    vector->removeAllFloats();
    EXPECT_EQ(vector->count(), 0u);
    EXPECT_THROW(PBFloatVector::initWithCapacity(0)->addFloat(1), NSException);
}

}  // namespace
}  // namespace pelvor
