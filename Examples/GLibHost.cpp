// SPDX-License-Identifier: Apache-2.0
// A program with GLib's main loop that has Pelvor's run loop served inside it.
#include <glib.h>

#include <cstdio>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSNotificationQueue.h"
#include "Foundation/NSObject-MainThread.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSTimer.h"
#include "GLibRunLoop.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"

namespace pelvor {

extern Library exampleLibrary;

/// Goes from one station to the next, and to each by another road.
class Traveller : public NSObject {
    PELVOR_CLASS(Traveller, NSObject);

  public:
    GMainLoop* host = g_main_loop_new(nullptr, FALSE);

    void hear(NSNotification*) {
        std::puts("notification");
        NSThread::detach([this] {
            performSelectorOnMainThread_withObject_waitUntilDone(this, "arrive:"_sel, u"perform"_ns, true);
        });
    }
    void arrive(NSString* text) {
        std::puts(text->toUTF8().c_str());
        NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(0.02, this, "tick:"_sel,
                                                                                 nullptr, true);
    }
    void tick(NSTimer* timer) {
        std::printf("timer %d\n", ++_ticks);
        if (_ticks < 3) return;
        timer->invalidate();
        g_idle_add([](gpointer loop) { return g_main_loop_quit(static_cast<GMainLoop*>(loop)), FALSE; },
                   host);
    }

  protected:
    Traveller() = default;
    ~Traveller() { g_main_loop_unref(host); }

  private:
    int _ticks = 0;
};

constexpr Library* kDependencies[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&Traveller::classRecord};

constinit Library exampleLibrary{"GLibHost", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(Traveller, exampleLibrary) {
    methods.instance<"hear:", &Traveller::hear>();
    methods.instance<"arrive:", &Traveller::arrive>();
    methods.instance<"tick:", &Traveller::tick>();
}

}  // namespace pelvor

int main() {
    using namespace pelvor;
    AutoreleasePool pool;
    serveRunLoopInGLib(G_PRIORITY_DEFAULT);
    auto traveller = make<Traveller>();
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(traveller, "hear:"_sel,
                                                                            u"Departure"_ns, nullptr);
    NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle(
        NSNotification::notificationWithName_object(u"Departure"_ns, nullptr), NSPostWhenIdle);
    g_main_loop_run(traveller->host);
    std::puts("arrived");
    NSNotificationCenter::defaultCenter()->removeObserver(traveller);
}
