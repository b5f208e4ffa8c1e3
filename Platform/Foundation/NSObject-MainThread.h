// SPDX-License-Identifier: Apache-2.0
// Having an object do something on the main thread.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

struct Category;
class NSArray;

/// Sends the message, with `argument` if it takes one, on the main thread when its run loop runs in one of
/// the modes; target and argument are retained until then. A null or empty list of modes stands for the
/// default mode.
///
/// With `wait` the call returns when the message was sent, and raises what the method raised; on the main
/// thread it sends the message at once. If the main thread itself waits for the calling thread, both wait for
/// ever. Without `wait`, an exception of the method leaves the main thread's run loop.
///
/// Does nothing if the target is null. Raises NSInvalidArgumentException if the selector is null. Any thread.
PELVOR_EXPORT void performSelectorOnMainThread_withObject_waitUntilDone_modes(id target, SEL selector,
                                                                              id argument, bool wait,
                                                                              NSArray* modes);
/// Does the same in the common modes.
PELVOR_EXPORT void performSelectorOnMainThread_withObject_waitUntilDone(id target, SEL selector, id argument,
                                                                        bool wait);

extern const Category NSObject_MainThread_category;
extern const Category NSProxy_MainThread_category;

}  // namespace pelvor
