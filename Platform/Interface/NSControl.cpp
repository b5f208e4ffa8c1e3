// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSControl.h"

#include "Foundation/NSNotificationCenter.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSActionCell.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSText.h"
#include "Interface/NSWindow.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSControl, interfaceLibrary) {
    methods.creator<"initWithFrame:", &NSControl::initWithFrame>();
    methods.classLevel<"cellClass", &NSControl::cellClass>();
    methods.instance<"cell", &NSControl::cell>();
    methods.instance<"setCell:", &NSControl::setCell>();
    methods.instance<"selectedCell", &NSControl::selectedCell>();
    methods.instance<"selectedTag", &NSControl::selectedTag>();
    methods.instance<"updateCell:", &NSControl::updateCell>();
    methods.instance<"sizeToFit", &NSControl::sizeToFit>();
    methods.instance<"isEnabled", &NSControl::isEnabled>();
    methods.instance<"setEnabled:", &NSControl::setEnabled>();
    methods.instance<"target", &NSControl::target>();
    methods.instance<"setTarget:", &NSControl::setTarget>();
    methods.instance<"action", &NSControl::action>();
    methods.instance<"setAction:", &NSControl::setAction>();
    methods.instance<"setTag:", &NSControl::setTag>();
    methods.instance<"sendActionOn:", &NSControl::sendActionOn>();
    methods.instance<"isContinuous", &NSControl::isContinuous>();
    methods.instance<"setContinuous:", &NSControl::setContinuous>();
    methods.instance<"ignoresMultiClick", &NSControl::ignoresMultiClick>();
    methods.instance<"setIgnoresMultiClick:", &NSControl::setIgnoresMultiClick>();
    methods.instance<"refusesFirstResponder", &NSControl::refusesFirstResponder>();
    methods.instance<"setRefusesFirstResponder:", &NSControl::setRefusesFirstResponder>();
    methods.instance<"font", &NSControl::font>();
    methods.instance<"setFont:", &NSControl::setFont>();
    methods.instance<"alignment", &NSControl::alignment>();
    methods.instance<"setAlignment:", &NSControl::setAlignment>();
    methods.instance<"baseWritingDirection", &NSControl::baseWritingDirection>();
    methods.instance<"setBaseWritingDirection:", &NSControl::setBaseWritingDirection>();
    methods.instance<"objectValue", &NSControl::objectValue>();
    methods.instance<"setObjectValue:", &NSControl::setObjectValue>();
    methods.instance<"stringValue", &NSControl::stringValue>();
    methods.instance<"setStringValue:", &NSControl::setStringValue>();
    methods.instance<"attributedStringValue", &NSControl::attributedStringValue>();
    methods.instance<"setAttributedStringValue:", &NSControl::setAttributedStringValue>();
    methods.instance<"intValue", &NSControl::intValue>();
    methods.instance<"setIntValue:", &NSControl::setIntValue>();
    methods.instance<"floatValue", &NSControl::floatValue>();
    methods.instance<"setFloatValue:", &NSControl::setFloatValue>();
    methods.instance<"doubleValue", &NSControl::doubleValue>();
    methods.instance<"setDoubleValue:", &NSControl::setDoubleValue>();
    methods.instance<"takeStringValueFrom:", &NSControl::takeStringValueFrom>();
    methods.instance<"takeObjectValueFrom:", &NSControl::takeObjectValueFrom>();
    methods.instance<"takeIntValueFrom:", &NSControl::takeIntValueFrom>();
    methods.instance<"takeDoubleValueFrom:", &NSControl::takeDoubleValueFrom>();
    methods.instance<"sendAction:to:", &NSControl::sendAction_to>();
    methods.instance<"performClick:", &NSControl::performClick>();
    methods.instance<"currentEditor", &NSControl::currentEditor>();
    methods.instance<"abortEditing", &NSControl::abortEditing>();
    methods.instance<"validateEditing", &NSControl::validateEditing>();
}

Retained<NSControl> NSControl::initWithFrame(NSRect frame, Class* cls) {
    auto control = cast<NSControl>(NSView::initWithFrame(frame, cls));
    auto* cellClass = asClass(send<id>(cls, "cellClass"_sel));
    if (!control->cell() && cellClass) control->setCell(cast<NSCell>(send<id>(cellClass, "init"_sel)));
    return control;
}

NSControl::~NSControl() {
    if (_cell) _cell->setControlView(nullptr);
}

Class* NSControl::cellClass() { return NSActionCell::classObject(); }

