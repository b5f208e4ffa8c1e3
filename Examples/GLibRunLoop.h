// SPDX-License-Identifier: Apache-2.0
// Serves Pelvor's run loop inside GLib's, for a program to copy.
#pragma once

#include <glib.h>

#include <algorithm>
#include <cmath>

#include "Foundation/NSRunLoop.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

// How long GLib may sleep if the descriptor stays silent; it looks at the descriptor by itself.
inline gboolean prepareRunLoop(GSource*, gint* timeout) {
    AutoreleasePool pool;
    NSDate* limit = NSRunLoop::currentRunLoop()->limitDateForMode(NSDefaultRunLoopMode);
    const double milliseconds = limit ? std::ceil(limit->timeIntervalSinceNow() * 1000) : -1;
    *timeout = limit ? static_cast<gint>(std::clamp<double>(milliseconds, 0, G_MAXINT)) : -1;
    return *timeout == 0;
}

inline gboolean dispatchRunLoop(GSource*, GSourceFunc, gpointer) {
    NSRunLoop::currentRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode);
    return G_SOURCE_CONTINUE;
}

/// Has GLib's main loop serve this thread's run loop, at one of GLib's priorities.
inline void serveRunLoopInGLib(int priority) {
    static GSourceFuncs functions{prepareRunLoop, nullptr, dispatchRunLoop, nullptr, nullptr, nullptr};
    GSource* source = g_source_new(&functions, sizeof(GSource));
    g_source_set_priority(source, priority);
    g_source_add_unix_fd(source, NSRunLoop::currentRunLoop()->descriptor(), G_IO_IN);
    g_source_attach(source, nullptr);
    g_source_unref(source);
}

}  // namespace pelvor
