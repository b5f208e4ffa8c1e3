// SPDX-License-Identifier: Apache-2.0
// PBRepeatString: an immutable string that repeats another one up to a length.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// A string that reads another one again and again, without ever building the text:
///
///     auto dots = PBRepeatString::initWithString_length(u". "_ns, 7);  // ". . . ."
///
/// Any thread.
class PELVOR_EXPORT PBRepeatString : public NSString, NSString::HiddenCreators {
    PELVOR_CLASS(PBRepeatString, NSString);
    PELVOR_CREATORS(initWithString_length, initWithString_repeatCount);

  public:
    /// Copies the string. Raises NSInvalidArgumentException for null.
    static Retained<PBRepeatString> initWithString_length(NSString* string, NSUInteger length,
                                                          Class* cls = classObject());
    /// Null if the length would not fit NSUInteger. Raises NSInvalidArgumentException for a null string.
    static Retained<PBRepeatString> initWithString_repeatCount(NSString* string, NSUInteger repeatCount,
                                                               Class* cls = classObject());

    NSUInteger length() override { return _len; }
    /// Past the length, the first unit of the source; 0 if the source is empty.
    unichar characterAtIndex(NSUInteger index) override;
    /// Copies the part of the range that lies inside the string.
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
