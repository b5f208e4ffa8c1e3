// SPDX-License-Identifier: Apache-2.0
// NSMutableString: a string whose content can change.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// A string whose text can change:
///
///     NSMutableString* line = NSMutableString::stringWithString(u"one"_ns);
///     line->appendFormat(u", %d"_ns, 2);
///     line->insertString_atIndex(u"> "_ns, 0);  // "> one, 2"
///
/// The class is abstract: operations that change the string stand on NSString's primitives and on
/// `replaceCharactersInRange_withString`. NSString's rules for arguments hold, and an operation that raises
/// changes nothing. One thread at a time.
class PELVOR_EXPORT NSMutableString : public NSString {
    PELVOR_CLASS(NSMutableString, NSString);
    PELVOR_CREATORS(string, stringWithCapacity, stringWithString, stringWithCharacters_length,
                    stringWithUTF8String, stringWithCString_encoding, stringWithContentsOfFile_encoding,
                    stringWithContentsOfFile, init, initWithCapacity, initWithString,
                    initWithCharacters_length, initWithCharactersNoCopy_length_freeWhenDone,
                    initWithUTF8String, initWithCString_encoding, initWithBytes_length_encoding,
                    initWithData_encoding, initWithContentsOfFile_encoding, initWithContentsOfFile, of,
                    ofUTF8);

  public:
    // Creation, by NSString's rules. The results are mutable.

    static NSMutableString* string();
    static NSMutableString* stringWithCapacity(NSUInteger capacity);
    static NSMutableString* stringWithString(NSString* string);
    static NSMutableString* stringWithCharacters_length(const unichar* characters, NSUInteger length);
    static NSMutableString* stringWithUTF8String(const char* text);
    static NSMutableString* stringWithCString_encoding(const char* text, NSStringEncoding encoding);
    static NSMutableString* stringWithContentsOfFile_encoding(NSString* path, NSStringEncoding encoding);
    static NSMutableString* stringWithContentsOfFile(NSString* path);

    static Retained<NSMutableString> init();
    /// An empty string with room for `capacity` units. It grows beyond them as needed.
    static Retained<NSMutableString> initWithCapacity(NSUInteger capacity);
    static Retained<NSMutableString> initWithString(NSString* string);
    static Retained<NSMutableString> initWithCharacters_length(const unichar* characters, NSUInteger length);
    /// Copies the units, unlike NSString's operation of this name. With `freeWhenDone`, the caller's units,
    /// which were allocated by `malloc`, are freed at once.
    static Retained<NSMutableString> initWithCharactersNoCopy_length_freeWhenDone(unichar* characters,
                                                                                  NSUInteger length,
                                                                                  bool freeWhenDone);
    static Retained<NSMutableString> initWithUTF8String(const char* text);
    static Retained<NSMutableString> initWithCString_encoding(const char* text, NSStringEncoding encoding);
    static Retained<NSMutableString> initWithBytes_length_encoding(const void* bytes, NSUInteger length,
                                                                   NSStringEncoding encoding);
    static Retained<NSMutableString> initWithData_encoding(NSData* data, NSStringEncoding encoding);
    static Retained<NSMutableString> initWithContentsOfFile_encoding(NSString* path,
                                                                     NSStringEncoding encoding);
    static Retained<NSMutableString> initWithContentsOfFile(NSString* path);

    // C++ only
    template <class... A>
    static NSMutableString* stringWithFormat(NSString* format, const A&... arguments) {
        return stringWithString(
            formatString(format, detail::formatArguments(arguments...), "stringWithFormat:"));
    }
    template <class... A>
    static Retained<NSMutableString> initWithFormat(NSString* format, const A&... arguments) {
        return initWithString(formatString(format, detail::formatArguments(arguments...), "initWithFormat:"));
    }
    /// These copy the text into a new borrowed string. `ofUTF8` replaces bytes that are not UTF-8 by U+FFFD.
    static NSMutableString* of(std::u16string_view units);
    static NSMutableString* ofUTF8(std::string_view bytes);
    static NSMutableString* ofUTF8(const char* text);

    // Changing

    /// Puts the string in place of the range. `string` may be the receiver.
    virtual void replaceCharactersInRange_withString(NSRange range, NSString* string) = 0;

    void setString(NSString* string);
    void appendString(NSString* string);
    void appendCharacters_length(const unichar* characters, NSUInteger length);
    void insertString_atIndex(NSString* string, NSUInteger index);
    void deleteCharactersInRange(NSRange range);
    /// Replaces every occurrence of the target inside the range, by the rules of
    /// `rangeOfString_options_range`, and returns how many there were. Occurrences do not overlap: they are
    /// looked for from the start of the range on, or backwards from its end.
    NSUInteger replaceOccurrencesOfString_withString_options_range(NSString* target, NSString* replacement,
                                                                   NSStringCompareOptions options,
                                                                   NSRange range);

    // C++ only
    /// Puts the units, which may be the receiver's own, in place of the range.
    virtual void replaceCharactersInRange_withUnits(NSRange range, std::u16string_view units);
    void append(std::u16string_view units) { replaceCharactersInRange_withUnits({length(), 0}, units); }
    template <class... A>
    void appendFormat(NSString* format, const A&... arguments) {
        appendString(formatString(format, detail::formatArguments(arguments...), "appendFormat:"));
    }

    Retained<Object> copyWithZone(void* zone) override;

  protected:
    constexpr NSMutableString() noexcept = default;
    ~NSMutableString() = default;
};

}  // namespace pelvor
