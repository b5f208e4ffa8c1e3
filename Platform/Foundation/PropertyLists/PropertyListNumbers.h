// SPDX-License-Identifier: Apache-2.0
// Numbers and dates as texts of a property list; for the readers and writers themselves.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "Foundation/Values/GrowingBytes.h"

namespace pelvor {

class NSNumber;

/// A whole number of a property list: 64 bits, signed unless it is too large for that.
struct PropertyListInteger {
    std::uint64_t bits = 0;
    bool isUnsigned = false;  ///< from 2^63 on
};

/// The whole number, whatever its type.
PropertyListInteger propertyListInteger(NSNumber* number);

/// "-42", "+7", "0x1F", with white space around it; none for any other text and for numbers that fit neither
/// 64 bits signed nor unsigned.
std::optional<PropertyListInteger> parsePropertyListInteger(std::string_view text);
/// "-1.5e3", "nan", "inf", "-infinity", with white space around it, whatever the locale; none for any other
/// text and for numbers beyond the range of double.
std::optional<double> parsePropertyListReal(std::string_view text);
/// "2001-01-01T00:00:00Z" in seconds since that moment; years have four digits or more and may be negative.
/// None for any other text and for days that no calendar has.
std::optional<double> parsePropertyListDate(std::string_view text);

void appendPropertyListInteger(GrowingBytes& bytes, PropertyListInteger value);
/// The shortest text that reads back as the same double.
void appendPropertyListReal(GrowingBytes& bytes, double value);
/// The second in which the moment lies; nothing, and false, for a moment outside the years -999,999,999 to
/// 999,999,999.
bool appendPropertyListDate(GrowingBytes& bytes, double secondsSinceReferenceDate);

}  // namespace pelvor
