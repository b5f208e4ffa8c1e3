// SPDX-License-Identifier: Apache-2.0
// NSScreen: a monitor.
#pragma once

#include "Foundation/NSArray.h"
#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"

namespace pelvor {

struct BackendScreen;

/// Posted by the application when screens come, go or change; the sender is the application.
inline constexpr NSString* NSApplicationDidChangeScreenParametersNotification =
    u"NSApplicationDidChangeScreenParametersNotification"_ns;

/// A monitor, as it was when `screens` was called. Places are in screen coordinates: points, y upwards, from
/// the lower left corner of the first screen.
///
///     NSRect room = NSScreen::mainScreen()->visibleFrame();
///
/// Without a display there is one screen of 1280 times 1024 points. Main thread.
class PELVOR_EXPORT NSScreen final : public NSObject {
    PELVOR_CLASS(NSScreen, NSObject);

  public:
    /// All screens, the one with the origin first; never empty. Borrowed.
    static NSArray* screens();
    /// The screen of the key window; without one, the first screen.
    static NSScreen* mainScreen();

    NSRect frame() { return _frame; }
    /// The frame without panels and docks of the desktop.
    NSRect visibleFrame() { return _visibleFrame; }
    /// Pixels a point; all screens have the same.
    float userSpaceScaleFactor() { return _scale; }
    /// "HDMI-1"; "" if it has no name.
    NSString* localizedName() { return _name; }

    /// Screens are equal that have the same frames, factor and name.
    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// "<NSScreen 0x…: HDMI-1 {{0, 0}, {1280, 1024}}>".
    NSString* description() override;

  private:
    NSScreen() = default;
    ~NSScreen() = default;

    NSRect _frame;
    NSRect _visibleFrame;
    float _scale = 1;
    Retained<NSString> _name;
};

}  // namespace pelvor
