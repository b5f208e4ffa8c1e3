// SPDX-License-Identifier: Apache-2.0
// A document set in pages.
#pragma once

#include <functional>
#include <optional>

#include "Writer/Pages/Pagination.h"

namespace pelvor {

class NSAttributedString;
class NSDictionary;
class NSMutableArray;
class NSString;
class WRPageLayoutManager;

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
///
/// The text may be edited at any time: pages that look different are then found again when they are asked
/// for.
class PELVOR_EXPORT PageDocument {
  public:
    /// Sets a copy of the text. The settings are those of PlugInProtocol.h. Headers and footers that are
    /// higher than their margins take from the room of the text.
    PageDocument(NSAttributedString* text, NSDictionary* settings);
    /// Sets the text itself, whose pictures get cells that draw them, for somebody who writes.
    PageDocument(Retained<NSTextStorage> text, NSDictionary* settings)
        : PageDocument(std::move(text), settings, Pagination::Purpose::writing) {}
    ~PageDocument();
    PageDocument(const PageDocument&) = delete;

    /// Sets the text anew with other settings. Returns false, and leaves all as it is, if they leave no room
    /// for text.
    bool setSettings(NSDictionary* settings);

    /// Whether the margins leave room for text. Without it there are no pages.
    bool hasRoom() const;
    /// All pages; finds those that were not found yet.
    NSUInteger pageCount();
    /// The pages that were found so far, and whether these are all.
    const std::vector<PageText>& pages() const PELVOR_LIFETIMEBOUND;
    bool isComplete() const { return !_pagination || _pagination->isComplete(); }
    /// Finds pages until so many are found and right, or all.
    void findPages(NSUInteger count);
    /// How many pages, from the front on, are found and right.
    NSUInteger rightPages() const;
    /// Finds pages as far as to the one with the unit, and returns its index.
    NSUInteger pageWithUnit(NSUInteger unit);
    const PageFrame& frame() const { return _frame; }
    NSDictionary* settings() const { return _settings; }
    /// Called after each edit, when the page on which the edit begins is right again.
    void setEditFunction(std::function<void()> function) { _didEdit = std::move(function); }

    /// All pages are found anew when they are asked for: for when layout gives other lines than before.
    void forgetPages();
    /// Draws a page that was found into the current graphics context. Where a header or footer has the number
    /// of pages, it is that of the pages found so far.
    void drawPage(NSUInteger index);
    void drawHeaderAndFooter(NSUInteger index);
    NSTextStorage* textStorage() { return _storage; }
    NSLayoutManager* layoutManager();
    /// Why pictures could not be drawn so far, each reason once, borrowed.
    NSArray* problems();

  private:
    PageDocument(Retained<NSTextStorage> text, NSDictionary* settings, Pagination::Purpose purpose);
    static Retained<NSTextStorage> storageOf(NSAttributedString* text);
    static void giveCells(NSTextStorage* storage, NSRange range, NSMutableArray* cells);
    void textDidChange(NSRange range, NSInteger delta);
    void takeSettings(NSDictionary* settings);
    /// Lays out a header or a footer, calls the function with its layout manager, and returns its height.
    template <class Function>
    float setLine(NSAttributedString* line, NSUInteger page, Function function);
    void drawLine(NSAttributedString* line, NSUInteger page, bool isHeader);

    Retained<NSDictionary> _settings;
    PageFrame _frame;
    Retained<NSAttributedString> _header, _footer;
    Retained<Object> _title;
    Retained<NSMutableArray> _cells;         // of all pictures in the text
    Retained<NSMutableArray> _lineProblems;  // of headers and footers
    Retained<NSTextStorage> _storage;
    Retained<WRPageLayoutManager> _layoutManager;
    std::function<void()> _didEdit;
    std::optional<Pagination> _pagination;  // none where there is no room
};

}  // namespace pelvor
