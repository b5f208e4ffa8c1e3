// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRFormatCommands.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Interface/NSApplication.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSWindow.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "NSTextStorage-PelvorAdditions.h"
#include "Runtime/Message.h"
#include "Text/NSColor.h"
#include "Text/NSFontManager.h"
#include "Text/NSLayoutManager.h"
#include "Writer/LocalizedText.h"
#include "Writer/Pages/StyleChange.h"
#include "Writer/WRDocument.h"
#include "Writer/Windows/UndoPause.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr float kIndentStep = 36;
constexpr float kSizes[] = {6, 7, 8, 9, 10, 11, 12, 14, 16, 18, 20, 24, 28, 32, 36, 48, 60, 72, 96, 144};

NSFontManager* manager() { return NSFontManager::sharedFontManager(); }

NSFont* fontIn(NSDictionary* attributes) {
    NSFont* font = fontOf(attributes);
    return font ? font : NSFont::userFontOfSize(12);
}

NSParagraphStyle* styleIn(NSDictionary* attributes) {
    auto* style = cast<NSParagraphStyle>(attributes->objectForKey(NSParagraphStyleAttributeName));
    return style ? style : NSParagraphStyle::defaultParagraphStyle();
}

// Null takes the value away.
Retained<NSDictionary> with(NSDictionary* attributes, NSString* key, id value) {
    auto changed = NSMutableDictionary::initWithDictionary(attributes);
    if (value)
        changed->setObject_forKey(value, key);
    else
        changed->removeObjectForKey(key);
    return changed;
}

Retained<NSDictionary> withStyle(NSDictionary* attributes, const WRFormatCommands::StyleChange& change) {
    auto style = styleIn(attributes)->mutableCopy();
    change(style);
    return with(attributes, NSParagraphStyleAttributeName, style->copy().get());
}

// A language is no format.
Retained<NSDictionary> formatsIn(NSDictionary* attributes) {
    const auto named = with(attributes, NSLanguageAttributeName, nullptr);
    return with(named, PBLanguageAttributeName, nullptr);
}

bool hasLine(NSDictionary* attributes, NSString* key) {
    auto* style = cast<NSNumber>(attributes->objectForKey(key));
    return style && style->intValue() != NSUnderlineStyleNone;
}

NSInteger tagOf(id sender) {
    auto* item = cast<NSMenuItem>(sender);
    return item ? item->tag() : 0;
}

template <class T>
T* representedBy(id sender) {
    auto* item = cast<NSMenuItem>(sender);
    return item ? cast<T>(item->representedObject()) : nullptr;
}

float nextSize(float size, bool isBigger) {
    if (isBigger) {
        const float* next = std::upper_bound(std::begin(kSizes), std::end(kSizes), size);
        return next == std::end(kSizes) ? size + 12 : *next;
    }
    if (size > std::end(kSizes)[-1]) return std::max(size - 12, std::end(kSizes)[-1]);
    const float* next = std::lower_bound(std::begin(kSizes), std::end(kSizes), size);
    return next == std::begin(kSizes) ? std::max(size - 1, 1.0F) : next[-1];
}

int hundredthsOfLineHeight(NSParagraphStyle* style) {
    const float factor = style->lineHeightMultiple();
    return static_cast<int>(std::lround((factor > 0 ? factor : 1) * 100));
}

