// SPDX-License-Identifier: Apache-2.0
#include "Interface/Menus/MenuTracker.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSNotificationCenter.h"
#include "Foundation/RunLoop/Deadline.h"
#include "Interface/Drawing/Direction.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSScreen.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

constexpr double kRestSeconds = 0.15;    // the pointer rests on an item before its submenu opens
constexpr double kHeadingSeconds = 0.4;  // how long the pointer may be on its way to a submenu
constexpr double kClickSeconds = 0.35;   // a shorter press leaves the menu open
constexpr double kScrollSeconds = 0.04;  // between two lines
constexpr double kTypeSeconds = 1;       // letters that belong together
constexpr double kRounding = 0.001;
constexpr float kClickDistance = 5;
constexpr float kSubmenuOverlap = 3;  // how far a submenu reaches over its menu

constinit MenuTracker* runningTracker = nullptr;

NSApplication* application() { return NSApplication::sharedApplication(); }

// The screen that has the point, else the main one.
NSRect visibleFrameAround(NSPoint point) {
    for (id screen : NSScreen::screens())
        if (NSPointInRect(point, static_cast<NSScreen*>(screen)->frame()))
            return static_cast<NSScreen*>(screen)->visibleFrame();
    return NSScreen::mainScreen()->visibleFrame();
}

NSPoint placeOnScreen(NSEvent* event) {
    NSWindow* window = event->window();
    return window ? window->convertBaseToScreen(event->locationInWindow()) : event->locationInWindow();
}

}  // namespace

// MARK: Places

NSRect menuFrame(NSSize size, const MenuOpening& opening, float overlap, NSRect visible, bool isRightToLeft) {
    const NSRect anchor = opening.anchor;
    NSRect frame{{}, {std::min(size.width, NSWidth(visible)), std::min(size.height, NSHeight(visible))}};
    float& x = frame.origin.x;
    float top = 0;
    if (opening.side == MenuSide::beside) {
        const float before = NSMinX(anchor) - NSWidth(frame) + kSubmenuOverlap,
                    behind = NSMaxX(anchor) - kSubmenuOverlap;
        const bool fitsBefore = before >= NSMinX(visible),
                   fitsBehind = behind + NSWidth(frame) <= NSMaxX(visible);
        x = (isRightToLeft ? fitsBefore || !fitsBehind : !fitsBehind && fitsBefore) ? before : behind;
        top = NSMaxY(anchor) + metrics::kMenuInset;
    } else {
        x = isRightToLeft ? NSMaxX(anchor) - NSWidth(frame) : NSMinX(anchor);
        top = opening.side == MenuSide::over ? NSMaxY(anchor) + overlap : NSMinY(anchor);
    }
    if (opening.side == MenuSide::below) {
        const float roomBelow = NSMinY(anchor) - NSMinY(visible),
                    roomAbove = NSMaxY(visible) - NSMaxY(anchor);
        const bool isAbove = NSHeight(frame) > roomBelow && roomAbove > roomBelow;
        frame.size.height =
            std::min(NSHeight(frame), std::max({roomBelow, roomAbove, metrics::kMenuItemHeight}));
        if (isAbove) top = NSMaxY(anchor) + NSHeight(frame);
    }
    x = std::clamp(x, NSMinX(visible), std::max(NSMinX(visible), NSMaxX(visible) - NSWidth(frame)));
    frame.origin.y = std::clamp(top - NSHeight(frame), NSMinY(visible),
                                std::max(NSMinY(visible), NSMaxY(visible) - NSHeight(frame)));
    return frame;
}

// MARK: The loop

MenuTracker::~MenuTracker() {
    if (runningTracker == this) runningTracker = nullptr;
}

template <class Work>
void MenuTracker::guarded(Work work) {
    try {
        work();
    } catch (...) {
        reportCurrentException();
    }
}

Retained<NSMenuItem> MenuTracker::track(NSMenu* menu, const MenuOpening& opening) {
    if (runningTracker) return nullptr;
    return run(menu, opening);
}

Retained<NSMenuItem> MenuTracker::trackTitle(int title, bool isButtonDown, bool isByKeyboard,
                                             NSMenuItem* entered) {
    if (runningTracker || !_titles->menuOfTitle(title)) return nullptr;
    _openTitle = title;
    _titles->showOpenTitle(title);
    MenuOpening opening = _titles->openingOfTitle(title);
    opening.isButtonDown = isButtonDown;
    opening.isByKeyboard = isByKeyboard;
    opening.enteredItem = entered;
    auto chosen = run(_titles->menuOfTitle(title), opening);
    if (_titles) _titles->showOpenTitle(MenuTitles::kNoTitle);
    return chosen;
}

