// SPDX-License-Identifier: Apache-2.0
#include "Runtime/NSMethodSignature.h"

#include <string>

#include "Runtime/NSException.h"
#include "Runtime/Private/RegistryState.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMethodSignature, runtimeLibrary) {
    methods.classLevel<"signatureWithObjCTypes:", &NSMethodSignature::signatureWithObjCTypes>();
    methods.instance<"numberOfArguments", &NSMethodSignature::numberOfArguments>();
    methods.instance<"getArgumentTypeAtIndex:", &NSMethodSignature::getArgumentTypeAtIndex>();
    methods.instance<"methodReturnType", &NSMethodSignature::methodReturnType>();
    methods.instance<"methodReturnLength", &NSMethodSignature::methodReturnLength>();
    methods.instance<"frameLength", &NSMethodSignature::frameLength>();
}

NSMethodSignature* NSMethodSignature::signatureWithObjCTypes(const char* types) {
    return types ? Registry::shared().signatureOfTypes(types) : nullptr;
}

const char* NSMethodSignature::getArgumentTypeAtIndex(std::uint32_t index) {
    if (index == 0) return "@";
    if (index == 1) return ":";
    if (index >= numberOfArguments())
        throw NSException(NSInvalidArgumentException, "argument index " + std::to_string(index) +
                                                          " is outside a signature of " +
                                                          std::to_string(numberOfArguments()) + " arguments");
    return _arguments[index - 2].encoding;
}

bool NSMethodSignature::isEqual(id other) {
    auto* signature = cast<NSMethodSignature>(other);
    return signature && signature->_key == _key;
}

}  // namespace pelvor
