// SPDX-License-Identifier: Apache-2.0
// BackgroundWork: functions that another thread calls one after the other.
#pragma once

#include <functional>
#include <memory>

namespace pelvor {

/// Calls functions on a thread that exists while there are functions to call. Any thread may add functions.
/// They are called even after this object has ended, unless the process ends before.
class BackgroundWork {
  public:
    BackgroundWork();
    ~BackgroundWork();

    /// Calls the function at once if the system gives no thread.
    void add(std::function<void()> work);

  private:
    struct Queue;

    std::shared_ptr<Queue> _queue;
};

}  // namespace pelvor
