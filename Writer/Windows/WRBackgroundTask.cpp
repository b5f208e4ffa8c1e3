// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRBackgroundTask.h"

#include <utility>

#include "Foundation/NSObject-MainThread.h"
#include "Foundation/NSThread.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRBackgroundTask, windowsLibrary) {
    methods.instance<"finish", &WRBackgroundTask::finish>();
}

void WRBackgroundTask::start(std::function<void()> work, std::function<void()> end) {
    auto task = make<WRBackgroundTask>();
    task->_end = std::move(end);
    const auto doIt = [task, work = std::move(work)] {
        work();
        performSelectorOnMainThread_withObject_waitUntilDone(task.get(), "finish"_sel, nullptr, false);
    };
    try {
        NSThread::detach(doIt);
    } catch (const NSException&) {
        doIt();
    }
}

// The thread may be the last to release the task; nothing of the main thread is left in it then.
void WRBackgroundTask::finish() {
    const auto end = std::exchange(_end, nullptr);
    if (end) end();
}

}  // namespace pelvor