Retained<NSMenuItem> MenuTracker::run(NSMenu* menu, const MenuOpening& opening) {
    runningTracker = this;
    const auto held = Retained<NSMenu>::retaining(menu);
    auto* centre = NSNotificationCenter::defaultCenter();
    // Half a text, such as a dead key, would change the first key after the menu.
    NSInputManager::currentInputManager()->abandonMarkedTextInWindow(application()->keyWindow());
    guarded([&] { centre->postNotificationName_object(NSMenuDidBeginTrackingNotification, held); });
    _isButtonDown = opening.isButtonDown;
    _pressTime = steadyTime();
    _pointer = _formerPointer = _pressPlace = NSEvent::mouseLocation();
    DisplayConnection::shared().whenTrackingIsLost = [] { cancel(); };
    open(menu, opening, nullptr);
    loop();
    closeFrom(0);
    DisplayConnection::shared().whenTrackingIsLost = nullptr;
    DisplayConnection::shared().backend().endTracking();
    runningTracker = nullptr;
    guarded([&] { centre->postNotificationName_object(NSMenuDidEndTrackingNotification, held); });
    return _chosen;
}

void MenuTracker::loop() {
    while (!_isOver && !_levels.empty()) {
        AutoreleasePool pool;
        guarded([&] { refreshStale(); });
        const double next = std::min(_restAt, _scrollAt);
        NSDate* limit = next == kNever ? NSDate::distantFuture()
                                       : NSDate::dateWithTimeIntervalSinceNow(next - steadyTime());
        NSEvent* event = nullptr;
        bool hasWaited = false;
        guarded([&] {
            event = application()->nextEventMatchingMask_untilDate_inMode_dequeue(
                NSAnyEventMask, limit, NSEventTrackingRunLoopMode, true);
            hasWaited = true;
        });
        if (_isOver) break;
        const double now = steadyTime() + kRounding;
        if (event)
            guarded([&] { handle(event); });
        else if (hasWaited && now < next)
            _isOver = true;  // the application stops, or nothing can come any more
        if (now >= next) guarded([&] { handleTime(now); });
    }
}

void MenuTracker::handle(NSEvent* event) {
    if (application()->state().menuKeys.isAltAlone(event)) _isOver = true;
    switch (event->type()) {
        case NSMouseMoved:
        case NSLeftMouseDragged:
        case NSRightMouseDragged:
        case NSOtherMouseDragged:
            return pointerMoved(placeOnScreen(event));
        case NSLeftMouseDown:
        case NSRightMouseDown:
        case NSOtherMouseDown:
            return pointerPressed(placeOnScreen(event));
        case NSLeftMouseUp:
        case NSRightMouseUp:
        case NSOtherMouseUp:
            return pointerReleased(placeOnScreen(event));
        case NSScrollWheel:
            if (const std::size_t level = levelAt(placeOnScreen(event)); level < _levels.size())
                _levels[level].view->scrollBy(-event->deltaY() * metrics::kMenuItemHeight);
            return pointerMoved(placeOnScreen(event));
        case NSKeyDown:
            return keyPressed(event);
        case NSKeyUp:
        case NSFlagsChanged:
        case NSMouseEntered:
        case NSMouseExited:
        case NSCursorUpdate:
            return;
        default:
            break;
    }
    application()->state().handle(event);
    const bool losesFocus = event->type() == NSSystemDefined && !event->data1() &&
                            event->subtype() == static_cast<std::int16_t>(SystemEvent::focus);
    if (losesFocus) _isOver = true;
}

void MenuTracker::handleTime(double now) {
    if (now >= _restAt) rest();
    if (now < _scrollAt) return;
    _scrollAt = now + kScrollSeconds;
    if (_scrollLevel >= _levels.size() ||
        !_levels[_scrollLevel].view->scrollBy(static_cast<float>(_scrollDirection) *
                                              metrics::kMenuItemHeight))
        _scrollAt = kNever;
}

void MenuTracker::finish(NSMenuItem* chosen) {
    _chosen.set(chosen);
    _isOver = true;
}

