// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSTextFieldCell.h"

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTextFieldCell, interfaceLibrary) {
    methods.instance<"textColor", &NSTextFieldCell::textColor>();
    methods.instance<"setTextColor:", &NSTextFieldCell::setTextColor>();
    methods.instance<"backgroundColor", &NSTextFieldCell::backgroundColor>();
    methods.instance<"setBackgroundColor:", &NSTextFieldCell::setBackgroundColor>();
    methods.instance<"drawsBackground", &NSTextFieldCell::drawsBackground>();
    methods.instance<"setDrawsBackground:", &NSTextFieldCell::setDrawsBackground>();
    methods.instance<"placeholderString", &NSTextFieldCell::placeholderString>();
    methods.instance<"setPlaceholderString:", &NSTextFieldCell::setPlaceholderString>();
}

void NSTextFieldCell::takeProperties(NSCell* other) {
    NSActionCell::takeProperties(other);
    auto* field = static_cast<NSTextFieldCell*>(other);
    _textColor = field->_textColor;
    _backgroundColor = field->_backgroundColor;
    _placeholder = field->_placeholder;
    _drawsBackground = field->_drawsBackground;
}

void NSTextFieldCell::setTextColor(NSColor* color) {
    _textColor.set(color);
    lookChanged();
}

void NSTextFieldCell::setBackgroundColor(NSColor* color) {
    _backgroundColor.set(color);
    changed();
}

void NSTextFieldCell::setDrawsBackground(bool draws) {
    _drawsBackground = draws;
    changed();
}

void NSTextFieldCell::setPlaceholderString(NSString* text) {
    _placeholder = text ? text->copy() : nullptr;
    changed();
}

bool NSTextFieldCell::isOpaque() {
    return _drawsBackground && !isBezeled() && (!_backgroundColor || _backgroundColor->alphaComponent() >= 1);
}

NSColor* NSTextFieldCell::effectiveTextColor() {
    return _textColor && isEnabled() && !isHighlighted() ? _textColor.get()
                                                         : NSActionCell::effectiveTextColor();
}

void NSTextFieldCell::drawWithFrame_inView(NSRect frame, NSView* view) {
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    if (_drawsBackground && !isBezeled() && context) {
        context->setColor(_backgroundColor ? _backgroundColor.get() : themeColor(ThemeColor::content));
        context->fillRect(frame);
    }
    NSActionCell::drawWithFrame_inView(frame, view);
    if (showsFirstResponder() && isBezeled())
        drawFocusRing(NSInsetRect(frame, metrics::kFocusRing, metrics::kFocusRing), metrics::kCornerRadius);
}

void NSTextFieldCell::drawInteriorWithFrame_inView(NSRect frame, NSView* view) {
    if (!_placeholder || type() != NSTextCellType || stringValue()->length())
        return NSActionCell::drawInteriorWithFrame_inView(frame, view);
    auto attributes = textAttributes()->mutableCopy();
    attributes->setObject_forKey(themeColor(ThemeColor::disabledText), NSForegroundColorAttributeName);
    auto text = NSAttributedString::initWithString_attributes(_placeholder, attributes);
    drawText_inRect(text, titleRectForBounds(frame));
}

}  // namespace pelvor
