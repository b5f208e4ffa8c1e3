// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSCell.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSControl.h"
#include "Interface/NSEvent.h"
#include "Interface/NSImage.h"
#include "Interface/NSText.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSAttributedString-Drawing.h"
#include "Text/NSMutableParagraphStyle.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSCell, interfaceLibrary) {
    methods.creator<"init", &NSCell::init>();
    methods.creator<"initTextCell:", &NSCell::initTextCell>();
    methods.creator<"initImageCell:", &NSCell::initImageCell>();
    methods.instance<"objectValue", &NSCell::objectValue>();
    methods.instance<"setObjectValue:", &NSCell::setObjectValue>();
    methods.instance<"hasValidObjectValue", &NSCell::hasValidObjectValue>();
    methods.instance<"stringValue", &NSCell::stringValue>();
    methods.instance<"setStringValue:", &NSCell::setStringValue>();
    methods.instance<"attributedStringValue", &NSCell::attributedStringValue>();
    methods.instance<"setAttributedStringValue:", &NSCell::setAttributedStringValue>();
    methods.instance<"intValue", &NSCell::intValue>();
    methods.instance<"setIntValue:", &NSCell::setIntValue>();
    methods.instance<"floatValue", &NSCell::floatValue>();
    methods.instance<"setFloatValue:", &NSCell::setFloatValue>();
    methods.instance<"doubleValue", &NSCell::doubleValue>();
    methods.instance<"setDoubleValue:", &NSCell::setDoubleValue>();
    methods.instance<"takeStringValueFrom:", &NSCell::takeStringValueFrom>();
    methods.instance<"takeObjectValueFrom:", &NSCell::takeObjectValueFrom>();
    methods.instance<"takeIntValueFrom:", &NSCell::takeIntValueFrom>();
    methods.instance<"takeDoubleValueFrom:", &NSCell::takeDoubleValueFrom>();
    methods.instance<"compare:", &NSCell::compare>();
    methods.instance<"type", &NSCell::type>();
    methods.instance<"setType:", &NSCell::setType>();
    methods.instance<"title", &NSCell::title>();
    methods.instance<"setTitle:", &NSCell::setTitle>();
    methods.instance<"image", &NSCell::image>();
    methods.instance<"setImage:", &NSCell::setImage>();
    methods.instance<"representedObject", &NSCell::representedObject>();
    methods.instance<"setRepresentedObject:", &NSCell::setRepresentedObject>();
    methods.instance<"state", &NSCell::state>();
    methods.instance<"setState:", &NSCell::setState>();
    methods.instance<"allowsMixedState", &NSCell::allowsMixedState>();
    methods.instance<"setAllowsMixedState:", &NSCell::setAllowsMixedState>();
    methods.instance<"nextState", &NSCell::nextState>();
    methods.instance<"setNextState", &NSCell::setNextState>();
    methods.instance<"isEnabled", &NSCell::isEnabled>();
    methods.instance<"setEnabled:", &NSCell::setEnabled>();
    methods.instance<"isHighlighted", &NSCell::isHighlighted>();
    methods.instance<"setHighlighted:", &NSCell::setHighlighted>();
    methods.instance<"isEditable", &NSCell::isEditable>();
    methods.instance<"setEditable:", &NSCell::setEditable>();
    methods.instance<"isSelectable", &NSCell::isSelectable>();
    methods.instance<"setSelectable:", &NSCell::setSelectable>();
    methods.instance<"showsFirstResponder", &NSCell::showsFirstResponder>();
    methods.instance<"setShowsFirstResponder:", &NSCell::setShowsFirstResponder>();
    methods.instance<"refusesFirstResponder", &NSCell::refusesFirstResponder>();
    methods.instance<"setRefusesFirstResponder:", &NSCell::setRefusesFirstResponder>();
    methods.instance<"acceptsFirstResponder", &NSCell::acceptsFirstResponder>();
    methods.instance<"font", &NSCell::font>();
    methods.instance<"setFont:", &NSCell::setFont>();
    methods.instance<"controlSize", &NSCell::controlSize>();
    methods.instance<"setControlSize:", &NSCell::setControlSize>();
    methods.instance<"alignment", &NSCell::alignment>();
    methods.instance<"setAlignment:", &NSCell::setAlignment>();
    methods.instance<"lineBreakMode", &NSCell::lineBreakMode>();
    methods.instance<"setLineBreakMode:", &NSCell::setLineBreakMode>();
    methods.instance<"wraps", &NSCell::wraps>();
    methods.instance<"setWraps:", &NSCell::setWraps>();
    methods.instance<"isScrollable", &NSCell::isScrollable>();
    methods.instance<"setScrollable:", &NSCell::setScrollable>();
    methods.instance<"baseWritingDirection", &NSCell::baseWritingDirection>();
    methods.instance<"setBaseWritingDirection:", &NSCell::setBaseWritingDirection>();
    methods.instance<"isBordered", &NSCell::isBordered>();
    methods.instance<"setBordered:", &NSCell::setBordered>();
    methods.instance<"isBezeled", &NSCell::isBezeled>();
    methods.instance<"setBezeled:", &NSCell::setBezeled>();
    methods.instance<"isOpaque", &NSCell::isOpaque>();
    methods.instance<"target", &NSCell::target>();
    methods.instance<"setTarget:", &NSCell::setTarget>();
    methods.instance<"action", &NSCell::action>();
    methods.instance<"setAction:", &NSCell::setAction>();
    methods.instance<"tag", &NSCell::tag>();
    methods.instance<"setTag:", &NSCell::setTag>();
    methods.instance<"sendActionOn:", &NSCell::sendActionOn>();
    methods.instance<"isContinuous", &NSCell::isContinuous>();
    methods.instance<"setContinuous:", &NSCell::setContinuous>();
    methods.instance<"keyEquivalent", &NSCell::keyEquivalent>();
    methods.instance<"performClick:", &NSCell::performClick>();
    methods.instance<"cellSize", &NSCell::cellSize>();
    methods.instance<"cellSizeForBounds:", &NSCell::cellSizeForBounds>();
    methods.instance<"drawingRectForBounds:", &NSCell::drawingRectForBounds>();
    methods.instance<"titleRectForBounds:", &NSCell::titleRectForBounds>();
    methods.instance<"imageRectForBounds:", &NSCell::imageRectForBounds>();
    methods.instance<"controlView", &NSCell::controlView>();
    methods.instance<"setControlView:", &NSCell::setControlView>();
    methods.instance<"drawWithFrame:inView:", &NSCell::drawWithFrame_inView>();
    methods.instance<"drawInteriorWithFrame:inView:", &NSCell::drawInteriorWithFrame_inView>();
    methods.instance<"highlight:withFrame:inView:", &NSCell::highlight_withFrame_inView>();
    methods.classLevel<"prefersTrackingUntilMouseUp", &NSCell::prefersTrackingUntilMouseUp>();
    methods
        .instance<"trackMouse:inRect:ofView:untilMouseUp:", &NSCell::trackMouse_inRect_ofView_untilMouseUp>();
    methods.instance<"startTrackingAt:inView:", &NSCell::startTrackingAt_inView>();
    methods.instance<"continueTracking:at:inView:", &NSCell::continueTracking_at_inView>();
    methods.instance<"stopTracking:at:inView:mouseIsUp:", &NSCell::stopTracking_at_inView_mouseIsUp>();
    methods.instance<"getPeriodicDelay:interval:", &NSCell::getPeriodicDelay_interval>();
    methods.instance<"resetCursorRect:inView:", &NSCell::resetCursorRect_inView>();
    methods.instance<"setUpFieldEditorAttributes:", &NSCell::setUpFieldEditorAttributes>();
    methods.instance<"editWithFrame:inView:editor:delegate:event:",
                     &NSCell::editWithFrame_inView_editor_delegate_event>();
    methods.instance<"selectWithFrame:inView:editor:delegate:start:length:",
                     &NSCell::selectWithFrame_inView_editor_delegate_start_length>();
    methods.instance<"endEditing:", &NSCell::endEditing>();
}

