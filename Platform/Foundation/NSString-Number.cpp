// SPDX-License-Identifier: Apache-2.0
// Numbers read from the start of a string.
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSString.h"
#include "Foundation/Strings/NumberReader.h"

namespace pelvor {
namespace {

NumberReader readerAfterSpace(std::u16string_view text) {
    NSCharacterSet* space = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    std::size_t start = 0;
    while (start < text.size() && space->characterIsMember(text[start])) ++start;
    return NumberReader(text, start);
}

}  // namespace

int NSString::intValue() {
    StringUnits units(this);
    return readerAfterSpace(units).integer<int>().value_or(0);
}

NSInteger NSString::integerValue() { return intValue(); }

long long NSString::longLongValue() {
    StringUnits units(this);
    return readerAfterSpace(units).integer<long long>().value_or(0);
}

float NSString::floatValue() {
    StringUnits units(this);
    return readerAfterSpace(units).floating<float>().value_or(0);
}

double NSString::doubleValue() {
    StringUnits units(this);
    return readerAfterSpace(units).floating<double>().value_or(0);
}

bool NSString::boolValue() {
    StringUnits units(this);
    NumberReader reader = readerAfterSpace(units);
    unichar first = reader.peek();
    if (first == u'Y' || first == u'y' || first == u'T' || first == u't') return true;
    return reader.integer<int>().value_or(0) != 0;
}

}  // namespace pelvor
