// SPDX-License-Identifier: Apache-2.0
// PBRangeList, and the reading of range lists of any kind; for the library's own sources.
#pragma once

#include <atomic>
#include <vector>

#include "Foundation/NSArray.h"
#include "Foundation/NSRangeValue.h"

namespace pelvor {

/// The lists that range operations return: immutable arrays of boxed ranges. A list holds its ranges plain
/// and makes all boxes together when somebody first asks for an object. The library's own operations read the
/// plain ranges, so that most lists never have boxes. Any thread.
class PBRangeList final : public NSArray {
    PELVOR_CLASS(PBRangeList, NSArray);

  public:
    /// A borrowed list.
    static NSArray* listOf(std::vector<NSRange> ranges);
    /// The ranges of a list of this class, which live as long as the list; null for any other array.
    static const std::vector<NSRange>* plainRangesOf(NSArray* list);

    NSUInteger count() override { return static_cast<NSUInteger>(_ranges.size()); }
    id objectAtIndex(NSUInteger index) override { return boxes()->objectAtIndex(index); }
    Object* const* contiguousObjects() override { return boxes()->contiguousObjects(); }
    Retained<Object> copyWithZone(void* zone) override { return Retained<Object>::retaining(this); }

  protected:
    PBRangeList() = default;
    ~PBRangeList();

  private:
    NSArray* boxes();

    std::vector<NSRange> _ranges;
    std::atomic<NSArray*> _boxes{nullptr};  // owned; null until somebody asks for an object
};

/// The range in a boxed value of another class than NSValue's creators make.
NSRange rangeInOtherBox(id box, const char* operation);
/// The range in a box. Raises NSInvalidArgumentException in the name of the operation, "unionRange: the list
/// holds page, which is no boxed range", if the object is no boxed range.
inline NSRange rangeInBox(id box, const char* operation) {
    bool isUsual = box && box->isa() == NSRangeValue::classObject();
    return isUsual ? static_cast<NSRangeValue*>(box)->range() : rangeInOtherBox(box, operation);
}

/// A copy of the ranges of any list, with room for one more. A null list has no ranges. Raises as
/// `rangeInBox` does.
std::vector<NSRange> rangesOf(NSArray* list, const char* operation);

/// The index of the first range of any list for which the test returns true, else NSNotFound. Raises as
/// `rangeInBox` does.
template <class Test>
NSUInteger indexOfRange(NSArray* list, const char* operation, Test test) {
    NSUInteger index = 0;
    if (const std::vector<NSRange>* plain = PBRangeList::plainRangesOf(list)) {
        for (NSRange range : *plain) {
            if (test(range)) return index;
            ++index;
        }
        return NSNotFound;
    }
    for (id box : list) {
        if (test(rangeInBox(box, operation))) return index;
        ++index;
    }
    return NSNotFound;
}

}  // namespace pelvor