// MARK: Creation

NSCell::NSCell() : _objectValue(u""_ns->copy()) {
    _values.actionEvents = static_cast<int>(NSLeftMouseUpMask);
}

Retained<NSCell> NSCell::init(Class* cls) { return make<NSCell>(cls); }

Retained<NSCell> NSCell::initTextCell(NSString* text, Class* cls) {
    auto cell = make<NSCell>(cls);
    cell->setTitle(text ? text : u""_ns);
    return cell;
}

Retained<NSCell> NSCell::initImageCell(NSImage* image, Class* cls) {
    auto cell = make<NSCell>(cls);
    cell->setType(NSImageCellType);
    cell->setImage(image);
    return cell;
}

Retained<Object> NSCell::copyWithZone(void*) {
    auto copy = make<NSCell>(isa());
    copy->takeProperties(this);
    return copy;
}

void NSCell::takeProperties(NSCell* other) {
    _values = other->_values;
    _objectValue = other->_objectValue;
    _image = other->_image;
    _font = other->_font;
    _representedObject = other->_representedObject;
    _textAttributes = other->_textAttributes;
}

// MARK: Value

void NSCell::setObjectValue(id value) {
    if (value == _objectValue) return;
    if (auto* string = cast<NSString>(value))
        _objectValue = string->copy();
    else
        _objectValue.set(value);
    changed();
}

