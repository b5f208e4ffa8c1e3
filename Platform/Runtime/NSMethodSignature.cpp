// SPDX-License-Identifier: Apache-2.0
#include "Runtime/NSMethodSignature.h"

#include <string>

#include "Runtime/NSException.h"
#include "Runtime/Private/RegistryState.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor {

std::string detail::describeType(const char* encoding) {
    switch (encoding[0]) {
        case 'v':
            return "nothing";
        case 'B':
            return "a bool";
        case 'c':
            return "a signed char";
        case 'C':
            return "an unsigned char";
        case 's':
            return "a short";
        case 'S':
            return "an unsigned short";
        case 'i':
            return "an int";
        case 'I':
            return "an unsigned int";
        case 'q':
            return "a long";
        case 'Q':
            return "an unsigned long";
        case 'f':
            return "a float";
        case 'd':
            return "a double";
        case '@':
            return "an object";
        case '#':
            return "a class";
        case ':':
            return "a selector";
        case '*':
            return "a C string";
        case '{': {
            std::string_view name(encoding + 1);
            if (name.starts_with('_')) name.remove_prefix(1);
            return "a struct " + std::string(name.substr(0, name.find('=')));
        }
        default:
            return "a pointer";
    }
}

std::string detail::describeTypes(const NSMethodSignature* signature) {
    std::string text = "a method that takes (";
    for (std::uint32_t i = 0; i < signature->argumentCount(); ++i)
        text += (i ? ", " : "") + describeType(signature->argument(i).encoding);
    return text + ") and returns " + describeType(signature->result().encoding);
}

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
