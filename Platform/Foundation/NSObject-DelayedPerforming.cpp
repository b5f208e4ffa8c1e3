// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSObject-DelayedPerforming.h"

#include <cmath>

#include "Foundation/NSArray.h"
#include "Foundation/NSFormat.h"
#include "Foundation/RunLoop/NSDelayedPerform.h"
#include "Runtime/NSException.h"
#include "Runtime/NSProxy.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

template <class Root>
void defineDelayedPerforming(MethodTable<Root>& methods) {
    methods.template instance<"performSelector:withObject:afterDelay:inModes:",
                              &performSelector_withObject_afterDelay_inModes>();
    methods.template instance<"performSelector:withObject:afterDelay:",
                              &performSelector_withObject_afterDelay>();
    methods.template classLevel<"cancelPreviousPerformRequestsWithTarget:",
                                &NSObject_DelayedPerforming::cancelPreviousPerformRequestsWithTarget>();
    methods.template classLevel<
        "cancelPreviousPerformRequestsWithTarget:selector:object:",
        &NSObject_DelayedPerforming::cancelPreviousPerformRequestsWithTarget_selector_object>();
}

}  // namespace

constinit const Category NSObject_DelayedPerforming_category =
    Category::of<NSObject, defineDelayedPerforming<NSObject>>("DelayedPerforming");
constinit const Category NSProxy_DelayedPerforming_category =
    Category::of<NSProxy, defineDelayedPerforming<NSProxy>>("DelayedPerforming");

void performSelector_withObject_afterDelay_inModes(id target, SEL selector, id argument, NSTimeInterval delay,
                                                   NSArray* modes) {
    if (!target) return;
    if (!selector)
        raiseException(NSInvalidArgumentException,
                       u"performSelector:withObject:afterDelay: the selector is null"_ns);
    if (std::isnan(delay))
        raiseException(NSInvalidArgumentException,
                       u"performSelector:withObject:afterDelay: the delay is not a number"_ns);
    NSDelayedPerform::add(target, selector, argument, delay, modes);
}

void performSelector_withObject_afterDelay(id target, SEL selector, id argument, NSTimeInterval delay) {
    performSelector_withObject_afterDelay_inModes(target, selector, argument, delay, nullptr);
}

void NSObject_DelayedPerforming::cancelPreviousPerformRequestsWithTarget(id target) {
    NSRunLoop::currentRunLoop()->cancelDelayed(target, [](NSDelayedPerform*) { return true; });
}

void NSObject_DelayedPerforming::cancelPreviousPerformRequestsWithTarget_selector_object(id target,
                                                                                         SEL selector,
                                                                                         id argument) {
    NSRunLoop::currentRunLoop()->cancelDelayed(
        target, [&](NSDelayedPerform* perform) { return perform->isSame(selector, argument); });
}

}  // namespace pelvor
