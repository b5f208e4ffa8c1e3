// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSImage.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>

#include "Foundation/NSBundle.h"
#include "Foundation/NSData.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSString.h"
#include "Interface/InterfaceLibrary.h"
#include "Text/Drawing/Canvas.h"
#include "Text/Drawing/Pictures.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSImage, interfaceLibrary) {
    methods.creator<"initWithData:", &NSImage::initWithData>();
    methods.creator<"initWithContentsOfFile:", &NSImage::initWithContentsOfFile>();
    methods.classLevel<"imageNamed:", &NSImage::imageNamed>();
    methods.instance<"size", &NSImage::size>();
    methods.instance<"setSize:", &NSImage::setSize>();
    methods.instance<"isValid", &NSImage::isValid>();
    methods.instance<"data", &NSImage::data>();
    methods.instance<"name", &NSImage::name>();
    methods.instance<"setName:", &NSImage::setName>();
    methods.instance<"drawInRect:fromRect:operation:fraction:",
                     &NSImage::drawInRect_fromRect_operation_fraction>();
    methods.instance<"drawAtPoint:fromRect:operation:fraction:",
                     &NSImage::drawAtPoint_fromRect_operation_fraction>();
}

namespace {

// Retained, and not released at the end of the process.
NSMutableDictionary* namedImages() {
    static NSMutableDictionary* images = NSMutableDictionary::init().leak();
    return images;
}

bool isFinite(NSRect rect) {
    return std::isfinite(rect.origin.x) && std::isfinite(rect.origin.y) && std::isfinite(rect.size.width) &&
           std::isfinite(rect.size.height);
}

}  // namespace

NSImage::~NSImage() = default;

Retained<NSImage> NSImage::initWithData(NSData* data, Class* cls) {
    if (!data) return nullptr;
    std::string failure;
    auto pixels = readPicture(data->span(), false, failure);
    if (!pixels) return nullptr;
    auto image = make<NSImage>(cls);
    image->_data = data->copy();
    image->_size = NSGraphicsContext::sizeOfImage(data);
    image->_pixels = std::move(pixels);
    return image;
}

Retained<NSImage> NSImage::initWithContentsOfFile(NSString* path, Class* cls) {
    return path ? initWithData(NSData::dataWithContentsOfFile(path), cls) : nullptr;
}

NSImage* NSImage::imageNamed(NSString* name) {
    if (!name) return nullptr;
    if (auto* known = cast<NSImage>(namedImages()->objectForKey(name))) return known;
    NSString* path = NSBundle::mainBundle()->pathForResource_ofType(name, u"png"_ns);
    auto image = path ? initWithContentsOfFile(path) : nullptr;
    if (image) image->setName(name);
    return std::move(image).autorelease();
}

bool NSImage::setName(NSString* name) {
    NSMutableDictionary* images = namedImages();
    id holder = name ? images->objectForKey(name) : nullptr;
    if (holder) return holder == this;
    const auto alive = Retained<NSImage>::retaining(this);
    if (_name) images->removeObjectForKey(_name);
    _name = name ? name->copy() : nullptr;
    if (_name) images->setObject_forKey(this, _name);
    return true;
}

void NSImage::drawInRect_fromRect_operation_fraction(NSRect rect, NSRect from,
                                                     NSCompositingOperation operation, float fraction) {
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    cairo_t* page = context ? context->canvas().page() : nullptr;
    if (from == NSZeroRect) from.size = _size;
    if (!page || NSIsEmptyRect(rect) || NSIsEmptyRect(from) || NSIsEmptyRect({{}, _size}) ||
        !isFinite(rect) || !isFinite(from) || !(fraction > 0))
        return;
    const SavedState unchanged(context->canvas());
    cairo_translate(page, rect.origin.x, rect.origin.y);
    cairo_scale(page, rect.size.width, rect.size.height);
    cairo_matrix_t matrix;
    cairo_get_matrix(page, &matrix);
    if (matrix.yy < 0) {
        cairo_translate(page, 0, 1);
        cairo_scale(page, 1, -1);
    }
    if (operation == NSCompositeCopy) cairo_set_operator(page, CAIRO_OPERATOR_SOURCE);
    const bool isPDF = context->canvas().isPDF();
    std::string failure;
    const auto pixels = isPDF ? readPicture(_data->span(), true, failure) : _pixels;
    if (!pixels) return;
    const NSSize inPixels = NSGraphicsContext::sizeOfImage(_data);
    const float scaleX = inPixels.width / _size.width, scaleY = inPixels.height / _size.height;
    const NSRect part{{from.origin.x * scaleX, (_size.height - NSMaxY(from)) * scaleY},
                      {from.size.width * scaleX, from.size.height * scaleY}};
    paintPicture(page, pixels.get(), part, std::min(fraction, 1.0f), isPDF);
}

void NSImage::drawAtPoint_fromRect_operation_fraction(NSPoint point, NSRect from,
                                                      NSCompositingOperation operation, float fraction) {
    drawInRect_fromRect_operation_fraction({point, from == NSZeroRect ? _size : from.size}, from, operation,
                                           fraction);
}

NSRect fittedImage(NSSize size, NSRect frame, NSImageScaling scaling) {
    if (scaling == NSScaleToFit) return frame;
    if (scaling == NSScaleProportionally && size.width > 0 && size.height > 0) {
        const float factor = std::min({1.0f, frame.size.width / size.width, frame.size.height / size.height});
        size = {size.width * factor, size.height * factor};
    }
    return {{NSMidX(frame) - size.width / 2, NSMidY(frame) - size.height / 2}, size};
}

}  // namespace pelvor
