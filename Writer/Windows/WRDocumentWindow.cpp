// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRDocumentWindow.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSUndoManager.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSAlert.h"
#include "Interface/NSApplication.h"
#include "Interface/NSClipView.h"
#include "Interface/NSMenuBarView.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSScreen.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSScroller.h"
#include "Interface/NSTextField.h"
#include "Interface/NSWindow.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "PBRegistry.h"
#include "Text/NSTextStorage.h"
#include "Writer/LocalizedText.h"
#include "Writer/PageOutput.h"
#include "Writer/Pages/StyledDocument.h"
#include "Writer/PlugInObjects.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/WRDocument.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WRDesktop.h"
#include "Writer/Windows/WRDocumentFile.h"
#include "Writer/Windows/WRFileDropView.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WRLanguageCommands.h"
#include "Writer/Windows/WRLanguageSearch.h"
#include "Writer/Windows/WRPageSetupPanel.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRPrintPanel.h"
#include "Writer/Windows/WRRuler.h"
#include "Writer/Windows/WRSpelling.h"
#include "Writer/Windows/WRWordCounter.h"
#include "Writer/Windows/WRZoomView.h"
#include "Writer/Windows/WindowFrames.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr float kStatusHeight = 24;
constexpr double kZooms[] = {0.1, 0.25, 0.33, 0.5, 0.67, 0.8, 0.9, 1, 1.25, 1.5, 2, 3, 4, 6, 8};
constexpr NSSize kRoomAround{24, 40};  // between a new window and the edges of the screen

bool showsRulers() { return preference(WRShowsRulerPreference); }

// Shows a page whole, beside the scroller that further pages need, if the screen allows.
NSRect firstFrame(NSSize page) {
    const NSRect room =
        NSInsetRect(NSScreen::mainScreen()->visibleFrame(), kRoomAround.width, kRoomAround.height);
    const float bars =
        kStatusHeight + NSMenuBarView::menuBarHeight() + (showsRulers() ? WRRuler::kHeight : 0);
    const NSSize size{std::min(page.width + NSScroller::scrollerWidth(), room.size.width),
                      std::min(page.height + bars, room.size.height)};
    return {{NSMidX(room) - size.width / 2, NSMaxY(room) - size.height}, size};
}

// Whether the window has its upper left corner where a visible one has its own.
bool standsOnOneOf(NSArray* windows, NSWindow* window) {
    const NSRect frame = window->frame();
    for (id each : windows) {
        auto* other = static_cast<NSWindow*>(each);
        if (other == window || !other->isVisible()) continue;
        if (NSMinX(other->frame()) == NSMinX(frame) && NSMaxY(other->frame()) == NSMaxY(frame)) return true;
    }
    return false;
}

