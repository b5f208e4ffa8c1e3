// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSTextView.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSUndoManager.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSClipView.h"
#include "Interface/NSDraggingInfo.h"
#include "Interface/NSEvent.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSWindow.h"
#include "Interface/Texts/TextMoves.h"
#include "Interface/Texts/TextViewState.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSFont.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/TextAttributes.h"

namespace pelvor {

NSString* const NSTextViewDidChangeSelectionNotification = u"NSTextViewDidChangeSelectionNotification"_ns;

PELVOR_DEFINE_CLASS(NSTextView, interfaceLibrary) {
    methods.creator<"init", &NSTextView::init>();
    methods.creator<"initWithFrame:", &NSTextView::initWithFrame>();
    methods.creator<"initWithFrame:textContainer:", &NSTextView::initWithFrame_textContainer>();
    methods.instance<"textStorage", &NSTextView::textStorage>();
    methods.instance<"layoutManager", &NSTextView::layoutManager>();
    methods.instance<"textContainer", &NSTextView::textContainer>();
    methods.instance<"setTextContainer:", &NSTextView::setTextContainer>();
    methods.instance<"textContainerInset", &NSTextView::textContainerInset>();
    methods.instance<"setTextContainerInset:", &NSTextView::setTextContainerInset>();
    methods.instance<"textContainerOrigin", &NSTextView::textContainerOrigin>();
    methods.instance<"originOfTextContainer:", &NSTextView::originOfTextContainer>();
    methods.instance<"indexesOfTextContainersNearRect:", &NSTextView::indexesOfTextContainersNearRect>();
    methods.instance<"characterIndexForInsertionAtPoint:", &NSTextView::characterIndexForInsertionAtPoint>();
    methods.instance<"caretRectForCharacterAtIndex:", &NSTextView::caretRectForCharacterAtIndex>();
    methods.instance<"rectForCharacterRange:", &NSTextView::rectForCharacterRange>();
    methods.instance<"font", &NSTextView::font>();
    methods.instance<"setFont:", &NSTextView::setFont>();
    methods.instance<"textColor", &NSTextView::textColor>();
    methods.instance<"setTextColor:", &NSTextView::setTextColor>();
    methods.instance<"alignment", &NSTextView::alignment>();
    methods.instance<"setAlignment:", &NSTextView::setAlignment>();
    methods.instance<"typingAttributes", &NSTextView::typingAttributes>();
    methods.instance<"setTypingAttributes:", &NSTextView::setTypingAttributes>();
    methods.instance<"setSelectedRange:affinity:stillSelecting:",
                     &NSTextView::setSelectedRange_affinity_stillSelecting>();
    methods.instance<"selectionRangeForProposedRange:granularity:",
                     &NSTextView::selectionRangeForProposedRange_granularity>();
    methods.instance<"selectionAffinity", &NSTextView::selectionAffinity>();
    methods.instance<"selectionGranularity", &NSTextView::selectionGranularity>();
    methods.instance<"setSelectionGranularity:", &NSTextView::setSelectionGranularity>();
    methods.instance<"insertionPointColor", &NSTextView::insertionPointColor>();
    methods.instance<"setInsertionPointColor:", &NSTextView::setInsertionPointColor>();
    methods.instance<"selectionColor", &NSTextView::selectionColor>();
    methods.instance<"setSelectionColor:", &NSTextView::setSelectionColor>();
    methods.instance<"shouldChangeTextInRange:replacementString:",
                     &NSTextView::shouldChangeTextInRange_replacementString>();
    methods.instance<"didChangeText", &NSTextView::didChangeText>();
    methods.instance<"rangeForUserTextChange", &NSTextView::rangeForUserTextChange>();
    methods.instance<"insertText:", &NSTextView::insertText>();
    methods.instance<"allowsUndo", &NSTextView::allowsUndo>();
    methods.instance<"setAllowsUndo:", &NSTextView::setAllowsUndo>();
    methods.instance<"breakUndoCoalescing", &NSTextView::breakUndoCoalescing>();
    methods.instance<"setMarkedText:selectedRange:", &NSTextView::setMarkedText_selectedRange>();
    methods.instance<"unmarkText", &NSTextView::unmarkText>();
    methods.instance<"hasMarkedText", &NSTextView::hasMarkedText>();
    methods.instance<"markedRange", &NSTextView::markedRange>();
    methods.instance<"attributedSubstringFromRange:", &NSTextView::attributedSubstringFromRange>();
    methods.instance<"firstRectForCharacterRange:", &NSTextView::firstRectForCharacterRange>();
    methods.instance<"characterIndexForPoint:", &NSTextView::characterIndexForPoint>();
    methods.instance<"shouldDrawInsertionPoint", &NSTextView::shouldDrawInsertionPoint>();
    methods.instance<"drawInsertionPointInRect:color:turnedOn:",
                     &NSTextView::drawInsertionPointInRect_color_turnedOn>();
    methods.instance<"updateInsertionPointStateAndRestartTimer:",
                     &NSTextView::updateInsertionPointStateAndRestartTimer>();
    methods.instance<"writablePasteboardTypes", &NSTextView::writablePasteboardTypes>();
    methods.instance<"readablePasteboardTypes", &NSTextView::readablePasteboardTypes>();
    methods.instance<"writeSelectionToPasteboard:types:", &NSTextView::writeSelectionToPasteboard_types>();
    methods.instance<"writeSelectionToPasteboard:type:", &NSTextView::writeSelectionToPasteboard_type>();
    methods.instance<"readSelectionFromPasteboard:", &NSTextView::readSelectionFromPasteboard>();
    methods.instance<"readSelectionFromPasteboard:type:", &NSTextView::readSelectionFromPasteboard_type>();

    // Commands: "name:" moves, "nameAndModifySelection:" selects.
    methods.instanceAs<"moveLeft:", &NSTextView::moveCommand<TextMove::left>>();
    methods.instanceAs<"moveRight:", &NSTextView::moveCommand<TextMove::right>>();
    methods.instanceAs<"moveUp:", &NSTextView::moveCommand<TextMove::up>>();
    methods.instanceAs<"moveDown:", &NSTextView::moveCommand<TextMove::down>>();
    methods.instanceAs<"moveForward:", &NSTextView::moveCommand<TextMove::forward>>();
    methods.instanceAs<"moveBackward:", &NSTextView::moveCommand<TextMove::backward>>();
    methods.instanceAs<"moveWordLeft:", &NSTextView::moveCommand<TextMove::wordLeft>>();
    methods.instanceAs<"moveWordRight:", &NSTextView::moveCommand<TextMove::wordRight>>();
    methods.instanceAs<"moveWordForward:", &NSTextView::moveCommand<TextMove::wordForward>>();
    methods.instanceAs<"moveWordBackward:", &NSTextView::moveCommand<TextMove::wordBackward>>();
    methods.instanceAs<"moveToBeginningOfLine:", &NSTextView::moveCommand<TextMove::lineBeginning>>();
    methods.instanceAs<"moveToEndOfLine:", &NSTextView::moveCommand<TextMove::lineEnd>>();
    methods.instanceAs<"moveToLeftEndOfLine:", &NSTextView::moveCommand<TextMove::lineLeft>>();
    methods.instanceAs<"moveToRightEndOfLine:", &NSTextView::moveCommand<TextMove::lineRight>>();
    methods
        .instanceAs<"moveToBeginningOfParagraph:", &NSTextView::moveCommand<TextMove::paragraphBeginning>>();
    methods.instanceAs<"moveToEndOfParagraph:", &NSTextView::moveCommand<TextMove::paragraphEnd>>();
    methods.instanceAs<"moveParagraphForward:", &NSTextView::moveCommand<TextMove::paragraphForward>>();
    methods.instanceAs<"moveParagraphBackward:", &NSTextView::moveCommand<TextMove::paragraphBackward>>();
    methods.instanceAs<"moveToBeginningOfDocument:", &NSTextView::moveCommand<TextMove::documentBeginning>>();
    methods.instanceAs<"moveToEndOfDocument:", &NSTextView::moveCommand<TextMove::documentEnd>>();
    methods.instanceAs<"pageUp:", &NSTextView::moveCommand<TextMove::pageUp>>();
    methods.instanceAs<"pageDown:", &NSTextView::moveCommand<TextMove::pageDown>>();

    methods.instanceAs<"moveLeftAndModifySelection:", &NSTextView::extendCommand<TextMove::left>>();
    methods.instanceAs<"moveRightAndModifySelection:", &NSTextView::extendCommand<TextMove::right>>();
    methods.instanceAs<"moveUpAndModifySelection:", &NSTextView::extendCommand<TextMove::up>>();
    methods.instanceAs<"moveDownAndModifySelection:", &NSTextView::extendCommand<TextMove::down>>();
    methods.instanceAs<"moveForwardAndModifySelection:", &NSTextView::extendCommand<TextMove::forward>>();
    methods.instanceAs<"moveBackwardAndModifySelection:", &NSTextView::extendCommand<TextMove::backward>>();
    methods.instanceAs<"moveWordLeftAndModifySelection:", &NSTextView::extendCommand<TextMove::wordLeft>>();
    methods.instanceAs<"moveWordRightAndModifySelection:", &NSTextView::extendCommand<TextMove::wordRight>>();
    methods.instanceAs<"moveWordForwardAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::wordForward>>();
    methods.instanceAs<"moveWordBackwardAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::wordBackward>>();
    methods.instanceAs<"moveToBeginningOfLineAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::lineBeginning>>();
    methods.instanceAs<"moveToEndOfLineAndModifySelection:", &NSTextView::extendCommand<TextMove::lineEnd>>();
    methods.instanceAs<"moveToLeftEndOfLineAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::lineLeft>>();
    methods.instanceAs<"moveToRightEndOfLineAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::lineRight>>();
    methods.instanceAs<"moveToBeginningOfParagraphAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::paragraphBeginning>>();
    methods.instanceAs<"moveToEndOfParagraphAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::paragraphEnd>>();
    methods.instanceAs<"moveParagraphForwardAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::paragraphForward>>();
    methods.instanceAs<"moveParagraphBackwardAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::paragraphBackward>>();
    methods.instanceAs<"moveToBeginningOfDocumentAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::documentBeginning>>();
    methods.instanceAs<"moveToEndOfDocumentAndModifySelection:",
                       &NSTextView::extendCommand<TextMove::documentEnd>>();
    methods.instanceAs<"pageUpAndModifySelection:", &NSTextView::extendCommand<TextMove::pageUp>>();
    methods.instanceAs<"pageDownAndModifySelection:", &NSTextView::extendCommand<TextMove::pageDown>>();

    methods.instanceAs<"deleteForward:", &NSTextView::deleteCommand<TextMove::forward>>();
    methods.instanceAs<"deleteBackward:", &NSTextView::deleteCommand<TextMove::backward>>();
    methods.instanceAs<"deleteWordForward:", &NSTextView::deleteCommand<TextMove::wordForward>>();
    methods.instanceAs<"deleteWordBackward:", &NSTextView::deleteCommand<TextMove::wordBackward>>();
    methods.instanceAs<"deleteToBeginningOfLine:", &NSTextView::deleteCommand<TextMove::lineBeginning>>();
    methods.instanceAs<"deleteToEndOfLine:", &NSTextView::deleteCommand<TextMove::lineEnd>>();
    methods.instanceAs<"deleteToBeginningOfParagraph:",
                       &NSTextView::deleteCommand<TextMove::paragraphBackward>>();
    methods.instanceAs<"deleteToEndOfParagraph:", &NSTextView::deleteCommand<TextMove::paragraphEnd>>();
    methods.instanceAs<"delete:", &NSTextView::deleteSelection>();
    methods.instanceAs<"yank:", &NSTextView::yank>();
    methods.instanceAs<"transpose:", &NSTextView::transpose>();
    methods.instanceAs<"uppercaseWord:", &NSTextView::changeWords<&NSString::uppercaseString>>();
    methods.instanceAs<"lowercaseWord:", &NSTextView::changeWords<&NSString::lowercaseString>>();
    methods.instanceAs<"capitalizeWord:", &NSTextView::changeWords<&NSString::capitalizedString>>();

    methods.instanceAs<"insertNewline:", &NSTextView::insertNewline>();
    methods.instanceAs<"insertTab:", &NSTextView::insertTab>();
    methods.instanceAs<"insertBacktab:", &NSTextView::insertBacktab>();
    methods.instanceAs<"insertParagraphSeparator:", &NSTextView::insertUnit<u'\n'>>();
    methods.instanceAs<"insertNewlineIgnoringFieldEditor:", &NSTextView::insertUnit<u'\n'>>();
    methods.instanceAs<"insertTabIgnoringFieldEditor:", &NSTextView::insertUnit<u'\t'>>();
    methods.instanceAs<"insertLineBreak:", &NSTextView::insertUnit<u'\u2028'>>();
    methods.instanceAs<"insertContainerBreak:", &NSTextView::insertUnit<u'\f'>>();
    methods.instanceAs<"cancelOperation:", &NSTextView::cancelOperation>();

    methods.instanceAs<"selectAll:", &NSTextView::selectAll>();
    methods.instanceAs<"selectWord:", &NSTextView::selectCommand<NSSelectByWord>>();
    methods.instanceAs<"selectParagraph:", &NSTextView::selectCommand<NSSelectByParagraph>>();
    methods.instanceAs<"selectLine:", &NSTextView::selectLine>();
    methods.instanceAs<"copy:", &NSTextView::copySelection>();
    methods.instanceAs<"cut:", &NSTextView::cutSelection>();
    methods.instanceAs<"paste:", &NSTextView::paste>();
    methods.instanceAs<"pasteAsPlainText:", &NSTextView::pasteAsPlainText>();
    methods.instanceAs<"undo:", &NSTextView::undo>();
    methods.instanceAs<"redo:", &NSTextView::redo>();
    methods.instanceAs<"alignLeft:", &NSTextView::alignCommand<NSLeftTextAlignment>>();
    methods.instanceAs<"alignRight:", &NSTextView::alignCommand<NSRightTextAlignment>>();
    methods.instanceAs<"alignCenter:", &NSTextView::alignCommand<NSCenterTextAlignment>>();
    methods.instanceAs<"alignJustified:", &NSTextView::alignCommand<NSJustifiedTextAlignment>>();

    methods.instanceAs<"scrollLineUp:", &NSTextView::scrollCommand<TextMove::up>>();
    methods.instanceAs<"scrollLineDown:", &NSTextView::scrollCommand<TextMove::down>>();
    methods.instanceAs<"scrollPageUp:", &NSTextView::scrollCommand<TextMove::pageUp>>();
    methods.instanceAs<"scrollPageDown:", &NSTextView::scrollCommand<TextMove::pageDown>>();
    methods.instanceAs<"scrollToBeginningOfDocument:",
                       &NSTextView::scrollCommand<TextMove::documentBeginning>>();
    methods.instanceAs<"scrollToEndOfDocument:", &NSTextView::scrollCommand<TextMove::documentEnd>>();
    methods.instanceAs<"centerSelectionInVisibleArea:", &NSTextView::centerSelection>();

    // What others tell the view.
    methods.instanceAs<"layoutManager:editedRange:changeInLength:invalidatedRange:",
                       &NSTextView::textWasEdited>();
    methods.instanceAs<"windowKeyDidChange:", &NSTextView::windowKeyDidChange>();
    methods.instanceAs<"blinkCaret:", &NSTextView::blinkCaret>();
    methods.instanceAs<"autoscrollSelection:", &NSTextView::autoscrollSelection>();
    methods.instanceAs<"undoTextChange:", &NSTextView::undoTextChange>();
    methods.instanceAs<"draggingEntered:", &NSTextView::draggingMoved>();
    methods.instanceAs<"draggingUpdated:", &NSTextView::draggingMoved>();
    methods.instanceAs<"draggingExited:", &NSTextView::draggingExited>();
    methods.instance<"performDragOperation:", &NSTextView::performDragOperation>();
    methods.instanceAs<"pasteboard:provideDataForType:", &NSTextView::provideSelection>();
    methods.instanceAs<"validateMenuItem:", &NSTextView::validateMenuItem>();
}

// MARK: Creation

NSTextView::NSTextView() : _state(std::make_unique<TextViewState>()) {}

NSTextView::~NSTextView() {
    watchWindow(nullptr);
    letTextGo();
}

Retained<NSTextView> NSTextView::init(Class* cls) { return initWithFrame({}, cls); }

Retained<NSTextView> NSTextView::initWithFrame(NSRect frame, Class* cls) {
    auto container = NSTextContainer::initWithContainerSize({NSWidth(frame), 1e7F});
    container->setWidthTracksTextView(true);
    auto layoutManager = NSLayoutManager::init();
    layoutManager->addTextContainer(container);
    auto storage = NSTextStorage::initWithString(u""_ns);
    storage->addLayoutManager(layoutManager);
    return initWithFrame_textContainer(frame, container, cls);
}

Retained<NSTextView> NSTextView::initWithFrame_textContainer(NSRect frame, NSTextContainer* container,
                                                             Class* cls) {
    auto view = cast<NSTextView>(NSView::initWithFrame(frame, cls));
    view->setTextContainer(container);
    view->registerForDraggedTypes(view->readablePasteboardTypes());
    return view;
}

// MARK: Text, layout and places

NSTextStorage* NSTextView::textStorage() { return _state->storage; }

NSLayoutManager* NSTextView::layoutManager() { return _state->layoutManager; }

NSTextContainer* NSTextView::textContainer() {
    if (!_state->layoutManager) return nullptr;
    NSLayoutManager* layout = _state->layoutManager;
    return layout->textContainerCount() ? layout->textContainerAtIndex(0) : nullptr;
}

void NSTextView::letTextGo() {
    if (!_state->layoutManager) return;
    for (id container : _state->layoutManager->textContainers())
        if (auto each = cast<NSTextContainer>(container); each && each->textView() == this)
            each->setTextView(nullptr);
}

void NSTextView::setTextContainer(NSTextContainer* container) {
    NSLayoutManager* layoutManager = container ? container->layoutManager() : nullptr;
    letTextGo();
    const auto storage = std::move(_state->storage);
    const auto oldLayoutManager = std::move(_state->layoutManager);
    _state->layoutManager.set(layoutManager);
    _state->storage.set(layoutManager ? layoutManager->textStorage() : nullptr);
    _state->selection = {};
    _state->marked = {NSNotFound, 0};
    _state->typingAttributes = nullptr;
    _state->lastUndo = nullptr;
    _state->shown.invalidateAll();
    if (layoutManager)
        for (id each : layoutManager->textContainers())
            static_cast<NSTextContainer*>(each)->setTextView(this);
    trackContainerSize();
    setNeedsDisplay(true);
    setNeedsPreparation();
}

NSSize NSTextView::textContainerInset() { return _state->inset; }

void NSTextView::setTextContainerInset(NSSize inset) {
    _state->inset = inset;
    trackContainerSize();
    setNeedsDisplay(true);
    setNeedsPreparation();
}

NSPoint NSTextView::textContainerOrigin() { return {_state->inset.width, _state->inset.height}; }

NSPoint NSTextView::originOfTextContainer(NSTextContainer*) { return textContainerOrigin(); }

NSRange NSTextView::indexesOfTextContainersNearRect(NSRect) {
    return {0, _state->layoutManager ? _state->layoutManager->textContainerCount() : 0};
}

NSString* NSTextView::string() { return _state->storage ? _state->storage->string() : u""_ns; }

void NSTextView::setString(NSString* string) {
    if (!_state->storage) return;
    replaceCharactersInRange_withString({0, _state->length()}, string);
    setSelectedRange({0, 0});
    // Steps that belong to the old text would change places of the new one.
    breakUndoCoalescing();
    if (NSUndoManager* manager = undoManager()) manager->removeAllActionsWithTarget(this);
}

void NSTextView::replaceCharactersInRange_withString(NSRange range, NSString* string) {
    requireRange(range, _state->length(), "replaceCharactersInRange:withString:");
    if (!_state->storage) return;
    const auto attributes = Retained<NSDictionary>::retaining(typingAttributes());
    const bool isAll = range.length == _state->length();
    if (!string) string = u""_ns;
    if (isAll)
        _state->storage->replaceCharactersInRange_withString_attributes(range, string, attributes);
    else
        _state->storage->replaceCharactersInRange_withString(range, string);
}

// MARK: Attributes of the whole text

NSFont* NSTextView::font() { return cast<NSFont>(firstAttribute(NSFontAttributeName)); }

void NSTextView::setFont(NSFont* font) { setAttributeOfAll(NSFontAttributeName, font); }

NSColor* NSTextView::textColor() { return cast<NSColor>(firstAttribute(NSForegroundColorAttributeName)); }

void NSTextView::setTextColor(NSColor* color) { setAttributeOfAll(NSForegroundColorAttributeName, color); }

int NSTextView::alignment() {
    auto style = cast<NSParagraphStyle>(firstAttribute(NSParagraphStyleAttributeName));
    return style ? style->alignment() : NSNaturalTextAlignment;
}

void NSTextView::setAlignment(int alignment) {
    auto style = cast<NSParagraphStyle>(firstAttribute(NSParagraphStyleAttributeName));
    auto changed = (style ? style : NSParagraphStyle::defaultParagraphStyle())->mutableCopy();
    changed->setAlignment(static_cast<NSTextAlignment>(alignment));
    setAttributeOfAll(NSParagraphStyleAttributeName, changed);
}

id NSTextView::firstAttribute(NSString* name) {
    if (_state->length() == 0) return typingAttributes()->objectForKey(name);
    return _state->storage->attribute_atIndex_effectiveRange(name, 0, nullptr);
}

void NSTextView::setAttributeOfAll(NSString* name, id value) {
    if (!_state->storage) return;
    auto typing = typingAttributes()->mutableCopy();
    if (value)
        typing->setObject_forKey(value, name);
    else
        typing->removeObjectForKey(name);
    _state->typingAttributes = typing->copy();
    const NSRange all{0, _state->length()};
    if (value)
        _state->storage->addAttribute_value_range(name, value, all);
    else
        _state->storage->removeAttribute_range(name, all);
}

NSDictionary* NSTextView::typingAttributes() {
    if (_state->typingAttributes) return _state->typingAttributes;
    if (_state->length() == 0)
        return _state->emptyAttributes ? _state->emptyAttributes.get() : NSDictionary::dictionary();
    // Those of the character before the selection, unless that one ends another paragraph.
    NSUInteger index = std::min(_state->selection.location, _state->length() - 1);
    if (_state->selection.length == 0 && _state->selection.location > 0) {
        const NSRange paragraph = paragraphsAround(string(), {_state->selection.location, 0});
        if (paragraph.location < _state->selection.location || paragraph.length == 0)
            index = _state->selection.location - 1;
    }
    NSDictionary* attributes = _state->storage->attributesAtIndex_effectiveRange(index, nullptr);
    if (!attributes->objectForKey(NSAttachmentAttributeName)) return attributes;
    auto typing = attributes->mutableCopy();
    typing->removeObjectForKey(NSAttachmentAttributeName);
    return typing->copy().autorelease();
}

void NSTextView::setTypingAttributes(NSDictionary* attributes) {
    _state->typingAttributes = attributes ? attributes->copy() : nullptr;
    if (_state->length() == 0) _state->emptyAttributes = _state->typingAttributes;
    breakUndoCoalescing();
}

// MARK: Settings

void NSTextView::setEditable(bool isEditable) {
    NSText::setEditable(isEditable);
    updateInsertionPointStateAndRestartTimer(true);
}

void NSTextView::setSelectable(bool isSelectable) {
    NSText::setSelectable(isSelectable);
    updateInsertionPointStateAndRestartTimer(true);
}

NSColor* NSTextView::insertionPointColor() { return _state->caretColor; }

void NSTextView::setInsertionPointColor(NSColor* color) {
    _state->caretColor.set(color);
    setNeedsDisplay(true);
}

NSColor* NSTextView::selectionColor() { return _state->selectionColor; }

void NSTextView::setSelectionColor(NSColor* color) {
    _state->selectionColor.set(color);
    setNeedsDisplay(true);
}

// MARK: Size

void NSTextView::setFrameSize(NSSize size) {
    if (size == frame().size) return;
    NSText::setFrameSize(size);
    trackContainerSize();
    setNeedsPreparation();
}

// A clip view that has grown is to be filled.
void NSTextView::resizeWithOldSuperviewSize(NSSize oldSize) {
    NSText::resizeWithOldSuperviewSize(oldSize);
    setNeedsPreparation();
}

void NSTextView::markResize(NSRect oldFrame) {
    const NSRect now = frame();
    NSView* around = superview();
    if (!around || !around->isFlipped() || NSWidth(now) != NSWidth(oldFrame) || bounds().size != now.size)
        return NSText::markResize(oldFrame);
    const float upper = std::min(NSMaxY(now), NSMaxY(oldFrame)),
                lower = std::max(NSMaxY(now), NSMaxY(oldFrame));
    around->setNeedsDisplayInRect({{NSMinX(now), upper}, {NSWidth(now), lower - upper}});
}

void NSTextView::trackContainerSize() {
    NSTextContainer* container = textContainer();
    if (!container) return;
    NSSize size = container->containerSize();
    if (container->widthTracksTextView())
        size.width = std::max(NSWidth(bounds()) - 2 * _state->inset.width, 0.0F);
    if (container->heightTracksTextView())
        size.height = std::max(NSHeight(bounds()) - 2 * _state->inset.height, 0.0F);
    if (size != container->containerSize()) container->setContainerSize(size);
}

void NSTextView::sizeToFit() {
    NSTextContainer* container = textContainer();
    if (!container || !mayLayOut()) return;
    NSSize size = frame().size;
    const NSRect used = _state->layoutManager->usedRectForTextContainer(container);
    // A view in a clip view is no smaller than what can be seen of it.
    const NSSize least = clippedSize();
    const auto fitting = [](float needed, float smallest, float greatest) {
        return std::clamp(std::ceil(needed), smallest, std::max(smallest, greatest));
    };
    if (isVerticallyResizable())
        size.height = fitting(NSMaxY(used) + 2 * _state->inset.height,
                              std::max(minSize().height, least.height), maxSize().height);
    if (isHorizontallyResizable())
        size.width = fitting(NSMaxX(used) + 2 * _state->inset.width, std::max(minSize().width, least.width),
                             maxSize().width);
    if (size != frame().size) setFrameSize(size);
}

NSSize NSTextView::clippedSize() {
    auto clip = cast<NSClipView>(superview());
    return clip ? clip->bounds().size : NSSize{};
}

// Whether the layout can be asked: not between an edit of the storage and its end.
bool NSTextView::mayLayOut() {
    return _state->layoutManager && !_state->storage->hasUntoldChangesFor(_state->layoutManager);
}

}  // namespace pelvor
