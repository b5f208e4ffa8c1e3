// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSWindow.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSText.h"
#include "Interface/Texts/CopiedText.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSWindow, interfaceLibrary) {
    methods.creator<"initWithContentRect:styleMask:backing:defer:",
                    &NSWindow::initWithContentRect_styleMask_backing_defer>();
    methods.instance<"styleMask", &NSWindow::styleMask>();
    methods.instance<"frame", &NSWindow::frame>();
    methods.instance<"contentRectForFrameRect:", &NSWindow::contentRectForFrameRect>();
    methods.instance<"frameRectForContentRect:", &NSWindow::frameRectForContentRect>();
    methods.instance<"setFrame:display:", &NSWindow::setFrame_display>();
    methods.instance<"setFrameOrigin:", &NSWindow::setFrameOrigin>();
    methods.instance<"setFrameTopLeftPoint:", &NSWindow::setFrameTopLeftPoint>();
    methods.instance<"setContentSize:", &NSWindow::setContentSize>();
    methods.instance<"center", &NSWindow::center>();
    methods.instance<"cascadeTopLeftFromPoint:", &NSWindow::cascadeTopLeftFromPoint>();
    methods.instance<"constrainFrameRect:toScreen:", &NSWindow::constrainFrameRect_toScreen>();
    methods.instance<"contentMinSize", &NSWindow::contentMinSize>();
    methods.instance<"setContentMinSize:", &NSWindow::setContentMinSize>();
    methods.instance<"contentMaxSize", &NSWindow::contentMaxSize>();
    methods.instance<"setContentMaxSize:", &NSWindow::setContentMaxSize>();
    methods.instance<"screen", &NSWindow::screen>();
    methods.instance<"userSpaceScaleFactor", &NSWindow::userSpaceScaleFactor>();
    methods.instance<"contentView", &NSWindow::contentView>();
    methods.instance<"setContentView:", &NSWindow::setContentView>();
    methods.instance<"convertBaseToScreen:", &NSWindow::convertBaseToScreen>();
    methods.instance<"convertScreenToBase:", &NSWindow::convertScreenToBase>();
    methods.instance<"stringWithSavedFrame", &NSWindow::stringWithSavedFrame>();
    methods.instance<"setFrameFromString:", &NSWindow::setFrameFromString>();
    methods.instance<"setFrameUsingName:", &NSWindow::setFrameUsingName>();
    methods.instance<"saveFrameUsingName:", &NSWindow::saveFrameUsingName>();
    methods.instance<"setFrameAutosaveName:", &NSWindow::setFrameAutosaveName>();
    methods.instance<"frameAutosaveName", &NSWindow::frameAutosaveName>();
    methods.instance<"title", &NSWindow::title>();
    methods.instance<"setTitle:", &NSWindow::setTitle>();
    methods.instance<"setTitleWithRepresentedFilename:", &NSWindow::setTitleWithRepresentedFilename>();
    methods.instance<"representedFilename", &NSWindow::representedFilename>();
    methods.instance<"setRepresentedFilename:", &NSWindow::setRepresentedFilename>();
    methods.instance<"showsMenuBar", &NSWindow::showsMenuBar>();
    methods.instance<"setShowsMenuBar:", &NSWindow::setShowsMenuBar>();
    methods.instance<"isDocumentEdited", &NSWindow::isDocumentEdited>();
    methods.instance<"setDocumentEdited:", &NSWindow::setDocumentEdited>();
    methods.instance<"backgroundColor", &NSWindow::backgroundColor>();
    methods.instance<"setBackgroundColor:", &NSWindow::setBackgroundColor>();
    methods.instance<"windowNumber", &NSWindow::windowNumber>();
    methods.instance<"level", &NSWindow::level>();
    methods.instance<"setLevel:", &NSWindow::setLevel>();
    methods.instance<"isVisible", &NSWindow::isVisible>();
    methods.instance<"orderFront:", &NSWindow::orderFront>();
    methods.instance<"orderBack:", &NSWindow::orderBack>();
    methods.instance<"orderOut:", &NSWindow::orderOut>();
    methods.instance<"orderFrontRegardless", &NSWindow::orderFrontRegardless>();
    methods.instance<"orderWindow:relativeTo:", &NSWindow::orderWindow_relativeTo>();
    methods.instance<"makeKeyAndOrderFront:", &NSWindow::makeKeyAndOrderFront>();
    methods.instance<"close", &NSWindow::close>();
    methods.instance<"performClose:", &NSWindow::performClose>();
    methods.instance<"isReleasedWhenClosed", &NSWindow::isReleasedWhenClosed>();
    methods.instance<"setReleasedWhenClosed:", &NSWindow::setReleasedWhenClosed>();
    methods.instance<"miniaturize:", &NSWindow::miniaturize>();
    methods.instance<"deminiaturize:", &NSWindow::deminiaturize>();
    methods.instance<"isMiniaturized", &NSWindow::isMiniaturized>();
    methods.instance<"performMiniaturize:", &NSWindow::performMiniaturize>();
    methods.instance<"zoom:", &NSWindow::zoom>();
    methods.instance<"performZoom:", &NSWindow::performZoom>();
    methods.instance<"isZoomed", &NSWindow::isZoomed>();
    methods.instance<"isFullScreen", &NSWindow::isFullScreen>();
    methods.instance<"setFullScreen:", &NSWindow::setFullScreen>();
    methods.instance<"hidesOnDeactivate", &NSWindow::hidesOnDeactivate>();
    methods.instance<"setHidesOnDeactivate:", &NSWindow::setHidesOnDeactivate>();
    methods.instance<"addChildWindow:ordered:", &NSWindow::addChildWindow_ordered>();
    methods.instance<"removeChildWindow:", &NSWindow::removeChildWindow>();
    methods.instance<"childWindows", &NSWindow::childWindows>();
    methods.instance<"parentWindow", &NSWindow::parentWindow>();
    methods.instance<"isKeyWindow", &NSWindow::isKeyWindow>();
    methods.instance<"isMainWindow", &NSWindow::isMainWindow>();
    methods.instance<"canBecomeKeyWindow", &NSWindow::canBecomeKeyWindow>();
    methods.instance<"canBecomeMainWindow", &NSWindow::canBecomeMainWindow>();
    methods.instance<"makeKeyWindow", &NSWindow::makeKeyWindow>();
    methods.instance<"makeMainWindow", &NSWindow::makeMainWindow>();
    methods.instance<"becomeKeyWindow", &NSWindow::becomeKeyWindow>();
    methods.instance<"resignKeyWindow", &NSWindow::resignKeyWindow>();
    methods.instance<"becomeMainWindow", &NSWindow::becomeMainWindow>();
    methods.instance<"resignMainWindow", &NSWindow::resignMainWindow>();
    methods.instance<"worksWhenModal", &NSWindow::worksWhenModal>();
    methods.instance<"firstResponder", &NSWindow::firstResponder>();
    methods.instance<"makeFirstResponder:", &NSWindow::makeFirstResponder>();
    methods.instance<"initialFirstResponder", &NSWindow::initialFirstResponder>();
    methods.instance<"setInitialFirstResponder:", &NSWindow::setInitialFirstResponder>();
    methods.instance<"selectNextKeyView:", &NSWindow::selectNextKeyView>();
    methods.instance<"selectPreviousKeyView:", &NSWindow::selectPreviousKeyView>();
    methods.instance<"selectKeyViewFollowingView:", &NSWindow::selectKeyViewFollowingView>();
    methods.instance<"selectKeyViewPrecedingView:", &NSWindow::selectKeyViewPrecedingView>();
    methods.instance<"recalculateKeyViewLoop", &NSWindow::recalculateKeyViewLoop>();
    methods.instance<"autorecalculatesKeyViewLoop", &NSWindow::autorecalculatesKeyViewLoop>();
    methods.instance<"setAutorecalculatesKeyViewLoop:", &NSWindow::setAutorecalculatesKeyViewLoop>();
    methods.instance<"fieldEditor:forObject:", &NSWindow::fieldEditor_forObject>();
    methods.instance<"endEditingFor:", &NSWindow::endEditingFor>();
    methods.instance<"sendEvent:", &NSWindow::sendEvent>();
    methods.instance<"postEvent:atStart:", &NSWindow::postEvent_atStart>();
    methods.instance<"nextEventMatchingMask:", &NSWindow::nextEventMatchingMask>();
    methods.instance<"nextEventMatchingMask:untilDate:inMode:dequeue:",
                     &NSWindow::nextEventMatchingMask_untilDate_inMode_dequeue>();
    methods.instance<"discardEventsMatchingMask:beforeEvent:",
                     &NSWindow::discardEventsMatchingMask_beforeEvent>();
    methods.instance<"currentEvent", &NSWindow::currentEvent>();
    methods.instance<"mouseLocationOutsideOfEventStream", &NSWindow::mouseLocationOutsideOfEventStream>();
    methods.instance<"acceptsMouseMovedEvents", &NSWindow::acceptsMouseMovedEvents>();
    methods.instance<"setAcceptsMouseMovedEvents:", &NSWindow::setAcceptsMouseMovedEvents>();
    methods.instance<"ignoresMouseEvents", &NSWindow::ignoresMouseEvents>();
    methods.instance<"setIgnoresMouseEvents:", &NSWindow::setIgnoresMouseEvents>();
    methods.instance<"viewsNeedDisplay", &NSWindow::viewsNeedDisplay>();
    methods.instance<"setViewsNeedDisplay:", &NSWindow::setViewsNeedDisplay>();
    methods.instance<"display", &NSWindow::display>();
    methods.instance<"displayIfNeeded", &NSWindow::displayIfNeeded>();
    methods.instance<"disableFlushWindow", &NSWindow::disableFlushWindow>();
    methods.instance<"enableFlushWindow", &NSWindow::enableFlushWindow>();
    methods.instance<"isFlushWindowDisabled", &NSWindow::isFlushWindowDisabled>();
    methods.instance<"update", &NSWindow::update>();
    methods.instance<"areCursorRectsEnabled", &NSWindow::areCursorRectsEnabled>();
    methods.instance<"disableCursorRects", &NSWindow::disableCursorRects>();
    methods.instance<"enableCursorRects", &NSWindow::enableCursorRects>();
    methods.instance<"invalidateCursorRectsForView:", &NSWindow::invalidateCursorRectsForView>();
    methods.instance<"resetCursorRects", &NSWindow::resetCursorRects>();
    methods.instance<"discardCursorRects", &NSWindow::discardCursorRects>();
    methods.instance<"delegate", &NSWindow::delegate>();
    methods.instance<"setDelegate:", &NSWindow::setDelegate>();
}