void MenuTracker::cancel(NSMenu* menu) {
    MenuTracker* tracker = runningTracker;
    if (!tracker) return;
    const bool isTracked = std::any_of(tracker->_levels.begin(), tracker->_levels.end(),
                                       [&](const Level& level) { return !menu || level.menu == menu; });
    if (!isTracked || tracker->_isOver) return;
    tracker->_isOver = true;
    wake();
}

void MenuTracker::wake() {
    if (!runningTracker) return;
    application()->postEvent_atStart(
        NSEvent::otherEventWithType_location_modifierFlags_timestamp_windowNumber_context_subtype_data1_data2(
            NSApplicationDefined, NSZeroPoint, 0, steadyTime(), 0, nullptr, 0, 0, 0),
        true);
}

// MARK: Levels

void MenuTracker::open(NSMenu* menu, const MenuOpening& opening, NSMenuItem* opener) {
    Level level{Retained<NSMenu>::retaining(menu), nullptr, nullptr, Retained<NSMenuItem>::retaining(opener),
                opening};
    guarded([&] { menu->update(); });
    guarded([&] { menu->tellDelegate("menuWillOpen:"_sel); });
    if (_isOver) return;
    level.view = MenuListView::forMenu(menu, opening.firstItem);
    level.window = NSWindow::initWithContentRect_styleMask_backing_defer(
        {{0, 0}, level.view->wantedSize()}, NSBorderlessWindowMask, NSBackingStoreBuffered, true);
    level.window->setLevel(NSPopUpMenuWindowLevel);
    level.window->setContentView(level.view);
    level.window->setAcceptsMouseMovedEvents(true);
    guarded([&] { place(level); });  // who hears that windows move may raise
    guarded([&] { level.window->orderFront(nullptr); });
    DisplayConnection::shared().backend().beginTracking(level.window->state().backendWindow);
    _levels.push_back(std::move(level));
    const std::size_t index = _levels.size() - 1;
    if (opening.isByKeyboard) step(index, MenuLayout::kNoRow, 1);
    if (opening.itemOverAnchor) highlight(index, _levels[index].view->layout().rowOf(opening.itemOverAnchor));
    if (const int row = _levels[index].view->layout().rowOf(opening.enteredItem); row != MenuLayout::kNoRow) {
        highlight(index, row);
        openSubmenu(index, true);
    }
}

void MenuTracker::place(Level& level) {
    NSSize size = level.view->wantedSize();
    size.width = std::max(size.width, level.opening.leastWidth);
    float overlap = 0;
    const int row = level.view->layout().rowOf(level.opening.itemOverAnchor);
    if (row != MenuLayout::kNoRow) {
        const NSRect rect = level.view->rectOfRow(row);
        overlap = NSMinY(rect) + (NSHeight(rect) - NSHeight(level.opening.anchor)) / 2;
    }
    const NSRect anchor = level.opening.anchor;
    const NSRect visible = visibleFrameAround({NSMidX(anchor), NSMidY(anchor)});
    level.window->setFrame_display(
        menuFrame(size, level.opening, overlap, visible, interfaceRunsFromRightToLeft()), false);
    level.view->scrollBy(0);
}

void MenuTracker::closeFrom(std::size_t first) {
    while (_levels.size() > first) {
        const Level level = std::move(_levels.back());
        _levels.pop_back();
        guarded([&] { level.window->orderOut(nullptr); });
        guarded([&] { level.menu->setHighlightedItem(nullptr); });
        guarded([&] { level.menu->tellDelegate("menuDidClose:"_sel); });
    }
    _scrollAt = kNever;
}

// Takes note of what actions of timers, delegates and validators have made of the menus.
void MenuTracker::refreshStale() {
    for (std::size_t i = 0; i < _levels.size(); ++i) {
        if (_levels[i].view->isStale()) {
            _levels[i].view->refresh();
            place(_levels[i]);
            if (NSMenuItem* item = _levels[i].menu->highlightedItem();
                item && item->menu() != _levels[i].menu)
                highlight(i, MenuLayout::kNoRow);
        }
        if (i + 1 >= _levels.size()) continue;
        const Level& next = _levels[i + 1];
        if (next.opener->menu() != _levels[i].menu || next.opener->submenu() != next.menu) closeFrom(i + 1);
    }
}

