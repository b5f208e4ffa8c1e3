// SPDX-License-Identifier: Apache-2.0
// PBRangeList, and the reading of range lists of any kind; for the library's own sources.
#pragma once

#include <atomic>
#include <vector>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSRangeValue.h"

namespace pelvor {

/// The lists that range operations answer: arrays of boxed ranges whose boxes are made when somebody asks
/// for an object. This library reads them without, and joins them as long as nobody has. Threads may read a
/// list at once.
class PBRangeList final : public NSMutableArray {
    PELVOR_CLASS(PBRangeList, NSMutableArray);

  public:
    /// A borrowed list.
    static NSArray* listOf(std::vector<NSRange> ranges);
    /// The ranges of a list that has them plain, until it changes or goes; none for other arrays.
    static const std::vector<NSRange>* plainRangesOf(NSArray* list);

    NSUInteger count() override;
    id objectAtIndex(NSUInteger index) override;
    Object* const* contiguousObjects() override { return boxes()->contiguousObjects(); }
    const std::uint32_t* mutationCounter() override { return boxes()->mutationCounter(); }
    void addObject(id object) override { changingBoxes()->addObject(object); }
    void insertObject_atIndex(id object, NSUInteger index) override;
    void replaceObjectAtIndex_withObject(NSUInteger index, id object) override;
    void removeObjectAtIndex(NSUInteger index) override { changingBoxes()->removeObjectAtIndex(index); }
    void removeObjectsInRange(NSRange range) override { changingBoxes()->removeObjectsInRange(range); }
    void replaceObjectsInRange_withObjectsFromArray(NSRange range, NSArray* other) override;
    NSArray* arrayByAddingObjectsFromArray(NSArray* other) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;

  protected:
    PBRangeList() = default;
    ~PBRangeList();
    void replaceObjects(NSRange range, Object* const* objects, NSUInteger count) override;

  private:
    static Retained<PBRangeList> create(std::vector<NSRange> ranges);
    // The array as a list without boxes, none if it is another.
    static PBRangeList* withoutBoxes(NSArray* array);
    // The boxes, made when they are not there yet.
    NSMutableArray* boxes();
    // The same for a change, after which they alone count.
    NSMutableArray* changingBoxes();

    std::vector<NSRange> _ranges;
    std::atomic<NSMutableArray*> _boxes{nullptr};  // owned, once somebody has asked for one
    bool _hasRanges = true;                        // the boxes, if any, have not been changed
};

/// Whether the object is a box as NSValue's creators make it.
inline bool isUsualBox(id object) { return object && object->isa() == NSRangeValue::classObject(); }
/// The range in a box of another kind.
NSRange rangeInOtherBox(id box);
/// The range in a box. Raises NSInvalidArgumentException for what is no boxed range.
inline NSRange rangeInBox(id box) {
    return isUsualBox(box) ? static_cast<NSRangeValue*>(box)->range() : rangeInOtherBox(box);
}

/// A copy of the ranges of any list, with room for one more.
std::vector<NSRange> rangesOf(NSArray* list);

/// The index of the first range of any list that the test is true for, else NSNotFound.
template <class Test>
NSUInteger indexOfRange(NSArray* list, Test test) {
    NSUInteger index = 0;
    if (const std::vector<NSRange>* plain = PBRangeList::plainRangesOf(list)) {
        for (NSRange range : *plain) {
            if (test(range)) return index;
            ++index;
        }
        return NSNotFound;
    }
    for (id box : list) {
        if (test(rangeInBox(box))) return index;
        ++index;
    }
    return NSNotFound;
}

}  // namespace pelvor
