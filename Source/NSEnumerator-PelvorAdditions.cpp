// SPDX-License-Identifier: Apache-2.0
#include "NSEnumerator-PelvorAdditions.h"

#include "BaseLibrary.h"
#include "PBSingleObjectEnumerator.h"
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

}  // namespace pelvor