NSString* textOfAnswer(NSDictionary* answer) {
    auto* lines = NSMutableArray::array();
    for (NSDictionaryEntry entry : answer)
        lines->addObject(NSString::stringWithFormat(u"%@: %@"_ns, entry.key, entry.value));
    return lines->componentsJoinedByString(u"\n"_ns);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRDocumentWindow, windowsLibrary) {
    methods.instance<"show", &WRDocumentWindow::show>();
    methods.instance<"showWindow:", &WRDocumentWindow::showWindow>();
    methods.instance<"window", &WRDocumentWindow::window>();
    methods.instance<"document", &WRDocumentWindow::document>();
    methods.instance<"pageView", &WRDocumentWindow::pageView>();
    methods.instance<"zoomIn:", &WRDocumentWindow::zoomIn>();
    methods.instance<"zoomOut:", &WRDocumentWindow::zoomOut>();
    methods.instance<"showActualSize:", &WRDocumentWindow::showActualSize>();
    methods.instance<"showWholeWidth:", &WRDocumentWindow::showWholeWidth>();
    methods.instance<"toggleRuler:", &WRDocumentWindow::toggleRuler>();
    methods.instance<"showNextPage:", &WRDocumentWindow::showNextPage>();
    methods.instance<"showPreviousPage:", &WRDocumentWindow::showPreviousPage>();
    methods.instance<"askService:", &WRDocumentWindow::askService>();
    methods.instance<"validateMenuItem:", &WRDocumentWindow::validateMenuItem>();
    methods.instance<"validateToggleRuler:", &WRDocumentWindow::validateToggleRuler>();
    methods.instance<"validateShowNextPage:", &WRDocumentWindow::validateShowNextPage>();
    methods.instance<"validateShowPreviousPage:", &WRDocumentWindow::validateShowPreviousPage>();
    methods.instance<"runPageLayout:", &WRDocumentWindow::runPageLayout>();
    methods.instance<"printDocument:", &WRDocumentWindow::printDocument>();
    methods.instance<"changeSettings:", &WRDocumentWindow::changeSettings>();
    methods.instance<"setPageSettings:ownSettings:", &WRDocumentWindow::setPageSettings_ownSettings>();
    methods.instance<"showTitle", &WRDocumentWindow::showTitle>();
    methods.instance<"currentPage", &WRDocumentWindow::currentPage>();
    methods.instance<"isFindingLanguages", &WRDocumentWindow::isFindingLanguages>();
    methods.instance<"textDidChange:", &WRDocumentWindow::textDidChange>();
    methods.instance<"textView:shouldChangeTextInRange:replacementString:",
                     &WRDocumentWindow::textView_shouldChangeTextInRange_replacementString>();
    methods.instance<"pageViewHasFormats:", &WRDocumentWindow::pageViewHasFormats>();
    methods.instance<"pageViewDidReceiveFormats:", &WRDocumentWindow::pageViewDidReceiveFormats>();
    methods.instance<"textViewDidChangeSelection:", &WRDocumentWindow::textViewDidChangeSelection>();
    methods.instance<"textView:doCommandBySelector:", &WRDocumentWindow::textView_doCommandBySelector>();
    methods.instance<"undoManagerForTextView:", &WRDocumentWindow::undoManagerForTextView>();
    methods.instance<"windowShouldClose:", &WRDocumentWindow::windowShouldClose>();
    methods.instance<"noticeDidResize:", &WRDocumentWindow::noticeDidResize>();
    methods.instance<"defaultsDidChange:", &WRDocumentWindow::defaultsDidChange>();
    methods.instance<"file", &WRDocumentWindow::file>();
    methods.instance<"formatCommands", &WRDocumentWindow::formatCommands>();
    methods.instance<"hideNotice", &WRDocumentWindow::hideNotice>();
    methods.instance<"notice", &WRDocumentWindow::notice>();
    methods.instance<"wishes", &WRDocumentWindow::wishes>();
    methods.instance<"windowWillClose:", &WRDocumentWindow::windowWillClose>();
    methods.instance<"placeDidChange:", &WRDocumentWindow::placeDidChange>();
}

Retained<WRDocumentWindow> WRDocumentWindow::create(WRDocument* document, NSDictionary* wishes,
                                                    NSString** problem) {
    const StyledDocument styled = StyledDocument::of(document->text(), pageOptions(document, wishes));
    if ((*problem = styled.problem)) return nullptr;
    auto self = make<WRDocumentWindow>();
    self->_document.set(document);
    self->_wishes.set(wishes);
    auto storage = NSTextStorage::initWithAttributedString(styled.text);
    document->adoptText(storage);
    self->_languageSearch = WRLanguageSearch::create(storage);
    self->_pageView = WRPageView::create(storage, styled.settings);
    if (!self->_pageView) {
        *problem =
            localized(u"_The margins, or the header and the footer, leave no room for text on the page."_ns);
        return nullptr;
    }
    if (storage->length() == 0) self->_pageView->setTypingAttributes(styled.plainAttributes);
    self->_sheet = styled.sheet;
    self->_formatCommands = WRFormatCommands::create(document, self->_pageView, styled.sheet);
    self->makeWindow();
    self->_file = WRDocumentFile::create(self);
    self->_file->setNextResponder(self->nextResponder());
    self->setNextResponder(self->_file);
    return self;
}

WRDocumentWindow::~WRDocumentWindow() {
    NSNotificationCenter::defaultCenter()->removeObserver(this);
    stopWork();
}