// Styles do not tell names apart by case, and text without a name is in the plain one.
bool isNamed(NSDictionary* attributes, NSString* key, NSString* name) {
    NSString* own = nameIn(attributes, key);
    if (!own && key == PBStyleParagraphAttributeName) own = kPlainStyleName;
    return own && name ? own->caseInsensitiveCompare(name) == 0 : !own && !name;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRFormatCommands, windowsLibrary) {
    methods.instanceAs<"toggleBold:", &WRFormatCommands::toggleTrait<NSBoldFontMask>>();
    methods.instanceAs<"toggleItalic:", &WRFormatCommands::toggleTrait<NSItalicFontMask>>();
    methods.instanceAs<"toggleUnderline:", &WRFormatCommands::toggleLine<NSUnderlineStyleAttributeName>>();
    methods.instanceAs<"toggleStrikethrough:",
                       &WRFormatCommands::toggleLine<NSStrikethroughStyleAttributeName>>();
    methods.instance<"makeTextBigger:", &WRFormatCommands::makeTextBigger>();
    methods.instance<"makeTextSmaller:", &WRFormatCommands::makeTextSmaller>();
    methods.instance<"takeColorFrom:", &WRFormatCommands::takeColorFrom>();
    methods.instance<"changeFont:", &WRFormatCommands::changeFont>();
    methods.instance<"alignParagraphs:", &WRFormatCommands::alignParagraphs>();
    methods.instance<"takeLineSpacingFrom:", &WRFormatCommands::takeLineSpacingFrom>();
    methods.instance<"increaseIndent:", &WRFormatCommands::increaseIndent>();
    methods.instance<"decreaseIndent:", &WRFormatCommands::decreaseIndent>();
    methods.instance<"endHeading", &WRFormatCommands::endHeading>();
    methods.instance<"takeParagraphStyleFrom:", &WRFormatCommands::takeParagraphStyleFrom>();
    methods.instance<"takeCharacterStyleFrom:", &WRFormatCommands::takeCharacterStyleFrom>();
    methods.instance<"clearFormats:", &WRFormatCommands::clearFormats>();
    methods.instance<"validateMenuItem:", &WRFormatCommands::validateMenuItem>();
    methods.instanceAs<"validateToggleBold:", &WRFormatCommands::validateToggleTrait<NSBoldFontMask>>();
    methods.instanceAs<"validateToggleItalic:", &WRFormatCommands::validateToggleTrait<NSItalicFontMask>>();
    methods.instanceAs<"validateToggleUnderline:",
                       &WRFormatCommands::validateToggleLine<NSUnderlineStyleAttributeName>>();
    methods.instanceAs<"validateToggleStrikethrough:",
                       &WRFormatCommands::validateToggleLine<NSStrikethroughStyleAttributeName>>();
    methods.instance<"validateTakeColorFrom:", &WRFormatCommands::validateTakeColorFrom>();
    methods.instance<"validateAlignParagraphs:", &WRFormatCommands::validateAlignParagraphs>();
    methods.instance<"validateTakeLineSpacingFrom:", &WRFormatCommands::validateTakeLineSpacingFrom>();
    methods.instance<"validateDecreaseIndent:", &WRFormatCommands::validateDecreaseIndent>();
    methods.instance<"validateTakeParagraphStyleFrom:", &WRFormatCommands::validateTakeParagraphStyleFrom>();
    methods.instance<"validateTakeCharacterStyleFrom:", &WRFormatCommands::validateTakeCharacterStyleFrom>();
}

Retained<WRFormatCommands> WRFormatCommands::create(WRDocument* document, WRPageView* pageView,
                                                    std::shared_ptr<const StyleSheet> sheet) {
    auto self = make<WRFormatCommands>(classObject());
    self->_document.set(document);
    self->_pageView.set(pageView);
    self->_sheet = std::move(sheet);
    return self;
}

WRFormatCommands::~WRFormatCommands() = default;

WRFormatCommands* WRFormatCommands::current() {
    return cast<WRFormatCommands>(
        NSApplication::sharedApplication()->targetForAction("takeParagraphStyleFrom:"_sel));
}

void WRFormatCommands::addObserverOfCurrent(id observer) {
    auto* centre = NSNotificationCenter::defaultCenter();
    for (NSString* name : {NSTextViewDidChangeSelectionNotification, NSTextDidChangeNotification,
                           WRFormatsDidChangeNotification, NSWindowDidBecomeMainNotification})
        centre->addObserver_selector_name_object(observer, "formatsDidChange:"_sel, name, nullptr);
}

// MARK: The selection

std::span<const float> WRFormatCommands::usualSizes() { return kSizes; }

bool WRFormatCommands::canEdit() { return _pageView->isEditable(); }

NSRange WRFormatCommands::selection() { return _pageView->selectedRange(); }

