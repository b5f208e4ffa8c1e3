// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSButtonCell.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSNumber.h"
#include "Interface/Drawing/Direction.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSControl.h"
#include "Interface/NSImage.h"
#include "Interface/Texts/CopiedText.h"
#include "Runtime/Message.h"
#include "Text/NSColor.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSButtonCell, interfaceLibrary) {
    methods.instance<"buttonType", &NSButtonCell::buttonType>();
    methods.instance<"setButtonType:", &NSButtonCell::setButtonType>();
    methods.instance<"attributedTitle", &NSButtonCell::attributedTitle>();
    methods.instance<"setAttributedTitle:", &NSButtonCell::setAttributedTitle>();
    methods.instance<"alternateTitle", &NSButtonCell::alternateTitle>();
    methods.instance<"setAlternateTitle:", &NSButtonCell::setAlternateTitle>();
    methods.instance<"alternateImage", &NSButtonCell::alternateImage>();
    methods.instance<"setAlternateImage:", &NSButtonCell::setAlternateImage>();
    methods.instance<"imagePosition", &NSButtonCell::imagePosition>();
    methods.instance<"setImagePosition:", &NSButtonCell::setImagePosition>();
    methods.instance<"setKeyEquivalent:", &NSButtonCell::setKeyEquivalent>();
    methods.instance<"keyEquivalentModifierMask", &NSButtonCell::keyEquivalentModifierMask>();
    methods.instance<"setKeyEquivalentModifierMask:", &NSButtonCell::setKeyEquivalentModifierMask>();
    methods.instance<"setPeriodicDelay:interval:", &NSButtonCell::setPeriodicDelay_interval>();
    methods.instance<"drawBezelWithFrame:inView:", &NSButtonCell::drawBezelWithFrame_inView>();
    methods.instance<"drawImage:withFrame:inView:", &NSButtonCell::drawImage_withFrame_inView>();
    methods.instance<"drawTitle:withFrame:inView:", &NSButtonCell::drawTitle_withFrame_inView>();
}

NSButtonCell::NSButtonCell() {
    _button.title = _button.alternateTitle = _button.keyEquivalent = copiedText(nullptr);
    _values.isBordered = true;
    _values.alignment = NSCenterTextAlignment;
}

void NSButtonCell::takeProperties(NSCell* other) {
    NSActionCell::takeProperties(other);
    _button = static_cast<NSButtonCell*>(other)->_button;
}

// MARK: Properties

void NSButtonCell::setButtonType(NSButtonType type) {
    _button.type = type;
    setBordered(!hasMark());
    setAlignment(hasMark() ? NSNaturalTextAlignment : NSCenterTextAlignment);
    changed();
}

void NSButtonCell::setTitle(NSString* title) {
    _button.attributedTitle = nullptr;
    _button.title = copiedText(title);
    changed();
}

NSAttributedString* NSButtonCell::attributedTitle() {
    if (_button.attributedTitle) return _button.attributedTitle;
    return NSAttributedString::initWithString_attributes(_button.title, textAttributes()).autorelease();
}

void NSButtonCell::setAttributedTitle(NSAttributedString* title) {
    if (title) setTitle(title->string());
    _button.attributedTitle = title ? title->copy() : nullptr;
    changed();
}

void NSButtonCell::setAlternateTitle(NSString* title) {
    _button.alternateTitle = copiedText(title);
    changed();
}

void NSButtonCell::setAlternateImage(NSImage* image) {
    _button.alternateImage.set(image);
    changed();
}

void NSButtonCell::setImage(NSImage* image) {
    if (image && _button.imagePosition == NSNoImage)
        _button.imagePosition = _button.title->length() ? NSImageLeft : NSImageOnly;
    NSActionCell::setImage(image);
}

void NSButtonCell::setImagePosition(NSCellImagePosition position) {
    _button.imagePosition = position;
    changed();
}

void NSButtonCell::setKeyEquivalent(NSString* key) {
    _button.keyEquivalent = copiedText(key);
    lookChanged();
}

void NSButtonCell::setNextState() {
    if (_button.type == NSMomentaryLightButton || _button.type == NSMomentaryChangeButton ||
        _button.type == NSMomentaryPushInButton)
        return;
    if (_button.type != NSRadioButton) return NSActionCell::setNextState();
    NSView* view = controlView();
    NSArray* siblings = view && view->superview() && action() ? view->superview()->subviews() : nullptr;
    for (NSUInteger i = 0; siblings && i < siblings->count(); ++i) {
        auto* control = cast<NSControl>(siblings->objectAtIndex(i));
        auto* button = control ? cast<NSButtonCell>(control->cell()) : nullptr;
        if (button && button != this && button->_button.type == NSRadioButton && button->action() == action())
            button->setState(NSOffState);
    }
    setState(NSOnState);
}