void WRDocumentWindow::makeWindow() {
    const NSRect frame = firstFrame(_pageView->frame().size);
    _window = NSWindow::initWithContentRect_styleMask_backing_defer(
        frame, NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask | NSResizableWindowMask,
        NSBackingStoreBuffered, true);
    _window->setContentMinSize({240, 160});
    _window->setDelegate(this);
    _window->setContentView(WRFileDropView::create(_window->contentView()->frame()).get());
    NSView* content = _window->contentView();
    const NSSize size = content->frame().size;

    _zoomView = WRZoomView::create(_pageView);
    _scrollView =
        NSScrollView::initWithFrame({{0, kStatusHeight}, {size.width, size.height - kStatusHeight}});
    _scrollView->setAutoresizingMask(NSViewWidthSizable | NSViewHeightSizable);
    _scrollView->setHasVerticalScroller(true);
    _scrollView->setHasHorizontalScroller(true);
    _scrollView->setAutohidesScrollers(true);
    _scrollView->setBackgroundColor(WRPageView::deskColor());
    _scrollView->setDocumentView(_zoomView);
    content->addSubview(_scrollView);
    showRuler(showsRulers());

    _status = NSTextField::initWithFrame({{8, 2}, {size.width - 16, kStatusHeight - 4}});
    _status->setEditable(false);
    _status->setSelectable(false);
    _status->setBezeled(false);
    _status->setDrawsBackground(false);
    _status->setAutoresizingMask(NSViewWidthSizable);
    content->addSubview(_status);

    auto* centre = NSNotificationCenter::defaultCenter();
    centre->addObserver_selector_name_object(this, "placeDidChange:"_sel, NSViewBoundsDidChangeNotification,
                                             _scrollView->contentView());
    centre->addObserver_selector_name_object(this, "placeDidChange:"_sel, WRPageViewDidFindPagesNotification,
                                             _pageView);
    centre->addObserver_selector_name_object(
        this, "textDidChange:"_sel, NSTextStorageDidProcessEditingNotification, _pageView->textStorage());
    centre->addObserver_selector_name_object(this, "defaultsDidChange:"_sel,
                                             NSUserDefaultsDidChangeNotification, nullptr);
    _undoManager = NSUndoManager::init();
    _pageView->setDelegate(this);
    // What is only shown is not the document's content.
    NSString* fidelity = _document->fidelity();
    _pageView->setEditable(!fidelity || !fidelity->isEqualToString(WRFidelityView));
    _window->setInitialFirstResponder(_pageView);
    _spelling = WRSpelling::create(_pageView);
    _languageCommands = WRLanguageCommands::create(_pageView);
    _languageSearch->setView(_pageView);
    // Who takes commands behind the window, the last one first.
    for (NSResponder* taker :
         {static_cast<NSResponder*>(_spelling), static_cast<NSResponder*>(_languageCommands),
          static_cast<NSResponder*>(_formatCommands), static_cast<NSResponder*>(this)}) {
        taker->setNextResponder(_window->nextResponder());
        _window->setNextResponder(taker);
    }
    _wordCounter = WRWordCounter::create(_pageView->textStorage(), [this] { showStatus(); });
    _zoomView->scrollPoint({0, 0});
    placeDidChange(nullptr);
}

void WRDocumentWindow::show() {
    if (!_window->isVisible()) placeWindow();
    if (_window->isMiniaturized()) _window->deminiaturize(nullptr);
    _window->makeKeyAndOrderFront(nullptr);
}

// Where the document's window stood last, or else below and beside the window that is in front; on no other
// window exactly.
void WRDocumentWindow::placeWindow() {
    NSWindow* front = NSApplication::sharedApplication()->mainWindow();
    if (const NSRect noted = notedWindowFrame(_document->path()); !NSIsEmptyRect(noted))
        _window->setFrameFromString(NSStringFromRect(noted));
    else if (front && front != _window)
        _window->setFrameTopLeftPoint(front->cascadeTopLeftFromPoint(NSZeroPoint));
    NSArray* windows = NSApplication::sharedApplication()->windows();
    for (NSUInteger i = 0; i < windows->count() && standsOnOneOf(windows, _window); ++i)
        _window->setFrameTopLeftPoint(_window->cascadeTopLeftFromPoint(NSZeroPoint));
}

// MARK: Editing

void WRDocumentWindow::textDidChange(NSNotification*) {
    if (!isFindingLanguages()) _document->textDidChange();
}

bool WRDocumentWindow::isFindingLanguages() { return _languageSearch->isEditing(); }

bool WRDocumentWindow::textView_shouldChangeTextInRange_replacementString(id, NSRange,
                                                                          NSString* replacement) {
    if (replacement && replacement->length() > 0) _formatCommands->textWillBeTyped();
    return true;
}

