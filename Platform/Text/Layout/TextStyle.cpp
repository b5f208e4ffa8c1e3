// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/TextStyle.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "Text/Fonts/Shaping.h"
#include "Text/NSLayoutManager.h"

namespace pelvor {
namespace {

// Superscripts and subscripts are this much smaller than their font says, and each level moves them by a
// share of the font's size.
constexpr float kScriptSize = 0.65F;
constexpr double kSuperscriptShift = 0.35, kSubscriptShift = 0.16;

std::shared_ptr<const TextStyle> readStyle(NSDictionary* attributes, NSLayoutManager* layoutManager) {
    auto style = std::make_shared<TextStyle>();
    style->attributes.set(attributes);
    const auto value = [&](NSString* key) { return attributes ? attributes->objectForKey(key) : nullptr; };
    const auto number = [&](NSString* key, double absent) {
        auto found = cast<NSNumber>(value(key));
        return found ? found->doubleValue() : absent;
    };
    auto font = cast<NSFont>(value(NSFontAttributeName));
    style->font.set(font ? font : NSFont::userFontOfSize(12));
    auto paragraph = cast<NSParagraphStyle>(value(NSParagraphStyleAttributeName));
    style->paragraph.set(paragraph ? paragraph : NSParagraphStyle::defaultParagraphStyle());
    style->attachment.set(cast<NSTextAttachment>(value(NSAttachmentAttributeName)));
    style->kern = extentOf(number(NSKernAttributeName, 0));
    style->ligatures = static_cast<int>(number(NSLigatureAttributeName, 1));
    style->expansion = std::exp(std::clamp(number(NSExpansionAttributeName, 0), -3.0, 3.0));
    const double level = number(NSSuperscriptAttributeName, 0);
    const double size = static_cast<double>(style->font->pointSize());
    style->shift = extentOf(number(NSBaselineOffsetAttributeName, 0) +
                            level * size * (level < 0 ? kSubscriptShift : kSuperscriptShift));
    if (level != 0)
        style->font.set(NSFont::fontWithVariant_size(style->font->sharedVariant(),
                                                     style->font->pointSize() * kScriptSize));
    if (NSString* language = layoutManager->languageForAttributes(attributes))
        style->language = language->toUTF8();
    style->eastAsian = eastAsianLanguage(style->language);
    return style;
}

}  // namespace

std::shared_ptr<const TextStyle> TextStyles::styleFor(NSDictionary* attributes,
                                                      NSLayoutManager* layoutManager) {
    auto& entry = _styles[(reinterpret_cast<std::uintptr_t>(attributes) >> 4) * 0x9E3779B97F4A7C15U >> 57];
    if (!entry || entry->attributes.get() != attributes) entry = readStyle(attributes, layoutManager);
    return entry;
}

const FontExtents& TextStyles::extentsOf(NSFont* font) {
    if (font == _lastFont) return *_lastExtents;
    auto [place, isNew] = _fonts.try_emplace(Retained<NSFont>::retaining(font));
    if (isNew) {
        FontExtents& extents = place->second;
        extents.ascent = extentOf(static_cast<double>(font->ascender()));
        extents.descent = extentOf(-static_cast<double>(font->descender()));
        extents.leading = extentOf(static_cast<double>(font->leading()));
        ShapingRun hyphen;
        hyphen.text = u"-";
        hyphen.textLength = hyphen.length = 1;
        hyphen.font = font;
        measureAdvances(hyphen, {&extents.hyphen, 1});
    }
    _lastFont = font;
    return *(_lastExtents = &place->second);
}

}  // namespace pelvor
