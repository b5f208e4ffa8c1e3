// SPDX-License-Identifier: Apache-2.0
#include "Foundation/RunLoop/NSDelayedPerform.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSTimer.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSDelayedPerform, foundationLibrary) {
    methods.instance<"fire:", &NSDelayedPerform::fire>();
}

void NSDelayedPerform::add(id receiver, SEL selector, id argument, NSTimeInterval delay, NSArray* modes) {
    auto perform = make<NSDelayedPerform>();
    perform->_receiver.set(receiver);
    perform->_selector = selector;
    perform->_argument.set(argument);
    NSTimer* timer = NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(
        delay, perform, "fire:"_sel, nullptr, false);
    perform->_timer = timer;
    NSRunLoop* loop = NSRunLoop::currentRunLoop();
    if (modes && modes->count() > 0)
        for (id mode : modes) loop->addTimer_forMode(timer, cast<NSString>(mode));
    else
        loop->addTimer_forMode(timer, NSDefaultRunLoopMode);
    loop->listDelayed(perform);
}

void NSDelayedPerform::cancel() { _timer->invalidate(); }

// The perform leaves the list first: the message may cancel performs, or request the same perform again.
void NSDelayedPerform::fire(NSTimer*) {
    NSRunLoop::currentRunLoop()->unlistDelayed(this);
    if (_receiver) _receiver->performSelector_withObject(_selector, _argument);
}

}  // namespace pelvor
