// SPDX-License-Identifier: Apache-2.0
// Having an object do something on the main thread.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

struct Category;
class NSArray;

/// Sends the message, with `argument` if it takes one, on the main thread when its run loop runs in one of
/// the modes; target and argument are retained until then. With `wait` the call returns when that is done,
/// at once if this is the main thread, and raises what the method raised; without, what it raises leaves the
/// main thread's run loop. A main thread that itself waits for this one never comes to it. Any thread.
/// Raises NSInvalidArgumentException for no selector.
PELVOR_EXPORT void performSelectorOnMainThread_withObject_waitUntilDone_modes(id target, SEL selector,
                                                                              id argument, bool wait,
                                                                              NSArray* modes);
/// The same in the common modes.
PELVOR_EXPORT void performSelectorOnMainThread_withObject_waitUntilDone(id target, SEL selector, id argument,
                                                                        bool wait);

extern const Category NSObject_MainThread_category;
extern const Category NSProxy_MainThread_category;

}  // namespace pelvor
