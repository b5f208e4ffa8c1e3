// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRPageView.h"

#include <algorithm>

#include "Foundation/NSArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSPasteboardTypes.h"
#include "Interface/NSDraggingInfo.h"
#include "Interface/NSEvent.h"
#include "Interface/NSMenu.h"
#include "Interface/NSPasteboard.h"
#include "PBIdleQueue.h"
#include "PBProfileKeys.h"
#include "PBProfileSet.h"
#include "PBRegistry.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/Windows/WRFileDropView.h"
#include "Writer/Windows/WRSpellingMarks.h"
#include "Writer/Windows/WindowsLibrary.h"
#include "Writer/Windows/WordDrag.h"

namespace pelvor {
namespace {

constexpr float kGap = 14;               // around pages and between them
constexpr NSUInteger kMostShown = 4096;  // of a long range; the rest need not be laid out to show it
constexpr NSUInteger kPagesAtIdle = 4;   // found in one go

PBIdleQueue* growingViews() {
    static PBIdleQueue* const queue = PBIdleQueue::initWithSelector("findMorePages"_sel).leak();
    return queue;
}

NSColor* misspelledColor() { return NSColor::colorWithCalibratedRed_green_blue_alpha(0.86F, 0.1F, 0.1F, 1); }
NSColor* foundColor() { return NSColor::colorWithCalibratedRed_green_blue_alpha(1, 0.93F, 0.6F, 1); }
NSColor* edgeColor() { return NSColor::colorWithCalibratedWhite_alpha(0.7F, 1); }

}  // namespace

PELVOR_DEFINE_CLASS(WRPageView, windowsLibrary) {
    methods.instance<"pageCount", &WRPageView::pageCount>();
    methods.instance<"isComplete", &WRPageView::isComplete>();
    methods.instance<"pageAtHeight:", &WRPageView::pageAtHeight>();
    methods.instance<"frameOfPage:", &WRPageView::frameOfPage>();
    methods.instance<"findPages:", &WRPageView::findPages>();
    methods.instance<"pageWithUnit:", &WRPageView::pageWithUnit>();
    methods.instance<"findMorePages", &WRPageView::findMorePages>();
    methods.instance<"visibleTextRange", &WRPageView::visibleTextRange>();
    methods.instance<"redrawRange:", &WRPageView::redrawRange>();
    methods.instance<"setSpellingMarks:", &WRPageView::setSpellingMarks>();
    methods.instance<"menuForEvent:", &WRPageView::menuForEvent>();
    methods.instance<"setSettings:", &WRPageView::setSettings>();
    methods.instance<"hyphenationDidLoad:", &WRPageView::hyphenationDidLoad>();
    methods.instance<"originOfTextContainer:", &WRPageView::originOfTextContainer>();
    methods.instance<"viewDidMoveToWindow", &WRPageView::viewDidMoveToWindow>();
    methods.instance<"writablePasteboardTypes", &WRPageView::writablePasteboardTypes>();
    methods.instance<"readablePasteboardTypes", &WRPageView::readablePasteboardTypes>();
    methods.instance<"readSelectionFromPasteboard:type:", &WRPageView::readSelectionFromPasteboard_type>();
    methods.instanceAs<"draggingEntered:", &WRPageView::draggingMoved>();
    methods.instanceAs<"draggingUpdated:", &WRPageView::draggingMoved>();
    methods.instance<"performDragOperation:", &WRPageView::performDragOperation>();
    methods.instance<"viewWillDraw", &WRPageView::viewWillDraw>();
    methods.instance<"scrollRangeToVisible:", &WRPageView::scrollRangeToVisible>();
    methods.instance<"isOpaque", &WRPageView::isOpaque>();
    methods.instance<"drawRect:", &WRPageView::drawRect>();
    methods.instance<"doCommandBySelector:", &WRPageView::doCommandBySelector>();
    methods.instance<"insertText:", &WRPageView::insertText>();
}

Retained<WRPageView> WRPageView::create(Retained<NSTextStorage> text, NSDictionary* settings) {
    auto document = std::make_unique<PageDocument>(std::move(text), settings);
    if (!document->hasRoom()) return nullptr;
    document->layoutManager()->setWaitsForHyphenation(false);
    document->findPages(1);
    const NSSize paper = document->frame().paper;
    auto self = cast<WRPageView>(
        NSTextView::initWithFrame_textContainer({{0, 0}, {paper.width + 2 * kGap, paper.height + 2 * kGap}},
                                                document->pages()[0].container, WRPageView::classObject()));
    self->_document = std::move(document);
    self->registerForDraggedTypes(
        self->readablePasteboardTypes()->arrayByAddingObject(NSFilenamesPboardType));
    self->setVerticallyResizable(false);
    self->setDrawsBackground(false);
    self->_document->setEditFunction([view = self.get()] {
        view->setFoundPlaces({});
        view->pagesDidChange();
    });
    self->pagesDidChange();
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self, "hyphenationDidLoad:"_sel, NSHyphenationPatternsDidLoadNotification, nullptr);
    return self;
}

