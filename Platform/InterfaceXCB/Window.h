// SPDX-License-Identifier: Apache-2.0
// XWindow: one window on the display, with its image and what the window manager is told of it.
#pragma once

#include "InterfaceXCB/Image.h"

namespace pelvor {

class XWindow {
  public:
    XWindow(XConnection& connection, BackendWindow id, const WindowWishes& wishes, xcb_window_t parent);
    ~XWindow();
    XWindow(const XWindow&) = delete;
    XWindow& operator=(const XWindow&) = delete;

    BackendWindow id() const { return _id; }
    xcb_window_t handle() const { return _handle; }
    WindowKind kind() const { return _kind; }
    /// Whether window managers leave it alone.
    bool isPopUp() const { return _kind == WindowKind::menu || _kind == WindowKind::tip; }
    /// Of the contents, as far as the server has told.
    const PixelRect& frame() const { return _frame; }
    bool isShown() const { return _isShown; }
    bool isMinimized() const { return _isMinimized; }
    bool isZoomed() const { return _isZoomed; }

    void setFrame(const PixelRect& frame);
    void setTitle(const std::string& title);
    void setDocumentEdited(bool isEdited);
    void setLimits(const PixelRect& minimumAndMaximum);
    void show(bool isShown);
    /// Where no window manager runs, `visible` is what a zoomed window fills.
    void zoom(bool isZoomed, bool hasManager, const PixelRect& visible);
    void fillScreen(bool isFullScreen, bool hasManager, const PixelRect& screen);
    /// Returns whether it is told by nobody else what came of it, since no window manager runs.
    bool minimize(bool isMinimized, bool hasManager);
    void raise();
    void takeFocus(bool hasManager);

    /// Returns whether its place, extent or state was told.
    bool handleConfigure(const xcb_configure_notify_event_t& event);
    bool handleProperty(xcb_atom_t name);
    void handleMap(bool isMapped, bool hasManager);
    PixelRect frameExtents(bool hasManager);

    // Painting

    /// Null while the last frame is still being read.
    const BackendImage* beginPaint();
    /// Returns whether a whole frame can be seen now.
    bool present(std::span<const PixelRect> damage, bool isLast);
    /// Shows again what was painted; returns the part that was not, of no width if there is none.
    PixelRect expose(const PixelRect& part);
    /// Returns whether somebody waits to paint, and may now.
    bool noteRead(bool all);

  private:
    void sendHints(const PixelRect& frame);
    void sendTitle();
    void changeState(bool isOn, Atom first, Atom second, bool hasManager);
    void fill(bool isFilling, const PixelRect& frame);
    void push(const PixelRect& part);

    XConnection& _connection;
    BackendWindow _id;
    xcb_window_t _handle = 0;
    xcb_gcontext_t _gc = 0;
    WindowKind _kind;
    PixelRect _frame;
    PixelRect _limits;
    std::optional<PixelRect> _frameBefore;  ///< before it filled the screen without a window manager
    std::string _title;
    bool _isResizable;
    bool _isEdited = false;
    bool _isShown = false;   ///< as was wished
    bool _isMapped = false;  ///< as the server has told
    bool _isMinimized = false;
    bool _isZoomed = false;
    bool _wantsFocus = false;

    XImage _image{_connection};
    PixelRect _painted;       ///< what the image holds of the contents, from its upper left corner
    bool _isVisible = false;  ///< the server wanted it painted since it was shown
    bool _isFrameOpen = false;
    bool _isAwaited = false;
};

}  // namespace pelvor
