// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSWorkspace.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSNotificationCenter.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSWorkspace, foundationLibrary) {
    methods.classLevel<"sharedWorkspace", &NSWorkspace::sharedWorkspace>();
    methods.instance<"notificationCenter", &NSWorkspace::notificationCenter>();
    methods.instance<"noteFileSystemChanged:", &NSWorkspace::noteFileSystemChanged>();
}

NSWorkspace::NSWorkspace() : _centre(NSNotificationCenter::init()) {}
NSWorkspace::~NSWorkspace() = default;

NSWorkspace* NSWorkspace::sharedWorkspace() {
    static NSWorkspace* const workspace = make<NSWorkspace>().leak();
    return workspace;
}

void NSWorkspace::noteFileSystemChanged(NSString*) {}

}  // namespace pelvor
