// SPDX-License-Identifier: Apache-2.0
// InterfaceScope: an application without a screen, and its user.
#pragma once

#include "Foundation/ClockScope.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Backend/HeadlessBackend.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"
#include "Prelude.h"

namespace pelvor {

/// An application on a headless back end, with a clock that stands still, for the time of a test:
///
///     InterfaceScope screen;
///     auto window = screen.window({{100, 100}, {200, 100}});
///     window->contentView()->addSubview(field);
///     screen.click(field, {5, 5});
///     screen.type(u"Anna");
///     screen.press(NSLeftArrowFunctionKey, NSShiftKeyMask);
///
/// Each of these is followed by `turn`. When the scope ends, so do the application and its windows.
class InterfaceScope {
  public:
    explicit InterfaceScope(float scale = 1);
    ~InterfaceScope();
    InterfaceScope(const InterfaceScope&) = delete;
    InterfaceScope& operator=(const InterfaceScope&) = delete;

    ClockScope clock{1000};
    /// What the application is connected to.
    HeadlessBackend* backend = nullptr;
    NSApplication* app = nullptr;

    /// A key window with a title bar, which can be resized and closed. The user sees it.
    Retained<NSWindow> window(NSRect contents);

    /// Handles all events, does the work that is due, and paints.
    void turn();
    /// Time passes, second by second at most; then `turn`.
    void wait(double seconds);

    /// Types each character with a key of its own.
    void type(std::u16string_view text);
    /// Presses and releases a key: a character or an NS…FunctionKey, with NS…KeyMask joined by "|".
    void press(unichar key, std::uint32_t modifiers = 0);
    /// Moves the pointer to the point in the view's coordinates.
    void moveTo(NSView* view, NSPoint place);
    void down(int button = 1);
    void up(int button = 1);
    /// Presses and releases there, `count` times.
    void click(NSView* view, NSPoint place, int count = 1, std::uint32_t modifiers = 0, int button = 1);
    void drag(NSView* view, NSPoint from, NSPoint to);
    void scroll(NSView* view, NSPoint place, float linesX, float linesY);

    PixelPoint placeOf(NSView* view, NSPoint place);
    BackendWindow number(NSWindow* window);
    /// The colour of the pixel at the point in the view's coordinates, 0xRRGGBB.
    std::uint32_t pixel(NSView* view, NSPoint place);

  private:
    AutoreleasePool _pool;
};

}  // namespace pelvor