namespace {

ApplicationState& application() { return NSApplication::sharedApplication()->state(); }

}  // namespace

NSWindow::NSWindow() : _state(std::make_unique<WindowState>(this)) {}

NSWindow::~NSWindow() {
    if (_state->root) _state->root->setWindow(nullptr);
    if (NSApplication* app = NSApp()) app->state().forget(this);
    DisplayConnection* display = DisplayConnection::existing();
    if (!display || !_state->backendWindow) return;
    display->remove(_state->backendWindow);
    display->backend().destroyWindow(_state->backendWindow);
    display->needsTurn();
}

Retained<NSWindow> NSWindow::initWithContentRect_styleMask_backing_defer(NSRect contentRect,
                                                                         NSUInteger styleMask,
                                                                         NSBackingStoreType, bool,
                                                                         Class* cls) {
    ApplicationState& app = application();
    auto window = make<NSWindow>(cls);
    WindowState& state = *window->_state;
    state.styleMask = styleMask;
    state.number = ++app.lastWindowNumber;
    PixelRect pixels = DisplayConnection::shared().pixelsOnScreen(contentRect);
    pixels.width = std::max(pixels.width, 1);
    pixels.height = std::max(pixels.height, 1);
    state.content = DisplayConnection::shared().rectOnScreen(pixels);
    state.title.set(u""_ns);
    state.backgroundColor.set(themeColor(ThemeColor::window));
    state.root = WindowRootView::initWithFrame({{0, 0}, state.content.size});
    state.root->setWindow(window);
    state.root->setNextResponder(window);
    app.windows.push_back(window);
    window->setContentView(nullptr);
    state.updateMenuBar();
    return window;
}

