// SPDX-License-Identifier: Apache-2.0
// PBUnichar32String: an immutable string kept as code points.
#pragma once

#include <cstdlib>
#include <memory>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

/// A string of UTF-16 units like any other that is kept as 32-bit code points:
///
///     auto string = PBUnichar32String::initWithString(u"a\U0001F600b"_ns);
///     string->length();                                         // 4 units
///     string->codepointCount();                                 // 3 code points
///     string->unicharRangeForCodepointsWithRange({2, 1});       // {3, 1}
///
/// A code point above 0xFFFF is a surrogate pair of two units; the string keeps a list of these pairs, by
/// which it finds units. Code points are not checked: a value above 0x10FFFF becomes some pair. Any thread.
///
/// Operations raise NSRangeException for a range or an index outside the string, and
/// NSInvalidArgumentException for a null string and for null code points with a count. Two oddities:
/// `characterAtIndex` returns the first half of a pair at the places of both halves, and
/// `getCharacters_range` writes the whole pair where the range begins with the pair's second half.
class PELVOR_EXPORT PBUnichar32String : public NSString, NSString::HiddenCreators {
    PELVOR_CLASS(PBUnichar32String, NSString);
    PELVOR_CREATORS(initWithOwnedCodepoints_count, initWithCodepoints_count, initWithString);

  public:
    /// Takes over the array, which comes from `malloc`. Null, with the array freed, if there are more units
    /// than NSUInteger can count.
    static Retained<PBUnichar32String> initWithOwnedCodepoints_count(std::uint32_t* codepoints,
                                                                     NSUInteger count,
                                                                     Class* cls = classObject());
    /// Copies the array. Null if memory runs out or there are too many units.
    static Retained<PBUnichar32String> initWithCodepoints_count(const std::uint32_t* codepoints,
                                                                NSUInteger count, Class* cls = classObject());
    static Retained<PBUnichar32String> initWithString(NSString* string, Class* cls = classObject());

    NSUInteger codepointCount() { return _len; }
    /// The code points, as long as the string lives.
    const std::uint32_t* codepointBuffer() { return _chars.get(); }
    /// Copies a range of code points.
    void getCodepoints_forCodepointsWithRange(std::uint32_t* codepoints, NSRange range);
    /// How many code points of a range of code points are pairs.
    NSUInteger _surrogateCountForCodepointsWithRange(NSRange range);
    /// The range of units that a range of code points takes.
    NSRange unicharRangeForCodepointsWithRange(NSRange range);
    /// How many pairs begin in a range of units. The flag, which may be null, tells whether one begins at the
    /// range's start.
    NSUInteger _surrogateCountForUnicharsWithRange_isFirstUnicharLowSurrogate(NSRange range,
                                                                              bool* isFirstLow);
    /// The range of code points for a range of units: its location less the number of pairs that begin before
    /// it, its length less the number of pairs that begin inside. The flag, which may be null, is always
    /// cleared.
    NSRange codepointRangeForUnicharsWithRange_isFirstUnicharLowSurrogate(NSRange range, bool* isFirstLow);
    /// A borrowed plain string of a range of code points.
    NSString* substringForCodepointsWithRange(NSRange range);

    NSUInteger length() override { return _len + _surrogateCount; }
    unichar characterAtIndex(NSUInteger index) override;
    void getCharacters_range(unichar* buffer, NSRange range) override;
    /// Writes the code points of a range of units, as `codepointRangeForUnicharsWithRange…` has it, and
    /// returns their number. The buffer may be null.
    NSUInteger getCodepoints_range(std::uint32_t* codepoints, NSRange range);
    NSUInteger countCodepointsInRange(NSRange range);
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    PBUnichar32String() = default;
    ~PBUnichar32String() = default;

  private:
    struct Free {
        void operator()(std::uint32_t* codepoints) const { std::free(codepoints); }
    };

    NSUInteger pairsBeforeUnit(NSUInteger unit) const;
    NSUInteger pairsBeforeCodepoint(NSUInteger codepoint) const;
    NSUInteger codepointOfUnit(NSUInteger unit) const { return unit - pairsBeforeUnit(unit); }

    NSUInteger _len = 0;
    std::unique_ptr<std::uint32_t[], Free> _chars;
    NSUInteger _surrogateCount = 0;
    std::vector<NSUInteger> _surrogateOffsets;  // the indexes of the code points that are pairs
};

}  // namespace pelvor
