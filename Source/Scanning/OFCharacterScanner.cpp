// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFCharacterScanner.h"

#include <cstdlib>

#include "BaseLibrary.h"
#include "Foundation/NSCharacterSet.h"
#include "Runtime/NSException.h"
#include "Scanning/NSObject-OFDebugging.h"
#include "Scanning/OFTrie.h"
#include "Scanning/Private/CaseForms.h"
#include "Scanning/Private/ScannerMark.h"
#include "Scanning/Private/TrieIndex.h"
#include "Scanning/Private/UnitSpans.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(OFCharacterScanner, baseLibrary) {
    using Self = OFCharacterScanner;
    methods.creator<"init", &Self::init>();
    methods.instance<"fetchMoreData", &Self::fetchMoreData>();
    methods.instance<"fetchMoreDataFromCharacters:length:offset:freeWhenDone:",
                     &Self::fetchMoreDataFromCharacters_length_offset_freeWhenDone>();
    methods.instance<"fetchMoreDataFromString:", &Self::fetchMoreDataFromString>();
    methods.instance<"_rewindCharacterSource", &Self::_rewindCharacterSource>();
    methods.instance<"scanLocation", &Self::scanLocation>();
    methods.instance<"setScanLocation:", &Self::setScanLocation>();
    methods.instance<"skipCharacters:", &Self::skipCharacters>();
    methods.instance<"setRewindMark", &Self::setRewindMark>();
    methods.instance<"rewindToMark", &Self::rewindToMark>();
    methods.instance<"discardRewindMark", &Self::discardRewindMark>();
    methods.instance<"hasScannedNonASCII", &Self::hasScannedNonASCII>();
    methods.instance<"peekCharacter", &Self::peekCharacter>();
    methods.instance<"skipPeekedCharacter", &Self::skipPeekedCharacter>();
    methods.instance<"readCharacter", &Self::readCharacter>();
    methods.instance<"scanUnsignedIntegerMaximumDigits:", &Self::scanUnsignedIntegerMaximumDigits>();
    methods.instance<"scanIntegerMaximumDigits:", &Self::scanIntegerMaximumDigits>();
    methods.instance<"scanHexadecimalNumberMaximumDigits:", &Self::scanHexadecimalNumberMaximumDigits>();
    methods.instance<"scanDouble:maximumLength:exponentLength:",
                     &Self::scanDouble_maximumLength_exponentLength>();
    methods.instance<"scanString:peek:", &Self::scanString_peek>();
    methods.instance<"scanStringCaseInsensitive:peek:", &Self::scanStringCaseInsensitive_peek>();
    methods.instance<"scanUpToString:", &Self::scanUpToString>();
    methods.instance<"scanUpToStringCaseInsensitive:", &Self::scanUpToStringCaseInsensitive>();
    methods.instance<"scanUpToCharacter:", &Self::scanUpToCharacter>();
    methods.instance<"scanUpToCharacterInSet:", &Self::scanUpToCharacterInSet>();
    methods.instance<"readTokenFragmentWithDelimiterCharacter:",
                     &Self::readTokenFragmentWithDelimiterCharacter>();
    methods.instance<"readTokenFragmentWithDelimiterOFCharacterSet:",
                     &Self::readTokenFragmentWithDelimiterOFCharacterSet>();
    methods.instance<"readTokenFragmentWithDelimiters:", &Self::readTokenFragmentWithDelimiters>();
    methods.instance<"readFullTokenWithDelimiterCharacter:", &Self::readFullTokenWithDelimiterCharacter>();
    methods.instance<"readFullTokenWithDelimiterCharacter:forceLowercase:",
                     &Self::readFullTokenWithDelimiterCharacter_forceLowercase>();
    methods.instance<"readFullTokenWithDelimiterOFCharacterSet:",
                     &Self::readFullTokenWithDelimiterOFCharacterSet>();
    methods.instance<"readFullTokenWithDelimiterOFCharacterSet:forceLowercase:",
                     &Self::readFullTokenWithDelimiterOFCharacterSet_forceLowercase>();
    methods.instance<"readFullTokenWithDelimiters:forceLowercase:",
                     &Self::readFullTokenWithDelimiters_forceLowercase>();
    methods.instance<"readFullTokenOfSet:", &Self::readFullTokenOfSet>();
    methods.instance<"readFullTokenUpToString:", &Self::readFullTokenUpToString>();
    methods.instance<"readLine", &Self::readLine>();
    methods.instance<"readCharacterCount:", &Self::readCharacterCount>();
    methods.instance<"readLongestTrieElement:", &Self::readLongestTrieElement>();
    methods.instance<"readLongestTrieElement:delimiterOFCharacterSet:",
                     &Self::readLongestTrieElement_delimiterOFCharacterSet>();
    methods.instance<"readShortestTrieElement:", &Self::readShortestTrieElement>();
    methods.instance<"debugDictionary", &Self::debugDictionary>();
}

