// SPDX-License-Identifier: Apache-2.0
// A message that a run loop is to send after a delay; for Foundation's own sources.
#pragma once

#include "Foundation/NSRunLoop.h"

namespace pelvor {

/// The target of its own timer, which retains it. The run loop lists the object by the receiver of the
/// message until the timer fires or is invalidated.
class NSDelayedPerform : public NSObject {
    PELVOR_CLASS(NSDelayedPerform, NSObject);

  public:
    /// Has the current run loop send the message after the delay; null modes stand for the default mode.
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
    Unretained<NSTimer> _timer = nullptr;  // retains this object while it is valid
};

}  // namespace pelvor
