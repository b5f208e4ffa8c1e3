// SPDX-License-Identifier: Apache-2.0
#include "Interface/Texts/TextPlaces.h"

#include <algorithm>

#include "Foundation/NSString.h"
#include "Text/Layout/Paragraphs.h"

namespace pelvor {
namespace {

// Whether a paragraph begins at the place.
bool beginsParagraph(NSString* text, NSUInteger place) {
    if (place == 0) return true;
    const unichar before = text->characterAtIndex(place - 1);
    if (!isParagraphEnd(before)) return false;
    return before != '\r' || place == text->length() || text->characterAtIndex(place) != '\n';
}

}  // namespace

NSUInteger TextPlaces::behindCharacter(NSString* text, NSUInteger place) {
    return std::min(Asking(_characters, text)->following(place), text->length());
}

NSUInteger TextPlaces::beforeCharacter(NSString* text, NSUInteger place) {
    const NSUInteger before = Asking(_characters, text)->preceding(place);
    return before == NSNotFound ? 0 : before;
}

NSUInteger TextPlaces::behindWord(NSString* text, NSUInteger place) {
    Asking words(_words, text);
    do place = words->following(place);
    while (place != NSNotFound && !words->isWordBefore(place));
    return std::min(place, text->length());
}

NSUInteger TextPlaces::beforeWord(NSString* text, NSUInteger place) {
    Asking words(_words, text);
    do place = words->preceding(place);
    while (place != NSNotFound && !words->isWordBefore(words->following(place)));
    return place == NSNotFound ? 0 : place;
}

NSRange TextPlaces::wordAt(NSString* text, NSUInteger place) {
    Asking words(_words, text);
    const NSUInteger length = text->length();
    place = std::min(place, length);
    const NSUInteger end = std::min(words->following(place), length);
    NSUInteger start = words->isBoundary(place) && place < length ? place : words->preceding(place);
    if (start == NSNotFound) start = 0;
    return {start, end - start};
}

NSRange TextPlaces::wordsAround(NSString* text, NSRange range) {
    const NSRange first = wordAt(text, range.location);
    return range.length ? NSUnionRange(first, wordAt(text, NSMaxRange(range) - 1)) : first;
}

NSRange paragraphsAround(NSString* text, NSRange range) {
    const NSUInteger length = text->length();
    NSUInteger start = std::min(range.location, length);
    NSUInteger end = std::min(std::max(NSMaxRange(range), start + 1), length);
    while (!beginsParagraph(text, start)) --start;
    while (end < length && !beginsParagraph(text, end)) ++end;
    return {start, end - start};
}

NSUInteger lengthOfLineEnd(NSString* text, NSRange paragraphs) {
    const NSUInteger end = NSMaxRange(paragraphs);
    if (paragraphs.length == 0 || !isParagraphEnd(text->characterAtIndex(end - 1))) return 0;
    const bool isPair = paragraphs.length > 1 && text->characterAtIndex(end - 1) == '\n' &&
                        text->characterAtIndex(end - 2) == '\r';
    return isPair ? 2 : 1;
}

}  // namespace pelvor
