// SPDX-License-Identifier: Apache-2.0
// Keys, commands, and text that is being composed.
#include <algorithm>

#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSUndoManager.h"
#include "Interface/NSCursor.h"
#include "Interface/NSWindow.h"
#include "Interface/Texts/TextViewState.h"
#include "Runtime/Message.h"
#include "Text/TextAttributes.h"

namespace pelvor {

void NSTextView::keyDown(NSEvent* event) {
    if (!event || !isSelectable()) return NSText::keyDown(event);
    _state->lastChange = NSDate::currentTimeIntervalSinceReferenceDate();
    if (isEditable()) NSCursor::setHiddenUntilMouseMoves(true);
    interpretKeyEvents(NSArray::of({event}));
}

void NSTextView::doCommandBySelector(SEL selector) {
    if (!selector) return;
    const auto alive = Retained<NSTextView>::retaining(this);
    _state->lastChange = NSDate::currentTimeIntervalSinceReferenceDate();
    const SEL question = "textView:doCommandBySelector:"_sel;
    if (Retained<Object> delegate;
        asksDelegate(question, delegate) && send<bool>(delegate, question, this, selector))
        return;
    NSText::doCommandBySelector(selector);
}

// MARK: Text that is being composed

bool NSTextView::hasMarkedText() { return _state->marked.location != NSNotFound; }

NSRange NSTextView::markedRange() { return _state->marked; }

// Composed text comes and goes without a trace in the undo manager until it is done.
void NSTextView::setMarkedText_selectedRange(id text, NSRange selection) {
    auto attributed = cast<NSAttributedString>(text);
    NSString* plain = attributed ? attributed->string() : cast<NSString>(text);
    if (!isEditable() || !_state->storage) return;
    const auto alive = Retained<NSTextView>::retaining(this);
    const auto kept = Retained<Object>::retaining(text);
    if (!plain || plain->length() == 0) return discardMarkedText();
    if (!hasMarkedText()) {
        if (_state->selection.length > 0 && !replace(_state->selection, u""_ns)) return;
        if (!beginEditing()) return;
        breakUndoCoalescing();
        _state->marked = {_state->clamped(_state->selection.location), 0};
    }
    auto attributes = typingAttributes()->mutableCopy();
    if (!attributes->objectForKey(NSUnderlineStyleAttributeName))
        attributes->setObject_forKey(NSNumber::numberWithInt(NSUnderlineStyleSingle),
                                     NSUnderlineStyleAttributeName);
    const auto typing = Retained<NSDictionary>::retaining(typingAttributes());
    const NSRange old = _state->marked;
    _state->storage->replaceCharactersInRange_withString_attributes(old, plain, attributes);
    _state->marked = {old.location, plain->length()};
    const NSUInteger start = std::min(selection.location, plain->length());
    setSelectedRange_affinity_stillSelecting(
        {old.location + start, std::min(selection.length, plain->length() - start)},
        NSSelectionAffinityDownstream, true);
    _state->typingAttributes = typing;
    scrollRangeToVisible(_state->selection);
}

// Takes the composed text away.
void NSTextView::discardMarkedText() {
    if (!hasMarkedText()) return;
    const NSRange marked = _state->clamped(_state->marked);
    const auto typing = _state->typingAttributes;
    _state->marked = {NSNotFound, 0};
    _state->storage->replaceCharactersInRange_withString(marked, u""_ns);
    setSelectedRange_affinity_stillSelecting({_state->clamped(marked.location), 0},
                                             NSSelectionAffinityDownstream, true);
    _state->typingAttributes = typing;
}

void NSTextView::unmarkText() {
    if (!hasMarkedText()) return;
    const NSRange marked = _state->clamped(_state->marked);
    const auto text = Retained<NSString>::retaining(string()->substringWithRange(marked));
    discardMarkedText();
    replace({marked.location, 0}, text);
}

// MARK: What an input method asks

NSAttributedString* NSTextView::attributedSubstringFromRange(NSRange range) {
    if (range.location >= _state->length()) return nullptr;
    return _state->storage->attributedSubstringFromRange(_state->clamped(range));
}

NSRect NSTextView::firstRectForCharacterRange(NSRange range) {
    if (!window() || !mayLayOut()) return {};
    NSRect rect = caretRectForCharacterAtIndex(_state->clamped(range.location));
    if (range.length > 0)
        rect = NSUnionRect(rect, rectForCharacterRange(_state->clamped(NSRange{range.location, 1})));
    rect = convertRect_toView(rect, nullptr);
    rect.origin = window()->convertBaseToScreen(rect.origin);
    return rect;
}

NSUInteger NSTextView::characterIndexForPoint(NSPoint pointOnScreen) {
    if (!window()) return NSNotFound;
    return characterIndexForInsertionAtPoint(
        convertPoint_fromView(window()->convertScreenToBase(pointOnScreen), nullptr));
}

}  // namespace pelvor
