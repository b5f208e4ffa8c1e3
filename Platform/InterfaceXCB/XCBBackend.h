// SPDX-License-Identifier: Apache-2.0
// XCBBackend: windows on an X server.
#pragma once

#include "InterfaceXCB/Drags.h"
#include "InterfaceXCB/Pointer.h"
#include "InterfaceXCB/Screens.h"
#include "InterfaceXCB/Selections.h"
#include "InterfaceXCB/TextInput.h"
#include "InterfaceXCB/Window.h"

namespace pelvor {

/// Hands each event to the part that it is for. Sinks may call any operation, `dispatch` among them, while
/// they hear of an event: no window is held across a call.
class XCBBackend final : public InterfaceBackend {
  public:
    XCBBackend(std::unique_ptr<XConnection> connection, BackendSink& sink);
    ~XCBBackend() override;

    std::string name() const override { return "XCB"; }
    bool hasDisplay() const override { return !_connection->isLost(); }
    int descriptor() const override;
    bool prepare() override;
    void dispatch() override;
    double timeout() override;
    std::vector<BackendScreen> screens() override { return _screens.list(); }

    BackendWindow createWindow(const WindowWishes& wishes) override;
    void destroyWindow(BackendWindow window) override;
    void configure(BackendWindow window, const WindowChanges& changes) override;
    PixelRect frameExtents(BackendWindow window) override;

    const BackendImage* beginPaint(BackendWindow window) override;
    void present(BackendWindow window, std::span<const PixelRect> damage, bool isLast) override;

    void setCursor(BackendWindow window, BackendCursor cursor) override;
    PixelPoint pointerPlace() override { return _pointer.place(); }
    std::uint32_t modifiersDown() override { return _pointer.state().modifiers; }
    bool beginTracking(BackendWindow menu) override;
    void endTracking() override;

    void interpretKey(BackendWindow window, const BackendKey& key) override;
    void setTextInput(BackendWindow window, const PixelRect* caret) override;
    void resetComposing(BackendWindow window) override;
    std::vector<BackendLayout> layouts() override;
    const std::vector<BackendLayout>& knownLayouts() override { return _keyboard.knownLayouts(); }
    bool setLayout(std::uint32_t group) override;

    bool offerSelection(BackendSelection selection, std::vector<std::string> types,
                        SelectionProvider provider) override;
    void requestTypes(BackendSelection selection, SelectionReceiver done) override;
    void requestSelection(BackendSelection selection, const std::string& type,
                          SelectionReceiver done) override;
    bool beginDrag(BackendWindow window, std::function<void(bool isTaken)> done) override;
    void endDrop(bool isTaken) override { _drags.endDrop(isTaken); }

    void beep() override;
    void saveClipboard() override { _selections.saveClipboard(); }

  private:
    XWindow* windowOf(BackendWindow id);
    XWindow* windowOfHandle(xcb_window_t handle);
    const BackendScreen& screenOf(const XWindow& window);
    void tellConfigured(const XWindow& window);
    void startRest();
    void loseDisplay();

    void deliver(const XAnyEvent& event);
    void deliverKey(const xcb_key_press_event_t& event);
    void deliverButton(const xcb_button_press_event_t& event);
    void deliverMotion(const xcb_motion_notify_event_t& event);
    void deliverCrossing(const xcb_enter_notify_event_t& event);
    void deliverFocus(const xcb_focus_in_event_t& event);
    void deliverConfigure(const xcb_configure_notify_event_t& event);
    void deliverExpose(const xcb_expose_event_t& event);
    void deliverMessage(const xcb_client_message_event_t& event);
    void deliverRead(xcb_window_t handle);
    void deliverError(const XAnyEvent& event);

    std::unique_ptr<XConnection> _connection;
    BackendSink& _sink;
    XScreens _screens{*_connection};
    XKeyboard _keyboard{*_connection};
    XTextInput _textInput{*_connection, _sink, _keyboard};
    XPointer _pointer{*_connection};
    XSelections _selections{*_connection, _sink};
    XDrags _drags{*_connection, _sink, _pointer, _selections};
    std::vector<std::unique_ptr<XWindow>> _windows;
    BackendWindow _latestWindow = 0;
    BackendWindow _focused = 0;
    BackendWindow _tracked = 0;
    bool _hasGrab = false;
    bool _hasShown = false;    ///< a first picture, on the screen
    bool _hasStarted = false;  ///< what was put off until then
    bool _isLost = false;
};

}  // namespace pelvor
