// SPDX-License-Identifier: Apache-2.0
#include "Text/NSContainerRunTable.h"

#include "Text/Layout/LayoutState.h"
#include "Text/TextLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSContainerRunTable, textLibrary) {
    methods.instance<"count", &NSContainerRunTable::count>();
    methods.instance<"elementAtIndex:effectiveRange:", &NSContainerRunTable::elementAtIndex_effectiveRange>();
}

Retained<NSContainerRunTable> NSContainerRunTable::forState(LayoutState& state) {
    auto table = make<NSContainerRunTable>();
    table->_state = &state;
    return table;
}

NSUInteger NSContainerRunTable::count() {
    if (!_state) return 0;
    const auto& fillings = _state->fillings();
    return fillings.empty() ? 0 : fillings.back().end;
}

const NSContainerRun* NSContainerRunTable::elementAtIndex_effectiveRange(NSUInteger index, NSRange* range) {
    if (index >= count()) return nullptr;
    const auto& fillings = _state->fillings();
    const std::size_t container = _state->containerOf(index);
    if (range) *range = {fillings[container].start, fillings[container].end - fillings[container].start};
    _run.container = _state->containers[container];
    return &_run;
}

}  // namespace pelvor
