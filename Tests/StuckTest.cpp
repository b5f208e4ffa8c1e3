// SPDX-License-Identifier: Apache-2.0
#include "StuckTest.h"

#include <dirent.h>
#include <execinfo.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "Sanitizers.h"

namespace pelvor {
namespace {

// Below the time that CTest gives a test.
constexpr unsigned kSeconds = PELVOR_ADDRESS_SANITIZER || PELVOR_THREAD_SANITIZER ? 600 : 100;

// No thread of the library blocks this signal.
constexpr int kSignal = SIGTRAP;

void writePlace(int) {
    char head[64];
    char name[17] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    const int length = std::snprintf(head, sizeof head, "The test does not end. Thread %s:\n", name);
    (void)!write(STDERR_FILENO, head, static_cast<std::size_t>(length));
    void* calls[48];
    backtrace_symbols_fd(calls, backtrace(calls, 48), STDERR_FILENO);
}

// The alarm interrupts one thread, which interrupts all. They write one after another.
void interruptAll(int) {
    DIR* threads = opendir("/proc/self/task");
    while (const dirent* thread = threads ? readdir(threads) : nullptr) {
        const int number = std::atoi(thread->d_name);
        if (number <= 0 || syscall(SYS_tgkill, getpid(), number, kSignal) != 0) continue;
        const timespec moment{0, 300'000'000};
        nanosleep(&moment, nullptr);
    }
    if (threads) closedir(threads);
}

}  // namespace

void StuckTest::begin() {
    void* call;
    backtrace(&call, 1);  // loads what it needs, which it may not do inside a signal
    std::signal(kSignal, writePlace);
    std::signal(SIGALRM, interruptAll);
    alarm(kSeconds);
}

void StuckTest::end() { alarm(0); }

}  // namespace pelvor
