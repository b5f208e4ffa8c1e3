// SPDX-License-Identifier: Apache-2.0
#include "Foundation/ObjectPrinting.h"

#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

std::ostream& operator<<(std::ostream& stream, Object* object) {
    AutoreleasePool pool;
    return stream << (object ? object->description() : nullptr);
}

std::ostream& operator<<(std::ostream& stream, NSRange range) {
    stream << '{';
    if (range.location == NSNotFound)
        stream << "NSNotFound";
    else
        stream << range.location;
    return stream << ", " << range.length << '}';
}

std::ostream& operator<<(std::ostream& stream, NSPoint point) {
    AutoreleasePool pool;
    return stream << NSStringFromPoint(point);
}

std::ostream& operator<<(std::ostream& stream, NSSize size) {
    AutoreleasePool pool;
    return stream << NSStringFromSize(size);
}

std::ostream& operator<<(std::ostream& stream, NSRect rect) {
    AutoreleasePool pool;
    return stream << NSStringFromRect(rect);
}

std::ostream& operator<<(std::ostream& stream, SEL selector) {
    return stream << (selector ? selector.name() : "(null)");
}

}  // namespace pelvor
