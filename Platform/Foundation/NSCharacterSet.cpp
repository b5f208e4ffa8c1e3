// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSCharacterSet.h"

#include <unicode/uset.h>

#include <algorithm>
#include <cstring>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableCharacterSet.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSCharacterSet, foundationLibrary) {
    methods.classLevel<"letterCharacterSet", &NSCharacterSet::letterCharacterSet>();
    methods.classLevel<"decimalDigitCharacterSet", &NSCharacterSet::decimalDigitCharacterSet>();
    methods.classLevel<"alphanumericCharacterSet", &NSCharacterSet::alphanumericCharacterSet>();
    methods.classLevel<"whitespaceCharacterSet", &NSCharacterSet::whitespaceCharacterSet>();
    methods
        .classLevel<"whitespaceAndNewlineCharacterSet", &NSCharacterSet::whitespaceAndNewlineCharacterSet>();
    methods.classLevel<"uppercaseLetterCharacterSet", &NSCharacterSet::uppercaseLetterCharacterSet>();
    methods.classLevel<"lowercaseLetterCharacterSet", &NSCharacterSet::lowercaseLetterCharacterSet>();
    methods.classLevel<"capitalizedLetterCharacterSet", &NSCharacterSet::capitalizedLetterCharacterSet>();
    methods.classLevel<"punctuationCharacterSet", &NSCharacterSet::punctuationCharacterSet>();
    methods.classLevel<"symbolCharacterSet", &NSCharacterSet::symbolCharacterSet>();
    methods.classLevel<"controlCharacterSet", &NSCharacterSet::controlCharacterSet>();
    methods.classLevel<"nonBaseCharacterSet", &NSCharacterSet::nonBaseCharacterSet>();
    methods.classLevel<"decomposableCharacterSet", &NSCharacterSet::decomposableCharacterSet>();
    methods.classLevel<"illegalCharacterSet", &NSCharacterSet::illegalCharacterSet>();
    methods.creator<"characterSet", &NSCharacterSet::characterSet>();
    methods.creator<"characterSetWithCharactersInString:",
                    &NSCharacterSet::characterSetWithCharactersInString>();
    methods.creator<"characterSetWithRange:", &NSCharacterSet::characterSetWithRange>();
    methods.creator<"initWithCharactersInString:", &NSCharacterSet::initWithCharactersInString>();
    methods.creator<"initWithRange:", &NSCharacterSet::initWithRange>();
    methods.creator<"characterSetWithBitmapRepresentation:",
                    &NSCharacterSet::characterSetWithBitmapRepresentation>();
    methods.creator<"initWithBitmapRepresentation:", &NSCharacterSet::initWithBitmapRepresentation>();

    methods.instance<"characterIsMember:", &NSCharacterSet::characterIsMember>();
    methods.instance<"longCharacterIsMember:", &NSCharacterSet::longCharacterIsMember>();
    methods.instance<"hasMemberInPlane:", &NSCharacterSet::hasMemberInPlane>();
    methods.instance<"isSupersetOfSet:", &NSCharacterSet::isSupersetOfSet>();
    methods.instance<"invertedSet", &NSCharacterSet::invertedSet>();
    methods.instance<"bitmapRepresentation", &NSCharacterSet::bitmapRepresentation>();
}

namespace {

using Plane = std::array<std::uint8_t, 8192>;
using SharedPlane = std::shared_ptr<Plane>;

SharedPlane uniformPlane(std::uint8_t byte) {
    auto plane = std::make_shared<Plane>();
    plane->fill(byte);
    return plane;
}

void changeBits(Plane& plane, unsigned first, unsigned last, bool toMember) {
    auto setBit = [&](unsigned c) {
        auto mask = static_cast<std::uint8_t>(1u << (c & 7));
        if (toMember)
            plane[c >> 3] |= mask;
        else
            plane[c >> 3] &= static_cast<std::uint8_t>(~mask);
    };
    for (; first <= last && (first & 7); ++first) setBit(first);
    if (first > last) return;
    unsigned bytes = (last + 1 - first) / 8;
    std::memset(plane.data() + first / 8, toMember ? 0xFF : 0, bytes);
    for (first += bytes * 8; first <= last; ++first) setBit(first);
}

}  // namespace

// Both planes live for good, since the named sets do.

const SharedPlane& NSCharacterSet::emptyPlane() {
    static const auto& plane = *new SharedPlane(uniformPlane(0));
    return plane;
}

const SharedPlane& NSCharacterSet::fullPlane() {
    static const auto& plane = *new SharedPlane(uniformPlane(0xFF));
    return plane;
}

NSCharacterSet::NSCharacterSet() { _planes.fill(emptyPlane()); }

