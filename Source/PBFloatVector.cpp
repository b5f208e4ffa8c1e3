// SPDX-License-Identifier: Apache-2.0
#include "PBFloatVector.h"

#include <cstring>

#include "BaseLibrary.h"
#include "Foundation/NSString.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBFloatVector, baseLibrary) {
    methods.creator<"initWithFloats:count:", &PBFloatVector::initWithFloats_count>();
    methods.creator<"initWithCapacity:", &PBFloatVector::initWithCapacity>();
    methods.instance<"addFloat:", &PBFloatVector::addFloat>();
    methods.instance<"insertFloat:atIndex:", &PBFloatVector::insertFloat_atIndex>();
    methods.instance<"removeFloatAtIndex:", &PBFloatVector::removeFloatAtIndex>();
    methods.instance<"removeAllFloats", &PBFloatVector::removeAllFloats>();
}

Retained<PBFloatVector> PBFloatVector::initWithFloats_count(const float* floats, unsigned count, Class* cls) {
    auto vector = cast<PBFloatVector>(PBFloatArray::initWithFloats_count(floats, count, cls));
    if (vector && !floats) vector->_count = 0;
    return vector;
}

Retained<PBFloatVector> PBFloatVector::initWithCapacity(unsigned capacity, Class* cls) {
    return initWithFloats_count(nullptr, capacity, cls);
}

void PBFloatVector::grow() {
    if (_capacity == 0 || _capacity > UINT32_MAX / 2)
        raiseException(NSRangeException, u"insertFloat:atIndex: a vector of capacity %u cannot grow"_ns,
                       _capacity);
    void* grown = std::realloc(_floats.get(), std::size_t{_capacity} * 2 * sizeof(float));
    if (!grown)
        throw NSException(NSMallocException, "insertFloat:atIndex: there is no memory for a longer vector");
    (void)_floats.release();
    _floats.reset(static_cast<float*>(grown));
    _capacity *= 2;
}

void PBFloatVector::insertFloat_atIndex(float value, unsigned index) {
    if (index > _count) raiseOutOfBounds(index);
    if (_count == _capacity) grow();
    float* place = _floats.get() + index;
    std::memmove(place + 1, place, (_count - index) * sizeof(float));
    *place = value;
    ++_count;
}

void PBFloatVector::removeFloatAtIndex(unsigned index) {
    requireIndex(index);
    float* place = _floats.get() + index;
    std::memmove(place, place + 1, (_count - index - 1) * sizeof(float));
    --_count;
}

}  // namespace pelvor
