// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFCharacterSet.h"

#include "BaseLibrary.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSMutableString.h"
#include "Scanning/NSObject-OFDebugging.h"
#include "Shared/Vectors.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(OFCharacterSet, baseLibrary) {
    methods.creator<"characterSetWithString:", &OFCharacterSet::characterSetWithString>();
    methods.classLevel<"whitespaceOFCharacterSet", &OFCharacterSet::whitespaceOFCharacterSet>();
    methods.creator<"init", &OFCharacterSet::init>();
    methods.creator<"initWithCharacterSet:", &OFCharacterSet::initWithCharacterSet>();
    methods.creator<"initWithOFCharacterSet:", &OFCharacterSet::initWithOFCharacterSet>();
    methods.creator<"initWithString:", &OFCharacterSet::initWithString>();

    methods.instance<"characterIsMember:", &OFCharacterSet::characterIsMember>();
    methods.instance<"addCharacter:", &OFCharacterSet::addCharacter>();
    methods.instance<"removeCharacter:", &OFCharacterSet::removeCharacter>();
    methods.instance<"addCharactersInRange:", &OFCharacterSet::addCharactersInRange>();
    methods.instance<"removeCharactersInRange:", &OFCharacterSet::removeCharactersInRange>();
    methods.instance<"addCharactersInString:", &OFCharacterSet::addCharactersInString>();
    methods.instance<"removeCharactersInString:", &OFCharacterSet::removeCharactersInString>();
    methods.instance<"addCharactersFromOFCharacterSet:", &OFCharacterSet::addCharactersFromOFCharacterSet>();
    methods.instance<"removeCharactersFromOFCharacterSet:",
                     &OFCharacterSet::removeCharactersFromOFCharacterSet>();
    methods.instance<"addCharactersFromCharacterSet:", &OFCharacterSet::addCharactersFromCharacterSet>();
    methods
        .instance<"removeCharactersFromCharacterSet:", &OFCharacterSet::removeCharactersFromCharacterSet>();
    methods.instance<"addAllCharacters", &OFCharacterSet::addAllCharacters>();
    methods.instance<"removeAllCharacters", &OFCharacterSet::removeAllCharacters>();
    methods.instance<"invert", &OFCharacterSet::invert>();
    methods.instance<"debugDictionary", &OFCharacterSet::debugDictionary>();
}

namespace {

constexpr unsigned kUnitCount = 0x10000;

// Calls `change` with each byte's index and the bits of it that lie in [first, end), end at most 65,536.
template <class Change>
void forBytes(unsigned first, unsigned end, Change change) {
    while (first < end) {
        unsigned next = std::min((first | 7) + 1, end);
        unsigned bits = (0xFFu << (first & 7)) & (0xFFu >> (((next - 1) & 7) ^ 7));
        change(first >> 3, static_cast<std::uint8_t>(bits));
        first = next;
    }
}

template <class Change>
void forRange(NSRange range, Change change) {
    if (range.length >= kUnitCount) return forBytes(0, kUnitCount, change);
    unsigned first = range.location & 0xFFFF, end = first + range.length;
    forBytes(first, std::min(end, kUnitCount), change);
    if (end > kUnitCount) forBytes(0, end - kUnitCount, change);
}

template <class Combination>
void combine(std::uint8_t* bitmap, const std::uint8_t* other, Combination combination) {
    for (std::size_t i = 0; i < OFCharacterSet::kBitmapSize; i += sizeof(Bytes16)) {
        Bytes16 own = combination(loadBytes(bitmap + i), loadBytes(other + i));
        std::memcpy(bitmap + i, &own, sizeof own);
    }
}

NSString* stringOfUnit(unsigned unit) {
    auto value = static_cast<unichar>(unit);
    return NSString::of({&value, 1});
}

}  // namespace

Retained<OFCharacterSet> OFCharacterSet::init(Class* cls) { return make<OFCharacterSet>(cls); }

