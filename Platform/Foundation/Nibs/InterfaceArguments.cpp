// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Nibs/InterfaceArguments.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "Foundation/NSArray.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSRuntimeNames.h"
#include "Foundation/NSString.h"
#include "Foundation/Nibs/InterfaceFault.h"
#include "Runtime/NSMethodSignature.h"

namespace pelvor {
namespace {

std::string describeValue(id value) {
    if (auto* text = cast<NSString>(value)) return "the text '" + text->toUTF8() + "'";
    if (cast<NSNumber>(value)) return "the number " + value->description()->toUTF8();
    return std::string("the ") + (value ? value->isa()->publicName() : "null");
}

[[noreturn]] void refuse(id value, const char* encoding) {
    throw InterfaceFault{"", "", describeValue(value) + " cannot become " + detail::describeType(encoding)};
}

template <class T>
void write(std::byte* place, T value) {
    std::memcpy(place, &value, sizeof value);
}

template <class T>
std::optional<T> parsed(const std::string& text) {
    T number{};
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// A real number that an integer type holds exactly.
template <class T>
std::optional<T> exactInteger(double number) {
    constexpr double kBound = 18446744073709551616.0;  // 2 to the power of 64
    if (std::floor(number) != number || std::fabs(number) >= kBound / 2) return std::nullopt;
    const auto whole = static_cast<std::int64_t>(number);
    return std::in_range<T>(whole) ? std::optional(static_cast<T>(whole)) : std::nullopt;
}

template <class T>
std::optional<T> inRange(auto whole) {
    return std::in_range<T>(whole) ? std::optional(static_cast<T>(whole)) : std::nullopt;
}

template <class T>
std::optional<T> exactNumber(NSNumber* number) {
    const char type = number->objCType()[0];
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(number->doubleValue());
    else if (type == 'f' || type == 'd')
        return exactInteger<T>(number->doubleValue());
    else
        return type == 'Q' ? inRange<T>(number->unsignedLongLongValue())
                           : inRange<T>(number->longLongValue());
}

template <class T>
std::optional<T> numberOf(id value) {
    if (auto* text = cast<NSString>(value)) return parsed<T>(text->toUTF8());
    auto* number = cast<NSNumber>(value);
    return number ? exactNumber<T>(number) : std::nullopt;
}

template <class T>
bool writeNumber(id value, std::byte* place) {
    auto number = numberOf<T>(value);
    if (number) write(place, *number);
    return number.has_value();
}

bool writeTruth(id value, std::byte* place) {
    if (auto* number = cast<NSNumber>(value)) return write(place, number->boolValue()), true;
    auto* text = cast<NSString>(value);
    if (!text) return false;
    for (NSString* yes : {u"YES"_ns, u"true"_ns, u"1"_ns})
        if (text->isEqual(yes)) return write(place, true), true;
    for (NSString* no : {u"NO"_ns, u"false"_ns, u"0"_ns})
        if (text->isEqual(no)) return write(place, false), true;
    return false;
}

bool writeClass(id value, std::byte* place) {
    auto* name = cast<NSString>(value);
    Class* cls = name ? NSClassFromString(name) : nullptr;
    write(place, cls);
    return cls;
}

bool writeSelector(id value, std::byte* place) {
    auto* name = cast<NSString>(value);
    if (name) write(place, NSSelectorFromString(name));
    return name;
}

bool writeSimple(id value, char type, std::byte* place) {
    switch (type) {
        case 'c':
            return writeNumber<std::int8_t>(value, place);
        case 'C':
            return writeNumber<std::uint8_t>(value, place);
        case 's':
            return writeNumber<std::int16_t>(value, place);
        case 'S':
            return writeNumber<std::uint16_t>(value, place);
        case 'i':
            return writeNumber<std::int32_t>(value, place);
        case 'I':
            return writeNumber<std::uint32_t>(value, place);
        case 'q':
            return writeNumber<std::int64_t>(value, place);
        case 'Q':
            return writeNumber<std::uint64_t>(value, place);
        case 'f':
            return writeNumber<float>(value, place);
        case 'd':
            return writeNumber<double>(value, place);
        case 'B':
            return writeTruth(value, place);
        case '#':
            return writeClass(value, place);
        case ':':
            return writeSelector(value, place);
        default:
            return false;
    }
}

// The type of all fields of a struct, "{_NSPoint=ff}", and of the structs in it; 0 if they differ.
char typeOfFields(const char* encoding) {
    char type = 0;
    bool isName = false;
    for (; *encoding; ++encoding) {
        if (*encoding == '{') isName = true;
        if (!isName && *encoding != '}') {
            if (type && type != *encoding) return 0;
            type = *encoding;
        }
        if (*encoding == '=') isName = false;
    }
    return type;
}

bool writeStruct(id value, const ArgumentLayout& argument, std::byte* place) {
    auto* fields = cast<NSArray>(value);
    const char type = typeOfFields(argument.encoding);
    if (!fields || !type || !std::strchr("cCsSiIqQfdB", type) || fields->count() == 0) return false;
    std::size_t count = 0;
    for (const char* each = std::strchr(argument.encoding, '='); *each; ++each) {
        if (*each == '{') each = std::strchr(each, '=');
        count += *each == type;
    }
    if (fields->count() != count) return false;
    const std::size_t size = argument.size / count;
    for (id field : fields) {
        if (!writeSimple(field, type, place)) return false;
        place += size;
    }
    return true;
}

}  // namespace

void writePlainArgument(id value, const ArgumentLayout& argument, std::byte* place) {
    const bool isStruct = argument.encoding[0] == '{';
    const bool isSimple = argument.encoding[0] != 0 && argument.encoding[1] == 0;
    if (isStruct ? writeStruct(value, argument, place)
                 : isSimple && writeSimple(value, argument.encoding[0], place))
        return;
    refuse(value, argument.encoding);
}

}  // namespace pelvor
