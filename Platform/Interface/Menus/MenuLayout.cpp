// SPDX-License-Identifier: Apache-2.0
#include "Interface/Menus/MenuLayout.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSMutableAttributedString.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/KeyEquivalents.h"
#include "Interface/NSImage.h"
#include "Interface/NSMenu.h"
#include "Text/NSAttributedString-Drawing.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSString-Drawing.h"
#include "Text/TextAttributes.h"

namespace pelvor {
namespace {

constexpr float kSeparatorHeight = 9, kLeastKeyGap = 24, kTextMargin = 2, kLeastWidth = 80;

NSDictionary* plainAttributes(ThemeColor color) {
    return NSDictionary::of({{NSFontAttributeName, NSFont::menuFontOfSize(0)},
                             {NSForegroundColorAttributeName, themeColor(color)}});
}

NSFont* fitted(NSFont* font) {
    NSFont* menuFont = NSFont::menuFontOfSize(0);
    if (!font) return menuFont;
    if (!font->familyName()->isEqualToString(menuFont->familyName())) return font;
    NSFont* found = NSFont::fontWithName_size(font->fontName(), menuFont->pointSize());
    return found ? found : menuFont;
}

Retained<NSAttributedString> inMenuFont(NSAttributedString* text) {
    auto changed = text->mutableCopy();
    for (AttributeRun run : text->runs())
        changed->addAttribute_value_range(
            NSFontAttributeName, fitted(cast<NSFont>(run.attributes->objectForKey(NSFontAttributeName))),
            run.range);
    return changed->copy();
}

NSSize roundedUp(NSSize size) { return {std::ceil(size.width), std::ceil(size.height)}; }

}  // namespace

// MARK: Texts

MenuText::MenuText(NSString* text)
    : _plain(Retained<NSString>::retaining(text)),
      _size(roundedUp(sizeWithAttributes(text, plainAttributes(ThemeColor::text)))) {}

MenuText::MenuText(NSAttributedString* text)
    : _attributed(inMenuFont(text)), _size(roundedUp(pelvor::size(_attributed))) {}

void MenuText::draw(NSPoint point, ThemeColor color, bool overrides) const {
    if (_plain) drawAtPoint_withAttributes(_plain, point, plainAttributes(color));
    if (!_attributed) return;
    auto text = _attributed->mutableCopy();
    for (AttributeRun run : _attributed->runs())
        if (overrides || !run.attributes->objectForKey(NSForegroundColorAttributeName))
            text->addAttribute_value_range(NSForegroundColorAttributeName, themeColor(color), run.range);
    drawAtPoint(text, point);
}

// MARK: Rows

std::shared_ptr<const MenuLayout> MenuLayout::of(NSMenu* menu, std::size_t firstItem) {
    if (const auto& kept = menu->layout(); kept && firstItem == 0) return kept;
    auto layout = std::make_shared<MenuLayout>();
    float titleWidth = 0, keysWidth = 0, imageWidth = 0;
    bool hasSubmenus = false;
    const auto& items = menu->items();
    layout->_rows.reserve(items.size());
    for (std::size_t i = firstItem; i < items.size(); ++i) {
        NSMenuItem* item = items[i];
        if (item->isHidden()) continue;
        layout->add(item);
        const Row& row = layout->_rows.back();
        const float indent = static_cast<float>(item->indentationLevel()) * kIndentation;
        titleWidth = std::max(titleWidth, row.title.size().width + indent);
        keysWidth = std::max(keysWidth, row.keys.size().width);
        if (item->image())
            imageWidth = std::max(imageWidth, item->image()->size().width + metrics::kImageGap);
        hasSubmenus |= item->hasSubmenu();
    }
    layout->_titleX = kMarkX + kMarkWidth + metrics::kImageGap + imageWidth;
    const float behind = std::max(keysWidth > 0 ? keysWidth + kLeastKeyGap : 0,
                                  hasSubmenus ? kArrowWidth + metrics::kImageGap : 0);
    layout->_size.width = std::max(kLeastWidth, layout->_titleX + titleWidth + behind + kEndInset);
    if (firstItem == 0) menu->setLayout(layout);
    return layout;
}

void MenuLayout::add(NSMenuItem* item) {
    Row row;
    row.item.set(item);
    row.y = _size.height;
    row.height = item->isSeparatorItem() ? kSeparatorHeight : metrics::kMenuItemHeight;
    if (!item->isSeparatorItem()) {
        NSAttributedString* title = item->attributedTitle();
        NSString* keys = keyEquivalentText(item->keyEquivalent(), item->keyEquivalentModifierMask());
        if (title && title->length() > 0) {
            const NSUInteger length = title->length(),
                             tab = std::min(title->string()->rangeOfString(u"\t"_ns).location, length);
            row.title = MenuText(title->attributedSubstringFromRange({0, tab}));
            if (tab < length)
                row.keys = MenuText(title->attributedSubstringFromRange({tab + 1, length - tab - 1}));
        } else {
            row.title = MenuText(item->title());
        }
        if (keys->length() > 0 && !item->hasSubmenu()) row.keys = MenuText(keys);
        row.height = std::max(row.height, row.title.size().height + 2 * kTextMargin);
        if (item->image()) row.height = std::max(row.height, item->image()->size().height + 2 * kTextMargin);
    }
    _size.height += row.height;
    _rows.push_back(std::move(row));
}

int MenuLayout::rowAt(float y) const {
    if (y < 0 || y >= _size.height) return kNoRow;
    const auto behind = std::upper_bound(_rows.begin(), _rows.end(), y,
                                         [](float place, const Row& row) { return place < row.y; });
    return static_cast<int>(behind - _rows.begin()) - 1;
}

int MenuLayout::rowOf(NSMenuItem* item) const {
    const auto found =
        std::find_if(_rows.begin(), _rows.end(), [&](const Row& row) { return row.item == item; });
    return found == _rows.end() ? kNoRow : static_cast<int>(found - _rows.begin());
}

}  // namespace pelvor
