// SPDX-License-Identifier: Apache-2.0
// WRDocumentWindow: a window with the pages of a document.
#pragma once

#include <functional>
#include <memory>

#include "Interface/NSResponder.h"
#include "Writer/Windows/WRNoticeBar.h"

namespace pelvor {

class NSDictionary;
class NSNotification;
class NSScrollView;
class NSTextField;
class NSTextStorage;
class NSUndoManager;
class NSWindow;
class StyleSheet;
class WRDocument;
class WRDocumentFile;
class WRFormatCommands;
class WRLanguageCommands;
class WRLanguageSearch;
class WRPageView;
class WRRuler;
class WRSpelling;
class WRWordCounter;
class WRZoomView;

/// Shows a document in a window and takes the commands that concern the window; it is the window's delegate
/// and follows it in the chain of responders. Main thread.
class WRDocumentWindow : public NSResponder {
    PELVOR_CLASS(WRDocumentWindow, NSResponder);

  public:
    // C++ only
    /// The wishes are options of page setters, for any document. Null if the document cannot be set in pages;
    /// the problem is then a sentence for the user.
    static Retained<WRDocumentWindow> create(WRDocument* document, NSDictionary* wishes, NSString** problem);

    /// Also where the window is minimized.
    void show();
    void showWindow(id) { show(); }
    NSWindow* window() { return _window; }
    WRDocument* document() { return _document; }
    WRPageView* pageView() { return _pageView; }
    WRDocumentFile* file() { return _file; }
    WRFormatCommands* formatCommands() { return _formatCommands; }
    NSDictionary* wishes() { return _wishes; }

    /// Shows a sentence above the pages, in the place of one that is shown.
    void showNotice(NSString* text, std::vector<NoticeChoice> choices);
    void hideNotice();
    WRNoticeBar* notice() { return _notice; }

    // Commands

    void zoomIn(id sender);
    void zoomOut(id sender);
    void showActualSize(id sender);
    void showWholeWidth(id sender);
    /// Shows or hides the rulers of all windows.
    void toggleRuler(id sender);
    void showNextPage(id sender);
    void showPreviousPage(id sender);
    /// The sender is a menu item that represents the profile of a document service: shows what the service
    /// says.
    void askService(id sender);
    /// Asks the operations below.
    bool validateMenuItem(id item);
    bool validateToggleRuler(id item);
    bool validateShowNextPage(id item);
    bool validateShowPreviousPage(id item);

    // Paper and printing

    void runPageLayout(id sender);
    void printDocument(id sender);
    /// Sets the pages anew with these settings, those of PlugInProtocol.h, in the place of the ones that they
    /// had, and makes them the document's own; this can be undone. An empty header or footer takes the one
    /// that there was away. Returns false, and changes nothing, if there is no room for text then.
    bool changeSettings(NSDictionary* settings);
    /// The same with all settings of the pages, and those of the document itself, which may be null.
    bool setPageSettings_ownSettings(NSDictionary* settings, NSDictionary* ownSettings);
    /// A document without a title of its own has its name in headers: the name may be another now.
    void showTitle();

    /// The page in the middle of what is seen, from 0 on.
    NSUInteger currentPage();
    /// Whether the edit that is told of is one by which nobody has changed the document.
    bool isFindingLanguages();
    /// Observes the text storage.
    void textDidChange(NSNotification* notification);
    /// Each edit is allowed.
    bool textView_shouldChangeTextInRange_replacementString(id view, NSRange range, NSString* replacement);
    /// Asked when text is copied.
    bool pageViewHasFormats(id pageView);
    /// Text with formats was pasted or dropped.
    void pageViewDidReceiveFormats(id pageView);
    void textViewDidChangeSelection(NSNotification* notification);
    bool textView_doCommandBySelector(id view, SEL selector);
    /// What is done to the text is undone by a manager of its own.
    NSUndoManager* undoManagerForTextView(id textView);
    bool windowShouldClose(id sender);
    void noticeDidResize(NSNotification* notification);
    void defaultsDidChange(NSNotification* notification);
    void windowWillClose(NSNotification* notification);
    void placeDidChange(NSNotification* notification);

  protected:
    WRDocumentWindow() = default;
    ~WRDocumentWindow();

  private:
    void makeWindow();
    void showRuler(bool shows);
    void placeWindow();
    void showStatus();
    void stopWork();
    void placeBars();
    void removeBar(NSView* bar);
    void showPage(NSUInteger page);
    void setZoom(double zoom);
    void keepCaretInSight(const std::function<void()>& change);
    NSDictionary* withTitle(NSDictionary* settings, NSDictionary* ownSettings);

    Retained<WRDocument> _document;
    Retained<NSDictionary> _wishes;
    Retained<WRDocumentFile> _file;
    Retained<WRNoticeBar> _notice;
    Retained<NSUndoManager> _undoManager;
    Retained<NSWindow> _window;
    Retained<NSScrollView> _scrollView;
    Retained<WRZoomView> _zoomView;
    Retained<WRPageView> _pageView;
    Retained<WRFormatCommands> _formatCommands;
    std::shared_ptr<const StyleSheet> _sheet;
    Retained<WRRuler> _ruler;  // null while it is hidden
    Retained<NSTextField> _status;
    Retained<WRLanguageSearch> _languageSearch;
    Retained<WRLanguageCommands> _languageCommands;
    Retained<WRSpelling> _spelling;
    Retained<WRWordCounter> _wordCounter;
};

}  // namespace pelvor
