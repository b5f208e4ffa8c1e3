// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/ZWKQueue.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include "Sanitizers.h"
#include "Witness.h"

namespace {

constexpr std::uint32_t kAll = 0x7F;

struct ZWKQueueTest : WatcherTest {
    ZWKQueueTest() { queue->setDelegate(witness); }
    void watch(const std::string& name) { queue->addPathToQueue_notifyingAbout(path(name), kAll); }

    // What is reported of the steps. While a step is done, the thread of the queue waits for the delegate, so
    // that what the step changes is one event of each file.
    std::vector<std::string> reportsOf(std::vector<std::function<void()>> steps) {
        folder.write("end", "");
        queue->addPathToQueue_notifyingAbout(path("end"), ZWFileWritten);
        std::size_t done = 0;
        witness->reaction = [&](const std::string& report) {
            if (report != "WrittenTo end" || done == steps.size()) return;
            steps[done++]();
            append("end");
        };
        steps.resize(steps.size() + 2,
                     [] {});  // with the second, all that the others changed has been reported
        append("end");
        runUntil([&] { return done == steps.size(); });
        queue->removePath(path("end"));
        std::vector<std::string> reports = witness->takeReports();
        std::erase(reports, "WrittenTo end");
        return reports;
    }

    Retained<ZWKQueue> queue = ZWKQueue::init();
};

// The rows of docs/file-watching.md. Each begins with a file "f" of five bytes that is also named "g".
TEST_F(ZWKQueueTest, ReportsEachChangeUnderItsName) {
    const std::string f = file("f"), g = file("g"), h = file("h");
    const auto write = [&] { std::fstream(f) << "54321"; };
    const auto unlinkF = [&] { unlink(f.c_str()); };
    const auto renameTo = [](const std::string& from, const std::string& to) {
        return [=] { std::filesystem::rename(from, to); };
    };
    const timespec now[] = {{0, UTIME_NOW}, {0, UTIME_NOW}}, writtenNow[] = {{0, UTIME_OMIT}, {0, UTIME_NOW}};
    const std::string unlinked = "Deleted f, LinkCountChanged f";
    const struct {
        const char* name;
        std::string reports;
        std::vector<std::function<void()>> steps;
    } rows[] = {
        {"write", "WrittenTo f", {write}},
        {"append", "WrittenTo f, SizeIncreased f", {[&] { append("f"); }}},
        {"truncate", "WrittenTo f", {[&] { truncate(f.c_str(), 0); }}},
        {"truncate to more", "WrittenTo f, SizeIncreased f", {[&] { truncate(f.c_str(), 99); }}},
        {"chmod", "AttributesChanged f", {[&] { chmod(f.c_str(), 0600); }}},
        {"touch", "AttributesChanged f", {[&] { utimensat(0, f.c_str(), now, 0); }}},
        {"touch, time of writing only", "WrittenTo f", {[&] { utimensat(0, f.c_str(), writtenNow, 0); }}},
        {"link", "LinkCountChanged f", {[&] { link(f.c_str(), h.c_str()); }}},
        {"link and chmod", "AttributesChanged f, LinkCountChanged f", {[&] {
             link(f.c_str(), h.c_str()), chmod(f.c_str(), 0600);
         }}},
        {"unlink another name", "LinkCountChanged f", {[&] { unlink(g.c_str()); }}},
        {"unlink", unlinked, {unlinkF}},
        {"unlink the last name", "LinkCountChanged f, " + unlinked, {[&] { unlink(g.c_str()); }, unlinkF}},
        {"rename", "Renamed f", {renameTo(f, h)}},
        {"rename another name", "Renamed f", {renameTo(g, h)}},
        {"rename and back", "Renamed f, Renamed f", {renameTo(f, h), renameTo(h, f)}},
        {"rename over", unlinked, {[&] { folder.write("h", "new"), renameTo(h, f)(); }}},
        {"exchange", "Renamed f", {[&] {
             folder.write("h", "new"), renameat2(0, h.c_str(), 0, f.c_str(), RENAME_EXCHANGE);
         }}},
        {"delete and create", unlinked, {[&] { unlinkF(), folder.write("f", "again"), append("f"); }}},
        {"rename, then change",
         "Renamed f, WrittenTo f, AttributesChanged f",
         {renameTo(f, h), [&] { append("h"); }, [&] { chmod(h.c_str(), 0600); }}},
        {"rename, then unlink",
         "Renamed f, " + unlinked,
         {renameTo(f, h), [&] { unlink(h.c_str()), unlink(g.c_str()); }}},
        {"all at once", "Renamed f, WrittenTo f, AttributesChanged f, SizeIncreased f", {[&] {
             append("f"), chmod(f.c_str(), 0600), renameTo(f, h)(), renameTo(h, f)();
         }}},
    };
    for (const auto& [name, reports, steps] : rows) {
        folder.write("f", "12345");
        std::filesystem::create_hard_link(f, g);
        watch("f");
        EXPECT_EQ(joined(reportsOf(steps)), reports) << name;
        queue->removeAllPathsFromQueue();
        for (const std::string& each : {f, g, h}) unlink(each.c_str());
    }
}

TEST_F(ZWKQueueTest, ReportsWhatHappensInAFolder) {
    std::filesystem::create_directory(file("d"));
    watch("d");
    EXPECT_THAT(reportsOf({[&] { folder.write("d/f", ""); }, [&] { append("d/f"); },
                           [&] { unlink(file("d/f").c_str()); }, [&] { rmdir(file("d").c_str()); }}),
                ElementsAre("WrittenTo d", "WrittenTo d", "Deleted d"));
}

TEST_F(ZWKQueueTest, ReportsTheEndOfAFileSystem) {
    std::filesystem::create_directory(file("volume"));
    if (mount("none", file("volume").c_str(), "tmpfs", 0, nullptr) != 0) GTEST_SKIP() << "no right to mount";
    folder.write("volume/f", "12345");
    watch("volume/f");
    EXPECT_THAT(reportsOf({[&] { EXPECT_EQ(umount(file("volume").c_str()), 0); }}),
                ElementsAre("AccessRevocation f"));
}

TEST_F(ZWKQueueTest, ReportsEachOfSeveralPathsUntilItIsRemoved) {
    folder.write("f", "12345");
    std::filesystem::create_hard_link(file("f"), file("g"));
    std::filesystem::create_symlink(file("f"), file("h"));
    for (const char* name : {"f", "g", "h", "f"}) queue->addPath(path(name));
    queue->addPath(path("nothing"));
    const auto appendF = [&] { append("f"); };
    EXPECT_EQ(joined(reportsOf({appendF})), "WrittenTo f, WrittenTo g, WrittenTo h, WrittenTo f");
    queue->removePath(path("f"));
    queue->removePath(path("nothing"));
    EXPECT_EQ(joined(reportsOf({appendF})), "WrittenTo g, WrittenTo h, WrittenTo f");
    EXPECT_EQ(std::string(queue->description()->toUTF8()),
              std::string(NSString::stringWithFormat(u"ZWKQueue { watchedPaths = %@, alwaysNotify = NO }"_ns,
                                                     NSArray::of({path("g"), path("h"), path("f")}))
                              ->toUTF8()));
    EXPECT_EQ(joined(reportsOf({[&] { unlink(file("g").c_str()); }})), "Deleted g");
    queue->removeAllPathsFromQueue();
    EXPECT_EQ(joined(reportsOf({appendF})), "");
}

TEST_F(ZWKQueueTest, PostsOnItsThreadWhereNoDelegateIsToldOrAlways) {
    folder.write("f", "");
    queue->addPath(path("f"));
    auto observer = Witness::reacting();
    observer->listen(ZWFileWatcherWriteNotification);
    EXPECT_EQ(joined(reportsOf({[&] { append("f"); }})), "WrittenTo f");
    EXPECT_THAT(observer->takeReports(), IsEmpty());
    queue->setAlwaysNotify(true);
    append("f");
    runUntil("WrittenTo f");
    observer->await("WrittenTo f");
    queue->setDelegate(nullptr);
    observer->takeReports();
    append("f");
    observer->await("WrittenTo f");
    EXPECT_EQ(observer->reportsOnMainThread, 0);
    EXPECT_EQ(witness->takeReports().size(), 1u);
}

TEST_F(ZWKQueueTest, OutlivesItsLastOwnerByOneEvent) {
    const std::vector<std::string> told = {"*** ZWKQueue thread termination disabled!"};
    for (bool hasHandle : {false, true}) {
        LogLines log;
        const auto before = descriptors();
        folder.write("f", "");
        auto last = ZWKQueue::init();
        last->addPath(path("f"));
        WeakHandle handle(hasHandle ? last.get() : nullptr);
        auto observer = Witness::reacting();
        observer->listen(ZWFileWatcherWriteNotification);
        append("f");
        observer->await("WrittenTo f");
        observer->takeReports();
        await([&] { return last->retainCount() == 1; });  // a report holds the queue
        last = nullptr;
        EXPECT_EQ(log.lines, told);
        EXPECT_GT(descriptors(), before);
        append("f");
        await([&] { return descriptors() == before; });
        EXPECT_THAT(observer->takeReports(), ElementsAre("WrittenTo f"));
        EXPECT_FALSE(handle.object());
        ASSERT_TRUE(ZWKQueue::init());  // which waits for nothing
        await([&] { return descriptors() == before; });
    }
}

TEST_F(ZWKQueueTest, LogsWhatADelegateRaisesAndGoesOn) {
    folder.write("f", "");
    watch("f");
    LogLines log;
    witness->reaction = [](const std::string& report) {
        if (report == "WrittenTo f") throw NSException("Told", "on purpose");
    };
    append("f");
    runUntil("WrittenTo f");
    chmod(file("f").c_str(), 0600);
    runUntil("AttributesChanged f");
    EXPECT_THAT(log.lines, ElementsAre("Error in ZWKQueue watcherThread: on purpose"));
    EXPECT_FALSE(witness->hasReport("SizeIncreased f")) << "an exception ends the reports of its event";
}

// The kernel drops what does not fit into its queue, which nobody reads while the delegate is called.
TEST_F(ZWKQueueTest, FindsOutWhatTheKernelDropped) {
    int room = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> room;
    for (std::string name :
         {"a", "b", "appended", "changed", "linked", "replaced", "renamed", "left", "touched"}) {
        folder.write(name, "12345");
        watch(name);
    }
    auto reports = reportsOf({[&] {
        const int a = open(file("a").c_str(), O_WRONLY), b = open(file("b").c_str(), O_WRONLY);
        for (int i = 0; i < std::max(20'000, room + 1); ++i) pwrite(i % 2 ? a : b, "x", 1, 0);
        close(a), close(b);
        append("appended");
        chmod(file("changed").c_str(), 0600);
        link(file("linked").c_str(), file("other").c_str());
        std::filesystem::rename(folder.write("new", ""), file("replaced"));
        std::filesystem::rename(file("renamed"), file("elsewhere"));
    }});
    std::sort(reports.begin(), reports.end());
    reports.erase(std::unique(reports.begin(), reports.end()), reports.end());
    EXPECT_THAT(reports,
                ElementsAre("AttributesChanged changed", "Deleted replaced", "LinkCountChanged linked",
                            "LinkCountChanged replaced", "Renamed renamed", "SizeIncreased appended",
                            "WrittenTo a", "WrittenTo appended", "WrittenTo b"));
    EXPECT_THAT(reportsOf({[&] { append("left"), chmod(file("elsewhere").c_str(), 0600); }}),
                ElementsAre("WrittenTo left", "SizeIncreased left", "AttributesChanged renamed"));
}

// Runs in a process of its own; returns the lines of its log.
std::string logOf(const std::function<void()>& work) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        LogSinkScope scope([&](const LogEntry& entry) {
            (void)!write(ends[1], std::string(entry.text).append("\n").c_str(), entry.text.size() + 1);
        });
        work();
        _exit(0);
    }
    close(ends[1]);
    std::string lines;
    for (char buffer[4096]; auto length = read(ends[0], buffer, sizeof buffer);)
        lines.append(buffer, static_cast<std::size_t>(length));
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return lines;
}

TEST_F(ZWKQueueTest, NamesALimitOnce) {
    if (PELVOR_THREAD_SANITIZER) GTEST_SKIP() << "no threads in a child";
    folder.write("f", "");
    folder.write("g", "");
    const auto allow = [](const char* what, const char* number) {
        return unshare(CLONE_NEWUSER) == 0 &&
               !(std::ofstream(std::string("/proc/sys/user/max_inotify_") + what) << number << std::flush)
                    .fail();
    };
    const auto forbidDescriptors = [] {
        const rlimit limit = {0, 0};
        setrlimit(RLIMIT_NOFILE, &limit);
    };
    const std::string refused = "The kernel refuses a queue for file events: the limit is reached of ";
    const auto make = [] {
        if (ZWKQueue::init()) logText("It was made.");
    };
    EXPECT_EQ(logOf([&] { forbidDescriptors(), make(); }), refused + "RLIMIT_NOFILE\n");
    const auto logOfAdding = [&](const std::function<void()>& before, const std::function<void()>& after) {
        return logOf([&] {
            before();
            auto own = ZWKQueue::init();
            after();
            for (const char* name : {"f", "g", "g"}) own->addPath(path(name));
            _exit(0);
        });
    };
    const auto onceOf = [&](const char* name, const char* limit) {
        return "Cannot watch " + file(name) + ": the limit is reached of " + limit +
               ". Further files are not watched, without a line for each.\n";
    };
    EXPECT_EQ(logOfAdding([] {}, forbidDescriptors), onceOf("f", "RLIMIT_NOFILE"));
    if (logOf([&] {
            if (!allow("watches", "1")) logText("no");
        }) != "")
        GTEST_SKIP() << "no limits of our own";
    EXPECT_EQ(logOf([&] { allow("instances", "0"), make(); }), refused + "fs.inotify.max_user_instances\n");
    EXPECT_EQ(logOfAdding([&] { allow("watches", "1"); }, [] {}), onceOf("g", "fs.inotify.max_user_watches"));
}

// As it is done on file systems that the kernel knows nothing of.
TEST_F(ZWKQueueTest, LooksAtFilesWhereTheKernelTellsNothing) {
    setenv("PELVOR_POLL_FILES", "1", true);
    queue = ZWKQueue::init();
    unsetenv("PELVOR_POLL_FILES");
    queue->setDelegate(witness);
    for (std::string name : {"f", "g", "h"}) {
        folder.write(name, "12345");
        watch(name);
    }
    append("f");
    chmod(file("g").c_str(), 0600);
    unlink(file("h").c_str());
    runUntil([&] {
        return witness->hasReport("SizeIncreased f") && witness->hasReport("AttributesChanged g") &&
               witness->hasReport("Deleted h");
    });
    EXPECT_TRUE(witness->hasReport("WrittenTo f"));
    EXPECT_EQ(witness->takeReports().size(), 4u);
}

}  // namespace