NSString* NSWindow::description() {
    return NSString::stringWithFormat(u"<%s %p: %d \"%@\" %@>"_ns, isa()->publicName(), this, _state->number,
                                      title(), NSStringFromRect(_state->content));
}

// MARK: Frame and contents

NSUInteger NSWindow::styleMask() { return _state->styleMask; }

NSRect NSWindow::frameRectForContentRect(NSRect rect) {
    rect.size.height += _state->barHeight();
    return _state->frameAround(rect);
}

NSRect NSWindow::contentRectForFrameRect(NSRect frame) {
    const NSRect around = frameRectForContentRect({});
    return {{frame.origin.x - around.origin.x, frame.origin.y - around.origin.y},
            {std::max(frame.size.width - around.size.width, 1.0F),
             std::max(frame.size.height - around.size.height, 1.0F)}};
}

NSRect NSWindow::frame() { return _state->frameAround(_state->content); }

void NSWindow::setFrame_display(NSRect frame, bool display) {
    const auto held = Retained<NSWindow>::retaining(this);
    NSRect content = contentRectForFrameRect(frame);
    content.size.height += _state->barHeight();
    _state->setContent(content);
    if (display) displayIfNeeded();
}

void NSWindow::setFrameOrigin(NSPoint origin) { setFrame_display({origin, frame().size}, false); }

