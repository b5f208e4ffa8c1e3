// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/StringChecks.h"

#include "Foundation/NSString.h"
#include "Runtime/NSException.h"

namespace pelvor {

void raiseNull(const char* operation, const char* argument) {
    raiseException(NSInvalidArgumentException, u"%s the %s null"_ns, operation, argument);
}

void raiseIndex(const char* operation, NSUInteger index, NSUInteger bounds) {
    raiseException(NSRangeException, u"%s index (%u) beyond bounds (%u)"_ns, operation, index, bounds);
}

void raiseRange(const char* operation, NSRange range, NSUInteger bounds) {
    raiseException(NSRangeException, u"%s range {%u, %u} beyond bounds (%u)"_ns, operation, range.location,
                   range.length, bounds);
}

void raiseTooLong(const char* operation, std::uint64_t length) {
    raiseException(NSMallocException, u"%s a string cannot have %llu units"_ns, operation, length);
}

}  // namespace pelvor