id NSButtonCell::objectValue() { return NSNumber::numberWithInt(state()); }

void NSButtonCell::setObjectValue(id value) {
    setState(value && value->respondsToSelector("intValue"_sel) ? send<int>(value, "intValue"_sel) : 0);
}

void NSButtonCell::setPeriodicDelay_interval(float delay, float interval) {
    _button.periodicDelay = delay;
    _button.periodicInterval = interval;
}

void NSButtonCell::getPeriodicDelay_interval(float* delay, float* interval) {
    if (delay) *delay = _button.periodicDelay;
    if (interval) *interval = _button.periodicInterval;
}

// MARK: Room

id NSButtonCell::shownTitle() {
    const bool alternates =
        _button.type == NSToggleButton && state() == NSOnState && _button.alternateTitle->length();
    if (alternates) return _button.alternateTitle;
    if (_button.attributedTitle) return _button.attributedTitle;
    return _button.title->length() ? _button.title.get() : nullptr;
}

NSImage* NSButtonCell::shownImage() {
    if (_button.imagePosition == NSNoImage) return nullptr;
    const bool alternates = _button.type == NSMomentaryChangeButton
                                ? isHighlighted()
                                : _button.type == NSToggleButton && state() == NSOnState;
    return alternates && _button.alternateImage ? _button.alternateImage.get() : image();
}

NSSize NSButtonCell::cellSizeForBounds(NSRect) {
    NSImage* image = shownImage();
    id title = image && _button.imagePosition == NSImageOnly ? nullptr : shownTitle();
    NSSize total = title ? sizeOfText_width(title, 1.0e4f) : NSSize{0, font()->defaultLineHeightForFont()};
    if (image) {
        const NSSize size = image->size();
        const bool isStacked = _button.imagePosition == NSImageBelow || _button.imagePosition == NSImageAbove;
        const float gap = title ? metrics::kImageGap : 0;
        if (!title || _button.imagePosition == NSImageOverlaps)
            total = {std::max(total.width, size.width), std::max(total.height, size.height)};
        else if (isStacked)
            total = {std::max(total.width, size.width), total.height + gap + size.height};
        else
            total = {total.width + gap + size.width, std::max(total.height, size.height)};
    }
    if (hasMark()) {
        total.width += metrics::kSwitchSize + (title || image ? metrics::kSwitchGap : 0);
        total.height = std::max(total.height, metrics::kSwitchSize);
    } else if (isBordered()) {
        total.width += 2 * (title ? metrics::kButtonInset : metrics::kFieldInset + metrics::kTextInset);
        total.height = std::max(total.height + 2 * metrics::kFieldInset,
                                controlSize() == NSRegularControlSize ? metrics::kButtonHeight : 0);
    }
    return {std::ceil(total.width), std::ceil(total.height)};
}

NSButtonCell::Parts NSButtonCell::partsInFrame(NSRect frame) {
    Parts parts;
    const bool isRightToLeft = runsFromRightToLeft(baseWritingDirection());
    NSRect rest = frame;
    if (hasMark()) {
        NSDivideRect(rest, &parts.mark, &rest, metrics::kSwitchSize, isRightToLeft ? NSMaxXEdge : NSMinXEdge);
        NSDivideRect(rest, nullptr, &rest, metrics::kSwitchGap, isRightToLeft ? NSMaxXEdge : NSMinXEdge);
    } else if (isBordered()) {
        rest = NSInsetRect(rest, metrics::kFieldInset + metrics::kTextInset, metrics::kTextInset);
    }
    parts.title = rest;
    NSImage* image = shownImage();
    if (!image) return parts;
    parts.image = rest;
    id title = shownTitle();
    if (!title || _button.imagePosition == NSImageOnly || _button.imagePosition == NSImageOverlaps)
        return parts;
    const bool isStacked = _button.imagePosition == NSImageBelow || _button.imagePosition == NSImageAbove;
    const NSRectEdge edge = _button.imagePosition == NSImageBelow   ? NSMaxYEdge
                            : _button.imagePosition == NSImageAbove ? NSMinYEdge
                            : _button.imagePosition == NSImageRight ? NSMaxXEdge
                                                                    : NSMinXEdge;
    if (!isStacked && alignment() == NSCenterTextAlignment) {
        // Image and title stand in the middle together.
        const float width = std::min(rest.size.width, image->size().width + metrics::kImageGap +
                                                          std::ceil(sizeOfText_width(title, 1.0e4f).width));
        rest = NSInsetRect(rest, (rest.size.width - width) / 2, 0);
    }
    const float extent = isStacked ? image->size().height : image->size().width;
    NSDivideRect(rest, &parts.image, &rest, extent, edge);
    NSDivideRect(rest, nullptr, &parts.title, metrics::kImageGap, edge);
    return parts;
}

