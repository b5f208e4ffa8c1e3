// SPDX-License-Identifier: Apache-2.0
#include "Interface/Windows/WindowState.h"

#include <cmath>

#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSProcessInfo.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSMenuBarView.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WindowRootView, interfaceLibrary) {}

void WindowRootView::drawRect(NSRect dirty) {
    if (!window()) return;
    window()->backgroundColor()->set();
    NSRectFill(dirty);
}

void WindowRootView::resizeSubviewsWithOldSize(NSSize) {
    if (window()) window()->state().layOut();
}

// MARK: Place and size

void WindowState::createBackendWindow() {
    if (backendWindow) return;
    DisplayConnection& display = DisplayConnection::shared();
    WindowWishes wishes;
    wishes.kind = level == NSPopUpMenuWindowLevel ? WindowKind::menu
                  : level == NSToolTipWindowLevel ? WindowKind::tip
                  : isPanel || (styleMask & NSUtilityWindowMask) || level > NSNormalWindowLevel
                      ? WindowKind::panel
                      : WindowKind::document;
    wishes.frame = display.pixelsOnScreen(content);
    if (auto over = cast<NSWindow>(parent.object())) wishes.parent = over->state().backendWindow;
    wishes.isResizable = styleMask & NSResizableWindowMask;
    wishes.hasTitleBar = styleMask & NSTitledWindowMask;
    if (title) wishes.title = title->toUTF8();
    wishes.name = NSProcessInfo::processInfo()->processName()->toUTF8();
    backendWindow = display.backend().createWindow(wishes);
    if (!backendWindow) return;
    display.add(backendWindow, window);
    if (minSize != NSZeroSize || maxSize != NSZeroSize) setLimits();
    if (!isDocumentEdited) return;
    WindowChanges changes;
    changes.isDocumentEdited = &isDocumentEdited;
    display.backend().configure(backendWindow, changes);
}

void WindowState::setLimits() {
    if (!backendWindow) return;
    DisplayConnection& display = DisplayConnection::shared();
    auto pixels = [&](float points) {
        return static_cast<int>(std::clamp(points, 0.0F, 32767.0F) * display.scale());
    };
    auto height = [&](float points) { return pixels(points > 0 ? points + barHeight() : 0); };
    const PixelRect limits{pixels(minSize.width), height(minSize.height), pixels(maxSize.width),
                           height(maxSize.height)};
    WindowChanges changes;
    changes.minimumAndMaximum = &limits;
    display.backend().configure(backendWindow, changes);
    display.needsTurn();
}

// Left, top, right and bottom edge, in pixels.
PixelRect WindowState::frameExtents() {
    if (!(styleMask & NSTitledWindowMask)) return {};
    if (!extents) {
        createBackendWindow();
        extents = DisplayConnection::shared().backend().frameExtents(backendWindow);
    }
    return *extents;
}

NSRect WindowState::frameAround(NSRect inside) {
    const PixelRect around = frameExtents();
    const float scale = DisplayConnection::shared().scale();
    auto points = [&](int pixels) { return static_cast<float>(pixels) / scale; };
    return {{inside.origin.x - points(around.x), inside.origin.y - points(around.height)},
            {inside.size.width + points(around.x + around.width),
             inside.size.height + points(around.y + around.height)}};
}

void WindowState::setContent(NSRect wanted) {
    DisplayConnection& display = DisplayConnection::shared();
    PixelRect pixels = display.pixelsOnScreen(wanted);
    pixels.width = std::max(pixels.width, 1);
    pixels.height = std::max(pixels.height, 1);
    const auto held = Retained<NSWindow>::retaining(window);
    reported.reset();
    if (backendWindow) {
        // The back end may tell at once what it has made of this, and then it agrees with `content`.
        const NSRect old = std::exchange(content, display.rectOnScreen(pixels));
        WindowChanges changes;
        changes.frame = &pixels;
        display.backend().configure(backendWindow, changes);
        display.needsTurn();
        content = old;
    }
    takeFrame(display.rectOnScreen(pixels));
}

