// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNull.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSNull, foundationLibrary) { methods.classLevel<"null", &NSNull::null>(); }

NSNull* NSNull::null() {
    static constinit NSNull shared;
    return &shared;
}

NSString* NSNull::description() { return u"<null>"_ns; }

Retained<NSNull> NSNull::copy() { return Retained<NSNull>::retaining(this); }

Retained<Object> NSNull::copyWithZone(void*) { return Retained<Object>::retaining(this); }

}  // namespace pelvor
