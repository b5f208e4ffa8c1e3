// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSTextField.h"

#include "Foundation/NSNotification.h"
#include "Foundation/NSNumber.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSEvent.h"
#include "Interface/NSText.h"
#include "Interface/NSWindow.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTextField, interfaceLibrary) {
    methods.creator<"initWithFrame:", &NSTextField::initWithFrame>();
    methods.classLevel<"cellClass", &NSTextField::cellClass>();
    methods.instance<"delegate", &NSTextField::delegate>();
    methods.instance<"setDelegate:", &NSTextField::setDelegate>();
    methods.instance<"isEditable", &NSTextField::isEditable>();
    methods.instance<"setEditable:", &NSTextField::setEditable>();
    methods.instance<"isSelectable", &NSTextField::isSelectable>();
    methods.instance<"setSelectable:", &NSTextField::setSelectable>();
    methods.instance<"isBezeled", &NSTextField::isBezeled>();
    methods.instance<"setBezeled:", &NSTextField::setBezeled>();
    methods.instance<"isBordered", &NSTextField::isBordered>();
    methods.instance<"setBordered:", &NSTextField::setBordered>();
    methods.instance<"textColor", &NSTextField::textColor>();
    methods.instance<"setTextColor:", &NSTextField::setTextColor>();
    methods.instance<"backgroundColor", &NSTextField::backgroundColor>();
    methods.instance<"setBackgroundColor:", &NSTextField::setBackgroundColor>();
    methods.instance<"drawsBackground", &NSTextField::drawsBackground>();
    methods.instance<"setDrawsBackground:", &NSTextField::setDrawsBackground>();
    methods.instance<"selectText:", &NSTextField::selectText>();
    methods.instance<"textShouldBeginEditing:", &NSTextField::textShouldBeginEditing>();
    methods.instance<"textShouldEndEditing:", &NSTextField::textShouldEndEditing>();
    methods.instance<"textDidBeginEditing:", &NSTextField::textDidBeginEditing>();
    methods.instance<"textDidChange:", &NSTextField::textDidChange>();
    methods.instance<"textDidEndEditing:", &NSTextField::textDidEndEditing>();
    methods.instance<"textView:doCommandBySelector:", &NSTextField::textView_doCommandBySelector>();
}

Retained<NSTextField> NSTextField::initWithFrame(NSRect frame, Class* cls) {
    auto field = cast<NSTextField>(NSControl::initWithFrame(frame, cls));
    if (NSTextFieldCell* cell = field->fieldCell()) {
        cell->setEditable(true);
        cell->setBezeled(true);
        cell->setDrawsBackground(true);
        cell->setScrollable(true);
    }
    return field;
}

// MARK: Properties

bool NSTextField::isEditable() { return cell() && cell()->isEditable(); }

void NSTextField::setEditable(bool isEditable) {
    if (cell()) cell()->setEditable(isEditable);
}

bool NSTextField::isSelectable() { return cell() && cell()->isSelectable(); }

void NSTextField::setSelectable(bool isSelectable) {
    if (cell()) cell()->setSelectable(isSelectable);
}

bool NSTextField::isBezeled() { return cell() && cell()->isBezeled(); }

void NSTextField::setBezeled(bool isBezeled) {
    if (cell()) cell()->setBezeled(isBezeled);
}

bool NSTextField::isBordered() { return cell() && cell()->isBordered(); }

void NSTextField::setBordered(bool isBordered) {
    if (cell()) cell()->setBordered(isBordered);
}

NSColor* NSTextField::textColor() { return fieldCell() ? fieldCell()->textColor() : nullptr; }

void NSTextField::setTextColor(NSColor* color) {
    if (auto* cell = fieldCell()) cell->setTextColor(color);
}

NSColor* NSTextField::backgroundColor() { return fieldCell() ? fieldCell()->backgroundColor() : nullptr; }

void NSTextField::setBackgroundColor(NSColor* color) {
    if (auto* cell = fieldCell()) cell->setBackgroundColor(color);
}

bool NSTextField::drawsBackground() { return fieldCell() && fieldCell()->drawsBackground(); }

void NSTextField::setDrawsBackground(bool draws) {
    if (auto* cell = fieldCell()) cell->setDrawsBackground(draws);
}

// MARK: Editing

