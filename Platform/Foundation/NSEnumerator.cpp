// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSEnumerator.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableArray.h"

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

}  // namespace pelvor