NSRange WRFormatCommands::selectedParagraphs() {
    return paragraphRangeForRange(_pageView->textStorage(), selection());
}

NSDictionary* WRFormatCommands::currentAttributes() {
    if (selection().length == 0) return _pageView->typingAttributes();
    return _pageView->textStorage()->attributesAtIndex_effectiveRange(selection().location, nullptr);
}

// The character behind a caret is in the paragraph of the caret, so no end of a long paragraph is looked for.
NSUInteger WRFormatCommands::placeInParagraph() {
    NSTextStorage* text = _pageView->textStorage();
    const NSUInteger place = selection().location, length = text->length();
    if (place < length) return place;
    if (length == 0 || paragraphRangeForRange(text, {length, 0}).length == 0) return NSNotFound;
    return length - 1;
}

NSParagraphStyle* WRFormatCommands::currentParagraphStyle() {
    const NSUInteger place = placeInParagraph();
    return styleIn(place == NSNotFound
                       ? _pageView->typingAttributes()
                       : _pageView->textStorage()->attributesAtIndex_effectiveRange(place, nullptr));
}

bool WRFormatCommands::isRightToLeft() {
    const NSWritingDirection direction = currentParagraphStyle()->baseWritingDirection();
    if (direction != NSWritingDirectionNatural) return direction == NSWritingDirectionRightToLeft;
    const NSUInteger place = placeInParagraph();
    if (place == NSNotFound) return false;
    NSLayoutManager* layoutManager = _pageView->layoutManager();
    NSTextContainer* container = layoutManager->textContainerForGlyphAtIndex_effectiveRange(place, nullptr);
    const NSRect rect = layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(place, nullptr);
    if (!container) return false;
    for (const LaidLine& line : layoutManager->linesInRect(rect, container))
        if (NSLocationInRange(place, line.range)) return line.isRightToLeft;
    return false;
}

// 1 if all runs of the range have it, 0 if none, -1 if only some; of an empty range, what is typed next.
template <class Has>
int WRFormatCommands::stateOf(NSRange range, const Has& has) {
    if (range.length == 0) return has(_pageView->typingAttributes());
    int state = -2;
    for (AttributeRun run : _pageView->textStorage()->runsInRange(range)) {
        const int own = has(run.attributes);
        if (state != -2 && own != state) return -1;
        state = own;
    }
    return state;
}

bool WRFormatCommands::showState(id item, int state) {
    if (auto* shown = cast<NSMenuItem>(item)) shown->setState(state);
    return true;
}

bool WRFormatCommands::validateMenuItem(id item) {
    bool isEnabled = true;
    dispatchValidationTo_result(item, this, &isEnabled);
    return isEnabled && canEdit();
}

// MARK: Changes

void WRFormatCommands::setDocumentHasFormats(bool hasFormats) {
    if (_document->hasFormats() == hasFormats) return;
    if (NSUndoManager* undo = _pageView->undoManager())
        undo->registerUndo(this, [this, hasFormats] { setDocumentHasFormats(!hasFormats); });
    _document->setHasFormats(hasFormats);
}

// One step to undo, apart from what is typed before and after. False if the user may not change the range.
bool WRFormatCommands::edit(id sender, NSString* name, NSRange range,
                            const std::function<void(NSTextStorage* text)>& change, bool continuesStep) {
    const auto alive = Retained<WRFormatCommands>::retaining(this);
    const auto view = Retained<WRPageView>::retaining(_pageView);
    if (view->hasMarkedText()) view->unmarkText();
    view->breakUndoCoalescing();
    NSUndoManager* undo = view->undoManager();
    {
        const UndoPause pause(continuesStep ? undo : nullptr);
        if (!view->shouldChangeTextInRange_replacementString(range, nullptr)) return false;
    }
    setDocumentHasFormats(true);
    NSTextStorage* text = view->textStorage();
    text->beginEditing();
    change(text);
    text->endEditing();
    view->breakUndoCoalescing();
    auto* item = cast<NSMenuItem>(sender);
    if (undo && !continuesStep) undo->setActionName(item ? item->title() : name ? name : u""_ns);
    view->didChangeText();
    return true;
}

