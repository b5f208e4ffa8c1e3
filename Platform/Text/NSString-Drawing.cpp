// SPDX-License-Identifier: Apache-2.0
#include "Text/NSString-Drawing.h"

#include <algorithm>

#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Text/Drawing/Canvas.h"
#include "Text/NSGraphicsContext.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSString>& methods) {
    methods.instance<"boundingRectWithSize:options:attributes:", &boundingRectWithSize_options_attributes>();
    methods.instance<"sizeWithAttributes:", &sizeWithAttributes>();
    methods.instance<"drawAtPoint:withAttributes:", &drawAtPoint_withAttributes>();
    methods.instance<"drawInRect:withAttributes:", &drawInRect_withAttributes>();
}

constexpr NSSize kNoLimit{NSTextContainer::kUnlimitedExtent, NSTextContainer::kUnlimitedExtent};

// A layout that is used for one string after the other.
class MeasuringLayout {
  public:
    static MeasuringLayout& current() {
        static thread_local MeasuringLayout layout;
        return layout;
    }

    void set(NSString* string, NSDictionary* attributes, NSSize size, bool usesLeading) {
        if (!attributes) attributes = NSDictionary::dictionary();
        layoutManager->setUsesFontLeading(usesLeading);
        container->setContainerSize({std::min(size.width, kNoLimit.width), kNoLimit.height});
        NSRange run{};
        const NSUInteger length = string->length();
        const bool hasText = storage->string()->isEqualToString(string);
        if (hasText && length > 0 &&
            storage->attributesAtIndex_effectiveRange(0, &run)->isEqual(attributes) && run.length == length)
            return;
        storage->beginEditing();
        if (!hasText) storage->replaceCharactersInRange_withString({0, storage->length()}, string);
        storage->setAttributes_range(attributes, {0, length});
        storage->endEditing();
    }

    NSRange glyphs() { return {0, storage->length()}; }

    Retained<NSTextStorage> storage = NSTextStorage::init();
    Retained<NSLayoutManager> layoutManager = NSLayoutManager::init();
    Retained<NSTextContainer> container = NSTextContainer::initWithContainerSize(kNoLimit);

  private:
    MeasuringLayout() {
        container->setLineFragmentPadding(0);
        layoutManager->addTextContainer(container);
        storage->addLayoutManager(layoutManager);
    }
};

}  // namespace

constinit const Category NSString_Drawing_category = Category::of<NSString, defineAdditions>("Drawing");

NSRect boundingRectWithSize_options_attributes(NSString* string, NSSize size, NSStringDrawingOptions options,
                                               NSDictionary* attributes) {
    requireArgument(string, "boundingRectWithSize:options:attributes:", "the string");
    if (string->length() == 0) return {};
    MeasuringLayout& layout = MeasuringLayout::current();
    layout.set(string, attributes, size, options & NSStringDrawingUsesFontLeading);
    NSRect box =
        layout.layoutManager->boundingRectForGlyphRange_inTextContainer(layout.glyphs(), layout.container);
    const float baseline = layout.layoutManager->locationForGlyphAtIndex(0).y;
    const bool isFromTop = options & NSStringDrawingUsesLineFragmentOrigin;
    box.origin = {0, isFromTop ? 0 : baseline - NSMaxY(box)};
    return box;
}

NSSize sizeWithAttributes(NSString* string, NSDictionary* attributes) {
    requireArgument(string, "sizeWithAttributes:", "the string");
    return boundingRectWithSize_options_attributes(
               string, kNoLimit, NSStringDrawingUsesLineFragmentOrigin | NSStringDrawingUsesFontLeading,
               attributes)
        .size;
}

namespace {

void drawLaidOut(NSString* string, NSPoint point, NSSize size, NSDictionary* attributes) {
    if (string->length() == 0) return;
    MeasuringLayout& layout = MeasuringLayout::current();
    layout.set(string, attributes, size, true);
    NSRange glyphs = layout.glyphs();
    if (size.height < kNoLimit.height)
        glyphs =
            layout.layoutManager->glyphRangeForBoundingRect_inTextContainer({{0, 0}, size}, layout.container);
    layout.layoutManager->drawBackgroundForGlyphRange_atPoint(glyphs, point);
    layout.layoutManager->drawGlyphsForGlyphRange_atPoint(glyphs, point);
}

}  // namespace

void drawAtPoint_withAttributes(NSString* string, NSPoint point, NSDictionary* attributes) {
    requireArgument(string, "drawAtPoint:withAttributes:", "the string");
    drawLaidOut(string, point, kNoLimit, attributes);
}

void drawInRect_withAttributes(NSString* string, NSRect rect, NSDictionary* attributes) {
    requireArgument(string, "drawInRect:withAttributes:", "the string");
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    if (!context) return;
    const SavedState unclipped(context->canvas());
    context->clipToRect(rect);
    drawLaidOut(string, rect.origin, rect.size, attributes);
}

}  // namespace pelvor
