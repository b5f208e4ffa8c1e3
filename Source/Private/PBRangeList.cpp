// SPDX-License-Identifier: Apache-2.0
#include "Private/PBRangeList.h"

#include <utility>

#include "BaseLibrary.h"
#include "Foundation/NSString.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBRangeList, baseLibrary) {}

Retained<PBRangeList> PBRangeList::create(std::vector<NSRange> ranges) {
    auto list = make<PBRangeList>();
    list->_ranges = std::move(ranges);
    return list;
}

PBRangeList::~PBRangeList() {
    if (NSMutableArray* boxes = _boxes) boxes->release();
}

NSArray* PBRangeList::listOf(std::vector<NSRange> ranges) { return create(std::move(ranges)).autorelease(); }

const std::vector<NSRange>* PBRangeList::plainRangesOf(NSArray* array) {
    if (!array || array->isa() != classObject()) return nullptr;
    auto* list = static_cast<PBRangeList*>(array);
    return list->_hasRanges ? &list->_ranges : nullptr;
}

PBRangeList* PBRangeList::withoutBoxes(NSArray* array) {
    if (!array || array->isa() != classObject()) return nullptr;
    auto* list = static_cast<PBRangeList*>(array);
    return list->_boxes ? nullptr : list;
}

NSMutableArray* PBRangeList::boxes() {
    if (NSMutableArray* made = _boxes.load(std::memory_order_acquire)) return made;
    auto boxes = NSRangeValue::createArray(_ranges);
    NSMutableArray* made = nullptr;  // by another thread meanwhile
    return _boxes.compare_exchange_strong(made, boxes, std::memory_order_acq_rel) ? boxes.leak() : made;
}

NSMutableArray* PBRangeList::changingBoxes() {
    NSMutableArray* changing = boxes();
    _hasRanges = false;
    _ranges = {};
    return changing;
}

NSUInteger PBRangeList::count() {
    return _hasRanges ? static_cast<NSUInteger>(_ranges.size()) : boxes()->count();
}

id PBRangeList::objectAtIndex(NSUInteger index) { return boxes()->objectAtIndex(index); }

void PBRangeList::insertObject_atIndex(id object, NSUInteger index) {
    changingBoxes()->insertObject_atIndex(object, index);
}

void PBRangeList::replaceObjectAtIndex_withObject(NSUInteger index, id object) {
    changingBoxes()->replaceObjectAtIndex_withObject(index, object);
}

void PBRangeList::replaceObjects(NSRange range, Object* const* objects, NSUInteger count) {
    auto arriving = NSArray::initWithObjects_count(objects, count);
    changingBoxes()->replaceObjectsInRange_withObjectsFromArray(range, arriving);
}

// MARK: Without boxes

void PBRangeList::replaceObjectsInRange_withObjectsFromArray(NSRange range, NSArray* other) {
    PBRangeList* list = withoutBoxes(other);
    if (_boxes || !list || list == this || !isRangeInside(range, count()))
        return NSMutableArray::replaceObjectsInRange_withObjectsFromArray(range, other);
    auto first = _ranges.begin() + range.location;
    auto place = _ranges.erase(first, first + range.length);
    _ranges.insert(place, list->_ranges.begin(), list->_ranges.end());
}

NSArray* PBRangeList::arrayByAddingObjectsFromArray(NSArray* other) {
    PBRangeList* list = withoutBoxes(other);
    if (_boxes || !list || list == this) return NSMutableArray::arrayByAddingObjectsFromArray(other);
    std::vector<NSRange> all;
    all.reserve(_ranges.size() + list->_ranges.size());
    all.insert(all.end(), _ranges.begin(), _ranges.end());
    all.insert(all.end(), list->_ranges.begin(), list->_ranges.end());
    return listOf(std::move(all));
}

Retained<Object> PBRangeList::mutableCopyWithZone(void* zone) {
    return _boxes ? NSMutableArray::mutableCopyWithZone(zone) : create(_ranges);
}

// MARK: Reading

NSRange rangeInOtherBox(id box) {
    auto* value = cast<NSValue>(box);
    if (!value) raiseException(NSInvalidArgumentException, u"%@ is no boxed range"_ns, box);
    return value->rangeValue();
}

namespace {

// Stops and answers false at a box of another kind: asking that may do anything, with the list too.
bool readUsualBoxes(Object* const* boxes, std::vector<NSRange>& ranges) {
    for (NSRange& range : ranges) {
        id box = *boxes++;
        if (!isUsualBox(box)) return false;
        range = static_cast<NSRangeValue*>(box)->range();
    }
    return true;
}

}  // namespace

std::vector<NSRange> rangesOf(NSArray* list) {
    std::vector<NSRange> ranges;
    if (!list) return ranges;
    NSUInteger count = list->count();
    ranges.reserve(std::size_t{count} + 1);
    if (const std::vector<NSRange>* plain = PBRangeList::plainRangesOf(list)) {
        ranges.assign(plain->begin(), plain->end());
        return ranges;
    }
    if (Object* const* boxes = list->contiguousObjects()) {
        ranges.resize(count);
        if (readUsualBoxes(boxes, ranges)) return ranges;
        ranges.clear();
    }
    for (id box : list) ranges.push_back(rangeInBox(box));
    return ranges;
}

}  // namespace pelvor
