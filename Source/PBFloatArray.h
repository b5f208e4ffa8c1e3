// SPDX-License-Identifier: Apache-2.0
// PBFloatArray: an array of a fixed number of floats.
#pragma once

#include <cstdlib>
#include <memory>

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSNumber;
class NSString;

/// An array of a fixed number of floats, which can also be read and written as number objects:
///
///     auto widths = PBFloatArray::initWithCapacity(3);         // 0, 0, 0
///     widths->replaceFloatAtIndex_withFloat(1, 72);
///     float left = widths->sumFloatsInRange({2, 1});           // everything before index 3: 72
///
/// An index that is not below the count raises NSRangeException, "float array index out of bounds (idx=5
/// length=5)", and changes nothing. For one thread at a time.
class PELVOR_EXPORT PBFloatArray : public NSObject {
    PELVOR_CLASS(PBFloatArray, NSObject);
    PELVOR_CREATORS(initWithFloats_count, initWithCapacity);

  public:
    /// Makes an array of `count` floats: copies of those at `floats`, or zeros if `floats` is null. The
    /// result is null if there is no memory.
    static Retained<PBFloatArray> initWithFloats_count(const float* floats, unsigned count,
                                                       Class* cls = classObject());
    /// Makes an array of `capacity` zeros.
    static Retained<PBFloatArray> initWithCapacity(unsigned capacity, Class* cls = classObject());

    unsigned count() { return _count; }
    float floatAtIndex(unsigned index) {
        requireIndex(index);
        return _floats[index];
    }
    void replaceFloatAtIndex_withFloat(unsigned index, float value) {
        requireIndex(index);
        _floats[index] = value;
    }
    NSNumber* objectAtIndex(unsigned index);
    /// Stores what the object returns for `floatValue`.
    void replaceObjectAtIndex_withObject(unsigned index, id object);
    /// Copies the floats at `floats` to the range. Raises NSRangeException, with the last index of the range,
    /// if the range reaches beyond the end, and NSInvalidArgumentException if `floats` is null and the range
    /// is not empty.
    void replaceFloatsInRange_withFloatsFrom(NSRange range, const float* floats);
    /// The sum of all floats from index 0 to the end of the range; the floats before the location of the
    /// range are added, too. Floats are added in their order, in single precision. The sum is 0 for an empty
    /// range.
    float sumFloatsInRange(NSRange range);
    /// A line "PBFloatArray <0x…> ", and a line "   72.000000, " for each float.
    NSString* description() override;

  protected:
    PBFloatArray() = default;
    ~PBFloatArray() = default;

    struct Free {
        void operator()(float* floats) const { std::free(floats); }
    };
    void requireIndex(unsigned index) {
        if (index >= _count) [[unlikely]]
            raiseOutOfBounds(index);
    }
    [[noreturn]] void raiseOutOfBounds(unsigned index);
    void requireRange(NSRange range);

    std::unique_ptr<float[], Free> _floats;
    std::uint32_t _capacity = 0;
    std::uint32_t _count = 0;
};

}  // namespace pelvor
