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

void Pagination::findPages(std::size_t count) {
    while (!_isComplete && _pages.size() < count) findNextPage();
}

// There is always a container behind the page at work, so that the lines behind the page are known.
void Pagination::findNextPage() {
    AutoreleasePool pool;
    const NSUInteger length = _storage->length();
    const NSUInteger start = _pages.empty() ? 0 : NSMaxRange(_pages.back().range);
    auto container = _next ? std::move(_next) : Retained<NSTextContainer>::retaining(addContainer());
    _next.set(addContainer());
    NSRange range = _layoutManager->glyphRangeForTextContainer(container);
    if (const NSUInteger end = range.length > 0 ? endOf(range) : NSMaxRange(range); end < NSMaxRange(range)) {
        const NSRect line = _layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(end, nullptr);
        container->setContainerSize({_room.width, line.origin.y});
        range = _layoutManager->glyphRangeForTextContainer(container);
    }
    _pages.push_back({std::move(container), {start, NSMaxRange(range) - start}});
    const bool isAtEnd = NSMaxRange(range) >= length || range.length == 0;
    _isComplete = isAtEnd && (length == 0 || range.length == 0 ||
                              _storage->string()->characterAtIndex(length - 1) != u'\f');
    if (!_isComplete) return;
    _layoutManager->removeTextContainerAtIndex(_layoutManager->textContainers()->count() - 1);
    _next = nullptr;
}

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
