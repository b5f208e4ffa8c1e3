// SPDX-License-Identifier: Apache-2.0
#include "PBPlanarRange.h"

#include "Runtime/Registry.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSValue>& methods) {
    methods.classLevel<"valueWithPlanarRange:", &NSValue_PlanarRangeAdditions::valueWithPlanarRange>();
    methods.instance<"planarRangeValue", &planarRangeValue>();
}

}  // namespace

constinit const Category NSValue_PlanarRangeAdditions_category =
    Category::of<NSValue, defineAdditions>("PlanarRangeAdditions");

NSValue* NSValue_PlanarRangeAdditions::valueWithPlanarRange(PBPlanarRange range) {
    return NSValue::of(range);
}

PBPlanarRange planarRangeValue(NSValue* value) { return value->as<PBPlanarRange>(); }

}  // namespace pelvor
