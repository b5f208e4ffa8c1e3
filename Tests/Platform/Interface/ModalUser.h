// SPDX-License-Identifier: Apache-2.0
// How a test plays the user of modal panels.
#pragma once

#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Interface/NSButton.h"
#include "InterfaceScope.h"

namespace pelvor {

/// Runs the application until the action has returned; `user` is called every quarter of a second in which a
/// panel is modal.
inline void runWithUser(InterfaceScope& screen, const std::function<void()>& action,
                        const std::function<void()>& user) {
    const auto acts = Listener::doing([&](id) {
        action();
        screen.app->stop(nullptr);
    });
    const auto users = Listener::doing([&](id) { user(); });
    auto timer = Retained<NSTimer>::retaining(NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(
        0.25, users, "hear:"_sel, nullptr, true));
    NSRunLoop::mainRunLoop()->addTimer_forMode(timer, NSModalPanelRunLoopMode);
    performSelector_withObject_afterDelay(acts, "hear:"_sel, nullptr, 0);
    screen.app->run();
    timer->invalidate();
}

/// The first view of the class below that view for which this holds; null if no view is such.
template <class T>
T* viewIn(
    NSView* view, const std::function<bool(T*)>& isWanted = [](T*) { return true; }) {
    for (id part : view->subviews()) {
        if (auto* found = cast<T>(part); found && isWanted(found)) return found;
        if (T* found = viewIn<T>(static_cast<NSView*>(part), isWanted)) return found;
    }
    return nullptr;
}

inline NSButton* buttonIn(NSView* view, NSString* title) {
    return viewIn<NSButton>(view, [=](NSButton* each) { return each->title()->isEqualToString(title); });
}

}  // namespace pelvor
