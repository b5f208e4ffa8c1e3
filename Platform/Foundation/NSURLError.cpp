// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSURLError.h"

#include <algorithm>
#include <iterator>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/LibraryTexts.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSURLError, foundationLibrary) {
    methods.instance<"code", &NSURLError::code>();
    methods.instance<"reason", &NSURLError::reason>();
    methods.instance<"localizedReason", &NSURLError::localizedReason>();
}

namespace {

struct Reason {
    NSURLErrorCode code;
    const char* key;
};

// The keys of the library's tables. Codes that are missing here are too rare for a text of their own.
constexpr Reason kReasons[] = {
    {NSURLErrorBadURL, "_the address is wrong"},
    {NSURLErrorTimedOut, "_the server did not answer in time"},
    {NSURLErrorUnsupportedURL, "_such an address cannot be loaded"},
    {NSURLErrorCannotFindHost, "_no server of that name is known"},
    {NSURLErrorCannotConnectToHost, "_the server cannot be reached"},
    {NSURLErrorNetworkConnectionLost, "_the connection was lost"},
    {NSURLErrorHTTPTooManyRedirects, "_the server sends its callers on without end"},
    {NSURLErrorBadServerResponse, "_the answer cannot be understood"},
    {NSURLErrorDataLengthExceedsMaximum, "_the answer is too long"},
    {NSURLErrorSecureConnectionFailed, "_there is no secure connection to the server"},
    {NSURLErrorServerCertificateUntrusted, "_the server cannot prove who it is"},
};

}  // namespace

Retained<NSURLError> NSURLError::create(NSURLErrorCode code, std::string_view reason) {
    auto error = make<NSURLError>();
    error->_code = code;
    error->_reason.set(NSString::ofUTF8(reason));
    return error;
}

NSString* NSURLError::localizedReason() {
    const auto* reason = std::ranges::find(kReasons, _code, &Reason::code);
    NSString* text =
        reason == std::end(kReasons) ? nullptr : localizedLibraryText(NSString::ofUTF8(reason->key));
    return text ? text : _reason.get();
}

}  // namespace pelvor