NSRect NSButtonCell::titleRectForBounds(NSRect bounds) { return partsInFrame(bounds).title; }

NSRect NSButtonCell::imageRectForBounds(NSRect bounds) { return partsInFrame(bounds).image; }

// MARK: Drawing

bool NSButtonCell::isDefault() { return isBordered() && _button.keyEquivalent->isEqualToString(u"\r"_ns); }

bool NSButtonCell::looksPressed() {
    const bool staysDown = _button.type == NSPushOnPushOffButton || _button.type == NSOnOffButton;
    return isHighlighted() || (staysDown && state() == NSOnState);
}

NSColor* NSButtonCell::effectiveTextColor() {
    if (!isEnabled()) return themeColor(ThemeColor::disabledText);
    return themeColor(isDefault() ? ThemeColor::textOnAccent : ThemeColor::text);
}

void NSButtonCell::drawWithFrame_inView(NSRect frame, NSView* view) {
    setControlView(view);
    if (isBordered() && !hasMark()) drawBezelWithFrame_inView(frame, view);
    drawInteriorWithFrame_inView(frame, view);
}

void NSButtonCell::drawBezelWithFrame_inView(NSRect frame, NSView*) {
    constexpr float kRadius = metrics::kCornerRadius;
    if (isDefault() && isEnabled()) {
        fillRounded(frame, kRadius, looksPressed() ? ThemeColor::pressedAccent : ThemeColor::accent);
    } else {
        fillRounded(frame, kRadius, looksPressed() ? ThemeColor::pressedButton : ThemeColor::button);
        strokeRounded(frame, kRadius, metrics::kLine, ThemeColor::border);
    }
    if (showsFirstResponder())
        drawFocusRing(NSInsetRect(frame, metrics::kFocusRing, metrics::kFocusRing), kRadius);
}

void NSButtonCell::drawInteriorWithFrame_inView(NSRect frame, NSView* view) {
    const Parts parts = partsInFrame(frame);
    if (hasMark()) drawMark(parts.mark);
    if (NSImage* image = shownImage()) drawImage_withFrame_inView(image, parts.image, view);
    id title = shownTitle();
    if (!title || (shownImage() && _button.imagePosition == NSImageOnly)) return;
    if (auto* plain = cast<NSString>(title)) {
        auto attributed = NSAttributedString::initWithString_attributes(plain, textAttributes());
        drawTitle_withFrame_inView(attributed, parts.title, view);
    } else {
        drawTitle_withFrame_inView(static_cast<NSAttributedString*>(title), parts.title, view);
    }
}

void NSButtonCell::drawImage_withFrame_inView(NSImage* image, NSRect frame, NSView*) {
    if (!image) return;
    image->drawInRect_fromRect_operation_fraction(fittedImage(image->size(), frame, NSScaleProportionally),
                                                  NSZeroRect, NSCompositeSourceOver, isEnabled() ? 1 : 0.4f);
}

NSRect NSButtonCell::drawTitle_withFrame_inView(NSAttributedString* title, NSRect frame, NSView*) {
    drawText_inRect(title, frame);
    return frame;
}

void NSButtonCell::drawMark(NSRect place) {
    constexpr float kSize = metrics::kSwitchSize;
    place = {{place.origin.x, std::floor(NSMidY(place) - kSize / 2)}, {kSize, kSize}};
    const float radius = _button.type == NSRadioButton ? kSize / 2 : metrics::kCornerRadius - 1;
    const bool isFilled = state() != NSOffState && isEnabled();
    if (isFilled) {
        fillRounded(place, radius, isHighlighted() ? ThemeColor::pressedAccent : ThemeColor::accent);
    } else {
        fillRounded(place, radius, isHighlighted() ? ThemeColor::pressedButton : ThemeColor::content);
        strokeRounded(place, radius, metrics::kLine, ThemeColor::border);
    }
    const ThemeColor ink = isFilled ? ThemeColor::textOnAccent : ThemeColor::disabledText;
    if (state() == NSMixedState)
        drawDash(place, ink);
    else if (state() == NSOnState)
        _button.type == NSRadioButton ? drawDot(place, ink) : drawCheckMark(place, ink);
    if (showsFirstResponder()) drawFocusRing(NSInsetRect(place, 1, 1), radius);
}

}  // namespace pelvor
