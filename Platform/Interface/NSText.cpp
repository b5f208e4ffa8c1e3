// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSText.h"

#include "Interface/InterfaceLibrary.h"
#include "Text/NSColor.h"

namespace pelvor {

NSString* const NSTextDidBeginEditingNotification = u"NSTextDidBeginEditingNotification"_ns;
NSString* const NSTextDidChangeNotification = u"NSTextDidChangeNotification"_ns;
NSString* const NSTextDidEndEditingNotification = u"NSTextDidEndEditingNotification"_ns;

PELVOR_DEFINE_CLASS(NSText, interfaceLibrary) {
    methods.instance<"string", &NSText::string>();
    methods.instance<"setString:", &NSText::setString>();
    methods.instance<"replaceCharactersInRange:withString:", &NSText::replaceCharactersInRange_withString>();
    methods.instance<"selectedRange", &NSText::selectedRange>();
    methods.instance<"setSelectedRange:", &NSText::setSelectedRange>();
    methods.instance<"scrollRangeToVisible:", &NSText::scrollRangeToVisible>();
    methods.instance<"delegate", &NSText::delegate>();
    methods.instance<"setDelegate:", &NSText::setDelegate>();
    methods.instance<"isEditable", &NSText::isEditable>();
    methods.instance<"setEditable:", &NSText::setEditable>();
    methods.instance<"isSelectable", &NSText::isSelectable>();
    methods.instance<"setSelectable:", &NSText::setSelectable>();
    methods.instance<"isRichText", &NSText::isRichText>();
    methods.instance<"setRichText:", &NSText::setRichText>();
    methods.instance<"isFieldEditor", &NSText::isFieldEditor>();
    methods.instance<"setFieldEditor:", &NSText::setFieldEditor>();
    methods.instance<"drawsBackground", &NSText::drawsBackground>();
    methods.instance<"setDrawsBackground:", &NSText::setDrawsBackground>();
    methods.instance<"backgroundColor", &NSText::backgroundColor>();
    methods.instance<"setBackgroundColor:", &NSText::setBackgroundColor>();
    methods.instance<"minSize", &NSText::minSize>();
    methods.instance<"setMinSize:", &NSText::setMinSize>();
    methods.instance<"maxSize", &NSText::maxSize>();
    methods.instance<"setMaxSize:", &NSText::setMaxSize>();
    methods.instance<"isVerticallyResizable", &NSText::isVerticallyResizable>();
    methods.instance<"setVerticallyResizable:", &NSText::setVerticallyResizable>();
    methods.instance<"isHorizontallyResizable", &NSText::isHorizontallyResizable>();
    methods.instance<"setHorizontallyResizable:", &NSText::setHorizontallyResizable>();
    methods.instance<"sizeToFit", &NSText::sizeToFit>();
}

NSText::NSText() : _backgroundColor(Retained<NSColor>::retaining(NSColor::whiteColor())) {}

NSText::~NSText() = default;

void NSText::setEditable(bool isEditable) {
    _isEditable = isEditable;
    if (isEditable) _isSelectable = true;
}

void NSText::setSelectable(bool isSelectable) {
    _isSelectable = isSelectable;
    if (!isSelectable) _isEditable = false;
}

void NSText::setDrawsBackground(bool draws) {
    _drawsBackground = draws;
    setNeedsDisplay(true);
}

void NSText::setBackgroundColor(NSColor* color) {
    _backgroundColor.set(color ? color : NSColor::whiteColor());
    setNeedsDisplay(true);
}

}  // namespace pelvor
