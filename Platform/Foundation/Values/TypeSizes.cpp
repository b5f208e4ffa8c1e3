// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Foundation/Values/ConcreteValues.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

namespace {

struct Layout {
    std::uint64_t size = 0;
    std::uint64_t alignment = 1;
};

template <class T>
Layout layoutOf() {
    return {sizeof(T), alignof(T)};
}

class EncodingReader {
  public:
    EncodingReader(const char* text, const char* operation)
        : _text(text), _place(text), _operation(operation) {}
    const char* place() const { return _place; }

    Layout readType() {
        if (++_depth > kDeepest) fail();
        while (*_place && std::strchr("rnNoORV", *_place)) ++_place;
        Layout layout = readUnqualified();
        --_depth;
        return layout;
    }

  private:
    static constexpr int kDeepest = 64;
    static constexpr std::uint64_t kLargest = INT32_MAX;

    Layout readUnqualified() {
        char code = *_place ? *_place++ : '\0';
        switch (code) {
            case 'c':
            case 'C':
                return layoutOf<char>();
            case 'B':
                return layoutOf<bool>();
            case 's':
            case 'S':
                return layoutOf<short>();
            case 'i':
            case 'I':
                return layoutOf<int>();
            case 'l':
            case 'L':
                return layoutOf<long>();
            case 'q':
            case 'Q':
                return layoutOf<long long>();
            case 'f':
                return layoutOf<float>();
            case 'd':
                return layoutOf<double>();
            case ':':
                return layoutOf<SEL>();
            case '@':
            case '#':
            case '*':
                return layoutOf<void*>();
            case '^':
                skipPointee();
                return layoutOf<void*>();
            case 'v':
                return {};
            case '[':
                return readArray();
            case '{':
                return readFields('}');
            case '(':
                return readFields(')');
            default:
                fail();
        }
    }

    void skipPointee() {
        if (*_place == '?')
            ++_place;
        else
            readType();
    }

    Layout readArray() {
        char* end = nullptr;
        std::uint64_t count = std::strtoull(_place, &end, 10);
        if (end == _place || *_place < '0' || *_place > '9') fail();
        _place = end;
        Layout element = readType();
        if (*_place++ != ']' || count > kLargest || element.size * count > kLargest) fail();
        return {element.size * count, element.alignment};
    }

    // A structure, or a union, whose fields begin at one place. A name alone has no size.
    Layout readFields(char close) {
        while (*_place != '=' && *_place != close)
            if (!*_place++) fail();
        Layout whole;
        if (*_place == '=') ++_place;
        while (*_place != close) {
            Layout field = readType();
            std::uint64_t start = close == '}' ? roundedUp(whole.size, field.alignment) : 0;
            whole.size = std::max(whole.size, start + field.size);
            whole.alignment = std::max(whole.alignment, field.alignment);
            if (whole.size > kLargest) fail();
        }
        ++_place;
        whole.size = roundedUp(whole.size, whole.alignment);
        return whole;
    }

    static std::uint64_t roundedUp(std::uint64_t size, std::uint64_t alignment) {
        return (size + alignment - 1) / alignment * alignment;
    }

    [[noreturn]] void fail() {
        raiseBadArgument(_operation, std::string("\"") + _text + "\" is no type encoding");
    }

    const char* _text;
    const char* _place;
    const char* _operation;
    int _depth = 0;
};

}  // namespace

const char* NSGetSizeAndAlignment(const char* type, NSUInteger* size, NSUInteger* alignment) {
    return measureType(type, size, alignment, "NSGetSizeAndAlignment");
}

const char* measureType(const char* type, NSUInteger* size, NSUInteger* alignment, const char* operation) {
    if (!type) raiseNullArgument(operation, "the type");
    EncodingReader reader(type, operation);
    Layout layout = reader.readType();
    if (size) *size = static_cast<NSUInteger>(layout.size);
    if (alignment) *alignment = static_cast<NSUInteger>(layout.alignment);
    return reader.place();
}

}  // namespace pelvor
