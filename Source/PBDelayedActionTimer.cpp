// SPDX-License-Identifier: Apache-2.0
#include "PBDelayedActionTimer.h"

#include <utility>

#include "BaseLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBDelayedActionTimer, baseLibrary) {
    methods.classLevel<"initWithTimeInterval:fromFirst:target:selector:",
                       &PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector>();
    methods.instance<"schedule", &PBDelayedActionTimer::schedule>();
    methods.instance<"unschedule", &PBDelayedActionTimer::unschedule>();
    methods.instance<"isScheduled", &PBDelayedActionTimer::isScheduled>();
    methods.instance<"invalidate", &PBDelayedActionTimer::invalidate>();
    methods.instance<"_timerDidFire:", &PBDelayedActionTimer::_timerDidFire>();
}

Retained<PBDelayedActionTimer> PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector(
    double delay, bool fromFirst, id target, SEL action, Class* cls) {
    auto self = make<PBDelayedActionTimer>(cls);
    self->_delay = delay;
    self->_isFromFirst = fromFirst;
    self->_target.set(target);
    self->_action = action;
    return self;
}

void PBDelayedActionTimer::schedule() {
    if (!_target) return;
    if (!_timer)
        _timer.set(NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(
            _delay, this, "_timerDidFire:"_sel, nullptr, false));
    else if (!_isFromFirst)
        _timer->setFireDate(NSDate::initWithTimeIntervalSinceNow(_delay).get());
}

// The timer may hold the last reference to this object, which goes with it.
void PBDelayedActionTimer::unschedule() {
    if (auto timer = std::move(_timer)) timer->invalidate();
}

void PBDelayedActionTimer::invalidate() {
    auto timer = std::move(_timer);
    auto target = std::move(_target);
    if (timer) timer->invalidate();
}

void PBDelayedActionTimer::_timerDidFire(NSTimer*) {
    _timer = nullptr;
    auto target = _target;
    if (target) target->performSelector_withObject(_action, this);
}

}  // namespace pelvor
