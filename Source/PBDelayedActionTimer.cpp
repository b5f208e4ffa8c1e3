// SPDX-License-Identifier: Apache-2.0
#include "PBDelayedActionTimer.h"

#include <cmath>
#include <utility>

#include "BaseLibrary.h"
#include "Foundation/NSString.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBDelayedActionTimer, baseLibrary) {
    methods.creator<"initWithTimeInterval:fromFirst:target:selector:",
                    &PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector>();
    methods.instance<"schedule", &PBDelayedActionTimer::schedule>();
    methods.instance<"unschedule", &PBDelayedActionTimer::unschedule>();
    methods.instance<"isScheduled", &PBDelayedActionTimer::isScheduled>();
    methods.instance<"invalidate", &PBDelayedActionTimer::invalidate>();
    methods.instance<"_timerDidFire:", &PBDelayedActionTimer::_timerDidFire>();
}

Retained<PBDelayedActionTimer> PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector(
    double delay, bool fromFirst, id target, SEL action, Class* cls) {
    if (std::isnan(delay))
        raiseBadArgument("initWithTimeInterval:fromFirst:target:selector:", "the interval is not a number");
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

// The platform's timer may have the last reference to this object, which then ends together with the timer.
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

NSString* PBDelayedActionTimer::description() {
    NSString* target =
        _target ? NSString::stringWithFormat(u"<%@ %p>"_ns, _target->class_(), static_cast<void*>(_target))
                : u"nobody"_ns;
    return NSString::stringWithFormat(u"PBDelayedActionTimer<%p> {%s to %@, %g s from the %s request, %s}"_ns,
                                      static_cast<void*>(this), _action.name(), target, _delay,
                                      _isFromFirst ? "first" : "last",
                                      _timer ? "scheduled" : "not scheduled");
}

}  // namespace pelvor
