// SPDX-License-Identifier: Apache-2.0
// What of a text view is drawn again, drawing, and the caret.
#include <algorithm>
#include <cmath>

#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSRunLoop.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/NSClipView.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSWindow.h"
#include "Interface/Texts/TextViewState.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

constexpr double kBlinkPeriod = 0.53;  // on or off
constexpr double kBlinkingTime = 10;   // after the last key
constexpr float kCaretWidth = 1;
constexpr float kLittle = 0.01F;  // keeps a line's lower edge from touching the next line
constexpr int kMostAttempts = 3;

class Flag {
  public:
    explicit Flag(bool& flag) : _flag(flag) { _flag = true; }
    ~Flag() { _flag = false; }
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;

  private:
    bool& _flag;
};

}  // namespace

// MARK: What has to be drawn again

void NSTextView::setNeedsPreparation() {
    if (_state->needsPreparing) return;
    _state->needsPreparing = true;
    setNeedsViewWillDraw();
}

void NSTextView::viewWillDraw() {
    NSText::viewWillDraw();
    prepare();
}

// Lays out what can be seen, and compares it with what is on the screen.
void NSTextView::prepare() {
    if (_state->isPreparing || !window()) return;
    if (!mayLayOut()) {
        _state->needsPreparing = false;  // the end of the edit asks for it again
        return;
    }
    if (!_state->needsPreparing && visibleRect() == _state->preparedRect) return;
    const auto alive = Retained<NSTextView>::retaining(this);
    const Flag preparing(_state->isPreparing);
    _state->needsPreparing = false;
    NSRect visible;
    const bool wantsCaret = isEditable() && isActive();
    for (int attempt = 0; attempt < kMostAttempts && visible != visibleRect(); ++attempt) {
        // Laying out one place moves those below it, so that everything is laid out before places are
        // compared.
        if (wantsCaret) caretRect({_state->selection.location, _state->affinity});
        visible = visibleRect();
        showLines(visible);
        sizeToFit();
    }
    _state->preparedRect = visible;
    placeCaret();
    tellInputMethod();
}

void NSTextView::showLines(NSRect visible) {
    const ShownLine* anchor =
        NSMinY(visible) > 0 ? _state->shown.firstIn(NSMinY(visible), NSMaxY(visible)) : nullptr;
    const NSUInteger anchorIndex = anchor ? anchor->range.location : NSNotFound;
    const float anchorY = anchor ? NSMinY(anchor->rect) : 0;
    std::vector<ShownLine> lines;
    const NSRange selection = _state->selection;
    const bool active = isActive();
    eachContainerIn(visible, [&](NSTextContainer* container, NSPoint origin, NSRect part) {
        for (const LaidLine& line : _state->layoutManager->linesInRect(part, container)) {
            ShownLine& shown = lines.emplace_back();
            static_cast<LaidLine&>(shown) = line;
            shown.rect = NSOffsetRect(line.rect, origin.x, origin.y);
            shown.used = NSOffsetRect(line.used, origin.x, origin.y);
            shown.selected = NSIntersectionRange(selection, line.range);
            shown.selected.location -= shown.selected.length ? line.range.location : shown.selected.location;
            shown.isSelectedToEdge = NSMaxRange(selection) > NSMaxRange(line.range);
            shown.isActive = active;
        }
    });
    _state->shown.update(std::move(lines), [&](NSRect rect) {
        // Whole lines: letters stand out of the rectangles of their lines at the sides.
        setNeedsDisplayInRect({{NSMinX(visible), NSMinY(rect)}, {NSWidth(visible), NSHeight(rect)}});
    });
    if (anchorIndex < _state->length()) keepPlaceOf(anchorIndex, anchorY);
}

