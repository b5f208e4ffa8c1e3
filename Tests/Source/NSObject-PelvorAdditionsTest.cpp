// SPDX-License-Identifier: Apache-2.0
#include "NSObject-PelvorAdditions.h"

#include <gtest/gtest.h>

#include "Runtime/Message.h"

namespace pelvor {
namespace {

TEST(PBUniqueObject, EqualsOnlyItself) {
    auto one = make<PBUniqueObject>();
    auto other = make<PBUniqueObject>();

    EXPECT_TRUE(send<bool>(one, "isEqual:"_sel, one.get()));
    EXPECT_FALSE(send<bool>(one, "isEqual:"_sel, other.get()));
    EXPECT_EQ(one->hash(), reinterpret_cast<std::uintptr_t>(one.get()));
}

TEST(PBUniqueObject, IsItsOwnCopy) {
    auto object = make<PBUniqueObject>();
    {
        Retained<Object> copy = object->copy();
        Retained<Object> mutableCopy = object->mutableCopy();

        EXPECT_EQ(copy.get(), object.get());
        EXPECT_EQ(mutableCopy.get(), object.get());
        EXPECT_EQ(object->retainCount(), 3u);
    }
    EXPECT_EQ(object->retainCount(), 1u);
}

}  // namespace
}  // namespace pelvor
