// SPDX-License-Identifier: Apache-2.0
// MenuTracking: a window with a menu bar, and a user who goes through the menus.
#pragma once

#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Interface/NSMenu.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSView.h"
#include "InterfaceScope.h"

namespace pelvor {

extern Library menuTrackingLibrary;

// Takes every command of the test's menus, and is the delegate of its menus.
class MTTaker : public NSObject {
    PELVOR_CLASS(MTTaker, NSObject);

  public:
    void take(NSMenuItem* item) {
        log.push_back(item->title()->toUTF8());
        if (whenTaken) whenTaken();
    }
    void choose(NSPopUpButton* button) { log.push_back("chose " + button->titleOfSelectedItem()->toUTF8()); }
    void menuWillOpen(NSMenu* menu) { tell("open " + menu->title()->toUTF8()); }
    void menuDidClose(NSMenu* menu) { tell("close " + menu->title()->toUTF8()); }
    void tell(std::string what) {
        log.push_back(what);
        if (whenTold) whenTold(what);
    }

    std::vector<std::string> log;
    std::function<void()> whenTaken;
    std::function<void(const std::string&)> whenTold;
};

inline NSMenuItem* add(NSMenu* menu, const char* title, id target) {
    NSMenuItem* item =
        menu->addItemWithTitle_action_keyEquivalent(NSString::ofUTF8(title), "take:"_sel, u""_ns);
    item->setTarget(target);
    return item;
}

class MenuTracking : public ::testing::Test {
  protected:
    MenuTracking() {
        for (NSMenu* menu : {file.get(), edit.get(), recent.get()}) menu->setDelegate(taker);
        add(file, "New", taker);
        add(file, "Recent", taker)->setSubmenu(recent);
        file->addItem(NSMenuItem::separatorItem());
        add(file, "Disabled", nullptr)->setAction("nobody:"_sel);
        add(file, "Quit", taker)->setKeyEquivalent(u"q"_ns);
        for (const char* title : {"Anna", "Berta", "Bruno"}) add(recent, title, taker);
        add(edit, "Copy", taker);
        add(bar, "File", nullptr)->setSubmenu(file);
        add(bar, "Edit", nullptr)->setSubmenu(edit);
        screen.app->setMainMenu(bar);
        window = screen.window({{100, 100}, {400, 300}});
        for (NSMenu* menu : {file.get(), edit.get(), recent.get()})
            menu->setTitle(NSString::ofUTF8(menu == file ? "file" : menu == edit ? "edit" : "recent"));
    }

    ~MenuTracking() {
        if (timer) timer->invalidate();
    }

    // What the user does while a menu is open: one step after the other, with time between them.
    void plan(std::vector<std::function<void()>> itsSteps, double seconds = 0.25,
              NSString* mode = NSEventTrackingRunLoopMode) {
        steps = std::move(itsSteps);
        next = 0;
        if (timer) timer->invalidate();
        auto user = Listener::doing([this](id) { next < steps.size() ? steps[next++]() : key(0x1b); });
        timer.set(NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(seconds, user, "hear:"_sel,
                                                                                  nullptr, true));
        NSRunLoop::mainRunLoop()->addTimer_forMode(timer, mode);
    }
    void key(char16_t unit, std::uint32_t modifiers = 0) {
        BackendKey key;
        key.characters = key.charactersIgnoringModifiers = key.shortcutCharacters = std::u16string(1, unit);
        key.modifiers = modifiers;
        screen.backend->key(key);
    }
    std::function<void()> pressing(char16_t unit, std::uint32_t modifiers = 0) {
        return [=, this] { key(unit, modifiers); };
    }
    // The window of the menu that was opened last, and a place in its line.
    NSWindow* menuWindow() { return static_cast<NSWindow*>(screen.app->orderedWindows()->objectAtIndex(0)); }
    std::function<void()> pointing(int line) {
        return [=, this] { screen.backend->movePointer(placeOfLine(line)); };
    }
    PixelPoint placeOfLine(int line) {
        return screen.placeOf(menuWindow()->contentView(), {40, 5 + 22 * static_cast<float>(line) + 11});
    }
    PixelPoint placeOfTitle(float x) {
        NSView* view = window->contentView();
        return screen.placeOf(view, {x, NSMaxY(view->frame()) + 10});
    }
    std::function<void()> clicking() {
        return [this] {
            screen.backend->pressButton(1);
            screen.backend->releaseButton(1);
        };
    }
    std::string highlighted(NSMenu* menu) {
        return menu->highlightedItem() ? menu->highlightedItem()->title()->toUTF8() : "-";
    }
    void openContextMenu() { screen.click(window->contentView(), {50, 50}, 1, 0, 2); }
    std::string takeLog() { return joined(std::exchange(taker->log, {})); }

    InterfaceScope screen;
    Retained<MTTaker> taker = make<MTTaker>();
    Retained<NSMenu> bar = NSMenu::init(), file = NSMenu::init(), edit = NSMenu::init(),
                     recent = NSMenu::init();
    Retained<NSWindow> window;
    std::vector<std::function<void()>> steps;
    std::size_t next = 0;
    Retained<NSTimer> timer;
};

}  // namespace pelvor
