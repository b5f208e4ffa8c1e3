// SPDX-License-Identifier: Apache-2.0
// NSImage: a picture to draw.
#pragma once

#include <memory>

#include "Foundation/NSGeometry.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

struct _cairo_surface;

namespace pelvor {

class NSData;
class NSString;

/// How a picture is laid over what is there already.
enum NSCompositingOperation : int {
    NSCompositeCopy = 1,
    NSCompositeSourceOver = 2,
};

/// How a picture is fitted to a frame.
enum NSImageScaling : int {
    NSScaleProportionally = 0,  ///< made smaller where it is too large
    NSScaleToFit = 1,           ///< stretched to the frame
    NSScaleNone = 2,
};

/// A PNG picture with a size in points, which may differ from its number of pixels.
///
///     NSImage* folder = NSImage::imageNamed(u"Folder"_ns);     // Folder.png of the program's bundle, or
///     null folder->drawInRect_fromRect_operation_fraction({{4, 4}, {16, 16}}, NSZeroRect,
///     NSCompositeSourceOver, 1);
///
/// Pictures are drawn upright in flipped and in plain views. Main thread.
class PELVOR_EXPORT NSImage : public NSObject {
    PELVOR_CLASS(NSImage, NSObject);
    PELVOR_CREATORS(initWithData, initWithContentsOfFile);

  public:
    /// One pixel is one point at first. Null if the data is no PNG picture or null.
    static Retained<NSImage> initWithData(NSData* data, Class* cls = classObject());
    /// Null if the file cannot be read as well.
    static Retained<NSImage> initWithContentsOfFile(NSString* path, Class* cls = classObject());
    /// The image of that name (`setName`), else the PNG file of that name among the resources of the
    /// program's bundle, which has the name from then on. Null if there is none. Borrowed.
    static NSImage* imageNamed(NSString* name);

    NSSize size() { return _size; }
    void setSize(NSSize size) { _size = size; }
    /// Whether there are pixels to draw.
    bool isValid() { return _pixels != nullptr; }
    /// The picture as it was read.
    NSData* data() { return _data; }

    /// The name that `imageNamed` finds the image by; null at first.
    NSString* name() { return _name; }
    /// Keeps the image under that name until it gets another one, or null. Returns false, and changes
    /// nothing, if another image has the name.
    bool setName(NSString* name);

    /// Draws into the current graphics context. `from` is a part of the image in points, its origin at the
    /// lower left corner of the image; NSZeroRect stands for the whole image. The fraction is the opacity, 0
    /// to 1.
    void drawInRect_fromRect_operation_fraction(NSRect rect, NSRect from, NSCompositingOperation operation,
                                                float fraction);
    /// The same at the part's own size. The point is the corner of the drawing with the least coordinates.
    void drawAtPoint_fromRect_operation_fraction(NSPoint point, NSRect from, NSCompositingOperation operation,
                                                 float fraction);

  protected:
    NSImage() = default;
    ~NSImage();

  private:
    Retained<NSData> _data;
    Retained<NSString> _name;
    std::shared_ptr<_cairo_surface> _pixels;
    NSSize _size;
};

// C++ only

/// Where an image of the size stands in the frame; centred where it does not fill the frame.
NSRect fittedImage(NSSize size, NSRect frame, NSImageScaling scaling);

}  // namespace pelvor
