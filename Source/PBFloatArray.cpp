// SPDX-License-Identifier: Apache-2.0
#include "PBFloatArray.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "BaseLibrary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBFloatArray, baseLibrary) {
    methods.creator<"initWithFloats:count:", &PBFloatArray::initWithFloats_count>();
    methods.creator<"initWithCapacity:", &PBFloatArray::initWithCapacity>();
    methods.instance<"count", &PBFloatArray::count>();
    methods.instance<"floatAtIndex:", &PBFloatArray::floatAtIndex>();
    methods.instance<"replaceFloatAtIndex:withFloat:", &PBFloatArray::replaceFloatAtIndex_withFloat>();
    methods.instance<"objectAtIndex:", &PBFloatArray::objectAtIndex>();
    methods.instance<"replaceObjectAtIndex:withObject:", &PBFloatArray::replaceObjectAtIndex_withObject>();
    methods.instance<"replaceFloatsInRange:withFloatsFrom:",
                     &PBFloatArray::replaceFloatsInRange_withFloatsFrom>();
    methods.instance<"sumFloatsInRange:", &PBFloatArray::sumFloatsInRange>();
}

Retained<PBFloatArray> PBFloatArray::initWithFloats_count(const float* floats, unsigned count, Class* cls) {
    auto array = make<PBFloatArray>(cls);
    array->_floats.reset(static_cast<float*>(std::calloc(std::max(count, 1u), sizeof(float))));
    if (!array->_floats) return nullptr;
    array->_capacity = array->_count = count;
    if (floats) array->replaceFloatsInRange_withFloatsFrom({0, count}, floats);
    return array;
}

Retained<PBFloatArray> PBFloatArray::initWithCapacity(unsigned capacity, Class* cls) {
    return initWithFloats_count(nullptr, capacity, cls);
}

void PBFloatArray::raiseOutOfBounds(unsigned index) {
    raiseException(NSRangeException, u"float array index out of bounds (idx=%d length=%d)"_ns,
                   static_cast<int>(index), static_cast<int>(_count));
}

void PBFloatArray::requireRange(NSRange range) {
    if (!isRangeInside(range, _count)) raiseOutOfBounds(range.location + range.length - 1);
}

NSNumber* PBFloatArray::objectAtIndex(unsigned index) {
    return NSNumber::numberWithFloat(floatAtIndex(index));
}

void PBFloatArray::replaceObjectAtIndex_withObject(unsigned index, id object) {
    requireIndex(index);
    replaceFloatAtIndex_withFloat(index, send<float>(object, "floatValue"_sel));
}

void PBFloatArray::replaceFloatsInRange_withFloatsFrom(NSRange range, const float* floats) {
    if (range.length == 0) return;
    requireRange(range);
    requireArgument(floats, "replaceFloatsInRange:withFloatsFrom:", "the pointer to the floats");
    std::memmove(_floats.get() + range.location, floats, range.length * sizeof(float));
}

float PBFloatArray::sumFloatsInRange(NSRange range) {
    if (range.length == 0) return 0;
    requireRange(range);
    return std::accumulate(_floats.get(), _floats.get() + NSMaxRange(range), 0.0f);
}

NSString* PBFloatArray::description() {
    std::u16string text =
        NSString::stringWithFormat(u"PBFloatArray <%p> \n"_ns, static_cast<void*>(this))->toUTF16();
    for (std::uint32_t i = 0; i < _count; ++i)
        text += NSString::stringWithFormat(u"   %f, \n"_ns, static_cast<double>(_floats[i]))->toUTF16();
    return NSString::of(text);
}

}  // namespace pelvor