// Text above the visible part was laid out for the first time, and is higher or lower than it was estimated:
// what the user looks at stays where it is.
void NSTextView::keepPlaceOf(NSUInteger index, float y) {
    NSTextContainer* container = nullptr;
    const NSRect rect = lineRect(index, &container);
    if (!container || !enclosingScrollView()) return;
    const float moved = NSMinY(rect) + originOfTextContainer(container).y - y;
    if (moved == 0) return;
    sizeToFit();
    const NSRect visible = visibleRect();
    scrollPoint({NSMinX(visible), NSMinY(visible) + moved});
}

// MARK: Places in the view

NSRect NSTextView::caretRect(CaretPlace place) {
    if (!mayLayOut() || !textContainer()) return {};
    NSLayoutManager* layout = _state->layoutManager;
    const NSUInteger index = _state->clamped(place.index), length = _state->length();
    const bool isBehind = place.affinity == NSSelectionAffinityUpstream && index > 0;
    const NSRect rect = isBehind ? layout->caretRectBehindCharacterAtIndex(index - 1)
                                 : layout->caretRectForCharacterAtIndex(index);
    // The end of the text is in the line of the last character, or in one behind it.
    NSTextContainer* container =
        index == length && !isBehind ? layout->extraLineFragmentTextContainer() : nullptr;
    if (!container && length > 0)
        container = layout->textContainerForGlyphAtIndex_effectiveRange(
            isBehind || index == length ? index - 1 : index, nullptr);
    if (!container) return {};
    const NSPoint origin = originOfTextContainer(container);
    return NSOffsetRect(rect, origin.x, origin.y);
}

NSRect NSTextView::caretRectForCharacterAtIndex(NSUInteger index) {
    requirePlace(index, _state->length(), "caretRectForCharacterAtIndex:");
    return caretRect({index});
}

NSPoint NSTextView::contextMenuPlace() {
    const NSRect caret = caretRectForCharacterAtIndex(NSMaxRange(selectedRange()));
    const NSPoint below{NSMinX(caret), NSMaxY(caret)};
    return NSHeight(caret) > 0 && NSPointInRect(below, visibleRect()) ? below : NSText::contextMenuPlace();
}

NSRect NSTextView::rectForCharacterRange(NSRange range) {
    requireRange(range, _state->length(), "rectForCharacterRange:");
    if (!mayLayOut()) return {};
    if (range.length == 0) return caretRect({range.location});
    NSLayoutManager* layout = _state->layoutManager;
    const NSTextContainer* first =
        layout->textContainerForGlyphAtIndex_effectiveRange(range.location, nullptr);
    const NSTextContainer* last =
        layout->textContainerForGlyphAtIndex_effectiveRange(NSMaxRange(range) - 1, nullptr);
    NSUInteger i = 0;
    while (i < layout->textContainerCount() && layout->textContainerAtIndex(i) != first) ++i;
    NSRect bounds{};
    for (; i < layout->textContainerCount(); ++i) {
        NSTextContainer* container = layout->textContainerAtIndex(i);
        const NSRect rect = layout->boundingRectForGlyphRange_inTextContainer(range, container);
        const NSPoint origin = originOfTextContainer(container);
        if (!NSIsEmptyRect(rect)) bounds = NSUnionRect(bounds, NSOffsetRect(rect, origin.x, origin.y));
        if (container == last) break;
    }
    return bounds;
}

// MARK: Drawing

void NSTextView::drawRect(NSRect dirty) {
    if (drawsBackground()) {
        backgroundColor()->set();
        NSRectFill(dirty);
    }
    if (!_state->layoutManager) return;
    if (!mayLayOut()) {
        // In the middle of an edit: all of this is drawn when the edit has ended.
        _state->shown.invalidateAll();
        return;
    }
    eachContainerIn(dirty, [&](NSTextContainer* container, NSPoint origin, NSRect part) {
        part.size.height -= std::min(kLittle, NSHeight(part) / 2);
        NSLayoutManager* layout = _state->layoutManager;
        const NSRange range = layout->glyphRangeForBoundingRect_inTextContainer(part, container);
        layout->drawBackgroundForGlyphRange_atPoint(range, origin);
        drawSelection(range, container, origin);
        layout->drawGlyphsForGlyphRange_atPoint(range, origin);
    });
    if (_state->isCaretOn && NSIntersectsRect(_state->shownCaret, dirty))
        drawInsertionPointInRect_color_turnedOn(_state->shownCaret, _state->caretColor, true);
}

