// SPDX-License-Identifier: Apache-2.0
// Where carets go, and the commands of keys.
#include <algorithm>
#include <cmath>

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSUndoManager.h"
#include "Interface/NSClipView.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSWindow.h"
#include "Interface/Texts/TextMoves.h"
#include "Interface/Texts/TextViewState.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/TextAttributes.h"

namespace pelvor {
namespace {

constexpr int kMostAttempts = 3;

// What was deleted last up to the end of something, for `yank:`.
Retained<NSAttributedString>& killed() {
    static auto* const text = new Retained<NSAttributedString>;
    return *text;
}

float distance(float place, float start, float end) {
    return place < start ? start - place : place > end ? place - end : 0;
}

}  // namespace

// MARK: Lines

// The container that shows the point, or the nearest one.
NSTextContainer* NSTextView::containerNear(NSPoint point) {
    NSTextContainer* nearest = nullptr;
    float least = 0;
    const NSRange near = indexesOfTextContainersNearRect({point, {1, 1}});
    for (NSUInteger i = near.location; i < NSMaxRange(near); ++i) {
        NSTextContainer* container = _state->layoutManager->textContainerAtIndex(i);
        const NSRect rect{originOfTextContainer(container), container->containerSize()};
        const float far = distance(point.y, NSMinY(rect), NSMaxY(rect)) * 1000 +
                          distance(point.x, NSMinX(rect), NSMaxX(rect));
        if (nearest && far >= least) continue;
        nearest = container;
        least = far;
    }
    return nearest;
}

// The line of the place: {length, 0} behind a last line end.
NSRange NSTextView::lineAt(CaretPlace place) {
    const NSUInteger length = _state->length();
    NSUInteger index = _state->clamped(place.index);
    if (index > 0 && place.affinity == NSSelectionAffinityUpstream) --index;
    if (index == length) {
        const NSRange paragraph = paragraphsAround(string(), {index, 0});
        if (paragraph.length == 0) return {length, 0};
        --index;
    }
    NSRange line;
    _state->layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(index, &line);
    return line;
}

// The line's rectangle in its container.
NSRect NSTextView::lineRect(NSUInteger index, NSTextContainer** container) {
    NSLayoutManager* layout = _state->layoutManager;
    if (index < _state->length()) {
        *container = layout->textContainerForGlyphAtIndex_effectiveRange(index, nullptr);
        return layout->lineFragmentRectForGlyphAtIndex_effectiveRange(index, nullptr);
    }
    layout->caretRectForCharacterAtIndex(index);  // lays the end of the text out
    *container = layout->extraLineFragmentTextContainer();
    return layout->extraLineFragmentRect();
}

CaretPlace NSTextView::lineEndPlace(NSRange line) {
    const NSUInteger end = NSMaxRange(line);
    if (line.length == 0) return {end};
    if (const NSUInteger lineEnd = lengthOfLineEnd(string(), line)) return {end - lineEnd};
    if (string()->characterAtIndex(end - 1) == 0x2028) return {end - 1};
    return {end, end < _state->length() ? NSSelectionAffinityUpstream : NSSelectionAffinityDownstream};
}

CaretPlace NSTextView::placeInLine(NSRange line, float x) {
    NSTextContainer* container = nullptr;
    const NSRect rect = lineRect(line.location, &container);
    if (!container || line.length == 0) return {line.location};
    NSLayoutManager* layout = _state->layoutManager;
    float fraction = 0;
    NSUInteger index =
        layout->characterIndexForPoint_inTextContainer_fractionOfDistanceBetweenInsertionPoints(
            {x, NSMidY(rect)}, container, &fraction);
    if (fraction > 0.5F) index = _state->places.behindCharacter(string(), index);
    const CaretPlace end = lineEndPlace(line);
    if (index < line.location) return {line.location};
    // The layout never goes behind the last character of a line that was broken for its width.
    if (end.affinity == NSSelectionAffinityUpstream && index < end.index &&
        _state->places.behindCharacter(string(), index) == end.index) {
        const float before = NSMinX(layout->caretRectForCharacterAtIndex(index));
        const float behind = NSMinX(layout->caretRectBehindCharacterAtIndex(end.index - 1));
        if (std::abs(x - behind) < std::abs(x - before)) return end;
    }
    return index >= end.index ? end : CaretPlace{index};
}

CaretPlace NSTextView::placeAtPoint(NSPoint point) {
    NSTextContainer* container = mayLayOut() ? containerNear(point) : nullptr;
    if (!container) return {};
    const NSPoint origin = originOfTextContainer(container);
    const NSPoint inside{point.x - origin.x, point.y - origin.y};
    NSLayoutManager* layout = _state->layoutManager;
    const NSUInteger glyph = layout->glyphIndexForPoint_inTextContainer(inside, container);
    NSRange line = lineAt({glyph});
    // Below the last line end the text goes on.
    const NSRect extra = layout->extraLineFragmentRect();
    if (glyph >= _state->length() ||
        (NSMaxRange(line) == _state->length() && NSHeight(extra) > 0 &&
         layout->extraLineFragmentTextContainer() == container && inside.y >= NSMinY(extra)))
        return {_state->length()};
    return placeInLine(line, inside.x);
}

NSUInteger NSTextView::characterIndexForInsertionAtPoint(NSPoint point) { return placeAtPoint(point).index; }

bool NSTextView::isRightToLeftAt(CaretPlace place) {
    const NSRange line = lineAt(place);
    if (line.length == 0) return false;
    NSTextContainer* container = nullptr;
    const NSRect rect = lineRect(line.location, &container);
    for (const LaidLine& each : _state->layoutManager->linesInRect(rect, container))
        if (each.range == line) return each.isRightToLeft;
    return false;
}

// MARK: Moves

CaretPlace NSTextView::placeAbove(CaretPlace from, bool isBelow) {
    NSRange line = lineAt(from);
    NSTextContainer* container = nullptr;
    const float top = NSMinY(lineRect(line.location, &container));
    for (;;) {
        if (isBelow ? NSMaxRange(line) >= _state->length() &&
                          (line.length == 0 || lengthOfLineEnd(string(), line) == 0)
                    : line.location == 0)
            return {isBelow ? _state->length() : 0};
        line = lineAt({isBelow ? NSMaxRange(line) : line.location - 1});
        // Not the fragments beside this one.
        NSTextContainer* other = nullptr;
        if (NSMinY(lineRect(line.location, &other)) != top || other != container) break;
    }
    return placeInLine(line, _state->column);
}

// A page away is as far as can be seen, less a line.
CaretPlace NSTextView::placePageAway(CaretPlace from, bool isBelow) {
    const NSRect shown = visibleRect();
    const NSRect caret = caretRect(from);
    const float page = std::max(NSHeight(shown) - NSHeight(caret), NSHeight(caret));
    NSTextContainer* container = containerNear(caret.origin);
    if (!container) return from;
    // What lies between is laid out, so that places there are no estimates.
    const NSPoint origin = originOfTextContainer(container);
    NSRect between{{NSMinX(caret) - origin.x, NSMinY(caret) - origin.y}, {1, page}};
    if (!isBelow) between.origin.y -= page;
    _state->layoutManager->linesInRect(between, container);
    const NSRect now = caretRect(from);
    const float x = _state->column + origin.x;
    const NSPoint target{x, NSMidY(now) + (isBelow ? page : -page)};
    const CaretPlace place = target.y < 0 ? CaretPlace{} : placeAtPoint(target);
    // The caret keeps its height on the screen.
    sizeToFit();
    scrollPoint({NSMinX(shown), NSMinY(shown) + NSMinY(caretRect(place)) - NSMinY(caret)});
    return place;
}

CaretPlace NSTextView::placeAfterMove(TextMove move, CaretPlace from) {
    NSString* text = string();
    TextPlaces& places = _state->places;
    const NSUInteger index = _state->clamped(from.index);
    const auto paragraph = [&](NSUInteger place) { return paragraphsAround(text, {place, 0}); };
    const auto paragraphEnd = [&](NSUInteger place) {
        const NSRange range = paragraph(place);
        return NSMaxRange(range) - lengthOfLineEnd(text, range);
    };
    switch (move) {
        case TextMove::forward:
            return {places.behindCharacter(text, index)};
        case TextMove::backward:
            return {places.beforeCharacter(text, index)};
        case TextMove::wordForward:
            return {places.behindWord(text, index)};
        case TextMove::wordBackward:
            return {places.beforeWord(text, index)};
        case TextMove::left:
            return placeAfterMove(isRightToLeftAt(from) ? TextMove::forward : TextMove::backward, from);
        case TextMove::right:
            return placeAfterMove(isRightToLeftAt(from) ? TextMove::backward : TextMove::forward, from);
        case TextMove::wordLeft:
            return placeAfterMove(isRightToLeftAt(from) ? TextMove::wordForward : TextMove::wordBackward,
                                  from);
        case TextMove::wordRight:
            return placeAfterMove(isRightToLeftAt(from) ? TextMove::wordBackward : TextMove::wordForward,
                                  from);
        case TextMove::lineBeginning:
            return {lineAt(from).location};
        case TextMove::lineEnd:
            return lineEndPlace(lineAt(from));
        case TextMove::lineLeft:
            return placeAfterMove(isRightToLeftAt(from) ? TextMove::lineEnd : TextMove::lineBeginning, from);
        case TextMove::lineRight:
            return placeAfterMove(isRightToLeftAt(from) ? TextMove::lineBeginning : TextMove::lineEnd, from);
        case TextMove::paragraphBeginning:
            return {paragraph(index).location};
        case TextMove::paragraphEnd:
            return {paragraphEnd(index)};
        case TextMove::paragraphForward: {
            const NSUInteger end = paragraphEnd(index);
            return {end > index ? end
                                : paragraphEnd(std::min(NSMaxRange(paragraph(index)), _state->length()))};
        }
        case TextMove::paragraphBackward: {
            const NSUInteger start = paragraph(index).location;
            return {start < index || start == 0 ? start : paragraph(start - 1).location};
        }
        case TextMove::documentBeginning:
            return {};
        case TextMove::documentEnd:
            return {_state->length()};
        case TextMove::up:
            return placeAbove(from, false);
        case TextMove::down:
            return placeAbove(from, true);
        case TextMove::pageUp:
            return placePageAway(from, false);
        case TextMove::pageDown:
            return placePageAway(from, true);
    }
    return from;
}

namespace {

bool keepsColumn(TextMove move) {
    return move == TextMove::up || move == TextMove::down || move == TextMove::pageUp ||
           move == TextMove::pageDown;
}

// Whether a move out of a selection goes to its end rather than to its beginning.
bool goesForward(TextMove move) {
    switch (move) {
        case TextMove::right:
        case TextMove::down:
        case TextMove::forward:
        case TextMove::wordRight:
        case TextMove::wordForward:
        case TextMove::lineEnd:
        case TextMove::lineRight:
        case TextMove::paragraphEnd:
        case TextMove::paragraphForward:
        case TextMove::documentEnd:
        case TextMove::pageDown:
            return true;
        default:
            return false;
    }
}

}  // namespace

void NSTextView::moveBy(TextMove move, bool extends) {
    if (!isSelectable() || !mayLayOut() || !textContainer()) return;
    const auto alive = Retained<NSTextView>::retaining(this);
    unmarkText();
    const NSRange old = _state->selection;
    const bool isForward = goesForward(move);
    NSUInteger fixed = _state->fixedEnd;
    if (fixed != old.location && fixed != NSMaxRange(old)) fixed = isForward ? old.location : NSMaxRange(old);
    // Without Shift, a step to the side out of a selection ends at its edge.
    const bool isStep = move == TextMove::left || move == TextMove::right || move == TextMove::forward ||
                        move == TextMove::backward;
    CaretPlace from{isForward ? NSMaxRange(old) : old.location, _state->affinity};
    if (extends) from.index = fixed == old.location ? NSMaxRange(old) : old.location;
    float column = _state->column;
    if (keepsColumn(move) && column == kNoColumn) {
        NSTextContainer* container = containerNear(caretRect(from).origin);
        column = NSMinX(caretRect(from)) - (container ? originOfTextContainer(container).x : 0);
    }
    _state->column = column;
    const bool leavesSelection = !extends && isStep && old.length > 0;
    const CaretPlace to = leavesSelection ? from : placeAfterMove(move, from);
    if (extends) {
        const NSUInteger start = std::min(fixed, to.index);
        setSelectedRange_affinity_stillSelecting({start, std::max(fixed, to.index) - start}, to.affinity,
                                                 false);
        _state->fixedEnd = fixed;
    } else {
        setSelectedRange_affinity_stillSelecting({to.index, 0}, to.affinity, false);
    }
    if (keepsColumn(move)) _state->column = column;
    scrollRangeToVisible({to.index, 0});
}

// MARK: Deleting

void NSTextView::deleteBy(TextMove move) {
    if (!isEditable() || !mayLayOut()) return;
    if (hasMarkedText()) return discardMarkedText();
    NSRange range = _state->selection;
    const bool isForward = goesForward(move);
    if (range.length == 0) {
        NSUInteger to = placeAfterMove(move, {range.location, _state->affinity}).index;
        // At its end already, the line end goes.
        if (to == range.location)
            to = isForward ? _state->places.behindCharacter(string(), to)
                           : _state->places.beforeCharacter(string(), to);
        range = {std::min(range.location, to), isForward ? to - range.location : range.location - to};
        if (range.length == 0) return;
        const bool isKill = move == TextMove::lineEnd || move == TextMove::lineBeginning ||
                            move == TextMove::paragraphEnd || move == TextMove::paragraphBackward;
        if (isKill)
            killed() =
                Retained<NSAttributedString>::retaining(_state->storage->attributedSubstringFromRange(range));
    }
    replace(range, u""_ns);
}

void NSTextView::deleteSelection(id) {
    if (!isEditable()) return;
    discardMarkedText();
    if (_state->selection.length > 0) replace(_state->selection, u""_ns);
}

void NSTextView::yank(id) {
    if (killed()) insertText(killed());
}

// Swaps the characters before and behind the caret, or the two before it at the end of a line.
void NSTextView::transpose(id) {
    if (!isEditable() || _state->selection.length > 0) return;
    NSString* text = string();
    TextPlaces& places = _state->places;
    NSUInteger middle = _state->selection.location;
    const NSRange paragraph = paragraphsAround(text, {middle, 0});
    if (middle == NSMaxRange(paragraph) - lengthOfLineEnd(text, paragraph))
        middle = places.beforeCharacter(text, middle);
    if (middle <= paragraph.location) return;
    const NSUInteger start = places.beforeCharacter(text, middle), end = places.behindCharacter(text, middle);
    if (start >= middle || end <= middle) return;
    NSString* first = text->substringWithRange({start, middle - start});
    NSString* second = text->substringWithRange({middle, end - middle});
    replace({start, end - start}, second->stringByAppendingString(first));
}

void NSTextView::changeWordsBy(NSString* (NSString::*change)()) {
    if (!isEditable() || !_state->storage) return;
    const NSRange words = selectionRangeForProposedRange_granularity(_state->selection, NSSelectByWord);
    if (words.length > 0) replace(words, (string()->substringWithRange(words)->*change)());
}

void NSTextView::align(int alignment) {
    if (!isEditable() || !_state->storage) return;
    const auto alive = Retained<NSTextView>::retaining(this);
    const NSRange range = paragraphsAround(string(), _state->selection);
    if (!shouldChangeTextInRange_replacementString(range, nullptr)) return;
    const auto aligned = [&](NSDictionary* old) {
        auto style = cast<NSParagraphStyle>(old->objectForKey(NSParagraphStyleAttributeName));
        auto changed = (style ? style : NSParagraphStyle::defaultParagraphStyle())->mutableCopy();
        changed->setAlignment(static_cast<NSTextAlignment>(alignment));
        auto attributes = old->mutableCopy();
        attributes->setObject_forKey(changed->copy().get(), NSParagraphStyleAttributeName);
        return attributes->copy();
    };
    const auto typing = Retained<NSDictionary>::retaining(typingAttributes());
    _state->storage->changeAttributesInRange(range, aligned);
    _state->typingAttributes = aligned(typing);
    didChangeText();
}

// MARK: Inserting

// A key that ends the editing of a field. False for views that are no field editors.
bool NSTextView::endFieldEditing(int movement) {
    if (!isFieldEditor()) return false;
    const auto alive = Retained<NSTextView>::retaining(this);
    unmarkText();
    const SEL question = "textShouldEndEditing:"_sel;
    if (Retained<Object> delegate; asksDelegate(question, delegate) && !send<bool>(delegate, question, this))
        return true;
    _state->hasBegunEditing = false;
    tell(NSTextDidEndEditingNotification, "textDidEndEditing:"_sel,
         NSDictionary::of({{u"NSTextMovement"_ns, NSNumber::numberWithInt(movement)}}));
    return true;
}

void NSTextView::insertNewline(id) {
    if (!endFieldEditing(NSReturnTextMovement)) insertText(u"\n"_ns);
}

void NSTextView::insertTab(id) {
    if (!endFieldEditing(NSTabTextMovement)) insertText(u"\t"_ns);
}

void NSTextView::insertBacktab(id) {
    if (!endFieldEditing(NSBacktabTextMovement) && window()) window()->selectPreviousKeyView(this);
}

void NSTextView::cancelOperation(id sender) {
    if (hasMarkedText()) return discardMarkedText();
    if (!endFieldEditing(NSCancelTextMovement) && nextResponder())
        nextResponder()->tryToPerform_with("cancelOperation:"_sel, sender);
}

void NSTextView::selectLine(id) {
    if (!mayLayOut()) return;
    const NSRange first = lineAt({_state->selection.location, _state->affinity});
    const NSUInteger last = NSMaxRange(_state->selection);
    selectAs(_state->selection.length ? NSUnionRange(first, lineAt({last - 1})) : first);
}

// MARK: Scrolling

void NSTextView::scrollBy(TextMove move) {
    const NSRect shown = visibleRect();
    const float line = NSHeight(caretRect({_state->selection.location}));
    NSPoint point = shown.origin;
    switch (move) {
        case TextMove::up:
            point.y -= line;
            break;
        case TextMove::down:
            point.y += line;
            break;
        case TextMove::pageUp:
            point.y -= NSHeight(shown) - line;
            break;
        case TextMove::pageDown:
            point.y += NSHeight(shown) - line;
            break;
        case TextMove::documentBeginning:
            point.y = 0;
            break;
        default:
            if (mayLayOut()) caretRectForCharacterAtIndex(_state->length());
            sizeToFit();
            point.y = NSMaxY(bounds()) - NSHeight(shown);
    }
    scrollPoint(point);
}

void NSTextView::centerSelection(id) {
    if (!mayLayOut()) return;
    const NSRect shown = visibleRect(), caret = caretRect({_state->selection.location, _state->affinity});
    scrollPoint({NSMinX(shown), NSMidY(caret) - NSHeight(shown) / 2});
}

void NSTextView::scrollRangeToVisible(NSRange range) {
    if (!mayLayOut() || !textContainer()) return;
    range = _state->clamped(range);
    // A caret in an upper line is the only place that has a line of its own choice.
    const bool isCaret = range.length == 0 && range.location == _state->selection.location;
    const CaretPlace caret{range.location, isCaret ? _state->affinity : NSSelectionAffinityDownstream};
    const auto wanted = [&] {
        NSRect rect = range.length == 0 ? caretRect(caret) : rectForCharacterRange(range);
        rect.size.width = std::max(NSWidth(rect), 1.0F);
        return rect;
    };
    NSRect rect = wanted();
    // What will be seen around a place out of sight is laid out first: its places are no estimates then.
    const NSRect visible = visibleRect();
    for (int attempt = 0; attempt < kMostAttempts && !NSContainsRect(visible, rect); ++attempt) {
        const NSRect around = NSInsetRect(rect, 0, -NSHeight(visible));
        eachContainerIn(around, [&](NSTextContainer* container, NSPoint, NSRect part) {
            _state->layoutManager->linesInRect(part, container);
        });
        const NSRect now = wanted();
        if (now == rect) break;
        rect = now;
    }
    sizeToFit();
    if (NSHeight(rect) > 0) scrollRectToVisible(rect);
}

bool NSTextView::validateMenuItem(id item) {
    const SEL action = item && item->respondsToSelector("action"_sel) ? send<SEL>(item, "action"_sel) : SEL();
    const auto is = [&](SEL selector) { return action == selector; };
    if (is("copy:"_sel)) return _state->selection.length > 0;
    if (is("cut:"_sel) || is("delete:"_sel)) return isEditable() && _state->selection.length > 0;
    if (is("selectAll:"_sel)) return isSelectable() && _state->length() > 0;
    if (is("paste:"_sel) || is("pasteAsPlainText:"_sel)) return isEditable();
    if (!is("undo:"_sel) && !is("redo:"_sel)) return true;
    NSUndoManager* manager = undoManager();
    if (!manager) return false;
    // The title tells what would be undone.
    if (auto shown = cast<NSMenuItem>(item))
        shown->setTitle(is("undo:"_sel) ? manager->undoMenuItemTitle() : manager->redoMenuItemTitle());
    return is("undo:"_sel) ? manager->canUndo() : manager->canRedo();
}

}  // namespace pelvor
