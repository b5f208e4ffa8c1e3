// SPDX-License-Identifier: Apache-2.0
#include <string>

#include "Foundation/Collections/CollectionFailures.h"
#include "Foundation/NSEnumerator.h"
#include "Runtime/NSException.h"

namespace pelvor {

void raiseNoObject(const char* operation) {
    throw NSException(NSInvalidArgumentException, std::string("no object was given to ") + operation);
}

void requireObjects(Object* const* objects, NSUInteger count, const char* operation) {
    for (NSUInteger i = 0; i < count; ++i) requireObject(objects[i], operation);
}

void raiseMutatedWhileEnumerated(Object* collection) {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(collection));
    throw NSException(NSGenericException, std::string("Collection <") + collection->isa()->name() + ": " +
                                              address + "> was mutated while being enumerated.");
}

}  // namespace pelvor
