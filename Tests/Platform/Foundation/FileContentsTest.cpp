// SPDX-License-Identifier: Apache-2.0
// Tests of writing files as a whole or not at all, through the operations of data.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>

#include "FailingSystem.h"
#include "Prelude.h"
#include "TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using std::string;

class FileContentsTest : public ::testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        faults = {};
        faults.refusesUnnamedFiles = GetParam();
        fs::permissions(folder.path(""), fs::perms::all);
    }
    void TearDown() override { faults = {}; }

    // 0, or the reason why the file was not written.
    int save(const string& name, const string& text, bool isAtomic = true) {
        NSString* path = NSString::ofUTF8(folder.path(name));
        auto data = NSData::initWithBytes_length(text.data(), static_cast<NSUInteger>(text.size()));
        errno = 0;
        return data->writeToFile_atomically(path, isAtomic) ? 0 : errno ? errno : -1;
    }
    // The same in another process, as another user.
    int saveAs(uid_t user, const string& name, const string& text) {
        return inChild([&] { return becomeUser(user) ? save(name, text) : 255; });
    }

    struct stat statusOf(const string& name) {
        struct stat status {};
        lstat(folder.path(name).c_str(), &status);
        return status;
    }
    // "65534:7 640"
    string rightsOf(const string& name) {
        const struct stat status = statusOf(name);
        std::ostringstream text;
        text << status.st_uid << ':' << status.st_gid << ' ' << std::oct << (status.st_mode & 07777);
        return text.str();
    }
    string make(const string& name, const string& text, mode_t rights, uid_t owner = geteuid(),
                gid_t group = getegid()) {
        string path = folder.write(name, text);
        EXPECT_EQ(chown(path.c_str(), owner, group) | chmod(path.c_str(), rights), 0) << name;
        return path;
    }
    std::vector<string> names() { return namesIn(folder.path()); }

    TemporaryFolder folder;
};

INSTANTIATE_TEST_SUITE_P(, FileContentsTest, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "NamedFiles" : "UnnamedFiles"; });

// MARK: Where a path leads

TEST_P(FileContentsTest, WritesIntoWhatIsNoRegularFile) {
    const string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    fs::create_symlink("/dev/full", folder.path("full"));
    fs::create_symlink("/dev/null", folder.path("nothing"));
    const int file = open(folder.write("open", "old").c_str(), O_RDWR | O_APPEND);
    fs::create_symlink("/proc/self/fd/" + std::to_string(file), folder.path("descriptor"));
    const ino_t inode = statusOf("open").st_ino;
    for (bool isAtomic : {false, true}) {
        EXPECT_EQ(save("pipe", "x", isAtomic), ENXIO) << "nobody reads";
        int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
        char text[16] = {};
        EXPECT_EQ(save("pipe", "through", isAtomic), 0);
        EXPECT_EQ(read(reader, text, sizeof text), 7);
        close(reader);
        EXPECT_EQ(save("nothing", "x", isAtomic), 0);
        EXPECT_EQ(save("full", "x", isAtomic), ENOSPC);
        EXPECT_EQ(save("descriptor", "new", isAtomic), 0);
        EXPECT_EQ(save(".", "x", isAtomic), EISDIR);
        EXPECT_EQ(save(string("a\0b", 3), "x", isAtomic), EINVAL);
    }
    EXPECT_TRUE(S_ISFIFO(statusOf("pipe").st_mode) && S_ISLNK(statusOf("nothing").st_mode));
    EXPECT_TRUE(fs::is_character_file("/dev/null") && fs::is_character_file("/dev/full"));
    EXPECT_EQ(shown(folder.read("open"), statusOf("open").st_ino == inode), "oldnewnew 1")
        << "an open file is written to where it stands";
    close(file);
}

TEST_P(FileContentsTest, FollowsLinksToFilesThatAreNotThereYetAndTakesNamesOfAnyLength) {
    fs::create_directory(folder.path("sub"));
    fs::create_symlink("sub/second", folder.path("link"));
    fs::create_symlink("../third", folder.path("sub/second"));
    fs::create_symlink("round", folder.path("round"));
    for (const char* text : {"new", "newer"}) {
        EXPECT_EQ(save("link", text), 0);
        EXPECT_EQ(folder.read("third"), text);
    }
    EXPECT_TRUE(fs::is_symlink(folder.path("link")) && fs::is_symlink(folder.path("sub/second")));
    EXPECT_EQ(save("round", "x"), ELOOP);
    EXPECT_EQ(save("no folder/file", "x"), ENOENT);
    EXPECT_THAT(names(), ElementsAre("link", "round", "sub", "third"));
    for (std::size_t length : {252, 255}) {
        EXPECT_EQ(save(string(length, 'x'), "first"), 0) << length;
        EXPECT_EQ(save(string(length, 'x'), "second"), 0) << length;
        EXPECT_EQ(folder.read(string(length, 'x')), "second");
    }
    EXPECT_EQ(save(string(256, 'x'), "x"), ENAMETOOLONG);
}

// MARK: Owner, group and rights

TEST_P(FileContentsTest, KeepsTheRightsOfTheOldFileOrGivesWhatTheMaskLeaves) {
    fs::create_hard_link(make("file", "old", 0640), folder.path("other name"));
    EXPECT_EQ(save("file", "new"), 0);
    EXPECT_EQ(statusOf("file").st_mode & 07777, 0640u);
    EXPECT_EQ(faults.rightsWhileWritten & 07137, 0u);
    EXPECT_EQ(folder.read("file") + folder.read("other name"), "newold");
    EXPECT_THAT(names(), ElementsAre("file", "other name"));
    for (mode_t mask : {0, 022, 077}) {
        const mode_t before = umask(mask);
        fs::remove(folder.path("file"));
        EXPECT_EQ(save("file", "new"), 0);
        umask(before);
        EXPECT_EQ(statusOf("file").st_mode & 07777, 0666u & ~mask);
    }
}

