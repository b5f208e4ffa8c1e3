// SPDX-License-Identifier: Apache-2.0
// Tests of dragging content from window to window and from program to program on an X server.
#include "BackendDriver.h"

namespace {

class XCBDragTest : public XCBTest, public ::testing::WithParamInterface<XServerScope::Manager> {
  protected:
    void SetUp() override {
        XCBTest::SetUp();
        if (IsSkipped()) return;
        server.emplace(GetParam());
        other.emplace();
        driver.emplace();
        driver->other = &*other;
        source = driver->openWindow({100, 100, 200, 200}, 0x111111);
        target = other->openWindow({400, 100, 200, 200}, 0x222222);
        EXPECT_TRUE(driver->until(
            [&] { return server->pixel(150, 150) == 0x111111 && server->pixel(450, 150) == 0x222222; }));
    }
    void beginDrag(std::vector<std::string> types = {"UTF8_STRING", "text/rtf", "text/html", "text/plain"}) {
        result = -1;
        driver->heard.clear();
        server->movePointer(150, 150);
        server->button(1, true);
        EXPECT_TRUE(driver->untilHeard("down 1"));
        ASSERT_TRUE(driver->backend->offerSelection(BackendSelection::drag, std::move(types),
                                                    [](const std::string& type) { return "as " + type; }));
        ASSERT_TRUE(driver->backend->beginDrag(source, [&](bool isTaken) { result = isTaken; }));
    }
    /// What the driver got until the drag is over.
    std::string read(BackendDriver& reader) {
        std::string content;
        EXPECT_TRUE(driver->until([&] { return reader.count("drag dropped") == 1; }));
        reader.backend->requestSelection(BackendSelection::drag, "text/plain", [&](bool, std::string got) {
            content = got;
            reader.backend->endDrop(true);
        });
        EXPECT_TRUE(driver->until([&] { return result >= 0; }));
        return content;
    }

    std::optional<XServerScope> server;
    std::optional<BackendDriver> other;
    std::optional<BackendDriver> driver;
    BackendWindow source = 0;
    BackendWindow target = 0;
    int result = -1;
};
INSTANTIATE_TEST_SUITE_P(Managers, XCBDragTest,
                         ::testing::Values(XServerScope::Manager::none, XServerScope::Manager::openbox),
                         [](const auto& info) {
                             return info.param == XServerScope::Manager::none ? "NoManager" : "Openbox";
                         });

TEST_P(XCBDragTest, DropsInAnotherProgramAndInItself) {
    beginDrag();
    server->movePointer(250, 250);
    EXPECT_TRUE(driver->untilHeard("drag moved")) << "its own window is a target, too";
    server->movePointer(500, 200);
    EXPECT_TRUE(
        driver->until([&] { return other->count("drag entered") == 1 && driver->count("drag left") == 1; }));
    server->button(1, false);
    EXPECT_EQ(read(*other), "as text/plain");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(other->drags.back().place, (PixelPoint{100, 100}));
    EXPECT_EQ(joined(other->drags.back().types), "UTF8_STRING, text/rtf, text/html, text/plain");

    beginDrag({"text/plain"});
    server->movePointer(250, 250);
    EXPECT_TRUE(driver->until([&] { return driver->count("drag entered") == 1; }));
    server->button(1, false);
    EXPECT_EQ(read(*driver), "as text/plain");
    EXPECT_EQ(driver->drags.back().place, (PixelPoint{150, 150}));
}

TEST_P(XCBDragTest, IsRefusedGivenUpOrLost) {
    const auto over = [&](bool taken) {
        other->takesDrops = taken;
        beginDrag();
        other->heard.clear();
        server->movePointer(500, 200);
        EXPECT_TRUE(driver->until([&] { return other->count("drag entered") == 1; }));
    };
    const auto isRefused = [&] { return driver->until([&] { return result == 0; }); };
    over(false);
    server->button(1, false);
    EXPECT_TRUE(isRefused()) << "the target does not want it";
    EXPECT_EQ(other->count("drag dropped"), 0U);

    over(true);
    server->press(1);
    EXPECT_TRUE(isRefused()) << "Escape";
    EXPECT_TRUE(driver->until([&] { return other->count("drag left") == 1; }));
    server->button(1, false);

    over(true);
    server->movePointer(900, 900);
    server->button(1, false);
    EXPECT_TRUE(isRefused()) << "over the background";

    over(true);
    driver->other = nullptr;
    other.reset();
    server->movePointer(510, 210);
    server->button(1, false);
    EXPECT_TRUE(isRefused()) << "the target has ended";

    beginDrag();
    driver->backend->destroyWindow(source);
    EXPECT_EQ(result, 0) << "the window that it came from has ended";
}

TEST_P(XCBDragTest, LeavesWhenItsProgramEnds) {
    beginDrag();
    server->movePointer(500, 200);
    EXPECT_TRUE(driver->until([&] { return other->count("drag entered") == 1; }));
    driver.reset();
    EXPECT_TRUE(other->untilHeard("drag left"));
}

}  // namespace
