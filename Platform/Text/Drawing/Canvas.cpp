// SPDX-License-Identifier: Apache-2.0
#include "Text/Drawing/Canvas.h"

#include <cairo-pdf.h>
#include <cairo.h>
#include <unicode/utf.h>

#include <utility>

#include "Shared/Codepoints.h"
#include "Shared/UTF8.h"

namespace pelvor {
namespace {

cairo_status_t appendBytes(void* bytes, const unsigned char* data, unsigned length) {
    try {
        static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
        return CAIRO_STATUS_SUCCESS;
    } catch (const std::bad_alloc&) {
        return CAIRO_STATUS_NO_MEMORY;
    }
}

}  // namespace

std::string acceptableText(std::u16string_view units) {
    std::u16string mended;
    mended.reserve(units.size());
    for (std::size_t i = 0; i < units.size();) {
        const char32_t character = codePointAt(units, i);
        appendCodepoint(mended, U_IS_UNICODE_NONCHAR(character) ? kReplacementCharacter : character);
        i += unitCount(character);
    }
    return utf8FromUnitsMending(mended);
}

std::unique_ptr<Canvas> Canvas::image(int width, int height, float scale) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_surface_set_device_scale(surface, static_cast<double>(scale), static_cast<double>(scale));
    std::unique_ptr<Canvas> canvas(new Canvas(surface, false));
    canvas->_page = cairo_create(surface);
    canvas->_pageCount = 1;
    return canvas;
}

std::unique_ptr<Canvas> Canvas::pixels(unsigned char* pixels, int width, int height, int bytesPerRow,
                                       float scale) {
    cairo_surface_t* surface =
        cairo_image_surface_create_for_data(pixels, CAIRO_FORMAT_RGB24, width, height, bytesPerRow);
    cairo_surface_set_device_scale(surface, static_cast<double>(scale), static_cast<double>(scale));
    std::unique_ptr<Canvas> canvas(new Canvas(surface, false));
    canvas->_page = cairo_create(surface);
    canvas->_pageCount = 1;
    return canvas;
}

std::unique_ptr<Canvas> Canvas::pdf(const std::string& title) {
    std::unique_ptr<Canvas> canvas(new Canvas(nullptr, true));
    canvas->_surface = cairo_pdf_surface_create_for_stream(&appendBytes, &canvas->_bytes, 1, 1);
    if (!title.empty())
        cairo_pdf_surface_set_metadata(canvas->_surface, CAIRO_PDF_METADATA_TITLE, title.c_str());
    return canvas;
}

Canvas::~Canvas() {
    if (_page) cairo_destroy(_page);
    cairo_surface_destroy(_surface);
}

void Canvas::noteFailure(int status) {
    if (status != CAIRO_STATUS_SUCCESS && _failure.empty())
        _failure = cairo_status_to_string(static_cast<cairo_status_t>(status));
}

void Canvas::endPage() {
    cairo_t* page = std::exchange(_page, nullptr);
    if (!page) return;
    if (_isPDF) cairo_show_page(page);
    noteFailure(cairo_status(page));
    cairo_destroy(page);
}

void Canvas::beginPage(double width, double height) {
    if (!_isPDF || _isFinished) return;
    endPage();
    cairo_pdf_surface_set_size(_surface, width, height);
    _page = cairo_create(_surface);
    ++_pageCount;
    _savedStates = 0;
}

bool Canvas::isFlipped() const {
    if (!_page) return true;
    cairo_matrix_t matrix;
    cairo_get_matrix(_page, &matrix);
    return matrix.yy >= 0;
}

void Canvas::save() {
    if (!_page) return;
    cairo_save(_page);
    ++_savedStates;
}

void Canvas::restore() {
    if (!_page || !_savedStates) return;
    cairo_restore(_page);
    --_savedStates;
}

UprightState::UprightState(Canvas& canvas, NSPoint& point, float height) {
    if (canvas.isFlipped()) return;
    _saved.emplace(canvas);
    cairo_translate(canvas.page(), static_cast<double>(point.x), static_cast<double>(point.y + height));
    cairo_scale(canvas.page(), 1, -1);
    point = {};
}

const std::string& Canvas::finish() {
    if (std::exchange(_isFinished, true)) return _failure;
    endPage();
    if (!_isPDF) noteFailure(cairo_surface_write_to_png_stream(_surface, &appendBytes, &_bytes));
    cairo_surface_finish(_surface);
    noteFailure(cairo_surface_status(_surface));
    return _failure;
}

}  // namespace pelvor
