// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNumber.h"

#include <bit>
#include <cmath>
#include <limits>
#include <utility>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"
#include "Foundation/Strings/NumberText.h"
#include "Foundation/Values/ConcreteValues.h"
#include "Runtime/NSException.h"
#include "Runtime/NSMethodSignature.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSPlainNumber, foundationLibrary) {}

PELVOR_DEFINE_CLASS(NSNumber, foundationLibrary) {
    methods.creator<"numberWithBool:", &NSNumber::numberWithBool>();
    methods.creator<"numberWithChar:", &NSNumber::numberWithChar>();
    methods.creator<"numberWithUnsignedChar:", &NSNumber::numberWithUnsignedChar>();
    methods.creator<"numberWithShort:", &NSNumber::numberWithShort>();
    methods.creator<"numberWithUnsignedShort:", &NSNumber::numberWithUnsignedShort>();
    methods.creator<"numberWithInt:", &NSNumber::numberWithInt>();
    methods.creator<"numberWithUnsignedInt:", &NSNumber::numberWithUnsignedInt>();
    methods.creator<"numberWithLong:", &NSNumber::numberWithLong>();
    methods.creator<"numberWithUnsignedLong:", &NSNumber::numberWithUnsignedLong>();
    methods.creator<"numberWithLongLong:", &NSNumber::numberWithLongLong>();
    methods.creator<"numberWithUnsignedLongLong:", &NSNumber::numberWithUnsignedLongLong>();
    methods.creator<"numberWithFloat:", &NSNumber::numberWithFloat>();
    methods.creator<"numberWithDouble:", &NSNumber::numberWithDouble>();
    methods.creator<"initWithBool:", &NSNumber::initWithBool>();
    methods.creator<"initWithInt:", &NSNumber::initWithInt>();
    methods.creator<"initWithUnsignedInt:", &NSNumber::initWithUnsignedInt>();
    methods.creator<"initWithLongLong:", &NSNumber::initWithLongLong>();
    methods.creator<"initWithUnsignedLongLong:", &NSNumber::initWithUnsignedLongLong>();
    methods.creator<"initWithFloat:", &NSNumber::initWithFloat>();
    methods.creator<"initWithDouble:", &NSNumber::initWithDouble>();
    methods.instance<"boolValue", &NSNumber::boolValue>();
    methods.instance<"charValue", &NSNumber::charValue>();
    methods.instance<"unsignedCharValue", &NSNumber::unsignedCharValue>();
    methods.instance<"shortValue", &NSNumber::shortValue>();
    methods.instance<"unsignedShortValue", &NSNumber::unsignedShortValue>();
    methods.instance<"intValue", &NSNumber::intValue>();
    methods.instance<"unsignedIntValue", &NSNumber::unsignedIntValue>();
    methods.instance<"longValue", &NSNumber::longValue>();
    methods.instance<"unsignedLongValue", &NSNumber::unsignedLongValue>();
    methods.instance<"longLongValue", &NSNumber::longLongValue>();
    methods.instance<"unsignedLongLongValue", &NSNumber::unsignedLongLongValue>();
    methods.instance<"floatValue", &NSNumber::floatValue>();
    methods.instance<"doubleValue", &NSNumber::doubleValue>();
    methods.instance<"stringValue", &NSNumber::stringValue>();
    methods.instance<"compare:", &NSNumber::compare>();
    methods.instance<"isEqualToNumber:", &NSNumber::isEqualToNumber>();
}

// MARK: Creation

namespace {

template <class T>
NumberContents widened(T value) {
    if constexpr (std::is_floating_point_v<T>)
        return NumberContents::of(static_cast<double>(value));
    else if constexpr (std::is_unsigned_v<T>)
        return NumberContents::of(static_cast<std::uint64_t>(value));
    else
        return NumberContents::of(static_cast<std::int64_t>(value));
}

constexpr int kFirstShared = -16;
constexpr int kSharedCount = 272;

template <int... I>
NSPlainNumber* sharedInteger(int value, std::integer_sequence<int, I...>) {
    static constinit NSPlainNumber shared[] = {
        {NSPlainNumber::Shared(), "i", NumberContents::of(std::int64_t{kFirstShared + I})}...};
    return &shared[value - kFirstShared];
}

NSPlainNumber* sharedBoolean(bool value) {
    static constinit NSPlainNumber shared[] = {
        {NSPlainNumber::Shared(), "B", NumberContents::of(std::uint64_t{0})},
        {NSPlainNumber::Shared(), "B", NumberContents::of(std::uint64_t{1})}};
    return &shared[value];
}

// The immortal number of this type and value; null if there is no such number.
template <class T>
NSPlainNumber* sharedNumber([[maybe_unused]] T value) {
    if constexpr (std::is_same_v<T, bool>) return sharedBoolean(value);
    if constexpr (std::is_same_v<T, int>)
        if (value >= kFirstShared && value < kFirstShared + kSharedCount)
            return sharedInteger(value, std::make_integer_sequence<int, kSharedCount>());
    return nullptr;
}

template <class T>
Retained<NSNumber> owned(T value) {
    if (NSPlainNumber* shared = sharedNumber(value)) return Retained<NSNumber>::retaining(shared);
    return NSPlainNumber::create(typeEncoding<T>.text, widened(value));
}

template <class T>
NSNumber* borrowed(T value) {
    if (NSPlainNumber* shared = sharedNumber(value)) return shared;
    return NSPlainNumber::create(typeEncoding<T>.text, widened(value)).autorelease();
}

}  // namespace

