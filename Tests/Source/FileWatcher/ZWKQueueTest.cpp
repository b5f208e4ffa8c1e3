// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/ZWKQueue.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <set>

#include "ChildProcess.h"
#include "Sanitizers.h"
#include "Witness.h"

namespace {

std::atomic<unsigned> looks = 0, renumbering = 0;

}  // namespace

// As sshfs does, whose files get other numbers once the kernel has forgotten them.
extern "C" [[gnu::visibility("default")]] int statx(int folder, const char* path, int flags, unsigned mask,
                                                    struct statx* status) noexcept {
    const long result = syscall(SYS_statx, folder, path, flags, mask, status);
    ++looks;
    if (result == 0) status->stx_ino += renumbering;
    return static_cast<int>(result);
}

namespace {

struct ZWKQueueTest : WatcherTest {
    ZWKQueueTest() { queue->setDelegate(witness); }
    ~ZWKQueueTest() override {
        queue->removeAllPathsFromQueue();
        queue = nullptr;
        awaitEndOfThreads(atFirst);
    }
    void watch(const std::string& name) { queue->addPathToQueue_notifyingAbout(path(name), 0x7F); }

    // What is reported of the steps, "step | step". While a step is done, the thread of the queue waits for
    // the delegate, so that what the step changes is one event of each file.
    std::string reportsOf(const std::string& steps) {
        sh("echo >end");
        queue->addPathToQueue_notifyingAbout(path("end"), ZWFileWritten);
        // With the second ":", all is reported that was changed before.
        std::istringstream rest(":|" + steps + "|:|:");
        std::vector<std::string> reports;
        std::string step;
        witness->reaction = [&](const std::string& report) {
            if (report != "WrittenTo end") return reports.push_back(report);
            if (!std::getline(rest >> std::ws, step, '|')) return;
            if (step.starts_with("burst;")) burst(), step.erase(0, 6);
            if (step.starts_with("exchange")) {
                const std::string f = folder.path("f"), h = folder.path("h");
                renameat2(AT_FDCWD, f.c_str(), AT_FDCWD, h.c_str(), RENAME_EXCHANGE), step = ":";
            }
            sh(step + "; echo >>end");
        };
        witness->reaction("WrittenTo end");
        runUntil([&] { return !rest; });
        witness->reaction = nullptr;
        queue->removePath(path("end"));
        return joined(reports);
    }
    // Writes to two files in turn, more often than the kernel's queue has room.
    void burst() {
        int room = 0;
        std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> room;
        std::ofstream files[] = {std::ofstream(folder.path("a")), std::ofstream(folder.path("b"))};
        for (int i = 0; i < std::max(20'000, room + 1); ++i) files[i % 2] << "x" << std::flush;
    }

    Retained<ZWKQueue> queue = ZWKQueue::init();
};

// The rows of docs/file-watching.md. "f" has five bytes and the other name "g".
TEST_F(ZWKQueueTest, ReportsEachChangeUnderItsName) {
    const auto reportsOfRow = [&](const std::string& steps) {
        queue->removeAllPathsFromQueue();
        sh("rm -rf * && printf 12345 >f && ln f g && mkdir d");
        watch("f"), watch("d");
        return reportsOf(steps);
    };
    expectAll({"printf 54321 1<>f -> WrittenTo f",
               "printf 6 >>f -> WrittenTo f, SizeIncreased f",
               "truncate -s 0 f -> WrittenTo f",
               "truncate -s 99 f -> WrittenTo f, SizeIncreased f",
               "chmod 600 f -> AttributesChanged f",
               "touch f -> AttributesChanged f",
               "touch -m f -> WrittenTo f",
               "touch -a f -> ",
               "ln f h -> LinkCountChanged f",
               "ln f h; chmod 600 f -> AttributesChanged f, LinkCountChanged f",
               "rm g -> LinkCountChanged f",
               "rm f -> Deleted f, LinkCountChanged f",
               "rm g | rm f -> LinkCountChanged f, Deleted f, LinkCountChanged f",
               "mv f h -> Renamed f",
               "mv g h -> Renamed f",
               "mv f h | mv h f -> Renamed f, Renamed f",
               "echo >h; mv h f -> Deleted f, LinkCountChanged f",
               "echo >h | exchange f h -> Renamed f",
               "rm f; echo >f; echo >>f -> Deleted f, LinkCountChanged f",
               "mv f h | echo >>h | chmod 600 h -> Renamed f, WrittenTo f, AttributesChanged f",
               "mv f h | rm g h -> Renamed f, Deleted f, LinkCountChanged f",
               "echo >>f; chmod 600 f; mv f h; mv h f -> "
               "Renamed f, WrittenTo f, AttributesChanged f, SizeIncreased f",
               "echo >d/f | echo >>d/f | rm d/f | rmdir d -> WrittenTo d, WrittenTo d, Deleted d"},
              reportsOfRow);
}

TEST_F(ZWKQueueTest, ReportsTheEndOfAFileSystem) {
    sh("mkdir volume");
    const std::string volume = folder.path("volume");
    if (system(("mount -t tmpfs none " + volume).c_str()) != 0) GTEST_SKIP() << "no right to mount";
    sh("echo >volume/f");
    watch("volume/f");
    EXPECT_EQ(reportsOf("umount volume"), "AccessRevocation f");
}

TEST_F(ZWKQueueTest, ReportsEachOfSeveralPathsUntilItIsRemoved) {
    sh("echo >f; ln f g; ln -s f h");
    for (const char* name : {"f", "g", "h", "f", "nothing"}) queue->addPath(path(name));
    EXPECT_EQ(reportsOf("echo >>f"), "WrittenTo f, WrittenTo g, WrittenTo h, WrittenTo f");
    for (const char* name : {"f", "nothing"}) queue->removePath(path(name));
    EXPECT_EQ(reportsOf("echo >>f"), "WrittenTo g, WrittenTo h, WrittenTo f");
    NSString* paths = NSArray::of({path("g"), path("h"), path("f")})->description();
    EXPECT_EQ(shown(queue->description()),
              "ZWKQueue { watchedPaths = " + shown(paths) + ", alwaysNotify = NO }");
    EXPECT_EQ(reportsOf("rm g"), "Deleted g");
    queue->removeAllPathsFromQueue();
    EXPECT_EQ(reportsOf("echo >>f"), "");
}

TEST_F(ZWKQueueTest, PostsOnItsThreadWhereNoDelegateIsToldOrAlways) {
    sh("echo >f");
    queue->addPath(path("f"));
    auto other = observer();
    EXPECT_EQ(reportsOf("echo >>f"), "WrittenTo f");
    EXPECT_EQ(other->takeReports(), "");
    queue->setAlwaysNotify(true);
    EXPECT_EQ(reportsOf("echo >>f"), "WrittenTo f");
    EXPECT_TRUE(other->has("WrittenTo f elsewhere"));
    queue->setDelegate(nullptr);
    other->takeReports();
    sh("echo >>f");
    await([&] { return other->has("WrittenTo f elsewhere"); });
}

TEST_F(ZWKQueueTest, OutlivesItsLastOwnerByOneEvent) {
    for (bool hasHandle : {false, true}) {
        LogLines log;
        const auto before = descriptors();
        sh("echo >f");
        auto last = ZWKQueue::init();
        last->addPath(path("f"));
        WeakHandle handle(hasHandle ? last.get() : nullptr);
        auto other = observer();
        sh("echo >>f");
        await([&] { return !other->takeReports().empty(); });
        await([&] { return last->retainCount() == 1; });  // a report holds the queue
        last = nullptr;
        EXPECT_THAT(log.lines, ElementsAre("*** ZWKQueue thread termination disabled!"));
        EXPECT_GT(descriptors(), before);
        sh("echo >>f");
        await([&] { return descriptors() == before; });
        EXPECT_EQ(other->takeReports(), "WrittenTo f elsewhere");
        EXPECT_FALSE(handle.object());
        ASSERT_TRUE(ZWKQueue::init());  // which waits for nothing
        await([&] { return descriptors() == before; });
    }
}

TEST_F(ZWKQueueTest, FindsOutWhatTheKernelDropped) {
    for (std::string name : {"a", "b", "appended", "changed", "linked", "replaced", "renamed", "left"})
        sh("echo >" + name), watch(name);
    std::istringstream reports(
        reportsOf("burst; echo >>appended; chmod 600 changed; ln linked it; "
                  "echo >new; mv new replaced; mv renamed old"));
    std::set<std::string> found;
    for (std::string report; std::getline(reports >> std::ws, report, ',');) found.insert(report);
    EXPECT_THAT(found, ElementsAre("AttributesChanged changed", "Deleted replaced", "LinkCountChanged linked",
                                   "LinkCountChanged replaced", "Renamed renamed", "SizeIncreased a",
                                   "SizeIncreased appended", "SizeIncreased b", "WrittenTo a",
                                   "WrittenTo appended", "WrittenTo b"));
    EXPECT_EQ(reportsOf("chmod 600 old | echo >>left"),
              "AttributesChanged renamed, WrittenTo left, SizeIncreased left");
}

TEST_F(ZWKQueueTest, NamesALimitOnce) {
    if (PELVOR_THREAD_SANITIZER) GTEST_SKIP() << "no threads in a child";
    sh("echo >f; echo >g");
    std::fflush(nullptr);
    const int status = inChild([&] {
        rlimit descriptors;
        getrlimit(RLIMIT_NOFILE, &descriptors);
        const rlimit none = {0, descriptors.rlim_max};
        const auto limit = [](const char* what, int number) {
            return bool(std::ofstream(std::string("/proc/sys/user/max_inotify_") + what)
                        << number << std::flush);
        };
        if (unshare(CLONE_NEWUSER) != 0 || !limit("watches", 1)) return 77;
        LogLines log;
        auto own = ZWKQueue::init(), other = ZWKQueue::init();
        for (const char* name : {"f", "g", "g"}) own->addPath(path(name));
        limit("instances", 0);
        EXPECT_FALSE(ZWKQueue::init());
        setrlimit(RLIMIT_NOFILE, &none);
        EXPECT_FALSE(ZWKQueue::init());
        for (const char* name : {"f", "g"}) other->addPath(path(name));
        setrlimit(RLIMIT_NOFILE, &descriptors);
        EXPECT_THAT(log.lines, ElementsAre(HasSubstr("of fs.inotify.max_user_watches."),
                                           EndsWith("of fs.inotify.max_user_instances"),
                                           EndsWith("of RLIMIT_NOFILE"), HasSubstr("of RLIMIT_NOFILE.")));
        return HasFailure() ? 1 : 0;
    });
    if (status == 77) GTEST_SKIP() << "no limits of our own";
    EXPECT_EQ(status, 0);
}

// As on file systems that the kernel knows nothing of.
TEST_F(ZWKQueueTest, LooksAtFilesWhereTheKernelTellsNothing) {
    setenv("PELVOR_POLL_FILES", "1", true);
    queue = ZWKQueue::init();
    unsetenv("PELVOR_POLL_FILES");
    queue->setDelegate(witness);
    sh("echo >f; echo >g; echo >h");
    for (const char* name : {"f", "g", "h"}) watch(name);
    renumbering = 1;
    for (const unsigned before = looks; looks < before + 4;)  // all three, and the first one again
        loop->performReadyWorkForMode(NSDefaultRunLoopMode);
    sh("chmod 600 g"), runUntil("AttributesChanged g");
    sh("rm h"), runUntil("Deleted h");
    sh("echo >>f"), runUntil("SizeIncreased f");
    EXPECT_EQ(witness->takeReports(), "AttributesChanged g, Deleted h, WrittenTo f, SizeIncreased f");
    renumbering = 0;
}

}  // namespace