OFCharacterScanner::OFCharacterScanner() { OFCaseConversionBufferInit(&_caseBuffer); }

OFCharacterScanner::~OFCharacterScanner() {
    if (_freeInputBuffer) std::free(_inputBuffer);
    OFCaseConversionBufferDestroy(&_caseBuffer);
}

Retained<OFCharacterScanner> OFCharacterScanner::init(Class* cls) { return make<OFCharacterScanner>(cls); }

namespace {

[[noreturn]] void raise(const char* reason) { throw NSException(OFCharacterConversionExceptionName, reason); }

[[noreturn]] void raiseBadLocation() {
    raise(
        "You are only allowed to set the new scan location to be between the most recent rewind mark and "
        "EOF, or the current position and EOF if there are no rewind marks.");
}

void requireString(NSString* string, const char* operation) {
    if (!string) throw NSException(NSInvalidArgumentException, std::string(operation) + " none given");
}

}  // namespace

// MARK: Buffer and position

bool OFCharacterScanner::fetchMoreData() { return false; }

void OFCharacterScanner::_rewindCharacterSource() { raise("Attempt to rewind a nonrewindable stream"); }

bool OFCharacterScanner::fetchMoreDataFromCharacters_length_offset_freeWhenDone(unichar* characters,
                                                                                NSUInteger length,
                                                                                NSUInteger offset,
                                                                                bool freeWhenDone) {
    NSUInteger location = scanLocation();
    bool isEmpty = !characters || !length;
    if (!isEmpty && (location < offset || location - offset > length))
        raise("The new buffer does not hold the scan location");
    if (_freeInputBuffer) std::free(_inputBuffer);
    _freeInputBuffer = freeWhenDone && !isEmpty;
    _inputStringPosition = offset;
    _inputBuffer = _scanLocation = _scanEnd = nullptr;
    if (isEmpty) {
        if (freeWhenDone) std::free(characters);
        return false;
    }
    _inputBuffer = characters;
    _scanLocation = characters + (location - offset);
    _scanEnd = characters + length;
    findNonASCII();
    return true;
}

void OFCharacterScanner::findNonASCII() {
    if (_firstNonASCIIOffset != NSNotFound) return;
    unichar* found = findAbove(_inputBuffer, _scanEnd, 126);
    if (found != _scanEnd)
        _firstNonASCIIOffset = _inputStringPosition + static_cast<NSUInteger>(found - _inputBuffer);
}

bool OFCharacterScanner::fetchMoreDataFromString(NSString* string) {
    NSUInteger length = string ? string->length() : 0;
    unichar* units = nullptr;
    if (length) {
        units = static_cast<unichar*>(std::malloc(std::size_t{length} * sizeof(unichar)));
        if (!units) throw NSException(NSMallocException, "no memory for a scanner's buffer");
        string->getCharacters_range(units, {0, length});
    }
    return fetchMoreDataFromCharacters_length_offset_freeWhenDone(units, length, scanLocation(), true);
}

