// SPDX-License-Identifier: Apache-2.0
// Tests of windows on an X server: shown, painted, moved, zoomed and closed, with a window manager and
// without.
#include <signal.h>

#include "BackendDriver.h"

// The name of the file with permissions is kept in one place for all threads; one that waits for a server
// that has stopped, which only tests leave behind and go on, has written to it.
extern "C" const char* __tsan_default_suppressions() { return "race:XauFileName"; }

namespace {

using XCBWindowTest = XCBTest;

class XCBManagedWindowTest : public XCBTest, public ::testing::WithParamInterface<XServerScope::Manager> {
  protected:
    std::string pixelOf(XServerScope& server, const PixelRect& frame) {
        char text[16];
        std::snprintf(text, sizeof text, "%06x", server.pixel(frame.x + 1, frame.y + frame.height - 2));
        return text;
    }
};
INSTANTIATE_TEST_SUITE_P(Managers, XCBManagedWindowTest,
                         ::testing::Values(XServerScope::Manager::none, XServerScope::Manager::openbox),
                         [](const auto& info) {
                             return info.param == XServerScope::Manager::none ? "NoManager" : "Openbox";
                         });

TEST_P(XCBManagedWindowTest, StandsWhereItIsPutAndShowsWhatIsPainted) {
    XServerScope server(GetParam());
    BackendDriver driver;
    const PixelRect frame{200, 150, 300, 200};
    const BackendWindow window = driver.openWindow(frame, 0x336699);
    const auto shows = [&](const PixelRect& place, const char* colour) {
        return driver.until([&] { return pixelOf(server, place) == colour; });
    };
    ASSERT_TRUE(shows(frame, "336699"));
    EXPECT_TRUE(driver.untilHeard("focus 1"));
    EXPECT_EQ(shownRect(driver.frames[window]), "200,150 300x200");

    // Another place and extent; what was painted stays, and the new part is asked for.
    const PixelRect larger{260, 210, 700, 520};
    driver.configure(window, [&](WindowChanges& changes) { changes.frame = &larger; });
    EXPECT_TRUE(driver.untilHeard("configured 1 260,210 700x520"));
    EXPECT_TRUE(driver.untilHeard("expose 1"));
    EXPECT_TRUE(shows(larger, "336699"));

    // A window before it takes nothing away that would have to be painted again.
    driver.heard.clear();
    const BackendWindow menu = driver.openWindow({300, 300, 400, 400}, 0xFFEEDD, WindowKind::menu, window);
    EXPECT_TRUE(driver.until([&] { return server.pixel(310, 310) == 0xFFEEDD; }));
    driver.backend->destroyWindow(menu);
    EXPECT_TRUE(driver.until([&] { return server.pixel(310, 310) == 0x336699; }));
    EXPECT_EQ(driver.count("expose 1"), 0U);

    const bool no = false;
    driver.configure(window, [&](WindowChanges& changes) { changes.isShown = &no; });
    EXPECT_TRUE(driver.until([&] { return server.pixel(310, 310) != 0x336699; }));
}

TEST_P(XCBManagedWindowTest, FillsScreensAndComesBack) {
    XServerScope server(GetParam());
    BackendDriver driver;
    const PixelRect frame{200, 150, 300, 200};
    const BackendWindow window = driver.openWindow(frame, 0x336699);
    ASSERT_TRUE(driver.untilHeard("configured 1 200,150 300x200"));
    const bool yes = true;
    const bool no = false;
    const auto change = [&](const bool* WindowChanges::*what, const bool& value) {
        driver.heard.clear();
        driver.configure(window, [&](WindowChanges& changes) { changes.*what = &value; });
    };
    const auto frameIs = [&](const char* text) {
        return driver.until([&] { return shownRect(driver.frames[window]) == text; });
    };
    change(&WindowChanges::isFullScreen, yes);
    EXPECT_TRUE(frameIs("0,0 1280x1024"));
    change(&WindowChanges::isFullScreen, no);
    EXPECT_TRUE(frameIs("200,150 300x200"));

    change(&WindowChanges::isZoomed, yes);
    EXPECT_TRUE(driver.until([&] {
        return driver.frames[window].width > 1200 &&
               std::ranges::any_of(driver.heard,
                                   [](const std::string& text) { return text.ends_with(" zoomed"); });
    }));
    change(&WindowChanges::isZoomed, no);
    EXPECT_TRUE(driver.untilHeard("configured 1 200,150 300x200"));

    change(&WindowChanges::isMinimized, yes);
    EXPECT_TRUE(driver.untilHeard("configured 1 200,150 300x200 minimized"));
    change(&WindowChanges::isMinimized, no);
    EXPECT_TRUE(driver.untilHeard("configured 1 200,150 300x200"));
    EXPECT_TRUE(driver.until([&] { return server.pixel(210, 160) == 0x336699; }));
    if (GetParam() == XServerScope::Manager::none) return;

    // The manager ends, and all windows are shown.
    change(&WindowChanges::isMinimized, yes);
    EXPECT_TRUE(driver.untilHeard("configured 1 200,150 300x200 minimized"));
    driver.heard.clear();
    server.killManager();
    EXPECT_TRUE(driver.until([&] {
        return std::ranges::any_of(driver.heard, [](const std::string& text) {
            return text.starts_with("configured 1") && !text.ends_with(" minimized");
        });
    }));
}

TEST_P(XCBManagedWindowTest, IsClosedAndGivesItsName) {
    XServerScope server(GetParam());
    BackendDriver driver;
    const BackendWindow window = driver.openWindow({200, 150, 300, 200}, 0x336699);
    ASSERT_TRUE(driver.untilHeard("focus 1"));
    const bool yes = true;
    const std::string title = "Größe";
    driver.configure(window, [&](WindowChanges& changes) {
        changes.title = &title;
        changes.isDocumentEdited = &yes;
    });
    driver.backend->prepare();
    XServerScope::run({"xdotool", "search", "--sync", "--name", "^\\*Größe$", "windowclose"});
    // windowclose destroys; a window manager would have asked.
    EXPECT_TRUE(driver.until([&] { return driver.count("blur") == 1; }));
}

TEST_F(XCBWindowTest, KeepsPicturesApartThatTheServerReads) {
    XServerScope server;
    BackendDriver driver;
    const BackendWindow window = driver.openWindow({0, 0, 1200, 1000}, 0x336699);
    ASSERT_TRUE(driver.until([&] { return server.pixel(5, 5) == 0x336699; }));
    ASSERT_TRUE(driver.until([&] { return driver.backend->beginPaint(window) != nullptr; }));
    const PixelRect halves[] = {{0, 0, 1200, 500}, {0, 500, 1200, 500}};
    driver.backend->present(window, {&halves[0], 1}, false);
    EXPECT_NE(driver.backend->beginPaint(window), nullptr) << "of one frame";
    driver.backend->present(window, {&halves[1], 1}, true);
    driver.heard.clear();
    EXPECT_EQ(driver.backend->beginPaint(window), nullptr);
    EXPECT_TRUE(driver.untilHeard("ready 1"));
    EXPECT_NE(driver.backend->beginPaint(window), nullptr);
}

TEST_F(XCBWindowTest, PaintsWithoutSharedMemory) {
    XServerScope server(XServerScope::Manager::none, {"-extension", "MIT-SHM"});
    BackendDriver driver;
    const BackendWindow window = driver.openWindow({0, 0, 1200, 1000}, 0x336699);
    EXPECT_TRUE(driver.until([&] { return server.pixel(1190, 990) == 0x336699; }));
    driver.paint(window, 0x123456);
    EXPECT_TRUE(driver.until([&] { return server.pixel(1190, 990) == 0x123456; }));
}

TEST_F(XCBWindowTest, KnowsItsFrameBeforeItIsShown) {
    XServerScope server(XServerScope::Manager::openbox);
    BackendDriver driver;
    WindowWishes wishes;
    wishes.frame = {100, 100, 200, 200};
    const BackendWindow window = driver.backend->createWindow(wishes);
    const PixelRect extents = driver.backend->frameExtents(window);
    EXPECT_GT(extents.y, 5);
    EXPECT_GE(extents.x, 1);
    wishes.kind = WindowKind::menu;
    EXPECT_EQ(driver.backend->frameExtents(driver.backend->createWindow(wishes)), PixelRect{});
}

TEST_F(XCBWindowTest, OutlivesItsDisplay) {
    XServerScope server;
    BackendDriver driver;
    const BackendWindow window = driver.openWindow({0, 0, 300, 200}, 0x336699);
    ASSERT_TRUE(driver.until([&] { return server.pixel(5, 5) == 0x336699; }));
    ASSERT_TRUE(driver.until([&] { return driver.backend->beginPaint(window) != nullptr; }));
    ::kill(server.server().pid(), SIGSTOP);
    driver.paint(window, 0x445566);  // is never read
    server.server().end(SIGKILL);
    EXPECT_TRUE(driver.until([&] { return driver.count("lost: ") == 1; }));
    EXPECT_FALSE(driver.backend->hasDisplay());
    EXPECT_EQ(driver.backend->descriptor(), -1);
    const PixelRect frame{5, 5, 1000, 800};
    const bool yes = true;
    driver.configure(window, [&](WindowChanges& changes) {
        changes.frame = &frame;
        changes.isZoomed = changes.isMinimized = changes.isShown = &yes;
        changes.takesFocus = changes.raises = true;
    });
    driver.paint(window, 0x112233);
    driver.backend->setCursor(window, BackendCursor::text);
    EXPECT_EQ(driver.backend->createWindow({}), 0U);
    EXPECT_EQ(driver.backend->pointerPlace(), PixelPoint{});
    EXPECT_FALSE(driver.backend->beginTracking(window));
    EXPECT_FALSE(driver.backend->setLayout(0));
    driver.backend->beep();
    driver.backend->saveClipboard();
    driver.backend->destroyWindow(window);
    EXPECT_FALSE(driver.backend->prepare());
    driver.backend->dispatch();
    EXPECT_EQ(driver.count("lost: "), 1U);
}

TEST_F(XCBWindowTest, SaysWhyThereIsNoDisplay) {
    ::setenv("DISPLAY", ":54321", 1);
    EXPECT_EQ(BackendDriver().reason, "the display \":54321\" cannot be connected to");
    XServerScope server;
    ::kill(server.server().pid(), SIGSTOP);
    const double start = secondsNow();
    EXPECT_THAT(BackendDriver().reason, EndsWith("does not reply"));
    EXPECT_LT(secondsNow() - start, 15);
}

}  // namespace