void NSTextView::drawSelection(NSRange range, NSTextContainer* container, NSPoint origin) {
    const NSRange part = NSIntersectionRange(range, _state->selection);
    if (part.length == 0) return;
    NSColor* color = _state->selectionColor;
    if (!isActive() || !color)
        color = themeColor(isActive() ? ThemeColor::textSelection : ThemeColor::inactiveSelection);
    color->set();
    NSUInteger count = 0;
    const NSRect* rects =
        _state->layoutManager
            ->rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
                part, _state->selection, container, &count);
    // On whole pixels, so that the rectangles of neighbouring lines and spans leave no light seam.
    for (NSUInteger i = 0; i < count; ++i)
        NSRectFill(centerScanRect(NSOffsetRect(rects[i], origin.x, origin.y)));
}

// MARK: Caret

bool NSTextView::isActive() {
    return window() && window()->isKeyWindow() && window()->firstResponder() == this;
}

bool NSTextView::shouldDrawInsertionPoint() {
    return isEditable() && _state->selection.length == 0 && isActive();
}

void NSTextView::drawInsertionPointInRect_color_turnedOn(NSRect rect, NSColor* color, bool isOn) {
    if (!isOn) return setNeedsDisplayInRect(rect);
    (color ? color : themeColor(ThemeColor::text))->set();
    NSRectFill(rect);
}

// Input methods show their lists at the caret.
void NSTextView::tellInputMethod() {
    const BackendWindow number = window() ? window()->state().backendWindow : 0;
    if (!number) return;
    InterfaceBackend& backend = DisplayConnection::shared().backend();
    if (isEditable() && isActive()) {
        const NSRect caret =
            convertRect_toView(caretRect({_state->selection.location, _state->affinity}), nullptr);
        ViewRect edges = ViewRect::of(caret);
        edges.right = edges.left + static_cast<double>(kCaretWidth);
        const PixelRect pixels = window()->state().painter.pixels(edges);
        backend.setTextInput(number, &pixels);
        _state->takesText = true;
    } else if (std::exchange(_state->takesText, false)) {
        backend.setTextInput(number, nullptr);
    }
}

// Where the caret is to be seen; the old and the new place are drawn again.
void NSTextView::placeCaret() {
    NSRect rect{};
    const bool isDrop = _state->dropIndex != NSNotFound;
    if (isDrop || shouldDrawInsertionPoint()) {
        rect = caretRect(isDrop ? CaretPlace{_state->dropIndex}
                                : CaretPlace{_state->selection.location, _state->affinity});
        rect.size.width = NSHeight(rect) > 0 ? kCaretWidth : 0;
        // At the edge of the view the caret is still to be seen.
        rect.origin.x = std::clamp(NSMinX(rect), 0.0F, std::max(NSWidth(bounds()) - kCaretWidth, 0.0F));
        rect = centerScanRect(rect);
    }
    if (rect == _state->shownCaret) return;
    setNeedsDisplayInRect(_state->shownCaret);
    setNeedsDisplayInRect(rect);
    _state->shownCaret = rect;
}