NSColor* WRPageView::deskColor() { return NSColor::colorWithCalibratedWhite_alpha(0.88F, 1); }

WRPageView::~WRPageView() {
    growingViews()->removeObject(this);
    NSNotificationCenter::defaultCenter()->removeObserver(this);
}

// MARK: Pages

NSUInteger WRPageView::pageCount() {
    return _document ? static_cast<NSUInteger>(_document->pages().size()) : 0;
}

bool WRPageView::isComplete() { return !_document || _document->isComplete(); }

NSRect WRPageView::frameOfPage(NSUInteger index) {
    if (!_document) return {};
    const NSSize paper = _document->frame().paper;
    return {{kGap, kGap + static_cast<float>(index) * (paper.height + kGap)}, paper};
}

NSUInteger WRPageView::pageAtHeight(float y) {
    if (!_document || pageCount() == 0) return 0;
    const float step = _document->frame().paper.height + kGap;
    const auto page = static_cast<NSInteger>((y - kGap / 2) / step);
    return static_cast<NSUInteger>(std::clamp<NSInteger>(page, 0, static_cast<NSInteger>(pageCount()) - 1));
}

NSPoint WRPageView::originOfTextContainer(NSTextContainer* container) {
    if (!_document) return {};
    const auto found = _pageOf.find(container);  // the one behind the last page is not in there
    const NSRect page = frameOfPage(found == _pageOf.end() ? pageCount() : found->second);
    return {page.origin.x + _document->frame().left, page.origin.y + _document->frame().top};
}

NSRange WRPageView::indexesOfTextContainersNearRect(NSRect rect) {
    if (pageCount() == 0) return NSTextView::indexesOfTextContainersNearRect(rect);
    const NSUInteger first = pageAtHeight(NSMinY(rect));
    return {first, pageAtHeight(NSMaxY(rect)) + 1 - first};
}

void WRPageView::findPages(NSUInteger count) {
    if (isComplete()) return;
    _document->findPages(count);
    pagesDidChange();
}

NSUInteger WRPageView::pageWithUnit(NSUInteger unit) {
    if (!_document) return 0;
    const NSUInteger page = _document->pageWithUnit(unit);
    pagesDidChange();
    return page;
}

bool WRPageView::setSettings(NSDictionary* settings) {
    if (!_document) return false;
    const SeenPlace upper = upperPlace();
    if (!_document->setSettings(settings)) return false;
    findPages(1);
    pagesDidChange();
    fitFrame();
    setNeedsDisplay(true);
    showPlace(upper);
    return true;
}

WRPageView::SeenPlace WRPageView::upperPlace() {
    const NSRect seen = visibleRect();
    const NSUInteger unit = characterIndexForInsertionAtPoint({NSMidX(seen), NSMinY(seen)});
    return {unit, NSMinY(caretRectForCharacterAtIndex(unit)) - NSMinY(seen)};
}

void WRPageView::showPlace(SeenPlace place) {
    const NSRect seen = visibleRect();
    const float pages = NSHeight(seen) / NSHeight(frameOfPage(0));
    findPages(pageWithUnit(place.unit) + static_cast<NSUInteger>(pages) + 2);
    scrollPoint({NSMinX(seen), NSMinY(caretRectForCharacterAtIndex(place.unit)) - place.height});
}

