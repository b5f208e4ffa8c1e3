// SPDX-License-Identifier: Apache-2.0
// PelvorWriter: starts the application object.
#include <csignal>

#include "Foundation/NSMutableArray.h"
#include "Runtime/AutoreleasePool.h"
#include "Writer/WRApplication.h"
#include "Writer/WriterLibrary.h"

int main(int argc, char** argv) {
    const auto start = std::chrono::steady_clock::now();
    using namespace pelvor;
    AutoreleasePool pool;
    std::signal(SIGXFSZ, SIG_IGN);  // a file that grows too large is a failure to write, with a message
    registerLibrary(writerLibrary);
    auto* arguments = NSMutableArray::array();
    for (int i = 1; i < argc; ++i) arguments->addObject(NSString::ofUTF8(argv[i]));
    return WRApplication::initWithArguments_start(arguments, start)->run();
}
