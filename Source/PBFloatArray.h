// SPDX-License-Identifier: Apache-2.0
// PBFloatArray and PBFloatVector: arrays of single-precision numbers, of fixed and of growing length.
#pragma once

#include <cstdlib>
#include <memory>

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSNumber;
class NSString;

/// A fixed number of floats, which can also be read and written as number objects. A bad index raises
/// NSRangeException, "float array index out of bounds (idx=5 length=5)", and changes nothing.
class PELVOR_EXPORT PBFloatArray : public NSObject {
    PELVOR_CLASS(PBFloatArray, NSObject);

  public:
    /// `count` floats copied from `floats`, zeros where that is none. None if there is no memory.
    static Retained<PBFloatArray> initWithFloats_count(const float* floats, unsigned count,
                                                       Class* cls = classObject());
    /// The same without floats. Of an array, whose length is fixed, all are in use; a vector is empty.
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
    /// Stores the object's float value.
    void replaceObjectAtIndex_withObject(unsigned index, id object);
    /// Copies as many floats as the range is long; raises with the range's last index.
    void replaceFloatsInRange_withFloatsFrom(NSRange range, const float* floats);
    /// The sum of everything before the end of the range, from index 0 on: the range's location counts
    /// only through its end. Added in order, in single precision; 0 for an empty range.
    float sumFloatsInRange(NSRange range);
    /// "PBFloatArray <0x…> ", a line end, and one line a value.
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

/// Floats that come and go. The storage doubles when it is full, so it needs a capacity of 1 at least.
class PELVOR_EXPORT PBFloatVector : public PBFloatArray {
    PELVOR_CLASS(PBFloatVector, PBFloatArray);

  public:
    /// As for the array; without floats the vector is empty and `count` is its capacity.
    static Retained<PBFloatVector> initWithFloats_count(const float* floats, unsigned count,
                                                        Class* cls = classObject());
    static Retained<PBFloatVector> initWithCapacity(unsigned capacity, Class* cls = classObject());

    void addFloat(float value) {
        if (_count < _capacity)
            _floats[_count++] = value;
        else
            insertFloat_atIndex(value, _count);
    }
    /// The index may be the count. Raises NSRangeException for one above it and for a full vector that
    /// cannot grow: of capacity 0, or of 2^31 floats and more.
    void insertFloat_atIndex(float value, unsigned index);
    void removeFloatAtIndex(unsigned index);
    /// Keeps the storage.
    void removeAllFloats() { _count = 0; }

  protected:
    PBFloatVector() = default;
    ~PBFloatVector() = default;

  private:
    void grow();
};

}  // namespace pelvor
