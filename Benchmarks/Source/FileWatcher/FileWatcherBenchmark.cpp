// SPDX-License-Identifier: Apache-2.0
// The time from a write to the report of it, reports in number, and watches in number, beside inotify itself
// and the watchers of Qt and GIO. Times are those of a clock on the wall.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <gio/gio.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <unistd.h>

#define QT_NO_KEYWORDS
#include <QCoreApplication>
#include <QFileSystemWatcher>
#include <QStringList>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "BaseLibrary.h"
#include "FileWatcher/PBFileWatcher.h"
#include "FileWatcher/ZWKQueue.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSWorkspace.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"

namespace pelvor {

extern Library benchmarkLibrary;

using Clock = std::chrono::steady_clock;

class Reader : public NSObject {
    PELVOR_CLASS(Reader, NSObject);

  public:
    void hear(NSNotification*) { note(); }
    void noted(id, std::uint32_t, NSString*) { note(); }
    void note() {
        last.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
        heard.fetch_add(1, std::memory_order_release);
        heard.notify_one();
    }
    void await(std::int64_t count) {
        for (std::int64_t now; (now = heard.load(std::memory_order_acquire)) < count;) heard.wait(now);
    }

    std::atomic<std::int64_t> heard{0};
    std::atomic<Clock::rep> last{0};

  protected:
    Reader() = default;
    ~Reader() { NSWorkspace::sharedWorkspace()->notificationCenter()->removeObserver(this); }
};

namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&Reader::classRecord};

// Empty files in a folder of their own, open for writing if they are few.
class Files {
  public:
    explicit Files(int count, bool areOpen = true) {
        std::string name = std::filesystem::temp_directory_path() / "PelvorXXXXXX";
        if (!mkdtemp(name.data())) std::abort();
        _folder = name;
        for (int i = 0; i < count; ++i) {
            paths.push_back(_folder + "/" + std::to_string(i));
            const int file = open(paths.back().c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
            if (file < 0) std::abort();
            areOpen ? _files.push_back(file) : void(close(file));
        }
    }
    ~Files() {
        for (int file : _files) close(file);
        std::filesystem::remove_all(_folder);
    }
    Files(const Files&) = delete;
    void write(std::size_t index = 0) {
        if (pwrite(_files[index], "x", 1, 0) != 1) std::abort();
    }

    std::vector<std::string> paths;

  private:
    std::string _folder;
    std::vector<int> _files;
};

void setTime(benchmark::State& state, Clock::time_point start, Clock::rep end) {
    state.SetIterationTime(
        std::chrono::duration<double>(Clock::duration(end) - start.time_since_epoch()).count());
}

// A queue whose reports the reader gets on the watcher thread.
Retained<ZWKQueue> queueFor(Reader* reader, const Files& files) {
    AutoreleasePool pool;
    auto queue = ZWKQueue::init();
    NSWorkspace::sharedWorkspace()->notificationCenter()->addObserver_selector_name_object(
        reader, "hear:"_sel, ZWFileWatcherWriteNotification, queue);
    for (const std::string& path : files.paths)
        queue->addPathToQueue_notifyingAbout(NSString::ofUTF8(path), ZWFileWritten);
    return queue;
}

// A thread that reads the events of inotify.
class RawReader {
  public:
    explicit RawReader(const Files& files) {
        for (const std::string& path : files.paths) inotify_add_watch(_inotify, path.c_str(), IN_MODIFY);
        _thread = std::thread([this] {
            alignas(inotify_event) char buffer[65536];
            while (reader->heard >= 0) {
                const ssize_t length = read(_inotify, buffer, sizeof buffer);
                for (ssize_t place = 0; place < length; place += ssize_t{sizeof(inotify_event)})
                    reader->note();
            }
        });
    }
    ~RawReader() {
        Files more(1);
        reader->heard = -2;  // the next event ends the thread
        inotify_add_watch(_inotify, more.paths[0].c_str(), IN_MODIFY);
        more.write();
        _thread.join();
        close(_inotify);
    }

    Retained<Reader> reader = make<Reader>();

