// SPDX-License-Identifier: Apache-2.0
#include "Writer/Shortcuts/WRShortcut.h"

#include "Interface/NSView.h"
#include "InterfaceScope.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "Writer/Shortcuts/ShortcutsLibrary.h"
#include "Writer/Shortcuts/WRShortcutApplication.h"
#include "Writer/Shortcuts/WRShortcutMatcher.h"

namespace {

extern Library shortcutTestLibrary;

// Takes the commands, and the keys that nobody took before.
class STView : public NSView {
    PELVOR_CLASS(STView, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    bool acceptsFirstResponder() override { return true; }
    void keyDown(NSEvent* event) override { log.push_back("key " + event->characters()->toUTF8()); }
    void choose(NSMenuItem* item) { log.push_back(item->title()->toUTF8()); }
    bool validateMenuItem(NSMenuItem* item) { return item->tag() == 0; }
    bool allowCapturingKeyboardShortcuts() { return captures; }
    void captureKeyboardShortcut(NSEvent* event) {
        log.push_back("captured " + event->characters()->toUTF8());
    }

    std::vector<std::string> log;
    bool captures = false;
};

PELVOR_DEFINE_CLASS(STView, shortcutTestLibrary) {
    methods.instance<"choose:", &STView::choose>();
    methods.instance<"validateMenuItem:", &STView::validateMenuItem>();
    methods.instance<"allowCapturingKeyboardShortcuts", &STView::allowCapturingKeyboardShortcuts>();
    methods.instance<"captureKeyboardShortcut:", &STView::captureKeyboardShortcut>();
}

Library shortcutTestLibrary{"ShortcutTest", {}, kClassesOf<STView>, {}};

std::string describe(const std::string& text) {
    auto* shortcut = WRShortcut::shortcutWithText(NSString::ofUTF8(text));
    if (!shortcut) return "none";
    return shown(shortcut) + (shortcut->isMultikey() ? ", several" : "") +
           (shortcut->isFunctionKey() ? ", function" : "");
}

TEST(WRShortcut, IsReadFromText) {
    registerLibrary(shortcutsLibrary);
    AutoreleasePool pool;
    expectAll({"Ctrl+K F -> Ctrl+K F, several", "Shift+Ctrl+s -> Ctrl+Shift+S", "F5 -> F5, function",
               "Alt+PageUp -> Alt+Page Up, function", "Ctrl+Plus Super+Tab -> Ctrl++ Super+Tab, several",
               "Ctrl+ -> none", "Hyper+K -> none", "F99 -> none", "Ctrl+K  F -> none", " -> none"},
              describe);
    auto* shortcut = WRShortcut::shortcutWithText(u"Ctrl+Shift+K F5"_ns);
    EXPECT_EQ(shown(shortcut->displayModifierString(), shortcut->displayKeyString(),
                    shortcut->caseSensitiveKeyString(), shortcut->keyString()),
              "Ctrl+Shift+ K F5 K k");
    EXPECT_TRUE(shortcut->isEqual(WRShortcut::shortcutWithText(u"Shift+Ctrl+k F5"_ns)));
    EXPECT_FALSE(shortcut->isEqual(WRShortcut::shortcutWithText(u"Shift+Ctrl+k"_ns)));
}

class ShortcutMatching : public ::testing::Test {
  protected:
    ShortcutMatching() {
        add("Find", "Ctrl+K F");
        add("Replace", "Ctrl+K Ctrl+R");
        add("Refused", "Ctrl+K X")->setTag(1);
        add("Bold", "Ctrl+B");
        add("Typed", "J J");
        add("Fast", "F7 J");
        bar->addItemWithTitle_action_keyEquivalent(u"Edit"_ns, SEL(), u""_ns)->setSubmenu(edit);
        screen->app->setMainMenu(bar);
        window = screen->window({{100, 100}, {300, 200}});
        window->contentView()->addSubview(view);
        window->makeFirstResponder(view);
    }
    NSMenuItem* add(const char* title, const char* shortcut) {
        auto item = addItemWithTitle_target_action(edit, NSString::ofUTF8(title), nullptr, "choose:"_sel);
        setPelvorShortcut(item, WRShortcut::shortcutWithText(NSString::ofUTF8(shortcut)));
        return std::move(item).autorelease();
    }
    void press(char16_t key, bool isCommand = false) {
        screen->press(key, isCommand ? std::uint32_t{NSCommandKeyMask} : 0);
    }
    std::string takeLog() { return joined(std::exchange(view->log, {})); }
    bool isWaiting() { return WRShortcutMatcher::sharedMatcher()->waitingText(); }

