// SPDX-License-Identifier: Apache-2.0
// Desk: lets its plug-ins look at a text file. Usage: Desk [-SETTING VALUE]… FILE
#include <cstdio>

#include "DKDesk.h"
#include "DeskLibrary.h"
#include "PBPostLoader.h"
#include "Runtime/AutoreleasePool.h"

int main(int argc, char** argv) {
    using namespace desk;
    if (argc < 2) return std::fputs("usage: Desk [-SETTING VALUE]… FILE\n", stderr), 2;
    AutoreleasePool pool;
    registerLibrary(deskLibrary);
    PBPostLoader::processClasses();

    auto desk = DKDesk::init();
    desk->loadPlugIns();
    std::printf("%s\n", desk->menu()->UTF8String());
    desk->openFile(NSString::ofUTF8(argv[argc - 1]));
    desk->run();
    std::printf("%s\n", desk->report()->UTF8String());
    return desk->hasFailed() ? 1 : 0;
}