NSCharacterSet::Plane& NSCharacterSet::writablePlane(std::size_t index) {
    SharedPlane& plane = _planes[index];
    if (plane.use_count() > 1) plane = std::make_shared<Plane>(*plane);
    return *plane;
}

void NSCharacterSet::changeRange(char32_t first, char32_t last, Change change) {
    for (char32_t plane = first >> 16; plane <= last >> 16; ++plane) {
        unsigned from = plane == first >> 16 ? first & 0xFFFF : 0;
        unsigned to = plane == last >> 16 ? last & 0xFFFF : 0xFFFF;
        changeBits(writablePlane(plane), from, to, change == Change::add);
    }
}

void NSCharacterSet::changeRange(NSRange range, Change change, const char* operation) {
    if (!isRangeInside(range, 0x110000))
        raiseException(NSInvalidArgumentException, u"%s range {%u, %u} beyond the last code point"_ns,
                       operation, range.location, range.length);
    if (range.length) changeRange(range.location, NSMaxRange(range) - 1, change);
}

void NSCharacterSet::changeCharacters(NSString* string, Change change, const char* operation) {
    requireArgument(string, operation, "the string");
    StringUnits units(string);
    for (std::size_t i = 0; i < units.size();) {
        char32_t c = codePointAt(units, i);
        changeRange(c, c, change);
        i += unitCount(c);
    }
}

void NSCharacterSet::invertPlanes() {
    for (SharedPlane& plane : _planes) {
        if (plane == emptyPlane()) {
            plane = fullPlane();
        } else if (plane == fullPlane()) {
            plane = emptyPlane();
        } else {
            auto inverted = std::make_shared<Plane>();
            std::transform(plane->begin(), plane->end(), inverted->begin(),
                           [](std::uint8_t byte) { return static_cast<std::uint8_t>(~byte); });
            plane = std::move(inverted);
        }
    }
}

// Named sets

NSCharacterSet* NSCharacterSet::setOfPattern(std::u16string_view pattern) {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<USet, decltype(&uset_close)> codePoints(
        uset_openPattern(pattern.data(), static_cast<int32_t>(pattern.size()), &error), &uset_close);
    auto set = make<NSCharacterSet>();
    for (int32_t i = 0; i < uset_getItemCount(codePoints.get()); ++i) {
        UChar32 first, last;
        if (uset_getItem(codePoints.get(), i, &first, &last, nullptr, 0, &error) == 0)
            set->changeRange(static_cast<char32_t>(first), static_cast<char32_t>(last), Change::add);
    }
    return set.leak();
}

NSCharacterSet* NSCharacterSet::letterCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[[:L:][:M:]]");
    return set;
}

NSCharacterSet* NSCharacterSet::decimalDigitCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[:Nd:]");
    return set;
}

NSCharacterSet* NSCharacterSet::alphanumericCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[[:L:][:M:][:N:]]");
    return set;
}

NSCharacterSet* NSCharacterSet::whitespaceCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[[:Zs:]\\u0009]");
    return set;
}

NSCharacterSet* NSCharacterSet::whitespaceAndNewlineCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[[:Z:]\\u0009-\\u000D\\u0085]");
    return set;
}

NSCharacterSet* NSCharacterSet::uppercaseLetterCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[[:Lu:][:Lt:]]");
    return set;
}

NSCharacterSet* NSCharacterSet::lowercaseLetterCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[:Ll:]");
    return set;
}

NSCharacterSet* NSCharacterSet::capitalizedLetterCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[:Lt:]");
    return set;
}

NSCharacterSet* NSCharacterSet::punctuationCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[:P:]");
    return set;
}

NSCharacterSet* NSCharacterSet::symbolCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[:S:]");
    return set;
}

NSCharacterSet* NSCharacterSet::controlCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[[:Cc:][:Cf:]]");
    return set;
}

NSCharacterSet* NSCharacterSet::nonBaseCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[:M:]");
    return set;
}

NSCharacterSet* NSCharacterSet::decomposableCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[:NFD_QC=No:]");
    return set;
}

NSCharacterSet* NSCharacterSet::illegalCharacterSet() {
    static NSCharacterSet* const set = setOfPattern(u"[:Cn:]");
    return set;
}

// Creation

Retained<NSCharacterSet> NSCharacterSet::initWithCharactersInString(NSString* string, Class* cls) {
    auto set = make<NSCharacterSet>(cls);
    set->changeCharacters(string, Change::add, "initWithCharactersInString:");
    return set;
}

Retained<NSCharacterSet> NSCharacterSet::initWithRange(NSRange range, Class* cls) {
    auto set = make<NSCharacterSet>(cls);
    set->changeRange(range, Change::add, "initWithRange:");
    return set;
}

NSCharacterSet* NSCharacterSet::characterSet(Class* cls) { return make<NSCharacterSet>(cls).autorelease(); }

