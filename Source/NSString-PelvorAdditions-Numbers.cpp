// SPDX-License-Identifier: Apache-2.0
// Numbers at an index of a string.
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSScanner.h"
#include "NSString-PelvorAdditions.h"
#include "Private/UnitReader.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Codepoints.h"

namespace pelvor {
namespace {

bool mayBeInNumber(unichar unit) {
    unichar lower = unit | 0x20;
    return (unit >= u'0' && unit <= u'9') || (lower >= u'a' && lower <= u'f') || lower == u'x' ||
           unit == u'+' || unit == u'-';
}

// What a number at the index, with white space before it, can reach over: a scanner copies no more of the
// text.
NSString* numberText(NSString* string, NSUInteger index) {
    UnitReader units(string);
    requireRange({index, 0}, units.size());
    NSCharacterSet* space = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    NSUInteger end = index;
    while (end < units.size() && space->characterIsMember(units[end])) ++end;
    while (end < units.size() && mayBeInNumber(units[end])) ++end;
    return string->substringWithRange({index, end - index});
}

// What `scan` reads at the index, or the value for nothing.
template <class Scan>
std::int32_t valueAtIndex(NSString* string, NSUInteger index, NSRange* effectiveRange, std::int32_t none,
                          Scan scan) {
    auto scanner = NSScanner::initWithString(numberText(string, index));
    bool isThere = scan(scanner.get());
    if (effectiveRange) *effectiveRange = {index, isThere ? scanner->scanLocation() : 0};
    return isThere ? scan.value : none;
}

struct ScanDecimal {
    bool operator()(NSScanner* scanner) { return scanner->scanInt(&value); }
    int value = 0;
};

struct ScanHexadecimal {
    bool operator()(NSScanner* scanner) {
        unsigned number = 0;
        bool isThere = scanner->scanHexInt(&number);
        value = static_cast<std::int32_t>(number);
        return isThere;
    }
    std::int32_t value = 0;
};

}  // namespace

std::int32_t intValueAtIndex_effectiveRange(NSString* string, NSUInteger index, NSRange* effectiveRange) {
    return valueAtIndex(string, index, effectiveRange, 0, ScanDecimal());
}

std::int32_t hexIntValueAtIndex_effectiveRange(NSString* string, NSUInteger index, NSRange* effectiveRange) {
    return valueAtIndex(string, index, effectiveRange, 0x3F, ScanHexadecimal());
}

std::int32_t hexIntValue(NSString* string) { return hexIntValueAtIndex_effectiveRange(string, 0, nullptr); }

}  // namespace pelvor