namespace {

NSString* textOf(id value) {
    if (auto* string = cast<NSString>(value)) return string;
    if (!value || cast<NSImage>(value)) return u""_ns;
    if (auto* attributed = cast<NSAttributedString>(value)) return attributed->string();
    if (value->respondsToSelector("stringValue"_sel)) return send<NSString*>(value, "stringValue"_sel);
    return value->description();
}

}  // namespace

NSString* NSCell::stringValue() { return textOf(objectValue()); }

void NSCell::setStringValue(NSString* text) { setObjectValue(text); }

NSAttributedString* NSCell::attributedStringValue() {
    if (auto* attributed = cast<NSAttributedString>(objectValue())) return attributed;
    return NSAttributedString::initWithString_attributes(stringValue(), textAttributes()).autorelease();
}

void NSCell::setAttributedStringValue(NSAttributedString* text) {
    setObjectValue(text ? text->copy().get() : nullptr);
}

int NSCell::intValue() {
    id value = objectValue();
    auto* number = cast<NSNumber>(value);
    return number ? number->intValue() : stringValue()->intValue();
}

void NSCell::setIntValue(int value) { setObjectValue(NSNumber::numberWithInt(value)); }

void NSCell::setFloatValue(float value) { setObjectValue(NSNumber::numberWithFloat(value)); }

double NSCell::doubleValue() {
    id value = objectValue();
    auto* number = cast<NSNumber>(value);
    return number ? number->doubleValue() : stringValue()->doubleValue();
}

void NSCell::setDoubleValue(double value) { setObjectValue(NSNumber::numberWithDouble(value)); }

void NSCell::takeStringValueFrom(id sender) { setStringValue(send<NSString*>(sender, "stringValue"_sel)); }

void NSCell::takeObjectValueFrom(id sender) { setObjectValue(send<id>(sender, "objectValue"_sel)); }

void NSCell::takeIntValueFrom(id sender) { setIntValue(send<int>(sender, "intValue"_sel)); }

void NSCell::takeDoubleValueFrom(id sender) { setDoubleValue(send<double>(sender, "doubleValue"_sel)); }

NSComparisonResult NSCell::compare(id other) {
    auto* cell = cast<NSCell>(other);
    if (!cell) raiseBadArgument("compare:", "the other object is no cell");
    return stringValue()->compare(cell->stringValue());
}

void NSCell::setType(NSCellType type) {
    if (type == _values.type) return;
    _values.type = type;
    _objectValue = nullptr;
    if (type != NSImageCellType) _image = nullptr;
    if (type == NSTextCellType) _objectValue = u""_ns->copy();
    changed();
}

void NSCell::setImage(NSImage* image) {
    if (image == _image) return;
    _image.set(image);
    changed();
}

void NSCell::setRepresentedObject(id object) { _representedObject.set(object); }

// MARK: State and look

// Sets a property that shows.
template <class T>
void NSCell::setLook(T& value, T wanted) {
    if (value == wanted) return;
    value = wanted;
    lookChanged();
}

void NSCell::setState(int state) {
    const bool isMixed = state < 0 && _values.allowsMixedState;
    setLook(_values.state, int{isMixed ? NSMixedState : state ? NSOnState : NSOffState});
}

