// SPDX-License-Identifier: Apache-2.0
// A plug-in with code, which has to see the host's copy of the library's state, and which uses classes that
// nothing in the host does: a host that is linked statically has to hold them all the same.
#include "Foundation/NSCountedSet.h"
#include "Foundation/NSString.h"
#include "Foundation/PlatformVersion.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"

using namespace pelvor;

extern "C" PELVOR_EXPORT double platformVersionSeenByPlugIn() { return platformVersion(); }

extern "C" PELVOR_EXPORT unsigned long countOfTwoEqualTexts() {
    AutoreleasePool pool;
    NSCountedSet* set = NSCountedSet::of({u"fish"_ns, u"chips"_ns, u"fish"_ns});
    return send<NSUInteger>(set, "countForObject:"_sel, u"fish"_ns);
}
