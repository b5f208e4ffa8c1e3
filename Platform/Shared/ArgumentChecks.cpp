// SPDX-License-Identifier: Apache-2.0
#include "Shared/ArgumentChecks.h"

#include <string>

#include "Runtime/NSException.h"

namespace pelvor {

void raiseIndexBeyondBounds(NSUInteger index, NSUInteger bounds) {
    throw NSException(NSRangeException, "index (" + std::to_string(static_cast<int>(index)) +
                                            ") beyond bounds (" + std::to_string(static_cast<int>(bounds)) +
                                            ")");
}

void raiseRangeBeyondBounds(NSRange range, NSUInteger bounds) {
    throw NSException(NSRangeException, "range {" + std::to_string(range.location) + ", " +
                                            std::to_string(range.length) + "} beyond bounds (" +
                                            std::to_string(static_cast<int>(bounds)) + ")");
}

void raiseMissingElements(const char* name) {
    throw NSException(NSInvalidArgumentException, std::string("a count was given without ") + name);
}

void raiseNullArgument(const char* operation, const char* name) {
    throw NSException(NSInvalidArgumentException, std::string(operation) + " " + name + " is null");
}

}  // namespace pelvor
