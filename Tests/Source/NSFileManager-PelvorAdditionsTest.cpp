// SPDX-License-Identifier: Apache-2.0
#include "NSFileManager-PelvorAdditions.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "ChildProcess.h"
#include "EnvironmentScope.h"
#include "Foundation/DesktopTrash.h"
#include "Foundation/ProgramRun.h"
#include "PBUtil.h"
#include "Prelude.h"
#include "TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using std::string;

class FileAdditionsTest : public ::testing::Test {
  protected:
    NSString* path(const string& name) const { return NSString::ofUTF8(folder.path(name)); }
    string unique(const string& name, NSString* suffix = u" (%d)"_ns) const {
        return shown(uniqueFileName_withSuffix_inFolder(files, NSString::ofUTF8(name), suffix, path("in")));
    }
    int trash(const string& name) const { return trashFileAtPath(files, path(name)); }
    int copy(const string& from, const string& to) const {
        return copyFileAtPath_toPath(files, path(from), path(to));
    }
    int move(const string& from, const string& to) const {
        return moveFileAtPath_toPath(files, path(from), path(to));
    }
    void chmod(const string& name, mode_t rights) const { ::chmod(folder.path(name).c_str(), rights); }
    // What the program writes; "-" and the status if it fails.
    static string outputOf(const string& program, std::initializer_list<Object*> arguments) {
        string output;
        const int status = runProgram(NSString::ofUTF8(program), NSArray::of(arguments), &output);
        return status == 0 ? output : "-" + std::to_string(status);
    }
    static string outputOfShell(const string& command) {
        return outputOf("/bin/sh", {u"-c"_ns, NSString::ofUTF8(command)});
    }
    // The status of the work in a process of another user.
    template <class Work>
    static int asOtherUser(Work work) {
        return inChild([&] { return becomeUser(65534) ? work() : 255; });
    }

    inline static NSFileManager* const files = NSFileManager::defaultManager();
    AutoreleasePool pool;
    const string archiver = libraryProgramsFolder()->toUTF8() + "/ditto";
    TemporaryFolder folder;
    EnvironmentScope data{"XDG_DATA_HOME", folder.path("data").c_str()};
    EnvironmentScope temporary{"TMPDIR", folder.path().c_str()};
};

// MARK: Names

TEST_F(FileAdditionsTest, UniqueNamesGoOnBehindTheTakenOnes) {
    for (const char* name : {"Report.txt", "Report (1).txt", "plain", ".hidden", "a.tar.gz", "Ä.txt", "end."})
        folder.write(string("in/") + name, "");
    fs::create_symlink("nowhere", folder.path("in/link.txt"));
    expectAll({"Report.txt -> Report (2).txt", "other.txt -> other.txt", "plain -> plain (1)",
               ".hidden -> .hidden (1)", "a.tar.gz -> a.tar (1).gz", "link.txt -> link (1).txt",
               "Ä.txt -> Ä (1).txt", "end. -> end (1)", "other. -> other."},
              [&](const string& name) { return unique(name); });
    EXPECT_EQ(unique("plain", u"-%03x!"_ns), "plain-001!");
    EXPECT_EQ(shown(uniqueFileName_inFolder(files, nullptr, path("in")),
                    uniqueFileName_inFolder(files, u"x"_ns, nullptr),
                    uniqueFileName_inFolder(files, u"x"_ns, path("none"))),
              "(null) (null) x");
    folder.write("notes.txt", "");
    EXPECT_EQ(shown(tempFilePathWithFileName(files, u"notes.txt"_ns)), folder.path("notes-1.txt"));
}

