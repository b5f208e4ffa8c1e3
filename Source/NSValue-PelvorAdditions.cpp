// SPDX-License-Identifier: Apache-2.0
#include "NSValue-PelvorAdditions.h"

#include "PBRangeUtil.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSValue>& methods) { methods.instance<"compareRange:", &compareRange>(); }

}  // namespace

constinit const Category NSValue_PelvorAdditions_category =
    Category::of<NSValue, defineAdditions>("PelvorAdditions");

NSComparisonResult compareRange(NSValue* value, NSValue* other) {
    return static_cast<NSComparisonResult>(PBCompareRanges(value, other, nullptr));
}

}  // namespace pelvor
