// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRFindPanel.h"

#include "Foundation/NSArray.h"
#include "Interface/NSApplication.h"
#include "Interface/NSButton.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSTextField.h"
#include "Runtime/Message.h"
#include "Writer/LocalizedText.h"
#include "Writer/TextEscapes.h"
#include "Writer/Windows/WRDocumentWindow.h"
#include "Writer/Windows/WRFormView.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WindowFrames.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

using Kind = FindResult::Kind;

NSPasteboard* findPasteboard() { return NSPasteboard::pasteboardWithName(NSFindPboard); }

NSString* sentenceFor(const FindResult& result) {
    switch (result.kind) {
        case Kind::noQuery:
            return localized(u"_There is no text to look for."_ns);
        case Kind::notFound:
            return localized(u"_Not found"_ns);
        case Kind::noMore:
            return localizedFormat(u"_No more found; %u in the whole text"_ns, result.count);
        case Kind::found:
            return localizedFormat(u"_%u of %u"_ns, result.number, result.count);
        case Kind::wrapped:
            return localizedFormat(u"_%u of %u, from the other end of the text"_ns, result.number,
                                   result.count);
        case Kind::replaced:
            return localizedFormat(u"_%u replaced"_ns, result.count);
        case Kind::readOnly:
            break;
    }
    return localized(u"_This text cannot be changed."_ns);
}

}  // namespace

WRFindPanel::~WRFindPanel() = default;

PELVOR_DEFINE_CLASS(WRFindPanel, windowsLibrary) {
    methods.creator<"init", &WRFindPanel::init>();
    methods.instance<"orderFront:", &WRFindPanel::orderFront>();
    methods.instance<"window", &WRFindPanel::window>();
    methods.instance<"message", &WRFindPanel::message>();
    methods.instance<"findNext:", &WRFindPanel::findNext>();
    methods.instance<"findPrevious:", &WRFindPanel::findPrevious>();
    methods.instance<"replace:", &WRFindPanel::replace>();
    methods.instance<"replaceAndFind:", &WRFindPanel::replaceAndFind>();
    methods.instance<"replaceAll:", &WRFindPanel::replaceAll>();
    methods.instance<"useSelectionForFind:", &WRFindPanel::useSelectionForFind>();
    methods.instance<"jumpToSelection:", &WRFindPanel::jumpToSelection>();
    methods.instance<"windowWillClose:", &WRFindPanel::windowWillClose>();
}

Retained<WRFindPanel> WRFindPanel::init(Class* cls) {
    auto self = make<WRFindPanel>(cls);
    self->_finder = WRTextFinder::init();
    self->makePanel();
    return self;
}

void WRFindPanel::makePanel() {
    constexpr float kFieldWidth = 300;
    auto form = WRFormView::create(this, kFieldWidth);
    _findField.set(form->addField(localized(u"_Find:"_ns)));
    _replacementField.set(form->addField(localized(u"_Replace with:"_ns)));
    _matchesCase.set(form->addCheckBox(localized(u"_Match case"_ns)));
    _wholeWords.set(form->addCheckBox(localized(u"_Whole words"_ns)));
    _wraps.set(form->addCheckBox(localized(u"_Wrap around"_ns)));
    _wraps->setState(NSOnState);
    _escapes.set(form->addCheckBox(localized(u"_\\n stands for a line end, \\t for a tab"_ns)));
    _message.set(form->addMessage());
    form->addButton(localized(u"_Next"_ns), "findNext:"_sel)->setKeyEquivalent(u"\r"_ns);
    form->addButton(localized(u"_Previous"_ns), "findPrevious:"_sel);
    form->addButton(localized(u"_Replace & Find"_ns), "replaceAndFind:"_sel);
    form->addButton(localized(u"_Replace"_ns), "replace:"_sel);
    form->addButton(localized(u"_Replace All"_ns), "replaceAll:"_sel);
    _panel = form->panelWithTitle(localized(u"_Find and Replace"_ns));
    _panel->setDelegate(this);
}

WRPageView* WRFindPanel::pageView() {
    NSWindow* window = NSApplication::sharedApplication()->mainWindow();
    auto* document = window ? cast<WRDocumentWindow>(window->delegate()) : nullptr;
    return document ? document->pageView() : nullptr;
}

void WRFindPanel::show() {
    _panel->showBeside(NSApplication::sharedApplication()->mainWindow());
    _findField->selectText(nullptr);
}

NSString* WRFindPanel::message() { return _message->stringValue(); }

void WRFindPanel::orderFront(id) {
    takePasteboard();
    _message->setStringValue(u""_ns);
    show();
}

