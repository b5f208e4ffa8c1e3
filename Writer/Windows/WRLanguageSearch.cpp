// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRLanguageSearch.h"

#include <algorithm>

#include "PBProfileSet.h"
#include "PBRegistry.h"
#include "Text/NSTextStorage.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr NSUInteger kFirst = 16 * 1024;  // more than a page has
constexpr NSUInteger kBit = 16 * 1024;

}  // namespace

PELVOR_DEFINE_CLASS(WRLanguageSearch, windowsLibrary) {
    methods.instance<"isEditing", &WRLanguageSearch::isEditing>();
    methods.instance<"stop", &WRLanguageSearch::stop>();
}

WRLanguageSearch::WRLanguageSearch() : _languages(PBRegistry::sharedRegistry()) {}

Retained<WRLanguageSearch> WRLanguageSearch::create(NSTextStorage* storage) {
    auto self = make<WRLanguageSearch>();
    self->_done = self->addTo(storage, {0, std::min(storage->length(), kFirst)});
    if (self->_done < storage->length()) self->start(storage);
    return self;
}

void WRLanguageSearch::stop() {
    _visibleRange = nullptr;
    WRTextWork::stop();
}

NSUInteger WRLanguageSearch::addTo(NSTextStorage* storage, NSRange range) {
    _isEditing = true;
    const NSUInteger end = _languages.addTo(storage, range);
    _isEditing = false;
    return end;
}

void WRLanguageSearch::textDidChange(unsigned, NSRange range, NSInteger change) {
    const NSUInteger oldEnd = NSMaxRange(range) - static_cast<NSUInteger>(change);
    if (oldEnd <= _done)
        _done += static_cast<NSUInteger>(change);
    else
        _done = std::min(_done, range.location);
}

bool WRLanguageSearch::workABit() {
    NSTextStorage* text = textStorage();
    const NSRange visible = _visibleRange ? _visibleRange() : NSRange{};
    if (visible.location > _done && visible != std::exchange(_lastVisible, visible)) addTo(text, visible);
    if (_done < text->length()) _done = addTo(text, {_done, std::min(kBit, text->length() - _done)});
    return _done < text->length();
}

}  // namespace pelvor
