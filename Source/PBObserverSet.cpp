// SPDX-License-Identifier: Apache-2.0
#include "PBObserverSet.h"

#include <algorithm>

#include "BaseLibrary.h"
#include "Foundation/NSMutableString.h"
#include "PBWeakReference.h"
#include "Runtime/NSInvocation.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBObserverSet, baseLibrary) {
    methods.creator<"init", &PBObserverSet::init>();
    methods.instance<"addObserver:", &PBObserverSet::addObserver>();
    methods.instance<"removeObserver:", &PBObserverSet::removeObserver>();
    methods.instance<"containsObserver:", &PBObserverSet::containsObserver>();
    methods.instance<"count", &PBObserverSet::count>();
    methods.instance<"invalidate", &PBObserverSet::invalidate>();
    methods.instance<"makeObserversPerformSelector:", &PBObserverSet::makeObserversPerformSelector>();
    methods.instance<"makeObserversPerformSelector:withObject:",
                     &PBObserverSet::makeObserversPerformSelector_withObject>();
    methods.instance<"makeObserversPerformSelector:withObject:withObject:",
                     &PBObserverSet::makeObserversPerformSelector_withObject_withObject>();
    methods.instance<"makeObserversPerformSelector:withObject:withObject:withObject:",
                     &PBObserverSet::makeObserversPerformSelector_withObject_withObject_withObject>();
}

Retained<PBObserverSet> PBObserverSet::init(Class* cls) {
    auto set = make<PBObserverSet>(cls);
    set->_observers = NSMutableSet::init();
    return set;
}

void PBObserverSet::addObserver(id observer) {
    if (_observers) addWeakReferenceObject(_observers, observer);
}

void PBObserverSet::removeObserver(id observer) {
    if (_observers) removeWeakReferenceObject(_observers, observer);
}

bool PBObserverSet::containsObserver(id observer) {
    return _observers && containsWeakReferenceObject(_observers, observer);
}

NSUInteger PBObserverSet::count() { return _observers ? _observers->count() : 0; }

void PBObserverSet::invalidate() { _observers = nullptr; }

NSString* PBObserverSet::description() {
    NSMutableString* text = NSMutableString::string();
    text->appendString(u"PBObserverSet {\n"_ns);
    if (_observers)
        for (id reference : _observers) text->appendFormat(u"\t%@\n"_ns, reference);
    text->appendString(u"}"_ns);
    return text;
}

// MARK: Broadcasts

namespace {

// Objects that the method does not take are dropped. The class of a proxy has no such method, so the
// signature comes from the proxy itself.
void performOn(id observer, SEL selector, const id (&objects)[3]) {
    auto kept = Retained<Object>::retaining(observer);
    NSMethodSignature* signature = observer->class_()->signatureOfInstanceMethod(selector);
    if (!signature) signature = observer->methodSignatureForSelector(selector);
    auto invocation = NSInvocation::initWithMethodSignature(signature);
    invocation->setSelector(selector);
    std::uint32_t count = std::min(signature->argumentCount(), 3u);
    for (std::uint32_t i = 0; i < count; ++i)
        if (objects[i]) invocation->setArgument(static_cast<int>(i) + 2, objects[i]);
    invocation->invokeWithTarget(observer);
}

}  // namespace

void PBObserverSet::makeObserversPerformSelector(SEL selector) {
    makeObserversPerformSelector_withObject_withObject_withObject(selector, nullptr, nullptr, nullptr);
}

void PBObserverSet::makeObserversPerformSelector_withObject(SEL selector, id first) {
    makeObserversPerformSelector_withObject_withObject_withObject(selector, first, nullptr, nullptr);
}

void PBObserverSet::makeObserversPerformSelector_withObject_withObject(SEL selector, id first, id second) {
    makeObserversPerformSelector_withObject_withObject_withObject(selector, first, second, nullptr);
}

void PBObserverSet::makeObserversPerformSelector_withObject_withObject_withObject(SEL selector, id first,
                                                                                  id second, id third) {
    if (count() == 0) return;
    auto self = Retained<PBObserverSet>::retaining(this);
    Retained<NSSet> present = _observers->NSSet::copy();
    for (id member : present) {
        // This check comes before the observer is used: an observer that has left the set may have been
        // destroyed.
        if (!_observers || !_observers->containsObject(member)) continue;
        id observer = static_cast<PBWeakReference*>(member)->object();
        if (observer && observer->respondsToSelector(selector))
            performOn(observer, selector, {first, second, third});
    }
}

}  // namespace pelvor
