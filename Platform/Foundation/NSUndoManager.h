// SPDX-License-Identifier: Apache-2.0
// NSUndoManager: remembers how to take back what was done.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "Foundation/NSString.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class NSArray;
struct UndoGroup;

// Posted by an undo manager, which is the sender.

/// Before a group is opened or closed, and when somebody asks whether there is something to redo.
inline constexpr NSString* NSUndoManagerCheckpointNotification = u"NSUndoManagerCheckpointNotification"_ns;
inline constexpr NSString* NSUndoManagerDidOpenUndoGroupNotification =
    u"NSUndoManagerDidOpenUndoGroupNotification"_ns;
inline constexpr NSString* NSUndoManagerWillCloseUndoGroupNotification =
    u"NSUndoManagerWillCloseUndoGroupNotification"_ns;
inline constexpr NSString* NSUndoManagerWillUndoChangeNotification =
    u"NSUndoManagerWillUndoChangeNotification"_ns;
inline constexpr NSString* NSUndoManagerDidUndoChangeNotification =
    u"NSUndoManagerDidUndoChangeNotification"_ns;
inline constexpr NSString* NSUndoManagerWillRedoChangeNotification =
    u"NSUndoManagerWillRedoChangeNotification"_ns;
inline constexpr NSString* NSUndoManagerDidRedoChangeNotification =
    u"NSUndoManagerDidRedoChangeNotification"_ns;

/// Remembers how to take back what was done: whoever changes something registers the message that changes it
/// back.
///
///     void Lamp::setLevel(NSNumber* level) {
///         undo->registerUndoWithTarget_selector_object(this, "setLevel:"_sel, _level);
///         undo->setActionName(u"Dimming"_ns);
///         _level.set(level);
///     }
///     …
///     undo->undo();    // sends setLevel: with the old level, which registers what `redo` does
///
/// What is registered while the run loop handles one event is one group, which one `undo` takes back. Targets
/// are not kept alive, and a message to one that has ended is left out; arguments are kept. One thread.
class PELVOR_EXPORT NSUndoManager : public NSObject {
    PELVOR_CLASS(NSUndoManager, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<NSUndoManager> init(Class* cls = classObject());

    // Registering

    /// Remembers the message. Raises NSInvalidArgumentException if target or selector is null, and
    /// NSInternalInconsistencyException if no group is open and groups are not made by event.
    void registerUndoWithTarget_selector_object(id target, SEL selector, id object);
    /// Returns an object that remembers the next message that it gets, for the target, which must have a
    /// method for it.
    id prepareWithInvocationTarget(id target);
    /// Calls nest. While registration is disabled, what is registered is forgotten.
    void disableUndoRegistration();
    void enableUndoRegistration();
    bool isUndoRegistrationEnabled() { return _disabled == 0; }

    // Groups

    /// Groups nest; what is registered in an inner group belongs to the outer one when it is closed.
    void beginUndoGrouping();
    /// Raises NSInternalInconsistencyException if no group is open.
    void endUndoGrouping();
    NSUInteger groupingLevel() { return static_cast<NSUInteger>(_open.size()); }
    /// Whether the first registration of a turn of the run loop opens a group that the turn closes. True.
    bool groupsByEvent() { return _groupsByEvent; }
    void setGroupsByEvent(bool groups) { _groupsByEvent = groups; }
    /// The modes of the run loop in which it does.
    NSArray* runLoopModes();
    void setRunLoopModes(NSArray* modes);
    /// How many groups are kept; 0 for all.
    NSUInteger levelsOfUndo() { return _levels; }
    void setLevelsOfUndo(NSUInteger levels);

    // Undoing. These do nothing without a group to take back, and raise NSInternalInconsistencyException
    // while a group is open that was not made by event.

    void undo();
    void redo();
    bool canUndo();
    bool canRedo();
    bool isUndoing() { return _phase == Phase::undoing; }
    bool isRedoing() { return _phase == Phase::redoing; }
    void removeAllActions();
    void removeAllActionsWithTarget(id target);

    // Names

    /// Of the group that `undo` or `redo` takes back; "" if it has none.
    NSString* undoActionName();
    NSString* redoActionName();
    /// Names the open group, or the last one.
    void setActionName(NSString* name);
    /// "Undo Dimming", in the user's language.
    NSString* undoMenuItemTitle();
    NSString* redoMenuItemTitle();

    // C++ only
    /// Remembers a call, which is left out once the target has ended.
    void registerUndo(id target, std::function<void()> undo);
    /// Remembers an invocation for the proxy of `prepareWithInvocationTarget`.
    void registerInvocation(id target, NSInvocation* invocation);
    /// Names the state that `undo` would leave: the same number as before where groups were undone and
    /// redone. 0 where there is nothing to undo. An open group does not count.
    std::uint64_t stateNumber();
    /// Closes the group that the turn has opened.
    void closeGroupOfEvent();

  protected:
    NSUndoManager();
    ~NSUndoManager();

  private:
    enum class Phase { idle, undoing, redoing };
    using Groups = std::vector<std::unique_ptr<UndoGroup>>;

    void add(id target, std::function<void()> call, const char* operation);
    void post(NSString* name);
    void requireNoOpenGroup(const char* operation);
    void perform(Phase phase, Groups& from, const char* operation);
    Groups& stackOfPhase() { return _phase == Phase::undoing ? _redone : _undone; }

    std::vector<std::unique_ptr<UndoGroup>> _open;
    Groups _undone;  // what `undo` takes back, the last one first
    Groups _redone;
    Retained<NSArray> _modes;
    NSUInteger _levels = 0;
    int _disabled = 0;
    Phase _phase = Phase::idle;
    bool _groupsByEvent = true;
    bool _hasGroupOfEvent = false;
};

}  // namespace pelvor
