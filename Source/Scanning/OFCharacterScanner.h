// SPDX-License-Identifier: Apache-2.0
// OFCharacterScanner: reads UTF-16 text out of a buffer that a source fills again and again.
#pragma once

#include <string>

#include "Foundation/NSString.h"
#include "Scanning/OFCaseConversion.h"
#include "Scanning/OFCharacterSet.h"

namespace pelvor {

class OFTrie;
class OFTrieBucket;

/// What reads of one character return at the end of the data.
inline constexpr unichar OFCharacterScannerEndOfDataCharacter = 0;
/// The name of the exceptions that a misused scanner raises.
inline constexpr char OFCharacterConversionExceptionName[] = "OFCharacterConversionException";

/// Reads characters, numbers, strings, tokens, lines and trie elements:
///
///     auto scanner = OFStringScanner::initWithString(u"width = 12.5 cm"_ns);
///     NSString* name = scanner->readFullTokenWithDelimiterCharacter(u' ');  // "width"
///     scanner->scanUpToCharacter(u'=');
///     scanner->skipCharacters(2);
///     double value = 0;
///     scanner->scanDouble_maximumLength_exponentLength(&value, 20, 3);  // 12.5
///
/// Positions are absolute: they count UTF-16 units from the start of the input, whatever part of it is in the
/// buffer. Rewind marks let a caller try a reading and take it back:
///
///     scanner->setRewindMark();
///     if (scanner->scanString_peek(u"BEGIN"_ns, false)) scanner->discardRewindMark();
///     else scanner->rewindToMark();
///
/// This class has no source of text. OFStringScanner reads a string; a subclass that reads something else
/// overrides `fetchMoreData` and, if it can go back further than its buffer, `_rewindCharacterSource`.
/// `Examples/FileScanner.h` is such a subclass, to be copied.
///
/// At the end of the data reads return 0, false or null. The strings and elements that they return are
/// borrowed. A null string raises NSInvalidArgumentException; a null set has no members. A misused mark or
/// location raises OFCharacterConversionExceptionName. One thread at a time.
class PELVOR_EXPORT OFCharacterScanner : public NSObject {
    PELVOR_CLASS(OFCharacterScanner, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<OFCharacterScanner> init(Class* cls = classObject());

    // Buffer and position

    /// The scanner calls this when its buffer is used up. An override puts the units from `scanLocation()` on
    /// into the buffer, by one of the two operations that follow, and returns their result; it returns false
    /// at the end of the data. This class has no data.
    virtual bool fetchMoreData();
    /// Replaces the buffer by `length` units. The first unit stands at the position `offset` of the input.
    /// The scan location does not change; the operation raises unless this location is among these units or
    /// just behind the last one. With `freeWhenDone`, the units were allocated by `malloc`, and the scanner
    /// frees them; without, the caller keeps them unchanged as long as they are the buffer. Returns false,
    /// and leaves an empty buffer, if the pointer is null or the length is 0.
    bool fetchMoreDataFromCharacters_length_offset_freeWhenDone(unichar* characters, NSUInteger length,
                                                                NSUInteger offset, bool freeWhenDone);
    /// Replaces the buffer by a copy of the string, whose first unit stands at the scan location. Returns
    /// false, and leaves an empty buffer, for an empty string or null.
    bool fetchMoreDataFromString(NSString* string);
    /// The scanner calls this when it has moved to a position outside the buffer: the buffer is empty then,
    /// and `scanLocation()` is the new position. An override makes the source ready to go on from there. This
    /// class raises "Attempt to rewind a nonrewindable stream".
    virtual void _rewindCharacterSource();
    /// The position of the next unit to be read: how many units of the input come before it.
    NSUInteger scanLocation() {
        return static_cast<NSUInteger>(_scanLocation - _inputBuffer) + _inputStringPosition;
    }
    /// Moves to the location, which may be anywhere ahead. It may be behind the scan location only if there
    /// is a rewind mark, and not before the most recent mark. Raises for another location, and for a location
    /// that the source cannot go to.
    void setScanLocation(NSUInteger location);
    /// Moves forward by `count` units, or back if `count` is negative. A move inside the buffer may pass a
    /// rewind mark; a move out of the buffer follows the rules of `setScanLocation`.
    void skipCharacters(NSInteger count);
    /// Remembers the scan location. There can be eight marks; each of them is ended by one of the two
    /// operations that follow. A ninth mark raises.
    void setRewindMark() {
        normalize();
        requireRoomForMark();
        _rewindMarkOffsets[_rewindMarkCount++] = scanLocation();
    }
    /// Moves to the most recent mark and forgets the mark. Raises if there is no mark. Raises, and keeps the
    /// mark, if the source cannot go back to it.
    void rewindToMark();
    /// Forgets the most recent mark, if there is one.
    void discardRewindMark() {
        if (_rewindMarkCount) --_rewindMarkCount;
    }
    /// Whether a unit above U+007E lies before the scan location.
    bool hasScannedNonASCII() { return _firstNonASCIIOffset < scanLocation(); }

    // Characters

    /// The next unit. The unit is not consumed.
    unichar peekCharacter() { return hasCharacter() ? *_scanLocation : OFCharacterScannerEndOfDataCharacter; }
    /// Consumes the unit that `peekCharacter` has just returned.
    void skipPeekedCharacter() {
        if (_scanLocation < _scanEnd) ++_scanLocation;
    }
    /// Consumes the next unit and returns it.
    unichar readCharacter() {
        return hasCharacter() ? *_scanLocation++ : OFCharacterScannerEndOfDataCharacter;
    }

    // Numbers. The three operations that read an integer take at most `max` digits and return 0 if no digit
    // is next. An integer of 2^32 or more keeps its low 32 bits.

    std::uint32_t scanUnsignedIntegerMaximumDigits(NSUInteger max);
    /// Reads a "+" or "-" first, which is no digit. A sign without digits behind it stays consumed.
    std::int32_t scanIntegerMaximumDigits(NSUInteger max);
    /// Reads hexadecimal digits of either case. A "0x" before them is not understood.
    std::uint32_t scanHexadecimalNumberMaximumDigits(NSUInteger max);
    /// Reads a sign, digits with at most one point among them, and "e" with an exponent, within
    /// `maximumLength` units; the exponent has at most `exponentLength` digits. An exponent that is too large
    /// makes the number infinite, or 0 if the exponent is negative. Without a digit it returns false,
    /// consumes nothing and leaves `value` alone. Raises NSInvalidArgumentException if `value` is null.
    bool scanDouble_maximumLength_exponentLength(double* value, NSUInteger maximumLength,
                                                 NSUInteger exponentLength);

    // Matching. The empty string matches everywhere.

    /// Whether the string comes next. A string that matches is consumed, unless this is a peek.
    bool scanString_peek(NSString* string, bool isPeek);
    /// Whether the string comes next, with each of its units in upper or in lower case. The units that match
    /// are consumed, unless this is a peek.
    bool scanStringCaseInsensitive_peek(NSString* string, bool isPeek);
    // Moving to the next occurrence, which is not consumed. If there is no further occurrence, these return
    // false, and the scanner is at the end of the data.

    bool scanUpToString(NSString* string);
    bool scanUpToStringCaseInsensitive(NSString* string);
    bool scanUpToCharacter(unichar character);
    bool scanUpToCharacterInSet(NSCharacterSet* set);

    // Tokens. A token ends before a delimiter, which is not consumed, or at the end of the data; a fragment
    // ends with the buffer, too. At the end of the data the result is null. At a delimiter the forms that
    // take one character return an empty string, and those that take a set return null.

    NSString* readTokenFragmentWithDelimiterCharacter(unichar delimiter);
    NSString* readTokenFragmentWithDelimiterOFCharacterSet(OFCharacterSet* delimiters);
    NSString* readTokenFragmentWithDelimiters(NSCharacterSet* delimiters);
    NSString* readFullTokenWithDelimiterCharacter(unichar delimiter);
    NSString* readFullTokenWithDelimiterCharacter_forceLowercase(unichar delimiter, bool forceLowercase);
    NSString* readFullTokenWithDelimiterOFCharacterSet(OFCharacterSet* delimiters);
    NSString* readFullTokenWithDelimiterOFCharacterSet_forceLowercase(OFCharacterSet* delimiters,
                                                                      bool forceLowercase);
    NSString* readFullTokenWithDelimiters_forceLowercase(NSCharacterSet* delimiters, bool forceLowercase);
    /// The longest run of members of the set that comes next; null if the next unit is no member.
    NSString* readFullTokenOfSet(NSCharacterSet* set);
    /// The text before the next occurrence of the string, or before the end of the data; it may be empty.
    NSString* readFullTokenUpToString(NSString* string);
    /// The text before the next CR, LF or CR LF; this line end is consumed. Null for an empty line, and also
    /// at the end of the data; `peekCharacter` tells the two apart before the call.
    NSString* readLine();
    /// The next `count` units. If fewer units are left, the result is null, and the scanner is at the end of
    /// the data.
    NSString* readCharacterCount(NSUInteger count);

    // Trie elements: the buckets of the words of a trie. The result is null if no word of the trie comes
    // next.

    OFTrieBucket* readLongestTrieElement(OFTrie* trie);
    /// Reads the longest word that is followed by a member of the set or by the end of the data. A null set
    /// does not restrict what follows.
    OFTrieBucket* readLongestTrieElement_delimiterOFCharacterSet(OFTrie* trie, OFCharacterSet* delimiters);
    /// Reads the shortest word that comes next, with three oddities:
    /// - If longer words of the trie begin with this word, the word's last unit is not consumed.
    /// - If a unit leads straight to a bucket, that unit itself is compared once more, with the first of the
    ///   bucket's remaining units: a trie whose only word is "aab" finds the word where the input has "ab",
    ///   and not where it has "aab".
    /// - If no word is found, the units that were compared with success stay consumed.
    OFTrieBucket* readShortestTrieElement(OFTrie* trie);

    /// The debug dictionary of every object, with "inputStringPosition" (the position of the buffer's first
    /// unit) added and, while there is a buffer, "inputString", "inputStringLength" and "inputScanLocation"
    /// (the place in the buffer). Borrowed.
    NSMutableDictionary* debugDictionary();

  protected:
    OFCharacterScanner();
    ~OFCharacterScanner();

  private:
    static constexpr unsigned kMarkCapacity = 8;
    class Mark;
    class Token;

    // A source may say that there is more and bring nothing.
    bool hasCharacter() { return _scanLocation < _scanEnd || (fetchMoreData() && _scanLocation < _scanEnd); }
    void normalize() {
        if (_scanLocation >= _scanEnd && !fetchMoreData()) _scanLocation = _scanEnd;
    }
    std::u16string_view buffered() const { return {_scanLocation, _scanEnd}; }
    void findNonASCII();
    // Goes anywhere, whatever marks there are.
    void moveTo(NSUInteger location);
    void requireRoomForMark() {
        if (_rewindMarkCount == kMarkCapacity) raiseTooManyMarks();
    }
    [[noreturn]] static void raiseTooManyMarks();
    bool matches(std::u16string_view lower, std::u16string_view upper);
    bool matchesHere(std::u16string_view lower, std::u16string_view upper);
    template <class Find>
    bool scanUpTo(Find find);
    template <class Find>
    bool scanUpToText(std::u16string_view lower, std::u16string_view upper, Find find);
    template <class Find>
    std::u16string_view takeUpTo(Find find);
    template <class Find>
    NSString* readFragment(Find find);
    template <class Find>
    void readPieces(Find find, Token& token);
    std::int64_t scanExponent(NSUInteger room, NSUInteger exponentLength);
    OFTrieBucket* finishElement(Mark& mark, OFTrieBucket* bucket, OFCharacterSet* delimiters);
    bool matchesRemainder(OFTrieBucket* bucket);

    std::uint32_t _rewindMarkOffsets[kMarkCapacity];
    std::uint16_t _rewindMarkCount = 0;
    std::uint32_t _firstNonASCIIOffset = NSNotFound;
    unichar* _inputBuffer = nullptr;
    unichar* _scanLocation = nullptr;
    unichar* _scanEnd = nullptr;
    std::uint32_t _inputStringPosition = 0;
    bool _freeInputBuffer = false;
    bool _hasFailedToRewind = false;
    OFCaseConversionBuffer _caseBuffer;
};

}  // namespace pelvor
