// SPDX-License-Identifier: Apache-2.0
#include "Private/PBRangeList.h"

#include <cstring>
#include <utility>

#include "BaseLibrary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSString.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBRangeList, baseLibrary) {}

NSArray* PBRangeList::listOf(std::vector<NSRange> ranges) {
    auto list = make<PBRangeList>();
    list->_ranges = std::move(ranges);
    return std::move(list).autorelease();
}

PBRangeList::~PBRangeList() {
    if (NSArray* boxes = _boxes) boxes->release();
}

const std::vector<NSRange>* PBRangeList::plainRangesOf(NSArray* array) {
    bool isPlain = array && array->isa() == classObject();
    return isPlain ? &static_cast<PBRangeList*>(array)->_ranges : nullptr;
}

NSArray* PBRangeList::boxes() {
    if (NSArray* made = _boxes.load(std::memory_order_acquire)) return made;
    Retained<NSArray> boxes = NSRangeValue::createArray(_ranges);
    NSArray* made = nullptr;  // another thread may have made boxes in the meantime
    return _boxes.compare_exchange_strong(made, boxes, std::memory_order_acq_rel) ? boxes.leak() : made;
}

NSRange rangeInOtherBox(id box, const char* operation) {
    auto* value = cast<NSValue>(box);
    if (!value || std::strcmp(value->objCType(), typeEncoding<NSRange>.text) != 0)
        raiseException(NSInvalidArgumentException, u"%s the list holds %@, which is no boxed range"_ns,
                       operation, box);
    return value->rangeValue();
}

std::vector<NSRange> rangesOf(NSArray* list, const char* operation) {
    std::vector<NSRange> ranges;
    if (!list) return ranges;
    ranges.reserve(std::size_t{list->count()} + 1);
    if (const std::vector<NSRange>* plain = PBRangeList::plainRangesOf(list))
        ranges.assign(plain->begin(), plain->end());
    else
        for (id box : list) ranges.push_back(rangeInBox(box, operation));
    return ranges;
}

}  // namespace pelvor