void WRPageView::hyphenationDidLoad(id) {
    if (!_document) return;
    _document->forgetPages();
    setNeedsDisplay(true);
    pagesDidChange();
}

// Text containers and pages have the same indexes.
void WRPageView::pagesDidChange() {
    const NSUInteger count = pageCount(), before = std::exchange(_toldPages, count);
    if (count < before) std::erase_if(_pageOf, [count](const auto& entry) { return entry.second >= count; });
    for (NSUInteger i = before; i < count; ++i) _pageOf[_document->pages()[i].container] = i;
    for (NSUInteger i = before; i < count; ++i) _document->pages()[i].container->setTextView(this);
    const bool isComplete = this->isComplete();
    if (!isComplete && window()) growingViews()->addObject(this);
    const bool wasComplete = std::exchange(_isToldComplete, isComplete);
    if (count == before && isComplete == wasComplete) return;
    if (count != before) fitFrame();
    // Headers and footers may tell how many pages there are.
    if (isComplete && std::exchange(_shownCount, count) != count) setNeedsDisplay(true);
    NSNotificationCenter::defaultCenter()->postNotificationName_object(WRPageViewDidFindPagesNotification,
                                                                       this);
}

void WRPageView::findMorePages() {
    if (!isComplete()) findPages(_document->rightPages() + kPagesAtIdle);
}

void WRPageView::viewDidMoveToWindow() {
    NSTextView::viewDidMoveToWindow();
    if (!window())
        growingViews()->removeObject(this);
    else if (!isComplete())
        growingViews()->addObject(this);
}

void WRPageView::fitFrame() {
    const NSRect last = frameOfPage(std::max<NSUInteger>(pageCount(), 1) - 1);
    setFrameSize({NSMaxX(last) + kGap, NSMaxY(last) + kGap});
}

// MARK: Keys and mouse

NSMenu* WRPageView::menuForEvent(NSEvent* event) {
    if (event && event->type() == NSRightMouseDown) {
        const NSPoint place = convertPoint_fromView(event->locationInWindow(), nullptr);
        const NSUInteger index = characterIndexForInsertionAtPoint(place);
        if (!NSLocationInRange(index, selectedRange())) setSelectedRange({index, 0});
    }
    return NSTextView::menuForEvent(event);
}

void WRPageView::doCommandBySelector(SEL selector) {
    static const std::pair<SEL, SEL> kScrolling[] = {
        {"moveUp:"_sel, "scrollLineUp:"_sel},
        {"moveDown:"_sel, "scrollLineDown:"_sel},
        {"moveToBeginningOfDocument:"_sel, "scrollToBeginningOfDocument:"_sel},
        {"moveToEndOfDocument:"_sel, "scrollToEndOfDocument:"_sel},
    };
    if (!isEditable())
        for (const auto& [moving, scrolling] : kScrolling)
            if (selector == moving) selector = scrolling;
    NSTextView::doCommandBySelector(selector);
    static const SEL kToBeginning[] = {"moveToBeginningOfDocument:"_sel, "pageUp:"_sel,
                                       "moveToBeginningOfDocumentAndModifySelection:"_sel,
                                       "pageUpAndModifySelection:"_sel};
    if (std::ranges::find(kToBeginning, selector) == std::end(kToBeginning) || selectedRange().location > 0)
        return;
    const NSRect seen = visibleRect();
    if (NSMaxY(caretRectForCharacterAtIndex(0)) <= NSHeight(seen)) scrollPoint({NSMinX(seen), 0});
}

void WRPageView::insertText(id text) {
    auto* string = cast<NSString>(text);
    if (!isEditable() && string && string->isEqualToString(u" "_ns))
        return NSTextView::doCommandBySelector("scrollPageDown:"_sel);
    NSTextView::insertText(text);
}

// MARK: Copying

