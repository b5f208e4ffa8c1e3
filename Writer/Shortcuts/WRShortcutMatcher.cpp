// SPDX-License-Identifier: Apache-2.0
#include "Writer/Shortcuts/WRShortcutMatcher.h"

#include <algorithm>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSTimer.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSMenu.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSWindow.h"
#include "Writer/LocalizedText.h"
#include "Writer/Shortcuts/ShortcutsLibrary.h"
#include "Writer/Shortcuts/WRShortcutLabel.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRShortcutMatcher, shortcutsLibrary) {
    methods.classLevel<"sharedMatcher", &WRShortcutMatcher::sharedMatcher>();
    methods.instance<"takeEvent:", &WRShortcutMatcher::takeEvent>();
    methods.instance<"waitingText", &WRShortcutMatcher::waitingText>();
    methods.instance<"stopWaiting", &WRShortcutMatcher::stopWaiting>();
    methods.instance<"timeIsOver:", &WRShortcutMatcher::timeIsOver>();
    methods.instance<"windowDidResignKey:", &WRShortcutMatcher::windowDidResignKey>();
    methods.instance<"conflictsInMenu:", &WRShortcutMatcher::conflictsInMenu>();
}

namespace {

struct Candidate {
    Retained<NSMenuItem> item;
    Retained<WRShortcut> shortcut;
};

// Typing begins no shortcut: no letter has to look through the menus.
bool mayBegin(NSEvent* event) {
    constexpr NSUInteger kCommands = NSCommandKeyMask | NSAlternateKeyMask | NSControlKeyMask;
    if (event->modifierFlags() & kCommands) return true;
    NSString* key = event->charactersIgnoringModifiers();
    return key->length() > 0 && key->characterAtIndex(0) >= NSUpArrowFunctionKey;
}

// The items that can be chosen by several keys, or also by one.
void collect(NSMenu* menu, bool takesSingleKeys, std::vector<Candidate>& found) {
    for (const auto& item : menu->items()) {
        if (item->hasSubmenu()) {
            collect(item->submenu(), takesSingleKeys, found);
            continue;
        }
        WRShortcut* shortcut =
            takesSingleKeys ? WRShortcut::shortcutOfItem(item) : WRShortcut::shownShortcutOfItem(item);
        if (shortcut && (takesSingleKeys || shortcut->isMultikey()) && !item->isHidden())
            found.push_back({item, Retained<WRShortcut>::retaining(shortcut)});
    }
}

}  // namespace

WRShortcutMatcher* WRShortcutMatcher::sharedMatcher() {
    static WRShortcutMatcher* const matcher = make<WRShortcutMatcher>().leak();
    return matcher;
}

bool WRShortcutMatcher::takeEvent(NSEvent* event) {
    if (!event) return false;
    const NSEventType type = event->type();
    if (type == NSLeftMouseDown || type == NSRightMouseDown || type == NSOtherMouseDown) stopWaiting();
    if (type != NSKeyDown) return false;
    const bool isWaiting = !_pressed.empty();
    if (!isWaiting && !mayBegin(event)) return false;
    NSMenu* menu = NSApplication::sharedApplication()->mainMenu();
    std::vector<Candidate> candidates;
    if (menu) collect(menu, false, candidates);
    const std::size_t place = _pressed.size();
    std::erase_if(candidates, [&](const Candidate& candidate) {
        const auto& keys = candidate.shortcut->keys();
        return keys.size() <= place || !std::equal(_pressed.begin(), _pressed.end(), keys.begin()) ||
               !keys[place].matches(event);
    });
    if (candidates.empty()) {
        NSString* key = event->charactersIgnoringModifiers();
        const bool isEscape = key->length() > 0 && key->characterAtIndex(0) == NSEscapeCharacter;
        stopWaiting();
        if (isWaiting && !isEscape) NSBeep();
        return isWaiting;
    }
    const auto complete = std::find_if(candidates.begin(), candidates.end(), [&](const Candidate& candidate) {
        return candidate.shortcut->keys().size() == place + 1;
    });
    if (complete == candidates.end()) {
        wait(candidates.front().shortcut->keys()[place]);
        return true;
    }
    stopWaiting();
    const auto item = complete->item;
    const auto itsMenu = Retained<NSMenu>::retaining(item->menu());
    itsMenu->validateItem(item);
    if (item->isEnabled())
        itsMenu->performItem(item);
    else
        NSBeep();
    return true;
}

// MARK: Waiting

NSString* WRShortcutMatcher::waitingText() {
    if (_pressed.empty()) return nullptr;
    return WRShortcut::textOf(_pressed)->stringByAppendingString(u" …"_ns);
}

void WRShortcutMatcher::wait(const WRShortcut::Key& key) {
    if (_pressed.empty())
        NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
            this, "windowDidResignKey:"_sel, NSWindowDidResignKeyNotification, nullptr);
    _pressed.push_back(key);
    if (_timer) _timer->invalidate();
    _timer.set(NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(
        kWaitingSeconds, this, "timeIsOver:"_sel, nullptr, false));
    showKeys();
}

void WRShortcutMatcher::showKeys() {
    NSWindow* key = NSApplication::sharedApplication()->keyWindow();
    if (!key) return;
    if (_window) _window->orderOut(nullptr);
    _window = WRShortcutLabel::windowWithText(waitingText(), key);
    _window->orderFront(nullptr);
}

void WRShortcutMatcher::stopWaiting() {
    if (_pressed.empty()) return;
    _pressed.clear();
    NSNotificationCenter::defaultCenter()->removeObserver(this);
    if (const auto timer = std::exchange(_timer, nullptr)) timer->invalidate();
    if (const auto window = std::exchange(_window, nullptr)) window->orderOut(nullptr);
}

void WRShortcutMatcher::timeIsOver(NSTimer*) { stopWaiting(); }
void WRShortcutMatcher::windowDidResignKey(NSNotification*) { stopWaiting(); }

// MARK: Conflicts

NSArray* WRShortcutMatcher::conflictsInMenu(NSMenu* menu) {
    NSMutableArray* sentences = NSMutableArray::array();
    if (!menu) return sentences;
    std::vector<Candidate> candidates;
    collect(menu, true, candidates);
    for (std::size_t i = 0; i < candidates.size(); ++i)
        for (std::size_t j = i + 1; j < candidates.size(); ++j) {
            const bool isFirstShorter = candidates[i].shortcut->begins(candidates[j].shortcut);
            const Candidate &shorter = candidates[isFirstShorter ? i : j],
                            &longer = candidates[isFirstShorter ? j : i];
            if (!shorter.shortcut->begins(longer.shortcut)) continue;
            sentences->addObject(
                shorter.shortcut->isEqual(longer.shortcut)
                    ? localizedFormat(u"_“%@” and “%@” have the same shortcut, %@."_ns, shorter.item->title(),
                                      longer.item->title(), shorter.shortcut->description())
                    : localizedFormat(u"_The shortcut of “%@”, %@, is the beginning of that of “%@”, %@."_ns,
                                      shorter.item->title(), shorter.shortcut->description(),
                                      longer.item->title(), longer.shortcut->description()));
        }
    return sentences;
}

}  // namespace pelvor