// What is typed next; null stands for what the text around the caret has. Ends each command.
void WRFormatCommands::setTyping(NSDictionary* attributes) {
    _pageView->setTypingAttributes(attributes);
    NSNotificationCenter::defaultCenter()->postNotificationName_object(WRFormatsDidChangeNotification, this);
}

// The same, as the only effect of a command: what is typed is a step to undo by itself, for it may be what
// makes the document one with formats.
void WRFormatCommands::chooseTyping(NSDictionary* attributes) {
    const auto typing = formatsIn(_pageView->typingAttributes());
    if (!typing->isEqual(_chosenTyping)) _usualTyping = typing;
    _chosenTyping = formatsIn(attributes);
    _pageView->breakUndoCoalescing();
    setTyping(attributes);
}

void WRFormatCommands::textWillBeTyped() {
    NSUndoManager* undo = _pageView->undoManager();
    if (!_chosenTyping || _document->hasFormats() || (undo && (undo->isUndoing() || undo->isRedoing())))
        return;
    const auto typing = formatsIn(_pageView->typingAttributes());
    if (typing->isEqual(_chosenTyping) && !typing->isEqual(_usualTyping)) setDocumentHasFormats(true);
}

void WRFormatCommands::changeCharacters(id sender, NSString* name, const AttributeChange& change,
                                        bool continuesStep) {
    if (!canEdit()) return;
    if (const NSRange range = selection(); range.length > 0) {
        edit(
            sender, name, range, [&](NSTextStorage* text) { text->changeAttributesInRange(range, change); },
            continuesStep);
        return setTyping(nullptr);
    }
    chooseTyping(change(_pageView->typingAttributes()).get());
}

void WRFormatCommands::changeParagraphs(id sender, NSString* name, const StyleChange& change) {
    if (!canEdit()) return;
    const auto changed = [&](NSDictionary* old) { return withStyle(old, change); };
    const auto typing = changed(_pageView->typingAttributes());
    const NSRange range = selectedParagraphs();
    if (range.length == 0) return chooseTyping(typing);
    edit(sender, name, range, [&](NSTextStorage* text) { text->changeAttributesInRange(range, changed); });
    setTyping(typing);
}

// MARK: Characters

template <unsigned trait>
bool WRFormatCommands::validateToggleTrait(id item) {
    return showState(item, stateOf(selection(), [](NSDictionary* attributes) {
                         return (manager()->traitsOfFont(fontIn(attributes)) & trait) != 0;
                     }));
}

template <unsigned trait>
void WRFormatCommands::toggleTrait(id sender) {
    const bool isOn = stateOf(selection(), [](NSDictionary* attributes) {
                          return (manager()->traitsOfFont(fontIn(attributes)) & trait) != 0;
                      }) == 1;
    changeCharacters(sender, nullptr, [isOn](NSDictionary* old) {
        NSFont* font = fontIn(old);
        return with(old, NSFontAttributeName,
                    isOn ? manager()->convertFont_toNotHaveTrait(font, trait)
                         : manager()->convertFont_toHaveTrait(font, trait));
    });
}

template <NSString* const& key>
bool WRFormatCommands::validateToggleLine(id item) {
    return showState(item,
                     stateOf(selection(), [](NSDictionary* attributes) { return hasLine(attributes, key); }));
}

template <NSString* const& key>
void WRFormatCommands::toggleLine(id sender) {
    const bool isOn =
        stateOf(selection(), [](NSDictionary* attributes) { return hasLine(attributes, key); }) == 1;
    NSNumber* line = isOn ? nullptr : NSNumber::numberWithInt(NSUnderlineStyleSingle);
    changeCharacters(sender, nullptr, [line](NSDictionary* old) { return with(old, key, line); });
}

void WRFormatCommands::changeSizes(id sender, bool isBigger) {
    changeCharacters(sender, nullptr, [isBigger](NSDictionary* old) {
        NSFont* font = fontIn(old);
        return with(old, NSFontAttributeName,
                    manager()->convertFont_toSize(font, nextSize(font->pointSize(), isBigger)));
    });
}

