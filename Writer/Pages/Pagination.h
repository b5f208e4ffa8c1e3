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
    bool isRight = true;  ///< false after an edit: the range is what it was, moved by the edit
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
/// A text that is empty, or ends with a form feed, has an empty page at its end. So has one that ends with a
/// line end below which there is no room for a line, if somebody is to write there.
///
/// Pages are found from the front on when somebody wants them, so that the first page does not wait for the
/// last. After an edit the pages that it touches are to be found again, and from there on as many as end at
/// another place than before:
///
///     storage->replaceCharactersInRange_withString({100, 0}, u"word "_ns);  // the layout manager hears of
///     it pagination.textDidChange({100, 5}, 5); pagination.findPages(3);  // what the user sees while
///     (!pagination.isComplete()) pagination.findNextPage();  // when nothing else is to be done
class PELVOR_EXPORT Pagination {
  public:
    enum class Purpose { reading, writing };
    /// The storage has the layout manager, which has no containers yet. `room` is that of each page. Both
    /// outlive this object.
    Pagination(NSTextStorage* storage, NSLayoutManager* layoutManager, NSSize room,
               Purpose purpose = Purpose::reading)
        : _storage(storage), _layoutManager(layoutManager), _room(room), _purpose(purpose) {}

    /// The pages found so far, also those that are to be found again.
    const std::vector<PageText>& pages() const PELVOR_LIFETIMEBOUND { return _pages; }
    /// How many of them, from the front on, are right.
    std::size_t rightPages() const;
    /// Whether all pages are found and right.
    bool isComplete() const { return _hasEnd && rightPages() == _pages.size(); }
    /// Finds pages until so many are right, or all.
    void findPages(std::size_t count);
    void findAllPages() { findPages(static_cast<std::size_t>(-1)); }
    /// Finds the first page that is not right. Not to be called when all are.
    void findNextPage();
    /// The page that holds the unit, as far as pages are known: the last one for units behind it.
    std::size_t pageOf(NSUInteger unit) const;

    /// The layout manager has been told of an edit: the units of the range replace as many less `delta`, or
    /// their attributes have changed. Lays out nothing.
    void textDidChange(NSRange range, NSInteger delta);
    /// All pages are to be found again: for when layout gives other lines than before.
    void forgetPages();
    /// Gives all pages another room; they are to be found again.
    void setRoom(NSSize room);

  private:
    NSTextContainer* addContainer();
    void makePage(std::size_t index);
    void ensureContainerBehind(std::size_t index);
    bool isEnd(const PageText& page);
    void dropBehind(std::size_t index);
    void noteWrong(std::size_t first, std::size_t last);
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
    Purpose _purpose;
    std::vector<PageText> _pages;
    mutable std::size_t _firstWrong = 0;  // none before it is wrong
    Retained<NSTextContainer> _next;      // the last container of the layout manager, behind the pages
    bool _hasEnd = false;                 // the last page ends the text, or did before an edit
    NSRange _paragraph{0, 0};             // the last one that was asked for
};

}  // namespace pelvor
