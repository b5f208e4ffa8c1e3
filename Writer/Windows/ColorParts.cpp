// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/ColorParts.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSCharacterSet.h"
#include "Interface/NSImage.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {
namespace {

unsigned byteOf(float part) { return static_cast<unsigned>(std::lround(part * 255)); }

int digitOf(unichar unit) {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    const int letter = (unit | 0x20) - u'a';
    return letter >= 0 && letter < 6 ? letter + 10 : -1;
}

}  // namespace

ColorParts ColorParts::of(NSColor* color) {
    const float red = color->redComponent(), green = color->greenComponent(), blue = color->blueComponent();
    const float most = std::max({red, green, blue}), spread = most - std::min({red, green, blue});
    if (spread <= 0) return {0, 0, most};
    const float sixths = most == red     ? (green - blue) / spread
                         : most == green ? 2 + (blue - red) / spread
                                         : 4 + (red - green) / spread;
    return {(sixths < 0 ? sixths + 6 : sixths) / 6, spread / most, most};
}

NSColor* ColorParts::color() const {
    // How much of a pure hue is in the part of the colour whose own hue is so many sixths.
    const auto part = [this](float sixths) {
        const float distance = std::abs(std::remainder(hue * 6 - sixths, 6.0F));
        return brightness * (1 - saturation * (1 - std::clamp(2 - distance, 0.0F, 1.0F)));
    };
    return NSColor::colorWithCalibratedRed_green_blue_alpha(part(0), part(2), part(4), 1);
}

NSString* hexOfColor(NSColor* color) {
    return NSString::stringWithFormat(u"#%02X%02X%02X"_ns, byteOf(color->redComponent()),
                                      byteOf(color->greenComponent()), byteOf(color->blueComponent()));
}

NSColor* colorOfHex(NSString* text) {
    NSString* digits = text->stringByTrimmingCharactersInSet(NSCharacterSet::whitespaceCharacterSet());
    if (digits->hasPrefix(u"#"_ns)) digits = digits->substringFromIndex(1);
    const NSUInteger perPart = digits->length() / 3;
    if (digits->length() != 3 && digits->length() != 6) return nullptr;
    float parts[3];
    for (NSUInteger i = 0; i < 3; ++i) {
        const int high = digitOf(digits->characterAtIndex(i * perPart));
        const int low = digitOf(digits->characterAtIndex(i * perPart + perPart - 1));
        if (high < 0 || low < 0) return nullptr;
        parts[i] = static_cast<float>(high * 16 + low) / 255;
    }
    return NSColor::colorWithCalibratedRed_green_blue_alpha(parts[0], parts[1], parts[2], 1);
}

Retained<NSImage> swatchOfColor(NSColor* color) {
    constexpr NSSize kSize{14, 14};
    constexpr float kScale = 2;
    auto context = NSGraphicsContext::initWithImageSize_scale(kSize, kScale);
    context->setColor(color);
    context->fillRect({{0, 0}, kSize});
    context->setColor(NSColor::colorWithCalibratedWhite_alpha(0, 0.3F));
    context->strokeRect_width({{0, 0}, kSize}, 1);
    auto image = NSImage::initWithData(context->dataWithReason(nullptr));
    if (image) image->setSize(kSize);
    return image;
}

}  // namespace pelvor