void OFCharacterScanner::setScanLocation(NSUInteger location) {
    normalize();
    if (location < scanLocation() &&
        (!_rewindMarkCount || location < _rewindMarkOffsets[_rewindMarkCount - 1]))
        raiseBadLocation();
    moveTo(location);
}

void OFCharacterScanner::moveTo(NSUInteger location) {
    auto length = static_cast<NSUInteger>(_scanEnd - _inputBuffer);
    if (location >= _inputStringPosition && location - _inputStringPosition <= length) {
        _scanLocation = _inputBuffer + (location - _inputStringPosition);
        return;
    }
    _scanEnd = _scanLocation = _inputBuffer;
    _inputStringPosition = location;
    _rewindCharacterSource();
}

void OFCharacterScanner::skipCharacters(NSInteger count) {
    std::ptrdiff_t place = _scanLocation - _inputBuffer + std::ptrdiff_t{count};
    if (place >= 0 && place < _scanEnd - _inputBuffer)
        _scanLocation = _inputBuffer + place;
    else if (std::int64_t{scanLocation()} + count < 0)
        raiseBadLocation();
    else
        setScanLocation(scanLocation() + static_cast<NSUInteger>(count));
}

void OFCharacterScanner::raiseTooManyMarks() { raise("Attempt to set more than eight rewind marks"); }

void OFCharacterScanner::rewindToMark() {
    if (!_rewindMarkCount) raise("Attempt to use nonexistent rewind mark");
    setScanLocation(_rewindMarkOffsets[_rewindMarkCount - 1]);
    --_rewindMarkCount;
}

// MARK: Matching

// Whether each unit that is next equals one form's; consumes those that do.
bool OFCharacterScanner::matches(std::u16string_view lower, std::u16string_view upper) {
    for (std::size_t i = 0; i < lower.size(); ++i) {
        unichar unit = peekCharacter();
        if (unit != lower[i] && unit != upper[i]) return false;
        skipPeekedCharacter();
    }
    return true;
}

bool OFCharacterScanner::scanString_peek(NSString* string, bool isPeek) {
    requireString(string, "scanString:peek:");
    StringUnits text(string);
    Mark mark(*this);
    bool isMatch = matches(text, text);
    return mark.finish(isMatch && !isPeek, isMatch);
}

bool OFCharacterScanner::scanStringCaseInsensitive_peek(NSString* string, bool isPeek) {
    requireString(string, "scanStringCaseInsensitive:peek:");
    if (!string->length()) return true;
    CaseForms forms = caseFormsOf(string);
    Mark mark(*this);
    bool isMatch = matches(forms.lower, forms.upper);
    return mark.finish(isMatch && !isPeek, isMatch);
}

template <class Find>
bool OFCharacterScanner::scanUpTo(Find find) {
    while (hasCharacter()) {
        _scanLocation = find(_scanLocation, _scanEnd);
        if (_scanLocation < _scanEnd) return true;
    }
    return false;
}

// Whether the text is next, with the place as it was.
bool OFCharacterScanner::matchesHere(std::u16string_view lower, std::u16string_view upper) {
    if (bufferedCount() >= lower.size()) {
        // It takes no mark, but fails where one is too many as it does at the buffer's end.
        requireRoomForMark();
        for (std::size_t i = 0; i < lower.size(); ++i)
            if (_scanLocation[i] != lower[i] && _scanLocation[i] != upper[i]) return false;
        return true;
    }
    Mark mark(*this);
    return mark.finish(false, matches(lower, upper));
}

template <class Find>
bool OFCharacterScanner::scanUpToText(std::u16string_view lower, std::u16string_view upper, Find find) {
    while (scanUpTo(find)) {
        if (matchesHere(lower, upper)) return true;
        // The match may have taken the buffer away and brought back another.
        if (hasCharacter()) ++_scanLocation;
    }
    return false;
}

