// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSURLError.h"

#include "Foundation/FoundationLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSURLError, foundationLibrary) {
    methods.instance<"code", &NSURLError::code>();
    methods.instance<"reason", &NSURLError::reason>();
}

Retained<NSURLError> NSURLError::create(NSURLErrorCode code, std::string_view reason) {
    auto error = make<NSURLError>();
    error->_code = code;
    error->_reason.set(NSString::ofUTF8(reason));
    return error;
}

}  // namespace pelvor