// MARK: What is looked for

// Other windows and programs may have put another text there.
void WRFindPanel::takePasteboard() {
    NSPasteboard* board = findPasteboard();
    if (board->changeCount() == _pasteboardCount) return;
    _pasteboardCount = board->changeCount();
    if (NSString* text = board->stringForType(NSStringPboardType)) showQuery(text);
}

void WRFindPanel::showQuery(NSString* text) {
    const bool hasControls =
        text->rangeOfString(u"\n"_ns).length > 0 || text->rangeOfString(u"\t"_ns).length > 0;
    if (hasControls) _escapes->setState(NSOnState);
    _findField->setStringValue(_escapes->state() == NSOnState ? escapedText(text) : text);
}

NSString* WRFindPanel::textOfField(NSTextField* field) {
    return _escapes->state() == NSOnState ? textFromEscapes(field->stringValue()) : field->stringValue();
}

// MARK: Commands

// Calls the command with the view, and says what it came to.
template <class Command>
void WRFindPanel::perform(Command command) {
    const auto alive = Retained<WRFindPanel>::retaining(this);
    const auto view = Retained<WRPageView>::retaining(pageView());
    if (!view) return _message->setStringValue(localized(u"_No document is open."_ns));
    takePasteboard();
    NSString* text = textOfField(_findField);
    if (NSPasteboard* board = findPasteboard();
        text->length() > 0 && !text->isEqual(board->stringForType(NSStringPboardType))) {
        board->declareTypes_owner(NSArray::of({NSStringPboardType}), nullptr);
        board->setString_forType(text, NSStringPboardType);
        _pasteboardCount = board->changeCount();
    }
    _finder->setQuery({text->copy(), _matchesCase->state() == NSOnState, _wholeWords->state() == NSOnState});
    _finder->setReplacement(textOfField(_replacementField));
    _finder->setWraps(_wraps->state() == NSOnState);
    tell(command(view.get()));
}

void WRFindPanel::tell(const FindResult& result) {
    _message->setStringValue(sentenceFor(result));
    const bool isFound = result.kind == Kind::found || result.kind == Kind::wrapped;
    const bool isDone = isFound || result.kind == Kind::replaced;
    WRPageView* view = pageView();
    if (!_panel->isVisible()) {
        if (!isDone) show();
        if (result.kind == Kind::wrapped) NSBeep();  // nobody sees the message
        return;
    }
    showPlaces(isFound ? view : nullptr);
    if (!isDone || !view) return;
    // What was found is not to be behind the panel.
    NSRect place = view->convertRect_toView(view->rectForCharacterRange(view->selectedRange()), nullptr);
    place.origin = view->window()->convertBaseToScreen(place.origin);
    uncover(place, _panel);
}

// Null shows them nowhere any more.
void WRFindPanel::showPlaces(WRPageView* view) {
    if (const Retained<Object> before = _shown.object(); before && before.get() != view)
        static_cast<WRPageView*>(before.get())->setFoundPlaces({});
    _shown = WeakHandle(view);
    if (view) view->setFoundPlaces(_finder->places(view));
}

void WRFindPanel::windowWillClose(id) { showPlaces(nullptr); }

void WRFindPanel::findNext(id) {
    perform([this](NSTextView* view) { return _finder->find(view, false); });
}

void WRFindPanel::findPrevious(id) {
    perform([this](NSTextView* view) { return _finder->find(view, true); });
}

void WRFindPanel::replace(id) {
    perform([this](NSTextView* view) { return _finder->replace(view); });
}

void WRFindPanel::replaceAndFind(id) {
    perform([this](NSTextView* view) {
        const FindResult result = _finder->replace(view);
        return result.kind == Kind::replaced ? _finder->find(view, false) : result;
    });
}

void WRFindPanel::replaceAll(id) {
    perform([this](NSTextView* view) { return _finder->replaceAll(view); });
}

void WRFindPanel::useSelectionForFind(id) {
    WRPageView* view = pageView();
    if (!view || view->selectedRange().length == 0) return;
    NSPasteboard* board = findPasteboard();
    board->declareTypes_owner(NSArray::of({NSStringPboardType}), nullptr);
    board->setString_forType(view->string()->substringWithRange(view->selectedRange()), NSStringPboardType);
    takePasteboard();
}

void WRFindPanel::jumpToSelection(id) {
    const auto view = Retained<WRPageView>::retaining(pageView());
    if (!view) return;
    view->pageWithUnit(view->selectedRange().location);
    send(view.get(), "centerSelectionInVisibleArea:"_sel, id(nullptr));
}

}  // namespace pelvor
