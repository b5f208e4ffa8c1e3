// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFCharacterScanner.h"

#include <cstdlib>
#include <memory>

#include "BaseLibrary.h"
#include "Foundation/NSCharacterSet.h"
#include "Private/UnitFinding.h"
#include "Runtime/NSException.h"
#include "Scanning/NSObject-OFDebugging.h"
#include "Scanning/OFTrie.h"
#include "Scanning/Private/CaseForms.h"
#include "Scanning/Private/ScannerMark.h"
#include "Scanning/Private/TrieIndex.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/SequenceSearch.h"

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

// Where a reading stops in the units that are buffered.
struct AtUnit {
    unichar unit;
    std::size_t operator()(std::u16string_view buffered) const { return findUnit(buffered, unit); }
    static constexpr bool mayBeEmpty = true;
};
struct AtMember {
    Unretained<OFCharacterSet> set;
    std::size_t operator()(std::u16string_view buffered) const {
        return set ? findMember(buffered, set->bitmapRep()) : buffered.size();
    }
    static constexpr bool mayBeEmpty = false;
};

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
        raiseException(
            OFCharacterConversionExceptionName,
            u"fetchMoreDataFromCharacters:length:offset:freeWhenDone: the units from %u to %u do not hold "
            u"the scan location %u"_ns,
            offset, offset + length, location);
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
    std::u16string_view text(_inputBuffer, _scanEnd);
    std::size_t place = findAbove(text, 126);
    if (place < text.size()) _firstNonASCIIOffset = _inputStringPosition + static_cast<NSUInteger>(place);
}

bool OFCharacterScanner::fetchMoreDataFromString(NSString* string) {
    NSUInteger length = string ? string->length() : 0;
    std::unique_ptr<unichar, decltype(&std::free)> units(nullptr, &std::free);
    if (length) {
        units.reset(static_cast<unichar*>(std::malloc(std::size_t{length} * sizeof(unichar))));
        if (!units) throw NSException(NSMallocException, "fetchMoreDataFromString: no memory for the buffer");
        string->getCharacters_range(units.get(), {0, length});
    }
    return fetchMoreDataFromCharacters_length_offset_freeWhenDone(units.release(), length, scanLocation(),
                                                                  true);
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
    _hasFailedToRewind = true;
    _rewindCharacterSource();
    _hasFailedToRewind = false;
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

void OFCharacterScanner::raiseTooManyMarks() { raise("setRewindMark: there are eight rewind marks already"); }

void OFCharacterScanner::rewindToMark() {
    if (!_rewindMarkCount) raise("Attempt to use nonexistent rewind mark");
    setScanLocation(_rewindMarkOffsets[_rewindMarkCount - 1]);
    --_rewindMarkCount;
}

// MARK: Matching

// Whether each of the next units equals the unit of one of the two forms. Consumes the units that do.
bool OFCharacterScanner::matches(std::u16string_view lower, std::u16string_view upper) {
    for (std::size_t i = 0; i < lower.size(); ++i) {
        unichar unit = peekCharacter();
        if (unit != lower[i] && unit != upper[i]) return false;
        skipPeekedCharacter();
    }
    return true;
}

bool OFCharacterScanner::scanString_peek(NSString* string, bool isPeek) {
    requireArgument(string, "scanString:peek:", "the string");
    StringUnits text(string);
    Mark mark(*this);
    bool isMatch = matches(text, text);
    return mark.finish(isMatch && !isPeek, isMatch);
}

bool OFCharacterScanner::scanStringCaseInsensitive_peek(NSString* string, bool isPeek) {
    requireArgument(string, "scanStringCaseInsensitive:peek:", "the string");
    if (!string->length()) return true;
    CaseForms forms = caseFormsOf(string);
    Mark mark(*this);
    bool isMatch = matches(forms.lower, forms.upper);
    return mark.finish(isMatch && !isPeek, isMatch);
}

template <class Find>
bool OFCharacterScanner::scanUpTo(Find find) {
    while (hasCharacter()) {
        _scanLocation += find(buffered());
        if (_scanLocation < _scanEnd) return true;
    }
    return false;
}

// Whether the text is next. The place does not change.
bool OFCharacterScanner::matchesHere(std::u16string_view lower, std::u16string_view upper) {
    if (buffered().size() >= lower.size()) {
        // This operation takes no mark, but fails if there are too many marks, as it does at the end of the
        // buffer.
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
    requireArgument(string, "scanUpToString:", "the string");
    if (!string->length()) return true;
    StringUnits text(string);
    return scanUpToText(text, text, [&text](std::u16string_view buffered) {
        std::size_t place = findSequence<unichar>(buffered, text.view());
        if (place != kNoPlace) return place;
        // The match may begin at the end of the buffer.
        place = buffered.size() - std::min<std::size_t>(buffered.size(), text.size() - 1);
        return place + findUnit(buffered.substr(place), text[0]);
    });
}

bool OFCharacterScanner::scanUpToStringCaseInsensitive(NSString* string) {
    requireArgument(string, "scanUpToStringCaseInsensitive:", "the string");
    if (!string->length()) return true;
    CaseForms forms = caseFormsOf(string);
    auto first = OFCharacterSet::init();
    first->addCharacter(forms.lower[0]);
    first->addCharacter(forms.upper[0]);
    return scanUpToText(forms.lower, forms.upper, AtMember{first});
}

bool OFCharacterScanner::scanUpToCharacter(unichar character) { return scanUpTo(AtUnit{character}); }

bool OFCharacterScanner::scanUpToCharacterInSet(NSCharacterSet* set) {
    auto members = OFCharacterSet::initWithCharacterSet(set);
    return scanUpTo(AtMember{members});
}

// MARK: Tokens

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
    Unretained<NSString> _string = nullptr;
    Retained<NSMutableString> _joined;
};

// Consumes the buffered units up to where the reading stops.
template <class Find>
std::u16string_view OFCharacterScanner::takeUpTo(Find find) {
    std::u16string_view taken = buffered();
    taken = taken.substr(0, find(taken));
    _scanLocation += taken.size();
    return taken;
}

template <class Find>
NSString* OFCharacterScanner::readFragment(Find find) {
    if (!hasCharacter()) return nullptr;
    std::u16string_view fragment = takeUpTo(find);
    return fragment.empty() && !Find::mayBeEmpty ? nullptr : NSString::of(fragment);
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
        std::u16string_view piece = takeUpTo(find);
        if (piece.empty() && !Find::mayBeEmpty) return;
        token.add(piece);
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
    requireArgument(string, "readFullTokenUpToString:", "the string");
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
    while (buffered().size() < count) {
        if (!pieces) pieces = NSMutableString::init();
        pieces->append(buffered());
        count -= static_cast<NSUInteger>(buffered().size());
        _scanLocation = _scanEnd;
        if (!hasCharacter()) return nullptr;
    }
    std::u16string_view rest(_scanLocation, count);
    _scanLocation += count;
    if (!pieces) return NSString::of(rest);
    pieces->append(rest);
    return pieces->copy().autorelease();
}

// MARK: Trie elements

// Consumes the remaining units of the bucket. Returns false at the first one that does not come next.
bool OFCharacterScanner::matchesRemainder(OFTrieBucket* bucket) {
    const unichar *lower = bucket->lowerCharacters(), *upper = bucket->upperCharacters();
    for (; *lower; ++lower, ++upper) {
        unichar unit = peekCharacter();
        if (unit != *lower && unit != *upper) return false;
        ++_scanLocation;
    }
    return true;
}

// Returns the bucket. If a delimiter should follow and does not, goes back to the mark and returns null.
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
