// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/Pagination.h"

#include <algorithm>

#include "Foundation/NSString.h"
#include "NSTextStorage-PelvorAdditions.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/TextAttributes.h"
#include "Writer/Pages/WRSheetParagraphStyle.h"

namespace pelvor {
namespace {

constexpr unsigned kLinesTogether = 2;  // of a paragraph, at the end and at the start of a page

bool isParagraphEnd(unichar unit) { return unit == u'\n' || unit == u'\r' || unit == 0x85 || unit == 0x2029; }

}  // namespace

NSTextContainer* Pagination::addContainer() {
    auto container = NSTextContainer::initWithContainerSize(_room);
    container->setLineFragmentPadding(0);
    _layoutManager->addTextContainer(container);
    return container;
}

NSRange Pagination::lineAt(NSUInteger index) {
    NSRange line{index, 0};
    _layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(index, &line);
    return line;
}

// Kept, for a paragraph of many pages would be walked through for each of them.
NSRange Pagination::paragraphAt(NSUInteger index) {
    if (!NSLocationInRange(index, _paragraph)) _paragraph = paragraphRangeForRange(_storage, {index, 0});
    return _paragraph;
}

PageRules Pagination::rulesAt(NSUInteger index) {
    return pageRulesOf(
        _storage->attribute_atIndex_effectiveRange(NSParagraphStyleAttributeName, index, nullptr));
}

// MARK: Finding pages

std::size_t Pagination::rightPages() const {
    while (_firstWrong < _pages.size() && _pages[_firstWrong].isRight) ++_firstWrong;
    return _firstWrong;
}

void Pagination::findPages(std::size_t count) {
    while (!isComplete() && rightPages() < count) findNextPage();
}

void Pagination::makePage(std::size_t index) {
    if (index < _pages.size()) return;
    auto container = _next ? std::move(_next) : Retained<NSTextContainer>::retaining(addContainer());
    _pages.push_back({std::move(container), {}, false});
    _hasEnd = false;
}

// So that the lines behind the page are known.
void Pagination::ensureContainerBehind(std::size_t index) {
    if (index + 1 == _pages.size() && !_next) _next.set(addContainer());
}

void Pagination::findNextPage() {
    AutoreleasePool pool;
    const std::size_t index = rightPages();
    makePage(index);
    PageText& page = _pages[index];
    const NSUInteger start = index > 0 ? NSMaxRange(_pages[index - 1].range) : 0;
    const NSUInteger endBefore = NSMaxRange(page.range);
    page.container->setContainerSize(_room);
    NSRange range = _layoutManager->glyphRangeForTextContainer(page.container);
    if (range.length > 0 && NSMaxRange(range) < _storage->length()) ensureContainerBehind(index);
    if (const NSUInteger end = range.length > 0 ? endOf(range) : NSMaxRange(range); end < NSMaxRange(range)) {
        ensureContainerBehind(index);
        const NSRect line = _layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(end, nullptr);
        page.container->setContainerSize({_room.width, line.origin.y});
        range = _layoutManager->glyphRangeForTextContainer(page.container);
    }
    page.range = {start, NSMaxRange(range) - start};
    page.isRight = true;
    if (isEnd(page))
        dropBehind(index);
    else if (index + 1 < _pages.size() && NSMaxRange(range) != endBefore)
        _pages[index + 1].isRight = false;
    else if (index + 1 == _pages.size())
        _hasEnd = false;
}

bool Pagination::isEnd(const PageText& page) {
    const NSUInteger length = _storage->length();
    if (page.range.length == 0) return true;
    if (NSMaxRange(page.range) < length) return false;
    const unichar last = _storage->string()->characterAtIndex(length - 1);
    if (last == u'\f') return false;
    if (_purpose == Purpose::reading || !isParagraphEnd(last)) return true;
    // Below a line end there is one more line, for which there may be no room.
    return _layoutManager->extraLineFragmentTextContainer() == page.container;
}

void Pagination::dropBehind(std::size_t index) {
    _hasEnd = true;
    while (_layoutManager->textContainerCount() > index + 1)
        _layoutManager->removeTextContainerAtIndex(_layoutManager->textContainerCount() - 1);
    _next = nullptr;
    _pages.resize(index + 1);
}

// MARK: Edits

std::size_t Pagination::pageOf(NSUInteger unit) const {
    const auto found = std::find_if(_pages.begin(), _pages.end(),
                                    [unit](const PageText& page) { return unit < NSMaxRange(page.range); });
    return std::min<std::size_t>(static_cast<std::size_t>(found - _pages.begin()), _pages.size() - 1);
}

void Pagination::noteWrong(std::size_t first, std::size_t last) {
    for (std::size_t i = first; i <= last; ++i) _pages[i].isRight = false;
    _firstWrong = std::min(_firstWrong, first);
}

void Pagination::textDidChange(NSRange range, NSInteger delta) {
    _paragraph = {0, 0};
    if (_pages.empty()) return;
    const NSUInteger oldEnd = NSMaxRange(range) - static_cast<NSUInteger>(delta);
    const auto moved = [&](NSUInteger place) {
        if (place >= oldEnd) return place + static_cast<NSUInteger>(delta);
        return std::min(place, NSMaxRange(range));
    };
    for (PageText& page : _pages) {
        const NSUInteger start = moved(page.range.location);
        page.range = {start, moved(NSMaxRange(page.range)) - start};
    }
    // What stands together with the text that was edited may have to go to another page with it.
    NSUInteger start = std::min(range.location, _storage->length());
    start = paragraphRangeForRange(_storage, {start, 0}).location;
    start = longestIsKeepWithNextParagraphRangeBeforeIndex(_storage, start).location;
    const auto first = std::find_if(_pages.begin(), _pages.end() - 1, [start](const PageText& page) {
        return start <= NSMaxRange(page.range);
    });
    const auto last = std::find_if(_pages.rbegin(), _pages.rend(), [range](const PageText& page) {
        return page.range.location <= NSMaxRange(range);
    });
    noteWrong(static_cast<std::size_t>(first - _pages.begin()),
              static_cast<std::size_t>(_pages.rend() - last) - 1);
}

void Pagination::forgetPages() {
    _paragraph = {0, 0};
    if (!_pages.empty()) noteWrong(0, _pages.size() - 1);
}

void Pagination::setRoom(NSSize room) {
    _room = room;
    if (_pages.empty()) return;
    dropBehind(0);
    _pages[0].container->setContainerSize(room);
    _hasEnd = false;
    forgetPages();
}

// MARK: Where a page ends

NSUInteger Pagination::endOf(NSRange page) {
    const NSUInteger end = NSMaxRange(page);
    if (const NSUInteger forced = forcedEnd(page); forced < end) return forced;
    if (end >= _storage->length() || _storage->string()->characterAtIndex(end - 1) == u'\f') return end;
    if (rulesAt(end).isPageBreakBefore && paragraphAt(end).location == end) return end;
    return keepingWithNext(keepingParagraph(end, page), page);
}

// The start of the first paragraph, behind the first line of the page, that is to begin a page.
NSUInteger Pagination::forcedEnd(NSRange page) {
    const NSUInteger end = NSMaxRange(page);
    for (NSUInteger place = page.location; place < end;) {
        NSRange run;
        id style = _storage->attribute_atIndex_longestEffectiveRange_inRange(NSParagraphStyleAttributeName,
                                                                             place, &run, page);
        if (pageRulesOf(style).isPageBreakBefore) {
            if (place > page.location) return place;
            if (const NSUInteger next = NSMaxRange(paragraphAt(place)); next < NSMaxRange(run)) return next;
        }
        place = NSMaxRange(run);
    }
    return end;
}

// How many lines stand from the index on to the end; no more than enough are counted.
unsigned Pagination::linesBehind(NSUInteger index, NSUInteger end, unsigned enough) {
    unsigned count = 0;
    while (index < end && count < enough) {
        const NSRange line = lineAt(index);
        if (line.length == 0) return enough;  // too far away to be laid out
        index = NSMaxRange(line);
        ++count;
    }
    return count;
}

// Where to end the page instead, so that the paragraph there is divided as it may be.
NSUInteger Pagination::keepingParagraph(NSUInteger end, NSRange page) {
    const NSRange paragraph = paragraphAt(end);
    if (paragraph.location == end) return end;
    const bool canMove = paragraph.location > page.location;
    if (canMove && rulesAt(end).isKeepTogether) return paragraph.location;
    const NSUInteger start = std::max(paragraph.location, page.location);
    NSUInteger place = end;
    for (unsigned behind = linesBehind(end, NSMaxRange(paragraph), kLinesTogether);
         behind < kLinesTogether && place > start; ++behind)
        place = lineAt(place - 1).location;
    if (canMove && linesBehind(start, place, kLinesTogether) < kLinesTogether) return paragraph.location;
    return place > page.location ? place : end;
}

NSUInteger Pagination::keepingWithNext(NSUInteger end, NSRange page) {
    if (paragraphAt(end).location != end) return end;
    const NSRange kept = longestIsKeepWithNextParagraphRangeBeforeIndex(_storage, end);
    return kept.location > page.location ? kept.location : end;
}

}  // namespace pelvor
