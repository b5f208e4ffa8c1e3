// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSEnumerator.h"

#include <cstdio>
#include <string>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableArray.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSEnumerator, foundationLibrary) {
    methods.instance<"nextObject", &NSEnumerator::nextObject>();
    methods.instance<"allObjects", &NSEnumerator::allObjects>();
}

NSArray* NSEnumerator::allObjects() {
    auto objects = NSMutableArray::init();
    while (id object = nextObject()) objects->addObject(object);
    return std::move(objects).autorelease();
}

void raiseMutatedWhileEnumerated(Object* collection) {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(collection));
    throw NSException(NSGenericException, std::string("Collection <") + collection->isa()->publicName() +
                                              ": " + address + "> was mutated while being enumerated.");
}

}  // namespace pelvor
