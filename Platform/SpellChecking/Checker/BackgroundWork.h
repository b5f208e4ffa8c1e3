// SPDX-License-Identifier: Apache-2.0
// BackgroundWork: one thread that does one thing after the other.
#pragma once

#include <functional>
#include <memory>

namespace pelvor {

/// Does work on a thread that exists while there is work. Any thread may add work. What was added is done
/// also after this object's end, unless the process ends before.
class BackgroundWork {
  public:
    BackgroundWork();
    ~BackgroundWork();

    /// Where no thread can be had, the work is done at once.
    void add(std::function<void()> work);

  private:
    struct Queue;

    std::shared_ptr<Queue> _queue;
};

}  // namespace pelvor