namespace {

// The plug-in for rich text is loaded when somebody needs it.
void loadRichText() {
    for (id writer : PBRegistry::sharedRegistry()->profilesOfType(PBProfileDocumentWriterType)->profiles()) {
        auto* profile = static_cast<PBProfile*>(writer);
        if (id value = profile->valueForKey(WRFidelityKey); value && value->isEqual(WRFidelityRich))
            profile->profileClass();
    }
}

}  // namespace

NSArray* WRPageView::writablePasteboardTypes() {
    const SEL question = "pageViewHasFormats:"_sel;
    const auto asked = Retained<Object>::retaining(delegate());
    if (asked && asked->respondsToSelector(question) && !send<bool>(asked, question, this))
        return NSArray::of({NSStringPboardType});
    loadRichText();
    return NSTextView::writablePasteboardTypes();
}

NSArray* WRPageView::readablePasteboardTypes() {
    loadRichText();
    return NSTextView::readablePasteboardTypes();
}

bool WRPageView::readSelectionFromPasteboard_type(NSPasteboard* pasteboard, NSString* type) {
    if (!NSTextView::readSelectionFromPasteboard_type(pasteboard, type)) return false;
    const SEL told = "pageViewDidReceiveFormats:"_sel;
    const auto listener = Retained<Object>::retaining(delegate());
    if (type->isEqualToString(NSRTFPboardType) && listener && listener->respondsToSelector(told))
        send(listener, told, this);
    return true;
}

NSUInteger WRPageView::draggingMoved(NSDraggingInfo* info) {
    return hasDraggedFiles(info) ? NSDragOperationCopy : NSTextView::draggingMoved(info);
}

bool WRPageView::performDragOperation(NSDraggingInfo* info) {
    if (openDraggedFiles(info)) return true;
    WordDrag drag(info);
    if (!NSTextView::performDragOperation(info)) return false;
    drag.fitBlanks(this);
    return true;
}

// MARK: Drawing

// Lays out what can be seen.
void WRPageView::viewWillDraw() {
    if (_document) findPages(pageAtHeight(NSMaxY(visibleRect())) + 1);
    NSTextView::viewWillDraw();
}

void WRPageView::scrollRangeToVisible(NSRange range) {
    range.length = std::min(range.length, kMostShown);
    pageWithUnit(NSMaxRange(range));
    NSTextView::scrollRangeToVisible(range);
}

void WRPageView::drawPaper(NSUInteger index, NSRect dirty) {
    auto* context = NSGraphicsContext::currentContext();
    const NSRect page = frameOfPage(index);
    const PageFrame& frame = _document->frame();
    if (!NSContainsRect(page, dirty)) {
        context->setColor(edgeColor());
        context->strokeRect_width(NSInsetRect(page, -1, -1), 1);
    }
    context->setColor(NSColor::whiteColor());
    context->fillRect(page);
    const bool isMarginDirty =
        NSMinY(dirty) < NSMinY(page) + frame.top || NSMaxY(dirty) > NSMaxY(page) - frame.bottom;
    if (!isMarginDirty) return;
    context->saveGraphicsState();
    context->translateXBy_yBy(page.origin.x, page.origin.y);
    _document->drawHeaderAndFooter(index);
    context->restoreGraphicsState();
}

void WRPageView::drawRect(NSRect dirty) {
    const NSUInteger first = pageAtHeight(NSMinY(dirty)), last = pageAtHeight(NSMaxY(dirty));
    if (!NSContainsRect(frameOfPage(first), dirty)) {
        deskColor()->set();
        NSRectFill(dirty);
    }
    if (!_document || pageCount() == 0) return;
    for (NSUInteger page = first; page <= last; ++page) {
        drawPaper(page, dirty);
        if (!_foundPlaces.empty()) drawFoundPlaces(page, dirty);
    }
    NSTextView::drawRect(dirty);
    if (!_spellingMarks || textStorage()->editedMask()) return;
    for (NSUInteger page = first; page <= last; ++page) drawSpellingMarks(page, dirty);
}

// MARK: Found places

void WRPageView::setFoundPlaces(std::vector<NSRange> places) {
    if (places == _foundPlaces) return;
    _foundPlaces = std::move(places);
    setNeedsDisplay(true);
}

