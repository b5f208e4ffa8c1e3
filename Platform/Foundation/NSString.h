// SPDX-License-Identifier: Apache-2.0
// NSString: an immutable string of UTF-16 code units.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "Foundation/NSFormat.h"
#include "Foundation/NSRange.h"
#include "Foundation/NSStringEncoding.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSArray;
class NSCharacterSet;
class NSData;
class NSMutableString;

/// How strings are searched and compared; options are joined by "|".
using NSStringCompareOptions = std::uint32_t;

enum : NSStringCompareOptions {
    NSCaseInsensitiveSearch = 1,
    NSLiteralSearch = 2,  ///< unit by unit; without it, canonically equivalent text is equal
    NSBackwardsSearch = 4,
    NSAnchoredSearch = 8,  ///< only at the start of the range, or backwards at its end
    NSNumericSearch = 64,  ///< comparing only: runs of digits by their value, "file9" before "file10"
};

/// A string of UTF-16 code units; positions and lengths count units. Abstract over `length`,
/// `characterAtIndex` and `getCharacters_range`, on which everything else stands; the creators answer
/// objects of concrete classes. Immutable strings may be used on any thread.
///
/// Everywhere: a range that is not inside the string raises NSRangeException; none where a string is
/// needed, or no memory where there is a length, raises NSInvalidArgumentException; searches answer
/// {NSNotFound, 0} for nothing found; an operation that would change nothing may answer the receiver.
class PELVOR_EXPORT NSString : public NSObject {
    PELVOR_CLASS(NSString, NSObject);
    PELVOR_CREATORS(string, stringWithString, stringWithCharacters_length, stringWithUTF8String,
                    stringWithCString_encoding, stringWithContentsOfFile_encoding, stringWithContentsOfFile,
                    init, initWithString, initWithCharacters_length,
                    initWithCharactersNoCopy_length_freeWhenDone, initWithUTF8String,
                    initWithCString_encoding, initWithBytes_length_encoding, initWithData_encoding,
                    initWithContentsOfFile_encoding, initWithContentsOfFile, of, ofUTF8);

  public:
    // Creation. Operations whose names begin with "init" answer owned strings, the others borrowed ones.

    /// The empty string.
    static NSString* string();
    static NSString* stringWithString(NSString* string);
    static NSString* stringWithCharacters_length(const unichar* characters, NSUInteger length);
    /// None if the bytes are not UTF-8. Raises NSInvalidArgumentException for no text.
    static NSString* stringWithUTF8String(const char* text);
    static NSString* stringWithCString_encoding(const char* text, NSStringEncoding encoding);
    /// The file's text; none if it cannot be read or is not valid in the encoding.
    static NSString* stringWithContentsOfFile_encoding(NSString* path, NSStringEncoding encoding);
    /// The same as the file's mark tells, else UTF-8, else ISO Latin 1.
    static NSString* stringWithContentsOfFile(NSString* path);

    static Retained<NSString> init();
    static Retained<NSString> initWithString(NSString* string);
    static Retained<NSString> initWithCharacters_length(const unichar* characters, NSUInteger length);
    /// A string over the caller's units, which stay as they are while the string lives; with
    /// `freeWhenDone` they were made by `malloc` and the string frees them.
    static Retained<NSString> initWithCharactersNoCopy_length_freeWhenDone(unichar* characters,
                                                                           NSUInteger length,
                                                                           bool freeWhenDone);
    static Retained<NSString> initWithUTF8String(const char* text);
    static Retained<NSString> initWithCString_encoding(const char* text, NSStringEncoding encoding);
    /// None if the bytes are not valid in the encoding or the encoding is unknown.
    static Retained<NSString> initWithBytes_length_encoding(const void* bytes, NSUInteger length,
                                                            NSStringEncoding encoding);
    static Retained<NSString> initWithData_encoding(NSData* data, NSStringEncoding encoding);
    static Retained<NSString> initWithContentsOfFile_encoding(NSString* path, NSStringEncoding encoding);
    static Retained<NSString> initWithContentsOfFile(NSString* path);

    // C++ only
    /// The format with its arguments in place; see `formatString`.
    template <class... A>
    static NSString* stringWithFormat(NSString* format, const A&... arguments) {
        return formatString(format, detail::formatArguments(arguments...));
    }
    template <class... A>
    static Retained<NSString> initWithFormat(NSString* format, const A&... arguments) {
        return Retained<NSString>::retaining(stringWithFormat(format, arguments...));
    }
    /// Borrowed copies of the text; bytes that are not UTF-8 become U+FFFD.
    static NSString* of(std::u16string_view units);
    static NSString* ofUTF8(std::string_view bytes);

    // Primitives