void NSWindow::setFrameTopLeftPoint(NSPoint corner) {
    setFrameOrigin({corner.x, corner.y - frame().size.height});
}

void NSWindow::setContentSize(NSSize size) {
    size.height += _state->barHeight();
    NSRect content = _state->content;
    content.origin.y += content.size.height - size.height;  // the upper edge stays
    content.size = size;
    _state->setContent(content);
}

void NSWindow::center() {
    const bool isNewPanel = _state->isPanel && !_state->wasShown;
    NSWindow* main = isNewPanel ? application().mainWindow : nullptr;
    NSScreen* on = main ? main->screen() : isNewPanel ? nullptr : screen();
    const NSRect visible = (on ? on : NSScreen::mainScreen())->visibleFrame();
    const NSRect room = main ? main->frame() : visible;
    const NSSize size = frame().size;
    const auto between = [](float place, float first, float last) {
        return std::clamp(std::round(place), first, std::max(first, last));
    };
    setFrameOrigin({between(NSMidX(room) - size.width / 2, NSMinX(visible), NSMaxX(visible) - size.width),
                    between(NSMinY(room) + (NSHeight(room) - size.height) * 2 / 3, NSMinY(visible),
                            NSMaxY(visible) - size.height)});
}

NSPoint NSWindow::cascadeTopLeftFromPoint(NSPoint corner) {
    constexpr float kStep = 24;
    if (corner != NSZeroPoint) setFrameTopLeftPoint(corner);
    const NSRect now = frame();
    NSScreen* on = screen() ? screen() : NSScreen::mainScreen();
    const NSRect room = on->visibleFrame();
    NSPoint next{now.origin.x + kStep, NSMaxY(now) - kStep};
    if (next.x + now.size.width > NSMaxX(room)) next.x = room.origin.x;
    if (next.y - now.size.height < room.origin.y) next.y = NSMaxY(room);
    return next;
}

NSRect NSWindow::constrainFrameRect_toScreen(NSRect frame, NSScreen* screen) {
    if (!screen) return frame;
    const NSRect room = screen->visibleFrame();
    frame.size.height = std::min(frame.size.height, room.size.height);
    frame.size.width = std::min(frame.size.width, room.size.width);
    frame.origin.y =
        std::clamp(frame.origin.y, room.origin.y - frame.size.height + 40, NSMaxY(room) - frame.size.height);
    frame.origin.x = std::clamp(frame.origin.x, room.origin.x - frame.size.width + 40, NSMaxX(room) - 40);
    return frame;
}

