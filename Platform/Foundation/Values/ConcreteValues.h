// SPDX-License-Identifier: Apache-2.0
// The values and numbers that creators return; for Foundation's own sources.
#pragma once

#include <span>
#include <string_view>

#include "Foundation/NSNumber.h"

namespace pelvor {

/// A value whose bytes stand in the memory of the object itself, directly behind its fields.
class NSInlineValue final : public NSValue {
    PELVOR_CLASS(NSInlineValue, NSValue);

  public:
    /// An owned value; `type` lives as long as the process.
    static Retained<NSInlineValue> create(const void* bytes, std::size_t size, const char* type);
    /// An owned value that keeps the name of its type itself, behind the bytes: names may come from anywhere.
    static Retained<NSInlineValue> createWithTypeName(const void* bytes, std::size_t size,
                                                      std::string_view type);

    const char* objCType() override { return _type; }
    void getValue(void* buffer) override;
    std::span<const std::byte> span() PELVOR_LIFETIMEBOUND {
        return {reinterpret_cast<const std::byte*>(this + 1), _size};
    }

  protected:
    NSInlineValue(const char* type, std::size_t size) : _type(type), _size(size) {}
    ~NSInlineValue() = default;

  private:
    const char* _type;
    std::size_t _size;
};

/// A number as the widest type of its kind: what comparisons, hashes and conversions work on.
struct NumberContents {
    enum class Kind : std::uint8_t { integer, unsignedInteger, real };

    Kind kind = Kind::integer;
    union {
        std::int64_t integer = 0;
        std::uint64_t unsignedInteger;
        double real;
    };

    static constexpr NumberContents of(std::int64_t value) {
        NumberContents contents;
        contents.integer = value;
        return contents;
    }
    static constexpr NumberContents of(std::uint64_t value) {
        NumberContents contents;
        contents.kind = Kind::unsignedInteger;
        contents.unsignedInteger = value;
        return contents;
    }
    static constexpr NumberContents of(double value) {
        NumberContents contents;
        contents.kind = Kind::real;
        contents.real = value;
        return contents;
    }
};

class NSPlainNumber final : public NSNumber {
    PELVOR_CLASS(NSPlainNumber, NSNumber);

  public:
    static Retained<NSPlainNumber> create(const char* type, NumberContents contents) {
        return Retained<NSPlainNumber>::adopting(
            Instances::createWithExtra<NSPlainNumber>(0, &classRecord, type, contents));
    }
    /// A number that lives as long as the process.
    struct Shared {};
    constexpr NSPlainNumber(Shared, const char* type, NumberContents contents)
        : NSNumber(&classRecord, kImmortal), _type(type), _contents(contents) {}

    const char* objCType() override { return _type; }
    void getValue(void* buffer) override;
    const NumberContents& contents() { return _contents; }

  private:
    NSPlainNumber(const char* type, NumberContents contents) : _type(type), _contents(contents) {}

    const char* _type;
    NumberContents _contents;
};

/// The value of a number of any class. Raises NSInvalidArgumentException if its type is not a number's.
NumberContents contentsOf(NSNumber* number);

/// NSGetSizeAndAlignment, which raises in the name of the operation.
const char* measureType(const char* type, NSUInteger* size, NSUInteger* alignment, const char* operation);

}  // namespace pelvor
