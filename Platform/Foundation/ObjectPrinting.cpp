// SPDX-License-Identifier: Apache-2.0
#include "Foundation/ObjectPrinting.h"

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

std::ostream& operator<<(std::ostream& stream, SEL selector) {
    return stream << (selector ? selector.name() : "(null)");
}

}  // namespace pelvor
