// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WordDrag.h"

#include <string_view>

#include "Foundation/NSCharacterSet.h"
#include "Interface/NSDraggingInfo.h"
#include "Interface/NSTextView.h"
#include "Text/NSTextStorage.h"

namespace pelvor {
namespace {

// Languages open with quotation marks by which others close.
constexpr std::u16string_view kOpening = u"([{¿¡", kClosing = u".,;:!?…)]}", kQuotes = u"\"'“”„‘’‚«»‹›";

// A newline stands for the ends of the text.
unichar unitAt(NSTextView* view, NSUInteger place) {
    NSString* text = view->string();
    return place < text->length() ? text->characterAtIndex(place) : u'\n';
}

unichar unitBefore(NSTextView* view, NSUInteger place) { return place > 0 ? unitAt(view, place - 1) : u'\n'; }

bool isOneOf(std::u16string_view units, unichar unit) { return units.find(unit) != units.npos; }

// Letters of scripts that are written with blanks between words, and digits.
bool isOfWord(unichar unit) {
    const bool isSoutheastAsian = (unit >= 0x0E00 && unit < 0x0F00) || (unit >= 0x1000 && unit < 0x10A0) ||
                                  (unit >= 0x1780 && unit < 0x1800);
    const bool isEastAsian = unit >= 0x2E80 && !(unit >= 0xAC00 && unit < 0xD800);
    return !isSoutheastAsian && !isEastAsian &&
           NSCharacterSet::alphanumericCharacterSet()->characterIsMember(unit);
}

void replace(NSTextView* view, NSRange range, NSString* text) {
    view->breakUndoCoalescing();
    if (!view->shouldChangeTextInRange_replacementString(range, text)) return;
    view->textStorage()->replaceCharactersInRange_withString(range, text);
    view->didChangeText();
}

// Words were taken away at the place.
void closeGap(NSTextView* view, NSUInteger place) {
    const unichar before = unitBefore(view, place), after = unitAt(view, place);
    const bool isEnd = after == u' ' || after == u'\n' || isOneOf(kClosing, after) || isOneOf(kQuotes, after);
    const bool isStart = before == u'\n' || isOneOf(kOpening, before) || isOneOf(kQuotes, before);
    if (before == u' ' && isEnd)
        replace(view, {place - 1, 1}, u""_ns);
    else if (after == u' ' && isStart)
        replace(view, {place, 1}, u""_ns);
}

}  // namespace

WordDrag::WordDrag(NSDraggingInfo* info) {
    auto* source = info ? cast<NSTextView>(info->draggingSource()) : nullptr;
    const NSRange range = source ? source->selectedRange() : NSRange{};
    if (range.length == 0 || !isOfWord(unitAt(source, range.location)) ||
        !isOfWord(unitBefore(source, NSMaxRange(range))) ||
        source->selectionRangeForProposedRange_granularity(range, NSSelectByWord) != range)
        return;
    _source.set(source);
    _place = range.location;
    _length = source->string()->length();
}

void WordDrag::fitBlanks(NSTextView* view) {
    if (!_source) return;
    const NSRange words = view->selectedRange();
    const bool isSame = _source.get() == view;
    if (_source->string()->length() < _length + (isSame ? words.length : 0))  // they were not copied
        closeGap(_source, isSame && words.location < _place ? _place + words.length : _place);
    const NSUInteger start = view->selectedRange().location, end = start + words.length;
    const unichar before = unitBefore(view, start), after = unitAt(view, end);
    if (isOfWord(after) || isOneOf(kOpening, after)) replace(view, {end, 0}, u" "_ns);
    if (isOfWord(before) || isOneOf(kClosing, before)) replace(view, {start, 0}, u" "_ns);
    view->setSelectedRange({view->selectedRange().location, words.length});
}

}  // namespace pelvor
