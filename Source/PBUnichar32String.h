// SPDX-License-Identifier: Apache-2.0
// PBUnichar32String: an immutable string kept as code points.
#pragma once

#include <cstdlib>
#include <memory>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

/// A string of UTF-16 units like any other, kept as 32-bit code points; those above 0xFFFF are pairs. Places
/// of units are found by the list of the pairs alone. Code points are not checked: above 0x10FFFF they are
/// folded into some pair. Any thread.
///
/// Operations raise NSRangeException for a range or an index outside, and NSInvalidArgumentException for a
/// count without code points. `characterAtIndex` answers the first half of a pair at both its places, and
/// `getCharacters_range` begins with the whole pair where the range begins with its second half.
class PELVOR_EXPORT PBUnichar32String : public NSString, NSString::HiddenCreators {
    PELVOR_CLASS(PBUnichar32String, NSString);
    PELVOR_CREATORS(initWithOwnedCodepoints_count, initWithCodepoints_count, initWithString);

  public:
    /// Takes over the array, which was made by `malloc`. None, with the array freed, if there are more units
    /// than NSUInteger can count.
    static Retained<PBUnichar32String> initWithOwnedCodepoints_count(std::uint32_t* codepoints,
                                                                     NSUInteger count,
                                                                     Class* cls = classObject());
    /// Copies the array; none if there is no room.
    static Retained<PBUnichar32String> initWithCodepoints_count(const std::uint32_t* codepoints,
                                                                NSUInteger count, Class* cls = classObject());
    static Retained<PBUnichar32String> initWithString(NSString* string, Class* cls = classObject());

    NSUInteger codepointCount() { return _len; }
    /// Borrowed.
    const std::uint32_t* codepointBuffer() { return _chars.get(); }
    void getCodepoints_forCodepointsWithRange(std::uint32_t* codepoints, NSRange range);
    /// How many code points of the range are pairs.
    NSUInteger _surrogateCountForCodepointsWithRange(NSRange range);
    /// The units of a range of code points.
    NSRange unicharRangeForCodepointsWithRange(NSRange range);
    /// How many pairs begin in the range of units; the flag, if given, tells whether one begins at its start.
    NSUInteger _surrogateCountForUnicharsWithRange_isFirstUnicharLowSurrogate(NSRange range,
                                                                              bool* isFirstLow);
    /// The code points of a range of units: its start less the pairs that begin before it, its length less
    /// those that begin inside. The flag, if given, is always cleared.
    NSRange codepointRangeForUnicharsWithRange_isFirstUnicharLowSurrogate(NSRange range, bool* isFirstLow);
    /// A borrowed plain string.
    NSString* substringForCodepointsWithRange(NSRange range);

    NSUInteger length() override { return _len + _surrogateCount; }
    unichar characterAtIndex(NSUInteger index) override;
    void getCharacters_range(unichar* buffer, NSRange range) override;
    /// How many code points the range of units has, by the rule above; they are written if there is a
    /// buffer.
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
