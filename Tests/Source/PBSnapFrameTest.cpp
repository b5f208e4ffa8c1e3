// SPDX-License-Identifier: Apache-2.0
#include "PBSnapFrame.h"

#include "InterfaceScope.h"

namespace {

// Two screens beside each other, the right one with a panel of 30 points above and a dock of 50 on its left.
class SnapTest : public testing::Test {
  protected:
    SnapTest() {
        BackendScreen left, right;
        left.frame = left.visibleFrame = {0, 0, 1000, 800};
        left.isMain = true;
        right.frame = {1000, 0, 600, 800};
        right.visibleFrame = {1050, 30, 550, 770};
        screen.backend->setScreens({left, right});
        screen.turn();
    }
    InterfaceScope screen;
};

TEST_F(SnapTest, MovesFramesToTheEdgesThatAreNear) {
    struct Row {
        const char* name;
        NSRect frame;
        NSPoint expected;
    };
    for (const Row& row : {
             Row{"far from all", {{11, 11}, {100, 100}}, {11, 11}},
             Row{"near the left", {{6, 300}, {100, 100}}, {0, 300}},
             Row{"just near enough", {{10, 300}, {100, 100}}, {0, 300}},
             Row{"near the upper right", {{895, 695}, {100, 100}}, {900, 700}},
             Row{"beyond the corner", {{-30, -20}, {100, 100}}, {0, 0}},
             Row{"too large", {{100, 100}, {1100, 900}}, {-100, -100}},
             Row{"on the screen with a dock", {{1100, 665}, {100, 100}}, {1100, 670}},
             Row{"below the dock", {{1020, 300}, {100, 100}}, {1050, 300}},
             Row{"on both screens, the last one counts", {{950, 300}, {99, 100}}, {1050, 300}},
             Row{"on no screen", {{3000, 300}, {100, 100}}, {900, 300}},
             Row{"a point above the screen", {{300, 701}, {100, 100}}, {300, 700}},
         })
        EXPECT_EQ(PBSnapFrame(row.frame, 10), (NSRect{row.expected, row.frame.size})) << row.name;
    EXPECT_EQ(PBSnapFrame({{11, 300}, {100, 100}}, 10).origin, (NSPoint{11, 300}));
    EXPECT_EQ(PBSnapFrame({{6, 300}, {100, 100}}, 0).origin, (NSPoint{6, 300}));
}

}  // namespace
