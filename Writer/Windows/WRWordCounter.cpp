// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRWordCounter.h"

#include "Runtime/Registry.h"
#include "Text/NSTextStorage.h"
#include "Writer/TextMeasure.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRWordCounter, windowsLibrary) {
    methods.instance<"count", &WRWordCounter::count>();
    methods.instance<"isComplete", &WRWordCounter::isComplete>();
    methods.instance<"isUpToDate", &WRWordCounter::isUpToDate>();
    methods.instance<"stop", &WRWordCounter::stop>();
}

Retained<WRWordCounter> WRWordCounter::create(NSTextStorage* storage, std::function<void()> didCount) {
    auto self = make<WRWordCounter>();
    self->_pieces = TextPieces<Words>(storage->length());
    self->_didCount = std::move(didCount);
    self->start(storage);
    return self;
}

void WRWordCounter::stop() {
    _didCount = nullptr;
    WRTextWork::stop();
}

void WRWordCounter::textDidChange(unsigned mask, NSRange range, NSInteger change) {
    if (!(mask & NSTextStorageEditedCharacters)) return;
    _pieces.textDidChange(range, change);
    _isEdited = true;
    resume();
}

void WRWordCounter::setSelection(NSRange selection) {
    if (_selection.length == 0 && selection.length == 0) return;
    _selection = selection;
    resume();
}

// Of a piece that is selected as a whole, the words are known.
NSUInteger WRWordCounter::countSelection() {
    NSString* text = textStorage()->string();
    NSUInteger count = 0;
    _pieces.eachIn(_selection, [&](const Words& words, NSRange piece, bool) {
        const NSRange part = NSIntersectionRange(piece, _selection);
        if (part == piece && piece.location > _selection.location)
            count += words.count;
        else if (part.location > _selection.location)
            count += countWordsInRange(text, part);
        else  // the rest of a word is one, too
            count += countWordsInRange(text->substringWithRange(part), {0, part.length});
    });
    return count;
}

bool WRWordCounter::workABit() {
    const auto piece = _pieces.takeUnknown(textStorage()->string(), {0, textStorage()->length()});
    if (piece) piece->value->count = countWordsInRange(textStorage()->string(), piece->range);
    return piece.has_value();
}

void WRWordCounter::didWork() {
    Count now;
    _isEdited = false;
    _pieces.eachIn({0, textStorage()->length()}, [&now](const Words& words, NSRange, bool isKnown) {
        now.words += words.count;
        now.isComplete &= isKnown;
    });
    _selection = NSIntersectionRange(_selection, {0, textStorage()->length()});
    if (now.isComplete && _selection.length > 0) now.selected = countSelection();
    if (std::exchange(_count, now) != now && _didCount) _didCount();
}

}  // namespace pelvor
