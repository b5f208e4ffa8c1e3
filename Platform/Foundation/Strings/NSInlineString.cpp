// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/NSInlineString.h"

#include <cstdlib>

#include "Foundation/FoundationLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSExternalString, foundationLibrary) {}

PELVOR_DEFINE_CLASS(NSInlineString, foundationLibrary) {}

// Racing threads store the same value.
std::uintptr_t cachedHash(std::atomic<std::uint32_t>& cache, std::u16string_view units) {
    std::uint32_t half = cache.load(std::memory_order_relaxed);
    if (!half) {
        half = static_cast<std::uint32_t>(hashUnits(units));
        cache.store(half, std::memory_order_relaxed);
    }
    return std::uintptr_t{half} << 32 | half;
}

void copyUnits(unichar* buffer, std::u16string_view units, NSRange range) {
    requireRange(range, static_cast<NSUInteger>(units.size()), "getCharacters:range:");
    if (range.length) requireArgument(buffer, "getCharacters:range:", "the buffer");
    std::char_traits<unichar>::copy(buffer, units.data() + range.location, range.length);
}

unichar NSInlineString::characterAtIndex(NSUInteger index) {
    requireIndex(index, _length, "characterAtIndex:");
    return characters()[index];
}

void NSInlineString::getCharacters_range(unichar* buffer, NSRange range) {
    copyUnits(buffer, {characters(), _length}, range);
}

std::uintptr_t NSInlineString::hash() { return cachedHash(_hash, {characters(), _length}); }

Retained<Object> NSInlineString::copyWithZone(void*) { return Retained<Object>::retaining(this); }

Retained<NSExternalString> NSExternalString::create(unichar* units, NSUInteger length, bool freeWhenDone) {
    auto string = make<NSExternalString>();
    string->_units = units;
    string->_length = length;
    string->_freeWhenDone = freeWhenDone;
    return string;
}

NSExternalString::~NSExternalString() {
    if (_freeWhenDone) std::free(_units);
}

unichar NSExternalString::characterAtIndex(NSUInteger index) {
    requireIndex(index, _length, "characterAtIndex:");
    return _units[index];
}

void NSExternalString::getCharacters_range(unichar* buffer, NSRange range) {
    copyUnits(buffer, {_units, _length}, range);
}

Retained<Object> NSExternalString::copyWithZone(void* zone) {
    return _freeWhenDone ? Retained<Object>::retaining(this) : NSString::copyWithZone(zone);
}

}  // namespace pelvor
