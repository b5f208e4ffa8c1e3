// SPDX-License-Identifier: Apache-2.0
#include "PantherCursor.h"

#include "BaseInterfaceLibrary.h"
#include "Foundation/PlatformVersion.h"
#include "Interface/NSSegmentedControl.h"
#include "NSSegmentedControl-PelvorPantherAdditions.h"
#include "Prelude.h"

namespace {

TEST(PantherCursor, ReturnsCursorsThatOldPlatformsHave) {
    EXPECT_EQ(PantherCursor::pointingHandCursor(), NSCursor::arrowCursor());
    EXPECT_EQ(PantherCursor::resizeUpCursor(), NSCursor::resizeUpDownCursor());
    EXPECT_EQ(PantherCursor::resizeDownCursor(), PantherCursor::resizeUpDownCursor());
    EXPECT_EQ(PantherCursor::openHandCursor(), NSCursor::openHandCursor());
}

// What posing changes stays for the rest of a process, so this has a process of its own.
[[noreturn]] void poseAt(double version, bool isToPose) {
    registerLibrary(baseInterfaceLibrary);
    setPlatformVersion(version);
    send(PantherCursor::classObject(), "performPosing"_sel);
    id hand = send<id>(classNamed("NSCursor"), "pointingHandCursor"_sel);
    const bool isArrow = hand == NSCursor::arrowCursor();
    std::_Exit(hand && isArrow == isToPose ? 0 : 1);
}

TEST(PantherCursor, StandsInOnOldPlatformsOnly) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(poseAt(742.9, true), ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(poseAt(743, false), ::testing::ExitedWithCode(0), "");
}

TEST(PelvorPantherAdditions, SelectsTheFirstSegmentWithATag) {
    registerLibrary(baseInterfaceLibrary);
    auto control = NSSegmentedControl::initWithFrame({{0, 0}, {100, 24}});
    control->setSegmentCount(3);
    auto* cell = static_cast<NSSegmentedCell*>(control->cell());
    cell->setTag_forSegment(5, 1);
    cell->setTag_forSegment(5, 2);
    send(control, "pbSelectSegmentWithTag:"_sel, 5);
    EXPECT_EQ(control->selectedSegment(), 1);
    pbSelectSegmentWithTag(control, 6);
    EXPECT_EQ(control->selectedSegment(), 1) << "no segment has the tag";
    control->setCell(NSCell::init().get());
    pbSelectSegmentWithTag(control, 5);
}

}  // namespace
