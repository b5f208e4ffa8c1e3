// SPDX-License-Identifier: Apache-2.0
#include "Interface/Menus/MenuListView.h"

#include <algorithm>

#include "Interface/Drawing/Direction.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/Menus/MenuTracker.h"
#include "Interface/NSImage.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(MenuListView, interfaceLibrary) {}

Retained<MenuListView> MenuListView::forMenu(NSMenu* menu, std::size_t firstItem, Class* cls) {
    auto view = cast<MenuListView>(NSView::initWithFrame(NSZeroRect, cls));
    view->_menu.set(menu);
    view->_firstItem = firstItem;
    view->_isMirrored = interfaceRunsFromRightToLeft();
    menu->addObserver(view.get());
    view->refresh();
    return view;
}

MenuListView::~MenuListView() {
    if (_menu) _menu->removeObserver(this);
}

void MenuListView::menuDidChange(NSMenu*) {
    if (!_menu->layout() && !std::exchange(_isStale, true)) MenuTracker::wake();
    setNeedsDisplay(true);
}

void MenuListView::refresh() {
    _isStale = false;
    _layout = MenuLayout::of(_menu, _firstItem);
    scrollBy(0);
    setNeedsDisplay(true);
}

// MARK: Places

NSSize MenuListView::wantedSize() {
    return {_layout->size().width, _layout->size().height + 2 * metrics::kMenuInset};
}

// A window is as high as whole pixels are, so that a part of a point may be missing.
float MenuListView::lengthBeyond() {
    const float beyond = wantedSize().height - NSHeight(bounds());
    return beyond < 1 ? 0 : beyond;
}

NSRect MenuListView::linesRect() {
    NSRect rect = bounds();
    rect.origin.y += upperArrow();
    rect.size.height -= upperArrow() + lowerArrow();
    return rect;
}

NSRect MenuListView::rectOfRow(int row) {
    const auto& place = _layout->rows()[static_cast<std::size_t>(row)];
    return {{0, metrics::kMenuInset + place.y - _offset}, {NSWidth(bounds()), place.height}};
}

int MenuListView::rowAt(NSPoint point) {
    if (!NSPointInRect(point, linesRect())) return MenuLayout::kNoRow;
    return _layout->rowAt(point.y + _offset - metrics::kMenuInset);
}

void MenuListView::redrawRow(int row) {
    if (row >= 0 && static_cast<std::size_t>(row) < _layout->rows().size())
        setNeedsDisplayInRect(rectOfRow(row));
}

int MenuListView::arrowAt(NSPoint point) {
    if (!NSPointInRect(point, bounds())) return 0;
    if (point.y < upperArrow()) return -1;
    return point.y >= NSHeight(bounds()) - lowerArrow() ? 1 : 0;
}

bool MenuListView::scrollBy(float distance) {
    const float offset = std::clamp(_offset + distance, 0.0F, lengthBeyond());
    if (offset == _offset) return false;
    _offset = offset;
    setNeedsDisplay(true);
    return true;
}

void MenuListView::scrollRowToVisible(int row) {
    const NSRect rect = rectOfRow(row);
    if (lengthBeyond() == 0) return;
    const float above = kArrowHeight - NSMinY(rect),
                below = NSMaxY(rect) - (NSHeight(bounds()) - kArrowHeight);
    if (above > 0)
        scrollBy(-above);
    else if (below > 0)
        scrollBy(below);
}

// MARK: Drawing

NSRect MenuListView::mirrored(NSRect rect) {
    if (_isMirrored) rect.origin.x = NSWidth(bounds()) - NSMaxX(rect);
    return rect;
}

