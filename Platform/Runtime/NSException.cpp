// SPDX-License-Identifier: Apache-2.0
#include "Runtime/NSException.h"

namespace pelvor {

NSException::NSException(std::string name, std::string reason, Retained<Object> userInfo)
    : _name(std::move(name)),
      _reason(std::move(reason)),
      _what(_name + ": " + _reason),
      _userInfo(std::move(userInfo)) {}

NSException::~NSException() = default;

std::string currentExceptionReason() {
    try {
        throw;
    } catch (const NSException& exception) {
        return exception.reason();
    } catch (const std::exception& exception) {
        return exception.what();
    } catch (...) {
        return "unknown exception";
    }
}

}  // namespace pelvor
