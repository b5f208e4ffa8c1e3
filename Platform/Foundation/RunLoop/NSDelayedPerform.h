// SPDX-License-Identifier: Apache-2.0
// A message that a run loop is to send after a delay; for Foundation's own sources.
#pragma once

#include "Foundation/NSRunLoop.h"

namespace pelvor {

/// The target of its own timer, which keeps it; its run loop lists it by its receiver until it fires or is
/// cancelled.
class NSDelayedPerform : public NSObject {
    PELVOR_CLASS(NSDelayedPerform, NSObject);

  public:
    /// Adds one to the current run loop; no modes are the default mode.
    static void add(id receiver, SEL selector, id argument, NSTimeInterval delay, NSArray* modes);

    id receiver() { return _receiver; }
    bool isSame(SEL selector, id argument) {
        return _selector == selector &&
               (_argument == argument || (_argument && argument && _argument->isEqual(argument)));
    }
    void cancel();
    void fire(NSTimer* timer);

  protected:
    NSDelayedPerform() = default;
    ~NSDelayedPerform() = default;

  private:
    Retained<Object> _receiver;
    SEL _selector;
    Retained<Object> _argument;
    NSTimer* _timer = nullptr;  // borrowed: it holds this object as long as it is valid
};

}  // namespace pelvor
