// SPDX-License-Identifier: Apache-2.0
// HeadlessBackend: a display that nobody sees, and whose user is the program itself.
#pragma once

#include <array>
#include <map>

#include "Interface/Backend/Backend.h"
#include "Runtime/Export.h"

namespace pelvor {

/// What there is without a display. Windows have pixels, places and an order; selections stay in the program.
/// Tests play the user by the operations of the first part, which tell the sink at once.
class PELVOR_EXPORT HeadlessBackend final : public InterfaceBackend {
  public:
    explicit HeadlessBackend(BackendSink& sink);
    ~HeadlessBackend() override;

    // The user

    /// Tells that the program plays the user until the display is lost; at first, nobody does.
    void setPlayed() { _isPlayed = true; }
    /// Moves the pointer to the place on the screen, with the buttons that are down.
    void movePointer(PixelPoint place);
    void pressButton(int button);
    void releaseButton(int button);
    void scroll(float linesX, float linesY);
    void setModifiers(std::uint32_t modifiers);
    /// To the window with the focus, or to the menu while menus are tracked.
    void key(BackendKey key);
    void clickCloseButton(BackendWindow window);
    /// The user chooses another window, or another program (0).
    void focusWindow(BackendWindow window);
    /// Somebody else moves or resizes the window.
    void moveWindow(BackendWindow window, PixelRect frame);
    void setScreens(std::vector<BackendScreen> screens);
    /// Before anybody has asked for them.
    void setScreensAtFirst(std::vector<BackendScreen> screens) { _screens = std::move(screens); }
    void setLayouts(std::vector<BackendLayout> layouts);
    void setKnownLayouts(std::vector<BackendLayout> layouts) { _knownLayouts = std::move(layouts); }
    void setFrameExtents(PixelRect extents) { _extents = extents; }
    /// Another program offers this, by type.
    void setForeignSelection(BackendSelection selection, std::map<std::string, std::string> contents);
    /// Drags what another program offers into a window, with the pointer where it is.
    bool dragTo(PixelPoint place);
    bool drop();
    void lose(const std::string& reason);
    /// Takes keys before they are text or commands, as an input method does; false leaves the key.
    std::function<bool(BackendWindow, const BackendKey&)> inputMethod;
    /// While true, pictures are still being sent.
    void setBusy(bool isBusy);

    // What the user would see

    BackendWindow windowAt(PixelPoint place) const;
    BackendWindow focusedWindow() const { return _focused; }
    bool isShown(BackendWindow window) const;
    std::string title(BackendWindow window) const;
    PixelRect frame(BackendWindow window) const;
    /// WindowChanges::minimumAndMaximum, as told last.
    PixelRect limits(BackendWindow window) const;
    BackendCursor cursor(BackendWindow window) const;
    const BackendImage* picture(BackendWindow window) const;
    /// Parts that were presented since the last call.
    std::vector<PixelRect> takePresented();
    int beeps() const { return _beeps; }
    const PixelRect* caret() const { return _hasCaret ? &_caret : nullptr; }
    bool isTracking() const { return !_menus.empty(); }

    // InterfaceBackend

    std::string name() const override { return "none"; }
    bool hasDisplay() const override { return false; }
    bool hasUser() const override { return _isPlayed; }
    int descriptor() const override { return -1; }
    bool prepare() override { return false; }
    void dispatch() override {}
    double timeout() override;
    std::vector<BackendScreen> screens() override { return _screens; }
    BackendWindow createWindow(const WindowWishes& wishes) override;
    void destroyWindow(BackendWindow window) override;
    void configure(BackendWindow window, const WindowChanges& changes) override;
    PixelRect frameExtents(BackendWindow window) override;
    const BackendImage* beginPaint(BackendWindow window) override;
    void present(BackendWindow window, std::span<const PixelRect> damage, bool isLast) override;
    void setCursor(BackendWindow window, BackendCursor cursor) override;
    PixelPoint pointerPlace() override { return _pointer; }
    std::uint32_t modifiersDown() override { return _modifiers; }
    bool beginTracking(BackendWindow menu) override;
    void endTracking() override;
    void interpretKey(BackendWindow window, const BackendKey& key) override;
    void setTextInput(BackendWindow window, const PixelRect* caret) override;
    void resetComposing(BackendWindow) override {}
    std::vector<BackendLayout> layouts() override { return _layouts; }
    const std::vector<BackendLayout>& knownLayouts() override { return _knownLayouts; }
    bool setLayout(std::uint32_t group) override;
    bool offerSelection(BackendSelection selection, std::vector<std::string> types,
                        SelectionProvider provider) override;
    void requestTypes(BackendSelection selection, SelectionReceiver done) override;
    void requestSelection(BackendSelection selection, const std::string& type,
                          SelectionReceiver done) override;
    bool beginDrag(BackendWindow window, std::function<void(bool isTaken)> done) override;
    void endDrop(bool isTaken) override;
    void beep() override { ++_beeps; }
    void saveClipboard() override {}

  private:
    struct Window {
        WindowWishes wishes;
        PixelRect frame;
        PixelRect restoredFrame;
        PixelRect limits;
        bool isShown = false, isMinimized = false, isZoomed = false;
        BackendCursor cursor = BackendCursor::arrow;
        std::vector<unsigned char> pixels;
        BackendImage image;
    };
    struct Offer {
        std::vector<std::string> types;
        SelectionProvider provider;
    };

    Window* find(BackendWindow window);
    const Window* find(BackendWindow window) const;
    void setFrame(BackendWindow number, Window& window, PixelRect frame);
    void tellPointer(BackendWindow window, BackendPointer pointer);
    void tellConfigured(BackendWindow number, const Window& window);
    BackendWindow receiverOfPointer() const;
    void enter(BackendWindow window);
    Offer& offer(BackendSelection selection) { return _offers[static_cast<std::size_t>(selection)]; }

    BackendSink& _sink;
    std::map<BackendWindow, Window> _windows;
    std::vector<BackendWindow> _order;  // the front one last
    std::vector<BackendWindow> _menus;  // that are tracked
    BackendWindow _last = 0;
    BackendWindow _focused = 0;
    BackendWindow _entered = 0;
    BackendWindow _pressed = 0;  // gets the pointer until no button is down
    PixelPoint _pointer;
    std::uint32_t _modifiers = 0;
    std::uint32_t _buttons = 0;
    PixelRect _extents;
    PixelRect _caret;
    bool _hasCaret = false;
    bool _isBusy = false;
    bool _isPlayed = false;
    int _beeps = 0;
    std::vector<BackendWindow> _askedWhileBusy;
    BackendWindow _dragTarget = 0;
    std::function<void(bool)> _dragDone;
    std::vector<PixelRect> _presented;
    std::vector<BackendScreen> _screens;
    std::vector<BackendLayout> _layouts;
    std::vector<BackendLayout> _knownLayouts;
    std::array<Offer, 3> _offers;
};

}  // namespace pelvor