NSNumber* NSNumber::numberWithBool(bool value) { return borrowed(value); }
NSNumber* NSNumber::numberWithChar(signed char value) { return borrowed(value); }
NSNumber* NSNumber::numberWithUnsignedChar(unsigned char value) { return borrowed(value); }
NSNumber* NSNumber::numberWithShort(short value) { return borrowed(value); }
NSNumber* NSNumber::numberWithUnsignedShort(unsigned short value) { return borrowed(value); }
NSNumber* NSNumber::numberWithInt(int value) { return borrowed(value); }
NSNumber* NSNumber::numberWithUnsignedInt(unsigned value) { return borrowed(value); }
NSNumber* NSNumber::numberWithLong(long value) { return borrowed(value); }
NSNumber* NSNumber::numberWithUnsignedLong(unsigned long value) { return borrowed(value); }
NSNumber* NSNumber::numberWithLongLong(long long value) { return borrowed(value); }
NSNumber* NSNumber::numberWithUnsignedLongLong(unsigned long long value) { return borrowed(value); }
NSNumber* NSNumber::numberWithFloat(float value) { return borrowed(value); }
NSNumber* NSNumber::numberWithDouble(double value) { return borrowed(value); }

Retained<NSNumber> NSNumber::initWithBool(bool value) { return owned(value); }
Retained<NSNumber> NSNumber::initWithInt(int value) { return owned(value); }
Retained<NSNumber> NSNumber::initWithUnsignedInt(unsigned value) { return owned(value); }
Retained<NSNumber> NSNumber::initWithLongLong(long long value) { return owned(value); }
Retained<NSNumber> NSNumber::initWithUnsignedLongLong(unsigned long long value) { return owned(value); }
Retained<NSNumber> NSNumber::initWithFloat(float value) { return owned(value); }
Retained<NSNumber> NSNumber::initWithDouble(double value) { return owned(value); }

// MARK: Contents

namespace {

template <class T>
NumberContents readAs(NSNumber* number) {
    T value;
    number->getValue(&value);
    return widened(value);
}

template <class T>
void writeAs(const NumberContents& contents, void* buffer) {
    T value{};
    switch (contents.kind) {
        case NumberContents::Kind::integer:
            value = static_cast<T>(contents.integer);
            break;
        case NumberContents::Kind::unsignedInteger:
            value = static_cast<T>(contents.unsignedInteger);
            break;
        case NumberContents::Kind::real:
            value = static_cast<T>(contents.real);
            break;
    }
    std::memcpy(buffer, &value, sizeof value);
}

}  // namespace

void NSPlainNumber::getValue(void* buffer) {
    if (!buffer) raiseNullArgument("getValue:", "the buffer");
    switch (_type[0]) {
        case 'f':
            return writeAs<float>(_contents, buffer);
        case 'd':
            return writeAs<double>(_contents, buffer);
        case 'B':
        case 'c':
        case 'C':
            return writeAs<std::uint8_t>(_contents, buffer);
        case 's':
        case 'S':
            return writeAs<std::uint16_t>(_contents, buffer);
        case 'i':
        case 'I':
            return writeAs<std::uint32_t>(_contents, buffer);
        default:
            return writeAs<std::uint64_t>(_contents, buffer);
    }
}

NumberContents contentsOf(NSNumber* number) {
    if (number->isa() == NSPlainNumber::classObject()) return static_cast<NSPlainNumber*>(number)->contents();
    switch (number->objCType()[0]) {
        case 'B':
            return readAs<bool>(number);
        case 'c':
            return readAs<signed char>(number);
        case 'C':
            return readAs<unsigned char>(number);
        case 's':
            return readAs<short>(number);
        case 'S':
            return readAs<unsigned short>(number);
        case 'i':
            return readAs<int>(number);
        case 'I':
            return readAs<unsigned>(number);
        case 'l':
            return readAs<long>(number);
        case 'L':
            return readAs<unsigned long>(number);
        case 'q':
            return readAs<long long>(number);
        case 'Q':
            return readAs<unsigned long long>(number);
        case 'f':
            return readAs<float>(number);
        case 'd':
            return readAs<double>(number);
        default:
            throw NSException(NSInvalidArgumentException, std::string("the number of class ") +
                                                              number->isa()->publicName() + " holds " +
                                                              detail::describeType(number->objCType()));
    }
}

// MARK: Reading

