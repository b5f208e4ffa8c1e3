// SPDX-License-Identifier: Apache-2.0
#include "PBMutableNumber.h"

#include "BaseLibrary.h"
#include "PBMutableIntNumber.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBMutableNumber, baseLibrary) {
    methods.creator<"numberWithBool:", &PBMutableNumber::numberWithBool>();
    methods.creator<"numberWithInt:", &PBMutableNumber::numberWithInt>();
    methods.creator<"numberWithUnsignedInt:", &PBMutableNumber::numberWithUnsignedInt>();
    methods.instance<"copyWithZone:", &PBMutableNumber::copyWithZone>();
    methods.instance<"mutableCopyWithZone:", &PBMutableNumber::mutableCopyWithZone>();
}

PBMutableIntNumber* PBMutableNumber::numberWithBool(bool value) { return numberWithInt(value ? 1 : 0); }

PBMutableIntNumber* PBMutableNumber::numberWithInt(int value) {
    return PBMutableIntNumber::initWithInt(value).autorelease();
}

PBMutableIntNumber* PBMutableNumber::numberWithUnsignedInt(unsigned value) {
    return numberWithInt(static_cast<int>(value));
}

Retained<Object> PBMutableNumber::copyWithZone(void*) { return nullptr; }

Retained<Object> PBMutableNumber::mutableCopyWithZone(void*) { return nullptr; }

}  // namespace pelvor
