// SPDX-License-Identifier: Apache-2.0
// Divides a text among pages.
#pragma once

#include <vector>

#include "Foundation/NSGeometry.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"
#include "Writer/Pages/WRSheetParagraphStyle.h"

namespace pelvor {

/// The text on a page and the container that it stands in.
struct PageText {
    Retained<NSTextContainer> container;
    NSRange range;
};

/// Gives a layout manager one text container a page. A page ends before the first of these:
///
/// - what has no room on the page, which holds one line at least;
/// - what follows a form feed, and a paragraph that is to begin a page;
/// - the lines that the page gives up so that a paragraph kept together stands on one page, at least two
///   lines of each paragraph stand together at a page's end and at a page's start, and a paragraph kept with
///   the next one stands on one page with the first lines of that. Where a page has nothing else, these rules
///   give way.
///
/// A text that is empty, or ends with a form feed, has an empty page at its end.
///
/// Pages are found from the front on when somebody wants them, so that the first page does not wait for the
/// last.
class PELVOR_EXPORT Pagination {
  public:
    /// The storage has the layout manager, which has no containers yet. `room` is that of each page. Both
    /// outlive this object.
    Pagination(NSTextStorage* storage, NSLayoutManager* layoutManager, NSSize room)
        : _storage(storage), _layoutManager(layoutManager), _room(room) {}

    /// The pages found so far.
    const std::vector<PageText>& pages() const PELVOR_LIFETIMEBOUND { return _pages; }
    /// Whether these are all.
    bool isComplete() const { return _isComplete; }
    /// Finds pages until there are so many, or all.
    void findPages(std::size_t count);
    void findAllPages() { findPages(static_cast<std::size_t>(-1)); }

  private:
    void findNextPage();
    NSTextContainer* addContainer();
    NSUInteger endOf(NSRange page);
    NSUInteger forcedEnd(NSRange page);
    NSUInteger keepingParagraph(NSUInteger end, NSRange page);
    NSUInteger keepingWithNext(NSUInteger end, NSRange page);
    NSRange lineAt(NSUInteger index);
    NSRange paragraphAt(NSUInteger index);
    PageRules rulesAt(NSUInteger index);
    unsigned linesBehind(NSUInteger index, NSUInteger end, unsigned enough);

    NSTextStorage* _storage;
    NSLayoutManager* _layoutManager;
    NSSize _room;
    std::vector<PageText> _pages;
    Retained<NSTextContainer> _next;  // the last container of the layout manager, behind the pages
    bool _isComplete = false;
    NSRange _paragraph{0, 0};  // the last one that was asked for
};

}  // namespace pelvor