bool WRDocumentWindow::pageViewHasFormats(id) { return _document->hasFormats(); }

void WRDocumentWindow::pageViewDidReceiveFormats(id) { _formatCommands->setDocumentHasFormats(true); }

void WRDocumentWindow::textViewDidChangeSelection(NSNotification*) {
    if (_wordCounter) _wordCounter->setSelection(_pageView->selectedRange());
    if (_languageSearch) _languageSearch->caretDidMove();
}

bool WRDocumentWindow::textView_doCommandBySelector(id, SEL selector) {
    return selector == "insertNewline:"_sel && _formatCommands->endHeading();
}

NSUndoManager* WRDocumentWindow::undoManagerForTextView(id) { return _undoManager; }

// What is kept up with the text while it is written.
void WRDocumentWindow::stopWork() {
    if (_languageSearch) _languageSearch->stop();
    if (_wordCounter) _wordCounter->stop();
    if (_spelling) _spelling->stop();
}

bool WRDocumentWindow::windowShouldClose(id) { return _file->mayClose(); }

void WRDocumentWindow::windowWillClose(NSNotification*) {
    auto self = Retained<WRDocumentWindow>::retaining(this);
    noteWindowFrame(_document->path(), _window->frame());
    stopWork();
    _file->close();
    hideNotice();
    NSNotificationCenter::defaultCenter()->removeObserver(this);
    _window->setNextResponder(nullptr);
    if (WRDesktop* desktop = WRDesktop::current()) desktop->windowDidClose(this);
}

// MARK: Notices

void WRDocumentWindow::showNotice(NSString* text, std::vector<NoticeChoice> choices) {
    hideNotice();
    _notice = WRNoticeBar::create(text, std::move(choices), NSWidth(_window->contentView()->bounds()));
    _notice->setAutoresizingMask(NSViewWidthSizable | NSViewMinYMargin);
    _notice->setEndFunction([this] { hideNotice(); });
    _notice->setPostsFrameChangedNotifications(true);
    _window->contentView()->addSubview(_notice);
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        this, "noticeDidResize:"_sel, NSViewFrameDidChangeNotification, _notice);
    placeBars();
}

void WRDocumentWindow::hideNotice() {
    auto notice = std::exchange(_notice, nullptr);
    if (!notice) return;
    NSNotificationCenter::defaultCenter()->removeObserver_name_object(this, NSViewFrameDidChangeNotification,
                                                                      notice);
    removeBar(notice);
}

void WRDocumentWindow::noticeDidResize(NSNotification*) { placeBars(); }

// The page gets the keys of a bar that had them.
void WRDocumentWindow::removeBar(NSView* bar) {
    bar->removeFromSuperview();
    if (_window->firstResponder() == _window.get()) _window->makeFirstResponder(_pageView);
    placeBars();
}

// The pages have what the notice, the ruler and the status line leave.
void WRDocumentWindow::placeBars() {
    const NSRect room = _window->contentView()->bounds();
    float upper = NSMaxY(room);
    for (NSView* bar : {static_cast<NSView*>(_notice), static_cast<NSView*>(_ruler)}) {
        if (!bar) continue;
        upper -= NSHeight(bar->frame());
        bar->setFrameOrigin({0, upper});
    }
    keepCaretInSight([&] {
        _scrollView->setFrame({{0, kStatusHeight}, {NSWidth(room), std::max(upper - kStatusHeight, 0.0F)}});
    });
}

// Where somebody writes stays in sight when the pages are shown otherwise, or in less room.
void WRDocumentWindow::keepCaretInSight(const std::function<void()>& change) {
    const NSRange selection = _pageView->selectedRange();
    const auto isSelectionSeen = [&] {
        const NSRect caret = _pageView->caretRectForCharacterAtIndex(selection.location);
        return NSPointInRect({NSMinX(caret), NSMidY(caret)}, _pageView->visibleRect());
    };
    const bool wasSeen = _window->isVisible() && isSelectionSeen();
    change();
    if (wasSeen && !isSelectionSeen()) _pageView->scrollRangeToVisible({selection.location, 0});
}

// MARK: Ruler