Retained<OFCharacterSet> OFCharacterSet::initWithCharacterSet(NSCharacterSet* set, Class* cls) {
    auto self = init(cls);
    if (self) self->addCharactersFromCharacterSet(set);
    return self;
}

Retained<OFCharacterSet> OFCharacterSet::initWithOFCharacterSet(OFCharacterSet* set, Class* cls) {
    auto self = init(cls);
    if (self) self->addCharactersFromOFCharacterSet(set);
    return self;
}

Retained<OFCharacterSet> OFCharacterSet::initWithString(NSString* string, Class* cls) {
    auto self = init(cls);
    if (self) self->addCharactersInString(string);
    return self;
}

OFCharacterSet* OFCharacterSet::characterSetWithString(NSString* string, Class* cls) {
    return initWithString(string, cls).autorelease();
}

OFCharacterSet* OFCharacterSet::whitespaceOFCharacterSet() {
    static OFCharacterSet* const set = initWithString(u" \t\r\n"_ns).leak();
    return set;
}

Retained<Object> OFCharacterSet::copyWithZone(void*) { return initWithOFCharacterSet(this, class_()); }

void OFCharacterSet::addCharactersInRange(NSRange range) {
    forRange(range, [this](unsigned byte, std::uint8_t bits) { _bitmapRep[byte] |= bits; });
}

void OFCharacterSet::removeCharactersInRange(NSRange range) {
    forRange(range, [this](unsigned byte, std::uint8_t bits) {
        _bitmapRep[byte] &= static_cast<std::uint8_t>(~bits);
    });
}

void OFCharacterSet::addCharactersInString(NSString* string) {
    if (!string) return;
    StringUnits units(string);
    for (unichar unit : units.view()) addCharacter(unit);
}

void OFCharacterSet::removeCharactersInString(NSString* string) {
    if (!string) return;
    StringUnits units(string);
    for (unichar unit : units.view()) removeCharacter(unit);
}

void OFCharacterSet::addBitmap(const std::uint8_t* other) {
    combine(_bitmapRep.data(), other, [](Bytes16 own, Bytes16 its) { return own | its; });
}

void OFCharacterSet::removeBitmap(const std::uint8_t* other) {
    combine(_bitmapRep.data(), other, [](Bytes16 own, Bytes16 its) { return own & ~its; });
}

void OFCharacterSet::addCharactersFromOFCharacterSet(OFCharacterSet* other) {
    if (other) addBitmap(other->bitmapRep());
}

void OFCharacterSet::removeCharactersFromOFCharacterSet(OFCharacterSet* other) {
    if (other) removeBitmap(other->bitmapRep());
}

void OFCharacterSet::addCharactersFromCharacterSet(NSCharacterSet* other) {
    if (other) addBitmap(other->basicPlaneBitmap());
}

void OFCharacterSet::removeCharactersFromCharacterSet(NSCharacterSet* other) {
    if (other) removeBitmap(other->basicPlaneBitmap());
}

void OFCharacterSet::invert() {
    combine(_bitmapRep.data(), _bitmapRep.data(), [](Bytes16 own, Bytes16) { return ~own; });
}

NSMutableDictionary* OFCharacterSet::debugDictionary() {
    NSMutableString* ranges = NSMutableString::string();
    for (unsigned unit = 0; unit < kUnitCount; ++unit) {
        if (!characterIsMember(static_cast<unichar>(unit))) continue;
        unsigned first = unit;
        while (unit + 1 < kUnitCount && characterIsMember(static_cast<unichar>(unit + 1))) ++unit;
        if (ranges->length()) ranges->appendString(u", "_ns);
        ranges->appendFormat(u"'%@'"_ns, stringOfUnit(first));
        if (unit > first) ranges->appendFormat(u" - '%@'"_ns, stringOfUnit(unit));
    }
    NSMutableDictionary* dictionary = pelvor::debugDictionary(this);
    dictionary->setObject_forKey(ranges, u"ranges"_ns);
    return dictionary;
}

}  // namespace pelvor
