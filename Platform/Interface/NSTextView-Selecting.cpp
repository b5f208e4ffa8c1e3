// SPDX-License-Identifier: Apache-2.0
// The selection, and the mouse that makes it.
#include <algorithm>
#include <cmath>

#include "Foundation/NSNumber.h"
#include "Foundation/NSRangeValue.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSValue.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/NSCursor.h"
#include "Interface/NSDraggingInfo.h"
#include "Interface/NSEvent.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSWindow.h"
#include "Interface/Texts/TextViewState.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/TextAttributes.h"

namespace pelvor {
namespace {

constexpr double kAutoscrollPeriod = 0.05;

// A place between the halves of a character moves before it.
NSUInteger outsideOfPair(NSString* text, NSUInteger place) {
    if (place == 0 || place >= text->length()) return place;
    const bool isInside = (text->characterAtIndex(place - 1) & 0xFC00) == 0xD800 &&
                          (text->characterAtIndex(place) & 0xFC00) == 0xDC00;
    return isInside ? place - 1 : place;
}

}  // namespace

// MARK: The selection

NSRange NSTextView::selectedRange() { return _state->selection; }

NSSelectionAffinity NSTextView::selectionAffinity() { return _state->affinity; }

NSSelectionGranularity NSTextView::selectionGranularity() { return _state->granularity; }

void NSTextView::setSelectionGranularity(NSSelectionGranularity granularity) {
    _state->granularity = granularity;
}

void NSTextView::setSelectedRange(NSRange range) {
    setSelectedRange_affinity_stillSelecting(range, NSSelectionAffinityDownstream, false);
}

void NSTextView::setSelectedRange_affinity_stillSelecting(NSRange range, NSSelectionAffinity affinity,
                                                          bool stillSelecting) {
    requireRange(range, _state->length(), "setSelectedRange:affinity:stillSelecting:");
    const auto alive = Retained<NSTextView>::retaining(this);
    const SEL question = "textView:willChangeSelectionFromCharacterRange:toCharacterRange:"_sel;
    if (Retained<Object> delegate; asksDelegate(question, delegate))
        range = _state->clamped(send<NSRange>(delegate, question, this, _state->selection, range));
    const NSUInteger start = outsideOfPair(string(), range.location);
    const NSUInteger end = range.length ? outsideOfPair(string(), NSMaxRange(range)) : start;
    range = {start, std::max(start, end) - start};
    const NSRange old = _state->selection;
    _state->selection = range;
    _state->affinity = range.length ? NSSelectionAffinityDownstream : affinity;
    _state->fixedEnd = NSNotFound;
    _state->column = kNoColumn;
    if (old != range) {
        _state->typingAttributes = nullptr;
        breakUndoCoalescing();
    }
    setNeedsPreparation();
    updateInsertionPointStateAndRestartTimer(true);
    if (!stillSelecting && range.length > 0) offerPrimarySelection();
    if (old == range) return;
    tell(NSTextViewDidChangeSelectionNotification, "textViewDidChangeSelection:"_sel,
         NSDictionary::of({{u"NSOldSelectedCharacterRange"_ns, NSValue::valueWithRange(old)}}));
}

NSRange NSTextView::selectionRangeForProposedRange_granularity(NSRange range,
                                                               NSSelectionGranularity granularity) {
    range = _state->clamped(range);
    switch (granularity) {
        case NSSelectByWord:
            return _state->places.wordsAround(string(), range);
        case NSSelectByParagraph:
            return paragraphsAround(string(), range);
        default:
            return range;
    }
}

void NSTextView::selectAs(NSRange range) {
    if (isSelectable()) setSelectedRange(range);
}

void NSTextView::selectAll(id) { selectAs({0, _state->length()}); }

// Only what the user selects, in a view that takes the keys, is what other programs get.
void NSTextView::offerPrimarySelection() {
    if (!isActive()) return;
    NSPasteboard::pasteboardWithName(NSSelectionPboard)->declareTypes_owner(writablePasteboardTypes(), this);
}

// MARK: Mouse

void NSTextView::resetCursorRects() {
    if (isSelectable()) addCursorRect_cursor(visibleRect(), NSCursor::IBeamCursor());
}

void NSTextView::mouseDown(NSEvent* event) {
    if (!event || !isSelectable() || !mayLayOut()) return NSText::mouseDown(event);
    const auto alive = Retained<NSTextView>::retaining(this);
    if (window() && window()->firstResponder() != this) window()->makeFirstResponder(this);
    if (hasMarkedText()) NSInputManager::currentInputManager()->abandonMarkedTextInWindow(window());
    unmarkText();
    _state->lastChange = NSDate::currentTimeIntervalSinceReferenceDate();
    const NSPoint point = convertPoint_fromView(event->locationInWindow(), nullptr);
    const CaretPlace place = placeAtPoint(point);
    const NSInteger clicks = event->clickCount();
    if (clicks == 1 && clickLink(place.index)) return;
    _state->granularity = clicks >= 3   ? NSSelectByParagraph
                          : clicks == 2 ? NSSelectByWord
                                        : NSSelectByCharacter;
    _state->isSelecting = true;
    _state->mouseDown = point;
    _state->mayDrag = clicks == 1 && !(event->modifierFlags() & NSShiftKeyMask) && isInSelection(point);
    if (_state->mayDrag) return;
    if (event->modifierFlags() & NSShiftKeyMask) {
        // The end that is further away stays.
        const NSRange old = _state->selection;
        const bool isBefore = place.index < old.location + old.length / 2;
        _state->mouseAnchor = {isBefore ? NSMaxRange(old) : old.location, 0};
        return selectTo(point);
    }
    _state->mouseAnchor = selectionRangeForProposedRange_granularity({place.index, 0}, _state->granularity);
    setSelectedRange_affinity_stillSelecting(_state->mouseAnchor, place.affinity, true);
}

bool NSTextView::isInSelection(NSPoint point) {
    // Only the line at the point: the whole selection may not be laid out yet.
    const NSRange part = NSIntersectionRange(_state->selection, lineAt(placeAtPoint(point)));
    NSTextContainer* container = containerNear(point);
    if (part.length == 0 || !container) return false;
    const NSPoint origin = originOfTextContainer(container);
    NSUInteger count = 0;
    const NSRect* rects =
        _state->layoutManager
            ->rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
                part, _state->selection, container, &count);
    return std::any_of(rects, rects + count, [&](const NSRect& rect) {
        return NSMouseInRect({point.x - origin.x, point.y - origin.y}, rect, true);
    });
}

