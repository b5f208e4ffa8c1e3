// SPDX-License-Identifier: Apache-2.0
#include "Text/NSGraphicsContext.h"

#include <cairo.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "Foundation/NSData.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSString.h"
#include "Shared/ArgumentChecks.h"
#include "Text/Drawing/Canvas.h"
#include "Text/Drawing/Pictures.h"
#include "Text/Drawing/Wave.h"
#include "Text/NSColor.h"
#include "Text/TextLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSGraphicsContext, textLibrary) {
    methods.creator<"initWithImageSize:scale:", &NSGraphicsContext::initWithImageSize_scale>();
    methods.creator<"initForPDFWithTitle:", &NSGraphicsContext::initForPDFWithTitle>();
    methods.classLevel<"currentContext", &NSGraphicsContext::currentContext>();
    methods.classLevel<"setCurrentContext:", &NSGraphicsContext::setCurrentContext>();
    methods.classLevel<"sizeOfImage:", &NSGraphicsContext::sizeOfImage>();
    methods.instance<"beginPageWithSize:", &NSGraphicsContext::beginPageWithSize>();
    methods.instance<"numberOfPages", &NSGraphicsContext::numberOfPages>();
    methods.instance<"isFlipped", &NSGraphicsContext::isFlipped>();
    methods.instance<"saveGraphicsState", &NSGraphicsContext::saveGraphicsState>();
    methods.instance<"restoreGraphicsState", &NSGraphicsContext::restoreGraphicsState>();
    methods.instance<"setColor:", &NSGraphicsContext::setColor>();
    methods.instance<"clipToRect:", &NSGraphicsContext::clipToRect>();
    methods.instance<"translateXBy:yBy:", &NSGraphicsContext::translateXBy_yBy>();
    methods.instance<"scaleXBy:yBy:", &NSGraphicsContext::scaleXBy_yBy>();
    methods.instance<"fillRect:", &NSGraphicsContext::fillRect>();
    methods.instance<"strokeRect:width:", &NSGraphicsContext::strokeRect_width>();
    methods.instance<"strokeLineFromPoint:toPoint:width:",
                     &NSGraphicsContext::strokeLineFromPoint_toPoint_width>();
    methods.instance<"strokeWaveFromPoint:length:", &NSGraphicsContext::strokeWaveFromPoint_length>();
    methods.instance<"drawImage:inRect:reason:", &NSGraphicsContext::drawImage_inRect_reason>();
    methods.instance<"addLink:inRect:", &NSGraphicsContext::addLink_inRect>();
    methods.instance<"dataWithReason:", &NSGraphicsContext::dataWithReason>();
    methods.instance<"writeToFile:reason:", &NSGraphicsContext::writeToFile_reason>();
}

namespace {

constexpr double kLongestEdge = 32767;

double wide(float number) { return static_cast<double>(number); }

bool areFinite(NSPoint point) { return std::isfinite(point.x) && std::isfinite(point.y); }

bool isFinite(NSRect rect) {
    return areFinite(rect.origin) && std::isfinite(rect.size.width) && std::isfinite(rect.size.height);
}

void addRect(cairo_t* page, NSRect rect) {
    cairo_new_path(page);
    cairo_rectangle(page, wide(rect.origin.x), wide(rect.origin.y), wide(rect.size.width),
                    wide(rect.size.height));
}

void tell(NSString** reason, const std::string& text) {
    if (reason) *reason = NSString::ofUTF8(text);
}

// The address with what would end its text, and what is not ASCII, as %-codes.
std::string escaped(std::string_view address) {
    std::string text;
    for (char character : address) {
        if (character > ' ' && character < 0x7F && !std::strchr("()'\\<>\"", character)) {
            text += character;
            continue;
        }
        char code[4];
        std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(character));
        text += code;
    }
    return text;
}

Retained<NSGraphicsContext>& contextOfThread() {
    thread_local Retained<NSGraphicsContext> context;
    return context;
}

}  // namespace

