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
    NSLiteralSearch = 2,    ///< unit by unit; otherwise canonically equivalent texts are equal
    NSBackwardsSearch = 4,  ///< the last match instead of the first
    NSAnchoredSearch = 8,   ///< only at the start of the range, or backwards at its end
    NSNumericSearch = 64,   ///< for comparing only: digits by their value, "file9" before "file10"
};

/// A string of UTF-16 code units. Positions and lengths count units.
///
///     NSString* title = u"Chapter 1: Arrival"_ns;
///     NSRange colon = title->rangeOfString(u":"_ns);
///     if (colon.location != NSNotFound) {
///         NSString* number = title->substringToIndex(colon.location);
///         NSString* name = title->substringFromIndex(NSMaxRange(colon) + 1);
///         NSLog(u"%@ is called \"%@\""_ns, number, name);  // Chapter 1 is called "Arrival"
///     }
///
/// The class is abstract: a subclass implements `length` and `characterAtIndex`, which all other
/// operations use, and may implement `getCharacters_range` for speed. The subclass hides the creators, which
/// return objects of private classes; NSArray.h has an example. Immutable strings may be used on any thread.
///
/// These rules hold for every operation:
/// - An index or a range that is not inside the string raises NSRangeException.
/// - A null argument raises NSInvalidArgumentException; a null pointer to memory does so only if the length
///   is above 0.
/// - A text that is too long for a string raises NSMallocException.
/// - A search that finds nothing returns {NSNotFound, 0}.
/// - An operation that would change nothing may return the receiver.
class PELVOR_EXPORT NSString : public NSObject {
    PELVOR_CLASS(NSString, NSObject);
    PELVOR_CREATORS(string, stringWithString, stringWithCharacters_length, stringWithUTF8String,
                    stringWithCString_encoding, stringWithContentsOfFile_encoding, stringWithContentsOfFile,
                    init, initWithString, initWithCharacters_length,
                    initWithCharactersNoCopy_length_freeWhenDone, initWithUTF8String,
                    initWithCString_encoding, initWithBytes_length_encoding, initWithData_encoding,
                    initWithContentsOfFile_encoding, initWithContentsOfFile, of, ofUTF8);

  public:
    // Creation. Operations whose names begin with "init" return owned strings, the others borrowed ones. What
    // is said of an operation "stringWith…" holds for the operation "initWith…" of that name, too.

    /// The empty string.
    static NSString* string();
    static NSString* stringWithString(NSString* string);
    static NSString* stringWithCharacters_length(const unichar* characters, NSUInteger length);
    /// Returns null if the zero-terminated text is not UTF-8.
    static NSString* stringWithUTF8String(const char* text);
    /// Null if the zero-terminated text is not valid in the encoding or the encoding is unknown.
    static NSString* stringWithCString_encoding(const char* text, NSStringEncoding encoding);
    /// The file's text; null (NSFileError tells why) if it cannot be read or is not valid in the encoding.
    static NSString* stringWithContentsOfFile_encoding(NSString* path, NSStringEncoding encoding);
    /// The file's text. A mark at the front of the file tells the encoding; without a mark the text is read
    /// as UTF-8 if it is valid UTF-8, else as ISO Latin 1. Null (NSFileError tells why) if it cannot be read.
    static NSString* stringWithContentsOfFile(NSString* path);

    static Retained<NSString> init();
    static Retained<NSString> initWithString(NSString* string);
    static Retained<NSString> initWithCharacters_length(const unichar* characters, NSUInteger length);
    /// A string that uses the caller's memory, which must not change while the string exists. With
    /// `freeWhenDone`, the memory was allocated by `malloc`, and the string frees it.
    static Retained<NSString> initWithCharactersNoCopy_length_freeWhenDone(unichar* characters,
                                                                           NSUInteger length,
                                                                           bool freeWhenDone);
    static Retained<NSString> initWithUTF8String(const char* text);
    static Retained<NSString> initWithCString_encoding(const char* text, NSStringEncoding encoding);
    /// Null if the bytes are not valid in the encoding or the encoding is unknown.
    static Retained<NSString> initWithBytes_length_encoding(const void* bytes, NSUInteger length,
                                                            NSStringEncoding encoding);
    /// Null if the data is not valid in the encoding or the encoding is unknown.
    static Retained<NSString> initWithData_encoding(NSData* data, NSStringEncoding encoding);
    static Retained<NSString> initWithContentsOfFile_encoding(NSString* path, NSStringEncoding encoding);
    static Retained<NSString> initWithContentsOfFile(NSString* path);