void WindowState::takeFrame(NSRect taken) {
    const auto held = Retained<NSWindow>::retaining(window);
    const NSRect old = std::exchange(content, taken);
    if (old.size != taken.size) {
        painter.forget();
        painter.addAll();
        root->setFrameSize(taken.size);
        tracking.noteGeometryChange();
        notify(NSWindowDidResizeNotification, "windowDidResize:"_sel);
    }
    if (old.origin != taken.origin) notify(NSWindowDidMoveNotification, "windowDidMove:"_sel);
    if (old != taken && autosaveName) window->saveFrameUsingName(autosaveName);
}

bool WindowState::differsFromReport() {
    return reported && (reported->frame != DisplayConnection::shared().pixelsOnScreen(content) ||
                        reported->isMinimized != isMinimized || reported->isZoomed != isZoomed);
}

void WindowState::applyReport() {
    if (!reported) return;
    const auto held = Retained<NSWindow>::retaining(window);
    const ReportedFrame report = *std::exchange(reported, std::nullopt);
    extents.reset();
    isZoomed = report.isZoomed;
    NSRect taken = DisplayConnection::shared().rectOnScreen(report.frame);
    const Retained<Object> asked = delegate.object();
    const SEL question = "windowWillResize:toSize:"_sel;
    if (taken.size != content.size && asked && asked->respondsToSelector(question)) {
        const NSSize frameSize = frameAround(taken).size;
        const NSSize wish = send<NSSize>(asked.get(), question, window, frameSize);
        taken.size.width += wish.width - frameSize.width;
        taken.size.height += wish.height - frameSize.height;
        setContent(taken);
    } else {
        takeFrame(taken);
    }
    if (report.isMinimized == isMinimized) return;
    isMinimized = report.isMinimized;
    if (isMinimized)
        notify(NSWindowDidMiniaturizeNotification, "windowDidMiniaturize:"_sel);
    else
        notify(NSWindowDidDeminiaturizeNotification, "windowDidDeminiaturize:"_sel);
}

void WindowState::layOut() {
    const NSSize size = root->bounds().size;
    const float above = barHeight();
    if (bar) bar->setFrame({{0, size.height - above}, {size.width, above}});
    if (contentView) contentView->setFrame({{0, 0}, {size.width, std::max(size.height - above, 0.0F)}});
}

void WindowState::setBar(NSView* view) {
    if (bar == view) return;
    const auto held = Retained<NSWindow>::retaining(window);
    const float old = barHeight();
    if (Retained<NSView> former = std::exchange(bar, Retained<NSView>::retaining(view)))
        former->removeFromSuperview();
    if (view) root->addSubview(view);
    setLimits();
    if (!isZoomed && !isFullScreen && !(keepsFrame && !wasShown)) {
        NSRect grown = content;
        grown.size.height += barHeight() - old;
        if (wasShown) grown.origin.y = NSMaxY(content) - grown.size.height;  // the upper edge stays
        setContent(grown);
    }
    layOut();
}

void WindowState::updateMenuBar() {
    const bool isWanted = showsMenuBar && (styleMask & NSTitledWindowMask) && window->canBecomeMainWindow() &&
                          NSApplication::sharedApplication()->mainMenu();
    if (isWanted == static_cast<bool>(bar)) return bar ? bar->setNeedsDisplay(true) : void();
    if (!isWanted) return setBar(nullptr);
    setBar(NSMenuBarView::initWithFrame({{}, {0, NSMenuBarView::menuBarHeight()}}).get());
}

// MARK: Showing