NSSize NSWindow::contentMinSize() { return _state->minSize; }
NSSize NSWindow::contentMaxSize() { return _state->maxSize; }

void NSWindow::setContentMinSize(NSSize size) {
    _state->minSize = size;
    _state->setLimits();
}
void NSWindow::setContentMaxSize(NSSize size) {
    _state->maxSize = size;
    _state->setLimits();
}

NSScreen* NSWindow::screen() {
    NSScreen* best = nullptr;
    float most = 0;
    for (id each : NSScreen::screens()) {
        auto* candidate = static_cast<NSScreen*>(each);
        const NSSize common = NSIntersectionRect(candidate->frame(), _state->content).size;
        if (common.width * common.height <= most) continue;
        most = common.width * common.height;
        best = candidate;
    }
    return best;
}

float NSWindow::userSpaceScaleFactor() { return DisplayConnection::shared().scale(); }

NSView* NSWindow::contentView() { return _state->contentView; }

void NSWindow::setContentView(NSView* view) {
    if (view && view == _state->contentView) return;
    const auto held = Retained<NSWindow>::retaining(this);
    Retained<NSView> taken =
        view ? Retained<NSView>::retaining(view) : NSView::initWithFrame({{0, 0}, _state->content.size});
    if (Retained<NSView> old = std::exchange(_state->contentView, nullptr)) old->removeFromSuperview();
    _state->contentView = taken;
    _state->root->addSubview_positioned_relativeTo(taken, NSWindowBelow, nullptr);
    _state->layOut();
}

NSPoint NSWindow::convertBaseToScreen(NSPoint point) {
    return {point.x + _state->content.origin.x, point.y + _state->content.origin.y};
}
NSPoint NSWindow::convertScreenToBase(NSPoint point) {
    return {point.x - _state->content.origin.x, point.y - _state->content.origin.y};
}

namespace {

NSString* frameKey(NSString* name) { return NSString::stringWithFormat(u"NSWindow Frame %@"_ns, name); }

}  // namespace

NSString* NSWindow::stringWithSavedFrame() { return NSStringFromRect(frame()); }

void NSWindow::setFrameFromString(NSString* text) {
    const NSRect frame = NSRectFromString(text);
    if (NSIsEmptyRect(frame)) return;
    _state->keepsFrame = true;
    setFrame_display(frame, true);
}

bool NSWindow::setFrameUsingName(NSString* name) {
    if (!name) return false;
    NSString* text = NSUserDefaults::standardUserDefaults()->stringForKey(frameKey(name));
    if (text) setFrameFromString(text);
    return text;
}

void NSWindow::saveFrameUsingName(NSString* name) {
    if (name)
        NSUserDefaults::standardUserDefaults()->setObject_forKey(stringWithSavedFrame(), frameKey(name));
}

bool NSWindow::setFrameAutosaveName(NSString* name) {
    _state->autosaveName = nullptr;
    if (!name) return false;
    setFrameUsingName(name);
    _state->autosaveName = name->copy();
    return true;
}

NSString* NSWindow::frameAutosaveName() { return _state->autosaveName; }

// MARK: Title and looks

NSString* NSWindow::title() { return _state->title; }

void NSWindow::setTitle(NSString* title) {
    _state->title = copiedText(title);
    if (!_state->backendWindow) return;
    const std::string text = _state->title->toUTF8();
    WindowChanges changes;
    changes.title = &text;
    DisplayConnection::shared().backend().configure(_state->backendWindow, changes);
    DisplayConnection::shared().needsTurn();
}

void NSWindow::setTitleWithRepresentedFilename(NSString* path) {
    if (!path) path = u""_ns;
    setRepresentedFilename(path);
    setTitle(NSString::stringWithFormat(u"%@ \u2014 %@"_ns, path->lastPathComponent(),
                                        path->stringByDeletingLastPathComponent()));
}