NSCharacterSet* NSCharacterSet::characterSetWithCharactersInString(NSString* string, Class* cls) {
    auto set = make<NSCharacterSet>(cls);
    set->changeCharacters(string, Change::add, "characterSetWithCharactersInString:");
    return std::move(set).autorelease();
}

NSCharacterSet* NSCharacterSet::characterSetWithRange(NSRange range, Class* cls) {
    auto set = make<NSCharacterSet>(cls);
    set->changeRange(range, Change::add, "characterSetWithRange:");
    return std::move(set).autorelease();
}

// Bitmaps

void NSCharacterSet::readBitmap(NSData* data, const char* operation) {
    requireArgument(data, operation, "the data");
    std::span<const std::byte> bytes = data->span();
    std::size_t plane = 0;
    while (!bytes.empty()) {
        std::size_t size = std::min(bytes.size(), sizeof(Plane));
        if (plane < kPlaneCount) std::memcpy(writablePlane(plane).data(), bytes.data(), size);
        bytes = bytes.subspan(size);
        if (bytes.empty()) return;
        plane = static_cast<std::size_t>(bytes[0]);
        bytes = bytes.subspan(1);
    }
}

NSData* NSCharacterSet::bitmapRepresentation() {
    NSMutableData* data = NSMutableData::dataWithCapacity(sizeof(Plane));
    data->appendBytes_length(_planes[0]->data(), sizeof(Plane));
    for (std::uint8_t plane = 1; plane < kPlaneCount; ++plane) {
        if (!hasMemberInPlane(plane)) continue;
        data->appendBytes_length(&plane, 1);
        data->appendBytes_length(_planes[plane]->data(), sizeof(Plane));
    }
    return data->copy().autorelease();
}

Retained<NSCharacterSet> NSCharacterSet::initWithBitmapRepresentation(NSData* data, Class* cls) {
    auto set = make<NSCharacterSet>(cls);
    set->readBitmap(data, "initWithBitmapRepresentation:");
    return set;
}

NSCharacterSet* NSCharacterSet::characterSetWithBitmapRepresentation(NSData* data, Class* cls) {
    auto set = make<NSCharacterSet>(cls);
    set->readBitmap(data, "characterSetWithBitmapRepresentation:");
    return std::move(set).autorelease();
}

// Questions

bool NSCharacterSet::hasMemberInPlane(std::uint8_t plane) {
    return plane < kPlaneCount && *_planes[plane] != *emptyPlane();
}

bool NSCharacterSet::isSupersetOfSet(NSCharacterSet* other) {
    requireArgument(other, "isSupersetOfSet:", "the other set");
    auto lacks = [](std::uint8_t mine, std::uint8_t theirs) { return (theirs & ~mine) != 0; };
    for (std::size_t i = 0; i < kPlaneCount; ++i) {
        const Plane &mine = *_planes[i], &theirs = *other->_planes[i];
        for (std::size_t k = 0; k < mine.size(); ++k)
            if (lacks(mine[k], theirs[k])) return false;
    }
    return true;
}

NSCharacterSet* NSCharacterSet::invertedSet() {
    auto set = make<NSCharacterSet>();
    set->_planes = _planes;
    set->invertPlanes();
    return std::move(set).autorelease();
}

bool NSCharacterSet::isEqual(id other) {
    auto* set = cast<NSCharacterSet>(other);
    if (!set) return false;
    return std::equal(_planes.begin(), _planes.end(), set->_planes.begin(),
                      [](const SharedPlane& a, const SharedPlane& b) { return a == b || *a == *b; });
}

std::uintptr_t NSCharacterSet::hash() {
    const auto* units = reinterpret_cast<const char16_t*>(_planes[0]->data());
    return hashUnits({units, sizeof(Plane) / sizeof(char16_t)});
}

NSString* NSCharacterSet::description() {
    NSUInteger count = 0;
    for (const SharedPlane& plane : _planes)
        for (std::uint8_t byte : *plane) count += static_cast<NSUInteger>(__builtin_popcount(byte));
    return NSString::stringWithFormat(u"<%s: %p> (%u members)"_ns, isa()->name(), this, count);
}

Retained<Object> NSCharacterSet::copyWithZone(void*) { return Retained<Object>::retaining(this); }

Retained<Object> NSCharacterSet::mutableCopyWithZone(void*) {
    auto set = make<NSMutableCharacterSet>();
    set->_planes = _planes;
    return set;
}

Retained<NSMutableCharacterSet> NSCharacterSet::mutableCopy() {
    return Retained<NSMutableCharacterSet>::adopting(
        static_cast<NSMutableCharacterSet*>(mutableCopyWithZone(nullptr).leak()));
}

}  // namespace pelvor
