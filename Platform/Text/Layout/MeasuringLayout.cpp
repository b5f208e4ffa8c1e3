// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/MeasuringLayout.h"

#include <algorithm>

#include "Text/Drawing/Canvas.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {

MeasuringLayout::Tools::Tools() {
    container->setLineFragmentPadding(0);
    layoutManager->addTextContainer(container);
    storage->addLayoutManager(layoutManager);
}

std::unique_ptr<MeasuringLayout::Tools>& MeasuringLayout::spare() {
    static thread_local std::unique_ptr<Tools> tools;
    return tools;
}

void MeasuringLayout::set(NSString* string, NSDictionary* attributes) {
    if (!attributes) attributes = NSDictionary::dictionary();
    NSTextStorage* storage = _tools->storage;
    NSRange run{};
    const NSUInteger length = string->length();
    const bool hasText = storage->string()->isEqualToString(string);
    if (hasText && length > 0 && storage->attributesAtIndex_effectiveRange(0, &run)->isEqual(attributes) &&
        run.length == length)
        return;
    storage->beginEditing();
    if (!hasText) storage->replaceCharactersInRange_withString({0, storage->length()}, string);
    storage->setAttributes_range(attributes, {0, length});
    storage->endEditing();
}

void MeasuringLayout::set(NSAttributedString* string) {
    if (!_tools->storage->isEqualToAttributedString(string)) _tools->storage->setAttributedString(string);
}

void MeasuringLayout::setWidth(float width, bool usesLeading) {
    _tools->layoutManager->setUsesFontLeading(usesLeading);
    _tools->container->setContainerSize({std::min(width, kNoLimit.width), kNoLimit.height});
}

NSRect MeasuringLayout::box(NSSize size, NSStringDrawingOptions options) {
    if (glyphs().length == 0) return {};
    setWidth(size.width, options & NSStringDrawingUsesFontLeading);
    NSLayoutManager* manager = _tools->layoutManager;
    NSRect box = manager->boundingRectForGlyphRange_inTextContainer(glyphs(), _tools->container);
    const float baseline = manager->locationForGlyphAtIndex(0).y;
    const bool isFromTop = options & NSStringDrawingUsesLineFragmentOrigin;
    box.origin = {0, isFromTop ? 0 : baseline - NSMaxY(box)};
    return box;
}

void MeasuringLayout::draw(NSPoint point, NSSize size) {
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    if (!context || glyphs().length == 0) return;
    setWidth(size.width, true);
    NSLayoutManager* manager = _tools->layoutManager;
    Canvas& canvas = context->canvas();
    const bool hasHeight = size.height < kNoLimit.height || canvas.isFlipped();
    const UprightState upright(
        canvas, point,
        hasHeight ? size.height : manager->usedRectForTextContainer(_tools->container).size.height);
    const NSRange drawn = size.height < kNoLimit.height ? manager->glyphRangeForBoundingRect_inTextContainer(
                                                              {{0, 0}, size}, _tools->container)
                                                        : glyphs();
    manager->drawBackgroundForGlyphRange_atPoint(drawn, point);
    manager->drawGlyphsForGlyphRange_atPoint(drawn, point);
}

void MeasuringLayout::drawInside(NSRect rect) {
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    if (!context) return;
    const SavedState unclipped(context->canvas());
    context->clipToRect(rect);
    draw(rect.origin, rect.size);
}

}  // namespace pelvor