void NSTextView::selectTo(NSPoint point) {
    const CaretPlace place = placeAtPoint(point);
    const NSRange there = selectionRangeForProposedRange_granularity({place.index, 0}, _state->granularity);
    const NSRange anchor = _state->clamped(_state->mouseAnchor);
    const NSUInteger start = std::min(anchor.location, there.location);
    const NSUInteger end = std::max(NSMaxRange(anchor), NSMaxRange(there));
    const NSSelectionGranularity granularity = _state->granularity;
    setSelectedRange_affinity_stillSelecting({start, end - start}, place.affinity, true);
    _state->granularity = granularity;
    // A key that extends the selection goes on from the end where the pointer is.
    _state->fixedEnd = place.index <= anchor.location ? end : start;
}

void NSTextView::mouseDragged(NSEvent* event) {
    if (!event || !_state->isSelecting || !mayLayOut()) return;
    const auto alive = Retained<NSTextView>::retaining(this);
    const NSPoint point = convertPoint_fromView(event->locationInWindow(), nullptr);
    if (_state->mayDrag) {
        const float far = std::hypot(point.x - _state->mouseDown.x, point.y - _state->mouseDown.y);
        if (far < metrics::kDragDistance) return;
        _state->isSelecting = _state->mayDrag = false;
        beginDrag();
        return;
    }
    _state->lastDrag.set(event);
    selectTo(point);
    const bool isOutside = !NSMouseInRect(point, visibleRect(), true);
    if (!isOutside) return stopAutoscrolling();
    if (_state->autoscroll) return;
    _state->autoscroll =
        Retained<NSTimer>::retaining(NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(
            kAutoscrollPeriod, this, "autoscrollSelection:"_sel, nullptr, true));
    NSRunLoop::currentRunLoop()->addTimer_forMode(_state->autoscroll, NSRunLoopCommonModes);
}

void NSTextView::autoscrollSelection(NSTimer*) {
    const auto event = _state->lastDrag;
    if (!_state->isSelecting || !event || !window() || !mayLayOut()) return stopAutoscrolling();
    const auto alive = Retained<NSTextView>::retaining(this);
    if (autoscroll(event)) selectTo(convertPoint_fromView(event->locationInWindow(), nullptr));
}

void NSTextView::stopAutoscrolling() {
    if (const auto timer = std::move(_state->autoscroll)) timer->invalidate();
}