bool OFCharacterScanner::scanUpToString(NSString* string) {
    requireString(string, "scanUpToString:");
    if (!string->length()) return true;
    StringUnits text(string);
    // Where the whole text can be in the buffer its last unit must follow, too.
    std::size_t distance = text.size() - 1;
    unichar first = text[0], last = text[static_cast<NSUInteger>(distance)];
    return scanUpToText(text, text, [=](unichar* place, unichar* end) {
        if (static_cast<std::size_t>(end - place) > distance) {
            unichar* found = findPair(place, end - distance, first, last, distance);
            if (found < end - distance) return found;
            place = found;
        }
        return findUnit(place, end, first);
    });
}

bool OFCharacterScanner::scanUpToStringCaseInsensitive(NSString* string) {
    requireString(string, "scanUpToStringCaseInsensitive:");
    if (!string->length()) return true;
    CaseForms forms = caseFormsOf(string);
    auto first = OFCharacterSet::init();
    first->addCharacter(forms.lower[0]);
    first->addCharacter(forms.upper[0]);
    return scanUpToText(forms.lower, forms.upper, [&](unichar* place, unichar* end) {
        return findMember(place, end, first->bitmapRep());
    });
}

bool OFCharacterScanner::scanUpToCharacter(unichar character) {
    return scanUpTo([=](unichar* place, unichar* end) { return findUnit(place, end, character); });
}

bool OFCharacterScanner::scanUpToCharacterInSet(NSCharacterSet* set) {
    auto members = OFCharacterSet::initWithCharacterSet(set);
    return scanUpTo(
        [&](unichar* place, unichar* end) { return findMember(place, end, members->bitmapRep()); });
}

// MARK: Tokens

namespace {

// Where tokens end.
struct AtUnit {
    unichar unit;
    unichar* operator()(unichar* place, unichar* end) const { return findUnit(place, end, unit); }
    static constexpr bool mayBeEmpty = true;
};
struct AtMember {
    OFCharacterSet* set;
    unichar* operator()(unichar* place, unichar* end) const {
        return set ? findMember(place, end, set->bitmapRep()) : end;
    }
    static constexpr bool mayBeEmpty = false;
};

}  // namespace

// The pieces of a token: one, as a rule.
class OFCharacterScanner::Token {
  public:
    /// With a record, each piece is lower-cased by itself.
    explicit Token(OFCaseConversionBuffer* lowering = nullptr) : _lowering(lowering) {}

    void add(std::u16string_view units) {
        NSString* piece = _lowering ? OFCreateStringByLowercasingCharacters(
                                          _lowering, units.data(), static_cast<NSUInteger>(units.size()))
                                          .autorelease()
                                    : NSString::of(units);
        if (!_string) {
            _string = piece;
            return;
        }
        if (!_joined) {
            _joined = NSMutableString::initWithString(_string);
            _string = _joined;
        }
        _joined->appendString(piece);
    }
    NSString* string() { return _joined ? _joined->copy().autorelease() : _string; }

  private:
    OFCaseConversionBuffer* _lowering;
    NSString* _string = nullptr;
    Retained<NSMutableString> _joined;
};

template <class Find>
NSString* OFCharacterScanner::readFragment(Find find) {
    if (!hasCharacter()) return nullptr;
    unichar* start = _scanLocation;
    _scanLocation = find(start, _scanEnd);
    if (_scanLocation == start && !Find::mayBeEmpty) return nullptr;
    return NSString::of({start, static_cast<std::size_t>(_scanLocation - start)});
}

NSString* OFCharacterScanner::readTokenFragmentWithDelimiterCharacter(unichar delimiter) {
    return readFragment(AtUnit{delimiter});
}

NSString* OFCharacterScanner::readTokenFragmentWithDelimiterOFCharacterSet(OFCharacterSet* delimiters) {
    return readFragment(AtMember{delimiters});
}

