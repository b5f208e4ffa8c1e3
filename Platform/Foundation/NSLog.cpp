// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSLog.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <string>

#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

struct Log {
    std::recursive_mutex mutex;  // recursive, so that a sink may log
    LogSink sink;
    bool isInSink = false;
};

// Never destroyed: destructors of other statics may log.
Log& sharedLog() {
    static auto& log = *new Log;
    return log;
}

std::string lineOf(std::string_view text) {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    tm local;
    localtime_r(&now.tv_sec, &local);
    char time[32], place[64];
    std::strftime(time, sizeof time, "%Y-%m-%d %H:%M:%S", &local);
    std::snprintf(place, sizeof place, "%s.%03ld ", time, now.tv_nsec / 1'000'000);
    std::string line = place;
    line += program_invocation_short_name;
    line += '[';
    line += std::to_string(getpid());
    line += "] ";
    line += text;
    return line;
}

void writeToStandardError(std::string line) {
    line += '\n';
    for (std::string_view rest = line; !rest.empty();) {
        ssize_t written = write(STDERR_FILENO, rest.data(), rest.size());
        if (written < 0 && errno != EINTR) return;
        if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

void hand(Log& log, const LogEntry& entry) {
    struct Ending {
        Log& log;
        ~Ending() { log.isInSink = false; }
    } ending{log};
    log.isInSink = true;
    LogSink sink = log.sink;  // a copy, since the sink may replace itself
    sink(entry);
}

}  // namespace

LogSink setLogSink(LogSink sink) {
    Log& log = sharedLog();
    std::lock_guard guard(log.mutex);
    std::swap(log.sink, sink);
    return sink;
}

void logText(std::string_view text) noexcept {
    int error = errno;
    try {
        std::string line = lineOf(text);
        Log& log = sharedLog();
        std::unique_lock guard(log.mutex);
        if (log.sink && !log.isInSink) {
            hand(log, {text, line});
        } else {
            guard.unlock();
            writeToStandardError(std::move(line));
        }
    } catch (...) {
        // A log that fails has no place to report its failure.
    }
    errno = error;
}

void logFormat(NSString* format, std::span<const FormatArgument> arguments) {
    AutoreleasePool pool;
    logText(formatString(format, arguments)->toUTF8());
}

}  // namespace pelvor
