// SPDX-License-Identifier: Apache-2.0
// PelvorWriter: starts the application object.
#include <csignal>

#include "Foundation/NSMutableArray.h"
#include "Runtime/AutoreleasePool.h"
#include "Writer/InputText.h"
#include "Writer/WRApplication.h"
#include "Writer/WriterLibrary.h"

int main(int argc, char** argv) {
    const auto start = std::chrono::steady_clock::now();
    using namespace pelvor;
    AutoreleasePool pool;
    // A file that grows too large and a reader that is gone are failures to write, with a message; what was
    // asked for is done nevertheless.
    for (int signal : {SIGXFSZ, SIGPIPE}) std::signal(signal, SIG_IGN);
    registerLibrary(writerLibrary);
    auto* arguments = NSMutableArray::array();
    for (int i = 1; i < argc; ++i) arguments->addObject(objectOfInput(argv[i]));
    return WRApplication::initWithArguments_start(arguments, start)->run();
}
