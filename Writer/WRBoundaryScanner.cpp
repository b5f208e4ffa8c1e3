// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRBoundaryScanner.h"

#include <algorithm>

#include "Foundation/NSString.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRBoundaryScanner, writerLibrary) {
    methods.creator<"initWithLanguageIdentifier:", &WRBoundaryScanner::initWithLanguageIdentifier>();
    methods.instance<"setString:", &WRBoundaryScanner::setString>();
    methods.instance<"offsetOfWordBoundaryFrom:isForwardSearch:",
                     &WRBoundaryScanner::offsetOfWordBoundaryFrom_isForwardSearch>();
}

namespace {

bool isApostrophe(unichar unit) { return unit == '\'' || unit == 0x2019; }

bool isOneOf(std::initializer_list<NSString*> words, NSString* word) {
    return std::any_of(words.begin(), words.end(),
                       [&](NSString* each) { return each->isEqualToString(word); });
}

// English words that begin with an apostrophe, without it.
bool isCutAtItsFront(NSString* word) {
    return isOneOf({u"cause"_ns, u"em"_ns, u"n"_ns, u"round"_ns, u"til"_ns, u"tis"_ns, u"twas"_ns,
                    u"twere"_ns, u"twill"_ns, u"twould"_ns},
                   word);
}

// French words that lose their last vowel before another one, without that vowel.
bool isElided(NSString* word) {
    return isOneOf({u"c"_ns, u"d"_ns, u"j"_ns, u"jusqu"_ns, u"l"_ns, u"lorsqu"_ns, u"m"_ns, u"n"_ns,
                    u"puisqu"_ns, u"qu"_ns, u"quelqu"_ns, u"quoiqu"_ns, u"s"_ns, u"t"_ns},
                   word);
}

}  // namespace

WRBoundaryScanner::WRBoundaryScanner() = default;
WRBoundaryScanner::~WRBoundaryScanner() = default;

Retained<WRBoundaryScanner> WRBoundaryScanner::initWithLanguageIdentifier(NSString* identifier, Class* cls) {
    auto scanner = make<WRBoundaryScanner>(cls);
    scanner->_boundaries = TextBoundaries(TextBoundaries::Kind::Word, identifier);
    scanner->_isEnglish = identifier && identifier->hasPrefix(u"en"_ns);
    scanner->_isFrench = identifier && identifier->hasPrefix(u"fr"_ns);
    return scanner;
}

void WRBoundaryScanner::setString(NSString* string) {
    _string.set(string);
    _boundaries.setString(string);
}

NSUInteger WRBoundaryScanner::offsetOfWordBoundaryFrom_isForwardSearch(NSUInteger offset, bool isForward) {
    return isForward ? following(offset) : preceding(offset);
}

bool WRBoundaryScanner::isWordBefore(NSUInteger boundary) {
    if (_boundaries.isWordBefore(boundary)) return true;
    const NSUInteger next = _boundaries.following(boundary);  // of an elision: the rest of its word
    return _isFrench && next != NSNotFound && !_boundaries.isBoundary(boundary) &&
           _boundaries.isWordBefore(next);
}

NSUInteger WRBoundaryScanner::following(NSUInteger offset) {
    NSUInteger boundary = _boundaries.following(offset);
    while (boundary != NSNotFound && isJoined(boundary)) boundary = _boundaries.following(boundary);
    if (boundary == NSNotFound || !_isFrench) return boundary;
    const NSUInteger elision = elisionEnd(_boundaries.preceding(boundary), boundary);
    return elision != NSNotFound && elision > offset ? elision : boundary;
}

NSUInteger WRBoundaryScanner::preceding(NSUInteger offset) {
    NSUInteger boundary = _boundaries.preceding(offset);
    while (boundary != NSNotFound && isJoined(boundary)) boundary = _boundaries.preceding(boundary);
    if (boundary == NSNotFound || !_isFrench) return boundary;
    const NSUInteger end = _boundaries.following(boundary);
    const NSUInteger elision = end == NSNotFound ? NSNotFound : elisionEnd(boundary, end);
    return elision != NSNotFound && elision < offset ? elision : boundary;
}

// Whether an English word goes on here, behind the apostrophe that it begins with.
bool WRBoundaryScanner::isJoined(NSUInteger boundary) {
    if (!_isEnglish || boundary == 0 || boundary >= _string->length()) return false;
    if (!isApostrophe(_string->characterAtIndex(boundary - 1))) return false;
    const NSUInteger end = _boundaries.following(boundary);
    return end - boundary <= 6 &&
           isCutAtItsFront(_string->substringWithRange({boundary, end - boundary})->lowercaseString());
}

// Where the elision ends with which a French word begins, behind its apostrophe; NSNotFound without one.
NSUInteger WRBoundaryScanner::elisionEnd(NSUInteger start, NSUInteger end) {
    const NSUInteger last = std::min(end, start + 7);
    for (NSUInteger place = start; place < last; ++place) {
        if (!isApostrophe(_string->characterAtIndex(place))) continue;
        NSString* front = _string->substringWithRange({start, place - start})->lowercaseString();
        return isElided(front) && place + 1 < end ? place + 1 : NSNotFound;
    }
    return NSNotFound;
}

}  // namespace pelvor
