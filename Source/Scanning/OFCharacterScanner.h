// SPDX-License-Identifier: Apache-2.0
// OFCharacterScanner: reads UTF-16 text unit by unit out of a buffer that a source fills again and again.
#pragma once

#include <string>

#include "Foundation/NSString.h"
#include "Scanning/OFCaseConversion.h"
#include "Scanning/OFCharacterSet.h"

namespace pelvor {

class OFTrie;
class OFTrieBucket;

/// What reads answer at the end of the data.
inline constexpr unichar OFCharacterScannerEndOfDataCharacter = 0;
/// The name of the exceptions that misuse of a scanner raises.
inline constexpr char OFCharacterConversionExceptionName[] = "OFCharacterConversionException";

/// Reads characters, numbers, strings, tokens, lines and trie elements. Positions are absolute: units from
/// the start of the input, whatever the buffer holds. Marks let a reading be tried and given back:
///
///     scanner->setRewindMark();
///     if (scanner->scanString_peek(u"BEGIN"_ns, false)) scanner->discardRewindMark();
///     else scanner->rewindToMark();
///
/// This class has no source; OFStringScanner has a string. A subclass that streams overrides `fetchMoreData`
/// and, to go back further than its buffer, `_rewindCharacterSource`. At the end of the data reads answer 0,
/// false or none. Strings answered are borrowed. One thread at a time.
class PELVOR_EXPORT OFCharacterScanner : public NSObject {
    PELVOR_CLASS(OFCharacterScanner, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<OFCharacterScanner> init(Class* cls = classObject());

    // Buffer and position

    /// Puts the units from the present position on into the buffer, by one of the two operations that follow;
    /// false at the end of the data.
    virtual bool fetchMoreData();
    /// Makes the units the buffer, in place of the previous one. `offset` is the position of the first of
    /// them; the scan location stays. With `freeWhenDone` they come from `malloc` and are freed by the
    /// scanner. False, and an empty buffer, without units. Raises if the scan location is not among the
    /// units or just after them.
    bool fetchMoreDataFromCharacters_length_offset_freeWhenDone(unichar* characters, NSUInteger length,
                                                                NSUInteger offset, bool freeWhenDone);
    /// The same with a copy of the string, whose first unit is at the present position.
    bool fetchMoreDataFromString(NSString* string);
    /// Called with an empty buffer when a position outside it has been set, which `scanLocation` then
    /// answers. A source that can go there makes ready to; this class raises.
    virtual void _rewindCharacterSource();
    NSUInteger scanLocation() {
        return static_cast<NSUInteger>(_scanLocation - _inputBuffer) + _inputStringPosition;
    }
    /// Goes forward, or back as far as the last mark; otherwise raises.
    void setScanLocation(NSUInteger location);
    /// Moves within the buffer, even back, without asking for marks; beyond it like `setScanLocation`.
    void skipCharacters(NSInteger count);
    /// Remembers the position. Each mark, at most eight, needs one of the two that follow.
    void setRewindMark() {
        normalize();
        requireRoomForMark();
        _rewindMarkOffsets[_rewindMarkCount++] = scanLocation();
    }
    /// Goes to the last mark, and forgets it. Raises if there is none.
    void rewindToMark();
    /// Forgets the last mark, if there is one.
    void discardRewindMark() {
        if (_rewindMarkCount) --_rewindMarkCount;
    }
    /// Whether a unit above 126 lies before the scan location.
    bool hasScannedNonASCII() { return _firstNonASCIIOffset < scanLocation(); }

    // Characters

    unichar peekCharacter() { return hasCharacter() ? *_scanLocation : OFCharacterScannerEndOfDataCharacter; }
    /// Only after a peek that did not answer the end.
    void skipPeekedCharacter() {
        if (_scanLocation < _scanEnd) ++_scanLocation;
    }
    unichar readCharacter() {
        return hasCharacter() ? *_scanLocation++ : OFCharacterScannerEndOfDataCharacter;
    }

    // Numbers: digits as far as they go and `max` allows, a sign apart. They wrap at 2^32.

    std::uint32_t scanUnsignedIntegerMaximumDigits(NSUInteger max);
    /// After "+" or "-", which stays consumed without digits, too.
    std::int32_t scanIntegerMaximumDigits(NSUInteger max);
    std::uint32_t scanHexadecimalNumberMaximumDigits(NSUInteger max);
    /// Sign, digits with a point and exponent, within `maximumLength` units, the exponent's digits within
    /// `exponentLength`. False, with nothing consumed and `value` as it was, without a digit.
    bool scanDouble_maximumLength_exponentLength(double* value, NSUInteger maximumLength,
                                                 NSUInteger exponentLength);

    // Matching. The empty string matches everywhere.

    /// Whether the string is next; it is consumed then, unless this is a peek.
    bool scanString_peek(NSString* string, bool isPeek);
    bool scanStringCaseInsensitive_peek(NSString* string, bool isPeek);
    /// Go to the next occurrence; false, at the end of the data, if there is none.
    bool scanUpToString(NSString* string);
    bool scanUpToStringCaseInsensitive(NSString* string);
    bool scanUpToCharacter(unichar character);
    bool scanUpToCharacterInSet(NSCharacterSet* set);

    // Tokens end before a delimiter, which is not consumed. None at the end of the data; at a delimiter the
    // forms with one character answer the empty string and those with a set none. Fragments end with the
    // buffer, too.

    NSString* readTokenFragmentWithDelimiterCharacter(unichar delimiter);
    NSString* readTokenFragmentWithDelimiterOFCharacterSet(OFCharacterSet* delimiters);
    NSString* readTokenFragmentWithDelimiters(NSCharacterSet* delimiters);
    NSString* readFullTokenWithDelimiterCharacter(unichar delimiter);
    NSString* readFullTokenWithDelimiterCharacter_forceLowercase(unichar delimiter, bool forceLowercase);
    NSString* readFullTokenWithDelimiterOFCharacterSet(OFCharacterSet* delimiters);
    NSString* readFullTokenWithDelimiterOFCharacterSet_forceLowercase(OFCharacterSet* delimiters,
                                                                      bool forceLowercase);
    NSString* readFullTokenWithDelimiters_forceLowercase(NSCharacterSet* delimiters, bool forceLowercase);
    /// The members of the set that are next; none if there are none.
    NSString* readFullTokenOfSet(NSCharacterSet* set);
    /// Up to the next occurrence or the end of the data; empty for nothing.
    NSString* readFullTokenUpToString(NSString* string);
    /// Up to CR, LF or CR LF, which is consumed. None for an empty line as well as at the end.
    NSString* readLine();
    /// None, and the end of the data reached, if there are fewer.
    NSString* readCharacterCount(NSUInteger count);

    // Trie elements

    OFTrieBucket* readLongestTrieElement(OFTrie* trie);
    /// With a set, only an element that is followed by a member or the end of the data.
    OFTrieBucket* readLongestTrieElement_delimiterOFCharacterSet(OFTrie* trie, OFCharacterSet* delimiters);
    /// The first element on the way. Its last unit is not consumed if longer elements begin with it, and a
    /// failed read leaves consumed what matched; an element that no other one continues has to repeat the
    /// unit that leads to it.
    OFTrieBucket* readShortestTrieElement(OFTrie* trie);

    /// The root's dictionary with "inputStringPosition" and, while there is a buffer, "inputString",
    /// "inputStringLength" and "inputScanLocation", the place in it. Borrowed.
    NSMutableDictionary* debugDictionary();

  protected:
    OFCharacterScanner();
    ~OFCharacterScanner();

  private:
    static constexpr unsigned kMarkCapacity = 8;
    class Mark;
    class Token;

    // A source may say that there is more and bring none.
    bool hasCharacter() { return _scanLocation < _scanEnd || (fetchMoreData() && _scanLocation < _scanEnd); }
    void normalize() {
        if (_scanLocation >= _scanEnd && !fetchMoreData()) _scanLocation = _scanEnd;
    }
    std::size_t bufferedCount() const { return static_cast<std::size_t>(_scanEnd - _scanLocation); }
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
    OFCaseConversionBuffer _caseBuffer;
};

}  // namespace pelvor
