// SPDX-License-Identifier: Apache-2.0
#include "Text/NSLayoutManager.h"

#include <algorithm>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSString.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/Layout/LayoutState.h"
#include "Text/NSContainerRunTable.h"
#include "Text/NSTextStorage.h"
#include "Text/TextLibrary.h"

namespace pelvor {

NSString* const NSHyphenationPatternsDidLoadNotification = u"NSHyphenationPatternsDidLoadNotification"_ns;

PELVOR_DEFINE_CLASS(NSLayoutManager, textLibrary) {
    methods.creator<"init", &NSLayoutManager::init>();
    methods.creatorAs<"new", &NSLayoutManager::init>();
    methods.instance<"textStorage", &NSLayoutManager::textStorage>();
    methods.instance<"setTextStorage:", &NSLayoutManager::setTextStorage>();
    methods.instance<"textContainers", &NSLayoutManager::textContainers>();
    methods.instance<"textContainerCount", &NSLayoutManager::textContainerCount>();
    methods.instance<"textContainerAtIndex:", &NSLayoutManager::textContainerAtIndex>();
    methods.instance<"addTextContainer:", &NSLayoutManager::addTextContainer>();
    methods.instance<"insertTextContainer:atIndex:", &NSLayoutManager::insertTextContainer_atIndex>();
    methods.instance<"removeTextContainerAtIndex:", &NSLayoutManager::removeTextContainerAtIndex>();
    methods.instance<"layoutManagerOwnsFirstResponderInWindow:",
                     &NSLayoutManager::layoutManagerOwnsFirstResponderInWindow>();
    methods.instance<"delegate", &NSLayoutManager::delegate>();
    methods.instance<"setDelegate:", &NSLayoutManager::setDelegate>();
    methods.instance<"textStorage:edited:range:changeInLength:invalidatedRange:",
                     &NSLayoutManager::textStorage_edited_range_changeInLength_invalidatedRange>();
    methods.instance<"textContainerChangedGeometry:", &NSLayoutManager::textContainerChangedGeometry>();
    methods.instance<"textContainerChangedTextView:", &NSLayoutManager::textContainerChangedTextView>();
    methods.instance<"invalidateLayoutForCharacterRange:isSoft:actualCharacterRange:",
                     &NSLayoutManager::invalidateLayoutForCharacterRange_isSoft_actualCharacterRange>();
    methods.instance<"invalidateDisplayForCharacterRange:",
                     &NSLayoutManager::invalidateDisplayForCharacterRange>();
    methods.instance<"invalidateDisplayForGlyphRange:", &NSLayoutManager::invalidateDisplayForGlyphRange>();
    methods.instance<"usesScreenFonts", &NSLayoutManager::usesScreenFonts>();
    methods.instance<"setUsesScreenFonts:", &NSLayoutManager::setUsesScreenFonts>();
    methods.instance<"waitsForHyphenation", &NSLayoutManager::waitsForHyphenation>();
    methods.instance<"setWaitsForHyphenation:", &NSLayoutManager::setWaitsForHyphenation>();
    methods.instance<"hyphenationFactor", &NSLayoutManager::hyphenationFactor>();
    methods.instance<"setHyphenationFactor:", &NSLayoutManager::setHyphenationFactor>();
    methods.instance<"usesFontLeading", &NSLayoutManager::usesFontLeading>();
    methods.instance<"setUsesFontLeading:", &NSLayoutManager::setUsesFontLeading>();
    methods.instance<"ignoresAntialiasThreshold", &NSLayoutManager::ignoresAntialiasThreshold>();
    methods.instance<"setIgnoresAntialiasThreshold:", &NSLayoutManager::setIgnoresAntialiasThreshold>();
    methods.instance<"languageForAttributes:", &NSLayoutManager::languageForAttributes>();
    methods.instance<"firstUnlaidCharacterIndex", &NSLayoutManager::firstUnlaidCharacterIndex>();
    methods.instance<"firstUnlaidGlyphIndex", &NSLayoutManager::firstUnlaidGlyphIndex>();
    methods.instance<"containerRunTable", &NSLayoutManager::containerRunTable>();
    methods.instance<"glyphRangeForLaidLineFragmentContainingGlyphAtIndex:",
                     &NSLayoutManager::glyphRangeForLaidLineFragmentContainingGlyphAtIndex>();
    methods.instance<"numberOfGlyphs", &NSLayoutManager::numberOfGlyphs>();
    methods.instance<"isValidGlyphIndex:", &NSLayoutManager::isValidGlyphIndex>();
    methods.instance<"glyphAtIndex:", &NSLayoutManager::glyphAtIndex>();
    methods.instance<"characterIndexForGlyphAtIndex:", &NSLayoutManager::characterIndexForGlyphAtIndex>();
    methods.instance<"glyphIndexForCharacterAtIndex:", &NSLayoutManager::glyphIndexForCharacterAtIndex>();
    methods.instance<"glyphRangeForCharacterRange:actualCharacterRange:",
                     &NSLayoutManager::glyphRangeForCharacterRange_actualCharacterRange>();
    methods.instance<"characterRangeForGlyphRange:actualGlyphRange:",
                     &NSLayoutManager::characterRangeForGlyphRange_actualGlyphRange>();
    methods.instance<"ensureLayoutForCharacterRange:", &NSLayoutManager::ensureLayoutForCharacterRange>();
    methods.instance<"ensureLayoutForTextContainer:", &NSLayoutManager::ensureLayoutForTextContainer>();
    methods.instance<"textContainerForGlyphAtIndex:effectiveRange:",
                     &NSLayoutManager::textContainerForGlyphAtIndex_effectiveRange>();
    methods.instance<"glyphRangeForTextContainer:", &NSLayoutManager::glyphRangeForTextContainer>();
    methods.instance<"lineFragmentRectForGlyphAtIndex:effectiveRange:",
                     &NSLayoutManager::lineFragmentRectForGlyphAtIndex_effectiveRange>();
    methods.instance<"lineFragmentUsedRectForGlyphAtIndex:effectiveRange:",
                     &NSLayoutManager::lineFragmentUsedRectForGlyphAtIndex_effectiveRange>();
    methods.instance<"locationForGlyphAtIndex:", &NSLayoutManager::locationForGlyphAtIndex>();
    methods.instance<"usedRectForTextContainer:", &NSLayoutManager::usedRectForTextContainer>();
    methods.instance<"boundingRectForGlyphRange:inTextContainer:",
                     &NSLayoutManager::boundingRectForGlyphRange_inTextContainer>();
    methods.instance<"attachmentSizeForGlyphAtIndex:", &NSLayoutManager::attachmentSizeForGlyphAtIndex>();
    methods.instance<"attachmentRectForGlyphAtIndex:", &NSLayoutManager::attachmentRectForGlyphAtIndex>();
    methods.instance<"extraLineFragmentRect", &NSLayoutManager::extraLineFragmentRect>();
    methods.instance<"extraLineFragmentUsedRect", &NSLayoutManager::extraLineFragmentUsedRect>();
    methods.instance<"extraLineFragmentTextContainer", &NSLayoutManager::extraLineFragmentTextContainer>();
    methods.instance<"glyphRangeForBoundingRect:inTextContainer:",
                     &NSLayoutManager::glyphRangeForBoundingRect_inTextContainer>();
    methods.instance<"glyphRangeForBoundingRectWithoutAdditionalLayout:inTextContainer:",
                     &NSLayoutManager::glyphRangeForBoundingRectWithoutAdditionalLayout_inTextContainer>();
    methods.instance<"glyphIndexForPoint:inTextContainer:fractionOfDistanceThroughGlyph:",
                     &NSLayoutManager::glyphIndexForPoint_inTextContainer_fractionOfDistanceThroughGlyph>();
    methods.instance<"glyphIndexForPoint:inTextContainer:",
                     &NSLayoutManager::glyphIndexForPoint_inTextContainer>();
    methods.instance<
        "characterIndexForPoint:inTextContainer:fractionOfDistanceBetweenInsertionPoints:",
        &NSLayoutManager::characterIndexForPoint_inTextContainer_fractionOfDistanceBetweenInsertionPoints>();
    methods.instance<"caretRectForCharacterAtIndex:", &NSLayoutManager::caretRectForCharacterAtIndex>();
    methods.instance<"caretRectBehindCharacterAtIndex:", &NSLayoutManager::caretRectBehindCharacterAtIndex>();
    methods.instance<"rectArrayForCharacterRange:withinSelectedCharacterRange:inTextContainer:rectCount:",
                     &NSLayoutManager::
                         rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount>();
    methods.instance<"drawBackgroundForGlyphRange:atPoint:",
                     &NSLayoutManager::drawBackgroundForGlyphRange_atPoint>();
    methods.instance<"drawGlyphsForGlyphRange:atPoint:", &NSLayoutManager::drawGlyphsForGlyphRange_atPoint>();
}

namespace {

void requireGlyph(LayoutState& state, NSUInteger index, const char* operation) {
    if (index >= state.length()) raiseIndexBeyondBounds(index, state.length(), operation);
}

void requireFreeContainer(NSTextContainer* container, const char* operation) {
    requireArgument(container, operation, "the container");
    if (container->layoutManager())
        raiseBadArgument(operation, "the container is in the list of a layout manager already");
}

// The piece that holds a unit, in units of the text.
NSRange pieceAround(LayoutState& state, NSUInteger unit) {
    if (!state.ensure(unit)) return {unit, 1};
    const LinePlace place = state.lineOf(unit);
    const GlyphPiece& piece = state.glyphsOf(place).pieceAt(unit - place.block.unit);
    return {place.block.unit + piece.start, piece.end - piece.start};
}

// The run of the attachment that stands there; null if there is none.
const LineRun* attachmentRun(LayoutState& state, NSUInteger unit) {
    if (!state.ensure(unit)) return nullptr;
    const LinePlace place = state.lineOf(unit);
    for (const LineRun& run : state.glyphsOf(place).runs())
        if (run.kind == TextRun::Kind::attachment && place.block.unit + run.start == unit) return &run;
    return nullptr;
}

NSRange widened(LayoutState& state, NSRange range) {
    if (range.length == 0) return range;
    const NSRange first = pieceAround(state, range.location);
    return NSUnionRange(NSUnionRange(range, first), pieceAround(state, NSMaxRange(range) - 1));
}

}  // namespace

// MARK: Text, containers and delegate

NSLayoutManager::NSLayoutManager() : _state(std::make_unique<LayoutState>(this)) {}

NSLayoutManager::~NSLayoutManager() {
    if (_runTable) _runTable->endState();
    for (const auto& container : _state->containers) container->setLayoutManager(nullptr);
}

Retained<NSLayoutManager> NSLayoutManager::init(Class* cls) { return make<NSLayoutManager>(cls); }

NSTextStorage* NSLayoutManager::textStorage() { return _state->tools.storage; }

void NSLayoutManager::setTextStorage(NSTextStorage* textStorage) { _state->setStorage(textStorage); }

NSArray* NSLayoutManager::textContainers() {
    auto containers = NSMutableArray::init();
    for (const auto& container : _state->containers) containers->addObject(container);
    return containers->copy().autorelease();
}

NSUInteger NSLayoutManager::textContainerCount() {
    return static_cast<NSUInteger>(_state->containers.size());
}

NSTextContainer* NSLayoutManager::textContainerAtIndex(NSUInteger index) {
    if (index >= textContainerCount())
        raiseIndexBeyondBounds(index, textContainerCount(), "textContainerAtIndex:");
    return _state->containers[index];
}

void NSLayoutManager::addTextContainer(NSTextContainer* container) {
    requireFreeContainer(container, "addTextContainer:");
    container->setLayoutManager(this);
    _state->containers.push_back(Retained<NSTextContainer>::retaining(container));
    _state->textViewsChanged();
    _state->containerAppended();
}

void NSLayoutManager::insertTextContainer_atIndex(NSTextContainer* container, NSUInteger index) {
    requireFreeContainer(container, "insertTextContainer:atIndex:");
    if (index > textContainerCount())
        raiseIndexBeyondBounds(index, textContainerCount(), "insertTextContainer:atIndex:");
    container->setLayoutManager(this);
    _state->containers.insert(_state->containers.begin() + index,
                              Retained<NSTextContainer>::retaining(container));
    _state->textViewsChanged();
    _state->containersChanged();
}

void NSLayoutManager::removeTextContainerAtIndex(NSUInteger index) {
    if (index >= textContainerCount())
        raiseIndexBeyondBounds(index, textContainerCount(), "removeTextContainerAtIndex:");
    const Retained<NSTextContainer> gone = _state->containers[index];
    _state->containers.erase(_state->containers.begin() + index);
    gone->setLayoutManager(nullptr);
    _state->textViewsChanged();
    _state->containerRemoved(index);
}

bool NSLayoutManager::layoutManagerOwnsFirstResponderInWindow(id window) {
    id responder = send<id>(window, "firstResponder"_sel);
    return responder &&
           std::any_of(_state->containers.begin(), _state->containers.end(),
                       [&](const auto& container) { return container->textView() == responder; });
}

id NSLayoutManager::delegate() { return _state->delegate.object().autorelease(); }

void NSLayoutManager::setDelegate(id delegate) { _state->delegate = WeakHandle(delegate); }

// MARK: What changed

void NSLayoutManager::textStorage_edited_range_changeInLength_invalidatedRange(
    NSTextStorage* storage, unsigned mask, NSRange newRange, NSInteger delta, NSRange invalidatedRange) {
    if (storage != _state->tools.storage) return;
    const bool changesCharacters = mask & NSTextStorageEditedCharacters;
    if (changesCharacters) _state->textChanged(newRange, delta);
    if (!changesCharacters || invalidatedRange != newRange) _state->attributesChanged(invalidatedRange);
    tellTextViews(changesCharacters ? newRange : NSRange{}, delta, invalidatedRange);
}

namespace {

SEL editMessage() { return "layoutManager:editedRange:changeInLength:invalidatedRange:"_sel; }

}  // namespace

void NSLayoutManager::tellTextViews(NSRange edited, NSInteger delta, NSRange invalidated) {
    for (std::size_t i = 0; i < _state->textViewStarts().size(); ++i)  // who is told may change the list
        tellTextView(_state->containers[_state->textViewStarts()[i]]->textView(), edited, delta, invalidated);
}

void NSLayoutManager::tellTextView(id view, NSRange edited, NSInteger delta, NSRange invalidated) {
    if (view && view->respondsToSelector(editMessage()))
        send(view, editMessage(), this, edited, delta, invalidated);
}

void NSLayoutManager::textContainerChangedGeometry(NSTextContainer* container) {
    _state->containerChanged(_state->indexOf(container));
    tellTextViews({}, 0, {});
}

void NSLayoutManager::textContainerChangedTextView(NSTextContainer* container) {
    _state->textViewsChanged();
    if (container) tellTextView(container->textView(), {}, 0, {});
}

void NSLayoutManager::invalidateLayoutForCharacterRange_isSoft_actualCharacterRange(NSRange range,
                                                                                    bool isSoft,
                                                                                    NSRange* actualRange) {
    requireRange(range, _state->length(), "invalidateLayoutForCharacterRange:isSoft:actualCharacterRange:");
    if (isSoft)
        _state->placeAgainFrom(range.location);
    else
        _state->attributesChanged(range);
    if (actualRange) *actualRange = range;
    tellTextViews({}, 0, range);
}

void NSLayoutManager::invalidateDisplayForCharacterRange(NSRange range) {
    requireRange(range, _state->length(), "invalidateDisplayForCharacterRange:");
    range.length =
        std::min(NSMaxRange(range), std::max(_state->firstUnlaid(), range.location)) - range.location;
    if (range.length == 0) return;
    const SEL redraw = "setNeedsDisplayInRect:"_sel;
    for (const ContainerFilling& filling : _state->fillings()) {
        const NSRange shown = NSIntersectionRange(range, {filling.start, filling.end - filling.start});
        if (shown.length == 0) continue;
        NSTextContainer* container = _state->containers[_state->containerOf(filling.start)];
        id view = container->textView();
        if (!view) continue;
        if (view->respondsToSelector(editMessage())) return tellTextViews({}, 0, range);
        if (view->respondsToSelector(redraw))
            send(view, redraw, boundingRectForGlyphRange_inTextContainer(shown, container));
    }
}

// MARK: Settings

bool NSLayoutManager::usesScreenFonts() { return _state->usesScreenFonts; }

void NSLayoutManager::setUsesScreenFonts(bool uses) { _state->usesScreenFonts = uses; }

bool NSLayoutManager::waitsForHyphenation() { return _state->tools.boundaries.waitsForPatterns; }

void NSLayoutManager::setWaitsForHyphenation(bool waits) {
    _state->tools.boundaries.waitsForPatterns = waits;
}

float NSLayoutManager::hyphenationFactor() { return _state->hyphenationFactor; }

void NSLayoutManager::setHyphenationFactor(float factor) {
    if (factor == _state->hyphenationFactor) return;
    _state->hyphenationFactor = factor;
    _state->forgetEverything();
}

bool NSLayoutManager::usesFontLeading() { return _state->usesFontLeading; }

void NSLayoutManager::setUsesFontLeading(bool uses) {
    if (uses == _state->usesFontLeading) return;
    _state->usesFontLeading = uses;
    _state->forgetEverything();
}

bool NSLayoutManager::ignoresAntialiasThreshold() { return _state->ignoresAntialiasThreshold; }

void NSLayoutManager::setIgnoresAntialiasThreshold(bool ignores) {
    _state->ignoresAntialiasThreshold = ignores;
}

NSString* NSLayoutManager::languageForAttributes(NSDictionary* attributes) {
    return attributes ? cast<NSString>(attributes->objectForKey(NSLanguageAttributeName)) : nullptr;
}

// MARK: How far the layout is

NSUInteger NSLayoutManager::firstUnlaidCharacterIndex() { return _state->firstUnlaid(); }

NSContainerRunTable* NSLayoutManager::containerRunTable() {
    if (!_runTable) _runTable = NSContainerRunTable::forState(*_state);
    return _runTable;
}

NSRange NSLayoutManager::glyphRangeForLaidLineFragmentContainingGlyphAtIndex(NSUInteger index) {
    requireGlyph(*_state, index, "glyphRangeForLaidLineFragmentContainingGlyphAtIndex:");
    return _state->laidLineRange(index);
}

bool NSLayoutManager::layOutSome(NSUInteger units) { return _state->layOutSome(units); }

// MARK: Glyphs and characters

NSUInteger NSLayoutManager::numberOfGlyphs() { return _state->length(); }

NSGlyph NSLayoutManager::glyphAtIndex(NSUInteger index) {
    requireGlyph(*_state, index, "glyphAtIndex:");
    if (!_state->ensure(index)) return NSNullGlyph;
    const LinePlace place = _state->lineOf(index);
    const GlyphPiece& piece = _state->glyphsOf(place).pieceAt(index - place.block.unit);
    return place.block.unit + piece.start == index ? piece.glyph : NSNullGlyph;
}

NSUInteger NSLayoutManager::characterIndexForGlyphAtIndex(NSUInteger index) {
    requireGlyph(*_state, index, "characterIndexForGlyphAtIndex:");
    return index;
}

NSUInteger NSLayoutManager::glyphIndexForCharacterAtIndex(NSUInteger index) {
    requireGlyph(*_state, index, "glyphIndexForCharacterAtIndex:");
    return index;
}

NSRange NSLayoutManager::glyphRangeForCharacterRange_actualCharacterRange(NSRange range,
                                                                          NSRange* actualRange) {
    requireRange(range, _state->length(), "glyphRangeForCharacterRange:actualCharacterRange:");
    range = widened(*_state, range);
    if (actualRange) *actualRange = range;
    return range;
}

NSRange NSLayoutManager::characterRangeForGlyphRange_actualGlyphRange(NSRange range, NSRange* actualRange) {
    requireRange(range, _state->length(), "characterRangeForGlyphRange:actualGlyphRange:");
    range = widened(*_state, range);
    if (actualRange) *actualRange = range;
    return range;
}

// MARK: Places

void NSLayoutManager::ensureLayoutForCharacterRange(NSRange range) {
    requireRange(range, _state->length(), "ensureLayoutForCharacterRange:");
    _state->ensure(range);
}

void NSLayoutManager::ensureLayoutForTextContainer(NSTextContainer* container) {
    glyphRangeForTextContainer(container);
}

NSTextContainer* NSLayoutManager::textContainerForGlyphAtIndex_effectiveRange(NSUInteger index,
                                                                              NSRange* glyphRange) {
    requireGlyph(*_state, index, "textContainerForGlyphAtIndex:effectiveRange:");
    if (glyphRange) *glyphRange = {NSNotFound, 0};
    if (!_state->ensure(index)) return nullptr;
    const std::size_t container = _state->containerOf(index);
    if (container >= _state->containers.size()) return nullptr;
    if (glyphRange) {
        *glyphRange = {0, _state->length()};
        if (!_state->isFree()) {
            const ContainerFilling& filling = _state->fillings()[container];
            *glyphRange = {filling.start, filling.end - filling.start};
        }
    }
    return _state->containers[container];
}

NSRange NSLayoutManager::glyphRangeForTextContainer(NSTextContainer* container) {
    const std::size_t index = _state->indexOf(container);
    if (index >= _state->containers.size()) return {NSNotFound, 0};
    if (_state->isFree()) {
        _state->ensureAll();
        return {0, _state->length()};
    }
    // The container is full when something stands behind it.
    _state->ensureHeight(index + 1, -1);
    const auto& fillings = _state->fillings();
    if (index >= fillings.size()) return {_state->firstUnlaid(), 0};
    return {fillings[index].start, fillings[index].end - fillings[index].start};
}

NSRect NSLayoutManager::lineFragmentRectForGlyphAtIndex_effectiveRange(NSUInteger index,
                                                                       NSRange* glyphRange) {
    requireGlyph(*_state, index, "lineFragmentRectForGlyphAtIndex:effectiveRange:");
    if (glyphRange) *glyphRange = {index, 0};
    if (!_state->ensure(index)) return {};
    const LinePlace place = _state->lineOf(index);
    if (glyphRange) *glyphRange = _state->rangeOf(place);
    return _state->rectOf(place);
}

NSRect NSLayoutManager::lineFragmentUsedRectForGlyphAtIndex_effectiveRange(NSUInteger index,
                                                                           NSRange* glyphRange) {
    requireGlyph(*_state, index, "lineFragmentUsedRectForGlyphAtIndex:effectiveRange:");
    if (glyphRange) *glyphRange = {index, 0};
    if (!_state->ensure(index)) return {};
    const LinePlace place = _state->lineOf(index);
    if (glyphRange) *glyphRange = _state->rangeOf(place);
    return _state->usedRectOf(place);
}

NSPoint NSLayoutManager::locationForGlyphAtIndex(NSUInteger index) {
    requireGlyph(*_state, index, "locationForGlyphAtIndex:");
    if (!_state->ensure(index)) return {};
    const LinePlace place = _state->lineOf(index);
    const Line& line = _state->at(place);
    const Extent left = _state->glyphsOf(place).pieceAt(index - place.block.unit).left;
    return {pointsOf(line.textLeft + left - line.left), _state->baselineOf(place)};
}

NSSize NSLayoutManager::attachmentSizeForGlyphAtIndex(NSUInteger index) {
    requireGlyph(*_state, index, "attachmentSizeForGlyphAtIndex:");
    const LineRun* run = attachmentRun(*_state, index);
    return run ? run->frame.size : NSSize{-1, -1};
}

NSRect NSLayoutManager::attachmentRectForGlyphAtIndex(NSUInteger index) {
    requireGlyph(*_state, index, "attachmentRectForGlyphAtIndex:");
    const LineRun* run = attachmentRun(*_state, index);
    if (!run) return {};
    const LinePlace place = _state->lineOf(index);
    const float baseline =
        NSMinY(_state->rectOf(place)) + _state->baselineOf(place) - pointsOf(run->style->shift);
    return {{pointsOf(_state->at(place).textLeft + run->left) + run->frame.origin.x,
             baseline - NSMaxY(run->frame)},
            run->frame.size};
}

NSRect NSLayoutManager::usedRectForTextContainer(NSTextContainer* container) {
    const std::size_t index = _state->indexOf(container);
    const auto& fillings = _state->fillings();
    if (index >= _state->containers.size() || (index >= fillings.size() && !_state->isFree())) return {};
    const NSUInteger start = _state->isFree() ? 0 : fillings[index].start;
    const NSUInteger end = _state->isFree() ? _state->length() : fillings[index].end;
    BlockList& blocks = _state->blocks();
    Extent left = kGreatestExtent, right = 0;
    for (BlockPlace place = blocks.placeOfUnit(start);; place = blocks.next(place)) {
        const Block& block = blocks.at(place);
        if (block.isLaid) {
            left = std::min(left, block.usedLeft);
            right = std::max(right, block.usedRight);
        }
        if (place.unit + block.units >= end || blocks.isLastRead(place)) break;
    }
    float bottom = pointsOf(_state->estimatedHeight());
    if (end <= blocks.readUnits()) {
        const bool holdsEnd = end == start || (end == _state->length() && _state->containerOf(end) == index);
        const LinePlace last = _state->lineOf(holdsEnd ? end : end - 1);
        if (_state->blockOf(last).isLaid)
            bottom = NSMaxY(_state->rectOf(last)) - pointsOf(_state->at(last).spacingBelow);
    }
    if (right < left) return {{0, 0}, {0, bottom}};
    const Extent padding = extentOf(static_cast<double>(container->lineFragmentPadding()));
    return {{pointsOf(left - padding), 0}, {pointsOf(right - left + 2 * padding), bottom}};
}

// MARK: The extra line

NSRect NSLayoutManager::extraLineFragmentRect() {
    if (!extraLineFragmentTextContainer()) return {};
    return _state->rectOf(_state->lineOf(_state->length()));
}

NSRect NSLayoutManager::extraLineFragmentUsedRect() {
    if (!extraLineFragmentTextContainer()) return {};
    return _state->usedRectOf(_state->lineOf(_state->length()));
}

NSTextContainer* NSLayoutManager::extraLineFragmentTextContainer() {
    if (!_state->ensure(_state->length())) return nullptr;
    BlockList& blocks = _state->blocks();
    if (blocks.at(blocks.last()).units > 0) return nullptr;
    const std::size_t container = _state->isFree() ? 0 : _state->fillings().size() - 1;
    return container < _state->containers.size() ? _state->containers[container].get() : nullptr;
}

}  // namespace pelvor