NSGraphicsContext::~NSGraphicsContext() = default;

// MARK: Creation

Retained<NSGraphicsContext> NSGraphicsContext::initWithImageSize_scale(NSSize size, float scale, Class* cls) {
    const double width = std::ceil(wide(size.width) * wide(scale));
    const double height = std::ceil(wide(size.height) * wide(scale));
    if (!(scale > 0 && width >= 1 && height >= 1 && width <= kLongestEdge && height <= kLongestEdge))
        raiseBadArgument("initWithImageSize:scale:",
                         "an image has 1 to 32767 pixels in each direction, not " + std::to_string(width) +
                             " times " + std::to_string(height));
    auto context = make<NSGraphicsContext>(cls);
    context->_canvas = Canvas::image(static_cast<int>(width), static_cast<int>(height), scale);
    return context;
}

Retained<NSGraphicsContext> NSGraphicsContext::initForPDFWithTitle(NSString* title, Class* cls) {
    auto context = make<NSGraphicsContext>(cls);
    context->_canvas = Canvas::pdf(title ? acceptableText(title->toUTF16()) : "");
    return context;
}

Retained<NSGraphicsContext> NSGraphicsContext::onPixels(unsigned char* pixels, int width, int height,
                                                        int bytesPerRow, float scale) {
    auto context = make<NSGraphicsContext>();
    context->_canvas = Canvas::pixels(pixels, width, height, bytesPerRow, scale);
    return context;
}

NSGraphicsContext* NSGraphicsContext::currentContext() { return contextOfThread(); }

void NSGraphicsContext::setCurrentContext(NSGraphicsContext* context) { contextOfThread().set(context); }

// MARK: Pages and state

void NSGraphicsContext::beginPageWithSize(NSSize size) {
    // The format allows edges of 3 to 14400 points.
    auto edge = [](float length) { return length > 3 ? std::min(wide(length), 14400.0) : 3.0; };
    _canvas->beginPage(edge(size.width), edge(size.height));
}

NSUInteger NSGraphicsContext::numberOfPages() { return _canvas->pageCount(); }

bool NSGraphicsContext::isFlipped() { return _canvas->isFlipped(); }

void NSGraphicsContext::saveGraphicsState() { _canvas->save(); }

void NSGraphicsContext::restoreGraphicsState() { _canvas->restore(); }

void NSGraphicsContext::setColor(NSColor* color) {
    if (!color) color = NSColor::blackColor();
    if (cairo_t* page = _canvas->page())
        cairo_set_source_rgba(page, wide(color->redComponent()), wide(color->greenComponent()),
                              wide(color->blueComponent()), wide(color->alphaComponent()));
}

void NSGraphicsContext::clipToRect(NSRect rect) {
    cairo_t* page = _canvas->page();
    if (!page) return;
    addRect(page, isFinite(rect) ? rect : NSRect{});
    // Edges of images are those of pixels: text is drawn quicker there, and nothing shines through.
    if (!_canvas->isPDF()) cairo_set_antialias(page, CAIRO_ANTIALIAS_NONE);
    cairo_clip(page);
    cairo_set_antialias(page, CAIRO_ANTIALIAS_DEFAULT);
}

void NSGraphicsContext::translateXBy_yBy(float x, float y) {
    if (cairo_t* page = _canvas->page(); page && areFinite({x, y})) cairo_translate(page, wide(x), wide(y));
}

void NSGraphicsContext::scaleXBy_yBy(float x, float y) {
    auto factor = [](float given) { return std::isnormal(given) ? wide(given) : 1.0; };
    if (cairo_t* page = _canvas->page()) cairo_scale(page, factor(x), factor(y));
}

// MARK: Drawing

void NSGraphicsContext::fillRect(NSRect rect) {
    cairo_t* page = _canvas->page();
    if (!page || !isFinite(rect)) return;
    addRect(page, rect);
    cairo_fill(page);
}

