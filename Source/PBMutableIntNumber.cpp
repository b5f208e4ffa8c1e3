// SPDX-License-Identifier: Apache-2.0
#include "PBMutableIntNumber.h"

#include "BaseLibrary.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBMutableIntNumber, baseLibrary) {
    methods.creator<"initWithInt:", &PBMutableIntNumber::initWithInt>();
    methods.instance<"intValue", &PBMutableIntNumber::intValue>();
    methods.instance<"setIntValue:", &PBMutableIntNumber::setIntValue>();
    methods.instance<"increment", &PBMutableIntNumber::increment>();
    methods.instance<"decrement", &PBMutableIntNumber::decrement>();
    methods.instance<"objCType", &PBMutableIntNumber::objCType>();
    methods.instance<"getValue:", &PBMutableIntNumber::getValue>();
    methods.instance<"copyWithZone:", &PBMutableIntNumber::copyWithZone>();
    methods.instance<"mutableCopyWithZone:", &PBMutableIntNumber::mutableCopyWithZone>();
}

Retained<PBMutableIntNumber> PBMutableIntNumber::initWithInt(int value, Class* cls) {
    auto number = make<PBMutableIntNumber>(cls);
    number->_value = value;
    return number;
}

int PBMutableIntNumber::increment() {
    return _value = static_cast<std::int32_t>(static_cast<std::uint32_t>(_value) + 1);
}

int PBMutableIntNumber::decrement() {
    return _value = static_cast<std::int32_t>(static_cast<std::uint32_t>(_value) - 1);
}

const char* PBMutableIntNumber::objCType() { return "i"; }

void PBMutableIntNumber::getValue(void* buffer) {
    requireArgument(buffer, "getValue:", "the buffer");
    std::memcpy(buffer, &_value, sizeof _value);
}

Retained<Object> PBMutableIntNumber::copyWithZone(void*) { return NSNumber::initWithInt(_value); }

Retained<Object> PBMutableIntNumber::mutableCopyWithZone(void*) { return initWithInt(_value, isa()); }

}  // namespace pelvor