    // C++ only
    /// These return the format with its arguments in place; see `formatString` for the conversions.
    template <class... A>
    static NSString* stringWithFormat(NSString* format, const A&... arguments) {
        return formatString(format, detail::formatArguments(arguments...), "stringWithFormat:");
    }
    template <class... A>
    static Retained<NSString> initWithFormat(NSString* format, const A&... arguments) {
        return Retained<NSString>::retaining(
            formatString(format, detail::formatArguments(arguments...), "initWithFormat:"));
    }
    /// These copy the text into a new borrowed string. `ofUTF8` replaces bytes that are not UTF-8 by U+FFFD.
    static NSString* of(std::u16string_view units);
    static NSString* ofUTF8(std::string_view bytes);
    static NSString* ofUTF8(const char* text);

    // Primitives

    virtual NSUInteger length() = 0;
    /// The unit at the index, which is below the length.
    virtual unichar characterAtIndex(NSUInteger index) = 0;
    /// Copies the units of the range to the buffer, without a zero behind them.
    virtual void getCharacters_range(unichar* buffer, NSRange range);
    /// Copies all units to the buffer, without a zero behind them.
    void getCharacters(unichar* buffer);

    // C++ only
    /// The address of the units if the string keeps all of them in one piece of memory, else null. Valid
    /// until the string changes or ends. To read any string in one piece, use StringUnits.
    virtual const unichar* contiguousCharacters() { return nullptr; }

    // Parts and joins. Here and below, the objects that operations return are borrowed.

    NSString* substringFromIndex(NSUInteger index);
    NSString* substringToIndex(NSUInteger index);
    NSString* substringWithRange(NSRange range);
    NSString* stringByAppendingString(NSString* string);
    /// The pieces between the separators; a piece may be empty. If the string does not contain the separator,
    /// the receiver is the only piece.
    NSArray* componentsSeparatedByString(NSString* separator);
    /// The string without the members of the set at both ends.
    NSString* stringByTrimmingCharactersInSet(NSCharacterSet* set);
    NSString* stringByReplacingOccurrencesOfString_withString(NSString* target, NSString* replacement);
    /// The first `length` units of the receiver. If the receiver is shorter, units of `pad` fill the rest:
    /// from its unit at `index` to its end, and then its units again and again. "ab" padded to 7 with "123"
    /// from 1 is "ab23123".
    NSString* stringByPaddingToLength_withString_startingAtIndex(NSUInteger length, NSString* pad,
                                                                 NSUInteger index);

    // C++ only
    template <class... A>
    NSString* stringByAppendingFormat(NSString* format, const A&... arguments) {
        return stringByAppendingString(
            formatString(format, detail::formatArguments(arguments...), "stringByAppendingFormat:"));
    }

    // Comparing

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// Whether both strings have the same units. False if the other string is null.
    bool isEqualToString(NSString* other);
    /// The order of the texts by the units of their composed forms. Canonically equivalent texts compare as
    /// equal.
    NSComparisonResult compare(NSString* other);
    NSComparisonResult compare_options(NSString* other, NSStringCompareOptions options);
    /// Compares the receiver's range with the whole of `other`.
    NSComparisonResult compare_options_range(NSString* other, NSStringCompareOptions options, NSRange range);
    NSComparisonResult caseInsensitiveCompare(NSString* other);
    /// The order of words in a printed dictionary of the user's language (see UserLanguages.h).
    NSComparisonResult localizedCompare(NSString* other);
    NSComparisonResult localizedCaseInsensitiveCompare(NSString* other);
    /// Whether the string begins with the units of the prefix, or ends with the units of the suffix. False
    /// for an empty prefix or suffix.
    bool hasPrefix(NSString* prefix);
    bool hasSuffix(NSString* suffix);

