// SPDX-License-Identifier: Apache-2.0
#include "Foundation/ObjectPrinting.h"

#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

std::ostream& operator<<(std::ostream& stream, Object* object) {
    AutoreleasePool pool;
    return stream << (object ? object->description() : nullptr);
}

}  // namespace pelvor