NSString* NSWindow::representedFilename() {
    return _state->representedFilename ? _state->representedFilename.get() : u""_ns;
}
void NSWindow::setRepresentedFilename(NSString* path) {
    _state->representedFilename = path ? path->copy() : nullptr;
}

bool NSWindow::showsMenuBar() { return _state->showsMenuBar; }
void NSWindow::setShowsMenuBar(bool shows) {
    _state->showsMenuBar = shows;
    _state->updateMenuBar();
}

bool NSWindow::isDocumentEdited() { return _state->isDocumentEdited; }
void NSWindow::setDocumentEdited(bool isEdited) {
    if (std::exchange(_state->isDocumentEdited, isEdited) == isEdited || !_state->backendWindow) return;
    WindowChanges changes;
    changes.isDocumentEdited = &isEdited;
    DisplayConnection::shared().backend().configure(_state->backendWindow, changes);
    DisplayConnection::shared().needsTurn();
}

NSColor* NSWindow::backgroundColor() { return _state->backgroundColor; }
void NSWindow::setBackgroundColor(NSColor* color) {
    _state->backgroundColor.set(color ? color : themeColor(ThemeColor::window));
    _state->root->setNeedsDisplay(true);
}

// MARK: On the screen

NSInteger NSWindow::windowNumber() { return _state->number; }
NSInteger NSWindow::level() { return _state->level; }
void NSWindow::setLevel(NSInteger level) { _state->level = level; }
bool NSWindow::isVisible() { return _state->isVisible; }

void NSWindow::orderFront(id) { orderWindow_relativeTo(NSWindowAbove, 0); }
void NSWindow::orderBack(id) { orderWindow_relativeTo(NSWindowBelow, 0); }
void NSWindow::orderFrontRegardless() { orderFront(nullptr); }

void NSWindow::orderWindow_relativeTo(NSWindowOrderingMode place, NSInteger otherNumber) {
    if (place == NSWindowOut) return orderOut(nullptr);
    const auto held = Retained<NSWindow>::retaining(this);
    WindowState& state = *_state;
    if (!state.isVisible) state.updateMenuBar();
    if (!std::exchange(state.wasShown, true)) {
        if (state.styleMask & NSTitledWindowMask) {
            NSScreen* on = screen() ? screen() : NSScreen::mainScreen();
            const NSRect now = frame(), allowed = constrainFrameRect_toScreen(now, on);
            if (now != allowed) setFrame_display(allowed, false);
        }
        Retained<Object> first = state.initialFirstResponder.object();
        if (auto view = cast<NSView>(first.get()); view && firstResponder() == this) makeFirstResponder(view);
    }
    auto& ordered = application().ordered;
    std::erase_if(ordered, [&](const auto& window) { return window == this; });
    auto position = place == NSWindowAbove ? ordered.begin() : ordered.end();
    for (auto each = ordered.begin(); each != ordered.end(); ++each)
        if ((*each)->windowNumber() == otherNumber) position = place == NSWindowAbove ? each : each + 1;
    ordered.insert(position, held);
    state.isClosed = false;
    state.show(true, place == NSWindowAbove, false);
    for (const auto& child : std::vector<Retained<NSWindow>>(state.children))
        if (place == NSWindowAbove || !child->isVisible()) child->orderFront(nullptr);
}

void NSWindow::orderOut(id) {
    if (!_state->isVisible) return;
    const auto held = Retained<NSWindow>::retaining(this);
    for (const auto& child : std::vector<Retained<NSWindow>>(_state->children)) child->orderOut(nullptr);
    ApplicationState& app = application();
    std::erase_if(app.ordered, [&](const auto& window) { return window == this; });
    _state->show(false, false, false);
    const bool wasKey = app.keyWindow == this;
    if (wasKey) app.setKeyWindow(nullptr);
    if (app.mainWindow == this) app.setMainWindow(nullptr);
    if (wasKey) app.pickKeyWindow();
}