// The text of the page that is in the rectangle.
NSRange WRPageView::rangeInRect(NSUInteger index, NSRect dirty) {
    NSTextContainer* container = _document->pages()[index].container;
    const NSPoint origin = originOfTextContainer(container);
    return layoutManager()->glyphRangeForBoundingRectWithoutAdditionalLayout_inTextContainer(
        NSOffsetRect(dirty, -origin.x, -origin.y), container);
}

void WRPageView::drawFoundPlaces(NSUInteger index, NSRect dirty) {
    NSTextContainer* container = _document->pages()[index].container;
    const NSPoint origin = originOfTextContainer(container);
    const NSRange range = rangeInRect(index, dirty);
    auto* context = NSGraphicsContext::currentContext();
    context->setColor(foundColor());
    auto place = std::partition_point(_foundPlaces.begin(), _foundPlaces.end(),
                                      [&](NSRange each) { return NSMaxRange(each) <= range.location; });
    for (; place != _foundPlaces.end() && place->location < NSMaxRange(range); ++place) {
        NSUInteger count = 0;
        const NSRect* rects =
            layoutManager()
                ->rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
                    NSIntersectionRange(*place, range), {NSNotFound, 0}, container, &count);
        for (NSUInteger i = 0; i < count; ++i) context->fillRect(NSOffsetRect(rects[i], origin.x, origin.y));
    }
}

// MARK: Spelling

void WRPageView::setSpellingMarks(WRSpellingMarks* marks) {
    _spellingMarks.set(marks);
    setNeedsDisplay(true);
}

NSRange WRPageView::visibleTextRange() {
    const NSRect seen = visibleRect();
    if (pageCount() == 0 || NSIsEmptyRect(seen)) return {};
    const auto& pages = _document->pages();
    return NSUnionRange(pages[pageAtHeight(NSMinY(seen))].range, pages[pageAtHeight(NSMaxY(seen))].range);
}

void WRPageView::redrawRange(NSRange range) {
    const NSRange part = NSIntersectionRange(range, visibleTextRange());
    if (part.length == 0) return;
    const NSRect rect = rectForCharacterRange(part), seen = visibleRect();
    setNeedsDisplayInRect({{NSMinX(seen), NSMinY(rect)}, {NSWidth(seen), NSHeight(rect)}});
}

void WRPageView::drawSpellingMarks(NSUInteger index, NSRect dirty) {
    const NSRange range = rangeInRect(index, dirty);
    if (range.length == 0) return;
    NSGraphicsContext::currentContext()->setColor(misspelledColor());
    for (const NSRange word : _spellingMarks->marksInRange(range))
        underline(NSIntersectionRange(word, range), _document->pages()[index].container, dirty);
}

// With a wave below the baseline, line by line, as far as it is dirty. It keeps inside the line, whose area
// is what is drawn again when the word changes.
void WRPageView::underline(NSRange word, NSTextContainer* container, NSRect dirty) {
    constexpr float kBelow = 1.25F, kHeight = 3;
    NSLayoutManager* layout = layoutManager();
    const NSPoint origin = originOfTextContainer(container);
    for (NSUInteger place = word.location; place < NSMaxRange(word);) {
        NSRange line;
        const NSRect fragment = layout->lineFragmentRectForGlyphAtIndex_effectiveRange(place, &line);
        const NSRange part = NSIntersectionRange(line, {place, NSMaxRange(word) - place});
        if (part.length == 0) return;
        const float baseline = NSMinY(fragment) + layout->locationForGlyphAtIndex(part.location).y;
        const float y = origin.y + std::min(baseline + kBelow, NSMaxY(fragment) - kHeight);
        NSUInteger count = 0;
        const NSRect* rects =
            layout->rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
                part, {NSNotFound, 0}, container, &count);
        for (NSUInteger i = 0; i < count; ++i) {
            const NSRect wave{{origin.x + NSMinX(rects[i]), y}, {NSWidth(rects[i]), kHeight}};
            if (NSIntersectsRect(wave, dirty))
                NSGraphicsContext::currentContext()->strokeWaveFromPoint_length(wave.origin, NSWidth(wave));
        }
        place = NSMaxRange(part);
    }
}

}  // namespace pelvor
