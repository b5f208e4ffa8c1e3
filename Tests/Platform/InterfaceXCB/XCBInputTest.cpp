// SPDX-License-Identifier: Apache-2.0
// Tests of keys, layouts, dead keys, the pointer and tracking on an X server.
#include "BackendDriver.h"
#include "Interface/KeyboardLayouts.h"
#include "InterfaceXCB/Keyboard.h"
#include "InterfaceXCB/Screens.h"

namespace {

enum KeyCode {
    kEscape = 1,
    kOne = 2,
    kBackspace = 14,
    kTab = 15,
    kQ = 16,
    kE = 18,
    kY = 21,
    kReturn = 28,
    kControl = 29,
    kA = 30,
    kS = 31,
    kGrave = 41,
    kShift = 42,
    kZ = 44,
    kX = 45,
    kAlt = 56,
    kCapsLock = 58,
    kF1 = 59,
    kSeven = 71,
    kKeypadReturn = 96,
    kAltGraph = 100,
    kUp = 103,
    kDelete = 111,
    kSuper = 125,
};

class XCBInputTest : public XCBTest {
  protected:
    void SetUp() override {
        XCBTest::SetUp();
        if (IsSkipped()) return;
        server.emplace();
        driver.emplace();
        window = driver->openWindow({100, 100, 400, 300}, 0xFFFFFF);
        EXPECT_TRUE(driver->untilHeard("focus 1"));
    }
    void useLayouts(const std::string& layouts, const std::string& variants = "") {
        driver->backend->layouts();  // changes are told to those who know what was before
        XServerScope::run({"setxkbmap", "-layout", layouts, "-variant", variants});
        EXPECT_TRUE(driver->untilHeard("layout changed"));
    }
    /// What the keys were heard as until the mark, which is a key as well, arrives.
    std::string heardOf(const std::vector<int>& codes, int mark = kF1) {
        driver->heard.clear();
        driver->keys.clear();
        for (const int code : codes) server->key(std::abs(code), code > 0);
        server->press(mark);
        EXPECT_TRUE(driver->until([&] {
            return !driver->keys.empty() && driver->keys.back().code == mark && !driver->keys.back().isDown;
        }));
        std::string texts;
        for (const std::string& text : driver->heard)
            if (text.starts_with("text ") || text.starts_with("command "))
                texts += (texts.empty() ? "" : ", ") + text;
        const std::size_t end = texts.rfind("command ");  // that of the mark
        return texts.substr(0, end < 2 || end == std::string::npos ? 0 : end - 2);
    }
    static std::vector<int> pressed(std::initializer_list<int> codes) {
        std::vector<int> keys;
        for (const int code : codes) keys.insert(keys.end(), {code, -code});
        return keys;
    }

