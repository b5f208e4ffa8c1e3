// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSWorkspace.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSFileManager.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/ProgramRun.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSWorkspace, foundationLibrary) {
    methods.classLevel<"sharedWorkspace", &NSWorkspace::sharedWorkspace>();
    methods.instance<"notificationCenter", &NSWorkspace::notificationCenter>();
    methods.instance<"openFile:", &NSWorkspace::openFile>();
    methods.instance<"noteFileSystemChanged:", &NSWorkspace::noteFileSystemChanged>();
}

NSWorkspace::NSWorkspace() : _centre(NSNotificationCenter::init()) {}
NSWorkspace::~NSWorkspace() = default;

NSWorkspace* NSWorkspace::sharedWorkspace() {
    static NSWorkspace* const workspace = make<NSWorkspace>().leak();
    return workspace;
}

bool NSWorkspace::openFile(NSString* path) {
    requireArgument(path, "openFile:", "the path");
    return NSFileManager::defaultManager()->fileExistsAtPath(path) &&
           startProgram(u"xdg-open"_ns, NSArray::of({path}));
}

void NSWorkspace::noteFileSystemChanged(NSString*) {}

}  // namespace pelvor
