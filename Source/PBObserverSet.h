// SPDX-License-Identifier: Apache-2.0
// PBObserverSet: objects that a message is broadcast to, and that it does not keep alive.
#pragma once

#include "Foundation/NSMutableSet.h"

namespace pelvor {

/// A set of observers, held by weak references: an observer leaves the set before it is destroyed. One
/// thread at a time.
class PELVOR_EXPORT PBObserverSet : public NSObject {
    PELVOR_CLASS(PBObserverSet, NSObject);

  public:
    static Retained<PBObserverSet> init(Class* cls = classObject());

    void addObserver(id observer);
    void removeObserver(id observer);
    bool containsObserver(id observer);
    NSUInteger count();
    /// Forgets the observers for good: from now on every operation does nothing.
    void invalidate();
    /// "PBObserverSet {", a line for each reference after a tab, "}".
    NSString* description() override;

    // Sends the message to each observer that answers it, in the order of the set, with as many of the
    // objects as it takes. Observers may add, remove and destroy themselves and each other, and invalidate
    // the set: one that is removed before its turn is not called, nor is one that is added meanwhile. What
    // an observer raises leaves the broadcast, and those after it are not called.

    void makeObserversPerformSelector(SEL selector);
    void makeObserversPerformSelector_withObject(SEL selector, id first);
    void makeObserversPerformSelector_withObject_withObject(SEL selector, id first, id second);
    void makeObserversPerformSelector_withObject_withObject_withObject(SEL selector, id first, id second,
                                                                       id third);

  protected:
    PBObserverSet() = default;
    ~PBObserverSet() = default;

  private:
    Retained<NSMutableSet> _observers;  // of weak references; none once invalidated
};

}  // namespace pelvor
