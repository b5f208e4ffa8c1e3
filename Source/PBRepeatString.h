// SPDX-License-Identifier: Apache-2.0
// PBRepeatString: an immutable string that repeats another one up to a length.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// Reads the source round and round; the repeated text is never built. Any thread.
class PELVOR_EXPORT PBRepeatString : public NSString, NSString::HiddenCreators {
    PELVOR_CLASS(PBRepeatString, NSString);
    PELVOR_CREATORS(initWithString_length, initWithString_repeatCount);

  public:
    /// Copies the string.
    static Retained<PBRepeatString> initWithString_length(NSString* string, NSUInteger length,
                                                          Class* cls = classObject());
    /// None if the length would not fit NSUInteger.
    static Retained<PBRepeatString> initWithString_repeatCount(NSString* string, NSUInteger repeatCount,
                                                               Class* cls = classObject());

    NSUInteger length() override { return _len; }
    /// Past the length, the source's first unit; 0 of an empty source.
    unichar characterAtIndex(NSUInteger index) override;
    /// Copies that part of the range which lies inside the string.
    void getCharacters_range(unichar* buffer, NSRange range) override;

  protected:
    PBRepeatString() = default;
    ~PBRepeatString() = default;

  private:
    std::u16string _source;
    NSUInteger _srcLen = 0;
    NSUInteger _len = 0;
};

}  // namespace pelvor
