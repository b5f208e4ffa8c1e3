// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSTimer.h"

#include <algorithm>
#include <cmath>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSFormat.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/RunLoop/Deadline.h"
#include "Foundation/RunLoop/TimerHeap.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTimer, foundationLibrary) {
    methods.creator<"timerWithTimeInterval:target:selector:userInfo:repeats:",
                    &NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats>();
    methods.creator<"scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:",
                    &NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats>();
    methods.creator<"initWithFireDate:interval:target:selector:userInfo:repeats:",
                    &NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats>();
    methods.instance<"fire", &NSTimer::fire>();
    methods.instance<"invalidate", &NSTimer::invalidate>();
    methods.instance<"isValid", &NSTimer::isValid>();
    methods.instance<"fireDate", &NSTimer::fireDate>();
    methods.instance<"setFireDate:", &NSTimer::setFireDate>();
    methods.instance<"timeInterval", &NSTimer::timeInterval>();
    methods.instance<"userInfo", &NSTimer::userInfo>();
}

NSTimer::~NSTimer() = default;

Retained<NSTimer> NSTimer::unscheduled(NSString* operation, NSTimeInterval interval, id target, SEL selector,
                                       id userInfo, bool repeats) {
    constexpr NSTimeInterval kShortest = 0.0001;
    if (!target || !selector)
        raiseException(NSInvalidArgumentException, u"%@ the %s is null"_ns, operation,
                       target ? "selector" : "target");
    if (std::isnan(interval))
        raiseException(NSInvalidArgumentException, u"%@ the interval is not a number"_ns, operation);
    auto timer = make<NSTimer>();
    timer->_target.set(target);
    timer->_userInfo.set(userInfo);
    timer->_selector = selector;
    timer->_interval = repeats ? std::max(interval, kShortest) : 0;
    return timer;
}

NSTimer* NSTimer::timer(NSString* operation, NSTimeInterval seconds, id target, SEL selector, id userInfo,
                        bool repeats) {
    auto timer = unscheduled(operation, seconds, target, selector, userInfo, repeats);
    timer->schedule(steadyTime() + seconds, NSDate::currentTimeIntervalSinceReferenceDate() + seconds);
    return std::move(timer).autorelease();
}

NSTimer* NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(NSTimeInterval seconds, id target,
                                                                         SEL selector, id userInfo,
                                                                         bool repeats) {
    return timer(u"timerWithTimeInterval:target:selector:userInfo:repeats:"_ns, seconds, target, selector,
                 userInfo, repeats);
}

NSTimer* NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(NSTimeInterval seconds,
                                                                                  id target, SEL selector,
                                                                                  id userInfo, bool repeats) {
    NSTimer* scheduled = timer(u"scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:"_ns,
                               seconds, target, selector, userInfo, repeats);
    NSRunLoop::currentRunLoop()->addTimer_forMode(scheduled, NSDefaultRunLoopMode);
    return scheduled;
}

Retained<NSTimer> NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats(
    NSDate* date, NSTimeInterval seconds, id target, SEL selector, id userInfo, bool repeats) {
    auto timer = unscheduled(u"initWithFireDate:interval:target:selector:userInfo:repeats:"_ns, seconds,
                             target, selector, userInfo, repeats);
    timer->setFireDate(date);
    return timer;
}

void NSTimer::addTo(TimerHeap& heap) {
    if (isValid() && !placeIn(&heap)) heap.add(this, _moment);
}

TimerPlace* NSTimer::placeIn(TimerHeap* heap) {
    TimerPlace* place = _places;
    while (place && place->heap != heap) place = place->next;
    return place;
}

void NSTimer::fire() {
    if (isValid()) sendMessage();
}

NSString* NSTimer::description() {
    if (!isValid())
        return NSString::stringWithFormat(u"<%s %p: invalid>"_ns, isa()->name(), static_cast<void*>(this));
    NSString* repetition =
        _interval > 0 ? NSString::stringWithFormat(u", then every %g s"_ns, _interval) : u""_ns;
    return NSString::stringWithFormat(u"<%s %p: sends %s to <%s %p> in %.3f s%@>"_ns, isa()->name(),
                                      static_cast<void*>(this), _selector.name(), _target->isa()->name(),
                                      static_cast<void*>(_target.get()), _moment - steadyTime(), repetition);
}

// The beats stay where they were, so that delays do not add up.
void NSTimer::fireOnTime(NSTimeInterval now) {
    if (_interval > 0) {
        NSTimeInterval step = _interval * (std::floor((now - _moment) / _interval) + 1);
        if (!(_moment + step > now)) step = now + _interval - _moment;
        schedule(_moment + step, _date + step);
    }
    sendMessage();
}

void NSTimer::sendMessage() {
    auto self = Retained<NSTimer>::retaining(this);
    auto target = _target;
    if (_interval == 0) invalidate();
    target->performSelector_withObject(_selector, this);
}

void NSTimer::invalidate() {
    auto self = Retained<NSTimer>::retaining(this);
    auto target = std::move(_target);
    auto userInfo = std::move(_userInfo);
    while (_places) _places->heap->remove(_places);
}

NSDate* NSTimer::fireDate() { return NSDate::dateWithTimeIntervalSinceReferenceDate(_date); }

void NSTimer::setFireDate(NSDate* date) {
    if (!isValid()) return;
    if (date)
        schedule(steadyMoment(date), date->timeIntervalSinceReferenceDate());
    else
        schedule(steadyTime(), NSDate::currentTimeIntervalSinceReferenceDate());
}

void NSTimer::schedule(NSTimeInterval moment, NSTimeInterval date) {
    if (std::isnan(moment))
        raiseException(NSInvalidArgumentException, u"setFireDate: the date is not a number of seconds"_ns);
    _moment = moment;
    _date = date;
    for (TimerPlace* place = _places; place; place = place->next) place->heap->move(place, moment);
}

}  // namespace pelvor