    std::optional<XServerScope> server;
    std::optional<BackendDriver> driver;
    BackendWindow window = 0;
};

TEST_F(XCBInputTest, TellsWhatKeysAre) {
    struct Row {
        const char* layouts;
        std::uint32_t group;
        std::vector<int> held;
        int code;
        const char* characters;
        const char* ignoringModifiers;
        const char* shortcut;
        std::uint32_t modifiers;
    };
    const Row rows[] = {
        {"us", 0, {}, kA, "a", "a", "a", 0},
        {"us", 0, {kShift}, kOne, "!", "!", "!", kBackendShift},
        {"us", 0, {kControl}, kS, "s", "s", "s", kBackendCommand},
        {"us", 0, {kControl, kShift}, kS, "S", "S", "S", kBackendCommand | kBackendShift},
        {"us", 0, {kAlt}, kS, "s", "s", "s", kBackendOption},
        {"us", 0, {kSuper}, kS, "s", "s", "s", kBackendControl},
        {"us", 0, {}, kSeven, "\uF729", "\uF729", "\uF729", kBackendNumericPad},
        {"us", 0, {}, kUp, "\uF700", "\uF700", "\uF700", 0},
        {"us", 0, {}, kDelete, "\uF728", "\uF728", "\uF728", 0},
        {"us", 0, {}, kBackspace, "\x7F", "\x7F", "\x7F", 0},
        {"us", 0, {}, kReturn, "\r", "\r", "\r", 0},
        {"us", 0, {}, kKeypadReturn, "\x03", "\x03", "\x03", kBackendNumericPad},
        {"us", 0, {kShift}, kTab, "\x19", "\x19", "\x19", kBackendShift},
        {"us", 0, {}, kF1, "\uF704", "\uF704", "\uF704", 0},
        {"us", 0, {}, kControl, "", "", "", kBackendCommand},
        {"de", 0, {kAltGraph}, kQ, "@", "@", "q", 0},
        {"de", 0, {kControl}, kY, "z", "z", "z", kBackendCommand},
        {"us,ru", 1, {kControl}, kS, "ы", "ы", "s", kBackendCommand},
        {"us,ru", 1, {}, kS, "ы", "ы", "s", 0},
    };
    std::string layouts = "us";
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.layouts) + " " + std::to_string(row.code));
        driver->heard.clear();
        if (layouts != row.layouts) useLayouts(layouts = row.layouts);
        if (row.group) {
            driver->heard.clear();
            const auto current = driver->backend->layouts();
            EXPECT_TRUE(driver->backend->setLayout(row.group));
            EXPECT_TRUE(current[row.group].isCurrent || driver->untilHeard("layout changed"));
        }
        for (const int held : row.held) server->key(held, true);
        server->key(row.code, true);
        driver->keys.clear();
        EXPECT_TRUE(
            driver->until([&] { return !driver->keys.empty() && driver->keys.back().code == row.code; }));
        const BackendKey key = driver->keys.back();
        EXPECT_EQ(utf8(key.characters), row.characters);
        EXPECT_EQ(utf8(key.charactersIgnoringModifiers), row.ignoringModifiers);
        EXPECT_EQ(utf8(key.shortcutCharacters), row.shortcut);
        EXPECT_EQ(key.modifiers, row.modifiers);
        EXPECT_EQ(key.group, row.group);
        if (row.code != kControl) {
            EXPECT_EQ(driver->backend->modifiersDown(), row.modifiers & ~kBackendNumericPad);
        }
        server->key(row.code, false);
        for (const int held : row.held) server->key(held, false);
        EXPECT_TRUE(driver->until([&] {
            return !driver->keys.back().isDown &&
                   (row.held.empty() || driver->keys.back().code == row.held.back());
        }));
    }
    driver->backend->setLayout(0);
    EXPECT_TRUE(driver->until([&] { return driver->backend->layouts()[0].isCurrent; }));
    server->press(kCapsLock);
    EXPECT_EQ(heardOf(pressed({kA})), "text A");
    const auto key = std::ranges::find(driver->keys, kA, &BackendKey::code);
    EXPECT_EQ(utf8(key->charactersIgnoringModifiers), "a");
}

TEST_F(XCBInputTest, ComposesTextOfSeveralKeys) {
    useLayouts("de");
    struct Row {
        const char* name;
        std::vector<int> keys;
        const char* heard;
    };
    const Row rows[] = {
        {"dead key", pressed({kGrave, kA}), "text â"},
        {"with shift", {kGrave, -kGrave, kShift, kA, -kA, -kShift}, "text Â"},
        {"no such sequence", pressed({kGrave, kX}), "text x"},
        {"twice", pressed({kGrave, kGrave}), "text ^"},
        {"given up", pressed({kGrave, kEscape, kA}), "text a"},
        {"given up by a function key", pressed({kGrave, kUp, kA}), "command \uF700, text a"},
        {"shortcut", {kControl, kA, -kA, -kControl, kReturn, -kReturn}, "command a, command \r"},
        {"level three", {kAltGraph, kE, -kE, -kAltGraph}, "text €"},
    };
    for (const Row& row : rows) EXPECT_EQ(heardOf(row.keys), row.heard) << row.name;

    // A click ends half a sequence, and so does whoever took the key.
    server->press(kGrave);
    server->click(150, 150);
    EXPECT_EQ(heardOf(pressed({kA})), "text a");
    server->press(kGrave);
    EXPECT_TRUE(driver->until([&] { return driver->keys.back().code == kGrave; }));
    driver->backend->resetComposing(window);
    EXPECT_EQ(heardOf(pressed({kA})), "text a");
}

TEST_F(XCBInputTest, RepeatsKeysThatAreHeld) {
    XServerScope::run({"xset", "r", "rate", "200", "100"});
    server->key(kA, true);
    EXPECT_TRUE(driver->until([&] { return driver->count("text a") >= 4; }));
    server->key(kA, false);
    EXPECT_TRUE(driver->until([&] { return driver->count("key up") == 1; }));
    ASSERT_GE(driver->keys.size(), 5U);
    EXPECT_FALSE(driver->keys[0].isRepeat);
    for (std::size_t i = 1; i + 1 < driver->keys.size(); ++i)
        EXPECT_TRUE(driver->keys[i].isDown && driver->keys[i].isRepeat);
    EXPECT_EQ(heardOf(pressed({kA})), "text a");
    EXPECT_FALSE(driver->keys[0].isRepeat);
}

