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
constexpr time_t kSeconds = PELVOR_ADDRESS_SANITIZER || PELVOR_THREAD_SANITIZER ? 600 : 100;

// No thread of the library blocks this signal.
constexpr int kSignal = SIGTRAP;

void writePlace() {
    char head[64];
    char name[17] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    const int length = std::snprintf(head, sizeof head, "The test does not end. Thread %s:\n", name);
    (void)!write(STDERR_FILENO, head, static_cast<std::size_t>(length));
    void* calls[48];
    backtrace_symbols_fd(calls, backtrace(calls, 48), STDERR_FILENO);
}

// The timer interrupts one thread, which interrupts all. They write one after another.
void interrupt(int, siginfo_t* info, void*) {
    if (info->si_code != SI_TIMER) return writePlace();
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

StuckTest::StuckTest() {
    struct sigaction action {};
    action.sa_sigaction = interrupt;
    action.sa_flags = SA_SIGINFO | SA_RESTART | SA_NODEFER;
    sigaction(kSignal, &action, nullptr);
    void* call;
    backtrace(&call, 1);  // loads what it needs, which it may not do inside a signal
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = kSignal;
    timer_create(CLOCK_MONOTONIC, &event, &_timer);
}

void StuckTest::begin() { set(kSeconds); }
void StuckTest::end() { set(0); }

void StuckTest::set(time_t seconds) {
    const itimerspec times{{}, {seconds, 0}};
    timer_settime(_timer, 0, &times, nullptr);
}

}  // namespace pelvor
