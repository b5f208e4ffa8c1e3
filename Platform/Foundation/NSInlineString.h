// SPDX-License-Identifier: Apache-2.0
// NSInlineString: the immutable string that creators answer; for Foundation's own sources.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// Units in the same memory as the object, directly after it.
class NSInlineString : public NSString {
    PELVOR_CLASS(NSInlineString, NSString);

  public:
    /// An owned string of `length` units, whose content the caller writes to `characters()` before
    /// anybody else sees the string.
    static Retained<NSInlineString> create(NSUInteger length);

    NSUInteger length() override { return _length; }
    unichar characterAtIndex(NSUInteger index) override;
    const unichar* contiguousCharacters() override { return characters(); }
    unichar* characters() { return reinterpret_cast<unichar*>(this + 1); }
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    explicit NSInlineString(NSUInteger length) : _length(length) {}
    ~NSInlineString() = default;

  private:
    NSUInteger _length;
};

}  // namespace pelvor
