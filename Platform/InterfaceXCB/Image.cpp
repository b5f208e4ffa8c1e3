// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Image.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <utility>

namespace pelvor {

namespace {

constexpr int kStep = 256;                   // pixels, and rows
constexpr std::size_t kBandBytes = 1 << 16;  // a larger request could block while the server is slow

constexpr int roundedUp(int count) { return (std::max(count, 1) + kStep - 1) / kStep * kStep; }

}  // namespace

XImage::~XImage() { release(); }

void XImage::release() {
    if (_segment) xcb_shm_detach(_connection, std::exchange(_segment, 0));
    if (_image.pixels) ::munmap(_image.pixels, _size);
    _image = {};
    _rows = 0;
}

void XImage::share(int rows) {
    _size = static_cast<std::size_t>(_image.bytesPerRow) * static_cast<std::size_t>(rows);
    const int file = ::memfd_create("pelvor-window", MFD_CLOEXEC);
    const bool hasFile = file >= 0 && ::ftruncate(file, static_cast<off_t>(_size)) == 0;
    void* memory = ::mmap(nullptr, _size, PROT_READ | PROT_WRITE,
                          hasFile ? MAP_SHARED : MAP_PRIVATE | MAP_ANONYMOUS, hasFile ? file : -1, 0);
    if (memory == MAP_FAILED) {
        if (file >= 0) ::close(file);
        throw std::bad_alloc();
    }
    _image.pixels = static_cast<unsigned char*>(memory);
    _rows = rows;
    if (hasFile && _connection.sharesMemory()) {
        const xcb_shm_seg_t segment = xcb_generate_id(_connection);
        const xcb_void_cookie_t attached =
            xcb_shm_attach_fd_checked(_connection, segment, file, 1);  // closes it
        _connection.wait<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus(_connection));  // so the next is known
        const XReply<xcb_generic_error_t> error(xcb_request_check(_connection, attached));
        if (!error && !_connection.isLost()) _segment = segment;
    } else if (file >= 0) {
        ::close(file);
    }
}

void XImage::resize(int width, int height) {
    width = std::max(width, 1);
    height = std::max(height, 1);
    const int stride = roundedUp(width) * 4;
    if (stride != _image.bytesPerRow || height > _rows) {
        XImage old(_connection);
        std::swap(old._image, _image);
        std::swap(old._size, _size);
        std::swap(old._segment, _segment);
        _image.bytesPerRow = stride;
        share(roundedUp(height));
        const auto bytes = static_cast<std::size_t>(std::min(old._image.width, width)) * 4;
        for (int y = 0; y < std::min(old._image.height, height); ++y)
            std::memcpy(_image.pixels + static_cast<std::ptrdiff_t>(y) * stride,
                        old._image.pixels + static_cast<std::ptrdiff_t>(y) * old._image.bytesPerRow, bytes);
    }
    _image.width = width;
    _image.height = height;
}

void XImage::push(xcb_window_t window, xcb_gcontext_t gc, const PixelRect& part) {
    if (_connection.isLost()) return;
    if (!_segment) return pushInBands(window, gc, part);
    const auto u16 = [](int value) { return static_cast<std::uint16_t>(value); };
    xcb_shm_put_image(_connection, window, gc, u16(_image.bytesPerRow / 4), u16(_rows), u16(part.x),
                      u16(part.y), u16(part.width), u16(part.height), static_cast<std::int16_t>(part.x),
                      static_cast<std::int16_t>(part.y), _connection.depth(), XCB_IMAGE_FORMAT_Z_PIXMAP, 1,
                      _segment, 0);
    ++_inFlight;
}

void XImage::pushInBands(xcb_window_t window, xcb_gcontext_t gc, const PixelRect& part) {
    const auto rowBytes = static_cast<std::size_t>(part.width) * 4;
    const int rowsInBand = static_cast<int>(std::max<std::size_t>(1, kBandBytes / rowBytes));
    std::vector<std::uint8_t> band;
    for (int y = part.y, end = part.y + part.height; y < end; y += rowsInBand) {
        const int rows = std::min(rowsInBand, end - y);
        band.resize(rowBytes * static_cast<std::size_t>(rows));
        for (int row = 0; row < rows; ++row)
            std::memcpy(
                band.data() + rowBytes * static_cast<std::size_t>(row),
                _image.pixels + static_cast<std::ptrdiff_t>(y + row) * _image.bytesPerRow + part.x * 4,
                rowBytes);
        xcb_put_image(_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, gc,
                      static_cast<std::uint16_t>(part.width), static_cast<std::uint16_t>(rows),
                      static_cast<std::int16_t>(part.x), static_cast<std::int16_t>(y), 0, _connection.depth(),
                      static_cast<std::uint32_t>(band.size()), band.data());
    }
}

}  // namespace pelvor
