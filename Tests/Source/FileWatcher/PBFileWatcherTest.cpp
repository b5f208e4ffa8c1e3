// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/PBFileWatcher.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>

#include "Witness.h"

namespace {

struct PBFileWatcherTest : WatcherTest {
    PBFileWatcherTest() { watcher->setDelegate(witness); }
    ~PBFileWatcherTest() override {
        watcher = nullptr;
        awaitEndOfThreads(atFirst);
    }
    void watch(const std::string& name, std::uint32_t actions = ~0u) {
        watcher->addFileAtPath_actions(path(name), actions);
    }
    Retained<PBFileWatcher> watcher = PBFileWatcher::init();
};

TEST_F(PBFileWatcherTest, TellsTheActionsThatItWasAskedFor) {
    sh("echo >f; echo >g");
    watch("f", PBFileWasDeleted | PBFileWasRenamed), watch("g");
    sh("echo >>f; echo >>g"), runUntil("16 g");
    sh("mv f h"), runUntil("1 f");
    sh("rm h"), runUntil("4 f");
    watcher->watcher_receivedNotification_forPath(watcher, u"another"_ns, path("f"));
    EXPECT_EQ(witness->takeReports(), "2 g, 16 g, 1 f, 4 f");
}

// Each of these happens inside the call for the first action of an event that has two, and ends its reports.
TEST_F(PBFileWatcherTest, BearsWhatItsDelegateDoes) {
    const std::pair<const char*, std::function<void()>> deeds[] = {
        {"removes the path", [&] { watcher->removeFileAtPath(path("f")); }},
        {"removes and adds the path", [&] { watcher->removeFileAtPath(path("f")), watch("f"); }},
        {"raises", [] { throw NSException("Told", "on purpose"); }},
        {"invalidates the watcher", [&] { watcher->invalidate(); }},
        {"ends", [&] { witness = nullptr; }},
        {"ends with the watcher", [&] { witness = nullptr, watcher = nullptr; }},
    };
    watcher = nullptr;
    LogLines log;
    for (const auto& [name, deed] : deeds) {
        const auto before = descriptors();
        sh("echo >f; echo >end");
        std::string reports;
        witness = make<Witness>();
        witness->reaction = [&, &deed = deed](const std::string& report) {
            reports += report + ",";
            if (report == "2 f") deed();
        };
        watcher = PBFileWatcher::init();
        watcher->setDelegate(witness);
        watch("f"), watch("end", PBFileWasWritten);
        sh("echo >>f");
        runUntil([&] { return !reports.empty(); });
        const bool goesOn = witness && watcher->delegate();
        if (goesOn) sh("echo >>end"), runUntil([&] { return reports.ends_with("2 end,"); });
        EXPECT_EQ(reports, goesOn ? "2 f,2 end," : "2 f,") << name;
        watcher = nullptr;  // with which its thread ends
        awaitEndOfThreads(before);
    }
    logText("end");  // behind the lines of other threads
    EXPECT_THAT(log.lines, Contains("Error in ZWKQueue watcherThread: on purpose").Times(1));
}

// Saves the file in one of four styles, as editors do, and at last as "last".
[[noreturn]] void save(const std::string& path, int style, int count) {
    const std::string other = path + "~";
    for (int i = 0; i <= count; ++i) {
        if (style == 2) unlink(path.c_str());
        std::ofstream(style % 2 ? other : path) << (i == count ? "last" : i % 2 ? "text" : "longer text");
        if (style == 1) rename(other.c_str(), path.c_str());
        if (style == 3) renameat2(AT_FDCWD, other.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE);
        if (style == 3) unlink(other.c_str());
    }
    _exit(0);
}

// A client puts the watch on again when the name has got another file, and also, where files are deleted,
// when something in the folder was made. With lost reports it would never read "last".
TEST_F(PBFileWatcherTest, SeesTenThousandSavesInFourStyles) {
    // In place; renamed over, where the new file may be watched while it takes the name; deleted and made;
    // exchanged.
    const char* const allowed[] = {" 2 16 ", " 1 4 32 ", " 2 4 16 32 ", " 1 4 32 "};
    std::set<std::string> finished;
    witness->reaction = [&](const std::string& report) {
        const std::string action = report.substr(0, report.find(' '));
        const bool isOfFolder = report.ends_with('.');
        const std::string name = isOfFolder ? "2" : report.substr(action.size() + 1);
        if (isOfFolder || action == "1" || action == "4") watcher->removeFileAtPath(path(name)), watch(name);
        EXPECT_THAT(isOfFolder ? " 2 " : allowed[std::stoi(name)], HasSubstr(" " + action + " ")) << name;
        if (folder.read(name) == "last") finished.insert(name);
    };
    sh("touch 0 1 2 3");
    for (const char* name : {"0", "1", "2", "3"}) watch(name);
    watch(".", PBFileWasWritten);
    sh("echo >0");
    runUntil("2 0");
    const auto before = descriptors();
    for (int style = 0; style < 4; ++style)
        if (fork() == 0) save(folder.path(std::to_string(style)), style, 2'500);
    runUntil([&] { return finished.size() == 4; });
    for (int status, left = 4; left > 0; --left) {
        wait(&status);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(descriptors(), before);
}

}  // namespace
