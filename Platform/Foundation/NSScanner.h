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
/// Each reading first passes over the characters to be skipped. A reading that finds nothing returns false
/// and leaves the place and the value as they were. The pointer for a value may be null if the caller does
/// not want the value. A number that is too large for the type becomes the largest number of the type, one
/// that is too small the smallest. Null strings and sets raise NSInvalidArgumentException. One thread at a
/// time.
class PELVOR_EXPORT NSScanner : public NSObject {
    PELVOR_CLASS(NSScanner, NSObject);
    PELVOR_CREATORS(initWithString, scannerWithString);

  public:
    /// Reads a copy of the string.
    static Retained<NSScanner> initWithString(NSString* string, Class* cls = classObject());
    static NSScanner* scannerWithString(NSString* string, Class* cls = classObject());

    NSString* string() { return _string; }
    NSUInteger scanLocation() { return _location; }
    /// Raises NSRangeException for a location past the end.
    void setScanLocation(NSUInteger location);
    /// White space and newlines, unless another set was given. With null, nothing is passed over.
    NSCharacterSet* charactersToBeSkipped() { return _skipped; }
    void setCharactersToBeSkipped(NSCharacterSet* set);
    /// Whether the case of letters counts where strings are looked for. False at first.
    bool caseSensitive() { return _isCaseSensitive; }
    void setCaseSensitive(bool isCaseSensitive) { _isCaseSensitive = isCaseSensitive; }
    /// Whether only characters to be skipped are left.
    bool isAtEnd();

    bool scanInt(int* value);
    bool scanInteger(NSInteger* value);
    bool scanLongLong(long long* value);
    /// Hexadecimal digits, with or without "0x" in front.
    bool scanHexInt(unsigned* value);
    bool scanHexLongLong(unsigned long long* value);
    bool scanFloat(float* value);
    bool scanDouble(double* value);

    // The strings that are read are borrowed.

    /// Reads the string if it is next, by the rules of `rangeOfString`.
    bool scanString_intoString(NSString* string, NSString** value);
    /// Reads the text before the next occurrence of the string, or the whole rest if the string does not
    /// occur. Returns false if the string is next.
    bool scanUpToString_intoString(NSString* string, NSString** value);
    /// Reads the members of the set that are next.
    bool scanCharactersFromSet_intoString(NSCharacterSet* set, NSString** value);
    /// Reads the text before the next member of the set, or the whole rest if there is no member. Returns
    /// false if a member is next.
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
