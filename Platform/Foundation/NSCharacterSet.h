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

/// A set of code points. Asking for a member takes constant time:
///
///     NSCharacterSet* digits = NSCharacterSet::decimalDigitCharacterSet();
///     if (digits->characterIsMember(text->characterAtIndex(0))) …
///     NSRange comma =
///     text->rangeOfCharacterFromSet(NSCharacterSet::characterSetWithCharactersInString(u",;"_ns));
///
/// The named sets are made once and live as long as the process. Letters in parentheses are Unicode's general
/// categories. Null arguments raise NSInvalidArgumentException. Immutable sets may be used on any thread.
class PELVOR_EXPORT NSCharacterSet : public NSObject {
    PELVOR_CLASS(NSCharacterSet, NSObject);
    PELVOR_CREATORS(characterSet, characterSetWithCharactersInString, characterSetWithRange,
                    characterSetWithBitmapRepresentation, initWithCharactersInString, initWithRange,
                    initWithBitmapRepresentation);

  public:
    /// Letters and marks (categories L and M).
    static NSCharacterSet* letterCharacterSet();
    /// The digits 0 to 9 of all scripts (Nd).
    static NSCharacterSet* decimalDigitCharacterSet();
    /// Letters, marks and numbers (L, M and N).
    static NSCharacterSet* alphanumericCharacterSet();
    /// Space separators and the tab (Zs, U+0009), without line ends.
    static NSCharacterSet* whitespaceCharacterSet();
    /// All separators and line ends (Z, U+0009 to U+000D, U+0085).
    static NSCharacterSet* whitespaceAndNewlineCharacterSet();
    /// Upper-case and title-case letters (Lu and Lt).
    static NSCharacterSet* uppercaseLetterCharacterSet();
    /// Lower-case letters (Ll).
    static NSCharacterSet* lowercaseLetterCharacterSet();
    /// Title-case letters (Lt), such as "ǅ".
    static NSCharacterSet* capitalizedLetterCharacterSet();
    /// Punctuation (P).
    static NSCharacterSet* punctuationCharacterSet();
    /// Symbols (S): mathematical, currency and other signs.
    static NSCharacterSet* symbolCharacterSet();
    /// Control and format characters (Cc and Cf).
    static NSCharacterSet* controlCharacterSet();
    /// Marks (M).
    static NSCharacterSet* nonBaseCharacterSet();
    /// Characters with a canonical decomposition.
    static NSCharacterSet* decomposableCharacterSet();
    /// Unassigned code points and non-characters.
    static NSCharacterSet* illegalCharacterSet();

    /// The empty set.
    static NSCharacterSet* characterSet(Class* cls = classObject());
    /// The code points of the string. A surrogate that stands alone becomes a member itself.
    static NSCharacterSet* characterSetWithCharactersInString(NSString* string, Class* cls = classObject());
    /// Raises NSInvalidArgumentException for a range that reaches beyond U+10FFFF.
    static NSCharacterSet* characterSetWithRange(NSRange range, Class* cls = classObject());
    /// The set whose bitmap `bitmapRepresentation` returned. If the data ends early, members are missing.
    static NSCharacterSet* characterSetWithBitmapRepresentation(NSData* data, Class* cls = classObject());

    static Retained<NSCharacterSet> initWithCharactersInString(NSString* string, Class* cls = classObject());
    static Retained<NSCharacterSet> initWithRange(NSRange range, Class* cls = classObject());
    static Retained<NSCharacterSet> initWithBitmapRepresentation(NSData* data, Class* cls = classObject());

    /// Whether the unit, as a code point, is a member.
    bool characterIsMember(unichar unit) { return hasBit(_planes[0]->data(), unit); }
    bool longCharacterIsMember(char32_t codePoint) {
        return codePoint <= 0x10FFFF &&
               hasBit(_planes[codePoint >> 16]->data(), static_cast<unichar>(codePoint & 0xFFFF));
    }
    /// Whether there is a member among the 65,536 code points of the plane; planes are counted from 0 to 16.
    bool hasMemberInPlane(std::uint8_t plane);
    bool isSupersetOfSet(NSCharacterSet* other);
    /// All code points that are not members.
    NSCharacterSet* invertedSet();

    /// 8192 bytes for U+0000 to U+FFFF, the bit of c in byte c >> 3 at 1 << (c & 7); then, for each further
    /// plane that has members, its number as one byte and its 8192 bytes.
    NSData* bitmapRepresentation();

    // C++ only
    /// The first 8192 bytes of `bitmapRepresentation`, not copied: valid until the set changes or ends.
    const std::uint8_t* basicPlaneBitmap() PELVOR_LIFETIMEBOUND { return _planes[0]->data(); }

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
    using SharedPlane = std::shared_ptr<Plane>;
    using Planes = std::array<SharedPlane, kPlaneCount>;

    NSCharacterSet();
    ~NSCharacterSet() = default;

    static bool hasBit(const std::uint8_t* bitmap, unichar unit) {
        return (bitmap[unit >> 3] >> (unit & 7)) & 1;
    }
    // Planes are shared between sets until one of them changes. All planes without members are one object,
    // and so are all planes of nothing but members, as long as no set has changed them.
    static const SharedPlane& emptyPlane();
    static const SharedPlane& fullPlane();
    Plane& writablePlane(std::size_t index);
    enum class Change { add, remove };
    void changeRange(char32_t first, char32_t last, Change change);
    // The operation is named in the message if the argument is refused.
    void changeRange(NSRange range, Change change, const char* operation);
    void changeCharacters(NSString* string, Change change, const char* operation);
    void readBitmap(NSData* data, const char* operation);
    void invertPlanes();

    Planes _planes;

  private:
    friend class NSMutableCharacterSet;
    static NSCharacterSet* setOfPattern(std::u16string_view pattern);
};

}  // namespace pelvor