    virtual NSUInteger length() = 0;
    /// Raises NSRangeException for an index at or past the end.
    virtual unichar characterAtIndex(NSUInteger index) = 0;
    /// Copies the units of the range to the buffer.
    virtual void getCharacters_range(unichar* buffer, NSRange range);
    /// Copies all units to the buffer.
    void getCharacters(unichar* buffer) { getCharacters_range(buffer, {0, length()}); }

    // C++ only
    /// All units in one piece where the string has them so, else none. Valid until the string changes
    /// or goes.
    virtual const unichar* contiguousCharacters() { return nullptr; }

    // Parts and joins

    NSString* substringFromIndex(NSUInteger index);
    NSString* substringToIndex(NSUInteger index);
    NSString* substringWithRange(NSRange range);
    NSString* stringByAppendingString(NSString* string);
    /// The pieces between separators, empty ones included; the receiver alone if there is no separator
    /// in it.
    NSArray* componentsSeparatedByString(NSString* separator);
    /// Without the members of the set at both ends.
    NSString* stringByTrimmingCharactersInSet(NSCharacterSet* set);
    NSString* stringByReplacingOccurrencesOfString_withString(NSString* target, NSString* replacement);
    /// Repeats or cuts: `length` units, of which those past the receiver's end come from `pad`, read
    /// round and round from `index` on.
    NSString* stringByPaddingToLength_withString_startingAtIndex(NSUInteger length, NSString* pad,
                                                                 NSUInteger index);

    // C++ only
    template <class... A>
    NSString* stringByAppendingFormat(NSString* format, const A&... arguments) {
        return stringByAppendingString(stringWithFormat(format, arguments...));
    }

    // Comparing

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// Whether the units are the same; false for none.
    bool isEqualToString(NSString* other);
    /// The order of the texts by their code units after canonical decomposition.
    NSComparisonResult compare(NSString* other) { return compare_options(other, 0); }
    NSComparisonResult compare_options(NSString* other, NSStringCompareOptions options);
    /// Compares the receiver's range with the whole of `other`.
    NSComparisonResult compare_options_range(NSString* other, NSStringCompareOptions options, NSRange range);
    NSComparisonResult caseInsensitiveCompare(NSString* other);
    /// The order of the user's language.
    NSComparisonResult localizedCompare(NSString* other);
    NSComparisonResult localizedCaseInsensitiveCompare(NSString* other);
    /// Whether the string begins, or ends, with the other, unit by unit; false for an empty one.
    bool hasPrefix(NSString* prefix);
    bool hasSuffix(NSString* suffix);

    // Searching

    NSRange rangeOfString(NSString* target) { return rangeOfString_options(target, 0); }
    NSRange rangeOfString_options(NSString* target, NSStringCompareOptions options);
    /// The first place in the range where the target stands, the last one backwards. An empty target is
    /// nowhere. Unless the search is literal, a match neither begins nor ends inside a composed
    /// character.
    NSRange rangeOfString_options_range(NSString* target, NSStringCompareOptions options, NSRange range);
    NSRange rangeOfCharacterFromSet(NSCharacterSet* set) { return rangeOfCharacterFromSet_options(set, 0); }
    NSRange rangeOfCharacterFromSet_options(NSCharacterSet* set, NSStringCompareOptions options);
    /// The first member, the last one backwards: one unit, or the two units of a pair.
    NSRange rangeOfCharacterFromSet_options_range(NSCharacterSet* set, NSStringCompareOptions options,
                                                  NSRange range);
    /// What the user sees as one character around the index.
    NSRange rangeOfComposedCharacterSequenceAtIndex(NSUInteger index);

    // Case, of no language in particular

    NSString* uppercaseString();
    NSString* lowercaseString();
    /// Every word with a capital first letter, the rest of it lower-case.
    NSString* capitalizedString();

    // Canonical and compatibility forms

    NSString* decomposedStringWithCanonicalMapping();
    NSString* precomposedStringWithCanonicalMapping();

    // Numbers at the start, after white space; 0 for none. Too large ones are the nearest number.

    int intValue();
    NSInteger integerValue();
    long long longLongValue();
    float floatValue();
    double doubleValue();
    /// Whether the text begins, after white space, with Y, y, T, t or a number other than 0.
    bool boolValue();

    // Paths. Components are separated by "/"; runs of "/" count as one.

