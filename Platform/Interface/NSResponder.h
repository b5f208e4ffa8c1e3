// SPDX-License-Identifier: Apache-2.0
// NSResponder: what takes events, or hands them to the next responder.
#pragma once

#include "Foundation/NSArray.h"
#include "Foundation/ObjectPrinting.h"

namespace pelvor {

class NSEvent;
class NSUndoManager;

/// What takes events and commands. Responders stand in a chain: a view hands what it does not take to its
/// superview, the last view to the window, the window to nobody. Subclasses override what they take:
///
///     void Canvas::keyDown(NSEvent* event) {
///         if (event->characters()->isEqual(u" "_ns)) return scrollPage();
///         Super::keyDown(event);                                       // the next responder may want it
///     }
///
/// Commands such as `moveLeft:` and `insertNewline:` are no operations of this class: who takes one has a
/// method of that name, with the sender as argument. Main thread.
class PELVOR_EXPORT NSResponder : public NSObject {
    PELVOR_CLASS(NSResponder, NSObject);

  public:
    // The chain. The next responder is not kept alive; a view has its superview or window set.

    NSResponder* nextResponder() { return _nextResponder; }
    virtual void setNextResponder(NSResponder* responder) { _nextResponder = responder; }

    // Being the first responder of a window, which gets the keys.

    /// No.
    virtual bool acceptsFirstResponder() { return false; }
    /// Called by `NSWindow::makeFirstResponder`; false refuses. The base allows both.
    virtual bool becomeFirstResponder() { return true; }
    virtual bool resignFirstResponder() { return true; }

    // Events. The base hands them to the next responder; a key press that nobody takes beeps.

    virtual void mouseDown(NSEvent* event);
    virtual void mouseDragged(NSEvent* event);
    virtual void mouseUp(NSEvent* event);
    virtual void rightMouseDown(NSEvent* event);
    virtual void rightMouseDragged(NSEvent* event);
    virtual void rightMouseUp(NSEvent* event);
    virtual void otherMouseDown(NSEvent* event);
    virtual void otherMouseDragged(NSEvent* event);
    virtual void otherMouseUp(NSEvent* event);
    virtual void mouseMoved(NSEvent* event);
    virtual void mouseEntered(NSEvent* event);
    virtual void mouseExited(NSEvent* event);
    virtual void cursorUpdate(NSEvent* event);
    virtual void scrollWheel(NSEvent* event);
    virtual void keyDown(NSEvent* event);
    virtual void keyUp(NSEvent* event);
    virtual void flagsChanged(NSEvent* event);
    /// Nobody has taken the event. The base beeps for `keyDown:`.
    virtual void noResponderFor(SEL selector);

    /// A key with the command key, or a function key, before it becomes a `keyDown`; true if the receiver has
    /// taken it. The base returns false.
    virtual bool performKeyEquivalent(NSEvent* event);

    // Keys as text and commands

    /// Makes `insertText`, `doCommandBySelector` or marked text of presses of keys, by way of dead keys,
    /// compose sequences, the input method and the table of key bindings (NSInputManager). The receiver may
    /// be called before this returns, or a moment later.
    virtual void interpretKeyEvents(NSArray* events);
    /// Text that was typed, a string or an attributed string. The base hands it to the next responder; if
    /// nobody takes it, the system beeps.
    virtual void insertText(id text);
    /// Does the command if the receiver has a method for it, else hands it to the next responder; if nobody
    /// has one, the system beeps. Null for the selector does nothing.
    virtual void doCommandBySelector(SEL selector);
    /// Sends the action, and returns true, if the receiver or a responder behind it has a method for it.
    virtual bool tryToPerform_with(SEL action, id argument);

    /// That of the next responder; a window asks its delegate, and makes one else.
    virtual NSUndoManager* undoManager();

  protected:
    NSResponder();
    ~NSResponder();

  private:
    void passOn(SEL selector, id argument);

    Unretained<NSResponder> _nextResponder = nullptr;
};

}  // namespace pelvor