  private:
    int _inotify = inotify_init1(IN_CLOEXEC);
    std::thread _thread;
};

// MARK: From a write to the report

void writeToWatcherThread(benchmark::State& state) {
    Files files(1);
    auto reader = make<Reader>();
    auto queue = queueFor(reader, files);
    for (std::int64_t count = 0; auto _ : state) {
        const auto start = Clock::now();
        files.write();
        reader->await(++count);
        setTime(state, start, reader->last);
    }
}

void peerInotify(benchmark::State& state) {
    Files files(1);
    RawReader raw(files);
    for (std::int64_t count = 0; auto _ : state) {
        const auto start = Clock::now();
        files.write();
        raw.reader->await(++count);
        setTime(state, start, raw.reader->last);
    }
}

void writeToDelegateOnMainThread(benchmark::State& state) {
    AutoreleasePool pool;
    Files files(1);
    auto reader = make<Reader>();
    auto watcher = PBFileWatcher::init();
    watcher->setDelegate(reader);
    watcher->addFileAtPath_actions(NSString::ofUTF8(files.paths[0]), PBFileWasWritten);
    for (std::int64_t count = 0; auto _ : state) {
        const auto start = Clock::now();
        files.write();
        for (++count; reader->heard < count;)
            NSRunLoop::mainRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
        setTime(state, start, reader->last);
    }
}

void peerQt(benchmark::State& state) {
    int argumentCount = 1;
    char name[] = "benchmark", *arguments[] = {name, nullptr};
    QCoreApplication application(argumentCount, arguments);
    Files files(1);
    auto reader = make<Reader>();
    QFileSystemWatcher watcher({QString::fromStdString(files.paths[0])});
    QObject::connect(&watcher, &QFileSystemWatcher::fileChanged, [&] { reader->note(); });
    for (std::int64_t count = 0; auto _ : state) {
        const auto start = Clock::now();
        files.write();
        for (++count; reader->heard < count;) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        setTime(state, start, reader->last);
    }
}

void peerGIO(benchmark::State& state) {
    Files files(1);
    auto reader = make<Reader>();
    GFile* file = g_file_new_for_path(files.paths[0].c_str());
    GFileMonitor* monitor = g_file_monitor_file(file, G_FILE_MONITOR_NONE, nullptr, nullptr);
    g_file_monitor_set_rate_limit(monitor, 0);
    const auto changed = +[](GFileMonitor*, GFile*, GFile*, GFileMonitorEvent event, gpointer user) {
        if (event == G_FILE_MONITOR_EVENT_CHANGED) static_cast<Reader*>(user)->note();
    };
    g_signal_connect(monitor, "changed", G_CALLBACK(changed), reader.get());
    for (std::int64_t count = 0; auto _ : state) {
        const auto start = Clock::now();
        files.write();
        for (++count; reader->heard < count;) g_main_context_iteration(nullptr, true);
        setTime(state, start, reader->last);
    }
    g_object_unref(monitor);
    g_object_unref(file);
}

BENCHMARK(writeToWatcherThread)->UseManualTime();
BENCHMARK(peerInotify)->UseManualTime();
BENCHMARK(writeToDelegateOnMainThread)->UseManualTime();
BENCHMARK(peerQt)->UseManualTime();
BENCHMARK(peerGIO)->UseManualTime();

// MARK: Events in number: each of 10,000 files is written once, and each write must be reported

constexpr int kFiles = 10'000;

template <class Reading>
void writeAndAwaitAll(benchmark::State& state, Files& files, Reading& reader) {
    std::int64_t count = 0;
    for (auto _ : state) {
        for (std::size_t i = 0; i < kFiles; ++i) files.write(i);
        reader.await(count += kFiles);
    }
    if (reader.heard != count) state.SkipWithError("there were more reports than writes");
    state.SetItemsProcessed(count);
}

void events(benchmark::State& state) {
    Files files(kFiles);
    auto reader = make<Reader>();
    auto queue = queueFor(reader, files);
    writeAndAwaitAll(state, files, *reader);
}

void peerInotifyEvents(benchmark::State& state) {
    Files files(kFiles);
    RawReader raw(files);
    writeAndAwaitAll(state, files, *raw.reader);
}

BENCHMARK(events)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(peerInotifyEvents)->UseRealTime()->Unit(benchmark::kMillisecond);

// MARK: Watches in number

constexpr int kManyFiles = 100'000;

void watches(benchmark::State& state) {
    AutoreleasePool pool;
    Files files(kManyFiles, false);
    std::vector<NSString*> paths;
    for (const std::string& path : files.paths) paths.push_back(NSString::ofUTF8(path));
    auto queue = ZWKQueue::init();
    for (auto _ : state) {
        for (NSString* path : paths) queue->addPath(path);
        state.PauseTiming();
        queue->removeAllPathsFromQueue();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kManyFiles);
}

void peerInotifyWatches(benchmark::State& state) {
    Files files(kManyFiles, false);
    for (auto _ : state) {
        const int inotify = inotify_init1(IN_CLOEXEC);
        for (const std::string& path : files.paths)
            if (inotify_add_watch(inotify, path.c_str(), IN_MODIFY | IN_ATTRIB | IN_MOVE_SELF) < 0)
                state.SkipWithError("the limit of watches is lower");
        state.PauseTiming();
        close(inotify);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kManyFiles);
}

BENCHMARK(watches)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(peerInotifyWatches)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

PELVOR_DEFINE_CLASS(Reader, benchmarkLibrary) {
    methods.instance<"hear:", &Reader::hear>();
    methods.instanceAs<"fileWatcher:notedAction:forFileAtPath:", &Reader::noted>();
}

constinit Library benchmarkLibrary{"Benchmark", kDependencies, kClasses, {}};

}  // namespace pelvor