void WRDocumentWindow::showRuler(bool shows) {
    if (shows == static_cast<bool>(_ruler)) return;
    if (!shows) {
        const auto ruler = std::exchange(_ruler, nullptr);
        return removeBar(ruler);
    }
    _ruler = WRRuler::create(_formatCommands, {{}, {NSWidth(_scrollView->frame()), WRRuler::kHeight}});
    _ruler->setAutoresizingMask(NSViewWidthSizable | NSViewMinYMargin);
    _window->contentView()->addSubview(_ruler);
    placeBars();
}

void WRDocumentWindow::toggleRuler(id) {
    NSUserDefaults::standardUserDefaults()->setBool_forKey(!_ruler, WRShowsRulerPreference);
}

void WRDocumentWindow::defaultsDidChange(NSNotification*) { showRuler(showsRulers()); }

bool WRDocumentWindow::validateToggleRuler(id item) {
    if (auto* shown = cast<NSMenuItem>(item)) shown->setState(static_cast<bool>(_ruler));
    return true;
}

bool WRDocumentWindow::validateMenuItem(id item) {
    bool isEnabled = true;
    dispatchValidationTo_result(item, this, &isEnabled);
    return isEnabled;
}

// MARK: Zoom

void WRDocumentWindow::setZoom(double zoom) {
    keepCaretInSight([&] { _zoomView->setZoom(zoom); });
    placeDidChange(nullptr);
}

void WRDocumentWindow::zoomIn(id) {
    const auto* next = std::find_if(std::begin(kZooms), std::end(kZooms),
                                    [this](double zoom) { return zoom > _zoomView->zoom() + 0.001; });
    if (next != std::end(kZooms)) setZoom(*next);
}

void WRDocumentWindow::zoomOut(id) {
    const auto next = std::find_if(std::rbegin(kZooms), std::rend(kZooms),
                                   [this](double zoom) { return zoom < _zoomView->zoom() - 0.001; });
    if (next != std::rend(kZooms)) setZoom(*next);
}

void WRDocumentWindow::showActualSize(id) { setZoom(1); }

void WRDocumentWindow::showWholeWidth(id) {
    const float room = _scrollView->contentSize().width;
    const float width = _pageView->frame().size.width;
    setZoom(static_cast<double>(room / width));
    const float left = _scrollView->contentSize().width;
    if (left < room) setZoom(static_cast<double>(left / width));  // larger pages need the vertical scroller
}

// MARK: Pages

NSUInteger WRDocumentWindow::currentPage() {
    const NSRect seen = _pageView->visibleRect();
    return _pageView->pageAtHeight(NSMidY(seen));
}

void WRDocumentWindow::showPage(NSUInteger page) {
    const NSRect frame = _pageView->frameOfPage(page);
    _pageView->scrollPoint({_pageView->visibleRect().origin.x, frame.origin.y - 8});
}

void WRDocumentWindow::showNextPage(id) {
    const NSUInteger next = currentPage() + 1;
    _pageView->findPages(next + 1);
    if (next < _pageView->pageCount()) showPage(next);
}

void WRDocumentWindow::showPreviousPage(id) {
    if (const NSUInteger page = currentPage()) showPage(page - 1);
}

bool WRDocumentWindow::validateShowNextPage(id) {
    return !_pageView->isComplete() || currentPage() + 1 < _pageView->pageCount();
}

bool WRDocumentWindow::validateShowPreviousPage(id) { return currentPage() > 0; }

// MARK: Status line

void WRDocumentWindow::placeDidChange(NSNotification*) { showStatus(); }

// "Page 2 of 5  ·  100 %  ·  1234 words"; "12 of 1234 words" where some are selected.
void WRDocumentWindow::showStatus() {
    if (!_wordCounter) return;
    const NSUInteger pages = _pageView->pageCount(), words = _wordCounter->count();
    auto* status = NSMutableString::string();
    status->appendFormat(localized(_pageView->isComplete() ? u"_Page %u of %u  ·  %d %%"_ns
                                                           : u"_Page %u of %u …  ·  %d %%"_ns),
                         std::min(currentPage() + 1, pages), pages,
                         static_cast<int>(std::lround(_zoomView->zoom() * 100)));
    status->appendString(u"  ·  "_ns);
    if (!_wordCounter->isComplete())
        status->appendFormat(localized(u"_%u words …"_ns), words);
    else if (const auto selected = _wordCounter->selectedCount(); selected && words == 1)
        status->appendFormat(localized(u"_%u of 1 word"_ns), *selected);
    else if (selected)
        status->appendFormat(localized(u"_%u of %u words"_ns), *selected, words);
    else if (words == 1)
        status->appendString(localized(u"_1 word"_ns));
    else
        status->appendFormat(localized(u"_%u words"_ns), words);
    _status->setStringValue(status);
}