    NSString* lastPathComponent();
    /// After the last full stop of the last component, without the stop; empty for none, also in names
    /// whose only full stop is the first character.
    NSString* pathExtension();
    NSString* stringByAppendingPathComponent(NSString* component);
    NSString* stringByAppendingPathExtension(NSString* extension);
    NSString* stringByDeletingLastPathComponent();
    NSString* stringByDeletingPathExtension();
    /// "/" stands for itself, at the front and, as the last component, for a trailing slash.
    NSArray* pathComponents();
    static NSString* pathWithComponents(NSArray* components);
    /// Whether the path begins with "/" or "~".
    bool isAbsolutePath();
    /// "~" and "~user" at the front as the home directory; the receiver's text where there is none.
    NSString* stringByExpandingTildeInPath();
    /// The home directory at the front as "~".
    NSString* stringByAbbreviatingWithTildeInPath();
    /// Without "//", "/./" and a trailing slash, with "~" expanded; "a/.." goes in absolute paths.
    NSString* stringByStandardizingPath();
    /// The path with its symbolic links resolved as far as it exists, standardized.
    NSString* stringByResolvingSymlinksInPath();
    /// The path as the file system takes it; lives as long as the current autorelease pool.
    const char* fileSystemRepresentation();

    // Conversion

    /// Zero-terminated UTF-8 that lives as long as the current autorelease pool.
    const char* UTF8String();
    /// None if the text does not fit the encoding.
    const char* cStringUsingEncoding(NSStringEncoding encoding);
    NSData* dataUsingEncoding(NSStringEncoding encoding);
    /// The text in the encoding; none if it does not fit and loss is not allowed.
    NSData* dataUsingEncoding_allowLossyConversion(NSStringEncoding encoding, bool allowLoss);
    bool canBeConvertedToEncoding(NSStringEncoding encoding);
    NSUInteger lengthOfBytesUsingEncoding(NSStringEncoding encoding);
    /// The encoding in which the text takes least room: ASCII if it fits, else UTF-16.
    NSStringEncoding smallestEncoding();
    static NSString* localizedNameOfStringEncoding(NSStringEncoding encoding);
    /// Whether the file could be written; atomically, the path holds the old file or the new one.
    bool writeToFile_atomically_encoding(NSString* path, bool atomically, NSStringEncoding encoding);

    // C++ only
    std::u16string toUTF16();
    /// Lone halves of pairs become U+FFFD.
    std::string toUTF8();

    NSString* description() override { return this; }

    Retained<NSString> copy() {
        return Retained<NSString>::adopting(static_cast<NSString*>(copyWithZone(nullptr).leak()));
    }
    Retained<NSMutableString> mutableCopy();
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;

  protected:
    constexpr NSString() noexcept = default;
    constexpr NSString(Class* isa, std::uint32_t count) noexcept : NSObject(isa, count) {}
    ~NSString() = default;
};

/// A string literal: units that live as long as the program.
class PELVOR_EXPORT NSConstantString final : public NSString {
    PELVOR_CLASS(NSConstantString, NSString);

  public:
    constexpr explicit NSConstantString(std::u16string_view units)
        : NSString(&classRecord, kImmortal),
          _characters(units.data()),
          _length(static_cast<NSUInteger>(units.size())) {}

    NSUInteger length() override { return _length; }
    unichar characterAtIndex(NSUInteger index) override;
    void getCharacters_range(unichar* buffer, NSRange range) override;
    const unichar* contiguousCharacters() override { return _characters; }
    std::uintptr_t hash() override;
    Retained<Object> copyWithZone(void* zone) override;

  private:
    const unichar* _characters;
    NSUInteger _length;
    std::atomic<std::uint32_t> _hash{0};  // 0: not yet computed
};

/// The units of a string, or of a range of it, in one piece: the string's own where it has them so, else a
/// copy. The string must not change meanwhile. Raises NSRangeException for a range outside.
class PELVOR_EXPORT StringUnits {
  public:
    explicit StringUnits(NSString* string);
    StringUnits(NSString* string, NSRange range);
    StringUnits(const StringUnits&) = delete;
    StringUnits& operator=(const StringUnits&) = delete;
    ~StringUnits() {
        if (_copy != _inline) delete[] _copy;
    }

    std::u16string_view view() const { return {_units, _length}; }
    operator std::u16string_view() const { return view(); }
    const unichar* data() const { return _units; }
    NSUInteger size() const { return _length; }
    unichar operator[](NSUInteger index) const { return _units[index]; }

  private:
    void fetch(NSString* string, NSUInteger location);

    const unichar* _units;
    NSUInteger _length;
    unichar* _copy = _inline;
    unichar _inline[48];
};

namespace detail {

template <std::size_t N>
struct Literal16 : FixedString<N, char16_t> {
    using FixedString<N, char16_t>::FixedString;
    consteval Literal16(const char16_t (&text)[N]) : FixedString<N, char16_t>(text) {}
};

template <Literal16 Text>
inline constinit NSConstantString literalString{Text.view()};

}  // namespace detail

inline namespace literals {

/// `u"text"_ns`: an immortal string without start-up cost.
template <detail::Literal16 Text>
constexpr NSString* operator""_ns() {
    return &detail::literalString<Text>;
}

}  // namespace literals

/// Prints the string as UTF-8, for streams.
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, NSString* string);

}  // namespace pelvor
