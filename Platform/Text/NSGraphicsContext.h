// SPDX-License-Identifier: Apache-2.0
// NSGraphicsContext: what is drawn on, an image or the pages of a PDF document.
#pragma once

#include <memory>

#include "Foundation/NSGeometry.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class Canvas;
class NSColor;
class NSData;
class NSFont;
class NSString;

/// What is drawn on: an image, or the pages of a PDF document.
///
///     auto pages = NSGraphicsContext::initForPDFWithTitle(u"Letter"_ns);
///     pages->beginPageWithSize({595, 842});
///     pages->setColor(NSColor::blackColor());
///     pages->fillRect({{72, 72}, {451, 1}});
///     NSString* reason = nullptr;
///     if (!pages->writeToFile_reason(path, &reason)) NSLog(u"%@"_ns, reason);
///
/// Coordinates are points from the upper left corner, y grows downwards; in a view they are those of the
/// view. Text and pictures stand upright in both. A context belongs to one thread at a time. Once the drawing
/// has been written, or something went wrong, further drawing does nothing.
class PELVOR_EXPORT NSGraphicsContext : public NSObject {
    PELVOR_CLASS(NSGraphicsContext, NSObject);
    PELVOR_CREATORS(initWithImageSize_scale, initForPDFWithTitle, onPixels);

  public:
    // Creation: owned contexts.

    /// An image, transparent at first, of so many points with `scale` pixels each. Raises
    /// NSInvalidArgumentException for an image without pixels or with more than 32767 in a row or column.
    static Retained<NSGraphicsContext> initWithImageSize_scale(NSSize size, float scale,
                                                               Class* cls = classObject());
    /// A PDF document without pages; the title may be null. Text that is drawn on its pages can be searched
    /// and copied.
    static Retained<NSGraphicsContext> initForPDFWithTitle(NSString* title, Class* cls = classObject());

    /// The context that this thread draws on, or null. Setting it retains it until another one is set.
    static NSGraphicsContext* currentContext();
    static void setCurrentContext(NSGraphicsContext* context);

    // Pages of a PDF document; an image has one page from the start, and ignores these calls.

    /// Ends the page before this one. What is drawn outside all pages is lost.
    void beginPageWithSize(NSSize size);
    NSUInteger numberOfPages();

    // State: colour, clipping, translation and scale. Each page begins with a fresh state.

    /// Whether y grows downwards.
    bool isFlipped();
    void saveGraphicsState();
    /// Goes back to the state that was saved last; nothing happens if there is none on this page.
    void restoreGraphicsState();
    /// Black at first. Null stands for black.
    void setColor(NSColor* color);
    void clipToRect(NSRect rect);
    void translateXBy_yBy(float x, float y);
    /// A factor that is 0 or not finite is taken as 1.
    void scaleXBy_yBy(float x, float y);

    // Drawing

    void fillRect(NSRect rect);
    /// A line of that thickness along the inside of the rectangle's edges.
    void strokeRect_width(NSRect rect, float width);
    void strokeLineFromPoint_toPoint_width(NSPoint from, NSPoint to, float width);
    /// A wave such as marks misspelled words, some three points high, so far to the right of the point, which
    /// is its upper left corner. It lies on whole pixels, so that it is crisp at any scale.
    void strokeWaveFromPoint_length(NSPoint from, float length);
    /// A picture, PNG on any context and JPEG in PDF documents, stretched over the rectangle. False, with
    /// the reason written unless the pointer is null, if the picture cannot be drawn. Raises
    /// NSInvalidArgumentException for null.
    bool drawImage_inRect_reason(NSData* picture, NSRect rect, NSString** reason);
    /// The width and height in pixels of a PNG or JPEG picture; zeros for other data.
    static NSSize sizeOfImage(NSData* picture);
    /// Makes the rectangle a link to the address in a PDF document, and does nothing on an image.
    void addLink_inRect(NSString* address, NSRect rect);

    // The result. After this the drawing is finished.

    /// The image as PNG, or the document. Null, with the reason written unless the pointer is null, if
    /// something went wrong.
    NSData* dataWithReason(NSString** reason);
    /// Writes the file as a whole or not at all. False, with the reason written unless the pointer is null,
    /// if something went wrong.
    bool writeToFile_reason(NSString* path, NSString** reason);

    // C++ only
    /// Draws on memory of somebody else, which outlives the context: 32-bit pixels, blue in the lowest byte,
    /// the highest unused.
    static Retained<NSGraphicsContext> onPixels(unsigned char* pixels, int width, int height, int bytesPerRow,
                                                float scale);
    Canvas& canvas() { return *_canvas; }

  protected:
    NSGraphicsContext() = default;
    ~NSGraphicsContext();

  private:
    std::unique_ptr<Canvas> _canvas;
};

}  // namespace pelvor