void WRFormatCommands::makeTextBigger(id sender) { changeSizes(sender, true); }

void WRFormatCommands::makeTextSmaller(id sender) { changeSizes(sender, false); }

void WRFormatCommands::takeColorFrom(id sender) {
    auto* color = representedBy<NSColor>(sender);
    changeCharacters(sender, nullptr,
                     [color](NSDictionary* old) { return with(old, NSForegroundColorAttributeName, color); });
}

void WRFormatCommands::setTextColor(NSColor* color, bool continuesStep) {
    changeCharacters(
        nullptr, localized(u"_Colour"_ns),
        [color](NSDictionary* old) { return with(old, NSForegroundColorAttributeName, color); },
        continuesStep);
}

bool WRFormatCommands::validateTakeColorFrom(id item) {
    auto* color = representedBy<NSColor>(item);
    return showState(item, stateOf(selection(), [color](NSDictionary* attributes) {
                         id own = attributes->objectForKey(NSForegroundColorAttributeName);
                         return own && color ? own->isEqual(color) : !own && !color;
                     }));
}

void WRFormatCommands::changeFont(id sender) {
    if (!sender || !sender->respondsToSelector("convertFont:"_sel)) return;
    const auto kept = Retained<Object>::retaining(sender);
    changeCharacters(nullptr, localized(u"_Font"_ns), [sender](NSDictionary* old) {
        return with(old, NSFontAttributeName, send<id>(sender, "convertFont:"_sel, fontIn(old)));
    });
}

// MARK: Paragraphs

void WRFormatCommands::alignParagraphs(id sender) {
    const auto alignment = static_cast<NSTextAlignment>(tagOf(sender));
    changeParagraphs(sender, nullptr,
                     [alignment](NSMutableParagraphStyle* style) { style->setAlignment(alignment); });
}

bool WRFormatCommands::validateAlignParagraphs(id item) {
    const int natural = isRightToLeft() ? NSRightTextAlignment : NSLeftTextAlignment;
    return showState(item, stateOf(selectedParagraphs(), [&](NSDictionary* attributes) {
                         const int alignment = styleIn(attributes)->alignment();
                         return (alignment == NSNaturalTextAlignment ? natural : alignment) == tagOf(item);
                     }));
}

void WRFormatCommands::takeLineSpacingFrom(id sender) {
    const float factor = static_cast<float>(tagOf(sender)) / 100;
    changeParagraphs(sender, nullptr,
                     [factor](NSMutableParagraphStyle* style) { style->setLineHeightMultiple(factor); });
}

bool WRFormatCommands::validateTakeLineSpacingFrom(id item) {
    return showState(item, stateOf(selectedParagraphs(), [&](NSDictionary* attributes) {
                         return hundredthsOfLineHeight(styleIn(attributes)) == tagOf(item);
                     }));
}

// The first line and the others move together.
void WRFormatCommands::moveIndents(id sender, float distance) {
    const float most = std::max(_pageView->pages()->frame().width() - 2 * kIndentStep, 0.0F);
    changeParagraphs(sender, nullptr, [=](NSMutableParagraphStyle* style) {
        const float first = style->firstLineHeadIndent(), others = style->headIndent();
        const float least = std::min(first, others), furthest = std::max(first, others);
        const float moved = std::clamp(distance, -std::max(least, 0.0F), std::max(most - furthest, 0.0F));
        style->setFirstLineHeadIndent(first + moved);
        style->setHeadIndent(others + moved);
    });
}

void WRFormatCommands::increaseIndent(id sender) { moveIndents(sender, kIndentStep); }

void WRFormatCommands::decreaseIndent(id sender) { moveIndents(sender, -kIndentStep); }

bool WRFormatCommands::validateDecreaseIndent(id) {
    return stateOf(selectedParagraphs(), [](NSDictionary* attributes) {
               NSParagraphStyle* style = styleIn(attributes);
               return style->firstLineHeadIndent() > 0 && style->headIndent() > 0;
           }) != 0;
}

// MARK: Styles

