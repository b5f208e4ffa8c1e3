// SPDX-License-Identifier: Apache-2.0
// Canvas: the Cairo surface that a graphics context draws on.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Foundation/NSGeometry.h"

struct _cairo;
struct _cairo_surface;

namespace pelvor {

/// UTF-8 that Cairo accepts. One code point that Cairo does not take for text, such as U+FFFF, would make
/// the whole document fail; lone halves and noncharacters become U+FFFD.
std::string acceptableText(std::u16string_view units);

/// A Cairo surface, the page that is being drawn, and the bytes that become of it. One thread at a time.
class PELVOR_EXPORT Canvas {
  public:
    static std::unique_ptr<Canvas> image(int width, int height, float scale);
    /// Draws on memory of somebody else, which outlives the canvas: 32-bit pixels, blue in the lowest byte,
    /// the highest unused.
    static std::unique_ptr<Canvas> pixels(unsigned char* pixels, int width, int height, int bytesPerRow,
                                          float scale);
    static std::unique_ptr<Canvas> pdf(const std::string& title);
    ~Canvas();

    bool isPDF() const { return _isPDF; }
    /// What is drawn with; null outside all pages, after the end, and after a failure.
    _cairo* page() const { return _page; }
    unsigned pageCount() const { return _pageCount; }
    void beginPage(double width, double height);

    /// Whether y grows downwards in the coordinates that are drawn with.
    bool isFlipped() const;

    void save();
    void restore();
    unsigned savedStates() const { return _savedStates; }

    /// Ends the drawing. Returns what went wrong, "" if nothing did; the bytes are then complete.
    const std::string& finish();
    const std::string& bytes() const { return _bytes; }

  private:
    Canvas(_cairo_surface* surface, bool isPDF) : _surface(surface), _isPDF(isPDF) {}
    void endPage();
    void noteFailure(int status);

    _cairo_surface* _surface;
    _cairo* _page = nullptr;
    bool _isPDF;
    bool _isFinished = false;
    unsigned _pageCount = 0;
    unsigned _savedStates = 0;  // on this page
    std::string _failure;
    std::string _bytes;
};

/// Saves the state for as long as the object lives, then restores it, with all states that were saved
/// meanwhile.
class SavedState {
  public:
    explicit SavedState(Canvas& canvas) : _canvas(canvas), _before(canvas.savedStates()) { canvas.save(); }
    ~SavedState() {
        while (_canvas.page() && _canvas.savedStates() > _before) _canvas.restore();
    }
    SavedState(const SavedState&) = delete;
    SavedState& operator=(const SavedState&) = delete;

  private:
    Canvas& _canvas;
    unsigned _before;
};

/// What is written from the top down, such as text and pictures, stands upright where y grows upwards: for as
/// long as the object lives, y grows downwards, and `point` is where its upper left corner is.
class UprightState {
  public:
    /// `height` is how far the corner lies above the point where y grows upwards.
    UprightState(Canvas& canvas, NSPoint& point, float height = 0);

  private:
    std::optional<SavedState> _saved;
};

}  // namespace pelvor
