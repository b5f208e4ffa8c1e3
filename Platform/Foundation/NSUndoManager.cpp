// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSUndoManager.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/Undo/UndoTarget.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/NSInvocation.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSUndoManager, foundationLibrary) {
    methods.creator<"init", &NSUndoManager::init>();
    methods.instance<"registerUndoWithTarget:selector:object:",
                     &NSUndoManager::registerUndoWithTarget_selector_object>();
    methods.instance<"prepareWithInvocationTarget:", &NSUndoManager::prepareWithInvocationTarget>();
    methods.instance<"disableUndoRegistration", &NSUndoManager::disableUndoRegistration>();
    methods.instance<"enableUndoRegistration", &NSUndoManager::enableUndoRegistration>();
    methods.instance<"isUndoRegistrationEnabled", &NSUndoManager::isUndoRegistrationEnabled>();
    methods.instance<"beginUndoGrouping", &NSUndoManager::beginUndoGrouping>();
    methods.instance<"endUndoGrouping", &NSUndoManager::endUndoGrouping>();
    methods.instance<"groupingLevel", &NSUndoManager::groupingLevel>();
    methods.instance<"groupsByEvent", &NSUndoManager::groupsByEvent>();
    methods.instance<"setGroupsByEvent:", &NSUndoManager::setGroupsByEvent>();
    methods.instance<"runLoopModes", &NSUndoManager::runLoopModes>();
    methods.instance<"setRunLoopModes:", &NSUndoManager::setRunLoopModes>();
    methods.instance<"levelsOfUndo", &NSUndoManager::levelsOfUndo>();
    methods.instance<"setLevelsOfUndo:", &NSUndoManager::setLevelsOfUndo>();
    methods.instance<"undo", &NSUndoManager::undo>();
    methods.instance<"redo", &NSUndoManager::redo>();
    methods.instance<"canUndo", &NSUndoManager::canUndo>();
    methods.instance<"canRedo", &NSUndoManager::canRedo>();
    methods.instance<"isUndoing", &NSUndoManager::isUndoing>();
    methods.instance<"isRedoing", &NSUndoManager::isRedoing>();
    methods.instance<"removeAllActions", &NSUndoManager::removeAllActions>();
    methods.instance<"removeAllActionsWithTarget:", &NSUndoManager::removeAllActionsWithTarget>();
    methods.instance<"undoActionName", &NSUndoManager::undoActionName>();
    methods.instance<"redoActionName", &NSUndoManager::redoActionName>();
    methods.instance<"setActionName:", &NSUndoManager::setActionName>();
    methods.instance<"undoMenuItemTitle", &NSUndoManager::undoMenuItemTitle>();
    methods.instance<"redoMenuItemTitle", &NSUndoManager::redoMenuItemTitle>();
}

struct UndoAction {
    WeakHandle target;
    Unretained<Object> address = nullptr;  // of the target, only to be compared
    std::function<void()> call;
};

struct UndoGroup {
    std::vector<UndoAction> actions;
    Retained<NSString> name;
    std::uint64_t number = nextNumber();  // of the state behind the group

    static std::uint64_t nextNumber() {
        static std::atomic<std::uint64_t> last{0};
        return ++last;
    }
};

namespace {

constexpr std::uint32_t kCloseOrdering = 350'000;

// Forgets the oldest groups. Objects that end with them may call the manager, which has only the rest then.
void drop(std::vector<std::unique_ptr<UndoGroup>>& groups, std::size_t count) {
    const auto end = groups.begin() + static_cast<std::ptrdiff_t>(count);
    const std::vector<std::unique_ptr<UndoGroup>> dropped(std::make_move_iterator(groups.begin()),
                                                          std::make_move_iterator(end));
    groups.erase(groups.begin(), end);
}

void drop(std::vector<std::unique_ptr<UndoGroup>>& groups) { drop(groups, groups.size()); }

}  // namespace

NSUndoManager::NSUndoManager() = default;

NSUndoManager::~NSUndoManager() = default;

Retained<NSUndoManager> NSUndoManager::init(Class* cls) {
    auto manager = make<NSUndoManager>(cls);
    manager->_modes.set(NSArray::arrayWithObject(NSRunLoopCommonModes));
    return manager;
}