void WRFormatCommands::takeParagraphStyleFrom(id sender) {
    const auto name = Retained<NSString>::retaining(representedBy<NSString>(sender));
    setParagraphStyle(sender, name);
}

bool WRFormatCommands::endHeading() {
    const NSRange caret = selection();
    const NamedStyle* style =
        _sheet->paragraphStyle(nameIn(_pageView->typingAttributes(), PBStyleParagraphAttributeName));
    if (!canEdit() || !_document->hasFormats() || _pageView->hasMarkedText() || caret.length > 0 || !style ||
        !style->rules.isKeepWithNext || selectedParagraphs().location == caret.location)
        return false;
    NSString* text = _pageView->string();
    const bool isAtEnd = caret.location == text->length() ||
                         std::u16string_view(u"\n\r\u2029").find(text->characterAtIndex(caret.location)) !=
                             std::u16string_view::npos;
    if (!isAtEnd) return false;
    NSUndoManager* undo = _pageView->undoManager();
    _pageView->breakUndoCoalescing();
    if (undo) undo->beginUndoGrouping();
    _pageView->insertText(u"\n"_ns);
    setParagraphStyle(nullptr, kPlainStyleName);
    if (undo) undo->endUndoGrouping();
    return true;
}

void WRFormatCommands::setParagraphStyle(id sender, NSString* name) {
    if (!canEdit() || !_sheet->paragraphStyle(name)) return;
    const NSRange range = selectedParagraphs();
    const auto typing = Retained<NSDictionary>::retaining(_pageView->typingAttributes());
    const auto usual = Retained<NSDictionary>::retaining(
        range.length > 0 ? usualAttributes(_pageView->textStorage(), range) : typing.get());
    const auto next = attributesInParagraphStyle(*_sheet, name, typing, usual);
    if (range.length == 0) return chooseTyping(next);
    edit(sender, nullptr, range,
         [&](NSTextStorage* text) { pelvor::setParagraphStyle(text, range, *_sheet, name); });
    setTyping(next);
}

bool WRFormatCommands::validateTakeParagraphStyleFrom(id item) {
    auto* name = representedBy<NSString>(item);
    return showState(item, stateOf(selectedParagraphs(), [name](NSDictionary* attributes) {
                         return isNamed(attributes, PBStyleParagraphAttributeName, name);
                     }));
}

void WRFormatCommands::takeCharacterStyleFrom(id sender) {
    const auto name = Retained<NSString>::retaining(representedBy<NSString>(sender));
    if (!canEdit() || (name && !_sheet->characterStyle(name))) return;
    if (const NSRange range = selection(); range.length > 0) {
        edit(sender, nullptr, range,
             [&](NSTextStorage* text) { setCharacterStyle(text, range, *_sheet, name); });
        return setTyping(nullptr);
    }
    const NSRange paragraph = selectedParagraphs();
    changeCharacters(sender, nullptr, [&](NSDictionary* old) {
        NSDictionary* usual =
            paragraph.length > 0 ? usualAttributes(_pageView->textStorage(), paragraph) : old;
        return Retained<NSDictionary>(attributesInCharacterStyle(*_sheet, name, old, usual));
    });
}

bool WRFormatCommands::validateTakeCharacterStyleFrom(id item) {
    auto* name = representedBy<NSString>(item);
    return showState(item, stateOf(selection(), [name](NSDictionary* attributes) {
                         return isNamed(attributes, PBStyleCharacterAttributeName, name);
                     }));
}

// Of a caret, the whole paragraph.
void WRFormatCommands::clearFormats(id sender) {
    if (!canEdit()) return;
    const bool isCaret = selection().length == 0;
    const NSRange range = isCaret ? selectedParagraphs() : selection();
    const auto typing = clearedAttributes(*_sheet, _pageView->typingAttributes(), true);
    if (range.length > 0 && _document->hasFormats())
        edit(sender, nullptr, range,
             [&](NSTextStorage* text) { pelvor::clearFormats(text, range, *_sheet); });
    setTyping(isCaret ? typing.get() : nullptr);
}

}  // namespace pelvor
