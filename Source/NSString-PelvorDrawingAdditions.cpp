// SPDX-License-Identifier: Apache-2.0
#include "NSString-PelvorDrawingAdditions.h"

#include <cfloat>
#include <cmath>

#include "Foundation/NSArray.h"
#include "Foundation/PlatformVersion.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSFont.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSString-Drawing.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"

namespace pelvor {
namespace {

constexpr double kLastVersionThatMeasuresByLayout = 743;
constexpr float kSharedExtent = 10000;

void defineAdditions(MethodTable<NSString>& methods) {
    methods.instance<"pelvorBoundingRectWithAttributes:", &pelvorBoundingRectWithAttributes>();
    methods.instance<"pelvorDrawAtPoint:withAttributes:", &pelvorDrawAtPoint_withAttributes>();
}

bool measuresByPlatform() { return std::floor(platformVersion()) > kLastVersionThatMeasuresByLayout; }

struct SharedLayout {
    SharedLayout() {
        container->setLineFragmentPadding(0);
        layoutManager->addTextContainer(container);
        storage->addLayoutManager(layoutManager);
    }

    Retained<NSTextStorage> storage = NSTextStorage::init();
    Retained<NSLayoutManager> layoutManager = NSLayoutManager::init();
    Retained<NSTextContainer> container =
        NSTextContainer::initWithContainerSize({kSharedExtent, kSharedExtent});
};

SharedLayout& sharedLayout() {
    static SharedLayout& layout = *new SharedLayout;
    return layout;
}

}  // namespace

constinit const Category NSString_PelvorDrawingAdditions_category =
    Category::of<NSString, defineAdditions>("PelvorDrawingAdditions");

NSLayoutManager* _PBSharedMeasuringLayoutManager() { return sharedLayout().layoutManager; }

NSRange _PBUpdatedGlyphRangeForSharedLayout(NSString* string, NSDictionary* attributes) {
    requireArgument(string, "_PBUpdatedGlyphRangeForSharedLayout", "the string");
    SharedLayout& shared = sharedLayout();
    NSTextStorage* storage = shared.storage;
    if (!attributes) attributes = NSDictionary::dictionary();
    const bool hasText = storage->string()->isEqualToString(string);
    const NSUInteger length = string->length();
    NSRange run{};
    const bool hasAttributes =
        hasText && (length == 0 || (storage->attributesAtIndex_effectiveRange(0, &run)->isEqual(attributes) &&
                                    run.length == length));
    if (!hasAttributes) {
        storage->beginEditing();
        if (!hasText) storage->replaceCharactersInRange_withString({0, storage->length()}, string);
        storage->setAttributes_range(attributes, {0, length});
        storage->endEditing();
    }
    return shared.layoutManager->glyphRangeForTextContainer(shared.container);
}

NSRect pelvorBoundingRectWithAttributes(NSString* string, NSDictionary* attributes) {
    requireArgument(string, "pelvorBoundingRectWithAttributes:", "the string");
    if (measuresByPlatform())
        return boundingRectWithSize_options_attributes(
            string, {FLT_MAX, FLT_MAX}, NSStringDrawingDisableScreenFontSubstitution, attributes);
    const NSRange glyphs = _PBUpdatedGlyphRangeForSharedLayout(string, attributes);
    SharedLayout& shared = sharedLayout();
    const NSSize size =
        shared.layoutManager->boundingRectForGlyphRange_inTextContainer(glyphs, shared.container).size;
    auto font = attributes ? cast<NSFont>(attributes->objectForKey(NSFontAttributeName)) : nullptr;
    return {{0, (font ? font->descender() : 0) - 0.5F}, size};
}

void pelvorDrawAtPoint_withAttributes(NSString* string, NSPoint point, NSDictionary* attributes) {
    requireArgument(string, "pelvorDrawAtPoint:withAttributes:", "the string");
    if (measuresByPlatform()) return drawAtPoint_withAttributes(string, point, attributes);
    const NSRange glyphs = _PBUpdatedGlyphRangeForSharedLayout(string, attributes);
    NSLayoutManager* layoutManager = sharedLayout().layoutManager;
    layoutManager->drawBackgroundForGlyphRange_atPoint(glyphs, point);
    layoutManager->drawGlyphsForGlyphRange_atPoint(glyphs, point);
}

}  // namespace pelvor
