// SPDX-License-Identifier: Apache-2.0
// NSPathStore2: the strings that path operations return.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// An immutable string like any other. The class has a method of its own for
/// `stringByResolvingSymlinksInPath`, so that a host can replace it without replacing the method of other
/// strings.
class PELVOR_EXPORT NSPathStore2 : public NSString, NSString::HiddenCreators {
    PELVOR_CLASS(NSPathStore2, NSString);
    PELVOR_CREATORS(of);

  public:
    // C++ only
    /// A borrowed copy of the path.
    static NSPathStore2* of(std::u16string_view path);

    NSUInteger length() override { return _length; }
    unichar characterAtIndex(NSUInteger index) override;
    void getCharacters_range(unichar* buffer, NSRange range) override;
    const unichar* contiguousCharacters() override { return characters(); }
    std::uintptr_t hash() override;
    Retained<Object> copyWithZone(void* zone) override;

    NSString* stringByResolvingSymlinksInPath() override;

  protected:
    explicit NSPathStore2(NSUInteger length) : _length(length) {}
    ~NSPathStore2() = default;

  private:
    unichar* characters() { return reinterpret_cast<unichar*>(this + 1); }

    NSUInteger _length;
    std::atomic<std::uint32_t> _hash{0};  // 0: not yet computed
};

}  // namespace pelvor
