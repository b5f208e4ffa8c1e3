// SPDX-License-Identifier: Apache-2.0
// WRBackgroundTask: something that is done on another thread.
#pragma once

#include <functional>

#include "Runtime/Class.h"

namespace pelvor {

/// Work that may take long, and what the main thread does when it has ended:
///
///     auto found = std::make_shared<std::vector<Printer>>();
///     WRBackgroundTask::start([found] { askFor(*found); }, [=] { show(*found); });
///
/// The second function runs, and ends with what it holds, on the main thread. Where no thread can be had, the
/// work is done at once.
class WRBackgroundTask : public NSObject {
    PELVOR_CLASS(WRBackgroundTask, NSObject);

  public:
    // C++ only
    /// Main thread.
    static void start(std::function<void()> work, std::function<void()> end);

    /// The message to the main thread.
    void finish();

  protected:
    WRBackgroundTask() = default;
    ~WRBackgroundTask() = default;

  private:
    std::function<void()> _end;
};

}  // namespace pelvor
