// SPDX-License-Identifier: Apache-2.0
// A document set in pages.
#pragma once

#include "Writer/PlugIns/Pages/Pagination.h"

namespace pelvor {

class NSAttributedString;
class NSDictionary;
class NSMutableArray;

/// Where things stand on a page, in points.
struct PageFrame {
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
class PageDocument {
  public:
    /// The settings are those of PlugInProtocol.h. Headers and footers that are higher than their margins
    /// take from the room of the text.
    PageDocument(NSAttributedString* text, NSDictionary* settings);

    /// Whether the margins leave room for text. Without it there are no pages.
    bool hasRoom() const;
    NSUInteger pageCount() const { return static_cast<NSUInteger>(_pages.size()); }
    const std::vector<PageText>& pages() const { return _pages; }
    const PageFrame& frame() const { return _frame; }

    /// Draws the page with the index into the current graphics context.
    void drawPage(NSUInteger index);
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
    std::vector<PageText> _pages;
};

}  // namespace pelvor