void MenuTracker::openTitle(int title, bool isByKeyboard, NSMenuItem* entered) {
    NSMenu* menu = _titles->menuOfTitle(title);
    _restAt = kNever;
    closeFrom(0);
    _openTitle = title;
    _titles->showOpenTitle(title);
    MenuOpening opening = _titles->openingOfTitle(title);
    opening.isByKeyboard = isByKeyboard;
    opening.enteredItem = entered;
    if (menu && !_isOver) open(menu, opening, nullptr);
}

void MenuTracker::openSubmenu(std::size_t level, bool isByKeyboard) {
    const auto item = Retained<NSMenuItem>::retaining(_levels[level].menu->highlightedItem());
    const auto submenu = Retained<NSMenu>::retaining(item ? item->submenu() : nullptr);
    const bool isOpen = level + 1 < _levels.size() && _levels[level + 1].opener == item;
    closeFrom(isOpen ? level + 2 : level + 1);
    if (isOpen && isByKeyboard) step(level + 1, MenuLayout::kNoRow, 1);
    if (isOpen || !submenu || !item->isEnabled()) return;
    const Level& parent = _levels[level];
    const int row = parent.view->layout().rowOf(item);
    if (row == MenuLayout::kNoRow) return;
    const NSRect rect = parent.view->convertRect_toView(parent.view->rectOfRow(row), nullptr);
    MenuOpening opening{{parent.window->convertBaseToScreen(rect.origin), rect.size}};
    opening.side = MenuSide::beside;
    opening.isByKeyboard = isByKeyboard;
    open(submenu, opening, item);
}

// Opens the submenu of the highlighted item, and closes any other.
void MenuTracker::settleSubmenus(std::size_t level) {
    _restAt = kNever;
    if (level < _levels.size()) openSubmenu(level, false);
}

std::size_t MenuTracker::levelAt(NSPoint place) {
    for (std::size_t level = _levels.size(); level-- > 0;)
        if (NSPointInRect(place, _levels[level].window->frame())) return level;
    return _levels.size();
}

NSPoint MenuTracker::placeIn(std::size_t level, NSPoint place) {
    const Level& it = _levels[level];
    return it.view->convertPoint_fromView(it.window->convertScreenToBase(place), nullptr);
}

// MARK: The highlight

int MenuTracker::highlightedRow(std::size_t level) {
    return _levels[level].view->layout().rowOf(_levels[level].menu->highlightedItem());
}

void MenuTracker::highlight(std::size_t level, int row) {
    const auto view = _levels[level].view;  // the delegate may close the level
    const auto& rows = view->layout().rows();
    if (row != MenuLayout::kNoRow && !rows[static_cast<std::size_t>(row)].canBeChosen())
        row = MenuLayout::kNoRow;
    const int former = highlightedRow(level);
    if (row == former) return;
    view->redrawRow(former);
    view->redrawRow(row);
    const auto item =
        row == MenuLayout::kNoRow ? Retained<NSMenuItem>() : rows[static_cast<std::size_t>(row)].item;
    view->menu()->setHighlightedItem(item);
}

// The level that the keys go to: the last one with a highlight, or that a click opened.
std::size_t MenuTracker::activeLevel() {
    std::size_t level = _levels.size() - 1;
    while (level > 0 && !_levels[level].takesKeys && !_levels[level].menu->highlightedItem()) --level;
    return level;
}

// MARK: The mouse

void MenuTracker::pointerMoved(NSPoint place) {
    if (place == _pointer) return;
    _formerPointer = std::exchange(_pointer, place);
    _scrollAt = kNever;
    const int title = _titles ? _titles->titleAt(place) : MenuTitles::kNoTitle;
    if (title != MenuTitles::kNoTitle && title != _openTitle) return openTitle(title, false);
    const std::size_t level = levelAt(place);
    if (level == _levels.size()) {
        _restAt = kNever;
        return highlight(level - 1, MenuLayout::kNoRow);
    }
    if (const int arrow = _levels[level].view->arrowAt(placeIn(level, place))) {
        _scrollDirection = arrow;
        _scrollLevel = level;
        _scrollAt = steadyTime() + kScrollSeconds;
    }
    if (isHeadingForSubmenu(level, place)) {
        _restAt = steadyTime() + kHeadingSeconds;
        return;
    }
    const bool hasSubmenu = level + 1 < _levels.size();
    const int row = _levels[level].view->rowAt(placeIn(level, place));
    const int former = highlightedRow(level);
    highlight(level, row);
    if (row != former || hasSubmenu) _restAt = steadyTime() + kRestSeconds;
}

