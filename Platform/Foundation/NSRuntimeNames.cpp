// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSRuntimeNames.h"

#include "Foundation/FoundationLibrary.h"

namespace pelvor {

Class* NSClassFromString(NSString* name) {
    if (!name) return nullptr;
    registerLibrary(foundationLibrary);
    return classNamed(name->toUTF8());
}

NSString* NSStringFromClass(Class* cls) { return cls ? NSString::ofUTF8(cls->name()) : nullptr; }

SEL NSSelectorFromString(NSString* name) {
    return name && name->length() ? registerSelector(name->toUTF8()) : SEL();
}

NSString* NSStringFromSelector(SEL selector) {
    return selector ? NSString::ofUTF8(selector.name()) : nullptr;
}

}  // namespace pelvor