void NSUndoManager::post(NSString* name) {
    NSNotificationCenter::defaultCenter()->postNotificationName_object(name, this);
}

// MARK: Registering

void NSUndoManager::add(id target, std::function<void()> call, const char* operation) {
    requireArgument(target, operation, "the target");
    if (_disabled) return;
    if (_open.empty()) {
        if (!_groupsByEvent || _phase != Phase::idle)
            throw NSException(NSInternalInconsistencyException,
                              std::string(operation) + ": no group is open");
        beginUndoGrouping();
        if (_open.empty()) return;  // an observer has removed all
        if (!std::exchange(_hasGroupOfEvent, true))
            NSRunLoop::currentRunLoop()->performSelector_target_argument_order_modes(
                "_closeGroupOfEvent"_sel, UndoGroupCloser::create(this).get(), nullptr, kCloseOrdering,
                _modes);
    }
    _open.back()->actions.push_back({WeakHandle(target), target, std::move(call)});
    if (_phase == Phase::idle) drop(_redone);
}

void NSUndoManager::registerUndoWithTarget_selector_object(id target, SEL selector, id object) {
    const char* operation = "registerUndoWithTarget:selector:object:";
    if (!selector) raiseNullArgument(operation, "the selector");
    add(
        target,
        [target, selector, kept = Retained<Object>::retaining(object)] {
            send(target, selector, kept.get());
        },
        operation);
}

void NSUndoManager::registerUndo(id target, std::function<void()> undo) {
    add(target, std::move(undo), "registerUndo");
}

void NSUndoManager::registerInvocation(id target, NSInvocation* invocation) {
    // It must not keep the target, so only its arguments are kept, without one.
    invocation->setTarget(nullptr);
    invocation->retainArguments();
    add(
        target,
        [target, kept = Retained<NSInvocation>::retaining(invocation)] {
            kept->invokeWithTarget(target);
            kept->setTarget(nullptr);
        },
        "prepareWithInvocationTarget:");
}

id NSUndoManager::prepareWithInvocationTarget(id target) {
    requireArgument(target, "prepareWithInvocationTarget:", "the target");
    return UndoTarget::create(this, target).autorelease();
}

void NSUndoManager::disableUndoRegistration() { ++_disabled; }

void NSUndoManager::enableUndoRegistration() {
    if (!_disabled)
        throw NSException(NSInternalInconsistencyException, "enableUndoRegistration: it is not disabled");
    --_disabled;
}

// MARK: Groups

void NSUndoManager::beginUndoGrouping() {
    post(NSUndoManagerCheckpointNotification);
    _open.push_back(std::make_unique<UndoGroup>());
    post(NSUndoManagerDidOpenUndoGroupNotification);
}

void NSUndoManager::endUndoGrouping() {
    if (_open.empty())
        throw NSException(NSInternalInconsistencyException, "endUndoGrouping: no group is open");
    post(NSUndoManagerCheckpointNotification);
    post(NSUndoManagerWillCloseUndoGroupNotification);
    if (_open.empty()) return;
    std::unique_ptr<UndoGroup> group = std::move(_open.back());
    _open.pop_back();
    if (group->actions.empty()) return;
    if (!_open.empty()) {
        UndoGroup& outer = *_open.back();
        std::move(group->actions.begin(), group->actions.end(), std::back_inserter(outer.actions));
        if (group->name) outer.name = group->name;
        return;
    }
    Groups& stack = stackOfPhase();
    stack.push_back(std::move(group));
    setLevelsOfUndo(_levels);
}

std::uint64_t NSUndoManager::stateNumber() { return _undone.empty() ? 0 : _undone.back()->number; }

void NSUndoManager::closeGroupOfEvent() {
    if (!std::exchange(_hasGroupOfEvent, false)) return;
    while (!_open.empty()) endUndoGrouping();
}

NSArray* NSUndoManager::runLoopModes() { return _modes; }
void NSUndoManager::setRunLoopModes(NSArray* modes) {
    _modes.set(modes ? modes : NSArray::arrayWithObject(NSRunLoopCommonModes));
}

