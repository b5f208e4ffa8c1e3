// SPDX-License-Identifier: Apache-2.0
#include "NSEnumerator-PelvorAdditions.h"

#include "BaseLibrary.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSEnumerator>& methods) {
    methods.classLevel<"enumerator", &NSEnumerator_PelvorAdditions::enumerator>();
    methods.classLevel<"enumeratorWithObject:", &NSEnumerator_PelvorAdditions::enumeratorWithObject>();
}

}  // namespace

constinit const Category NSEnumerator_PelvorAdditions_category =
    Category::of<NSEnumerator, defineAdditions>("PelvorAdditions");

NSEnumerator* NSEnumerator_PelvorAdditions::enumerator() { return enumeratorWithObject(nullptr); }

NSEnumerator* NSEnumerator_PelvorAdditions::enumeratorWithObject(id object) {
    return PBSingleObjectEnumerator::initWithObject(object).autorelease();
}

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