void NSWindow::makeKeyAndOrderFront(id sender) {
    const auto held = Retained<NSWindow>::retaining(this);
    orderFront(sender);
    makeKeyWindow();
}

void NSWindow::close() {
    const auto held = Retained<NSWindow>::retaining(this);
    if (std::exchange(_state->isClosed, true)) return;
    _state->notify(NSWindowWillCloseNotification, "windowWillClose:"_sel);
    if (NSWindow* parent = parentWindow()) parent->removeChildWindow(this);
    const bool wasVisible = _state->isVisible;
    orderOut(nullptr);
    if (wasVisible) application().noteClosed();
}

void NSWindow::performClose(id) {
    const auto held = Retained<NSWindow>::retaining(this);
    if (!(_state->styleMask & NSClosableWindowMask)) return NSBeep();
    const SEL question = "windowShouldClose:"_sel;
    const Retained<Object> asked = _state->delegate.object();
    if (asked && asked->respondsToSelector(question)) {
        if (!send<bool>(asked.get(), question, this)) return;
    } else if (respondsToSelector(question) && !send<bool>(this, question, this)) {
        return;
    }
    close();
}

bool NSWindow::isReleasedWhenClosed() { return _state->isReleasedWhenClosed; }
void NSWindow::setReleasedWhenClosed(bool isReleased) { _state->isReleasedWhenClosed = isReleased; }

namespace {

// Asks the back end for one of the states of a window; what comes of it is reported.
void wish(WindowState& state, const bool* WindowChanges::*change, bool value) {
    state.createBackendWindow();
    if (!state.backendWindow) return;
    WindowChanges changes;
    changes.*change = &value;
    DisplayConnection::shared().backend().configure(state.backendWindow, changes);
    DisplayConnection::shared().needsTurn();
}

}  // namespace

void NSWindow::miniaturize(id) { wish(*_state, &WindowChanges::isMinimized, true); }
void NSWindow::deminiaturize(id) { wish(*_state, &WindowChanges::isMinimized, false); }
bool NSWindow::isMiniaturized() { return _state->isMinimized; }
void NSWindow::performMiniaturize(id sender) {
    if (_state->styleMask & NSMiniaturizableWindowMask)
        miniaturize(sender);
    else
        NSBeep();
}
void NSWindow::zoom(id) { wish(*_state, &WindowChanges::isZoomed, !_state->isZoomed); }
void NSWindow::performZoom(id sender) {
    if (_state->styleMask & NSResizableWindowMask)
        zoom(sender);
    else
        NSBeep();
}
bool NSWindow::isZoomed() { return _state->isZoomed; }
bool NSWindow::isFullScreen() { return _state->isFullScreen; }
void NSWindow::setFullScreen(bool isFullScreen) {
    if (std::exchange(_state->isFullScreen, isFullScreen) != isFullScreen)
        wish(*_state, &WindowChanges::isFullScreen, isFullScreen);
}

bool NSWindow::hidesOnDeactivate() { return _state->hidesOnDeactivate; }
void NSWindow::setHidesOnDeactivate(bool hides) { _state->hidesOnDeactivate = hides; }

void NSWindow::addChildWindow_ordered(NSWindow* child, NSWindowOrderingMode) {
    if (!child) return;
    for (NSWindow* level = this; level; level = level->parentWindow())
        if (level == child) return;
    const auto held = Retained<NSWindow>::retaining(child);
    if (NSWindow* old = child->parentWindow()) old->removeChildWindow(child);
    _state->children.push_back(held);
    child->_state->parent = WeakHandle(this);
    if (isVisible() && !child->isVisible()) child->orderFront(nullptr);
}

void NSWindow::removeChildWindow(NSWindow* child) {
    if (!child || child->parentWindow() != this) return;
    child->_state->parent = {};
    const auto held = Retained<NSWindow>::retaining(child);
    std::erase_if(_state->children, [&](const auto& known) { return known == child; });
}

NSArray* NSWindow::childWindows() {
    NSMutableArray* list = NSMutableArray::array();
    for (const auto& child : _state->children) list->addObject(child);
    return list;
}

