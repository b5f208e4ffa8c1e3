// SPDX-License-Identifier: Apache-2.0
// Witness: what a test of the file watchers is told, and files to change.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <condition_variable>
#include <mutex>
#include <thread>

#include "FileWatcher/PBFileWatcher.h"
#include "FileWatcher/ZWFNSubscribeFileWatcher.h"
#include "FileWatcher/ZWKQueue.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSWorkspace.h"
#include "Prelude.h"
#include "TemporaryFolder.h"

namespace pelvor {

/// A delegate and observer that writes down what it is told, "WrittenTo f", and does what it is asked to.
class Witness : public NSObject {
    PELVOR_CLASS(Witness, NSObject);

  public:
    using Reaction = std::function<void(const std::string& report)>;

    static Retained<Witness> reacting(Reaction reaction = nullptr);
    void watcher_receivedNotification_forPath(id watcher, NSString* name, NSString* path);
    void fileWatcher_notedAction_forFileAtPath(id watcher, std::uint32_t action, NSString* path);
    /// Hears the notification from the workspace's centre.
    void listen(NSString* name);
    void hear(NSNotification* notification);

    std::vector<std::string> takeReports();
    bool hasReport(const std::string& report);
    /// Waits for a report that comes on another thread.
    void await(const std::string& report);

    Reaction reaction;
    std::atomic<int> reportsOnMainThread{0};

  protected:
    ~Witness() { NSWorkspace::sharedWorkspace()->notificationCenter()->removeObserver(this); }

  private:
    void note(const std::string& what, NSString* path);

    std::mutex _mutex;
    std::condition_variable _hasMore;
    std::vector<std::string> _reports;
};

/// Files of a folder, and a witness of what happens to them.
struct WatcherTest : ::testing::Test {
    NSString* path(const std::string& name) { return NSString::ofUTF8(folder.path(name)); }
    std::string file(const std::string& name) { return folder.path(name); }
    void append(const std::string& name) { std::ofstream(folder.path(name), std::ios::app) << "more"; }
    void runUntil(const std::function<bool()>& isDone) {
        while (!isDone()) loop->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
    }
    void runUntil(const std::string& report) {
        runUntil([&] { return witness->hasReport(report); });
    }
    static std::ptrdiff_t descriptors() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    }
    template <class Condition>
    static void await(Condition condition) {
        while (!condition()) std::this_thread::yield();
    }

    AutoreleasePool pool;
    NSRunLoop* loop = NSRunLoop::mainRunLoop();  // with its descriptors
    TemporaryFolder folder;
    Retained<Witness> witness = Witness::reacting();
};

}  // namespace pelvor
