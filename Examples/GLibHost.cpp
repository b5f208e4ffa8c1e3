// SPDX-License-Identifier: Apache-2.0
// A program with GLib's main loop that has Pelvor's run loop served inside it.
#include <glib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSNotificationQueue.h"
#include "Foundation/NSObject-MainThread.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSTimer.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"

namespace pelvor {

// How long GLib may sleep if the descriptor stays silent; it looks at the descriptor by itself.
gboolean prepare(GSource*, gint* timeout) {
    AutoreleasePool pool;
    NSDate* limit = NSRunLoop::currentRunLoop()->limitDateForMode(NSDefaultRunLoopMode);
    double milliseconds = limit ? std::ceil(limit->timeIntervalSinceNow() * 1000) : -1;
    *timeout = limit ? static_cast<gint>(std::clamp<double>(milliseconds, 0, G_MAXINT)) : -1;
    return *timeout == 0;
}

gboolean dispatch(GSource*, GSourceFunc, gpointer) {
    NSRunLoop::currentRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode);
    return G_SOURCE_CONTINUE;
}

void serveRunLoop() {
    static GSourceFuncs functions{prepare, nullptr, dispatch, nullptr, nullptr, nullptr};
    GSource* source = g_source_new(&functions, sizeof(GSource));
    g_source_add_unix_fd(source, NSRunLoop::currentRunLoop()->descriptor(), G_IO_IN);
    g_source_attach(source, nullptr);
    g_source_unref(source);
}

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
    serveRunLoop();
    auto traveller = make<Traveller>();
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(traveller, "hear:"_sel,
                                                                            u"Departure"_ns, nullptr);
    NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle(
        NSNotification::notificationWithName_object(u"Departure"_ns, nullptr), NSPostWhenIdle);
    g_main_loop_run(traveller->host);
    std::puts("arrived");
    NSNotificationCenter::defaultCenter()->removeObserver(traveller);
}