TEST_P(FileContentsTest, KeepsOwnerAndGroupWhereTheUserMay) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    // The writer, and the owner, group and rights of the file, before and afterwards.
    expectAll({"root writes a user's file: 0 65534 7 640 -> 65534:7 640 new",
               "root writes a read-only file: 0 65534 7 400 -> 65534:7 400 new",
               "a user writes an own file: 65534 65534 65534 660 -> 65534:65534 660 new",
               "a user writes root's file: 65534 0 0 666 -> 65534:65534 666 new",
               "a group that cannot be kept: 65534 0 7 6672 -> 65534:65534 622 new",
               "an own read-only file: 65534 65534 65534 444 -> 65534:65534 444 old EACCES",
               "a file of somebody else: 65534 0 0 644 -> 0:0 644 old EACCES"},
              [this](const string& row) {
                  unsigned writer, owner, group, rights;
                  std::sscanf(row.c_str() + row.find(':'), ": %u %u %u %o", &writer, &owner, &group, &rights);
                  make("file", "old", rights, owner, group);
                  const int failure = saveAs(writer, "file", "new");
                  EXPECT_THAT(names(), ElementsAre("file")) << row;
                  const string result = rightsOf("file") + " " + folder.read("file");
                  fs::remove(folder.path("file"));
                  return failure ? result + " " + strerrorname_np(failure) : result;
              });
}

TEST_P(FileContentsTest, KeepsTheAccessListOfTheOldFile) {
    // Version 2; owner rw, user 1 rw, group none, mask rw, others none: tag, rights and user or group of
    // each.
    const unsigned char list[] = {2, 0, 0,   0,   1,   0,   6,  0, 255, 255, 255, 255, 2,   0,  6,
                                  0, 1, 0,   0,   0,   4,   0,  0, 0,   255, 255, 255, 255, 16, 0,
                                  6, 0, 255, 255, 255, 255, 32, 0, 0,   0,   255, 255, 255, 255};
    const string path = make("file", "old", 0600);
    if (setxattr(path.c_str(), "system.posix_acl_access", list, sizeof list, 0) != 0)
        GTEST_SKIP() << "the file system has no access lists";
    EXPECT_EQ(save("file", "new"), 0);
    char kept[sizeof list] = {};
    EXPECT_EQ(getxattr(path.c_str(), "system.posix_acl_access", kept, sizeof kept), ssize_t{sizeof list});
    EXPECT_EQ(std::memcmp(kept, list, sizeof list), 0);
    EXPECT_EQ(folder.read("file"), "new");
}

// MARK: Failures

TEST_P(FileContentsTest, AFailureLeavesTheOldContentAndTellsTheReason) {
    make("file", "old", 0644);
    const auto expectOldContent = [&](int failure, int reason) {
        EXPECT_EQ(failure, reason);
        EXPECT_EQ(folder.read("file"), "old") << strerrorname_np(reason);
        EXPECT_THAT(names(), ElementsAre("file")) << strerrorname_np(reason);
    };
    faults.failsToSync = true;
    expectOldContent(save("file", "new"), EIO);
    faults.failsToSync = false, faults.failsToClose = true;
    expectOldContent(save("file", "new"), ENOSPC);
    faults.failsToClose = false;
    int tooLarge = inChild([&] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1000, 1000};
        return setrlimit(RLIMIT_FSIZE, &limit) == 0 ? save("file", string(4000, 'x')) : 0;
    });
    expectOldContent(tooLarge, EFBIG);
}

TEST_P(FileContentsTest, WhatAKilledProcessLeftGoesWithTheNextWrite) {
    auto die = [&](const char* text) {
        return inChild([&] {
            faults.diesBeforeRenaming = true;
            return save("file", text);
        });
    };
    const bool hasUnnamedFiles = !faults.refusesUnnamedFiles;
    EXPECT_EQ(die("first"), hasUnnamedFiles ? 0 : -SIGKILL)
        << "a new file without another name needs no renaming";
    EXPECT_EQ(names().size(), 1u);
    EXPECT_EQ(save("file", "second"), 0);
    EXPECT_EQ(die("third"), -SIGKILL);
    ASSERT_EQ(names().size(), 2u);
    const string left = names()[0];
    EXPECT_EQ(save("file", "fourth"), 0);
    EXPECT_THAT(names(), ElementsAre("file"));

    // A file that a living process writes stays, and so does what a planted link leads to.
    const int living = open(folder.write(left, "living").c_str(), O_RDONLY);
    ASSERT_EQ(flock(living, LOCK_EX), 0);
    EXPECT_EQ(save("file", "fifth"), 0);
    EXPECT_EQ(folder.read(left), "living");
    close(living);
    fs::remove(folder.path(left));
    fs::create_symlink(folder.write("victim", "untouched"), folder.path(left));
    EXPECT_EQ(save("file", "sixth"), 0);
    EXPECT_EQ(folder.read("victim") + folder.read("file"), "untouchedsixth");
    EXPECT_THAT(names(), ElementsAre(left, "file", "victim"));
}

}  // namespace
