// SPDX-License-Identifier: Apache-2.0
// A document set in pages.
#pragma once

#include <optional>

#include "Writer/Pages/Pagination.h"

namespace pelvor {

class NSAttributedString;
class NSDictionary;
class NSMutableArray;

/// Where things stand on a page, in points.
struct PELVOR_EXPORT PageFrame {
    NSSize paper;
    float left = 0, right = 0, top = 0, bottom = 0;  // margins
    float headerPlace = 0, footerPlace = 0;          // from the edges of the paper

    /// Those of the settings of PlugInProtocol.h that are numbers; what is missing is 0.
    static PageFrame of(NSDictionary* settings);
    float width() const { return paper.width - left - right; }
    float height() const { return paper.height - top - bottom; }
};

/// Sets a text in pages and draws them.
///
///     PageDocument document(text, settings);
///     if (!document.hasRoom()) return;
///     context->beginPageWithSize(document.frame().paper);
///     document.drawPage(0);
class PELVOR_EXPORT PageDocument {
  public:
    /// The settings are those of PlugInProtocol.h. Headers and footers that are higher than their margins
    /// take from the room of the text.
    PageDocument(NSAttributedString* text, NSDictionary* settings);
    ~PageDocument();
    PageDocument(const PageDocument&) = delete;

    /// Whether the margins leave room for text. Without it there are no pages.
    bool hasRoom() const;
    /// All pages; finds those that were not found yet.
    NSUInteger pageCount();
    /// The pages that were found so far, and whether these are all.
    const std::vector<PageText>& pages() const PELVOR_LIFETIMEBOUND;
    bool isComplete() const { return !_pagination || _pagination->isComplete(); }
    /// Finds pages until there are so many, or all.
    void findPages(NSUInteger count);
    const PageFrame& frame() const { return _frame; }

    /// Forgets all pages, and finds as many again: for when layout gives other lines than before.
    void findPagesAgain();
    /// Draws a page that was found into the current graphics context. Where a header or footer has the number
    /// of pages, it is that of the pages found so far.
    void drawPage(NSUInteger index);
    void drawHeaderAndFooter(NSUInteger index);
    NSTextStorage* textStorage() { return _storage; }
    NSLayoutManager* layoutManager() { return _layoutManager; }
    /// Why pictures could not be drawn so far, each reason once, borrowed.
    NSArray* problems();

  private:
    Retained<NSTextStorage> storageOf(NSAttributedString* text);
    /// Lays out a header or a footer, calls the function with its layout manager, and returns its height.
    template <class Function>
    float setLine(NSAttributedString* line, NSUInteger page, Function function);
    void drawLine(NSAttributedString* line, NSUInteger page, bool isHeader);

    PageFrame _frame;
    Retained<NSAttributedString> _header, _footer;
    Retained<Object> _title;
    Retained<NSMutableArray> _cells;  // of all pictures
    Retained<NSTextStorage> _storage;
    Retained<NSLayoutManager> _layoutManager;
    std::optional<Pagination> _pagination;  // none where there is no room
};

}  // namespace pelvor