void NSTextField::selectText(id) {
    const auto self = Retained<NSTextField>::retaining(this);
    const auto cell = Retained<NSCell>::retaining(this->cell());
    if (!window() || !cell || !cell->isSelectable() || !isEnabled()) return;
    if (NSText* editor = currentEditor()) return editor->setSelectedRange({0, editor->string()->length()});
    NSText* editor = window()->fieldEditor_forObject(true, this);
    const auto length = static_cast<int>(cell->stringValue()->length());
    cell->selectWithFrame_inView_editor_delegate_start_length(bounds(), this, editor, this, 0, length);
}

bool NSTextField::acceptsFirstResponder() { return isSelectable() && NSControl::acceptsFirstResponder(); }

// The field editor becomes the first responder in the place of the field.
bool NSTextField::becomeFirstResponder() {
    selectText(this);
    return true;
}

void NSTextField::mouseDown(NSEvent* event) {
    if (!event || !isEnabled()) return;
    if (!isSelectable()) return NSControl::mouseDown(event);
    if (!currentEditor()) selectText(this);
    if (const auto editor = Retained<NSText>::retaining(currentEditor())) editor->mouseDown(event);
}

void NSTextField::drawRect(NSRect dirty) {
    NSText* editor = currentEditor();
    if (!editor || !cell()) return NSControl::drawRect(dirty);
    // The editor draws the text.
    const auto shown = cell()->copy();
    shown->setStringValue(u" "_ns);
    shown->setShowsFirstResponder(true);
    shown->drawWithFrame_inView(bounds(), this);
    shown->setControlView(nullptr);
}

template <class... Arguments>
bool NSTextField::delegateAllows(SEL question, Arguments... arguments) {
    const auto delegate = _delegate.object();
    return !delegate || !delegate->respondsToSelector(question) ||
           send<bool>(delegate, question, this, arguments...);
}

bool NSTextField::textShouldBeginEditing(NSText* text) {
    return isEditable() && delegateAllows("control:textShouldBeginEditing:"_sel, text);
}

bool NSTextField::textShouldEndEditing(NSText* text) {
    return delegateAllows("control:textShouldEndEditing:"_sel, text);
}

void NSTextField::textDidBeginEditing(NSNotification* notification) {
    auto* editor = notification ? cast<NSText>(notification->object()) : nullptr;
    if (editor)
        tellEditing(NSControlTextDidBeginEditingNotification, "controlTextDidBeginEditing:"_sel, editor,
                    delegate());
}

void NSTextField::textDidChange(NSNotification* notification) {
    auto* editor = notification ? cast<NSText>(notification->object()) : nullptr;
    if (editor)
        tellEditing(NSControlTextDidChangeNotification, "controlTextDidChange:"_sel, editor, delegate());
}

void NSTextField::textDidEndEditing(NSNotification* notification) {
    const auto editor =
        Retained<NSText>::retaining(notification ? cast<NSText>(notification->object()) : nullptr);
    if (!editor || editor != currentEditor()) return;
    const auto self = Retained<NSTextField>::retaining(this);
    auto* number = notification->userInfo()
                       ? cast<NSNumber>(notification->userInfo()->objectForKey(u"NSTextMovement"_ns))
                       : nullptr;
    const int movement = number ? number->intValue() : NSIllegalTextMovement;
    if (movement != NSCancelTextMovement) validateEditing();
    dropEditor(cell(), editor);
    tellEditing(NSControlTextDidEndEditingNotification, "controlTextDidEndEditing:"_sel, editor, delegate());
    if (movement == NSReturnTextMovement) sendAction_to(action(), target());
    const auto window = Retained<NSWindow>::retaining(this->window());
    const auto hasKeys = [&] {
        return window && this->window() == window && window->firstResponder() == window;
    };
    if (!hasKeys()) return;  // somebody has taken the keys
    if (movement == NSReturnTextMovement || movement == NSCancelTextMovement) {
        // A key that does nothing else here may be a button's.
        NSEvent* event = window->currentEvent();
        if (!(movement == NSReturnTextMovement && action()) && event && event->type() == NSKeyDown)
            window->performKeyEquivalent(event);
        if (hasKeys()) selectText(this);
    } else if (movement == NSTabTextMovement)
        window->selectKeyViewFollowingView(this);
    else if (movement == NSBacktabTextMovement)
        window->selectKeyViewPrecedingView(this);
}

bool NSTextField::textView_doCommandBySelector(NSText* text, SEL command) {
    const auto delegate = _delegate.object();
    const SEL question = "control:textView:doCommandBySelector:"_sel;
    return delegate && delegate->respondsToSelector(question) &&
           send<bool>(delegate, question, this, text, command);
}

}  // namespace pelvor
