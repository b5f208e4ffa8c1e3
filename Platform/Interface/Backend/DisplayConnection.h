// SPDX-License-Identifier: Apache-2.0
// DisplayConnection: the one back end of the process, and what becomes of what it tells.
#pragma once

#include <map>
#include <optional>

#include "Foundation/NSGeometry.h"
#include "Foundation/NSRunLoop.h"
#include "Interface/Backend/Backend.h"
#include "Interface/Events/EventMaker.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSWindow;

/// What SystemDefined events of this library say, as their subtype. `data1` is 1 or 0 where it says whether.
enum class SystemEvent : std::int16_t {
    closeWindow = 1,
    configured,
    focus,
    screensChanged,
    layoutsChanged,
    displayLost,
    keysTaken,
    input,  ///< the input manager has replies of the back end
};

/// The one back end of the process. What it tells becomes events in the application's queue, so that no code
/// of a program runs inside the back end. Main thread.
class PELVOR_EXPORT DisplayConnection final : public BackendSink {
  public:
    /// Connects on first demand.
    static DisplayConnection& shared();
    /// Null before the first demand.
    static DisplayConnection* existing();
    using Opener = std::function<std::unique_ptr<InterfaceBackend>(BackendSink&)>;
    /// Opens a connection of one's own, in place of what `shared` would open; for tests, which play the user.
    static void open(const Opener& opener);
    static void close();
    ~DisplayConnection();

    InterfaceBackend& backend() { return *_backend; }

    // Points and pixels

    float scale();
    NSPoint pointOnScreen(PixelPoint place);
    PixelPoint pixelOnScreen(NSPoint point);
    NSRect rectOnScreen(const PixelRect& rect);
    PixelRect pixelsOnScreen(NSRect rect);
    const std::vector<BackendScreen>& screens();

    /// The keyboard layouts that the user can switch to, each once.
    std::vector<BackendLayout> layouts();
    /// Posts what has changed about them since somebody was told, or first asked.
    void tellLayoutChanges();

    // Windows that the back end has made

    void add(BackendWindow number, NSWindow* window) { _windows[number] = window; }
    void remove(BackendWindow number) { _windows.erase(number); }
    /// Null for a window of somebody else.
    NSWindow* window(BackendWindow number);

    // The loop

    /// Takes what has come already. Returns whether there was something.
    bool poll();
    /// Has `finishTurn` called before the run loop waits again.
    void needsTurn();
    void needsTurnAfter(double seconds);
    void finishTurn();

    // What parts of the library want to hear at once; they must not call code of the program there.

    std::function<void()> whenTrackingIsLost;
    std::function<void(BackendSelection)> whenSelectionIsLost;
    std::function<bool(NSWindow*, const BackendDrag&)> whenDragged;

    // BackendSink

    void key(BackendWindow window, const BackendKey& key) override;
    void text(BackendWindow window, std::u16string_view text) override;
    void preedit(BackendWindow window, std::u16string_view text, std::size_t caret,
                 std::span<const PreeditSpan> spans) override;
    void command(BackendWindow window, const BackendKey& key) override;
    void pointer(BackendWindow window, const BackendPointer& pointer) override;
    void expose(BackendWindow window, const PixelRect& damage) override;
    void paintReady(BackendWindow window) override;
    void configured(BackendWindow window, const PixelRect& frame, bool isMinimized, bool isZoomed) override;
    void focus(BackendWindow window, bool isFocused) override;
    void keysTaken() override;
    void close(BackendWindow window) override;
    void trackingLost() override;
    void layoutChanged() override;
    void screensChanged() override;
    void selectionLost(BackendSelection selection) override;
    bool drag(BackendWindow window, const BackendDrag& drag) override;
    void lost(const std::string& reason) override;

  private:
    DisplayConnection();
    void connect(const Opener& opener);
    void setTimeout(double seconds);
    void postSystem(SystemEvent what, NSWindow* window, NSInteger data = 0);
    NSPoint placeInWindow(NSWindow* window, PixelPoint place);

    std::map<BackendWindow, Unretained<NSWindow>> _windows;
    std::vector<BackendScreen> _screens;
    std::optional<std::vector<BackendLayout>> _toldLayouts;
    EventMaker _maker;
    Retained<Object> _watcher;
    Retained<Object> _timeout;
    std::unique_ptr<InterfaceBackend> _backend;
    bool _needsTurn = false;
    int _descriptor = -1;
};

/// What the run loop sends its messages to.
class DisplayWatcher final : public NSObject {
    PELVOR_CLASS(DisplayWatcher, NSObject);

  public:
    void displayIsReadable(int descriptor);
    void finishTurn();
    void timeIsOver(id timer);
    void needsTurn(id timer);
    void postPeriodicEvent(id timer);

  protected:
    DisplayWatcher() = default;
    ~DisplayWatcher() = default;
};

}  // namespace pelvor
