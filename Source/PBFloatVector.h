// SPDX-License-Identifier: Apache-2.0
// PBFloatVector: an array of floats that come and go.
#pragma once

#include "PBFloatArray.h"

namespace pelvor {

/// An array of floats that come and go:
///
///     auto tabs = PBFloatVector::initWithCapacity(8);  // empty, with room for 8
///     tabs->addFloat(36);
///
/// The storage doubles when it is full, so the capacity has to be at least 1.
class PELVOR_EXPORT PBFloatVector : public PBFloatArray {
    PELVOR_CLASS(PBFloatVector, PBFloatArray);
    PELVOR_CREATORS(initWithFloats_count, initWithCapacity);

  public:
    /// Makes a vector of `count` floats, copies of those at `floats`. If `floats` is null, the vector is
    /// empty and has room for `count`. The result is null if there is no memory.
    static Retained<PBFloatVector> initWithFloats_count(const float* floats, unsigned count,
                                                        Class* cls = classObject());
    /// Makes an empty vector with room for `capacity` floats.
    static Retained<PBFloatVector> initWithCapacity(unsigned capacity, Class* cls = classObject());

    /// Adds the float at the end.
    void addFloat(float value) {
        if (_count < _capacity)
            _floats[_count++] = value;
        else
            insertFloat_atIndex(value, _count);
    }
    /// Inserts the float. The index may be the count. Raises NSRangeException for an index above the count,
    /// and for a full vector that cannot grow: one of capacity 0, or of 2^31 floats and more.
    void insertFloat_atIndex(float value, unsigned index);
    void removeFloatAtIndex(unsigned index);
    /// Empties the vector, which keeps its storage.
    void removeAllFloats() { _count = 0; }

  protected:
    PBFloatVector() = default;
    ~PBFloatVector() = default;

  private:
    void grow();
};

}  // namespace pelvor
