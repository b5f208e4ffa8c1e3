// SPDX-License-Identifier: Apache-2.0
// NSCharacterSet: a set of Unicode code points.
#pragma once

#include <array>
#include <memory>
#include <string_view>

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSData;
class NSMutableCharacterSet;

/// A set of code points, with one bit a member: membership takes constant time. Immutable sets may be used
/// on any thread. The named sets are made once and live as long as the process.
class PELVOR_EXPORT NSCharacterSet : public NSObject {
    PELVOR_CLASS(NSCharacterSet, NSObject);
    PELVOR_CREATORS(characterSet, characterSetWithCharactersInString, characterSetWithRange,
                    characterSetWithBitmapRepresentation, initWithCharactersInString, initWithRange,
                    initWithBitmapRepresentation);

  public:
    /// Letters and marks (categories L and M).
    static NSCharacterSet* letterCharacterSet();
    static NSCharacterSet* decimalDigitCharacterSet();
    /// Letters, marks and numbers (L, M and N).
    static NSCharacterSet* alphanumericCharacterSet();
    /// Space separators and the tab (Zs and U+0009).
    static NSCharacterSet* whitespaceCharacterSet();
    /// Z with U+0009 to U+000D and U+0085.
    static NSCharacterSet* whitespaceAndNewlineCharacterSet();
    /// Lu and Lt.
    static NSCharacterSet* uppercaseLetterCharacterSet();
    static NSCharacterSet* lowercaseLetterCharacterSet();
    static NSCharacterSet* capitalizedLetterCharacterSet();
    static NSCharacterSet* punctuationCharacterSet();
    static NSCharacterSet* symbolCharacterSet();
    /// Cc and Cf.
    static NSCharacterSet* controlCharacterSet();
    /// Marks (M).
    static NSCharacterSet* nonBaseCharacterSet();
    /// Characters with a canonical decomposition.
    static NSCharacterSet* decomposableCharacterSet();
    /// Unassigned code points and non-characters.
    static NSCharacterSet* illegalCharacterSet();

    static NSCharacterSet* characterSet(Class* cls = classObject());
    /// The code points of the string; a lone half is a member itself.
    static NSCharacterSet* characterSetWithCharactersInString(NSString* string, Class* cls = classObject());
    /// Raises NSInvalidArgumentException for a range past U+10FFFF.
    static NSCharacterSet* characterSetWithRange(NSRange range, Class* cls = classObject());
    /// The set that `bitmapRepresentation` wrote; shorter data lacks members.
    static NSCharacterSet* characterSetWithBitmapRepresentation(NSData* data, Class* cls = classObject());

    static Retained<NSCharacterSet> initWithCharactersInString(NSString* string, Class* cls = classObject());
    static Retained<NSCharacterSet> initWithRange(NSRange range, Class* cls = classObject());
    static Retained<NSCharacterSet> initWithBitmapRepresentation(NSData* data, Class* cls = classObject());

    bool characterIsMember(unichar unit) { return hasBit(_planes[0]->data(), unit); }
    bool longCharacterIsMember(char32_t codePoint) {
        return codePoint <= 0x10FFFF &&
               hasBit(_planes[codePoint >> 16]->data(), static_cast<unichar>(codePoint & 0xFFFF));
    }
    bool hasMemberInPlane(std::uint8_t plane);
    bool isSupersetOfSet(NSCharacterSet* other);
    NSCharacterSet* invertedSet();

    /// 8192 bytes for U+0000 to U+FFFF, the bit of c in byte c >> 3 at 1 << (c & 7); then, for each further
    /// plane that has members, its number as one byte and its 8192 bytes.
    NSData* bitmapRepresentation();

    // C++ only
    /// The 8192 bytes for U+0000 to U+FFFF themselves; valid until the set changes or goes.
    const std::uint8_t* basicPlaneBitmap() { return _planes[0]->data(); }

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    NSString* description() override;

    Retained<NSCharacterSet> copy() {
        return Retained<NSCharacterSet>::adopting(static_cast<NSCharacterSet*>(copyWithZone(nullptr).leak()));
    }
    Retained<NSMutableCharacterSet> mutableCopy();
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;

  protected:
    static constexpr std::size_t kPlaneCount = 17;
    using Plane = std::array<std::uint8_t, 8192>;
    using Planes = std::array<std::shared_ptr<Plane>, kPlaneCount>;

    NSCharacterSet();
    ~NSCharacterSet() = default;

    static bool hasBit(const std::uint8_t* bitmap, unichar unit) {
        return (bitmap[unit >> 3] >> (unit & 7)) & 1;
    }
    // Planes are shared between sets until one of them changes.
    Plane& writablePlane(std::size_t index);
    enum class Change { add, remove };
    void changeRange(char32_t first, char32_t last, Change change);
    void changeRange(NSRange range, Change change);
    void changeCharacters(NSString* string, Change change);
    void readBitmap(NSData* data);
    void invertPlanes();

    Planes _planes;

  private:
    friend class NSMutableCharacterSet;
    static NSCharacterSet* setOfPattern(std::u16string_view pattern);
};

/// A set that can change. One thread at a time.
class PELVOR_EXPORT NSMutableCharacterSet : public NSCharacterSet {
    PELVOR_CLASS(NSMutableCharacterSet, NSCharacterSet);
    PELVOR_CREATORS(init);
    PELVOR_INHERITED_CREATORS(characterSet, characterSetWithCharactersInString, characterSetWithRange,
                              characterSetWithBitmapRepresentation, initWithCharactersInString, initWithRange,
                              initWithBitmapRepresentation);

  public:
    static Retained<NSMutableCharacterSet> init(Class* cls = classObject());

    /// Raise NSInvalidArgumentException for a range past U+10FFFF.
    void addCharactersInRange(NSRange range);
    void removeCharactersInRange(NSRange range);
    void addCharactersInString(NSString* string);
    void removeCharactersInString(NSString* string);
    void formUnionWithCharacterSet(NSCharacterSet* other);
    void formIntersectionWithCharacterSet(NSCharacterSet* other);
    void invert();

    Retained<Object> copyWithZone(void* zone) override;

  protected:
    NSMutableCharacterSet() = default;
    ~NSMutableCharacterSet() = default;
};

}  // namespace pelvor