void WindowState::show(bool shown, bool raises, bool takesFocus) {
    const auto held = Retained<NSWindow>::retaining(window);
    DisplayConnection& display = DisplayConnection::shared();
    if (shown && !backendWindow) createBackendWindow();
    WindowChanges changes;
    const bool isChanged = shown != isVisible;
    isVisible = shown;
    if (isChanged) changes.isShown = &shown;
    changes.raises = shown && raises;
    changes.takesFocus = shown && takesFocus;
    if (isChanged && shown) painter.addAll();
    if (backendWindow) display.backend().configure(backendWindow, changes);
    display.needsTurn();
    if (!shown) painter.forget();
}

void WindowState::notify(NSString* name, SEL selector) {
    const auto held = Retained<NSWindow>::retaining(window);
    NSNotification* notice = NSNotification::notificationWithName_object(name, window);
    NSNotificationCenter::defaultCenter()->postNotification(notice);
    if (Retained<Object> told = delegate.object(); told && told->respondsToSelector(selector))
        send(told.get(), selector, notice);
}

// MARK: Responders

NSResponder* WindowState::responder() {
    Retained<Object> first = firstResponder.object();
    auto* responder = cast<NSResponder>(std::move(first).autorelease());
    return responder ? responder : window;
}

void WindowState::forgetResponders(NSView* view) {
    auto* first = cast<NSView>(static_cast<id>(responder()));
    if (!first || !first->isDescendantOf(view)) return;
    if (!window->makeFirstResponder(nullptr)) firstResponder = {};
}

// MARK: Events

namespace {

struct MouseKind {
    int button;  // index of the targets
    bool isPress, isRelease;
    SEL selector;
};

MouseKind kindOf(NSEventType type) {
    switch (type) {
        case NSLeftMouseDown:
            return {0, true, false, "mouseDown:"_sel};
        case NSLeftMouseUp:
            return {0, false, true, "mouseUp:"_sel};
        case NSLeftMouseDragged:
            return {0, false, false, "mouseDragged:"_sel};
        case NSRightMouseDown:
            return {1, true, false, "rightMouseDown:"_sel};
        case NSRightMouseUp:
            return {1, false, true, "rightMouseUp:"_sel};
        case NSRightMouseDragged:
            return {1, false, false, "rightMouseDragged:"_sel};
        case NSOtherMouseDown:
            return {2, true, false, "otherMouseDown:"_sel};
        case NSOtherMouseUp:
            return {2, false, true, "otherMouseUp:"_sel};
        default:
            return {2, false, false, "otherMouseDragged:"_sel};
    }
}

}  // namespace

// The view that takes a press gets the drags and the release too.
void WindowState::sendMouse(NSEvent* event) {
    const MouseKind kind = kindOf(event->type());
    if (!kind.isPress) {
        tracking.pointerMoved(event, kind.isRelease);
        Retained<Object> target = mouseTargets[kind.button].object();
        if (kind.isRelease) mouseTargets[kind.button] = {};
        if (target) send(target.get(), kind.selector, event);
        return;
    }
    const auto target = Retained<NSView>::retaining(hit(event->locationInWindow()));
    if (!target) return;
    mouseTargets[kind.button] = WeakHandle(target);
    bool wasKey = window->isKeyWindow();
    if (!wasKey && window->canBecomeKeyWindow()) window->makeKeyAndOrderFront(nullptr);
    if (kind.button == 0 && static_cast<NSResponder*>(target.get()) != responder() &&
        target->acceptsFirstResponder() && target->window() == window)
        window->makeFirstResponder(target);
    if (target->window() == window && (wasKey || target->acceptsFirstMouse(event)))
        send(target.get(), kind.selector, event);
}

void WindowState::sendKey(NSEvent* event) {
    const auto target = Retained<NSResponder>::retaining(responder());
    const SEL selector = event->type() == NSKeyDown ? "keyDown:"_sel
                         : event->type() == NSKeyUp ? "keyUp:"_sel
                                                    : "flagsChanged:"_sel;
    send(target.get(), selector, event);
}

}  // namespace pelvor