void NSUndoManager::setLevelsOfUndo(NSUInteger levels) {
    const auto held = Retained<NSUndoManager>::retaining(this);
    _levels = levels;
    for (Groups* stack : {&_undone, &_redone})
        if (_levels && stack->size() > _levels) drop(*stack, stack->size() - _levels);
}

// MARK: Undoing

void NSUndoManager::requireNoOpenGroup(const char* operation) {
    if (_hasGroupOfEvent && _open.size() == 1 && _phase == Phase::idle) endUndoGrouping();
    if (!_open.empty() || _phase != Phase::idle)
        throw NSException(NSInternalInconsistencyException, std::string(operation) + ": a group is open");
}

void NSUndoManager::perform(Phase phase, Groups& from, const char* operation) {
    const auto held = Retained<NSUndoManager>::retaining(this);
    requireNoOpenGroup(operation);
    if (from.empty()) return;
    const bool isUndo = phase == Phase::undoing;
    post(isUndo ? NSUndoManagerWillUndoChangeNotification : NSUndoManagerWillRedoChangeNotification);
    if (from.empty()) return;  // an observer has removed all
    const std::unique_ptr<UndoGroup> group = std::move(from.back());
    from.pop_back();
    struct End {
        NSUndoManager* manager;
        ~End() {
            manager->_phase = Phase::idle;
            drop(manager->_open);
        }
    };
    {
        const End end{this};
        _phase = phase;
        beginUndoGrouping();
        _open.back()->name = group->name;
        _open.back()->number = group->number;
        for (auto action = group->actions.rbegin(); action != group->actions.rend(); ++action)
            if (Retained<Object> target = action->target.object()) action->call();
        while (!_open.empty()) endUndoGrouping();
    }
    post(isUndo ? NSUndoManagerDidUndoChangeNotification : NSUndoManagerDidRedoChangeNotification);
}

void NSUndoManager::undo() { perform(Phase::undoing, _undone, "undo"); }
void NSUndoManager::redo() {
    post(NSUndoManagerCheckpointNotification);
    perform(Phase::redoing, _redone, "redo");
}

bool NSUndoManager::canUndo() {
    return !_undone.empty() || (!_open.empty() && !_open.front()->actions.empty() && _phase == Phase::idle);
}

bool NSUndoManager::canRedo() {
    post(NSUndoManagerCheckpointNotification);
    return !_redone.empty();
}

void NSUndoManager::removeAllActions() {
    const auto held = Retained<NSUndoManager>::retaining(this);
    drop(_undone);
    drop(_redone);
    if (_phase != Phase::idle) return;
    drop(_open);
    _hasGroupOfEvent = false;
    _disabled = 0;
}

void NSUndoManager::removeAllActionsWithTarget(id target) {
    std::vector<UndoAction> dropped;
    for (Groups* stack : {&_undone, &_redone, &_open}) {
        for (auto& group : *stack) {
            auto& actions = group->actions;
            const auto end =
                std::stable_partition(actions.begin(), actions.end(),
                                      [=](const UndoAction& action) { return action.address != target; });
            std::move(end, actions.end(), std::back_inserter(dropped));
            actions.erase(end, actions.end());
        }
        if (stack != &_open) std::erase_if(*stack, [](const auto& group) { return group->actions.empty(); });
    }
}

// MARK: Names

namespace {

NSString* nameOf(const std::vector<std::unique_ptr<UndoGroup>>& groups) {
    return groups.empty() || !groups.back()->name ? u""_ns : groups.back()->name.get();
}

}  // namespace

NSString* NSUndoManager::undoActionName() {
    const bool isOpen = !_open.empty() && !_open.front()->actions.empty() && _phase == Phase::idle;
    return nameOf(isOpen ? _open : _undone);
}

NSString* NSUndoManager::redoActionName() { return nameOf(_redone); }

void NSUndoManager::setActionName(NSString* name) {
    Groups& groups = !_open.empty() ? _open : _undone;
    if (!groups.empty()) groups.back()->name = name ? name->copy() : nullptr;
}

NSString* NSUndoManager::undoMenuItemTitle() { return undoTitle(u"Undo"_ns, undoActionName()); }
NSString* NSUndoManager::redoMenuItemTitle() { return undoTitle(u"Redo"_ns, redoActionName()); }

}  // namespace pelvor