NSWindow* NSWindow::parentWindow() { return cast<NSWindow>(_state->parent.object().autorelease()); }

// MARK: Key and main

bool NSWindow::isKeyWindow() { return application().keyWindow == this; }
bool NSWindow::isMainWindow() { return application().mainWindow == this; }

bool NSWindow::canBecomeKeyWindow() {
    return _state->styleMask & (NSTitledWindowMask | NSResizableWindowMask);
}
bool NSWindow::canBecomeMainWindow() { return canBecomeKeyWindow() && !_state->isPanel; }

void NSWindow::makeKeyWindow() {
    if (!canBecomeKeyWindow() || !_state->isVisible) return;
    const auto held = Retained<NSWindow>::retaining(this);
    ApplicationState& app = application();
    app.setKeyWindow(this);
    if (app.keyWindow == this) _state->show(true, false, true);
}

void NSWindow::makeMainWindow() {
    if (canBecomeMainWindow() && _state->isVisible) application().setMainWindow(this);
}

void NSWindow::becomeKeyWindow() {
    _state->notify(NSWindowDidBecomeKeyNotification, "windowDidBecomeKey:"_sel);
}
void NSWindow::resignKeyWindow() {
    _state->notify(NSWindowDidResignKeyNotification, "windowDidResignKey:"_sel);
}
void NSWindow::becomeMainWindow() {
    _state->notify(NSWindowDidBecomeMainNotification, "windowDidBecomeMain:"_sel);
}
void NSWindow::resignMainWindow() {
    _state->notify(NSWindowDidResignMainNotification, "windowDidResignMain:"_sel);
}

// MARK: Drawing

bool NSWindow::viewsNeedDisplay() { return !_state->painter.damage().isEmpty(); }
void NSWindow::setViewsNeedDisplay(bool need) {
    if (need)
        DisplayConnection::shared().needsTurn();
    else
        _state->painter.forget();
}
void NSWindow::display() {
    _state->painter.addAll();
    const int disabled = std::exchange(_state->flushDisabled, 0);
    _state->painter.paint();
    _state->flushDisabled = disabled;
}
void NSWindow::displayIfNeeded() { _state->painter.paint(); }
void NSWindow::disableFlushWindow() { ++_state->flushDisabled; }
void NSWindow::enableFlushWindow() {
    if (_state->flushDisabled > 0 && --_state->flushDisabled == 0) DisplayConnection::shared().needsTurn();
}
bool NSWindow::isFlushWindowDisabled() { return _state->flushDisabled > 0; }
void NSWindow::update() { _state->notify(NSWindowDidUpdateNotification, "windowDidUpdate:"_sel); }

// MARK: Cursor rectangles

bool NSWindow::areCursorRectsEnabled() { return _state->tracking.areCursorRectsEnabled; }
void NSWindow::disableCursorRects() { _state->tracking.areCursorRectsEnabled = false; }
void NSWindow::enableCursorRects() {
    _state->tracking.areCursorRectsEnabled = true;
    _state->tracking.noteGeometryChange();
}
void NSWindow::invalidateCursorRectsForView(NSView*) { _state->tracking.noteGeometryChange(); }
void NSWindow::resetCursorRects() {
    _state->tracking.noteGeometryChange();
    _state->tracking.refresh();
}
void NSWindow::discardCursorRects() { _state->tracking.noteGeometryChange(); }

// MARK: The delegate

id NSWindow::delegate() { return _state->delegate.object().autorelease(); }
void NSWindow::setDelegate(id delegate) { _state->delegate = WeakHandle(delegate); }

NSUndoManager* NSWindow::undoManager() {
    const SEL question = "windowWillReturnUndoManager:"_sel;
    if (Retained<Object> asked = _state->delegate.object(); asked && asked->respondsToSelector(question))
        if (auto* given = send<NSUndoManager*>(asked.get(), question, this)) return given;
    if (!_state->undoManager) _state->undoManager = NSUndoManager::init();
    return _state->undoManager;
}

}  // namespace pelvor
