// SPDX-License-Identifier: Apache-2.0
// Witness: what a test of the file watchers is told, and a folder with files to change.
#pragma once

#include <thread>

#include "FileWatcher/ZWKQueue.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSWorkspace.h"
#include "Prelude.h"
#include "TemporaryFolder.h"

namespace pelvor {

/// A delegate and observer that writes down what it is told, "WrittenTo f" or "2 f", and then reacts.
class Witness : public NSObject {
    PELVOR_CLASS(Witness, NSObject);

  public:
    // "ZWKQueueFileWrittenToNotification" is "WrittenTo".
    void watched(id, NSString* name, NSString* path) {
        const std::string text = name->toUTF8();
        note(text.substr(12, text.size() - 24), path);
    }
    void noted(id, std::uint32_t action, NSString* path) { note(std::to_string(action), path); }
    void hear(NSNotification* notification) {
        watched(nullptr, notification->name(),
                cast<NSString>(notification->userInfo()->objectForKey(u"path"_ns)));
    }
    /// What was reported since it was asked last.
    std::string takeReports() {
        std::lock_guard lock(_mutex);
        return joined(std::exchange(_reports, {}));
    }
    bool has(const std::string& report) {
        std::lock_guard lock(_mutex);
        return std::count(_reports.begin(), _reports.end(), report) != 0;
    }

    std::function<void(const std::string& report)> reaction;

  protected:
    ~Witness() { NSWorkspace::sharedWorkspace()->notificationCenter()->removeObserver(this); }

  private:
    void note(const std::string& what, NSString* path) {
        const std::string report = what + " " + path->lastPathComponent()->toUTF8();
        _mutex.lock();
        _reports.push_back(report + (NSThread::isMainThread() ? "" : " elsewhere"));
        _mutex.unlock();
        if (auto call = reaction) call(report);
    }

    std::mutex _mutex;
    std::vector<std::string> _reports;
};

struct WatcherTest : ::testing::Test {
    NSString* path(const std::string& name) { return NSString::ofUTF8(folder.path(name)); }
    /// Runs a command of the shell in the folder.
    void sh(const std::string& command) {
        EXPECT_EQ(system(("cd " + folder.path().string() + " && " + command).c_str()), 0) << command;
    }
    void runUntil(const std::function<bool()>& isDone) {
        while (!isDone()) loop->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
    }
    void runUntil(const std::string& report) {
        runUntil([&] { return witness->has(report); });
    }
    /// For what another thread does.
    static void await(const std::function<bool()>& isDone) {
        while (!isDone()) std::this_thread::yield();
    }
    static std::ptrdiff_t descriptors() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    }
    static Retained<Witness> observer() {
        auto observer = make<Witness>();
        NSWorkspace::sharedWorkspace()->notificationCenter()->addObserver_selector_name_object(
            observer, "hear:"_sel, ZWFileWatcherWriteNotification, nullptr);
        return observer;
    }

    /// The threads of queues end after their owners, and may wait for the main thread.
    void awaitEndOfThreads(std::ptrdiff_t before) {
        while (descriptors() > before) loop->performReadyWorkForMode(NSDefaultRunLoopMode);
    }

    AutoreleasePool pool;
    NSRunLoop* loop = NSRunLoop::mainRunLoop();  // with its descriptors
    const std::ptrdiff_t atFirst = descriptors();
    TemporaryFolder folder;
    Retained<Witness> witness = make<Witness>();
};

}  // namespace pelvor
