// SPDX-License-Identifier: Apache-2.0
#include "Shared/ArgumentChecks.h"

#include <string>

#include "Runtime/NSException.h"

namespace pelvor {

namespace {

std::string prefix(const char* operation) { return operation ? std::string(operation) + " " : ""; }

// As %d prints it.
std::string number(NSUInteger value) { return "(" + std::to_string(static_cast<int>(value)) + ")"; }

}  // namespace

void raiseIndexBeyondBounds(NSUInteger index, NSUInteger bounds, const char* operation) {
    throw NSException(NSRangeException,
                      prefix(operation) + "index " + number(index) + " beyond bounds " + number(bounds));
}

void raiseRangeBeyondBounds(NSRange range, NSUInteger bounds, const char* operation) {
    throw NSException(NSRangeException, prefix(operation) + "range {" + std::to_string(range.location) +
                                            ", " + std::to_string(range.length) + "} beyond bounds " +
                                            number(bounds));
}

void raiseNullMemory(NSUInteger length, const char* operation, const char* name) {
    throw NSException(
        NSInvalidArgumentException,
        prefix(operation) + name + " must not be null where the length is " + std::to_string(length));
}

void raiseTooLong(std::uint64_t length, const char* operation) {
    throw NSException(NSMallocException,
                      prefix(operation) + "a string cannot have " + std::to_string(length) + " units");
}

void raiseNullArgument(const char* operation, const char* name) {
    throw NSException(NSInvalidArgumentException, std::string(operation) + " " + name + " is null");
}

}  // namespace pelvor
