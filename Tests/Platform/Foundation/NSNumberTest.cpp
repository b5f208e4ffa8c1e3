// SPDX-License-Identifier: Apache-2.0
// Tests of numbers.
#include "Foundation/NSNumber.h"

#include <climits>

#include "Platform/Foundation/OwnCollections.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

NSNumber* real(double value) { return NSNumber::numberWithDouble(value); }
NSNumber* large(long long value) { return NSNumber::numberWithLongLong(value); }
NSNumber* huge(unsigned long long value) { return NSNumber::numberWithUnsignedLongLong(value); }

// In ascending order; a row's numbers are equal.
TEST(NSNumberTest, ComparesExactlyAcrossTypes) {
    using Row = std::vector<NSNumber*>;
    const Row rows[] = {
        // clang-format off
        {real(kNaN), NSNumber::numberWithFloat(NAN)}, {real(-kInfinity)}, {real(-0x1p63 - 4096)},
        {large(LLONG_MIN), real(-0x1p63)}, {large(LLONG_MIN + 1)}, {large(-(1LL << 53) - 1)},
        {large(-(1LL << 53)), real(-0x1p53)}, {real(-1.5)},
        {num(-1), NSNumber::numberWithChar(-1), NSNumber::numberWithFloat(-1)}, {real(-0.5)},
        {num(0), real(-0.0), NSNumber::numberWithBool(false), huge(0)}, {real(5e-324)}, {real(0.1)},
        {NSNumber::numberWithFloat(0.1f)},
        {num(1), NSNumber::numberWithBool(true), NSNumber::numberWithShort(1), real(1)}, {real(1.5)},
        {large(1LL << 53), real(0x1p53)}, {large((1LL << 53) + 1)}, {real(0x1p53 + 2)},
        {large(LLONG_MAX), huge(LLONG_MAX)}, {huge(1ULL << 63), real(0x1p63)}, {huge(ULLONG_MAX)},
        {real(0x1p64), NSNumber::numberWithFloat(0x1p64f)}, {real(kInfinity)},
        // clang-format on
    };
    for (std::size_t i = 0; i < std::size(rows); ++i)
        for (std::size_t j = 0; j < std::size(rows); ++j)
            for (NSNumber* a : rows[i])
                for (NSNumber* b : rows[j]) {
                    EXPECT_EQ(a->compare(b), i < j ? -1 : i > j) << a << " and " << b;
                    EXPECT_EQ(a->isEqual(b), i == j) << a << " and " << b;
                    EXPECT_TRUE(i != j || a->hash() == b->hash()) << a << " and " << b;
                }
}

TEST(NSNumberTest, ReadsAsOtherTypesAndIsSharedWhenSmall) {
    EXPECT_EQ(shown(num(-1)->unsignedIntValue(), num(300)->charValue() + 0, large(1LL << 32)->intValue(),
                    large(1LL << 32)->boolValue(), NSNumber::numberWithBool(true)->floatValue()),
              "4294967295 44 0 1 1");
    EXPECT_EQ(shown(real(0.25)->boolValue(), real(-0.0)->boolValue(), real(-2.9)->intValue(),
                    real(1e300)->intValue(), real(-1e300)->longLongValue(), real(-1)->unsignedIntValue(),
                    real(0x1p64)->unsignedLongLongValue(), real(kNaN)->intValue()),
              "1 0 -2 2147483647 -9223372036854775808 0 18446744073709551615 0");
    EXPECT_EQ(huge(ULLONG_MAX)->doubleValue(), 0x1p64);
    NSNumber* number = num(300);
    EXPECT_FALSE(number->isEqual(u"300"_ns));
    EXPECT_EQ(number->copy().get(), number);
    EXPECT_EQ(num(7), num(7));
    for (int value : {-17, -16, 255, 256}) EXPECT_EQ(num(value)->intValue(), value);
}

TEST(NSNumberTest, KeepsItsTypeAndWritesNoMoreThanItsSize) {
    const std::pair<NSNumber*, const char*> rows[] = {
        // clang-format off
        {NSNumber::numberWithBool(true), "B"}, {NSNumber::numberWithChar(1), "c"},
        {NSNumber::numberWithUnsignedChar(1), "C"}, {NSNumber::numberWithShort(1), "s"},
        {NSNumber::numberWithUnsignedShort(1), "S"}, {num(1), "i"}, {NSNumber::numberWithUnsignedInt(1), "I"},
        {NSNumber::numberWithLong(1), "q"}, {NSNumber::numberWithUnsignedLong(1), "Q"}, {large(1), "q"},
        {huge(1), "Q"}, {NSNumber::numberWithFloat(1), "f"}, {real(1), "d"},
        // clang-format on
    };
    for (auto [number, type] : rows) {
        EXPECT_STREQ(number->objCType(), type);
        EXPECT_EQ(number->isBoolean(), number == NSNumber::numberWithBool(true));
        std::string bytes(16, '\xAA');
        number->getValue(bytes.data());
        NSUInteger size = 0;
        NSGetSizeAndAlignment(type, &size, nullptr);
        EXPECT_EQ(bytes[size], '\xAA') << type;
        EXPECT_TRUE(number->isEqualToNumber(num(1))) << type;
    }
}

TEST(NSNumberTest, WritesTheShortestTextThatReadsBack) {
    const std::pair<NSNumber*, const char*> rows[] = {
        // clang-format off
        {real(0.1), "0.1"}, {NSNumber::numberWithFloat(0.1f), "0.1"}, {real(1), "1"}, {real(-2.5), "-2.5"},
        {real(100000), "100000"}, {real(1e15), "1000000000000000"}, {real(1e16), "1e+16"}, {real(1e20), "1e+20"},
        {real(0.0001), "0.0001"}, {real(0.00001), "1e-05"}, {real(1.0 / 3), "0.3333333333333333"},
        {NSNumber::numberWithFloat(1.0f / 3), "0.33333334"}, {real(kInfinity), "inf"}, {real(kNaN), "nan"},
        {num(-12), "-12"}, {huge(ULLONG_MAX), "18446744073709551615"}, {large(LLONG_MIN), "-9223372036854775808"},
        {NSNumber::numberWithBool(true), "1"}, {NSNumber::numberWithBool(false), "0"},
        {NSNumber::numberWithChar('a'), "97"},
        // clang-format on
    };
    for (auto [number, text] : rows) EXPECT_EQ(shown(number->stringValue()), text);
}

TEST(NSNumberTest, ASubclassNeedsOnlyTypeAndValue) {
    auto tally = make<Tally>();
    tally->value = 41;
    EXPECT_EQ(shown(tally, tally->doubleValue(), send<float>(tally, "floatValue"_sel)), "41 41 41");
    EXPECT_TRUE(tally->isEqual(real(41)) && real(41)->isEqual(tally) && tally->hash() == num(41)->hash());
    tally->value = 42;
    EXPECT_EQ(num(42)->compare(tally), NSOrderedSame);
}

}  // namespace
