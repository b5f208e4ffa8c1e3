// SPDX-License-Identifier: Apache-2.0
// The descriptions of the Runtime's classes, which need strings.
#include <cstdio>

#include "Foundation/NSString.h"
#include "Runtime/Class.h"
#include "Runtime/NSMethodSignature.h"
#include "Runtime/StringResults.h"

namespace pelvor {

NSString* Object::description() {
    char address[32];
    std::snprintf(address, sizeof address, ": %p>", static_cast<void*>(this));
    return NSString::ofUTF8(std::string("<") + isa()->name() + address);
}

NSString* Class::description() { return NSString::ofUTF8(name()); }

NSString* NSMethodSignature::description() {
    return NSString::ofUTF8(std::string("<NSMethodSignature ") + types() + ">");
}

id describeObject(Object* object) { return object->description(); }

}  // namespace pelvor
