// SPDX-License-Identifier: Apache-2.0
// NSScanner: reads numbers, words and separators from a string, one after the other.
#pragma once

#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSString.h"

namespace pelvor {

/// A place in a text that every successful reading moves:
///
///     NSScanner* scanner = NSScanner::scannerWithString(u"width: 12.5 cm"_ns);
///     double width;
///     if (scanner->scanString_intoString(u"width:"_ns, nullptr) && scanner->scanDouble(&width)) …
///
/// Each reading first passes over the characters to be skipped. One that finds nothing answers false, and
/// leaves the place and its result as they were; a result that is not wanted may be no pointer. Numbers that
/// are too large are the nearest number of the type. One thread at a time.
class PELVOR_EXPORT NSScanner : public NSObject {
    PELVOR_CLASS(NSScanner, NSObject);
    PELVOR_CREATORS(initWithString, scannerWithString);

  public:
    /// Over a copy of the string. Raises NSInvalidArgumentException for none.
    static Retained<NSScanner> initWithString(NSString* string, Class* cls = classObject());
    static NSScanner* scannerWithString(NSString* string, Class* cls = classObject());

    NSString* string() { return _string; }
    NSUInteger scanLocation() { return _location; }
    /// Raises NSRangeException past the end.
    void setScanLocation(NSUInteger location);
    /// White space and newlines, unless they are set; none: nothing is passed over.
    NSCharacterSet* charactersToBeSkipped() { return _skipped; }
    void setCharactersToBeSkipped(NSCharacterSet* set);
    /// Whether strings are found in exactly their case; at first they are not.
    bool caseSensitive() { return _isCaseSensitive; }
    void setCaseSensitive(bool isCaseSensitive) { _isCaseSensitive = isCaseSensitive; }
    /// Whether there is nothing more but characters to be skipped.
    bool isAtEnd();

    bool scanInt(int* value);
    bool scanInteger(NSInteger* value);
    bool scanLongLong(long long* value);
    /// With or without "0x".
    bool scanHexInt(unsigned* value);
    bool scanHexLongLong(unsigned long long* value);
    bool scanFloat(float* value);
    bool scanDouble(double* value);

    // Strings read are borrowed.

    /// Whether the string is next, as `rangeOfString` would find it.
    bool scanString_intoString(NSString* string, NSString** value);
    /// Up to the string, or to the end where it does not come; false where it is next.
    bool scanUpToString_intoString(NSString* string, NSString** value);
    /// The members that are next.
    bool scanCharactersFromSet_intoString(NSCharacterSet* set, NSString** value);
    /// Up to the first member, or to the end.
    bool scanUpToCharactersFromSet_intoString(NSCharacterSet* set, NSString** value);

  protected:
    NSScanner() = default;
    ~NSScanner() = default;

  private:
    NSUInteger locationAfterSkipping();
    NSUInteger endOfMembers(NSUInteger location, NSCharacterSet* set);
    NSStringCompareOptions searchOptions();
    bool accept(NSUInteger start, NSUInteger end, NSString** value);
    template <class T, class Read>
    bool scanNumber(T* value, Read read);

    Retained<NSString> _string;
    std::u16string_view _units;  // the string's
    NSUInteger _location = 0;
    Retained<NSCharacterSet> _skipped;
    bool _isCaseSensitive = false;
};

}  // namespace pelvor
