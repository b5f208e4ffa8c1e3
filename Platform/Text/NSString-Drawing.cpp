// SPDX-License-Identifier: Apache-2.0
#include "Text/NSString-Drawing.h"

#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Text/Layout/MeasuringLayout.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSString>& methods) {
    methods.instance<"boundingRectWithSize:options:attributes:", &boundingRectWithSize_options_attributes>();
    methods.instance<"sizeWithAttributes:", &sizeWithAttributes>();
    methods.instance<"drawAtPoint:withAttributes:", &drawAtPoint_withAttributes>();
    methods.instance<"drawInRect:withAttributes:", &drawInRect_withAttributes>();
}

}  // namespace

constinit const Category NSString_Drawing_category = Category::of<NSString, defineAdditions>("Drawing");

NSRect boundingRectWithSize_options_attributes(NSString* string, NSSize size, NSStringDrawingOptions options,
                                               NSDictionary* attributes) {
    requireArgument(string, "boundingRectWithSize:options:attributes:", "the string");
    MeasuringLayout layout;
    layout.set(string, attributes);
    return layout.box(size, options);
}

NSSize sizeWithAttributes(NSString* string, NSDictionary* attributes) {
    requireArgument(string, "sizeWithAttributes:", "the string");
    return boundingRectWithSize_options_attributes(
               string, MeasuringLayout::kNoLimit,
               NSStringDrawingUsesLineFragmentOrigin | NSStringDrawingUsesFontLeading, attributes)
        .size;
}

void drawAtPoint_withAttributes(NSString* string, NSPoint point, NSDictionary* attributes) {
    requireArgument(string, "drawAtPoint:withAttributes:", "the string");
    MeasuringLayout layout;
    layout.set(string, attributes);
    layout.draw(point, MeasuringLayout::kNoLimit);
}

void drawInRect_withAttributes(NSString* string, NSRect rect, NSDictionary* attributes) {
    requireArgument(string, "drawInRect:withAttributes:", "the string");
    MeasuringLayout layout;
    layout.set(string, attributes);
    layout.drawInside(rect);
}

}  // namespace pelvor