NSString* OFCharacterScanner::readTokenFragmentWithDelimiters(NSCharacterSet* delimiters) {
    auto set = OFCharacterSet::initWithCharacterSet(delimiters);
    return readFragment(AtMember{set});
}

template <class Find>
void OFCharacterScanner::readPieces(Find find, Token& token) {
    while (hasCharacter()) {
        unichar* start = _scanLocation;
        _scanLocation = find(start, _scanEnd);
        if (_scanLocation == start && !Find::mayBeEmpty) return;
        token.add({start, static_cast<std::size_t>(_scanLocation - start)});
        if (_scanLocation < _scanEnd) return;
    }
}

NSString* OFCharacterScanner::readFullTokenWithDelimiterCharacter(unichar delimiter) {
    Token token;
    readPieces(AtUnit{delimiter}, token);
    return token.string();
}

NSString* OFCharacterScanner::readFullTokenWithDelimiterCharacter_forceLowercase(unichar delimiter,
                                                                                 bool forceLowercase) {
    NSString* token = readFullTokenWithDelimiterCharacter(delimiter);
    return token && forceLowercase ? token->lowercaseString() : token;
}

NSString* OFCharacterScanner::readFullTokenWithDelimiterOFCharacterSet(OFCharacterSet* delimiters) {
    return readFullTokenWithDelimiterOFCharacterSet_forceLowercase(delimiters, false);
}

NSString* OFCharacterScanner::readFullTokenWithDelimiterOFCharacterSet_forceLowercase(
    OFCharacterSet* delimiters, bool forceLowercase) {
    Token token(forceLowercase ? &_caseBuffer : nullptr);
    readPieces(AtMember{delimiters}, token);
    return token.string();
}

NSString* OFCharacterScanner::readFullTokenWithDelimiters_forceLowercase(NSCharacterSet* delimiters,
                                                                         bool forceLowercase) {
    auto set = OFCharacterSet::initWithCharacterSet(delimiters);
    return readFullTokenWithDelimiterOFCharacterSet_forceLowercase(set, forceLowercase);
}

NSString* OFCharacterScanner::readFullTokenOfSet(NSCharacterSet* set) {
    auto others = OFCharacterSet::initWithCharacterSet(set);
    others->invert();
    return readFullTokenWithDelimiterOFCharacterSet(others);
}

NSString* OFCharacterScanner::readFullTokenUpToString(NSString* string) {
    Mark mark(*this);
    NSUInteger start = scanLocation();
    scanUpToString(string);
    NSUInteger end = scanLocation();
    mark.goBack();
    return readCharacterCount(end - start);
}

NSString* OFCharacterScanner::readLine() {
    static OFCharacterSet* const lineEnds = OFCharacterSet::initWithString(u"\r\n"_ns).leak();
    NSString* line = readFullTokenWithDelimiterOFCharacterSet(lineEnds);
    if (peekCharacter() == u'\r') ++_scanLocation;
    if (peekCharacter() == u'\n') ++_scanLocation;
    return line;
}

NSString* OFCharacterScanner::readCharacterCount(NSUInteger count) {
    Retained<NSMutableString> pieces;
    while (bufferedCount() < count) {
        auto buffered = static_cast<NSUInteger>(bufferedCount());
        if (!pieces) pieces = NSMutableString::init();
        pieces->append({_scanLocation, buffered});
        count -= buffered;
        _scanLocation = _scanEnd;
        if (!fetchMoreData()) return nullptr;
    }
    std::u16string_view rest(_scanLocation, count);
    _scanLocation += count;
    if (!pieces) return NSString::of(rest);
    pieces->append(rest);
    return pieces->copy().autorelease();
}

// MARK: Trie elements

