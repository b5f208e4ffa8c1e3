// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRLanguageSearch.h"

#include <algorithm>
#include <vector>

#include "Foundation/NSMutableDictionary.h"
#include "NSString-PelvorAdditions.h"
#include "PBProfileSet.h"
#include "PBRegistry.h"
#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/TextMeasure.h"
#include "Writer/WRLanguage.h"
#include "Writer/Windows/RaisedFlag.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr NSUInteger kFirst = 16 * 1024;  // more than a page has
constexpr NSUInteger kBit = 16 * 1024;

}  // namespace

PELVOR_DEFINE_CLASS(WRLanguageSearch, windowsLibrary) {
    methods.instance<"isEditing", &WRLanguageSearch::isEditing>();
    methods.instance<"caretDidMove", &WRLanguageSearch::caretDidMove>();
    methods.instance<"setView:", &WRLanguageSearch::setView>();
    methods.instance<"stop", &WRLanguageSearch::stop>();
}

WRLanguageSearch::WRLanguageSearch() : _languages(PBRegistry::sharedRegistry()) {}

Retained<WRLanguageSearch> WRLanguageSearch::create(NSTextStorage* storage) {
    auto self = make<WRLanguageSearch>();
    self->_done = self->addTo(storage, {0, std::min(storage->length(), kFirst)});
    self->start(storage);
    return self;
}

void WRLanguageSearch::stop() {
    _view = nullptr;
    WRTextWork::stop();
}

NSUInteger WRLanguageSearch::addTo(NSTextStorage* storage, NSRange range) {
    const RaisedFlag editing(_isEditing);
    return _languages.addTo(storage, range);
}

void WRLanguageSearch::textDidChange(unsigned mask, NSRange range, NSInteger change) {
    if (_isEditing || !(mask & NSTextStorageEditedCharacters)) return;
    const NSUInteger oldEnd = NSMaxRange(range) - static_cast<NSUInteger>(change);
    NSUInteger end = NSMaxRange(range);
    if (_written && NSMaxRange(*_written) > oldEnd)
        end = NSMaxRange(*_written) + static_cast<NSUInteger>(change);
    const NSUInteger start = _written ? std::min(_written->location, range.location) : range.location;
    _written = NSRange{start, end - start};
    resume();
    if (oldEnd <= _done)
        _done += static_cast<NSUInteger>(change);
    else
        _done = std::min(_done, range.location);
}

void WRLanguageSearch::caretDidMove() {
    if (_written) resume();
}

// Goes on by a paragraph. Returns false if no paragraph is left, or the last one is still
// being written.
bool WRLanguageSearch::lookAtWritten() {
    if (!_written || !_view || _view->hasMarkedText()) return false;
    NSTextStorage* text = textStorage();
    TextParagraph paragraph;
    getParagraphStart_end_contentsEnd_forRange(text->string(), &paragraph.start, &paragraph.end,
                                               &paragraph.contentsEnd, {_written->location, 0});
    const NSRange contents{paragraph.start,
                           std::min(paragraph.contentsEnd, text->length()) - paragraph.start};
    const NSUInteger caret = _view->selectedRange().location;
    const bool isWriting = caret >= contents.location && caret <= NSMaxRange(contents);
    const bool waits = isWriting && wasJustJudged(contents);
    WRLanguage* language = waits ? nullptr : _languages.languageOfWritten(text, contents, !isWriting);
    if (language) setLanguage(language, contents);
    if (language && (isWriting || (caret == paragraph.end && caret == text->length()))) writeOnIn(language);
    const NSUInteger end = NSMaxRange(*_written);
    if (paragraph.end < end)
        _written = NSRange{paragraph.end, end - paragraph.end};
    else if (isWriting)
        return false;
    else
        _written.reset();
    return true;
}

// A paragraph that is being written is judged again when some letters have come or gone, not at each one.
bool WRLanguageSearch::wasJustJudged(NSRange contents) {
    constexpr NSUInteger kSome = 16;
    const NSRange before = _judged;
    if (contents.location == before.location && contents.length < before.length + kSome &&
        before.length < contents.length + kSome)
        return true;
    _judged = contents;
    return false;
}

// Text in a language that was set keeps it.
void WRLanguageSearch::setLanguage(WRLanguage* language, NSRange range) {
    std::vector<NSRange> others;
    for (AttributeRun run : textStorage()->runsInRange(range))
        if (!run.attributes->objectForKey(NSLanguageAttributeName) &&
            run.attributes->objectForKey(WRLanguageAttributeKey) != language)
            others.push_back(run.range);
    if (others.empty()) return;
    const RaisedFlag editing(_isEditing);
    textStorage()->beginEditing();
    for (const NSRange run : others)
        textStorage()->addAttribute_value_range(WRLanguageAttributeKey, language, run);
    textStorage()->endEditing();
}

// What is typed next is in the language, too, unless the user has set one for it.
void WRLanguageSearch::writeOnIn(WRLanguage* language) {
    NSDictionary* typing = _view->typingAttributes();
    if (typing->objectForKey(NSLanguageAttributeName) ||
        typing->objectForKey(WRLanguageAttributeKey) == language)
        return;
    auto now = NSMutableDictionary::initWithDictionary(typing);
    now->setObject_forKey(language, WRLanguageAttributeKey);
    _view->setTypingAttributes(now);
}

bool WRLanguageSearch::workABit() {
    if (lookAtWritten()) return true;
    NSTextStorage* text = textStorage();
    const NSRange visible = _view ? _view->visibleTextRange() : NSRange{};
    if (visible.location > _done && visible != std::exchange(_lastVisible, visible)) addTo(text, visible);
    if (_done < text->length()) _done = addTo(text, {_done, std::min(kBit, text->length() - _done)});
    return _done < text->length();
}

}  // namespace pelvor
