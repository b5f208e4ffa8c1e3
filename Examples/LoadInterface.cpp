// SPDX-License-Identifier: Apache-2.0
// Makes the objects of an interface file and presses the button among them: LoadInterface Greeting.nib
#include <cstdio>

#include "Foundation/NSNib.h"
#include "Foundation/NSNibError.h"
#include "GreetingParts.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"

using namespace pelvor;

int main(int, char** argv) {
    AutoreleasePool pool;
    registerLibrary(*GPPanel::classObject()->library());
    NSNibError* error = nullptr;
    auto nib = NSNib::initWithContentsOfFile_bundle_error(NSString::ofUTF8(argv[1]), nullptr, &error);
    auto controller = make<GPController>();
    if (!nib || !nib->instantiateNibWithOwner_topLevelObjects_error(controller, nullptr, &error))
        return std::fprintf(stderr, "%s\n", error->description()->UTF8String()), 1;

    std::printf("%s\n", controller->panel()->description()->UTF8String());
    for (id part : controller->panel()->parts())
        std::printf("  %s\n", static_cast<GPLabel*>(part)->text()->UTF8String());
    static_cast<GPButton*>(controller->panel()->parts()->lastObject())->press();
    std::printf("%s\n", controller->panel() ? "still open" : "closed");
}