TEST_F(XCBInputTest, ListsLayoutsAndSwitchesThem) {
    useLayouts("us,de,ch", ",nodeadkeys,fr");
    const std::vector<BackendLayout> layouts = driver->backend->layouts();
    std::string shown;
    for (const BackendLayout& layout : layouts)
        shown +=
            layout.name + " " + layout.shortName + " " + layout.language + (layout.isCurrent ? " *; " : "; ");
    EXPECT_EQ(shown, "us us eng-US *; de(nodeadkeys) de deu-DE; ch(fr) ch fra-CH; ");
    EXPECT_EQ(layouts[1].displayName, "German (no dead keys)");
    driver->heard.clear();
    EXPECT_TRUE(driver->backend->setLayout(1));
    EXPECT_TRUE(driver->backend->layouts()[1].isCurrent);  // at once
    EXPECT_TRUE(driver->untilHeard("layout changed"));     // and yet it is told
    EXPECT_EQ(heardOf(pressed({kY})), "text z");
    EXPECT_FALSE(driver->backend->setLayout(3));
    // The second group is locked and gone.
    XServerScope::run({"setxkbmap", "-layout", "de", "-variant", ""});
    EXPECT_TRUE(driver->until([&] { return driver->backend->layouts().size() == 1; }));
    EXPECT_TRUE(driver->backend->layouts()[0].isCurrent);
}

TEST_F(XCBInputTest, KnowsLayoutsThatAreNotEnabled) {
    const std::vector<BackendLayout>& known = driver->backend->knownLayouts();
    std::map<std::int32_t, std::string> names;  // by what programs store
    for (const BackendLayout& layout : known) {
        AutoreleasePool pool;
        EXPECT_TRUE(
            names.emplace(keyboardLayoutIdentifier(NSString::ofUTF8(layout.name)), layout.name).second)
            << layout.name;
    }
    EXPECT_GT(known.size(), 300U);
    expectAll({"pl -> pol-PL Polish", "rs(latin) -> srp-Latn-RS Serbian (Latin)", "tw -> zho-TW Taiwanese",
               "us(rus) -> rus-US Russian (US, phonetic)", "latam -> spa Spanish (Latin American)"},
              [&](const std::string& name) {
                  const auto found = std::ranges::find(known, name, &BackendLayout::name);
                  return found->language + " " + found->displayName;
              });
}

TEST_F(XCBInputTest, HasNoLayoutsUnderWayland) {
    server.emplace();
    XServerScope::run({"xrandr", "--setmonitor", "XWAYLAND0", "auto", "screen"});
    driver.emplace();
    EXPECT_TRUE(driver->backend->layouts().empty());
    EXPECT_FALSE(driver->backend->setLayout(0));
}

TEST(XCBInputTableTest, ReadsWhatPropertiesHold) {
    using namespace std::string_view_literals;
    for (std::string_view rules : {""sv, "evdev"sv, "\0\0\0\0\0\0"sv, "a\0b\0c,,d\0e,f,g,h"sv})
        for (const BackendLayout& layout : layoutsOfRules(rules)) EXPECT_LT(layout.group, 4U);
    expectAll(
        {"Xft.dpi:\t192 -> 2", "*foo: 1\nXft.dpi: 120\n -> 1.25", "XXft.dpi: 192 -> 1", " -> 1",
         "Xft.dpi: -> 1", "Xft.dpi: nan -> 1", "Xft.dpi: -96 -> 1", "Xft.dpi: 1e9 -> 8", "Xft.dpi: 98 -> 1"},
        [](const std::string& text) { return scaleOfResources(text); });
}

TEST_F(XCBInputTest, TellsWhatThePointerDoes) {
    server->movePointer(150, 160);
    EXPECT_TRUE(driver->untilHeard("entered 1"));
    EXPECT_TRUE(driver->until([&] { return driver->backend->pointerPlace() == PixelPoint{150, 160}; }));
    server->key(kShift, true);
    struct Row {
        int xButton;
        int button;
        float x, y;
    };
    for (const Row row : {Row{1, 1, 0, 0},
                          {2, 3, 0, 0},
                          {3, 2, 0, 0},
                          {8, 4, 0, 0},
                          {4, 0, 0, -3},
                          {5, 0, 0, 3},
                          {6, 0, -3, 0},
                          {7, 0, 3, 0}}) {
        driver->pointers.clear();
        server->button(row.xButton, true);
        server->button(row.xButton, false);
        const std::size_t count = row.button ? 2 : 1;
        EXPECT_TRUE(driver->until([&] { return driver->pointers.size() >= count; })) << row.xButton;
        const BackendPointer& down = driver->pointers[0];
        EXPECT_EQ(down.button, row.button);
        EXPECT_EQ(shown(down.linesX, down.linesY), shown(row.x, row.y));
        EXPECT_EQ(down.place, (PixelPoint{50, 60}));
        EXPECT_EQ(down.onScreen, (PixelPoint{150, 160}));
        EXPECT_EQ(down.modifiers, kBackendShift);
        EXPECT_EQ(down.buttonsDown, row.button ? 1U << (row.button - 1) : 0U);
        EXPECT_EQ(driver->pointers.back().buttonsDown, 0U);
    }
    for (int shape = 0; shape <= static_cast<int>(BackendCursor::hidden); ++shape)
        driver->backend->setCursor(window, static_cast<BackendCursor>(shape));
    server->movePointer(5, 5);
    EXPECT_TRUE(driver->untilHeard("exited 1"));
}

