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
    if (std::exchange(_count, now) != now && _didCount) _didCount();
}

}  // namespace pelvor