    // Searching

    NSRange rangeOfString(NSString* target);
    NSRange rangeOfString_options(NSString* target, NSStringCompareOptions options);
    /// The first range inside the given range where the target stands; with NSBackwardsSearch, the last one.
    /// An empty target is found nowhere.
    ///
    /// Unless the search is literal, canonically equivalent text matches, and a match consists of whole
    /// composed characters (see `rangeOfComposedCharacterSequenceAtIndex`) of the given range: "e" is not
    /// found in "é", whether "é" is one unit or a letter and a mark, and one person is not found in the emoji
    /// of a family. There are two exceptions: CR alone and LF alone are found in a line end CR LF, and a
    /// match may end in front of a zero-width non-joiner.
    NSRange rangeOfString_options_range(NSString* target, NSStringCompareOptions options, NSRange range);
    NSRange rangeOfCharacterFromSet(NSCharacterSet* set);
    NSRange rangeOfCharacterFromSet_options(NSCharacterSet* set, NSStringCompareOptions options);
    /// The first member of the set inside the range; with NSBackwardsSearch, the last one. The result has one
    /// unit, or the two units of a surrogate pair.
    NSRange rangeOfCharacterFromSet_options_range(NSCharacterSet* set, NSStringCompareOptions options,
                                                  NSRange range);
    /// What the user sees as one character around the index: Unicode's extended grapheme cluster.
    NSRange rangeOfComposedCharacterSequenceAtIndex(NSUInteger index);

    // Case, by the rules that all languages share

    NSString* uppercaseString();
    NSString* lowercaseString();
    /// Every word with a capital first letter and the other letters in lower case.
    NSString* capitalizedString();

    // Canonical forms: "é" as a letter and a mark, or as one character

    NSString* decomposedStringWithCanonicalMapping();
    NSString* precomposedStringWithCanonicalMapping();

    // The number at the start of the string, behind white space; 0 if no number stands there. A number that
    // is too large for an integer type becomes the largest number of the type, one that is too far below 0
    // the smallest. For `float` and `double`, such a number becomes infinity with its sign.

    int intValue();
    NSInteger integerValue();
    long long longLongValue();
    float floatValue();
    double doubleValue();
    /// Whether the text begins, after white space, with Y, y, T, t or a number other than 0.
    bool boolValue();

    // Paths. "/" separates components, and several in a row count as one.

    /// "b.txt" of "/a/b.txt".
    NSString* lastPathComponent();
    /// The text behind the last full stop of the last component: "txt" of "/a/b.txt". Empty if the component
    /// has no full stop, or only one as its first character.
    NSString* pathExtension();
    /// "/a/b.txt" of "/a" and "b.txt".
    NSString* stringByAppendingPathComponent(NSString* component);
    /// "/a/b.txt" of "/a/b" and "txt". Nothing is appended to an empty path and to "/".
    NSString* stringByAppendingPathExtension(NSString* extension);
    /// "/a" of "/a/b.txt".
    NSString* stringByDeletingLastPathComponent();
    /// "/a/b" of "/a/b.txt".
    NSString* stringByDeletingPathExtension();
    /// The components in their order. A slash at the front and a slash at the end each make a component "/".
    NSArray* pathComponents();
    /// The components joined by "/". Raises NSInvalidArgumentException if a component is no string.
    static NSString* pathWithComponents(NSArray* components);
    /// Whether the path begins with "/" or "~".
    bool isAbsolutePath();
    /// The path with the home directory in place of "~" or "~user" at the front. The name of an unknown user
    /// is not replaced.
    NSString* stringByExpandingTildeInPath();
    /// The path with "~" in place of the user's home directory at the front.
    NSString* stringByAbbreviatingWithTildeInPath();
    /// The path with "~" expanded, and without "//", "/./" and a slash at the end. In an absolute path, ".."
    /// removes the component before it.
    NSString* stringByStandardizingPath();
    /// The standardized path with its symbolic links resolved, as far as the path exists.
    virtual NSString* stringByResolvingSymlinksInPath();
    /// The path as zero-terminated UTF-8 for the system's file functions. The text lives as long as the
    /// current autorelease pool.
    const char* fileSystemRepresentation();

