// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/PBFileWatcher.h"

#include <sys/wait.h>

#include <set>

#include "Witness.h"

namespace {

struct PBFileWatcherTest : WatcherTest {
    PBFileWatcherTest() { watcher->setDelegate(witness); }
    Retained<PBFileWatcher> watcher = PBFileWatcher::init();
};

TEST_F(PBFileWatcherTest, TellsTheActionsThatItWasAskedFor) {
    const std::string f = folder.write("f", "12345");
    watcher->addFileAtPath_actions(path("f"), PBFileWasDeleted | PBFileWasRenamed);
    folder.write("g", "");
    watcher->addFileAtPath_actions(path("g"), ~0u);
    append("f");
    append("g");
    runUntil("16 g");
    std::filesystem::rename(f, file("h"));
    runUntil("1 f");
    unlink(file("h").c_str());
    runUntil("4 f");
    watcher->watcher_receivedNotification_forPath(watcher, u"another"_ns, path("f"));
    watcher->removeFileAtPath(path("f"));
    watcher->removeFileAtPath(path("f"));
    EXPECT_THAT(witness->takeReports(), ElementsAre("2 g", "16 g", "1 f", "4 f"));
}

// Each of these happens inside the call for the first action of an event that has two.
TEST_F(PBFileWatcherTest, BearsWhatItsDelegateDoes) {
    const std::pair<const char*, std::function<void()>> deeds[] = {
        {"removes the path", [&] { watcher->removeFileAtPath(path("f")); }},
        {"removes and adds the path",
         [&] { watcher->removeFileAtPath(path("f")), watcher->addFileAtPath_actions(path("f"), ~0u); }},
        {"invalidates the watcher", [&] { watcher->invalidate(); }},
        {"ends the watcher", [&] { watcher = nullptr; }},
        {"ends", [&] { witness = nullptr; }},
        {"ends with the watcher", [&] { witness = nullptr, watcher = nullptr; }},
    };
    watcher = nullptr;
    for (const auto& [name, deed] : deeds) {
        const auto before = descriptors();
        for (const char* each : {"f", "end"}) folder.write(each, "12345");
        watcher = PBFileWatcher::init();
        watcher->addFileAtPath_actions(path("f"), ~0u);
        watcher->addFileAtPath_actions(path("end"), PBFileWasWritten);
        std::vector<std::string> reports;
        witness = Witness::reacting([&](const std::string& report) {
            reports.push_back(report);
            if (report == "2 f") deed();
        });
        watcher->setDelegate(witness);
        append("f");
        runUntil([&] { return !reports.empty(); });
        std::vector<std::string> expected = {"2 f"};
        if (witness && watcher && watcher->delegate()) {
            append("end");
            runUntil([&] { return reports.back() == "2 end"; });
            expected.push_back("2 end");
        }
        watcher = nullptr;  // with which its thread ends
        while (descriptors() > before) loop->performReadyWorkForMode(NSDefaultRunLoopMode);
        EXPECT_EQ(reports, expected) << name;
    }
}

// Saves the file in one of four styles, as editors do, and at last as "last".
[[noreturn]] void save(const std::string& path, int style, int count) {
    const std::string other = path + "~";
    const auto write = [](const std::string& name, std::string_view text, int flags) {
        const int file = open(name.c_str(), O_WRONLY | O_CREAT | flags, 0644);
        if (file < 0 || ::write(file, text.data(), text.size()) < 0) _exit(1);
        close(file);
    };
    for (int i = 0; i <= count; ++i) {
        const std::string_view text = i == count ? "last" : i % 2 ? "text" : "longer text";
        if (style == 0) write(path, text, O_TRUNC);
        if (style == 1) write(other, text, O_TRUNC), rename(other.c_str(), path.c_str());
        if (style == 2) unlink(path.c_str()), write(path, text, O_EXCL);
        if (style == 3) {
            write(other, text, O_TRUNC);
            renameat2(AT_FDCWD, other.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE);
            unlink(other.c_str());
        }
    }
    _exit(0);
}

// A client that watches a document puts the watch on again when the name has got another file, and watches
// the folder for the moment when the name comes back.
TEST_F(PBFileWatcherTest, SeesTenThousandSavesInFourStyles) {
    // A file that is watched while it takes the name may be reported as renamed, which it is.
    const char* const allowed[] = {" 2 16 ", " 1 4 32 ", " 2 4 16 32 ", " 1 4 32 "};
    std::set<std::string> actions[4], finished, missing;
    std::vector<std::string> ofRemoved;
    const auto numberOf = [&](const std::string& name) {
        struct stat state;
        return stat(file(name).c_str(), &state) == 0 ? state.st_ino : 0;
    };
    const auto watch = [&](const std::string& name) {
        ino_t number;
        do {
            number = numberOf(name);
            watcher->removeFileAtPath(path(name));
            watcher->addFileAtPath_actions(path(name), ~0u);
        } while (numberOf(name) != number);
        if (number == 0) missing.insert(name);
    };
    const std::string names[] = {"0", "1", "2", "3"};
    for (const std::string& name : names) folder.write(name, ""), watch(name);
    folder.write("removed", ""), watch("removed");
    append("removed");
    watcher->addFileAtPath_actions(NSString::ofUTF8(folder.path().string()), PBFileWasWritten);
    witness->reaction = [&](const std::string& report) {
        const std::string action = report.substr(0, report.find(' ')),
                          name = report.substr(action.size() + 1);
        if (name == "removed") {
            ofRemoved.push_back(report);
            watcher->removeFileAtPath(path(name));
        } else if (name.size() > 1) {
            for (const std::string& each : std::exchange(missing, {})) watch(each);
        } else {
            actions[std::stoi(name)].insert(action);
            if (action == "1" || action == "4") watch(name);
        }
        append("removed");
        for (const std::string& each : names)
            if (folder.read(each) == "last") finished.insert(each);
    };
    runUntil([&] { return !ofRemoved.empty(); });
    const auto before = descriptors();
    for (int style = 0; style < 4; ++style)
        if (fork() == 0) save(file(names[style]), style, 2'500);
    runUntil([&] { return finished.size() == 4; });
    for (int status, left = 4; left > 0; --left) {
        wait(&status);
        EXPECT_EQ(status, 0);
    }
    for (int style = 0; style < 4; ++style) {
        EXPECT_FALSE(actions[style].empty()) << style;
        for (const std::string& action : actions[style])
            EXPECT_THAT(allowed[style], HasSubstr(" " + action + " ")) << style;
    }
    EXPECT_EQ(descriptors(), before);
    EXPECT_THAT(ofRemoved, ElementsAre("2 removed"));
}

}  // namespace