TEST_F(FileAdditionsTest, TheLastUniqueNameHasTheNumber99997) {
    folder.write("in/x", "");
    const int in = open(folder.path("in").c_str(), O_RDONLY | O_DIRECTORY);
    // Some file systems give a file few names.
    const auto take = [&](const string& name) {
        if (linkat(in, "x", in, name.c_str(), 0) != 0) close(openat(in, name.c_str(), O_CREAT, 0600));
    };
    for (int number = 1; number < 99'997; ++number) take("x" + std::to_string(number));
    take("x 0030"), take("x.99997.99997");
    EXPECT_EQ(unique("x", u"%d"_ns), "x99997");
    EXPECT_EQ(unique("x.99997.99997", u"%d"_ns), "x.999971.99997");
    take("x99997");
    EXPECT_EQ(unique("x", u"%d"_ns), "(null)");
    EXPECT_EQ(unique("x", u"%x"_ns), "xa") << "hexadecimal digits are other names";
    close(in);
}

// MARK: Moves, folders and access

TEST_F(FileAdditionsTest, ResultsSayWhatIsInTheWay) {
    folder.write("file", "old");
    folder.write("other", "other");
    folder.write("locked/file", "x");
    fs::create_directory(folder.path("open"));
    chmod("locked", 0555);
    chmod("", 0777);
    EXPECT_EQ(move("none", "x"), PBFileOperationNoSource);
    EXPECT_EQ(move("file", "other"), PBFileOperationDestinationTaken);
    EXPECT_EQ(folder.read("file") + folder.read("other"), "oldother");
    EXPECT_EQ(copy("file", "none/x"), PBFileOperationNoFolder);
    EXPECT_EQ(copy("open", "open/x"), PBFileOperationFailure);
    EXPECT_EQ(copyFileAtPath_toPath(files, nullptr, path("x")), PBFileOperationNoSource);
    const int result =
        asOtherUser([&] { return move("file", "locked/x") * 16 + copy("locked/file", "copy"); });
    EXPECT_EQ(result, geteuid() == 0 ? PBFileOperationDenied * 16 : 255);
    EXPECT_FALSE(copy("file", "copied") || move("copied", "moved"));
    EXPECT_EQ(folder.read("moved"), "old");
}

TEST_F(FileAdditionsTest, AccessNamesTheFirstObstacle) {
    for (const char* name : {"open/file", "open/closed", "shut/in/file"}) folder.write(name, "");
    chmod("open/closed", 0), chmod("shut", 0711), chmod("", 0755);
    const auto access = [&](const char* name) { return readAccessForFileAtPath(files, path(name)); };
    EXPECT_EQ(access("open/file"), PBFileIsReadable);
    EXPECT_EQ(access("open/none"), PBFileMissing);
    EXPECT_EQ(access("none/none"), PBFileFolderMissing);
    EXPECT_EQ(readAccessForFileAtPath(files, u"no such file"_ns), PBFileMissing) << "in the current folder";
    if (geteuid() != 0) return;
    EXPECT_EQ(asOtherUser([&] { return access("open/closed"); }), PBFileDenied);
    EXPECT_EQ(asOtherUser([&] { return access("shut/none"); }), PBFileFolderDenied);
    EXPECT_EQ(asOtherUser([&] { return access("shut/in/file"); }), PBFileIsReadable);
}

TEST_F(FileAdditionsTest, MakesFoldersAndTouchesAndKnowsAliases) {
    EXPECT_TRUE(createDirectoryRecursiveAtPath_attributes(
        files, path("a/b/c"), NSDictionary::of({{NSFilePosixPermissions, NSNumber::numberWithInt(0750)}})));
    struct stat status;
    ASSERT_EQ(stat(folder.path("a/b").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0750u);
    EXPECT_FALSE(createDirectoryRecursiveAtPath_attributes(files, path("a/b/c"), nullptr)) << "it is there";
    folder.write("file", "");
    string tooLong = "long";
    while (tooLong.size() < 1'000'000) tooLong += "/a";
    for (NSString* none : {path("file/x"), path(tooLong), u"x"_ns, u""_ns, static_cast<NSString*>(nullptr)})
        EXPECT_FALSE(createDirectoryRecursiveAtPath_attributes(files, none, nullptr));
    EXPECT_FALSE(fs::exists(folder.path("long")));
    fs::last_write_time(folder.path("file"), fs::file_time_type::min());
    EXPECT_TRUE(touchFile(files, path("file")));
    EXPECT_LT(fs::file_time_type::clock::now() - fs::last_write_time(folder.path("file")),
              std::chrono::minutes(1));
    EXPECT_FALSE(touchFile(files, path("none")));

    fs::create_symlink("file", folder.path("one"));
    fs::create_symlink(folder.path("one"), folder.path("a/two"));
    fs::create_symlink("round", folder.path("round"));
    fs::create_symlink("nowhere", folder.path("dangling"));
    EXPECT_EQ(shown(resolvedPathForAliasAtPath(files, path("a/two"))), folder.path("file"));
    for (const char* name : {"file", "round", "dangling", "none"})
        EXPECT_EQ(resolvedPathForAliasAtPath(files, path(name)), nullptr) << name;
    EXPECT_TRUE(isAliasAtPath(files, path("round")) && !isAliasAtPath(files, path("file")));
    EXPECT_TRUE(isFileHiddenAtPath(files, u"/a/.b"_ns) && !isFileHiddenAtPath(files, u"/.a/b"_ns));
    EXPECT_EQ(shown(ourApplicationSupportFolderForDomain(files, FolderDomainUser)),
              folder.path("data/Pelvor Writer"));
    EXPECT_FALSE(fs::exists(folder.path("data/Pelvor Writer")));
}

// MARK: Messages

TEST_F(FileAdditionsTest, MessagesAreInTheUsersLanguage) {
    expectAll({"en -> the file already exists; unknown file error; unknown file error; permission denied; ",
               "fr -> le fichier existe déjà; erreur de fichier inconnue; erreur de fichier inconnue; "
               "accès refusé; ",
               "de -> die Datei gibt es schon; unbekannter Dateifehler; unbekannter Dateifehler; "
               "Zugriff verweigert; "},
              [](const string& language) {
                  const LanguageScope scope(language.c_str());
                  string all;
                  for (int code : {2, 99, -1})
                      all += PBLocalizedMessageForFileOperationResult(code)->toUTF8() + "; ";
                  return shown(all + PBLocalizedMessageForFileAccessType(16)->toUTF8() + ";",
                               PBLocalizedMessageForFileAccessType(3));
              });
    EXPECT_EQ(shown(_PBDoLocalize(u"_no such key"_ns, nullptr)), "_no such key");
}

TEST_F(FileAdditionsTest, TheLoadTimeSequencePreparesWhatTheHostMayUse) {
    const mode_t before = umask(0027);
    NSFileManager_PelvorAdditions::didLoad();
    EXPECT_EQ(NSFileManager_PelvorAdditions::fileCreationMask(), 0027u);
    EXPECT_EQ(umask(before), 0027u);
    EXPECT_TRUE(NSFileManager_PelvorAdditions::temporaryNamesLock());
}

// MARK: The trash

TEST_F(FileAdditionsTest, WhatIsThrownAwayCanBeRestored) {
    const std::vector<string> originals{"letter.txt", "50% of ü\n.txt", string(251, 'x') + ".txt"};
    for (const string& name : originals) {
        folder.write(name, name);
        EXPECT_EQ(trash(name), 0) << name;
    }
    folder.write("letter.txt", "second");
    EXPECT_EQ(trash("letter.txt"), 0);
    EXPECT_EQ(folder.read("data/Trash/files/letter-1.txt"), "second");
    EXPECT_THAT(folder.read("data/Trash/info/50% of ü\n.txt.trashinfo"),
                ::testing::MatchesRegex("\\[Trash Info\\]\nPath=/[^\n]*/50%25%20of%20%C3%BC%0A.txt\n"
                                        "DeletionDate=....-..-..T..:..:..\n"));
    const DesktopTrash home = DesktopTrash::ofHome();
    ASSERT_EQ(home.contents().size(), 4u);
    for (const TrashEntry& entry : home.contents()) {
        EXPECT_LT(std::abs(entry.date - time(nullptr)), 100);
        EXPECT_EQ(home.restore(entry), entry.name != "letter.txt" || !fs::exists(entry.original));
    }
    for (const string& name : originals) EXPECT_TRUE(fs::exists(folder.path(name))) << name;
    ASSERT_EQ(home.contents().size(), 1u) << "of two letters, one can be at the old place";
    EXPECT_FALSE(home.restore(home.contents()[0]));
    EXPECT_EQ(errno, EEXIST);
}

TEST_F(FileAdditionsTest, TheTrashSaysWhyNot) {
    EXPECT_EQ(trash("none"), PBFileOperationNoSource);
    EXPECT_EQ(trashFileAtPath(files, nullptr), PBFileOperationNoSource);
    for (const char* name : {"data/Trash/info/x.trashinfo", "x", "file"}) folder.write(name, "");
    EXPECT_EQ(trash("x"), 0);
    for (const char* own : {"data", "data/Trash", "data/Trash/info", "data/Trash/files/x-1"})
        EXPECT_EQ(trash(own), PBFileOperationFailure) << own;
    EXPECT_TRUE(fs::exists(folder.path("data/Trash/files/x-1"))) << "the name x has a text without a file";
    const EnvironmentScope inFile("XDG_DATA_HOME", folder.path("file/data").c_str());
    EXPECT_EQ(trash("file"), PBFileOperationFailure);
    // A text that leads elsewhere is nobody's.
    folder.write("other/Trash/files/evil", "");
    const EnvironmentScope other("XDG_DATA_HOME", folder.path("other").c_str());
    for (const char* evil : {"/tmp/../etc/evil", "%00/evil"}) {
        folder.write("other/Trash/info/evil.trashinfo", string("[Trash Info]\nPath=") + evil + "\n");
        EXPECT_THAT(DesktopTrash::ofHome().contents(), IsEmpty());
    }
    EXPECT_FALSE(DesktopTrash::ofHome().restore({"evil", folder.path("") + string("\0/evil", 6), 0}));
}

TEST_F(FileAdditionsTest, EachFileSystemHasATrashOfItsOwn) {
    struct stat own, other;
    if (stat("/dev/shm", &other) != 0 || access("/dev/shm", W_OK) != 0 ||
        stat(folder.path().c_str(), &own) != 0 || own.st_dev == other.st_dev)
        GTEST_SKIP() << "there is no other file system";
    const EnvironmentScope elsewhere("TMPDIR", "/dev/shm");
    const TemporaryFolder shared;
    shared.write("a b.txt", "text");
    EXPECT_EQ(trashFileAtPath(files, NSString::ofUTF8(shared.path("a b.txt"))), 0);
    const string trashes = "/dev/shm/.Trash-" + std::to_string(getuid());
    bool isFound = false;
    for (const DesktopTrash& trash : DesktopTrash::all())
        for (const TrashEntry& entry : trash.contents())
            if (entry.original == shared.path("a b.txt"))
                isFound = trash.files() == trashes + "/files" && trash.restore(entry);
    EXPECT_TRUE(isFound);
    EXPECT_EQ(shared.read("a b.txt"), "text");
    // Neither a text nor a link leads out of the file system.
    fs::create_symlink(folder.path(), shared.path("link"));
    for (const string& evil : {folder.path("evil"), shared.path("link/evil")}) {
        std::ofstream(trashes + "/files/evil");
        std::ofstream(trashes + "/info/evil.trashinfo") << "[Trash Info]\nPath=" + evil + "\n";
        for (const TrashEntry& entry : DesktopTrash::ofFile(shared.path("")).contents())
            EXPECT_FALSE(entry.original == evil && DesktopTrash::ofFile(evil).restore(entry)) << evil;
        EXPECT_FALSE(fs::exists(folder.path("evil")));
    }
    for (const char* each : {"/files/evil", "/info/evil.trashinfo"}) unlink((trashes + each).c_str());
    for (const char* each : {"/files", "/info", ""}) rmdir((trashes + each).c_str());
    EXPECT_EQ(moveFileAtPath_toPath(files, NSString::ofUTF8(shared.path("a b.txt")), path("moved")), 0);
    EXPECT_EQ(folder.read("moved") + (fs::exists(shared.path("a b.txt")) ? " twice" : ""), "text");
}

TEST_F(FileAdditionsTest, AFullFileSystemGivesToTheUsersTrashAndKeepsNoPartOfAnArchive) {
    fs::create_directory(folder.path("full"));
    if (mount("none", folder.path("full").c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "no right to mount";
    folder.write("full/x", "text");
    folder.write("full/filling", string(100'000, 'f'));
    NSString* place = nullptr;
    EXPECT_EQ(trashFileAtPath_placeInTrash(files, path("full/x"), &place), 0) << strerror(errno);
    EXPECT_EQ(shown(place), folder.path("data/Trash/files/x"));
    EXPECT_EQ(folder.read("data/Trash/files/x"), "text");
    if (fs::exists(archiver)) {
        EXPECT_EQ(outputOf(archiver, {u"-c"_ns, u"/proc/self/exe"_ns, path("full/out.cpio")}), "-1");
    }
    for (const fs::path& left : fs::directory_iterator(folder.path("full")))
        EXPECT_THAT(left.filename().string(), ::testing::MatchesRegex("filling|\\.Trash-.*"));
    umount(folder.path("full").c_str());
}

TEST_F(FileAdditionsTest, OtherProgramsReadOurTrashAndWeReadTheirs) {
    if (!fs::exists("/usr/bin/gio")) GTEST_SKIP() << "gio is not installed";
    folder.write("theirs 100%.txt", "theirs");
    ASSERT_EQ(outputOf("/usr/bin/gio", {u"trash"_ns, path("theirs 100%.txt")}), "");
    const DesktopTrash home = DesktopTrash::ofHome();
    ASSERT_EQ(home.contents().size(), 1u);
    EXPECT_TRUE(home.restore(home.contents()[0]));
    EXPECT_EQ(folder.read("theirs 100%.txt"), "theirs");
    EXPECT_EQ(trash("theirs 100%.txt"), 0);
    // Listing and restoring need a service, which needs a bus.
    if (!fs::exists("/usr/share/gvfs/mounts/trash.mount") || !fs::exists("/usr/bin/dbus-run-session"))
        GTEST_SKIP() << "gio has no service that lists the trash";
    const auto gio = [](NSString* option, NSString* what) {
        return outputOf("/usr/bin/dbus-run-session", {u"--"_ns, u"gio"_ns, u"trash"_ns, option, what});
    };
    EXPECT_THAT(gio(u"--list"_ns, u"--"_ns), HasSubstr(folder.path("theirs 100%.txt")));
    EXPECT_EQ(gio(u"--restore"_ns, u"trash:///theirs%20100%25.txt"_ns), "");
    EXPECT_EQ(folder.read("theirs 100%.txt"), "theirs");
}

// MARK: Archives

TEST_F(FileAdditionsTest, TemporaryArchivesAreCopiesOrCompressed) {
    if (!fs::exists(archiver)) GTEST_SKIP() << "there is no archiver";
    LogLines log;
    folder.write("in/notes.rtf", "some text");
    folder.write("in/notes.ZIP", "zip");
    folder.write("in/tree.sit/file", "in a folder");
    mkfifo(folder.path("in/pipe.zip").c_str(), 0600);
    expectAll({"none -> (null)", "notes.ZIP -> notes.ZIP", "notes.ZIP -> notes-1.ZIP",
               "notes.rtf -> notes.cpio", "tree.sit -> tree.sit", "pipe.zip -> (null)"},
              [&](const string& name) {
                  NSString* archive = tempArchiveForFileAtPath(files, path("in/" + name));
                  return archive ? archive->toUTF8().substr(folder.path("").size()) : "(null)";
              });
    EXPECT_THAT(log.lines, ElementsAre(::testing::MatchesRegex("ditto is located at \"/.*/ditto\"")));
    EXPECT_EQ(tempArchiveForFileAtPath(files, nullptr), nullptr);
    for (const char* name : {"notes.cpio", "notes.ZIP"})
        EXPECT_EQ(fs::status(folder.path(name)).permissions(), fs::perms::owner_read | fs::perms::owner_write)
            << name;
    EXPECT_EQ(folder.read("notes.ZIP") + " " + folder.read("tree.sit/file"), "zip in a folder");
    EXPECT_FALSE(fs::exists(folder.path("pipe.zip")));
    if (!fs::exists("/usr/bin/cpio")) GTEST_SKIP() << "nothing can unpack it";
    fs::remove(folder.path("in/notes.rtf"));
    EXPECT_EQ(outputOfShell("cd '" + folder.path("in") + "' && gzip -dc ../notes.cpio | cpio -i --quiet"),
              "");
    EXPECT_EQ(folder.read("in/notes.rtf"), "some text");
}

TEST_F(FileAdditionsTest, TheArchiverPacksFoldersAndLeavesNothingElse) {
    if (!fs::exists(archiver) || !fs::exists("/usr/bin/cpio")) GTEST_SKIP() << "there is no archiver";
    folder.write("tree/a/b", "text");
    fs::create_symlink("b", folder.path("tree/a/link"));
    const auto pack = [&](const char* target) {
        return outputOf(archiver, {u"-c"_ns, u"-X"_ns, u"-z"_ns, u"--rsrc"_ns, path("tree"), path(target)});
    };
    EXPECT_EQ(pack("out.cpio"), "");
    const string in = "cd '" + folder.path("") + "' && ";
    EXPECT_EQ(outputOfShell(in + "gzip -dc out.cpio | cpio -t --quiet | sort | tr '\\n' ' '"),
              ". ./a ./a/b ./a/link ");
    folder.write("victim", "untouched");
    fs::create_symlink("victim", folder.path("planted"));
    EXPECT_EQ(pack("planted") + pack("out.cpio") + pack("none/x"), "-1-1-1");
    EXPECT_EQ(folder.read("victim"), "untouched");
    EXPECT_EQ(outputOf(archiver, {u"-x"_ns}), "-2");
    // The system kills whoever writes a file of more than 512 bytes.
    EXPECT_EQ(
        outputOfShell(in + "ulimit -c 0 && ulimit -f 1 && exec " + archiver + " -c /proc/self/exe half.cpio"),
        "-" + std::to_string(128 + SIGXFSZ));
    EXPECT_EQ(outputOfShell(in + "ls"), "out.cpio\nplanted\ntree\nvictim\n");
}

}  // namespace
