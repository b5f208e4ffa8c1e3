// SPDX-License-Identifier: Apache-2.0
#include "NSEvent-PelvorAdditions.h"

#include "Prelude.h"

namespace pelvor {
namespace {

TEST(EventAdditionsTest, KeysAreAskedOfWhoShowsWindows) {
    EXPECT_FALSE(NSEvent_PelvorAdditions::isShiftKeyDown());
    setKeyModifierSource([] { return std::uint32_t{0x900}; });
    EXPECT_TRUE(NSEvent_PelvorAdditions::isCommandKeyDown());
    EXPECT_FALSE(NSEvent_PelvorAdditions::isShiftKeyDown());
    EXPECT_TRUE(NSEvent_PelvorAdditions::isOptionKeyDown());
    setKeyModifierSource(nullptr);
}

}  // namespace
}  // namespace pelvor