void NSGraphicsContext::strokeRect_width(NSRect rect, float width) {
    cairo_t* page = _canvas->page();
    if (!page || !isFinite(rect) || !(width > 0)) return;
    addRect(page, NSInsetRect(rect, width / 2, width / 2));
    cairo_set_line_width(page, wide(width));
    cairo_stroke(page);
}

void NSGraphicsContext::strokeLineFromPoint_toPoint_width(NSPoint from, NSPoint to, float width) {
    cairo_t* page = _canvas->page();
    if (!page || !areFinite(from) || !areFinite(to) || !(width > 0)) return;
    cairo_new_path(page);
    cairo_move_to(page, wide(from.x), wide(from.y));
    cairo_line_to(page, wide(to.x), wide(to.y));
    cairo_set_line_width(page, wide(width));
    cairo_stroke(page);
}

void NSGraphicsContext::strokeWaveFromPoint_length(NSPoint from, float length) {
    if (cairo_t* page = _canvas->page(); page && areFinite(from) && std::isfinite(length))
        drawWave(page, wide(from.x), wide(from.y), wide(length));
}

bool NSGraphicsContext::drawImage_inRect_reason(NSData* picture, NSRect rect, NSString** reason) {
    requireArgument(picture, "drawImage:inRect:reason:", "the picture");
    cairo_t* page = _canvas->page();
    if (!page) return tell(reason, "there is no page to draw on"), false;
    if (!isFinite(rect) || !std::isnormal(rect.size.width) || !std::isnormal(rect.size.height))
        return tell(reason, "the rectangle is empty"), false;
    const UprightState upright(*_canvas, rect.origin, rect.size.height);
    cairo_save(page);
    cairo_translate(page, wide(rect.origin.x), wide(rect.origin.y));
    cairo_scale(page, wide(rect.size.width), wide(rect.size.height));
    const std::string failure = drawPicture(page, picture->span(), _canvas->isPDF());
    cairo_restore(page);
    if (!failure.empty()) tell(reason, failure);
    return failure.empty();
}

NSSize NSGraphicsContext::sizeOfImage(NSData* picture) {
    if (!picture) return {};
    const PictureHeader header = readPictureHeader(picture->span());
    return {static_cast<float>(header.width), static_cast<float>(header.height)};
}

void NSGraphicsContext::addLink_inRect(NSString* address, NSRect rect) {
    cairo_t* page = _canvas->page();
    if (!page || !_canvas->isPDF() || !address || !address->length() || !isFinite(rect)) return;
    double left = wide(rect.origin.x), top = wide(rect.origin.y);
    double width = wide(rect.size.width), height = wide(rect.size.height);
    cairo_user_to_device(page, &left, &top);
    cairo_user_to_device_distance(page, &width, &height);
    char place[160];
    std::snprintf(place, sizeof place, "rect=[%.3f %.3f %.3f %.3f] ", left, top, width, height);
    cairo_tag_begin(page, CAIRO_TAG_LINK, (place + ("uri='" + escaped(address->toUTF8()) + "'")).c_str());
    cairo_tag_end(page, CAIRO_TAG_LINK);
}

// MARK: The result

NSData* NSGraphicsContext::dataWithReason(NSString** reason) {
    const std::string& failure = _canvas->finish();
    if (!failure.empty()) return tell(reason, failure), nullptr;
    const std::string& bytes = _canvas->bytes();
    return NSData::dataWithBytes_length(bytes.data(), requireTextLength(bytes.size(), "dataWithReason:"));
}

bool NSGraphicsContext::writeToFile_reason(NSString* path, NSString** reason) {
    requireArgument(path, "writeToFile:reason:", "the path");
    NSData* data = dataWithReason(reason);
    if (!data) return false;
    if (data->writeToFile_atomically(path, true)) return true;
    const char* failure = reasonOfFileError(errno, FileUse::writing);
    tell(reason, "the file \"" + path->toUTF8() + "\" cannot be written: " + failure);
    return false;
}

}  // namespace pelvor
