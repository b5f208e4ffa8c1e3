// SPDX-License-Identifier: Apache-2.0
// XImage: what a window is painted into, shared with the X server where it is on this machine.
#pragma once

#include <span>

#include "Interface/Backend/Backend.h"
#include "InterfaceXCB/Connection.h"

namespace pelvor {

/// The server reads the shared pixels some time after it was told to. Until it says that it did, nobody may
/// paint: the windows would show halves of two pictures.
class XImage {
  public:
    explicit XImage(XConnection& connection) : _connection(connection) {}
    ~XImage();
    XImage(const XImage&) = delete;
    XImage& operator=(const XImage&) = delete;

    /// Keeps what was painted, as far as it fits. Memory is taken in steps, so that few changes of size cost
    /// any.
    void resize(int width, int height);
    const BackendImage& pixels() const { return _image; }

    /// Shows a part, which lies inside.
    void push(xcb_window_t window, xcb_gcontext_t gc, const PixelRect& part);
    bool isBeingRead() const { return _inFlight > 0; }
    /// The server has read one part.
    void noteRead() { _inFlight = _inFlight > 0 ? _inFlight - 1 : 0; }
    /// Nothing will be told of what is under way, since the server refused it.
    void forgetReads() { _inFlight = 0; }

  private:
    void share(int rows);
    void release();
    void pushInBands(xcb_window_t window, xcb_gcontext_t gc, const PixelRect& part);

    XConnection& _connection;
    BackendImage _image;
    int _rows = 0;  ///< how many there is memory for
    std::size_t _size = 0;
    xcb_shm_seg_t _segment = 0;  ///< 0 if the pixels are not shared
    int _inFlight = 0;
};

}  // namespace pelvor
