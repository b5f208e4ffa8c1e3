// SPDX-License-Identifier: Apache-2.0
#include "Text/NSAttributedString-Drawing.h"

#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Text/Layout/MeasuringLayout.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSAttributedString>& methods) {
    methods.instance<"boundingRectWithSize:options:", &boundingRectWithSize_options>();
    methods.instance<"size", &size>();
    methods.instance<"drawAtPoint:", &drawAtPoint>();
    methods.instance<"drawInRect:", &drawInRect>();
}

}  // namespace

constinit const Category NSAttributedString_Drawing_category =
    Category::of<NSAttributedString, defineAdditions>("Drawing");

NSRect boundingRectWithSize_options(NSAttributedString* string, NSSize size, NSStringDrawingOptions options) {
    requireArgument(string, "boundingRectWithSize:options:", "the string");
    MeasuringLayout layout;
    layout.set(string);
    return layout.box(size, options);
}

NSSize size(NSAttributedString* string) {
    requireArgument(string, "size", "the string");
    return boundingRectWithSize_options(
               string, MeasuringLayout::kNoLimit,
               NSStringDrawingUsesLineFragmentOrigin | NSStringDrawingUsesFontLeading)
        .size;
}

void drawAtPoint(NSAttributedString* string, NSPoint point) {
    requireArgument(string, "drawAtPoint:", "the string");
    MeasuringLayout layout;
    layout.set(string);
    layout.draw(point, MeasuringLayout::kNoLimit);
}

void drawInRect(NSAttributedString* string, NSRect rect) {
    requireArgument(string, "drawInRect:", "the string");
    MeasuringLayout layout;
    layout.set(string);
    layout.drawInside(rect);
}

}  // namespace pelvor
