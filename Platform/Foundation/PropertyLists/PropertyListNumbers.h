// SPDX-License-Identifier: Apache-2.0
// Numbers and dates as texts of a property list; for the readers and writers themselves.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "Foundation/Values/GrowingBytes.h"

namespace pelvor {

class NSNumber;

/// A whole number of a property list: 64 bits, signed unless the number is too large to be signed.
struct PropertyListInteger {
    std::uint64_t bits = 0;
    bool isUnsigned = false;  ///< from 2^63 on
};

/// Returns the whole number, whatever its type.
PropertyListInteger propertyListInteger(NSNumber* number);

/// Reads "-42", "+7" and "0x1F", also with white space around. Returns nothing for any other text and for
/// numbers that fit neither 64 bits signed nor unsigned.
std::optional<PropertyListInteger> parsePropertyListInteger(std::string_view text);
/// Reads "-1.5e3", "nan", "inf" and "-infinity", also with white space around, whatever the locale is.
/// Returns nothing for any other text and for numbers beyond the range of double.
std::optional<double> parsePropertyListReal(std::string_view text);
/// Reads a date like "2001-01-01T00:00:00Z" and returns the seconds since this moment. Years have four digits
/// or more and may be negative. Returns nothing for any other text and for days that no calendar has.
std::optional<double> parsePropertyListDate(std::string_view text);

void appendPropertyListInteger(GrowingBytes& bytes, PropertyListInteger value);
/// Returns the shortest text that is read as the same double.
void appendPropertyListReal(GrowingBytes& bytes, double value);
/// The second in which the moment lies; nothing, and false, for a moment outside the years -999,999,999 to
/// 999,999,999.
bool appendPropertyListDate(GrowingBytes& bytes, double secondsSinceReferenceDate);

}  // namespace pelvor
