// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/Checker/BackgroundWork.h"

#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace pelvor {

struct BackgroundWork::Queue {
    std::mutex lock;
    std::deque<std::function<void()>> waiting;
    bool hasThread = false;

    void work() {
        for (std::unique_lock guard(lock); hasThread = !waiting.empty(), hasThread;) {
            const std::function<void()> next = std::move(waiting.front());
            waiting.pop_front();
            guard.unlock();
            next();
            guard.lock();
        }
    }
};

BackgroundWork::BackgroundWork() : _queue(std::make_shared<Queue>()) {}
BackgroundWork::~BackgroundWork() = default;

void BackgroundWork::add(std::function<void()> work) {
    {
        std::lock_guard guard(_queue->lock);
        _queue->waiting.push_back(std::move(work));
        if (std::exchange(_queue->hasThread, true)) return;
    }
    try {
        std::thread([queue = _queue] { queue->work(); }).detach();
    } catch (const std::system_error&) {
        _queue->work();
    }
}

}  // namespace pelvor