void NSTextView::updateInsertionPointStateAndRestartTimer(bool restarts) {
    if (!shouldDrawInsertionPoint()) {
        stopBlinking();
        return setNeedsPreparation();
    }
    setNeedsPreparation();
    if (!restarts && _state->blink) return;
    _state->lastChange = NSDate::currentTimeIntervalSinceReferenceDate();
    if (!_state->isCaretOn) setNeedsDisplayInRect(_state->shownCaret);
    _state->isCaretOn = true;
    if (_state->blink) return _state->blink->setFireDate(NSDate::dateWithTimeIntervalSinceNow(kBlinkPeriod));
    _state->blink =
        Retained<NSTimer>::retaining(NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(
            kBlinkPeriod, this, "blinkCaret:"_sel, nullptr, true));
    NSRunLoop::currentRunLoop()->addTimer_forMode(_state->blink, NSRunLoopCommonModes);
}

void NSTextView::stopBlinking() {
    if (const auto timer = std::move(_state->blink)) timer->invalidate();
    _state->isCaretOn = true;
}

void NSTextView::blinkCaret(NSTimer*) {
    const bool isOver = NSDate::currentTimeIntervalSinceReferenceDate() - _state->lastChange >= kBlinkingTime;
    if (!shouldDrawInsertionPoint() || isOver) {
        stopBlinking();
        setNeedsDisplayInRect(_state->shownCaret);
        return setNeedsPreparation();
    }
    _state->isCaretOn = !_state->isCaretOn;
    setNeedsDisplayInRect(_state->shownCaret);
}

// MARK: Focus

bool NSTextView::becomeFirstResponder() {
    if (!NSText::becomeFirstResponder()) return false;
    _state->hasBegunEditing = false;
    _state->isCaretOn = true;
    // The window knows the new first responder a moment later.
    _state->lastChange = NSDate::currentTimeIntervalSinceReferenceDate();
    performSelector_withObject_afterDelay(this, "windowKeyDidChange:"_sel, nullptr, 0);
    setNeedsPreparation();
    return true;
}

bool NSTextView::resignFirstResponder() {
    const auto alive = Retained<NSTextView>::retaining(this);
    if (hasMarkedText()) NSInputManager::currentInputManager()->abandonMarkedTextInWindow(window());
    unmarkText();
    if (_state->hasBegunEditing || isFieldEditor()) {  // who lent the editor has to take it back
        const SEL question = "textShouldEndEditing:"_sel;
        if (Retained<Object> delegate;
            asksDelegate(question, delegate) && !send<bool>(delegate, question, this))
            return false;
        _state->hasBegunEditing = false;
        tell(NSTextDidEndEditingNotification, "textDidEndEditing:"_sel,
             NSDictionary::of({{u"NSTextMovement"_ns, NSNumber::numberWithInt(NSIllegalTextMovement)}}));
    }
    if (!NSText::resignFirstResponder()) return false;
    breakUndoCoalescing();
    stopBlinking();
    setNeedsPreparation();
    return true;
}

void NSTextView::windowKeyDidChange(id) { updateInsertionPointStateAndRestartTimer(true); }

void NSTextView::viewWillMoveToWindow(NSWindow* window) {
    if (!window) {
        stopBlinking();
        stopAutoscrolling();
    }
    watchWindow(window);
    NSText::viewWillMoveToWindow(window);
}

void NSTextView::viewDidMoveToWindow() {
    NSText::viewDidMoveToWindow();
    _state->shown.invalidateAll();
    _state->needsPreparing = false;
    setNeedsPreparation();
}

void NSTextView::viewDidMoveToSuperview() {
    NSText::viewDidMoveToSuperview();
    sizeToFit();
}

void NSTextView::watchWindow(NSWindow* window) {
    if (window == _state->observedWindow) return;
    NSNotificationCenter* centre = NSNotificationCenter::defaultCenter();
    for (NSString* name : {NSWindowDidBecomeKeyNotification, NSWindowDidResignKeyNotification}) {
        if (_state->observedWindow) centre->removeObserver_name_object(this, name, _state->observedWindow);
        if (window) centre->addObserver_selector_name_object(this, "windowKeyDidChange:"_sel, name, window);
    }
    _state->observedWindow = window;
}

}  // namespace pelvor
