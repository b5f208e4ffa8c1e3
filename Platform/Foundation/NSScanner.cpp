// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSScanner.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Foundation/Strings/NumberReader.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSScanner, foundationLibrary) {
    methods.creator<"initWithString:", &NSScanner::initWithString>();
    methods.creator<"scannerWithString:", &NSScanner::scannerWithString>();

    methods.instance<"string", &NSScanner::string>();
    methods.instance<"scanLocation", &NSScanner::scanLocation>();
    methods.instance<"setScanLocation:", &NSScanner::setScanLocation>();
    methods.instance<"charactersToBeSkipped", &NSScanner::charactersToBeSkipped>();
    methods.instance<"setCharactersToBeSkipped:", &NSScanner::setCharactersToBeSkipped>();
    methods.instance<"caseSensitive", &NSScanner::caseSensitive>();
    methods.instance<"setCaseSensitive:", &NSScanner::setCaseSensitive>();
    methods.instance<"isAtEnd", &NSScanner::isAtEnd>();

    methods.instance<"scanInt:", &NSScanner::scanInt>();
    methods.instance<"scanInteger:", &NSScanner::scanInteger>();
    methods.instance<"scanLongLong:", &NSScanner::scanLongLong>();
    methods.instance<"scanHexInt:", &NSScanner::scanHexInt>();
    methods.instance<"scanHexLongLong:", &NSScanner::scanHexLongLong>();
    methods.instance<"scanFloat:", &NSScanner::scanFloat>();
    methods.instance<"scanDouble:", &NSScanner::scanDouble>();

    methods.instance<"scanString:intoString:", &NSScanner::scanString_intoString>();
    methods.instance<"scanUpToString:intoString:", &NSScanner::scanUpToString_intoString>();
    methods.instance<"scanCharactersFromSet:intoString:", &NSScanner::scanCharactersFromSet_intoString>();
    methods.instance<"scanUpToCharactersFromSet:intoString:",
                     &NSScanner::scanUpToCharactersFromSet_intoString>();
}

Retained<NSScanner> NSScanner::initWithString(NSString* string, Class* cls) {
    requireArgument(string, "initWithString:", "the string");
    auto scanner = make<NSScanner>(cls);
    scanner->_string = string->copy();
    if (!scanner->_string->contiguousCharacters()) {
        StringUnits units(scanner->_string);
        scanner->_string = NSInlineString::create(units.view());
    }
    scanner->_units = {scanner->_string->contiguousCharacters(), scanner->_string->length()};
    scanner->_skipped =
        Retained<NSCharacterSet>::retaining(NSCharacterSet::whitespaceAndNewlineCharacterSet());
    return scanner;
}

NSScanner* NSScanner::scannerWithString(NSString* string, Class* cls) {
    requireArgument(string, "scannerWithString:", "the string");
    return initWithString(string, cls).autorelease();
}

void NSScanner::setScanLocation(NSUInteger location) {
    requirePlace(location, static_cast<NSUInteger>(_units.size()), "setScanLocation:");
    _location = location;
}

void NSScanner::setCharactersToBeSkipped(NSCharacterSet* set) { _skipped = set ? set->copy() : nullptr; }

// MARK: Places

NSUInteger NSScanner::endOfMembers(NSUInteger location, NSCharacterSet* set) {
    while (location < _units.size()) {
        char32_t character = codePointAt(_units, location);
        if (!set->longCharacterIsMember(character)) break;
        location += static_cast<NSUInteger>(unitCount(character));
    }
    return location;
}

NSUInteger NSScanner::locationAfterSkipping() {
    return _skipped ? endOfMembers(_location, _skipped) : _location;
}

bool NSScanner::isAtEnd() { return locationAfterSkipping() == _units.size(); }

bool NSScanner::accept(NSUInteger start, NSUInteger end, NSString** value) {
    if (start == end) return false;
    if (value) *value = _string->substringWithRange({start, end - start});
    _location = end;
    return true;
}

// MARK: Numbers

template <class T, class Read>
bool NSScanner::scanNumber(T* value, Read read) {
    NumberReader reader(_units, locationAfterSkipping());
    auto number = read(reader);
    if (!number) return false;
    if (value) *value = *number;
    _location = static_cast<NSUInteger>(reader.place());
    return true;
}

bool NSScanner::scanInt(int* value) {
    return scanNumber(value, [](NumberReader& reader) { return reader.integer<int>(); });
}

bool NSScanner::scanInteger(NSInteger* value) { return scanInt(value); }

bool NSScanner::scanLongLong(long long* value) {
    return scanNumber(value, [](NumberReader& reader) { return reader.integer<long long>(); });
}

bool NSScanner::scanHexInt(unsigned* value) {
    return scanNumber(value, [](NumberReader& reader) { return reader.hexadecimal<unsigned>(); });
}

bool NSScanner::scanHexLongLong(unsigned long long* value) {
    return scanNumber(value, [](NumberReader& reader) { return reader.hexadecimal<unsigned long long>(); });
}

bool NSScanner::scanFloat(float* value) {
    return scanNumber(value, [](NumberReader& reader) { return reader.floating<float>(); });
}

bool NSScanner::scanDouble(double* value) {
    return scanNumber(value, [](NumberReader& reader) { return reader.floating<double>(); });
}

// MARK: Strings

NSStringCompareOptions NSScanner::searchOptions() { return _isCaseSensitive ? 0u : NSCaseInsensitiveSearch; }

bool NSScanner::scanString_intoString(NSString* string, NSString** value) {
    requireArgument(string, "scanString:intoString:", "the string");
    NSUInteger start = locationAfterSkipping();
    NSRange rest{start, static_cast<NSUInteger>(_units.size()) - start};
    NSRange found = _string->rangeOfString_options_range(string, searchOptions() | NSAnchoredSearch, rest);
    return accept(start, found.location == NSNotFound ? start : NSMaxRange(found), value);
}

bool NSScanner::scanUpToString_intoString(NSString* string, NSString** value) {
    requireArgument(string, "scanUpToString:intoString:", "the string");
    NSUInteger start = locationAfterSkipping(), count = static_cast<NSUInteger>(_units.size());
    NSRange found = _string->rangeOfString_options_range(string, searchOptions(), {start, count - start});
    return accept(start, found.location == NSNotFound ? count : found.location, value);
}

bool NSScanner::scanCharactersFromSet_intoString(NSCharacterSet* set, NSString** value) {
    requireArgument(set, "scanCharactersFromSet:intoString:", "the set");
    NSUInteger start = locationAfterSkipping();
    return accept(start, endOfMembers(start, set), value);
}

bool NSScanner::scanUpToCharactersFromSet_intoString(NSCharacterSet* set, NSString** value) {
    requireArgument(set, "scanUpToCharactersFromSet:intoString:", "the set");
    NSUInteger start = locationAfterSkipping(), count = static_cast<NSUInteger>(_units.size());
    NSRange found =
        _string->rangeOfCharacterFromSet_options_range(set, NSLiteralSearch, {start, count - start});
    return accept(start, found.location == NSNotFound ? count : found.location, value);
}

}  // namespace pelvor