// Whether the pointer goes over other items on its way to the submenu that is open.
bool MenuTracker::isHeadingForSubmenu(std::size_t level, NSPoint place) {
    if (level + 1 >= _levels.size()) return false;
    const NSRect submenu = _levels[level + 1].window->frame();
    const bool isOnRight = NSMinX(submenu) >= NSMidX(_levels[level].window->frame());
    const float edge = isOnRight ? NSMinX(submenu) : NSMaxX(submenu);
    const float way = edge - _formerPointer.x, done = place.x - _formerPointer.x;
    if (done == 0 || (way > 0) != (done > 0) || std::abs(done) > std::abs(way)) return false;
    const float share = done / way;
    const float highest = _formerPointer.y + (NSMaxY(submenu) - _formerPointer.y) * share,
                lowest = _formerPointer.y + (NSMinY(submenu) - _formerPointer.y) * share;
    return place.y >= lowest && place.y <= highest;
}

// The pointer has come to rest: what is under it counts, wherever it was going.
void MenuTracker::rest() {
    _restAt = kNever;
    const std::size_t level = levelAt(_pointer);
    if (level == _levels.size()) return;
    highlight(level, _levels[level].view->rowAt(placeIn(level, _pointer)));
    settleSubmenus(level);
}

void MenuTracker::pointerPressed(NSPoint place) {
    pointerMoved(place);
    _pressPlace = place;
    _pressTime = steadyTime();
    if (levelAt(place) < _levels.size()) return rest();
    const int title = _titles ? _titles->titleAt(place) : MenuTitles::kNoTitle;
    if (title == MenuTitles::kNoTitle || title == _openTitle) _isOver = true;
}

void MenuTracker::pointerReleased(NSPoint place) {
    pointerMoved(place);
    const bool wasDown = std::exchange(_isButtonDown, false);
    const bool isClick = steadyTime() - _pressTime < kClickSeconds &&
                         std::hypot(place.x - _pressPlace.x, place.y - _pressPlace.y) < kClickDistance;
    if (wasDown && isClick) return;  // the click that opened the menu
    const std::size_t level = levelAt(place);
    if (level == _levels.size()) {
        if (wasDown && (!_titles || _titles->titleAt(place) == MenuTitles::kNoTitle)) _isOver = true;
        return;
    }
    NSMenuItem* item = _levels[level].menu->highlightedItem();
    if (!item || _levels[level].view->rowAt(placeIn(level, place)) != highlightedRow(level)) return;
    if (!item->hasSubmenu()) return finish(item);
    settleSubmenus(level);
    if (level + 1 < _levels.size()) _levels[level + 1].takesKeys = true;
}

// MARK: The keyboard

void MenuTracker::keyPressed(NSEvent* event) {
    NSString* characters = event->charactersIgnoringModifiers();
    if (characters->length() == 0) return;
    _restAt = kNever;
    constexpr NSUInteger kCommands = NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask;
    if (event->modifierFlags() & kCommands) {
        NSMenu* menu = _levels[0].menu;
        while (NSMenu* super = menu->supermenu()) menu = super;
        if (const auto item = menu->itemForKeyEvent(event)) return finish(item);
        if (NSMenuItem* titled = _titles ? _titles->itemForLetter(event) : nullptr)
            openTitle(_titles->titleOfItem(titled), true, titled);
        return;
    }
    const double now = steadyTime();
    const bool isTyping = now - _typeTime < kTypeSeconds && !_typed.empty();
    const unichar key = characters->characterAtIndex(0);
    if ((key != ' ' || !isTyping) && moveByKey(key))
        _typed.clear();
    else
        typeSelect(event->characters(), now);
}

