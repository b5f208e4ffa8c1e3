// SPDX-License-Identifier: Apache-2.0
// WRPageView: shows a document as pages, one below the other.
#pragma once

#include <memory>
#include <unordered_map>

#include "Interface/NSTextView.h"
#include "Writer/Pages/PageDocument.h"

namespace pelvor {

/// Posted by a page view when it has found more pages, or knows that there are no more.
inline constexpr NSString* WRPageViewDidFindPagesNotification = u"WRPageViewDidFindPagesNotification"_ns;

/// Shows a text in pages with their headers and footers, one below the other, in points as on paper. Pages
/// are found when the main loop is idle; the view grows as they are. Main thread.
class WRPageView : public NSTextView, NSTextView::HiddenCreators {
    PELVOR_CLASS(WRPageView, NSTextView);

  public:
    // C++ only
    /// Null if the margins leave no room for text.
    static Retained<WRPageView> create(NSAttributedString* text, NSDictionary* settings);

    /// The colour behind the pages. Borrowed.
    static NSColor* deskColor();

    /// How many pages have been found, and whether these are all.
    NSUInteger pageCount();
    bool isComplete();
    /// The page whose paper is nearest to the height.
    NSUInteger pageAtHeight(float y);
    NSRect frameOfPage(NSUInteger index);
    /// Finds pages until there are so many or all.
    void findPages(NSUInteger count);
    /// The idle message: finds one more page.
    void findNextPage();

    /// Words of another language can be divided from now on.
    void hyphenationDidLoad(id notification);

    NSPoint originOfTextContainer(NSTextContainer* container) override;
    void viewDidMoveToWindow() override;
    void drawRect(NSRect dirty) override;
    /// A text that cannot be edited has no caret to move: its keys scroll.
    void doCommandBySelector(SEL selector) override;
    void insertText(id text) override;

  protected:
    WRPageView() = default;
    ~WRPageView();

  private:
    void drawPaper(NSUInteger index);
    void fitFrame();
    void tellOfPages(NSUInteger firstNew);

    std::unique_ptr<PageDocument> _document;
    std::unordered_map<NSTextContainer*, NSUInteger> _pageOf;
};

}  // namespace pelvor
