// SPDX-License-Identifier: Apache-2.0
// NSException: what programming errors raise.
#pragma once

#include <exception>
#include <string>

#include "Runtime/Object.h"

namespace pelvor {

/// A named error with a reason; a value, not an object of the class tree. Texts are UTF-8.
///
///     try {
///         text->substringFromIndex(100);
///     } catch (const NSException& exception) {
///         logText(exception.reason());  // exception.name() is NSRangeException
///     }
class PELVOR_EXPORT NSException : public std::exception {
  public:
    NSException(std::string name, std::string reason, Retained<Object> userInfo = nullptr);
    ~NSException() override;
    NSException(const NSException&) = default;
    NSException& operator=(const NSException&) = default;

    const std::string& name() const noexcept { return _name; }
    const std::string& reason() const noexcept { return _reason; }
    /// The object that the raiser attached, or null.
    Object* userInfo() const noexcept { return _userInfo.get(); }
    /// "name: reason".
    const char* what() const noexcept override { return _what.c_str(); }

  private:
    std::string _name;
    std::string _reason;
    std::string _what;
    Retained<Object> _userInfo;
};

inline constexpr char NSInvalidArgumentException[] = "NSInvalidArgumentException";
inline constexpr char NSRangeException[] = "NSRangeException";
inline constexpr char NSInternalInconsistencyException[] = "NSInternalInconsistencyException";
inline constexpr char NSGenericException[] = "NSGenericException";
inline constexpr char NSMallocException[] = "NSMallocException";

/// The text of whatever is being handled: an NSException's reason, another exception's `what()`,
/// "unknown exception" for the rest. Only inside a catch clause.
PELVOR_EXPORT std::string currentExceptionReason();

}  // namespace pelvor