    std::unique_ptr<InterfaceScope> screen = [] {
        registerLibrary(shortcutsLibrary);
        static const bool havePosed =
            (PBMenuItem::performPosing(), WRShortcutApplication::performPosing(), true);
        EXPECT_TRUE(havePosed);
        return std::make_unique<InterfaceScope>();
    }();
    Retained<NSMenu> bar = NSMenu::init(), edit = NSMenu::init();
    Retained<STView> view = STView::initWithFrame({{0, 0}, {50, 50}});
    Retained<NSWindow> window;
};

TEST_F(ShortcutMatching, ChoosesItemsByKeysInARow) {
    press(u'k', true);
    EXPECT_EQ(shown(WRShortcutMatcher::sharedMatcher()->waitingText()), "Ctrl+K …");
    ASSERT_EQ(screen->app->orderedWindows()->count(), 2u);  // it is shown
    auto* label = cast<NSWindow>(screen->app->orderedWindows()->objectAtIndex(0));
    EXPECT_GT(NSMinY(label->frame()), NSMinY(window->frame()) + 24) << "it hides a status line";
    press(u'f');
    EXPECT_EQ(takeLog(), "Find");
    EXPECT_EQ(screen->app->orderedWindows()->count(), 1u);
    press(u'k', true);
    press(u'r', true);
    press(u'b', true);
    press(u'f');
    EXPECT_EQ(takeLog(), "Replace, Bold, key f");
    for (const char16_t key : {u'j', u'j', static_cast<char16_t>(NSF7FunctionKey), u'j'}) press(key);
    EXPECT_EQ(takeLog(), "key j, key j, Fast");
    const int beeps = screen->backend->beeps();
    press(u'k', true);
    press(u'x');
    EXPECT_EQ(takeLog(), "");
    EXPECT_EQ(screen->backend->beeps(), beeps + 1);
}

TEST_F(ShortcutMatching, StopsWaiting) {
    const std::pair<const char*, std::function<void()>> ends[] = {
        {"Escape", [&] { press(0x1b); }},
        {"another key", [&] { press(u'z'); }},
        {"a click",
         [&] {
             screen->click(window->contentView(), {200, 100});
         }},
        {"time", [&] { screen->wait(WRShortcutMatcher::kWaitingSeconds + 1); }},
        {"another window",
         [&] {
             screen->window({{0, 0}, {80, 80}})->close();
         }},
    };
    for (const auto& [name, end] : ends) {
        window->makeKeyAndOrderFront(nullptr);
        window->makeFirstResponder(view);
        press(u'k', true);
        EXPECT_TRUE(isWaiting()) << name;
        end();
        EXPECT_FALSE(isWaiting()) << name;
        EXPECT_EQ(takeLog(), "") << name;
    }
}

TEST_F(ShortcutMatching, LeavesKeysToWhoCapturesThem) {
    view->captures = true;
    press(u'k', true);
    press(u'f');
    EXPECT_EQ(takeLog(), "captured k, key f");
}

TEST_F(ShortcutMatching, ReportsConflicts) {
    auto conflicts = [&] {
        std::vector<std::string> all;
        for (id sentence : WRShortcutMatcher::sharedMatcher()->conflictsInMenu(bar))
            all.push_back(shown(sentence));
        return all;
    };
    EXPECT_THAT(conflicts(), IsEmpty());
    add("Look", "Ctrl+K F");
    add("Keep", "Ctrl+K");
    EXPECT_THAT(conflicts(),
                ::testing::UnorderedElementsAre(
                    "_“Find” and “Look” have the same shortcut, Ctrl+K F.",
                    "_The shortcut of “Keep”, Ctrl+K, is the beginning of that of “Find”, Ctrl+K F.",
                    "_The shortcut of “Keep”, Ctrl+K, is the beginning of that of “Replace”, Ctrl+K Ctrl+R.",
                    "_The shortcut of “Keep”, Ctrl+K, is the beginning of that of “Refused”, Ctrl+K X.",
                    "_The shortcut of “Keep”, Ctrl+K, is the beginning of that of “Look”, Ctrl+K F."));
}

}  // namespace