namespace {

template <class T>
T integerFromReal(double real) {
    if (std::isnan(real)) return 0;
    // Both ends are exact as doubles: the upper one is the first that is too large.
    constexpr double kEnd = static_cast<double>(std::numeric_limits<T>::max() / 2 + 1) * 2;
    if (real >= kEnd) return std::numeric_limits<T>::max();
    if (real <= static_cast<double>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
    return static_cast<T>(real);
}

template <class T>
T valueAs(NSNumber* number) {
    NumberContents contents = contentsOf(number);
    switch (contents.kind) {
        case NumberContents::Kind::integer:
            return static_cast<T>(contents.integer);
        case NumberContents::Kind::unsignedInteger:
            return static_cast<T>(contents.unsignedInteger);
        case NumberContents::Kind::real:
            break;
    }
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(contents.real);
    else
        return integerFromReal<T>(contents.real);
}

}  // namespace

bool NSNumber::boolValue() {
    NumberContents contents = contentsOf(this);
    return contents.kind == NumberContents::Kind::real ? contents.real != 0 : contents.integer != 0;
}

signed char NSNumber::charValue() { return valueAs<signed char>(this); }
unsigned char NSNumber::unsignedCharValue() { return valueAs<unsigned char>(this); }
short NSNumber::shortValue() { return valueAs<short>(this); }
unsigned short NSNumber::unsignedShortValue() { return valueAs<unsigned short>(this); }
int NSNumber::intValue() { return valueAs<int>(this); }
unsigned NSNumber::unsignedIntValue() { return valueAs<unsigned>(this); }
long NSNumber::longValue() { return valueAs<long>(this); }
unsigned long NSNumber::unsignedLongValue() { return valueAs<unsigned long>(this); }
long long NSNumber::longLongValue() { return valueAs<long long>(this); }
unsigned long long NSNumber::unsignedLongLongValue() { return valueAs<unsigned long long>(this); }
float NSNumber::floatValue() { return valueAs<float>(this); }
double NSNumber::doubleValue() { return valueAs<double>(this); }

NSString* NSNumber::stringValue() {
    NumberContents contents = contentsOf(this);
    switch (contents.kind) {
        case NumberContents::Kind::integer:
            return NSString::ofUTF8(std::to_string(contents.integer));
        case NumberContents::Kind::unsignedInteger:
            return NSString::ofUTF8(std::to_string(contents.unsignedInteger));
        case NumberContents::Kind::real:
            break;
    }
    return NSString::ofUTF8(objCType()[0] == 'f' ? numberText(static_cast<float>(contents.real))
                                                 : numberText(contents.real));
}

// MARK: Comparing

namespace {

using Kind = NumberContents::Kind;

template <class T>
int order(T a, T b) {
    return a < b ? -1 : a > b;
}

int compareIntegers(const NumberContents& a, const NumberContents& b) {
    if (a.kind == Kind::integer && a.integer < 0)
        return b.kind == Kind::integer ? order(a.integer, b.integer) : -1;
    if (b.kind == Kind::integer && b.integer < 0) return 1;
    return order(a.unsignedInteger, b.unsignedInteger);
}

// The whole part of the number, in 64 bits, decides; if it is equal, the fraction does.
int compareWithReal(const NumberContents& a, double real) {
    if (std::isnan(real)) return 1;
    if (real < -0x1p63) return 1;
    if (real >= 0x1p64) return -1;
    double whole = std::floor(real);
    NumberContents floor = whole < 0 ? NumberContents::of(static_cast<std::int64_t>(whole))
                                     : NumberContents::of(static_cast<std::uint64_t>(whole));
    int result = compareIntegers(a, floor);
    return result == 0 && real > whole ? -1 : result;
}

int compareReals(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return order(!std::isnan(a), !std::isnan(b));
    return order(a, b);
}

int compareContents(const NumberContents& a, const NumberContents& b) {
    if (a.kind == Kind::real)
        return b.kind == Kind::real ? compareReals(a.real, b.real) : -compareWithReal(b, a.real);
    return b.kind == Kind::real ? compareWithReal(a, b.real) : compareIntegers(a, b);
}

}  // namespace

NSComparisonResult NSNumber::compare(NSNumber* other) {
    requireArgument(other, "compare:", "the number");
    return static_cast<NSComparisonResult>(compareContents(contentsOf(this), contentsOf(other)));
}

bool NSNumber::isEqualToNumber(NSNumber* other) {
    return this == other || (other && compareContents(contentsOf(this), contentsOf(other)) == 0);
}

Retained<NSNumber> NSNumber::copy() { return cast<NSNumber>(copyWithZone(nullptr)); }

bool NSNumber::isEqual(id other) { return this == other || isEqualToNumber(cast<NSNumber>(other)); }

// A real number without a fraction hashes as the integer that it equals.
std::uintptr_t NSNumber::hash() {
    NumberContents contents = contentsOf(this);
    if (contents.kind != Kind::real) return contents.unsignedInteger;
    double real = contents.real;
    if (std::isnan(real)) return 0x7FF8;
    if (real == std::floor(real) && real >= -0x1p63 && real < 0x1p64)
        return real < 0 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(real))
                        : static_cast<std::uint64_t>(real);
    return std::bit_cast<std::uint64_t>(real);
}

}  // namespace pelvor
