// SPDX-License-Identifier: Apache-2.0
// Formats from outside, with arguments of every kind; numbers are checked against the C library.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

void require(bool condition, const std::string& what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what.c_str());
    std::abort();
}

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : _data(data), _size(size) {}

    std::uint8_t byte() {
        if (_size == 0) return 0;
        --_size;
        return *_data++;
    }
    template <class T>
    T value() {
        T result{};
        std::size_t count = std::min(sizeof(T), _size);
        std::memcpy(&result, _data, count);
        _data += count;
        _size -= count;
        return result;
    }
    std::string_view rest() const { return {reinterpret_cast<const char*>(_data), _size}; }

  private:
    const std::uint8_t* _data;
    std::size_t _size;
};

// Any format: nothing may be read past the arguments, and what is no conversion stays as it is.
void formatAnything(Input input) {
    std::size_t count = input.byte() % 9;
    int number = -7;
    const std::array<FormatArgument, 8> all = {
        number,       4000000000u, 2.5,      "text\xC3\xA9",
        u"object"_ns, nullptr,     u"units", static_cast<void*>(&number)};
    NSString* format = NSString::ofUTF8(input.rest());
    NSString* text = formatString(format, std::span(all).first(count));
    std::u16string units = format->toUTF16();
    if (units.find(u'%') == units.npos) require(text->isEqualToString(format), "plain text changed");
    std::size_t conversions = static_cast<std::size_t>(std::count(units.begin(), units.end(), u'%'));
    require(text->length() <= units.size() + conversions * (2 * 65535 + 512), "more text than asked for");
}

std::string flagsFrom(std::uint8_t bits) {
    std::string flags;
    for (char flag : std::string("-+ 0#")) {
        if (bits & 1) flags += flag;
        bits >>= 1;
    }
    return flags;
}

// The format is what is tried here.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
template <class Value>
void compareWithC(const std::string& format, const std::string& cFormat, Value value) {
    char expected[2048];
    std::snprintf(expected, sizeof expected, cFormat.c_str(), value);
    std::string text = NSString::stringWithFormat(NSString::ofUTF8(format), value)->toUTF8();
    require(text == expected, format + ": \"" + text + "\", in C \"" + expected + "\"");
}

// One number with any flags, width and precision.
void formatNumber(Input input) {
    std::uint8_t flags = input.byte(), width = input.byte(), precision = input.byte(), kind = input.byte();
    std::string directive = "%" + flagsFrom(flags);
    if (width) directive += std::to_string(width);
    if (precision & 1) directive += "." + std::to_string(precision / 2);
    if (kind & 1) {
        char conversion = "fFeEgGaA"[kind / 2 % 8];
        double value = input.value<double>();
        // A number below the normal ones has more than one hexadecimal form.
        if ((conversion | 0x20) == 'a' && std::fpclassify(value) == FP_SUBNORMAL) return;
        if (std::isnan(value)) value = std::fabs(value);
        compareWithC(directive + conversion, directive + conversion, value);
    } else {
        char conversion = "diuxXo"[kind / 2 % 6];
        long long value = input.value<long long>();
        compareWithC(directive + conversion, directive + "ll" + conversion, value);
    }
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelvor::AutoreleasePool pool;
    pelvor::Input input(data, size);
    if (input.byte() & 1)
        pelvor::formatNumber(input);
    else
        pelvor::formatAnything(input);
    return 0;
}