void NSCell::setAllowsMixedState(bool allows) {
    _values.allowsMixedState = allows;
    if (!allows && _values.state == NSMixedState) setState(NSOnState);
}

int NSCell::nextState() {
    if (_values.state == NSOnState) return NSOffState;
    return _values.allowsMixedState && _values.state == NSOffState ? NSMixedState : NSOnState;
}

void NSCell::setEnabled(bool isEnabled) { setLook(_values.isEnabled, isEnabled); }

void NSCell::setHighlighted(bool isHighlighted) { setLook(_values.isHighlighted, isHighlighted); }

void NSCell::setEditable(bool isEditable) {
    _values.isEditable = isEditable;
    if (isEditable) _values.isSelectable = true;
}

void NSCell::setSelectable(bool isSelectable) {
    _values.isSelectable = isSelectable;
    if (!isSelectable) _values.isEditable = false;
}

void NSCell::setShowsFirstResponder(bool shows) { setLook(_values.showsFirstResponder, shows); }

NSFont* NSCell::font() {
    return _font ? _font.get()
                 : NSFont::systemFontOfSize(NSFont::systemFontSizeForControlSize(_values.controlSize));
}

void NSCell::setFont(NSFont* font) { setLook(_font, Retained<NSFont>::retaining(font)); }

void NSCell::setControlSize(NSControlSize size) { setLook(_values.controlSize, size); }

void NSCell::setAlignment(NSTextAlignment alignment) { setLook(_values.alignment, alignment); }

void NSCell::setLineBreakMode(NSLineBreakMode mode) { setLook(_values.lineBreakMode, mode); }

void NSCell::setWraps(bool wraps) {
    if (wraps == this->wraps()) return;
    if (wraps) _values.isScrollable = false;
    setLineBreakMode(wraps ? NSLineBreakByWordWrapping : NSLineBreakByTruncatingTail);
}

void NSCell::setScrollable(bool isScrollable) {
    _values.isScrollable = isScrollable;
    if (isScrollable) setWraps(false);
}

void NSCell::setBaseWritingDirection(NSWritingDirection direction) {
    setLook(_values.baseWritingDirection, direction);
}

void NSCell::setBordered(bool isBordered) {
    if (isBordered) _values.isBezeled = false;
    setLook(_values.isBordered, isBordered);
}

void NSCell::setBezeled(bool isBezeled) {
    if (isBezeled) _values.isBordered = false;
    setLook(_values.isBezeled, isBezeled);
}

// MARK: Action

void NSCell::setTarget(id) {}

void NSCell::setAction(SEL) {}

void NSCell::setTag(int) {}

int NSCell::sendActionOn(int mask) { return std::exchange(_values.actionEvents, mask); }

bool NSCell::isContinuous() { return _values.actionEvents & static_cast<int>(NSPeriodicMask); }

void NSCell::setContinuous(bool isContinuous) {
    const int bit = static_cast<int>(NSPeriodicMask);
    _values.actionEvents = isContinuous ? _values.actionEvents | bit : _values.actionEvents & ~bit;
}

// MARK: Room

namespace {

constexpr float kVeryWide = 10000;

float borderOf(NSCell* cell) {
    if (cell->isBezeled()) return metrics::kFieldInset;
    return cell->isBordered() ? metrics::kLine : 0;
}

}  // namespace

NSSize NSCell::cellSize() { return cellSizeForBounds({{0, 0}, {kVeryWide, kVeryWide}}); }

NSSize NSCell::cellSizeForBounds(NSRect bounds) {
    const float border = 2 * borderOf(this);
    NSSize size{};
    if (_values.type == NSImageCellType) {
        if (_image) size = _image->size();
    } else {
        const float inset = 2 * metrics::kTextInset;
        size = sizeOfText_width(objectValue(), bounds.size.width - border - inset);
        size.width += inset;
    }
    return {std::ceil(size.width + border), std::ceil(size.height + border)};
}

NSRect NSCell::drawingRectForBounds(NSRect bounds) {
    const float border = borderOf(this);
    return NSInsetRect(bounds, border, border);
}

