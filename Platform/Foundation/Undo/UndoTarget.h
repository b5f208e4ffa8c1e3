// SPDX-License-Identifier: Apache-2.0
// What an undo manager hands out and what calls it back.
#pragma once

#include "Foundation/NSString.h"
#include "Runtime/NSProxy.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class NSUndoManager;

/// Remembers the message that it gets with an undo manager, for the target.
class UndoTarget final : public NSProxy {
    PELVOR_CLASS(UndoTarget, NSProxy);

  public:
    static Retained<UndoTarget> create(NSUndoManager* manager, id target);
    NSMethodSignature* methodSignatureForSelector(SEL selector) override;
    void forwardInvocation(NSInvocation* invocation) override;

  private:
    UndoTarget() = default;
    ~UndoTarget() = default;
    Retained<Object> _manager;
    Retained<Object> _target;
};

/// Closes an undo manager's group at the end of a turn of the run loop, if the manager is still there.
class UndoGroupCloser final : public NSObject {
    PELVOR_CLASS(UndoGroupCloser, NSObject);

  public:
    static Retained<UndoGroupCloser> create(NSUndoManager* manager);
    void _closeGroupOfEvent();

  private:
    UndoGroupCloser() = default;
    ~UndoGroupCloser() = default;
    WeakHandle _manager;
};

/// "Undo Dimming" in the user's language; `verb` is "Undo" or "Redo".
NSString* undoTitle(NSString* verb, NSString* actionName);

}  // namespace pelvor
