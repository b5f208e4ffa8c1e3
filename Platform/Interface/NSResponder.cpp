// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSResponder.h"

#include "Foundation/NSUndoManager.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSEvent.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSView.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSResponder, interfaceLibrary) {
    methods.instance<"nextResponder", &NSResponder::nextResponder>();
    methods.instance<"setNextResponder:", &NSResponder::setNextResponder>();
    methods.instance<"acceptsFirstResponder", &NSResponder::acceptsFirstResponder>();
    methods.instance<"becomeFirstResponder", &NSResponder::becomeFirstResponder>();
    methods.instance<"resignFirstResponder", &NSResponder::resignFirstResponder>();
    methods.instance<"mouseDown:", &NSResponder::mouseDown>();
    methods.instance<"mouseDragged:", &NSResponder::mouseDragged>();
    methods.instance<"mouseUp:", &NSResponder::mouseUp>();
    methods.instance<"rightMouseDown:", &NSResponder::rightMouseDown>();
    methods.instance<"rightMouseDragged:", &NSResponder::rightMouseDragged>();
    methods.instance<"rightMouseUp:", &NSResponder::rightMouseUp>();
    methods.instance<"otherMouseDown:", &NSResponder::otherMouseDown>();
    methods.instance<"otherMouseDragged:", &NSResponder::otherMouseDragged>();
    methods.instance<"otherMouseUp:", &NSResponder::otherMouseUp>();
    methods.instance<"mouseMoved:", &NSResponder::mouseMoved>();
    methods.instance<"mouseEntered:", &NSResponder::mouseEntered>();
    methods.instance<"mouseExited:", &NSResponder::mouseExited>();
    methods.instance<"cursorUpdate:", &NSResponder::cursorUpdate>();
    methods.instance<"scrollWheel:", &NSResponder::scrollWheel>();
    methods.instance<"keyDown:", &NSResponder::keyDown>();
    methods.instance<"keyUp:", &NSResponder::keyUp>();
    methods.instance<"flagsChanged:", &NSResponder::flagsChanged>();
    methods.instance<"noResponderFor:", &NSResponder::noResponderFor>();
    methods.instance<"performKeyEquivalent:", &NSResponder::performKeyEquivalent>();
    methods.instance<"interpretKeyEvents:", &NSResponder::interpretKeyEvents>();
    methods.instance<"insertText:", &NSResponder::insertText>();
    methods.instance<"doCommandBySelector:", &NSResponder::doCommandBySelector>();
    methods.instance<"tryToPerform:with:", &NSResponder::tryToPerform_with>();
    methods.instance<"undoManager", &NSResponder::undoManager>();
}

NSResponder::NSResponder() = default;
NSResponder::~NSResponder() = default;

// MARK: Events

// Sent as a message, so that methods of classes that are made while the program runs are found.
void NSResponder::passOn(SEL selector, id argument) {
    if (_nextResponder)
        send(_nextResponder, selector, argument);
    else
        noResponderFor(selector);
}

void NSResponder::mouseDown(NSEvent* event) { passOn("mouseDown:"_sel, event); }
void NSResponder::mouseDragged(NSEvent* event) { passOn("mouseDragged:"_sel, event); }
void NSResponder::mouseUp(NSEvent* event) { passOn("mouseUp:"_sel, event); }
void NSResponder::rightMouseDown(NSEvent* event) { passOn("rightMouseDown:"_sel, event); }
void NSResponder::rightMouseDragged(NSEvent* event) { passOn("rightMouseDragged:"_sel, event); }
void NSResponder::rightMouseUp(NSEvent* event) { passOn("rightMouseUp:"_sel, event); }
void NSResponder::otherMouseDown(NSEvent* event) { passOn("otherMouseDown:"_sel, event); }
void NSResponder::otherMouseDragged(NSEvent* event) { passOn("otherMouseDragged:"_sel, event); }
void NSResponder::otherMouseUp(NSEvent* event) { passOn("otherMouseUp:"_sel, event); }
void NSResponder::mouseMoved(NSEvent* event) { passOn("mouseMoved:"_sel, event); }
void NSResponder::mouseEntered(NSEvent* event) { passOn("mouseEntered:"_sel, event); }
void NSResponder::mouseExited(NSEvent* event) { passOn("mouseExited:"_sel, event); }
void NSResponder::cursorUpdate(NSEvent* event) { passOn("cursorUpdate:"_sel, event); }
void NSResponder::scrollWheel(NSEvent* event) { passOn("scrollWheel:"_sel, event); }
void NSResponder::keyDown(NSEvent* event) { passOn("keyDown:"_sel, event); }
void NSResponder::keyUp(NSEvent* event) { passOn("keyUp:"_sel, event); }
void NSResponder::flagsChanged(NSEvent* event) { passOn("flagsChanged:"_sel, event); }

void NSResponder::noResponderFor(SEL selector) {
    if (selector == "keyDown:"_sel) NSBeep();
}

bool NSResponder::performKeyEquivalent(NSEvent*) { return false; }

// MARK: Text and commands

void NSResponder::interpretKeyEvents(NSArray* events) {
    const auto held = Retained<NSResponder>::retaining(this);
    for (NSUInteger i = 0; events && i < events->count(); ++i)
        if (auto event = cast<NSEvent>(events->objectAtIndex(i)))
            NSInputManager::currentInputManager()->interpretKeyEvent_forClient(event, this);
}

void NSResponder::insertText(id text) {
    if (_nextResponder)
        send(_nextResponder, "insertText:"_sel, text);
    else
        NSBeep();
}

void NSResponder::doCommandBySelector(SEL selector) {
    if (!selector) return;
    if (respondsToSelector(selector))
        send(this, selector, id(nullptr));
    else if (_nextResponder)
        send(_nextResponder, "doCommandBySelector:"_sel, selector);
    else
        NSBeep();
}

bool NSResponder::tryToPerform_with(SEL action, id argument) {
    if (!action) return false;
    if (respondsToSelector(action)) {
        send(this, action, argument);
        return true;
    }
    return _nextResponder && send<bool>(_nextResponder, "tryToPerform:with:"_sel, action, argument);
}

NSUndoManager* NSResponder::undoManager() {
    return _nextResponder ? send<NSUndoManager*>(_nextResponder, "undoManager"_sel) : nullptr;
}

}  // namespace pelvor