    // Conversion

    /// Zero-terminated UTF-8 that lives as long as the current autorelease pool.
    const char* UTF8String();
    /// The text in the encoding, with a zero at the end; it lives as long as the current autorelease pool.
    /// Null if the text does not fit the encoding or the encoding is unknown.
    const char* cStringUsingEncoding(NSStringEncoding encoding);
    /// The text in the encoding. Null if the text does not fit the encoding or the encoding is unknown.
    NSData* dataUsingEncoding(NSStringEncoding encoding);
    /// If loss is allowed, characters that the encoding lacks are replaced by others; see `encodeUnits`.
    NSData* dataUsingEncoding_allowLossyConversion(NSStringEncoding encoding, bool allowLoss);
    bool canBeConvertedToEncoding(NSStringEncoding encoding);
    /// The number of bytes of `dataUsingEncoding`. 0 if the text does not fit the encoding or the encoding is
    /// unknown.
    NSUInteger lengthOfBytesUsingEncoding(NSStringEncoding encoding);
    /// NSASCIIStringEncoding if all units are ASCII, else NSUnicodeStringEncoding.
    NSStringEncoding smallestEncoding();
    /// The encoding's name in English, whatever the user's language; "" for an unknown number.
    static NSString* localizedNameOfStringEncoding(NSStringEncoding encoding);
    /// Writes the text in the encoding to the file. Returns false (NSFileError tells why) if the text does
    /// not fit the encoding or the file cannot be written. With `atomically`, the path holds the whole old
    /// file or the whole new file at every moment; `NSData::writeToFile_atomically` says what happens to
    /// links, owners and access rights, and to files that are not regular files.
    bool writeToFile_atomically_encoding(NSString* path, bool atomically, NSStringEncoding encoding);

    // C++ only
    std::u16string toUTF16();
    /// A surrogate that stands alone becomes U+FFFD.
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

/// The units of a string, or of a range of a string, in one piece of memory: the string's own memory if the
/// string keeps its units in one piece, else a copy. The string must not change or end while the units are
/// read.
///
///     StringUnits units(string);
///     for (unichar unit : units.view()) …
///
/// Make the StringUnits object a variable, as above: the view of a temporary object would outlive the object.
class PELVOR_EXPORT StringUnits {
  public:
    explicit StringUnits(NSString* string);
    /// Raises NSRangeException for a range that is not inside the string.
    StringUnits(NSString* string, NSRange range);
    StringUnits(const StringUnits&) = delete;
    StringUnits& operator=(const StringUnits&) = delete;
    ~StringUnits() {
        if (_copy != _inline) delete[] _copy;
    }

    std::u16string_view view() const& PELVOR_LIFETIMEBOUND { return {_units, _length}; }
    operator std::u16string_view() const& PELVOR_LIFETIMEBOUND { return view(); }
    const unichar* data() const& PELVOR_LIFETIMEBOUND { return _units; }
    // The compiler shows the next lines where somebody takes a view of a temporary.
    std::u16string_view view() const&& = delete;      // name the StringUnits: this one ends before its view
    operator std::u16string_view() const&& = delete;  // name the StringUnits: this one ends before its view
    const unichar* data() const&& = delete;           // name the StringUnits: this one ends before its data
    NSUInteger size() const { return _length; }
    unichar operator[](NSUInteger index) const { return _units[index]; }

  private:
    void fetch(NSString* string, NSUInteger location);

    const unichar* _units;
    NSUInteger _length;
    unichar* _copy = _inline;
    unichar _inline[48];
};

/// Prints the string as UTF-8, "(null)" for null.
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, NSString* string);

}  // namespace pelvor

#include "Foundation/NSConstantString.h"  // literals belong to every use of strings
