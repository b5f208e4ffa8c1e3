// SPDX-License-Identifier: Apache-2.0
#include "PantherObject.h"

#include "BaseTextLibrary.h"
#include "Foundation/NSString.h"
#include "PantherCompatibility.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

// For every object, whatever its C++ class.
void setValue_forKey(NSObject* object, id value, NSString* key) {
    send<void>(object, "takeValue:forKey:"_sel, value, key);
}

}  // namespace

PELVOR_DEFINE_CLASS(PantherObject, baseTextLibrary) {
    methods.classLevel<"performPosing", &PantherObject::performPosing>();
    methods.instance<"setValue:forKey:", &setValue_forKey>();
}

void PantherObject::performPosing() { poseOnOldPlatforms(classObject()); }

}  // namespace pelvor
