// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSRangeValue.h"

#include "Foundation/Collections/ConcreteArrays.h"
#include "Foundation/FoundationLibrary.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/RowMemory.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSRangeValue, foundationLibrary) {}

void* NSRangeValue::operator new(std::size_t) { return RowMemory<NSRangeValue>::allocate(); }

void NSRangeValue::operator delete(void* value) noexcept { RowMemory<NSRangeValue>::free(value); }

void NSRangeValue::getValue(void* buffer) {
    if (!buffer) raiseNullArgument("getValue:", "the buffer");
    std::memcpy(buffer, &_range, sizeof _range);
}

Retained<NSRangeValue> NSRangeValue::create(NSRange range) {
    return Retained<NSRangeValue>::adopting(Instances::createWithExtra<NSRangeValue>(0, &classRecord, range));
}

Retained<NSMutableArray> NSRangeValue::createArray(std::span<const NSRange> ranges) {
    auto boxes = make<NSBufferArray>();
    boxes->reserve(static_cast<NSUInteger>(ranges.size()));
    for (NSRange range : ranges) boxes->adoptObject(create(range));
    return boxes;
}

}  // namespace pelvor
