// SPDX-License-Identifier: Apache-2.0
// Strings in another case.
#include <cwctype>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSMutableString.h"
#include "NSString-PelvorAdditions.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

// One byte of the unit's other form.
unichar toggled(unichar unit) {
    auto letter = static_cast<std::wint_t>(unit);
    if (std::iswupper(letter)) return static_cast<std::uint8_t>(std::towlower(letter));
    if (std::iswlower(letter)) return static_cast<std::uint8_t>(std::towupper(letter));
    return unit;
}

}  // namespace

NSString* stringByMatchingCase(NSString* string, NSString* pattern) {
    requireArgument(string, "stringByMatchingCase:", "the string");
    NSCharacterSet* upperCase = NSCharacterSet::uppercaseLetterCharacterSet();
    if (!pattern || pattern->length() == 0 || !upperCase->characterIsMember(pattern->characterAtIndex(0)))
        return string->copy().autorelease();
    StringUnits units(pattern);
    for (unichar unit : units.view())
        if (!upperCase->characterIsMember(unit)) return string->capitalizedString();
    return string->uppercaseString();
}

NSString* toggledcaseString(NSString* string) {
    requireArgument(string, "toggledcaseString", "the string");
    auto units = string->toUTF16();
    for (unichar& unit : units) unit = toggled(unit);
    return NSMutableString::of(units);
}

}  // namespace pelvor
