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

/// A set of UTF-16 code units as a bitmap of 8192 bytes: the bit of unit c is in byte c >> 3 at 1 << (c & 7),
/// as in the bitmap of a platform set. Halves of pairs are units like others; a code point above U+FFFF
/// cannot be a member. Mutable; whoever made a set owns it. One thread at a time. Operations that take
/// another set or a string do nothing with none.
class PELVOR_EXPORT OFCharacterSet : public NSObject {
    PELVOR_CLASS(OFCharacterSet, NSObject);
    PELVOR_CREATORS(characterSetWithString, init, initWithCharacterSet, initWithOFCharacterSet,
                    initWithString);

  public:
    static constexpr std::size_t kBitmapSize = 8192;

    /// A borrowed set of the string's units.
    static OFCharacterSet* characterSetWithString(NSString* string, Class* cls = classObject());
    /// Space, tab, carriage return and line feed: one set for all, which nobody may change.
    static OFCharacterSet* whitespaceOFCharacterSet();

    /// An empty set.
    static Retained<OFCharacterSet> init(Class* cls = classObject());
    static Retained<OFCharacterSet> initWithCharacterSet(NSCharacterSet* set, Class* cls = classObject());
    static Retained<OFCharacterSet> initWithOFCharacterSet(OFCharacterSet* set, Class* cls = classObject());
    static Retained<OFCharacterSet> initWithString(NSString* string, Class* cls = classObject());

    /// Not 0 for a member: the unit's bit where it stands in its byte.
    std::uint8_t characterIsMember(unichar unit) {
        return static_cast<std::uint8_t>(_bitmapRep[unit >> 3] & (1u << (unit & 7)));
    }

    void addCharacter(unichar unit) { _bitmapRep[unit >> 3] |= bitOf(unit); }
    void removeCharacter(unichar unit) { _bitmapRep[unit >> 3] &= static_cast<std::uint8_t>(~bitOf(unit)); }
    /// The values of the range, each cut to 16 bits: a range past U+FFFF goes on at U+0000.
    void addCharactersInRange(NSRange range);
    void removeCharactersInRange(NSRange range);
    /// Each unit of the string, both halves of a pair included.
    void addCharactersInString(NSString* string);
    void removeCharactersInString(NSString* string);
    void addCharactersFromOFCharacterSet(OFCharacterSet* other);
    void removeCharactersFromOFCharacterSet(OFCharacterSet* other);
    /// The platform set's members up to U+FFFF.
    void addCharactersFromCharacterSet(NSCharacterSet* other);
    void removeCharactersFromCharacterSet(NSCharacterSet* other);
    void addAllCharacters() { _bitmapRep.fill(0xFF); }
    void removeAllCharacters() { _bitmapRep.fill(0); }
    void invert();

    // C++ only
    /// The bitmap itself, as long as the set lives.
    const std::uint8_t* bitmapRep() const { return _bitmapRep.data(); }

    /// The root's dictionary with the members under "ranges": "'a' - 'c', 'x'". Borrowed.
    NSMutableDictionary* debugDictionary();

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
