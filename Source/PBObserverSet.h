// SPDX-License-Identifier: Apache-2.0
// PBObserverSet: a set of objects that messages are broadcast to, and that the set does not keep alive.
#pragma once

#include "Foundation/NSMutableSet.h"

namespace pelvor {

/// A set of observers and a way to send one message to all of them:
///
///     auto observers = PBObserverSet::init();
///     observers->addObserver(ruler);
///     observers->makeObserversPerformSelector_withObject("tabsDidChange:"_sel, paragraph);
///     observers->removeObserver(ruler);  // before the ruler is destroyed
///
/// The set refers to its observers by PBWeakReference and does not retain them: an observer leaves the set
/// before it is destroyed. For one thread at a time.
class PELVOR_EXPORT PBObserverSet : public NSObject {
    PELVOR_CLASS(PBObserverSet, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<PBObserverSet> init(Class* cls = classObject());

    void addObserver(id observer);
    void removeObserver(id observer);
    bool containsObserver(id observer);
    NSUInteger count();
    /// Forgets the observers for good. From now on every operation does nothing, and the count is 0.
    void invalidate();
    /// "PBObserverSet {", a line with a tab and the description of each reference, and "}".
    NSString* description() override;

    // Broadcasts. The message goes to each observer that responds to it, in the order of the set. The method
    // gets as many of the objects as it takes. Observers may add, remove and destroy themselves and each
    // other, and invalidate the set: an observer that is removed before its turn is not called, and neither
    // is one that is added during the broadcast. An exception of an observer leaves the broadcast; the
    // observers after it are not called.

    void makeObserversPerformSelector(SEL selector);
    void makeObserversPerformSelector_withObject(SEL selector, id first);
    void makeObserversPerformSelector_withObject_withObject(SEL selector, id first, id second);
    void makeObserversPerformSelector_withObject_withObject_withObject(SEL selector, id first, id second,
                                                                       id third);

  protected:
    PBObserverSet() = default;
    ~PBObserverSet() = default;

  private:
    Retained<NSMutableSet> _observers;  // of PBWeakReferences; null once invalidated
};

}  // namespace pelvor