void NSControl::setCell(NSCell* cell) {
    if (_cell) _cell->setControlView(nullptr);
    _cell.set(cell);
    if (_cell) _cell->setControlView(this);
    setNeedsDisplay(true);
}

int NSControl::selectedTag() {
    NSCell* cell = selectedCell();
    return cell ? cell->tag() : -1;
}

void NSControl::updateCell(NSCell* cell) {
    if (cell == _cell) setNeedsDisplay(true);
}

void NSControl::sizeToFit() {
    if (_cell) setFrameSize(_cell->cellSize());
}

// MARK: What the cell has

bool NSControl::isEnabled() { return !_cell || _cell->isEnabled(); }

void NSControl::setEnabled(bool isEnabled) {
    if (!_cell) return;
    _cell->setEnabled(isEnabled);
    NSWindow* window = this->window();
    if (!isEnabled && window && window->firstResponder() == this) window->makeFirstResponder(nullptr);
}

id NSControl::target() { return _cell ? _cell->target() : nullptr; }

void NSControl::setTarget(id target) {
    if (_cell) _cell->setTarget(target);
}

SEL NSControl::action() { return _cell ? _cell->action() : SEL(); }

void NSControl::setAction(SEL action) {
    if (_cell) _cell->setAction(action);
}

NSInteger NSControl::tag() { return _cell ? _cell->tag() : -1; }

void NSControl::setTag(int tag) {
    if (_cell) _cell->setTag(tag);
}

int NSControl::sendActionOn(int mask) { return _cell ? _cell->sendActionOn(mask) : 0; }

bool NSControl::isContinuous() { return _cell && _cell->isContinuous(); }

void NSControl::setContinuous(bool isContinuous) {
    if (_cell) _cell->setContinuous(isContinuous);
}

bool NSControl::refusesFirstResponder() { return _cell && _cell->refusesFirstResponder(); }

void NSControl::setRefusesFirstResponder(bool refuses) {
    if (_cell) _cell->setRefusesFirstResponder(refuses);
}

NSFont* NSControl::font() { return _cell ? _cell->font() : nullptr; }

void NSControl::setFont(NSFont* font) {
    if (_cell) _cell->setFont(font);
}

NSTextAlignment NSControl::alignment() { return _cell ? _cell->alignment() : NSNaturalTextAlignment; }

void NSControl::setAlignment(NSTextAlignment alignment) {
    if (_cell) _cell->setAlignment(alignment);
}

NSWritingDirection NSControl::baseWritingDirection() {
    return _cell ? _cell->baseWritingDirection() : NSWritingDirectionNatural;
}

void NSControl::setBaseWritingDirection(NSWritingDirection direction) {
    if (_cell) _cell->setBaseWritingDirection(direction);
}

// MARK: Value

id NSControl::objectValue() {
    validateEditing();
    return _cell ? _cell->objectValue() : nullptr;
}

template <auto set, class Value>
void NSControl::setValue(Value value) {
    if (!_cell) return;
    (_cell.get()->*set)(value);
    const auto editor = Retained<NSText>::retaining(currentEditor());
    if (!editor || selectedCell() != _cell) return;
    NSString* text = _cell->stringValue();
    if (editor->string()->isEqualToString(text)) return;
    editor->setString(text);
    editor->setSelectedRange({editor->string()->length(), 0});
}

void NSControl::setObjectValue(id value) { setValue<&NSCell::setObjectValue>(value); }

NSString* NSControl::stringValue() {
    validateEditing();
    return _cell ? _cell->stringValue() : u""_ns;
}

void NSControl::setStringValue(NSString* text) { setValue<&NSCell::setStringValue>(text); }

NSAttributedString* NSControl::attributedStringValue() {
    validateEditing();
    return _cell ? _cell->attributedStringValue() : nullptr;
}

void NSControl::setAttributedStringValue(NSAttributedString* text) {
    setValue<&NSCell::setAttributedStringValue>(text);
}

int NSControl::intValue() {
    validateEditing();
    return _cell ? _cell->intValue() : 0;
}

void NSControl::setIntValue(int value) { setValue<&NSCell::setIntValue>(value); }

float NSControl::floatValue() { return static_cast<float>(doubleValue()); }

void NSControl::setFloatValue(float value) { setValue<&NSCell::setFloatValue>(value); }

double NSControl::doubleValue() {
    validateEditing();
    return _cell ? _cell->doubleValue() : 0;
}

void NSControl::setDoubleValue(double value) { setValue<&NSCell::setDoubleValue>(value); }

void NSControl::takeStringValueFrom(id sender) { setValue<&NSCell::takeStringValueFrom>(sender); }

