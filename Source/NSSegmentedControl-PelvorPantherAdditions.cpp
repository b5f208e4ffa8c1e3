// SPDX-License-Identifier: Apache-2.0
#include "NSSegmentedControl-PelvorPantherAdditions.h"

#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSSegmentedControl>& methods) {
    methods.instance<"pbSelectSegmentWithTag:", &pbSelectSegmentWithTag>();
}

}  // namespace

constinit const Category NSSegmentedControl_PelvorPantherAdditions_category =
    Category::of<NSSegmentedControl, defineAdditions>("PelvorPantherAdditions");

void pbSelectSegmentWithTag(NSSegmentedControl* control, int tag) {
    requireArgument(control, "pbSelectSegmentWithTag:", "the control");
    auto* cell = cast<NSSegmentedCell>(control->cell());
    for (int segment = 0; cell && segment < cell->segmentCount(); ++segment)
        if (cell->tagForSegment(segment) == tag) return control->setSelectedSegment(segment);
}

}  // namespace pelvor
