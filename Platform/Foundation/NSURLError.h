// SPDX-License-Identifier: Apache-2.0
// NSURLError: why a URL could not be loaded.
#pragma once

#include <string_view>

#include "Foundation/NSString.h"

namespace pelvor {

enum NSURLErrorCode : std::int32_t {
    NSURLErrorUnknown = -1,
    NSURLErrorBadURL = -1000,  ///< there is no URL, or the loader cannot use it
    NSURLErrorTimedOut = -1001,
    NSURLErrorUnsupportedURL = -1002,  ///< neither http nor https, also of a redirection
    NSURLErrorCannotFindHost = -1003,
    NSURLErrorCannotConnectToHost = -1004,
    NSURLErrorNetworkConnectionLost = -1005,  ///< the answer ended too early, too
    NSURLErrorHTTPTooManyRedirects = -1007,   ///< more than ten
    NSURLErrorResourceUnavailable = -1008,    ///< a cached answer was wanted
    NSURLErrorBadServerResponse = -1011,      ///< the answer is not HTTP
    NSURLErrorDataLengthExceedsMaximum = -1103,
    NSURLErrorSecureConnectionFailed = -1200,
    NSURLErrorServerCertificateUntrusted = -1202,
    NSURLErrorCannotLoadFromNetwork = -2000,  ///< the system has no library for loading
};

/// Why a URL could not be loaded. Immutable. Any thread.
class PELVOR_EXPORT NSURLError final : public NSObject {
    PELVOR_CLASS(NSURLError, NSObject);

  public:
    // C++ only
    static Retained<NSURLError> create(NSURLErrorCode code, std::string_view reason);

    NSURLErrorCode code() { return _code; }
    /// Returns what went wrong, in English: "Failed to connect to 127.0.0.1 port 9".
    NSString* reason() { return _reason; }
    /// Returns what went wrong in the user's language: "the server cannot be reached". It is a clause without
    /// a full stop; behind a colon it can end a message. A reason that is rare is in English.
    NSString* localizedReason();
    NSString* description() override { return _reason; }

  protected:
    NSURLError() = default;
    ~NSURLError() = default;

  private:
    NSURLErrorCode _code = NSURLErrorUnknown;
    Retained<NSString> _reason;
};

}  // namespace pelvor