TEST_F(XCBInputTest, TracksMenus) {
    const BackendWindow menu = driver->openWindow({200, 120, 100, 100}, 0xDDDDDD, WindowKind::menu, window);
    driver->interprets = false;
    ASSERT_TRUE(driver->backend->beginTracking(menu));
    server->press(kA);
    server->click(250, 150);
    server->click(120, 110);  // the document's window, where a menu bar may be
    EXPECT_TRUE(driver->until([&] { return driver->count("up 1") == 1; }));
    EXPECT_EQ(driver->count("key down a"), 1U);
    EXPECT_EQ(driver->count("down 2"), 1U);
    EXPECT_EQ(driver->count("blur"), 0U);
    EXPECT_EQ(driver->count("tracking lost"), 0U);
    server->click(800, 800);
    EXPECT_TRUE(driver->untilHeard("tracking lost"));
    driver->backend->endTracking();
    driver->backend->destroyWindow(menu);
    driver->backend->pointerPlace();  // once this is replied to, the server has ended the grab
    driver->interprets = true;
    EXPECT_EQ(heardOf(pressed({kA})), "text a");

    // A menu opens a second one, which cannot be seen.
    const BackendWindow second = driver->openWindow({200, 120, 100, 100}, 0xDDDDDD, WindowKind::menu, window);
    ASSERT_TRUE(driver->backend->beginTracking(second));
    WindowWishes wishes;
    wishes.kind = WindowKind::menu;
    EXPECT_FALSE(driver->backend->beginTracking(driver->backend->createWindow(wishes)));
    driver->backend->endTracking();
    // Another program holds the pointer.
    driver->backend->pointerPlace();
    const auto grab = server->peerConnection().wait<xcb_grab_pointer_reply_t>(
        xcb_grab_pointer(server->peer(), 0, server->root(), 0, 1, 1, 0, 0, 0));
    ASSERT_EQ(grab->status, XCB_GRAB_STATUS_SUCCESS);
    EXPECT_FALSE(driver->backend->beginTracking(second));
    driver->backend->endTracking();
}

TEST_F(XCBInputTest, KnowsTheScreens) {
    const auto shownScreens = [&] {
        std::string all;
        for (const BackendScreen& screen : driver->backend->screens())
            all += shownRect(screen.frame) + (screen.isMain ? "* " : " ") + shownRect(screen.visibleFrame) +
                   "; ";
        return all;
    };
    EXPECT_EQ(shownScreens(), "0,0 1280x1024* 0,0 1280x1024; ");
    XServerScope::run({"xrandr", "--setmonitor", "left", "640/200x1024/300+0+0", "screen"});
    XServerScope::run({"xrandr", "--setmonitor", "*right", "640/200x1024/300+640+0", "none"});
    driver->heard.clear();
    const PixelRect place{700, 100, 400, 300};
    driver->configure(window, [&](WindowChanges& changes) { changes.frame = &place; });
    EXPECT_TRUE(driver->untilHeard("screens changed"));
    EXPECT_EQ(shownScreens(), "640,0 640x1024* 640,0 640x1024; 0,0 640x1024 0,0 640x1024; ");

    // A panel at the upper edge; then no manager that would still keep it free.
    server->startManager();
    XConnection& peer = server->peerConnection();
    const xcb_window_t panel = xcb_generate_id(peer);
    xcb_create_window(peer, XCB_COPY_FROM_PARENT, panel, peer.root(), 0, 0, 1280, 30, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    peer.setProperty(panel, peer.atomNamed("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM,
                     {peer.atomNamed("_NET_WM_WINDOW_TYPE_DOCK")});
    peer.setProperty(panel, peer.atomNamed("_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL,
                     {0, 0, 30, 0, 0, 0, 0, 0, 0, 1279, 0, 0});
    xcb_map_window(peer, panel);
    peer.flush();
    EXPECT_TRUE(driver->until([&] {
        return driver->backend->screens()[0].visibleFrame == PixelRect{640, 30, 640, 994};
    }));
    EXPECT_TRUE(driver->until([&] { return server->pixel(660, 500) != 0x123456; }));
}

}  // namespace
