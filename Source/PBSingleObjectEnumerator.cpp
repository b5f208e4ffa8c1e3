// SPDX-License-Identifier: Apache-2.0
#include "PBSingleObjectEnumerator.h"

#include "BaseLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBSingleObjectEnumerator, baseLibrary) {
    methods.creator<"initWithObject:", &PBSingleObjectEnumerator::initWithObject>();
    methods.instance<"nextObject", &PBSingleObjectEnumerator::nextObject>();
}

Retained<PBSingleObjectEnumerator> PBSingleObjectEnumerator::initWithObject(id object, Class* cls) {
    auto enumerator = make<PBSingleObjectEnumerator>(cls);
    enumerator->_object.set(object);
    return enumerator;
}

id PBSingleObjectEnumerator::nextObject() { return std::move(_object).autorelease(); }

}  // namespace pelvor
