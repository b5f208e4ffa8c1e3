// SPDX-License-Identifier: Apache-2.0
// NSLog: the log of the process.
#pragma once

#include <functional>
#include <string_view>

#include "Foundation/NSString.h"

namespace pelvor {

/// A message of the log. Both texts are UTF-8 and live as long as the call.
struct LogEntry {
    std::string_view text;  ///< as it was logged
    std::string_view line;  ///< "2026-11-21 10:00:00.123 program[pid] text" in local time, without line feed
};

/// Takes the messages, one at a time, on the threads that log. What a sink itself logs goes to standard
/// error.
using LogSink = std::function<void(const LogEntry&)>;

/// Sends the log to the sink from now on, and returns the previous sink. An empty sink stands for standard
/// error, to which each line is written in one step. When the call returns, no call of the previous sink is
/// running, unless that sink itself made the call.
PELVOR_EXPORT LogSink setLogSink(LogSink sink);

/// Sends the log to a sink for the time of a scope:
///
///     std::vector<std::string> lines;
///     LogSinkScope scope([&](const LogEntry& entry) { lines.emplace_back(entry.text); });
class PELVOR_EXPORT LogSinkScope {
  public:
    explicit LogSinkScope(LogSink sink) : _previous(setLogSink(std::move(sink))) {}
    ~LogSinkScope() { setLogSink(std::move(_previous)); }
    LogSinkScope(const LogSinkScope&) = delete;
    LogSinkScope& operator=(const LogSinkScope&) = delete;

  private:
    LogSink _previous;
};

/// Logs a text in UTF-8. Never raises: an exception of a sink is dropped. Any thread.
PELVOR_EXPORT void logText(std::string_view text) noexcept;

/// Logs the format with its arguments in place: `NSLog(u"%@ has %d pages"_ns, title, count)`; see
/// `formatString`. Passes on an exception of an argument's description. Any thread.
PELVOR_EXPORT void logFormat(NSString* format, std::span<const FormatArgument> arguments);
template <class... A>
void NSLog(NSString* format, const A&... arguments) {
    logFormat(format, detail::formatArguments(arguments...));
}

}  // namespace pelvor
