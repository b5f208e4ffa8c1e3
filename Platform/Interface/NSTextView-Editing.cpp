// SPDX-License-Identifier: Apache-2.0
// Changing text for the user: asking, telling, undoing.
#include <algorithm>

#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSNotification.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSUndoManager.h"
#include "Interface/NSWindow.h"
#include "Interface/Texts/TextViewState.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/Layout/Paragraphs.h"
#include "Text/TextAttributes.h"

namespace pelvor {
namespace {

NSString* plainTextOf(id text) {
    if (auto string = cast<NSString>(text)) return string;
    auto attributed = cast<NSAttributedString>(text);
    return attributed ? attributed->string() : nullptr;
}

// Null where the text ends, and for text without a style.
id paragraphStyleAt(NSTextStorage* storage, NSUInteger place) {
    return place < storage->length()
               ? storage->attribute_atIndex_effectiveRange(NSParagraphStyleAttributeName, place, nullptr)
               : nullptr;
}

// Gives the rest of the paragraph the style that it had.
void restoreStyleBehind(NSTextStorage* storage, NSUInteger place, id style) {
    if (place >= storage->length()) return;
    const NSUInteger end = NSMaxRange(paragraphsAround(storage->string(), {place, 0}));
    const NSRange rest{place, end - place};
    if (style)
        storage->addAttribute_value_range(NSParagraphStyleAttributeName, style, rest);
    else
        storage->removeAttribute_range(NSParagraphStyleAttributeName, rest);
}

// The change that is being taken back: what is noted meanwhile does it again.
struct Undone {
    Undone(Retained<NSTextUndo>& noted, NSTextUndo* undo) : noted(noted) { noted.set(undo); }
    ~Undone() { noted = nullptr; }
    Undone(const Undone&) = delete;
    Undone& operator=(const Undone&) = delete;
    Retained<NSTextUndo>& noted;
};

bool touch(NSRange one, NSRange other) {
    return one.location <= NSMaxRange(other) && other.location <= NSMaxRange(one);
}

}  // namespace

// MARK: Asking and telling

// The delegate, if it has the operation.
bool NSTextView::asksDelegate(SEL question, Retained<Object>& delegate) {
    delegate.set(this->delegate());
    return delegate && delegate->respondsToSelector(question);
}

void NSTextView::tell(NSString* name, SEL message, id userInfo) {
    const auto alive = Retained<NSTextView>::retaining(this);
    NSNotification* notification =
        NSNotification::notificationWithName_object_userInfo(name, this, cast<NSDictionary>(userInfo));
    const auto kept = Retained<NSNotification>::retaining(notification);
    NSNotificationCenter::defaultCenter()->postNotification(notification);
    if (Retained<Object> delegate; asksDelegate(message, delegate)) send(delegate, message, notification);
}

bool NSTextView::beginEditing() {
    if (_state->hasBegunEditing) return true;
    const SEL question = "textShouldBeginEditing:"_sel;
    if (Retained<Object> delegate; asksDelegate(question, delegate) && !send<bool>(delegate, question, this))
        return false;
    if (_state->hasBegunEditing) return true;
    _state->hasBegunEditing = true;
    tell(NSTextDidBeginEditingNotification, "textDidBeginEditing:"_sel, nullptr);
    return true;
}

// MARK: Changes

bool NSTextView::shouldChangeTextInRange_replacementString(NSRange range, NSString* replacement) {
    if (range.location == NSNotFound || !isEditable() || !_state->storage) return false;
    requireRange(range, _state->length(), "shouldChangeTextInRange:replacementString:");
    const auto alive = Retained<NSTextView>::retaining(this);
    const auto kept = Retained<NSString>::retaining(replacement);
    if (!beginEditing()) return false;
    const SEL question = "textView:shouldChangeTextInRange:replacementString:"_sel;
    if (Retained<Object> delegate;
        asksDelegate(question, delegate) && !send<bool>(delegate, question, this, range, replacement))
        return false;
    // Whoever was asked may have edited.
    if (!isRangeInside(range, _state->length())) return false;
    noteUndo(range, replacement ? replacement->length() : range.length);
    if (!replacement && _state->lastUndo) _state->lastUndo->setSelectionAfter(_state->selection);
    // Who empties a text goes on in the formats that it had.
    if (replacement && replacement->length() == 0 && range.length == _state->length())
        _state->emptyAttributes.set(typingAttributes());
    return true;
}

void NSTextView::didChangeText() {
    if (_state->lastUndo) _state->lastUndo->setSelectionAfter(_state->selection);
    tell(NSTextDidChangeNotification, "textDidChange:"_sel, nullptr);
}

NSRange NSTextView::rangeForUserTextChange() {
    return isEditable() && _state->storage ? _state->selection : NSRange{NSNotFound, 0};
}

// Asks, changes and tells; the caret stands behind the new text.
bool NSTextView::replace(NSRange range, id text) {
    const auto alive = Retained<NSTextView>::retaining(this);
    const auto kept = Retained<Object>::retaining(text);
    const auto attributes = Retained<NSDictionary>::retaining(typingAttributes());
    const auto given = _state->typingAttributes;
    if (!shouldChangeTextInRange_replacementString(range, plainTextOf(text))) return false;
    putText(range, text, attributes);
    const NSUInteger end = range.location + plainTextOf(text)->length();
    const auto lastUndo = _state->lastUndo;
    setSelectedRange({_state->clamped(end), 0});
    _state->typingAttributes = given;
    _state->lastUndo = lastUndo;  // the user goes on typing
    didChangeText();
    scrollRangeToVisible(_state->selection);
    return true;
}

void NSTextView::putText(NSRange range, id text, NSDictionary* attributes) {
    auto attributed = cast<NSAttributedString>(text);
    if (attributed && isRichText())
        _state->storage->replaceCharactersInRange_withAttributedString(range, attributed);
    else
        _state->storage->replaceCharactersInRange_withString_attributes(range, plainTextOf(text), attributes);
}

void NSTextView::insertText(id text) {
    NSString* plain = plainTextOf(text);
    if (!plain || !isEditable() || !_state->storage) return;
    const auto kept = Retained<Object>::retaining(text);
    _state->lastChange = NSDate::currentTimeIntervalSinceReferenceDate();
    discardMarkedText();
    replace(rangeForUserTextChange(), text);
}

// MARK: What others change

// The layout manager tells of each edit of the storage.
void NSTextView::textWasEdited(NSLayoutManager* layoutManager, NSRange edited, NSInteger change,
                               NSRange invalidated) {
    if (layoutManager != _state->layoutManager || !layoutManager) return;
    if (edited.length > 0 || change != 0) {
        const NSUInteger oldEnd = NSMaxRange(edited) - static_cast<NSUInteger>(change);
        const auto moved = [&](NSUInteger place) {
            if (place >= oldEnd) return place + static_cast<NSUInteger>(change);
            return std::min(place, NSMaxRange(edited));
        };
        const auto follow = [&](NSRange& range) {
            if (range.location == NSNotFound) return;
            const NSUInteger start = moved(range.location);
            range = {start, std::max(moved(NSMaxRange(range)), start) - start};
        };
        follow(_state->selection);
        follow(_state->marked);
        if (_state->fixedEnd != NSNotFound) _state->fixedEnd = moved(_state->fixedEnd);
        _state->shown.invalidate(edited, change);
    }
    if (invalidated.length > 0 && invalidated != edited) _state->shown.invalidate(invalidated, 0);
    const bool isMove = edited.length == 0 && change == 0 && invalidated.length == 0;
    if (!isMove || !_state->isPreparing) setNeedsPreparation();
}

// MARK: Undo

bool NSTextView::allowsUndo() { return _state->allowsUndo; }

void NSTextView::setAllowsUndo(bool allows) {
    _state->allowsUndo = allows;
    breakUndoCoalescing();
}

NSUndoManager* NSTextView::undoManager() {
    const SEL question = "undoManagerForTextView:"_sel;
    if (Retained<Object> delegate; asksDelegate(question, delegate))
        if (auto manager = cast<NSUndoManager>(send<id>(delegate, question, this))) return manager;
    return NSText::undoManager();
}

void NSTextView::breakUndoCoalescing() { _state->lastUndo = nullptr; }

// The units of the range are about to be replaced by so many others.
void NSTextView::noteUndo(NSRange range, NSUInteger newLength) {
    NSUndoManager* manager = _state->allowsUndo ? undoManager() : nullptr;
    if (!manager || !manager->isUndoRegistrationEnabled()) return breakUndoCoalescing();
    auto before =
        Retained<NSAttributedString>::retaining(_state->storage->attributedSubstringFromRange(range));
    id styleBehind = paragraphStyleAt(_state->storage, NSMaxRange(range));
    // A line end that was typed ends its step.
    const bool beginsLine = range.length == 0 && range.location > 0 &&
                            isLineEnd(_state->storage->string()->characterAtIndex(range.location - 1));
    const bool canGrow = _state->lastUndo && !beginsLine && !manager->isUndoing() && !manager->isRedoing();
    const NSRange caretBehind{range.location + newLength, 0};
    if (canGrow && _state->lastUndo->absorb(range, before, newLength, styleBehind))
        return _state->lastUndo->setSelectionAfter(caretBehind);
    _state->lastUndo = NSTextUndo::change(range.location, std::move(before), newLength, styleBehind);
    const auto& undone = _state->undone;
    _state->lastUndo->setSelectionBefore(undone ? undone->selectionAfter() : _state->selection);
    _state->lastUndo->setSelectionAfter(undone ? undone->selectionBefore() : caretBehind);
    manager->registerUndoWithTarget_selector_object(this, "undoTextChange:"_sel, _state->lastUndo);
    if (manager->isUndoing() || manager->isRedoing()) breakUndoCoalescing();
}

void NSTextView::undoTextChange(id record) {
    auto undo = cast<NSTextUndo>(record);
    if (!undo || !_state->storage) return;
    const auto alive = Retained<NSTextView>::retaining(this);
    const auto kept = Retained<NSTextUndo>::retaining(undo);
    unmarkText();
    const NSRange range = undo->range();
    if (!isRangeInside(range, _state->length())) return;  // somebody edited without saying so
    breakUndoCoalescing();
    NSString* text = undo->before()->string();
    const bool keepsText =
        range.length == text->length() && string()->substringWithRange(range)->isEqualToString(text);
    {
        const Undone noted(_state->undone, undo);
        if (!shouldChangeTextInRange_replacementString(range, keepsText ? nullptr : text)) return;
    }
    _state->storage->beginEditing();
    _state->storage->replaceCharactersInRange_withAttributedString(range, undo->before());
    restoreStyleBehind(_state->storage, range.location + text->length(), undo->styleBehind());
    _state->storage->endEditing();
    // Who takes a format back goes on writing where the caret is.
    if (!keepsText || !touch(_state->selection, range))
        setSelectedRange(_state->clamped(undo->selectionBefore()));
    // Who takes back only what was typed may have chosen its formats before.
    if (keepsText || text->length() > 0) _state->typingAttributes = nullptr;
    didChangeText();
    scrollRangeToVisible(_state->selection);
}

void NSTextView::undo(id) {
    if (NSUndoManager* manager = undoManager(); manager && manager->canUndo()) manager->undo();
}

void NSTextView::redo(id) {
    if (NSUndoManager* manager = undoManager(); manager && manager->canRedo()) manager->redo();
}

}  // namespace pelvor
