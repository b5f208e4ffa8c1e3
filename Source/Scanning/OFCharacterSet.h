// SPDX-License-Identifier: Apache-2.0
// OFCharacterSet: a set of UTF-16 code units that is tested in a few instructions.
#pragma once

#include <array>

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSCharacterSet;
class NSMutableDictionary;
class NSString;

/// A mutable set of UTF-16 code units, kept as a bitmap:
///
///     auto ends = OFCharacterSet::initWithString(u"\r\n"_ns);
///     ends->addCharactersInRange({0x2028, 2});
///     if (ends->characterIsMember(unit)) …
///
/// The bitmap has 8192 bytes; the bit of unit c is 1 << (c & 7) in byte c >> 3, as in the bitmap of a
/// platform set. A half of a surrogate pair is a unit like others; a code point above U+FFFF cannot be a
/// member. A null string or a null other set has no members. One thread at a time.
class PELVOR_EXPORT OFCharacterSet : public NSObject {
    PELVOR_CLASS(OFCharacterSet, NSObject);
    PELVOR_CREATORS(characterSetWithString, init, initWithCharacterSet, initWithOFCharacterSet,
                    initWithString);

  public:
    static constexpr std::size_t kBitmapSize = 8192;

    /// A new set of the string's units, borrowed.
    static OFCharacterSet* characterSetWithString(NSString* string, Class* cls = classObject());
    /// The set of space, tab, carriage return and line feed. All callers share one set, which must not be
    /// changed.
    static OFCharacterSet* whitespaceOFCharacterSet();

    /// An empty set.
    static Retained<OFCharacterSet> init(Class* cls = classObject());
    static Retained<OFCharacterSet> initWithCharacterSet(NSCharacterSet* set, Class* cls = classObject());
    static Retained<OFCharacterSet> initWithOFCharacterSet(OFCharacterSet* set, Class* cls = classObject());
    static Retained<OFCharacterSet> initWithString(NSString* string, Class* cls = classObject());

    /// Not 0 if the unit is a member; the value is the unit's bit in its byte.
    std::uint8_t characterIsMember(unichar unit) {
        return static_cast<std::uint8_t>(_bitmapRep[unit >> 3] & (1u << (unit & 7)));
    }

    void addCharacter(unichar unit) { _bitmapRep[unit >> 3] |= bitOf(unit); }
    void removeCharacter(unichar unit) { _bitmapRep[unit >> 3] &= static_cast<std::uint8_t>(~bitOf(unit)); }
    /// These take the values of the range modulo 2^16: a range that goes beyond U+FFFF continues at U+0000.
    void addCharactersInRange(NSRange range);
    void removeCharactersInRange(NSRange range);
    /// These take each unit of the string; of a surrogate pair, both halves.
    void addCharactersInString(NSString* string);
    void removeCharactersInString(NSString* string);
    void addCharactersFromOFCharacterSet(OFCharacterSet* other);
    void removeCharactersFromOFCharacterSet(OFCharacterSet* other);
    /// These take the members of the platform's set up to U+FFFF.
    void addCharactersFromCharacterSet(NSCharacterSet* other);
    void removeCharactersFromCharacterSet(NSCharacterSet* other);
    void addAllCharacters() { _bitmapRep.fill(0xFF); }
    void removeAllCharacters() { _bitmapRep.fill(0); }
    void invert();

    // C++ only
    /// The bitmap itself; it lives as long as the set and changes with it.
    const std::uint8_t* bitmapRep() const { return _bitmapRep.data(); }

    /// The debug dictionary of every object, with the members under "ranges" added, as in "'a' - 'c', 'x'".
    /// Borrowed.
    NSMutableDictionary* debugDictionary();

    /// A set of the same class with the same members.
    Retained<OFCharacterSet> copy() { return cast<OFCharacterSet>(copyWithZone(nullptr)); }
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    OFCharacterSet() = default;
    ~OFCharacterSet() = default;

  private:
    static std::uint8_t bitOf(unichar unit) { return static_cast<std::uint8_t>(1u << (unit & 7)); }
    void addBitmap(const std::uint8_t* other);
    void removeBitmap(const std::uint8_t* other);

    alignas(16) std::array<std::uint8_t, kBitmapSize> _bitmapRep{};
};

}  // namespace pelvor