// Consumes the remaining units of the bucket; false at one that is not next.
bool OFCharacterScanner::matchesRemainder(OFTrieBucket* bucket) {
    const unichar *lower = bucket->lowerCharacters(), *upper = bucket->upperCharacters();
    for (; *lower; ++lower, ++upper) {
        unichar unit = peekCharacter();
        if (unit != *lower && unit != *upper) return false;
        ++_scanLocation;
    }
    return true;
}

// The bucket, or none and back at the mark if a delimiter should follow and does not.
OFTrieBucket* OFCharacterScanner::finishElement(Mark& mark, OFTrieBucket* bucket,
                                                OFCharacterSet* delimiters) {
    bool isFound = bucket;
    if (isFound && delimiters) {
        unichar next = peekCharacter();
        isFound = next == OFCharacterScannerEndOfDataCharacter || delimiters->characterIsMember(next);
    }
    return mark.finish(isFound, isFound) ? bucket : nullptr;
}

OFTrieBucket* OFCharacterScanner::readLongestTrieElement(OFTrie* trie) {
    return readLongestTrieElement_delimiterOFCharacterSet(trie, nullptr);
}

OFTrieBucket* OFCharacterScanner::readLongestTrieElement_delimiterOFCharacterSet(OFTrie* trie,
                                                                                 OFCharacterSet* delimiters) {
    OFTrieNode* node = trie ? trie->headNode() : nullptr;
    if (!node || !node->childCount()) return nullptr;
    normalize();
    requireRoomForMark();
    TrieIndex::Found found;
    const TrieIndex* index = trie->index();
    if (index && index->findLongest(_scanLocation, _scanEnd, delimiters, found)) {
        if (found.bucket) _scanLocation += found.length;
        return found.bucket;
    }
    Mark mark(*this);
    OFTrieBucket* last = nullptr;
    NSUInteger lastEnd = 0;
    while (unichar unit = peekCharacter()) {
        OFTrieNode::Child child = node->childForCharacter(unit);
        if (!child) break;
        ++_scanLocation;
        if (child.bucket) {
            if (matchesRemainder(child.bucket)) return finishElement(mark, child.bucket, delimiters);
            break;
        }
        node = child.node;
        if (OFTrieBucket* bucket = node->endMarker()) {
            last = bucket;
            lastEnd = scanLocation();
        }
    }
    if (last) setScanLocation(lastEnd);
    return finishElement(mark, last, delimiters);
}

OFTrieBucket* OFCharacterScanner::readShortestTrieElement(OFTrie* trie) {
    OFTrieNode* node = trie ? trie->headNode() : nullptr;
    while (node && node->childCount()) {
        unichar unit = peekCharacter();
        if (!unit) return nullptr;
        OFTrieNode::Child child = node->childForCharacter(unit);
        if (child.bucket) return matchesRemainder(child.bucket) ? child.bucket : nullptr;
        node = child.node;
        if (!node) return nullptr;
        if (OFTrieBucket* bucket = node->endMarker()) return bucket;
        ++_scanLocation;
    }
    return nullptr;
}

// MARK: Debugging

NSMutableDictionary* OFCharacterScanner::debugDictionary() {
    NSMutableDictionary* dictionary = pelvor::debugDictionary(this);
    auto setNumber = [&](NSString* key, NSUInteger number) {
        dictionary->setObject_forKey(NSString::stringWithFormat(u"%d"_ns, number), key);
    };
    if (_inputBuffer) {
        std::u16string_view text(_inputBuffer, static_cast<std::size_t>(_scanEnd - _inputBuffer));
        dictionary->setObject_forKey(NSString::of(text), u"inputString"_ns);
        setNumber(u"inputStringLength"_ns, static_cast<NSUInteger>(text.size()));
        setNumber(u"inputScanLocation"_ns, static_cast<NSUInteger>(_scanLocation - _inputBuffer));
    }
    setNumber(u"inputStringPosition"_ns, _inputStringPosition);
    return dictionary;
}

}  // namespace pelvor
