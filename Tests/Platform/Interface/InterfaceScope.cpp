// SPDX-License-Identifier: Apache-2.0
#include "InterfaceScope.h"

#include "Interface/Events/ApplicationState.h"
#include "Interface/Events/EventMaker.h"
#include "Interface/Windows/WindowState.h"

namespace pelvor {

InterfaceScope::InterfaceScope(float scale) {
    ApplicationState::end();
    DisplayConnection::open([&](BackendSink& sink) {
        auto made = std::make_unique<HeadlessBackend>(sink);
        backend = made.get();
        backend->setPlayed();
        if (scale != 1) {
            BackendScreen screen = made->screens()[0];
            screen.scale = scale;
            made->setScreensAtFirst({screen});
        }
        return made;
    });
    app = NSApplication::sharedApplication();
    app->setTerminatesProcess(false);
}

InterfaceScope::~InterfaceScope() {
    turn();
    ApplicationState::end();
}

Retained<NSWindow> InterfaceScope::window(NSRect contents) {
    AutoreleasePool pool;
    auto window = NSWindow::initWithContentRect_styleMask_backing_defer(
        contents, NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask, NSBackingStoreBuffered,
        true);
    window->makeKeyAndOrderFront(nullptr);
    turn();
    return window;
}

void InterfaceScope::turn() {
    do {
        AutoreleasePool pool;
        while (Retained<NSEvent> event =
                   app->state().next(NSAnyEventMask, nullptr, NSDefaultRunLoopMode, true))
            app->state().handle(event);
    } while (NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode));
}

void InterfaceScope::wait(double seconds) {
    const double end = clock.now() + seconds;
    while (clock.now() < end) {
        NSDate* next = NSRunLoop::mainRunLoop()->limitDateForMode(NSDefaultRunLoopMode);
        const double moment = next ? next->timeIntervalSinceReferenceDate() : end;
        clock.advanceTo(std::min(end, std::max(moment, std::nextafter(clock.now(), end))));
        turn();
    }
}

void InterfaceScope::type(std::u16string_view text) {
    for (char16_t character : text) press(character);
}

void InterfaceScope::press(unichar unit, std::uint32_t modifiers) {
    BackendKey key;
    key.characters = std::u16string(1, unit);
    key.charactersIgnoringModifiers = key.shortcutCharacters = key.characters;
    key.modifiers = backendModifiers(modifiers);
    if (unit < 0x100) key.symbol = unit;
    key.code = unit & 0xFF;
    backend->setModifiers(key.modifiers);
    backend->key(key);
    turn();
    key.isDown = false;
    backend->key(key);
    backend->setModifiers(0);
    turn();
}

PixelPoint InterfaceScope::placeOf(NSView* view, NSPoint place) {
    const NSPoint base = view->convertPoint_toView(place, nullptr);
    const PixelRect frame = backend->frame(number(view->window()));
    const float scale = view->window()->userSpaceScaleFactor();
    const float top = static_cast<float>(frame.height) / scale - base.y;
    return {frame.x + static_cast<int>(std::floor(base.x * scale)),
            frame.y + static_cast<int>(std::floor(top * scale))};
}

BackendWindow InterfaceScope::number(NSWindow* window) { return window->state().backendWindow; }

void InterfaceScope::moveTo(NSView* view, NSPoint place) {
    backend->movePointer(placeOf(view, place));
    turn();
}

void InterfaceScope::down(int button) {
    backend->pressButton(button);
    turn();
}

void InterfaceScope::up(int button) {
    backend->releaseButton(button);
    turn();
}

void InterfaceScope::click(NSView* view, NSPoint place, int count, std::uint32_t modifiers, int button) {
    backend->setModifiers(backendModifiers(modifiers));
    backend->movePointer(placeOf(view, place));
    for (int i = 0; i < count; ++i) {
        // Both are there before the press is handled, so that loops that follow the mouse find the release.
        backend->pressButton(button);
        backend->releaseButton(button);
        turn();
    }
    backend->setModifiers(0);
    turn();
    clock.advance(1);  // the next click is no double click
}

void InterfaceScope::drag(NSView* view, NSPoint from, NSPoint to) {
    const PixelPoint start = placeOf(view, from), end = placeOf(view, to);
    backend->movePointer(start);
    backend->pressButton(1);
    backend->movePointer({(start.x + end.x) / 2, (start.y + end.y) / 2});
    backend->movePointer(end);
    backend->releaseButton(1);
    turn();
    clock.advance(1);
}

void InterfaceScope::scroll(NSView* view, NSPoint place, float linesX, float linesY) {
    backend->movePointer(placeOf(view, place));
    backend->scroll(linesX, linesY);
    turn();
}

std::uint32_t InterfaceScope::pixel(NSView* view, NSPoint place) {
    const PixelPoint at = placeOf(view, place);
    const PixelRect frame = backend->frame(number(view->window()));
    const BackendImage* image = backend->picture(number(view->window()));
    const int x = at.x - frame.x, y = at.y - frame.y;
    if (!image || x < 0 || y < 0 || x >= image->width || y >= image->height) return 0xFF000000;
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, image->pixels + y * image->bytesPerRow + x * 4, 4);
    return pixel & 0xFFFFFF;
}

}  // namespace pelvor
