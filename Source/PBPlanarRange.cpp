// SPDX-License-Identifier: Apache-2.0
#include "PBPlanarRange.h"

#include <cstring>

#include "Foundation/NSString.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

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

PBPlanarRange planarRangeValue(NSValue* value) {
    requireArgument(value, "planarRangeValue", "the value");
    if (std::strcmp(value->objCType(), typeEncoding<PBPlanarRange>.text) != 0)
        raiseException(NSInvalidArgumentException, u"planarRangeValue: %@ is no boxed planar range"_ns,
                       value);
    return value->as<PBPlanarRange>();
}

}  // namespace pelvor