NSRect NSCell::titleRectForBounds(NSRect bounds) {
    return NSInsetRect(drawingRectForBounds(bounds), metrics::kTextInset, 0);
}

NSSize NSCell::sizeOfText_width(id text, float width) {
    if (!wraps()) width = kVeryWide;
    const NSSize limit{std::max(width, 1.0f), kVeryWide};
    constexpr auto kOptions = NSStringDrawingUsesLineFragmentOrigin | NSStringDrawingUsesFontLeading;
    NSSize size{};
    if (auto* attributed = cast<NSAttributedString>(text))
        size = boundingRectWithSize_options(attributed, limit, kOptions).size;
    else if (text)
        size = boundingRectWithSize_options_attributes(textOf(text), limit, kOptions, textAttributes()).size;
    return {size.width, std::max(size.height, font()->defaultLineHeightForFont())};
}

// MARK: Drawing

NSView* NSCell::controlView() { return cast<NSView>(_controlView.object().get()); }

void NSCell::setControlView(NSView* view) {
    if (view != controlView()) _controlView = WeakHandle(view);
}

void NSCell::changed() {
    NSView* view = controlView();
    if (auto* control = cast<NSControl>(view))
        control->updateCell(this);
    else if (view)
        view->setNeedsDisplay(true);
}

void NSCell::lookChanged() {
    _textAttributes = nullptr;
    changed();
}

NSColor* NSCell::effectiveTextColor() {
    if (!_values.isEnabled) return themeColor(ThemeColor::disabledText);
    return themeColor(_values.isHighlighted ? ThemeColor::textOnAccent : ThemeColor::text);
}

NSDictionary* NSCell::textAttributes() {
    if (!_textAttributes) {
        auto style = NSMutableParagraphStyle::init();
        style->setAlignment(_values.alignment);
        style->setLineBreakMode(_values.lineBreakMode);
        style->setBaseWritingDirection(_values.baseWritingDirection);
        auto attributes = NSMutableDictionary::init();
        attributes->setObject_forKey(font(), NSFontAttributeName);
        attributes->setObject_forKey(effectiveTextColor(), NSForegroundColorAttributeName);
        attributes->setObject_forKey(style, NSParagraphStyleAttributeName);
        _textAttributes = attributes->copy();
    }
    return _textAttributes;
}

void NSCell::drawWithFrame_inView(NSRect frame, NSView* view) {
    setControlView(view);
    if (_values.isBezeled) {
        fillRounded(frame, metrics::kCornerRadius,
                    _values.isEnabled ? ThemeColor::content : ThemeColor::window);
        strokeRounded(frame, metrics::kCornerRadius, metrics::kLine, ThemeColor::border);
    } else if (_values.isBordered) {
        strokeRect(frame, metrics::kLine, ThemeColor::border);
    }
    drawInteriorWithFrame_inView(frame, view);
}

void NSCell::drawInteriorWithFrame_inView(NSRect frame, NSView*) {
    if (_values.type == NSTextCellType) return drawText_inRect(objectValue(), titleRectForBounds(frame));
    if (!_image) return;
    const NSRect place = fittedImage(_image->size(), imageRectForBounds(frame), NSScaleProportionally);
    _image->drawInRect_fromRect_operation_fraction(place, NSZeroRect, NSCompositeSourceOver,
                                                   _values.isEnabled ? 1 : 0.4f);
}

void NSCell::drawText_inRect(id text, NSRect rect) {
    if (!text || NSIsEmptyRect(rect)) return;
    auto* attributed = cast<NSAttributedString>(text);
    if (!wraps())
        rect = lineRect(rect, attributed ? size(attributed).height : font()->defaultLineHeightForFont());
    if (attributed)
        drawInRect(attributed, rect);
    else
        drawInRect_withAttributes(textOf(text), rect, textAttributes());
}

NSRect NSCell::lineRect(NSRect rect, float height) {
    return {{rect.origin.x, std::floor(NSMidY(rect) - height / 2)}, {rect.size.width, std::ceil(height)}};
}

void NSCell::highlight_withFrame_inView(bool isHighlighted, NSRect frame, NSView* view) {
    setHighlighted(isHighlighted);
    drawWithFrame_inView(frame, view);
}

}  // namespace pelvor
