// SPDX-License-Identifier: Apache-2.0
// NSInputManager: makes text and commands of keys.
#pragma once

#include <vector>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSString.h"
#include "Interface/NSEvent.h"

namespace pelvor {

class NSResponder;
class NSWindow;
struct InputReply;

/// Makes text and commands of the keys that responders hand over by `interpretKeyEvents`. A key goes through
/// dead keys, compose sequences and the input method; what comes of it, at once or a moment later, is told to
/// the client (the responder that handed the key over, as long as its window has the same first responder):
///
/// - `insertText:` with the text that one or several keys gave;
/// - `setMarkedText:selectedRange:` with an attributed string that is being composed, where the client has
///   that method; an empty one ends it;
/// - `doCommandBySelector:` with each command that the table of key bindings has for a key that is no text;
///   `noop:` if there is none.
///
/// **Key bindings.** The table is a property list: a dictionary from keys to the name of a command or an
/// array of such names. A key is written as the character that it types, behind "^" for the control key, "~"
/// for Alt, "@" for Ctrl and "$" for Shift; keys that type nothing by their unit, such as \UF702 for the
/// arrow to the left. "@$\UF702" is Ctrl, Shift and that arrow.
///
///     NSInputManager::setKeyBindings(dictionary);   // { "@\UF702" = "moveToBeginningOfParagraph:"; }
///
/// Main thread.
class PELVOR_EXPORT NSInputManager final : public NSObject {
    PELVOR_CLASS(NSInputManager, NSObject);

  public:
    static NSInputManager* currentInputManager();

    /// Hands the press of a key on. Other events, and a null client, do nothing.
    void interpretKeyEvent_forClient(NSEvent* event, NSResponder* client);
    /// Half a compose sequence, and what an input method has begun, are given up.
    void abandonMarkedTextInWindow(NSWindow* window);
    /// The names of the commands for the press of a key; empty if there are none.
    NSArray* commandsForKeyEvent(NSEvent* event);

    /// The bindings of this library, those that `setKeyBindings` added or replaced among them.
    static NSDictionary* keyBindings();
    /// Adds bindings, and replaces those of the same keys; an empty array or string as the command takes a
    /// binding away. Raises NSInvalidArgumentException for a key that cannot be understood. Null restores the
    /// library's own.
    static void setKeyBindings(NSDictionary* bindings);

    // C++ only
    /// Keeps a reply of the back end until `deliverReplies`. Returns whether somebody has to call that.
    static bool take(NSWindow* window, InputReply reply);
    void deliverReplies();
    static void forget();

  private:
    NSInputManager();
    ~NSInputManager();
    struct State;
    id clientForWindow(NSWindow* window);

    std::unique_ptr<State> _state;
};

}  // namespace pelvor
