// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Undo/UndoTarget.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/LibraryTexts.h"
#include "Foundation/NSUndoManager.h"
#include "Runtime/NSInvocation.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(UndoTarget, foundationLibrary) {}

Retained<UndoTarget> UndoTarget::create(NSUndoManager* manager, id target) {
    auto made = make<UndoTarget>();
    made->_manager.set(manager);
    made->_target.set(target);
    return made;
}

NSMethodSignature* UndoTarget::methodSignatureForSelector(SEL selector) {
    return _target->methodSignatureForSelector(selector);
}

void UndoTarget::forwardInvocation(NSInvocation* invocation) {
    static_cast<NSUndoManager*>(_manager.get())->registerInvocation(_target, invocation);
}

PELVOR_DEFINE_CLASS(UndoGroupCloser, foundationLibrary) {
    methods.instance<"_closeGroupOfEvent", &UndoGroupCloser::_closeGroupOfEvent>();
}

Retained<UndoGroupCloser> UndoGroupCloser::create(NSUndoManager* manager) {
    auto made = make<UndoGroupCloser>();
    made->_manager = WeakHandle(manager);
    return made;
}

void UndoGroupCloser::_closeGroupOfEvent() {
    Retained<Object> manager = _manager.object();
    if (manager) static_cast<NSUndoManager*>(manager.get())->closeGroupOfEvent();
}

NSString* undoTitle(NSString* verb, NSString* actionName) {
    const bool hasName = actionName->length() > 0;
    NSString* key = NSString::stringWithFormat(hasName ? u"_%@ %%@"_ns : u"_%@"_ns, verb);
    NSString* text = localizedLibraryText(key);
    if (!text) text = key->substringFromIndex(1);
    return hasName ? NSString::stringWithFormat(text, actionName) : text;
}

}  // namespace pelvor
