// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNibError.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/Nibs/InterfaceFault.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSNibError, foundationLibrary) {
    methods.instance<"file", &NSNibError::file>();
    methods.instance<"object", &NSNibError::object>();
    methods.instance<"key", &NSNibError::key>();
    methods.instance<"reason", &NSNibError::reason>();
}

Retained<NSNibError> NSNibError::create(NSString* file, const InterfaceFault& fault) {
    auto error = make<NSNibError>();
    error->_file = file->copy();
    error->_object.set(NSString::ofUTF8(fault.object));
    error->_key.set(NSString::ofUTF8(fault.key));
    error->_reason.set(NSString::ofUTF8(fault.reason));
    return error;
}

NSString* NSNibError::description() {
    std::string text = _file ? _file->toUTF8() : "";
    auto add = [&text](const char* before, const std::string& part, const char* behind) {
        if (!part.empty()) text += (text.empty() ? "" : ": ") + (before + part) + behind;
    };
    const std::string object = _object ? _object->toUTF8() : "", key = _key ? _key->toUTF8() : "";
    if (!object.empty() && !key.empty())
        add("object '", object + "', key '" + key, "'");
    else
        add(object.empty() ? "key '" : "object '", object + key, "'");
    add("", _reason ? _reason->toUTF8() : "", "");
    return NSString::ofUTF8(text);
}

}  // namespace pelvor
