// SPDX-License-Identifier: Apache-2.0
// A program that lies in a bundle and is linked to a framework; tells what it sees of them.
#include <iostream>

#include "Foundation/NSArray.h"
#include "Foundation/NSBundle.h"
#include "Frame.h"
#include "Runtime/AutoreleasePool.h"

using namespace pelvor;

int main() {
    AutoreleasePool pool;
    auto* main = NSBundle::mainBundle();
    std::cout << main->bundlePath() << '\n'
              << main->executablePath() << '\n'
              << main->bundleIdentifier() << '\n'
              << main->localizedStringForKey_value_table(u"_Greeting"_ns, nullptr, nullptr) << '\n';
    for (id framework : NSBundle::allFrameworks())
        std::cout << static_cast<NSBundle*>(framework)->bundlePath() << '\n';
    auto* frames = NSBundle::bundleForClass(Frame::classObject());
    std::cout << frames->bundlePath() << '\n' << frames->isLoaded() << '\n';
    std::cout << (NSBundle::bundleForClass(NSBundle::classObject()) == main) << '\n';
}
