// SPDX-License-Identifier: Apache-2.0
// WRPageView: shows a document as pages, one below the other.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "Interface/NSTextView.h"
#include "Writer/Pages/PageDocument.h"

namespace pelvor {

class WRSpellingMarks;

/// Posted by a page view when it has found more pages, or knows that there are no more.
inline constexpr NSString* WRPageViewDidFindPagesNotification = u"WRPageViewDidFindPagesNotification"_ns;

/// Shows and edits a text in pages with their headers and footers, one below the other, in points as on
/// paper. Pages are found when the main loop is idle; the view grows as they are. After an edit the page on
/// which it begins and what is seen are right at once, later pages when the main loop is idle. Main thread.
class WRPageView : public NSTextView, NSTextView::HiddenCreators {
    PELVOR_CLASS(WRPageView, NSTextView);

  public:
    // C++ only
    /// Null if the margins leave no room for text. The settings are those of PlugInProtocol.h.
    static Retained<WRPageView> create(Retained<NSTextStorage> text, NSDictionary* settings);

    /// The colour behind the pages. Borrowed.
    static NSColor* deskColor();

    /// How many pages have been found, and whether these are all.
    NSUInteger pageCount();
    bool isComplete();
    /// The page whose paper is nearest to the height.
    NSUInteger pageAtHeight(float y);
    NSRect frameOfPage(NSUInteger index);
    /// Finds pages until so many are right, or all.
    void findPages(NSUInteger count);
    /// Finds pages as far as to the one with the unit, and returns its index.
    NSUInteger pageWithUnit(NSUInteger unit);
    /// The idle message: finds some more pages.
    void findMorePages();
    PageDocument* pages() { return _document.get(); }
    /// Sets the pages anew, with the same text at the upper edge of what is seen. Returns false, and changes
    /// nothing, if the settings leave no room for text.
    bool setSettings(NSDictionary* settings);

    /// A place in the text, and how far its upper edge is below that of what is seen.
    struct SeenPlace {
        NSUInteger unit;
        float height;
    };
    /// The place at the upper edge of what is seen.
    SeenPlace upperPlace();
    /// Finds the pages around the place and scrolls to where the place is seen so.
    void showPlace(SeenPlace place);

    /// The text of the pages that the user sees a part of.
    NSRange visibleTextRange();
    /// Text in the range looks different, although nothing has been edited.
    void redrawRange(NSRange range);
    /// The places, in order, that have a background of their own because they were looked for. An edit takes
    /// it away.
    void setFoundPlaces(std::vector<NSRange> places);
    /// Sets what tells which words are underlined as misspelled; null takes the marks away.
    void setSpellingMarks(WRSpellingMarks* marks);

    /// Words of another language can be divided from now on.
    void hyphenationDidLoad(id notification);

    NSPoint originOfTextContainer(NSTextContainer* container) override;
    NSRange indexesOfTextContainersNearRect(NSRect rect) override;
    void viewDidMoveToWindow() override;
    /// Text goes to other programs and comes from them with its formats, if a plug-in knows how. The delegate
    /// may have two messages with this view: `pageViewHasFormats:` says whether there are formats, or the
    /// text goes without them; `pageViewDidReceiveFormats:` tells that some have come.
    NSArray* writablePasteboardTypes() override;
    NSArray* readablePasteboardTypes() override;
    bool readSelectionFromPasteboard_type(NSPasteboard* pasteboard, NSString* type) override;
    /// Files are opened; whole words that are dragged keep one blank between them and others.
    NSUInteger draggingMoved(NSDraggingInfo* info) override;
    bool performDragOperation(NSDraggingInfo* info) override;
    void viewWillDraw() override;
    void scrollRangeToVisible(NSRange range) override;
    /// Pages and the desk around them.
    bool isOpaque() override { return true; }
    void drawRect(NSRect dirty) override;
    /// A text that cannot be edited has no caret to move: its keys scroll. The beginning of a text is shown
    /// with the margin above it.
    void doCommandBySelector(SEL selector) override;
    void insertText(id text) override;
    /// The caret goes to the place of a click, unless something is selected there.
    NSMenu* menuForEvent(NSEvent* event) override;

  protected:
    WRPageView() = default;
    ~WRPageView();

  private:
    void drawPaper(NSUInteger index, NSRect dirty);
    void drawFoundPlaces(NSUInteger index, NSRect dirty);
    void drawSpellingMarks(NSUInteger index, NSRect dirty);
    NSRange rangeInRect(NSUInteger index, NSRect dirty);
    void underline(NSRange word, NSTextContainer* container, NSRect dirty);
    void fitFrame();
    void pagesDidChange();

    std::unique_ptr<PageDocument> _document;
    std::unordered_map<NSTextContainer*, NSUInteger> _pageOf;
    Retained<WRSpellingMarks> _spellingMarks;
    std::vector<NSRange> _foundPlaces;
    NSUInteger _shownCount = 0;  // what headers and footers show once all pages are found
    NSUInteger _toldPages = 0;   // how many pages others know of, and whether these are all
    bool _isToldComplete = false;
};

}  // namespace pelvor