bool MenuTracker::moveByKey(char16_t key) {
    const std::size_t level = activeLevel();
    const auto& rows = _levels[level].view->layout().rows();
    const int row = highlightedRow(level), count = static_cast<int>(rows.size());
    if (interfaceRunsFromRightToLeft()) {
        if (key == NSLeftArrowFunctionKey)
            key = NSRightArrowFunctionKey;
        else if (key == NSRightArrowFunctionKey)
            key = NSLeftArrowFunctionKey;
    }
    switch (key) {
        case NSDownArrowFunctionKey:
            return step(level, row, 1), true;
        case NSUpArrowFunctionKey:
            return step(level, row == MenuLayout::kNoRow ? count : row, -1), true;
        case NSHomeFunctionKey:
            return step(level, MenuLayout::kNoRow, 1), true;
        case NSEndFunctionKey:
            return step(level, count, -1), true;
        case NSPageDownFunctionKey:
        case NSPageUpFunctionKey: {
            const int page =
                static_cast<int>(NSHeight(_levels[level].view->bounds()) / metrics::kMenuItemHeight);
            if (key == NSPageDownFunctionKey)
                return step(level, std::min(std::max(row, 0) + page, count) - 1, 1), true;
            return step(level, std::max(row - page, -1) + 1, -1), true;
        }
        case NSRightArrowFunctionKey:
            return goIn(level), true;
        case NSLeftArrowFunctionKey:
            return goOut(level), true;
        case NSCarriageReturnCharacter:
        case NSEnterCharacter:
        case ' ':
            if (row == MenuLayout::kNoRow) return true;
            if (rows[static_cast<std::size_t>(row)].item->hasSubmenu())
                openSubmenu(level, true);
            else
                finish(rows[static_cast<std::size_t>(row)].item);
            return true;
        case NSEscapeCharacter:
            if (level > 0)
                goOut(level);
            else
                _isOver = true;
            return true;
        case NSF10FunctionKey:
            return _isOver = true, true;
        default:
            return false;
    }
}

// Highlights the next item that can be chosen, round the end.
void MenuTracker::step(std::size_t level, int from, int direction) {
    const auto view = _levels[level].view;
    const auto& rows = view->layout().rows();
    const int count = static_cast<int>(rows.size());
    for (int steps = 0, row = from; steps < count; ++steps) {
        row = (row + direction + count) % count;
        if (row < 0 || !rows[static_cast<std::size_t>(row)].canBeChosen()) continue;
        closeFrom(level + 1);
        highlight(level, row);
        view->scrollRowToVisible(row);
        return;
    }
}

void MenuTracker::goIn(std::size_t level) {
    NSMenuItem* item = _levels[level].menu->highlightedItem();
    if (item && item->hasSubmenu())
        openSubmenu(level, true);
    else if (!item && level > 0)
        step(level, MenuLayout::kNoRow, 1);
    else
        stepTitle(1);
}

void MenuTracker::goOut(std::size_t level) {
    if (level > 0)
        closeFrom(level);
    else
        stepTitle(-1);
}

void MenuTracker::stepTitle(int direction) {
    if (!_titles) return;
    const int count = _titles->titleCount();
    for (int steps = 1, title = _openTitle; steps < count; ++steps) {
        title = (title + direction + count) % count;
        if (_titles->menuOfTitle(title)) return openTitle(title, true);
    }
}

// Highlights the first item whose title begins with what was typed; the same letter again goes on to the
// next.
void MenuTracker::typeSelect(NSString* characters, double now) {
    if (characters->length() == 0 || characters->characterAtIndex(0) < u' ' ||
        (characters->characterAtIndex(0) >= 0xF700 && characters->characterAtIndex(0) <= 0xF8FF))
        return;
    if (now - _typeTime >= kTypeSeconds) _typed.clear();
    _typeTime = now;
    for (NSUInteger i = 0; i < characters->length(); ++i) _typed += characters->characterAtIndex(i);
    const std::size_t level = activeLevel();
    const auto view = _levels[level].view;
    const auto& rows = view->layout().rows();
    const int count = static_cast<int>(rows.size());
    const bool isOneLetter = _typed.find_first_not_of(_typed[0]) == std::u16string::npos;
    NSString* prefix = NSString::stringWithCharacters_length(
        _typed.data(), isOneLetter ? 1 : static_cast<NSUInteger>(_typed.size()));
    const int start = std::max(0, highlightedRow(level) + (isOneLetter ? 1 : 0));
    for (int steps = 0; steps < count; ++steps) {
        const int row = (start + steps) % count;
        const auto& [item, title, keys, y, height] = rows[static_cast<std::size_t>(row)];
        const bool matches =
            item->title()->rangeOfString_options(prefix, NSCaseInsensitiveSearch | NSAnchoredSearch).length >
            0;
        if (!matches || !rows[static_cast<std::size_t>(row)].canBeChosen()) continue;
        closeFrom(level + 1);
        highlight(level, row);
        view->scrollRowToVisible(row);
        return;
    }
}

}  // namespace pelvor