void NSControl::takeObjectValueFrom(id sender) { setValue<&NSCell::takeObjectValueFrom>(sender); }

void NSControl::takeIntValueFrom(id sender) { setValue<&NSCell::takeIntValueFrom>(sender); }

void NSControl::takeDoubleValueFrom(id sender) { setValue<&NSCell::takeDoubleValueFrom>(sender); }

// MARK: Editing

NSText* NSControl::currentEditor() {
    NSText* editor = window() ? window()->fieldEditor_forObject(false, this) : nullptr;
    return editor && editor->delegate() == this && editor->isDescendantOf(this) ? editor : nullptr;
}

bool NSControl::abortEditing() {
    const auto editor = Retained<NSText>::retaining(currentEditor());
    if (editor) dropEditor(selectedCell(), editor);
    return editor != nullptr;
}

void NSControl::validateEditing() {
    NSText* editor = currentEditor();
    if (editor && selectedCell()) selectedCell()->setStringValue(editor->string()->copy().get());
}

void NSControl::tellEditing(NSString* notification, SEL message, NSText* editor, id delegate) {
    const auto self = Retained<NSControl>::retaining(this);
    const auto receiver = Retained<Object>::retaining(delegate);
    NSNotification* note = NSNotification::notificationWithName_object_userInfo(
        notification, this, NSDictionary::of({{u"NSFieldEditor"_ns, editor}}));
    NSNotificationCenter::defaultCenter()->postNotification(note);
    if (receiver && receiver->respondsToSelector(message)) send(receiver, message, note);
}

void NSControl::dropEditor(NSCell* cell, NSText* editor) {
    const auto self = Retained<NSControl>::retaining(this);
    editor->setDelegate(nullptr);
    if (window() && window()->firstResponder() == editor) window()->makeFirstResponder(nullptr);
    if (cell) cell->endEditing(editor);
    setNeedsDisplay(true);
}

// MARK: Action and events

bool NSControl::sendAction_to(SEL action, id target) {
    return action && NSApplication::sharedApplication()->sendAction_to_from(action, target, this);
}

void NSControl::performClick(id sender) {
    if (const auto cell = Retained<NSCell>::retaining(_cell)) cell->performClick(sender);
}

bool NSControl::isOpaque() { return _cell && _cell->isOpaque(); }

void NSControl::drawRect(NSRect) {
    if (const auto cell = Retained<NSCell>::retaining(_cell)) cell->drawWithFrame_inView(bounds(), this);
}

namespace {

// Draws the cell pressed as long as the object lives.
class Pressed {
  public:
    explicit Pressed(NSCell* cell) : _cell(Retained<NSCell>::retaining(cell)) { _cell->setHighlighted(true); }
    ~Pressed() { _cell->setHighlighted(false); }
    Pressed(const Pressed&) = delete;
    Pressed& operator=(const Pressed&) = delete;

  private:
    Retained<NSCell> _cell;
};

}  // namespace

void NSControl::mouseDown(NSEvent* event) {
    const auto self = Retained<NSControl>::retaining(this);
    const auto cell = Retained<NSCell>::retaining(selectedCell());
    if (!event || !cell || !isEnabled() || (_ignoresMultiClick && event->clickCount() > 1)) return;
    const bool untilMouseUp = send<bool>(cell->isa(), "prefersTrackingUntilMouseUp"_sel);
    auto current = Retained<NSEvent>::retaining(event);
    while (current && current->type() != NSLeftMouseUp && window()) {
        if (mouse_inRect(convertPoint_fromView(current->locationInWindow(), nullptr), bounds())) {
            const Pressed pressed(cell);
            if (cell->trackMouse_inRect_ofView_untilMouseUp(current, bounds(), this, untilMouseUp)) return;
        }
        if (!window()) return;
        current.set(window()->nextEventMatchingMask(NSLeftMouseUpMask | NSLeftMouseDraggedMask));
    }
}

void NSControl::resetCursorRects() {
    if (_cell) _cell->resetCursorRect_inView(bounds(), this);
}

bool NSControl::isInMouseDown() {
    NSEvent* event = NSApp() ? NSApp()->currentEvent() : nullptr;
    return event && event->type() == NSLeftMouseDown;
}

bool NSControl::acceptsFirstResponder() { return _cell && _cell->acceptsFirstResponder(); }

bool NSControl::becomeFirstResponder() {
    if (_cell) _cell->setShowsFirstResponder(true);
    return true;
}

bool NSControl::resignFirstResponder() {
    if (_cell) _cell->setShowsFirstResponder(false);
    return true;
}

}  // namespace pelvor