// MARK: Paper and printing

bool WRDocumentWindow::changeSettings(NSDictionary* settings) {
    auto* now = NSMutableDictionary::dictionaryWithDictionary(_pageView->pages()->settings());
    now->addEntriesFromDictionary(settings);
    for (NSString* key : {WRHeaderKey, WRFooterKey})
        if (auto* line = cast<NSAttributedString>(now->objectForKey(key)); line && !line->length())
            now->removeObjectForKey(key);
    if (now->isEqual(_pageView->pages()->settings())) return true;
    // From now on the document has settings of its own, all of those that are seen.
    auto* own = NSMutableDictionary::dictionaryWithDictionary(now);
    NSDictionary* ownBefore = _document->settings();
    if (!ownBefore || !ownBefore->objectForKey(WRTitleKey)) own->removeObjectForKey(WRTitleKey);
    if (!setPageSettings_ownSettings(now, own)) return false;
    _undoManager->setActionName(localized(u"_Page Setup"_ns));
    return true;
}

bool WRDocumentWindow::setPageSettings_ownSettings(NSDictionary* settings, NSDictionary* ownSettings) {
    const auto before = Retained<NSDictionary>::retaining(_pageView->pages()->settings());
    const auto ownBefore = Retained<NSDictionary>::retaining(_document->settings());
    NSDictionary* now = withTitle(settings, ownSettings);
    if (!now->isEqual(before) && !_pageView->setSettings(now)) return false;
    _document->setSettings(ownSettings);
    _undoManager->registerUndo(this,
                               [this, before, ownBefore] { setPageSettings_ownSettings(before, ownBefore); });
    _document->textDidChange();
    placeDidChange(nullptr);
    return true;
}

NSDictionary* WRDocumentWindow::withTitle(NSDictionary* settings, NSDictionary* ownSettings) {
    id own = ownSettings ? ownSettings->objectForKey(WRTitleKey) : nullptr;
    auto* titled = NSMutableDictionary::dictionaryWithDictionary(settings);
    titled->setObject_forKey(own ? own : _document->name(), WRTitleKey);
    return titled;
}

void WRDocumentWindow::showTitle() {
    NSDictionary* settings = _pageView->pages()->settings();
    NSDictionary* titled = withTitle(settings, _document->settings());
    if (!titled->isEqual(settings)) _pageView->setSettings(titled);
}

void WRDocumentWindow::runPageLayout(id) {
    const auto alive = Retained<WRDocumentWindow>::retaining(this);
    WRPageSetupPanel::create(_pageView->pages()->settings(), *_sheet, [this](NSDictionary* settings) {
        return changeSettings(settings);
    })->runModal();
}

void WRDocumentWindow::printDocument(id) {
    const auto alive = Retained<WRDocumentWindow>::retaining(this);
    // As the text is now: a copy, set for somebody who reads.
    PageDocument pages(_pageView->textStorage(), _pageView->pages()->settings());
    NSString* outcome = WRPrintPanel::create(&pages, _document->name())->runModal();
    if (!outcome) return;
    NSString* problems = pages.problems()->componentsJoinedByString(u"; "_ns);
    if (problems->length()) outcome = NSString::stringWithFormat(u"%@\n%@"_ns, outcome, problems);
    NSRunAlertPanel(localized(u"_Print"_ns), u"%@"_ns, nullptr, nullptr, nullptr, outcome);
}

// MARK: Services

void WRDocumentWindow::askService(id sender) {
    auto* item = cast<NSMenuItem>(sender);
    auto* profile = item ? cast<PBProfile>(item->representedObject()) : nullptr;
    if (!profile) return;
    NSDictionary* answer = askPlugIn(profile, "examineDocument:"_sel, _document.get());
    NSString* text =
        answer->objectForKey(WRErrorKey) ? problemOfAnswer(answer, WRTextKey, profile) : textOfAnswer(answer);
    NSRunAlertPanel(nameOfProfile(profile), u"%@"_ns, nullptr, nullptr, nullptr, text);
}

}  // namespace pelvor