void MenuListView::drawRect(NSRect dirty) {
    auto* context = NSGraphicsContext::currentContext();
    if (!_layout || !context) return;
    const NSRect all = bounds(), lines = linesRect();
    fillRect(all, ThemeColor::content);
    context->saveGraphicsState();
    context->clipToRect(lines);
    const auto& rows = _layout->rows();
    const int highlighted = _layout->rowOf(_menu->highlightedItem());
    const float top = std::max(NSMinY(dirty), NSMinY(lines)) + _offset - metrics::kMenuInset;
    for (auto row = static_cast<std::size_t>(std::max(0, _layout->rowAt(std::max(top, 0.0F))));
         row < rows.size(); ++row) {
        const NSRect rect = rectOfRow(static_cast<int>(row));
        if (NSMinY(rect) >= NSMaxY(dirty) || NSMinY(rect) >= NSMaxY(lines)) break;
        drawRow(rows[row], rect, static_cast<int>(row) == highlighted);
    }
    context->restoreGraphicsState();
    const float width = NSWidth(all), end = NSHeight(all) - kArrowHeight;
    if (upperArrow() > 0)
        drawChevron({{0, 0}, {width, kArrowHeight}}, Pointing::up, ThemeColor::secondaryText);
    if (lowerArrow() > 0)
        drawChevron({{0, end}, {width, kArrowHeight}}, Pointing::down, ThemeColor::secondaryText);
    strokeRect(all, metrics::kLine, ThemeColor::border);
}

void MenuListView::drawRow(const MenuLayout::Row& row, NSRect rect, bool isHighlighted) {
    NSMenuItem* item = row.item;
    if (item->isSeparatorItem()) {
        fillRect(NSInsetRect({{0, NSMinY(rect) + 4}, {NSWidth(rect), metrics::kLine}}, 8, 0),
                 ThemeColor::grid);
        return;
    }
    isHighlighted &= item->isEnabled();
    if (isHighlighted) fillRounded(NSInsetRect(rect, 4, 0), metrics::kCornerRadius, ThemeColor::selection);
    const auto color = isHighlighted       ? ThemeColor::textOnAccent
                       : item->isEnabled() ? ThemeColor::text
                                           : ThemeColor::disabledText;
    const bool overrides = isHighlighted || !item->isEnabled();
    auto drawText = [&](const MenuText& text, float x, ThemeColor itsColor) {
        const NSSize size = text.size();
        const float y = NSMinY(rect) + (NSHeight(rect) - size.height) / 2;
        text.draw(mirrored({{x, y}, size}).origin, itsColor, overrides);
    };
    const float indent = static_cast<float>(item->indentationLevel()) * MenuLayout::kIndentation;
    drawText(row.title, _layout->titleX() + indent, color);
    drawText(row.keys, NSWidth(rect) - MenuLayout::kEndInset - row.keys.size().width,
             overrides ? color : ThemeColor::secondaryText);
    drawMarks(item, rect, color);
}

void MenuListView::drawMarks(NSMenuItem* item, NSRect rect, ThemeColor color) {
    const float width = NSWidth(rect);
    auto column = [&](float x, float itsWidth) {
        return mirrored({{x, NSMinY(rect)}, {itsWidth, NSHeight(rect)}});
    };
    const NSRect mark = column(MenuLayout::kMarkX, MenuLayout::kMarkWidth);
    if (item->state() > 0) drawCheckMark(mark, color);
    if (item->state() < 0) drawDash(mark, color);
    if (NSImage* image = item->image()) {
        const float x = MenuLayout::kMarkX + MenuLayout::kMarkWidth + metrics::kImageGap;
        const NSSize size = image->size();
        image->drawInRect_fromRect_operation_fraction(mirrored({{x, NSMidY(rect) - size.height / 2}, size}),
                                                      NSZeroRect, NSCompositeSourceOver,
                                                      item->isEnabled() ? 1.0F : 0.4F);
    }
    if (item->hasSubmenu())
        drawChevron(
            column(width - MenuLayout::kEndInset - MenuLayout::kArrowWidth / 2, MenuLayout::kArrowWidth),
            _isMirrored ? Pointing::left : Pointing::right, color);
}

}  // namespace pelvor
