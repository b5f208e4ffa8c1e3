// SPDX-License-Identifier: Apache-2.0
#include "Shared/ArgumentChecks.h"

#include <string>

#include "Runtime/NSException.h"

namespace pelvor {

namespace {

// "removeObject: ", "rangeValue: ".
std::string prefix(const char* operation) {
    std::string text = operation ? operation : "";
    return text.empty() ? text : text + (text.ends_with(':') ? " " : ": ");
}

std::string number(NSUInteger value) { return "(" + std::to_string(value) + ")"; }

}  // namespace

std::string rangeText(NSRange range) {
    return "{" + std::to_string(range.location) + ", " + std::to_string(range.length) + "}";
}

void raiseIndexBeyondBounds(NSUInteger index, NSUInteger bounds, const char* operation) {
    throw NSException(NSRangeException,
                      prefix(operation) + "index " + number(index) + " beyond bounds " + number(bounds));
}

void raiseRangeBeyondBounds(NSRange range, NSUInteger bounds, const char* operation) {
    throw NSException(NSRangeException,
                      prefix(operation) + "range " + rangeText(range) + " beyond bounds " + number(bounds));
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

void raiseBadArgument(const char* operation, const std::string& sentence) {
    throw NSException(NSInvalidArgumentException, prefix(operation) + sentence);
}

void raiseNullArgument(const char* operation, const char* name) {
    raiseBadArgument(operation, std::string(name) + " is null");
}

void requireObjects(Object* const* objects, NSUInteger count, const char* operation, const char* name) {
    if (!objects && count) [[unlikely]]
        raiseNullMemory(count, operation, ("the " + std::string(name) + "s").c_str());
    for (NSUInteger i = 0; i < count; ++i)
        if (!objects[i]) [[unlikely]]
            raiseBadArgument(operation, name + (" " + std::to_string(i + 1)) + " of " +
                                            std::to_string(count) + " is null");
}

}  // namespace pelvor