void NSTextView::mouseUp(NSEvent* event) {
    stopAutoscrolling();
    _state->lastDrag = nullptr;
    if (!_state->isSelecting) return NSText::mouseUp(event);
    _state->isSelecting = false;
    const auto alive = Retained<NSTextView>::retaining(this);
    // A press in the selection that dragged nothing puts the caret there.
    if (std::exchange(_state->mayDrag, false) && mayLayOut()) {
        const CaretPlace place = placeAtPoint(_state->mouseDown);
        setSelectedRange_affinity_stillSelecting({place.index, 0}, place.affinity, false);
    }
    if (_state->selection.length > 0) offerPrimarySelection();
    updateInsertionPointStateAndRestartTimer(true);
}

// The middle button pastes what is selected, here or in another program.
void NSTextView::otherMouseDown(NSEvent* event) {
    if (!event || event->buttonNumber() != 2 || !isEditable() || !mayLayOut())
        return NSText::otherMouseDown(event);
    const auto alive = Retained<NSTextView>::retaining(this);
    const NSPoint point = convertPoint_fromView(event->locationInWindow(), nullptr);
    NSPasteboard* board = NSPasteboard::pasteboardWithName(NSSelectionPboard);
    // Read before the caret moves: the selection may be this view's own.
    NSString* type = board->availableTypeFromArray(readablePasteboardTypes());
    const auto text =
        Retained<NSString>::retaining(type ? board->stringForType(NSStringPboardType) : nullptr);
    if (window() && window()->firstResponder() != this) window()->makeFirstResponder(this);
    setSelectedRange({_state->clamped(characterIndexForInsertionAtPoint(point)), 0});
    if (text) insertText(text);
}

bool NSTextView::clickLink(NSUInteger index) {
    const SEL question = "textView:clickedOnLink:atIndex:"_sel;
    Retained<Object> delegate;
    if (index >= _state->length() || !asksDelegate(question, delegate)) return false;
    const auto link = Retained<Object>::retaining(
        _state->storage->attribute_atIndex_effectiveRange(NSLinkAttributeName, index, nullptr));
    return link && send<bool>(delegate, question, this, link.get(), index);
}

// MARK: Dragging

bool NSTextView::beginDrag() {
    NSPasteboard* board = NSPasteboard::pasteboardWithName(NSDragPboard);
    return writeSelectionToPasteboard_types(board, writablePasteboardTypes()) &&
           NSDraggingInfo::drag(window(), this);
}

NSUInteger NSTextView::dropIndex(NSDraggingInfo* info) {
    return placeAtPoint(convertPoint_fromView(info->draggingLocation(), nullptr)).index;
}

// The caret that shows where a drop goes.
void NSTextView::showDropPlace(NSUInteger index) {
    _state->dropIndex = index;
    setNeedsPreparation();
}

// The text that loses what is dropped here; null where it is copied.
NSTextView* NSTextView::moverOf(NSDraggingInfo* info) {
    auto* source = cast<NSTextView>(info->draggingSource());
    if (!source || !source->isEditable() || GetCurrentKeyModifiers() & kKeyModifierCommand) return nullptr;
    return source == this || !(isFieldEditor() || source->isFieldEditor()) ? source : nullptr;
}

NSUInteger NSTextView::draggingMoved(NSDraggingInfo* info) {
    if (!info || !isEditable() || !mayLayOut()) return NSDragOperationNone;
    showDropPlace(dropIndex(info));
    return moverOf(info) ? NSDragOperationMove : NSDragOperationCopy;
}

void NSTextView::draggingExited(NSDraggingInfo*) { showDropPlace(NSNotFound); }

bool NSTextView::performDragOperation(NSDraggingInfo* info) {
    if (!info || !isEditable() || !mayLayOut()) return false;
    const auto alive = Retained<NSTextView>::retaining(this);
    showDropPlace(NSNotFound);
    NSUInteger index = dropIndex(info);
    const NSRange source = _state->selection;
    const auto mover = Retained<NSTextView>::retaining(moverOf(info));
    const bool moves = mover == this;
    if (moves && index >= source.location && index <= NSMaxRange(source)) return false;
    breakUndoCoalescing();
    if (moves) {
        if (!replace(source, u""_ns)) return false;
        if (index > source.location) index -= source.length;
        breakUndoCoalescing();
    }
    index = _state->clamped(index);
    setSelectedRange({index, 0});
    if (!readSelectionFromPasteboard(info->draggingPasteboard())) return false;
    if (mover && !moves) mover->replace(mover->_state->selection, u""_ns);
    const NSUInteger end = _state->selection.location;
    if (end > index) setSelectedRange({index, end - index});
    if (window()) window()->makeFirstResponder(this);
    return true;
}

}  // namespace pelvor
