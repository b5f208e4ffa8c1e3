// SPDX-License-Identifier: Apache-2.0
// NSInlineString and NSExternalString: the immutable strings that creators return.
#pragma once

#include "Foundation/NSString.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

/// A string whose units stand in the memory of the object itself, directly behind its fields.
class NSInlineString final : public NSString {
    PELVOR_CLASS(NSInlineString, NSString);

  public:
    /// An owned string of `length` units, whose content the caller writes to `characters()` before
    /// anybody else sees the string.
    static Retained<NSInlineString> create(NSUInteger length) {
        return Retained<NSInlineString>::adopting(Instances::createWithExtra<NSInlineString>(
            std::size_t{length} * sizeof(unichar), &classRecord, length));
    }
    static Retained<NSInlineString> create(std::u16string_view units) {
        auto string = create(requireTextLength(units.size(), "a new string:"));
        std::char_traits<unichar>::copy(string->characters(), units.data(), units.size());
        return string;
    }

    NSUInteger length() override { return _length; }
    unichar characterAtIndex(NSUInteger index) override;
    void getCharacters_range(unichar* buffer, NSRange range) override;
    const unichar* contiguousCharacters() override { return characters(); }
    unichar* characters() { return reinterpret_cast<unichar*>(this + 1); }
    std::uintptr_t hash() override;
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    explicit NSInlineString(NSUInteger length) : _length(length) {}
    ~NSInlineString() = default;

  private:
    NSUInteger _length;
    std::atomic<std::uint32_t> _hash{0};  // 0: not yet computed
};

/// A string whose units stand in the caller's memory.
class NSExternalString final : public NSString {
    PELVOR_CLASS(NSExternalString, NSString);

  public:
    static Retained<NSExternalString> create(unichar* units, NSUInteger length, bool freeWhenDone);

    NSUInteger length() override { return _length; }
    unichar characterAtIndex(NSUInteger index) override;
    void getCharacters_range(unichar* buffer, NSRange range) override;
    const unichar* contiguousCharacters() override { return _units; }
    /// Units that the string owns need not be copied.
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    NSExternalString() = default;
    ~NSExternalString();

  private:
    unichar* _units = nullptr;
    NSUInteger _length = 0;
    bool _freeWhenDone = false;
};

/// The units' hash, the same for all classes of strings; never 0 in its low half.
std::uintptr_t hashUnits(std::u16string_view units);
/// The hash of immutable units, computed once; `cache` is 0 until then.
std::uintptr_t cachedHash(std::atomic<std::uint32_t>& cache, std::u16string_view units);
/// What `getCharacters_range` does for units in one piece, with its checks.
void copyUnits(unichar* buffer, std::u16string_view units, NSRange range);

}  // namespace pelvor
