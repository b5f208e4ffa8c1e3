// SPDX-License-Identifier: Apache-2.0
#include "PBUniqueObject.h"

#include "BaseLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBUniqueObject, baseLibrary) {
    methods.instance<"hash", &PBUniqueObject::hash>();
    methods.instance<"isEqual:", &PBUniqueObject::isEqual>();
    methods.instance<"copyWithZone:", &PBUniqueObject::copyWithZone>();
    methods.instance<"mutableCopyWithZone:", &PBUniqueObject::mutableCopyWithZone>();
}

}  // namespace pelvor
