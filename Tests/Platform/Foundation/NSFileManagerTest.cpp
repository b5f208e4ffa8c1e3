// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSFileManager.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/xattr.h>

#include <fstream>

#include "EnvironmentScope.h"
#include "FailingSystem.h"
#include "Foundation/DesktopTrash.h"
#include "Foundation/NSDictionary-PropertyList.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSUserDefaults.h"
#include "Foundation/StandardFolders.h"
#include "Foundation/UserLanguages.h"
#include "Prelude.h"
#include "TemporaryFolder.h"
#include "TestClasses.h"

namespace {

namespace fs = std::filesystem;
using std::string;

// Keeps what a file manager tells, and says what a test wants it to say.
class Handler : public NSObject {
    PELVOR_CLASS(Handler, NSObject);

  public:
    ~Handler() {
        if (hasEnded) *hasEnded = true;
    }
    void willProcess(id, NSString* path) {
        if (reaction) reaction();
        paths.push_back(path->lastPathComponent()->toUTF8());
        if (paths.back() == raisesAt) throw NSException("Handler", raisesAt);
    }
    bool shouldProceed(id, NSDictionary* error) {
        errors.push_back(cast<NSString>(error->objectForKey(u"Path"_ns))->lastPathComponent()->toUTF8() +
                         ": " + cast<NSString>(error->objectForKey(u"Error"_ns))->toUTF8());
        return goesOn;
    }

    std::vector<string> paths, errors;
    bool goesOn = true;
    string raisesAt;
    std::function<void()> reaction;
    bool* hasEnded = nullptr;
};

constinit Library handlerLibrary{"Handlers", {}, kClassesOf<Handler>, {}};
PELVOR_DEFINE_CLASS(Handler, handlerLibrary) {
    methods.instanceAs<"fileManager:willProcessPath:", &Handler::willProcess>();
    methods.instanceAs<"fileManager:shouldProceedAfterError:", &Handler::shouldProceed>();
}

class NSFileManagerTest : public ::testing::Test {
  protected:
    void SetUp() override { faults = {}; }
    void TearDown() override { faults = {}; }

    static NSString* text(const string& bytes) {
        return files->stringWithFileSystemRepresentation_length(bytes.data(),
                                                                static_cast<NSUInteger>(bytes.size()));
    }
    NSString* path(const string& name) const { return text(folder.path(name)); }
    // 0, or the reason of a failure.
    template <class Operation>
    static int reasonOf(Operation operation) {
        errno = 0;
        return operation() ? 0 : errno ? errno : -1;
    }
    int copy(const string& from, const string& to, id handler = nullptr) const {
        return reasonOf([&] { return files->copyPath_toPath_handler(path(from), path(to), handler); });
    }
    int move(const string& from, const string& to, id handler = nullptr) const {
        return reasonOf([&] { return files->movePath_toPath_handler(path(from), path(to), handler); });
    }
    int remove(const string& name, id handler = nullptr) const {
        return reasonOf([&] { return files->removeFileAtPath_handler(path(name), handler); });
    }
    struct stat statusOf(const string& name) const {
        struct stat status {};
        lstat(folder.path(name).c_str(), &status);
        return status;
    }
    // What is below, with the type, rights and content of each entry.
    static std::vector<string> treeAt(const fs::path& top) {
        std::vector<string> tree;
        if (!fs::exists(fs::symlink_status(top))) return tree;
        tree.push_back(describe(top, ""));
        if (fs::is_directory(fs::symlink_status(top)))
            for (const auto& entry : fs::recursive_directory_iterator(top))
                tree.push_back(describe(entry.path(), entry.path().lexically_relative(top)));
        std::ranges::sort(tree);
        return tree;
    }
    std::vector<string> tree(const string& name) const { return treeAt(folder.path(name)); }
    static string describe(const fs::path& path, const string& name) {
        struct stat status {};
        lstat(path.c_str(), &status);
        char mode[16];
        std::snprintf(mode, sizeof mode, " %o ", status.st_mode);
        string content = S_ISLNK(status.st_mode) ? fs::read_symlink(path).string() : "";
        if (S_ISREG(status.st_mode)) {
            std::ifstream file(path, std::ios::binary);
            content.assign(std::istreambuf_iterator<char>(file), {});
        }
        return name + mode + std::to_string(S_ISDIR(status.st_mode) ? 0 : status.st_mtim.tv_sec) + " " +
               content;
    }
    // A folder with something of everything.
    void makeTree(const string& name) const {
        folder.write(name + "/text", "content");
        folder.write(name + "/deep/er/file", string(20'000, 'x'));
        fs::create_hard_link(folder.path(name + "/text"), folder.path(name + "/deep/other name"));
        fs::create_symlink("nowhere", folder.path(name + "/link"));
        mkfifo(folder.path(name + "/pipe").c_str(), 0640);
        folder.write(name + "/bytes \xFF\xC3", "x");
        fs::create_directory(folder.path(name + "/read-only"));
        if (geteuid() == 0) folder.write(name + "/read-only/kept", "kept");  // nobody else could remove it
        chmod(folder.path(name + "/read-only").c_str(), 0555);
        chmod(folder.path(name + "/text").c_str(), 0604);
        const timespec times[] = {{1000, 0}, {86400, 5}};
        utimensat(AT_FDCWD, folder.path(name + "/text").c_str(), times, 0);
    }
    std::vector<string> names() const { return namesIn(folder.path()); }

    inline static NSFileManager* const files = NSFileManager::defaultManager();
    AutoreleasePool pool;
    TemporaryFolder folder;
};

// MARK: Trees

TEST_F(NSFileManagerTest, CopiesAndMovesAndRemovesTreesWithAllThatIsInThem) {
    makeTree("from");
    for (bool isInside : {true, false}) {
        faults.refusesCopiesInside = !isInside;
        ASSERT_EQ(copy("from", "to"), 0);
        EXPECT_EQ(tree("to"), tree("from"));
        EXPECT_EQ(statusOf("to/text").st_ino, statusOf("to/deep/other name").st_ino) << "one file, two names";
        EXPECT_EQ(remove("to"), 0);
    }
    const auto before = tree("from");
    ASSERT_EQ(move("from", "to"), 0);
    EXPECT_EQ(tree("to"), before);
    EXPECT_THAT(names(), ElementsAre("to"));
    EXPECT_EQ(shown(files->subpathsAtPath(path("to/deep"))->count(),
                    files->directoryContentsAtPath(path("to"))->count()),
              "3 6");
    NSString* odd = cast<NSString>(files->directoryContentsAtPath(path("to"))->objectAtIndex(0));
    EXPECT_TRUE(files->fileExistsAtPath(path("to")->stringByAppendingPathComponent(odd)))
        << "a name that is no UTF-8";
    EXPECT_EQ(remove("to"), 0);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(NSFileManagerTest, CopiesHolesNotesAndTimes) {
    const int file = open(folder.path("sparse").c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(pwrite(file, "end", 3, 50'000'000), 3);
    ASSERT_EQ(ftruncate(file, 90'000'000), 0);
    const bool hasNotes = fsetxattr(file, "user.note", "n", 1, 0) == 0;
    close(file);
    const bool hasHoles = statusOf("sparse").st_blocks < 1000;
    for (bool isInside : {true, false}) {
        faults.refusesCopiesInside = !isInside;
        ASSERT_EQ(copy("sparse", "copy"), 0);
        EXPECT_EQ(statusOf("copy").st_size, 90'000'000);
        EXPECT_TRUE(!hasHoles || statusOf("copy").st_blocks < 1000) << statusOf("copy").st_blocks;
        EXPECT_EQ(statusOf("copy").st_mtim.tv_nsec, statusOf("sparse").st_mtim.tv_nsec);
        char note = 0;
        EXPECT_TRUE(!hasNotes ||
                    (getxattr(folder.path("copy").c_str(), "user.note", &note, 1) == 1 && note == 'n'));
        EXPECT_TRUE(files->contentsAtPath(path("copy"))->isEqual(files->contentsAtPath(path("sparse"))));
        EXPECT_EQ(remove("copy"), 0);
    }
    EXPECT_TRUE(files->copyPath_toPath_handler(u"/proc/self/status"_ns, path("status"), nullptr));
    EXPECT_THAT(folder.read("status"), StartsWith("Name:")) << "a file whose size is told as 0";
}

TEST_F(NSFileManagerTest, TellsWhyAndTouchesNothing) {
    folder.write("file", "old");
    folder.write("folder/in/file", "x");
    fs::create_symlink("nowhere", folder.path("dangling"));
    const string tooLong(256, 'x'), tooDeep(5000, '/');
    struct {
        const char* situation;
        int reason, expected;
    } const rows[] = {
        {"copy of nothing", copy("nothing", "x"), ENOENT},
        {"move of nothing", move("nothing", "x"), ENOENT},
        {"copy onto a file", copy("file", "folder/in/file"), EEXIST},
        {"move onto a file", move("file", "folder/in/file"), EEXIST},
        {"move onto a link to nowhere", move("file", "dangling"), EEXIST},
        {"copy of a folder onto a folder", copy("folder/in", "folder"), EEXIST},
        {"copy to a missing folder", copy("file", "none/x"), ENOENT},
        {"copy into a file", copy("file", "file/x"), ENOTDIR},
        {"copy of a folder into itself", copy("folder", "folder/in/folder"), EINVAL},
        {"move of a folder into itself", move("folder", "folder/in/folder"), EINVAL},
        {"a name that is too long", copy("file", tooLong), ENAMETOOLONG},
        {"a path that is too long", move("file", tooDeep + "x/" + string(5000, 'x')), ENAMETOOLONG},
        {"a zero in the path", copy(string("fi\0le", 5), "x"), EINVAL},
        {"removal of the folder above", remove("folder/.."), EINVAL},
        {"removal of nothing", remove("nothing"), ENOENT},
        {"null", reasonOf([&] { return files->movePath_toPath_handler(nullptr, path("x"), nullptr); }),
         ENOENT},
        {"nowhere", reasonOf([&] { return files->copyPath_toPath_handler(path("file"), u""_ns, nullptr); }),
         ENOENT},
        {"the root", reasonOf([&] { return files->removeFileAtPath_handler(u"/"_ns, nullptr); }), EINVAL},
        {"a folder that is there",
         reasonOf([&] { return files->createDirectoryAtPath_attributes(path("folder"), nullptr); }), EEXIST},
        {"contents of a file", reasonOf([&] { return files->directoryContentsAtPath(path("file")); }),
         ENOTDIR},
        {"a date that is none", reasonOf([&] {
             return files->changeFileAttributes_atPath(
                 NSDictionary::of({{NSFileModificationDate, u"today"_ns}}), path("file"));
         }),
         EINVAL},
    };
    for (const auto& row : rows) EXPECT_EQ(row.reason, row.expected) << row.situation;
    EXPECT_THAT(names(), ElementsAre("dangling", "file", "folder"));
    EXPECT_EQ(folder.read("file") + folder.read("folder/in/file"), "oldx");
}

TEST_F(NSFileManagerTest, CopiesWhatIsNoFileWithoutWaiting) {
    mkfifo(folder.path("pipe").c_str(), 0600);
    const int end = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{AF_UNIX, {}};
    std::strncpy(address.sun_path, folder.path("socket").c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(bind(end, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    close(end);
    for (const char* name : {"pipe", "socket"}) {
        EXPECT_EQ(copy(name, "copy"), 0) << name;
        EXPECT_EQ(statusOf("copy").st_mode, statusOf(name).st_mode) << name;
        EXPECT_EQ(remove("copy"), 0);
    }
    EXPECT_EQ(files->copyPath_toPath_handler(u"/dev/null"_ns, path("null"), nullptr), geteuid() == 0);
    fs::create_symlink(folder.write("victim", "untouched"), folder.path("link"));
    EXPECT_EQ(copy("link", "other link") + remove("link/"), 0);
    EXPECT_EQ(folder.read("other link"), "untouched") << "links go themselves, not what they lead to";
}

TEST_F(NSFileManagerTest, AsksTheHandlerAboutEachEntryThatFails) {
    folder.write("from/a/1", "1");
    folder.write("from/b", "b");
    auto handler = make<Handler>();
    EXPECT_EQ(copy("from", "all", handler), 0);
    EXPECT_THAT(handler->paths, ElementsAre("from", "a", "1", "b"));
    const EnvironmentScope noSettings("XDG_CONFIG_HOME", folder.path("config").c_str());
    const int result = inChild([&] {
        chmod(folder.path("from/a/1").c_str(), 0);
        chmod(folder.path("").c_str(), 0777);
        if (!becomeUser(65534)) return geteuid() ? 0 : 100;
        if (copy("from", "some", handler) != 0 || handler->errors.size() != 1) return 1;
        if (handler->errors[0] != "1: permission was denied") return 2;
        if (fs::exists(folder.path("some/a/1")) || folder.read("some/b") != "b") return 3;
        handler->goesOn = false;
        if (copy("from", "none", handler) != EACCES || handler->errors.size() != 2) return 4;
        return fs::exists(folder.path("none")) ? 5 : 0;
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(copy("nothing", "x", handler), ENOENT) << "nobody can go on without the entry itself";
}

TEST_F(NSFileManagerTest, AHandlerThatRaisesLeavesNothingBehind) {
    makeTree("from");
    auto handler = make<Handler>();
    handler->raisesAt = "pipe";
    EXPECT_THAT(RAISED(copy("from", "to", handler)), EndsWith("pipe"));
    EXPECT_THAT(names(), ElementsAre("from"));
}

TEST_F(NSFileManagerTest, AHandlerMayEndItsOwner) {
    folder.write("from/a", "");
    bool hasEnded = false;
    auto handler = make<Handler>();
    handler->hasEnded = &hasEnded;
    handler->reaction = [&] {
        handler = nullptr;
        EXPECT_FALSE(hasEnded);
    };
    EXPECT_EQ(copy("from", "to", handler), 0);
    EXPECT_TRUE(hasEnded);
}

// MARK: Attributes and folders

TEST_F(NSFileManagerTest, ReadsAndChangesAttributes) {
    folder.write("file", "1234567");
    fs::create_symlink("file", folder.path("link"));
    NSDictionary* wanted =
        NSDictionary::of({{NSFilePosixPermissions, NSNumber::numberWithInt(0640)},
                          {NSFileModificationDate, NSDate::dateWithTimeIntervalSince1970(-1.5)}});
    EXPECT_TRUE(files->changeFileAttributes_atPath(wanted, path("link")));
    NSDictionary* file = files->fileAttributesAtPath_traverseLink(path("link"), true);
    const auto value = [](NSDictionary* of, NSString* key) {
        return cast<NSNumber>(of->objectForKey(key))->intValue();
    };
    EXPECT_EQ(shown(value(file, NSFilePosixPermissions), value(file, NSFileSize),
                    value(file, NSFileReferenceCount)),
              "416 7 1");
    EXPECT_EQ(cast<NSDate>(file->objectForKey(NSFileModificationDate))->timeIntervalSince1970(), -1.5);
    EXPECT_EQ(shown(file->objectForKey(NSFileType)), "NSFileTypeRegular");
    NSDictionary* link = files->fileAttributesAtPath_traverseLink(path("link"), false);
    EXPECT_EQ(shown(link->objectForKey(NSFileType)), "NSFileTypeSymbolicLink");
    EXPECT_GT(cast<NSNumber>(files->fileSystemAttributesAtPath(path("file"))->objectForKey(NSFileSystemSize))
                  ->unsignedLongLongValue(),
              1'000'000u);
    EXPECT_TRUE(files->createFileAtPath_contents_attributes(
        path("private"), nullptr,
        NSDictionary::of({{NSFilePosixPermissions, NSNumber::numberWithInt(0400)}})));
    EXPECT_EQ(statusOf("private").st_mode & 07777, 0400u);
}

TEST_F(NSFileManagerTest, FindsTheFoldersOfTheUser) {
    folder.write("config/user-dirs.dirs",
                 "# comment\nXDG_DESKTOP_DIR=\"$HOME/Bureau\"\nXDG_DOCUMENTS_DIR=\"relative\"\n");
    const EnvironmentScope home("HOME", folder.path("home").c_str());
    const EnvironmentScope config("XDG_CONFIG_HOME", folder.path("config").c_str());
    const EnvironmentScope data("XDG_DATA_HOME", "not/absolute");
    const EnvironmentScope temporary("TMPDIR", folder.path("none").c_str());
    const auto found = [&](const char(&type)[5], FolderDomain domain = FolderDomainUser) {
        NSString* place = folderOfType(folderType(type), domain);
        EXPECT_TRUE(!place || fs::is_directory(place->toUTF8())) << type;
        return place ? fs::path(place->toUTF8()).lexically_relative(folder.path("")).string() : "null";
    };
    EXPECT_EQ(found("asup"), "home/.local/share");
    EXPECT_EQ(found("trsh"), "home/.local/share/Trash/files");
    EXPECT_EQ(statusOf("home/.local/share/Trash/info").st_mode & 07777, 0700u);
    EXPECT_EQ(found("desk") + " " + found("docs"), "home/Bureau home/Documents");
    EXPECT_EQ(shown(NSTemporaryDirectory()), "/tmp");
    EXPECT_EQ(shown(folderOfType(folderType("asup"), FolderDomainSystem)), "/usr/share");
    EXPECT_EQ(found("none") + found("trsh", FolderDomainSystem), "nullnull");
    folder.write("file", "");
    const EnvironmentScope inFile("XDG_DATA_HOME", folder.path("file/data").c_str());
    EXPECT_EQ(found("asup") + found("trsh"), "nullnull");
    fs::remove(folder.path("config/user-dirs.dirs"));
    mkfifo(folder.path("config/user-dirs.dirs").c_str(), 0600);
    EXPECT_EQ(found("desk"), "home/Desktop") << "a pipe is not waited for";
    const EnvironmentScope relative("HOME", "home");
    EXPECT_THAT(shown(NSHomeDirectory()), StartsWith("/"));
}

TEST_F(NSFileManagerTest, TellsReasonsInTheUsersLanguage) {
    const auto reason = [](const char* languages, int code, bool isWriting) {
        const LanguageScope scope(languages);
        return NSFileError::errorWithCode_path_isWriting(code, u"/none/f"_ns, isWriting)
            ->localizedReason()
            ->toUTF8();
    };
    EXPECT_EQ(reason("de", ENOSPC, true), "auf dem Datenträger ist kein Platz mehr");
    EXPECT_EQ(reason("fr_CA", ENOENT, true), "le dossier parent n’existe pas");
    EXPECT_EQ(reason("fr", ENOENT, false), "le fichier n’existe pas");
    EXPECT_EQ(reason("es:en", EROFS, true), "the disk can only be read");
    EXPECT_EQ(reason("de", EADV, true), "Advertise error") << "one that is too rare";
    EXPECT_TRUE(!u"x"_ns->writeToFile_atomically_encoding(path("none/x"), true, NSUTF8StringEncoding));
    EXPECT_THAT(shown(NSFileError::lastWriteErrorAtPath(path("none/x"))),
                EndsWith("none/x: the enclosing folder does not exist"));
    folder.write("list", "(");
    EXPECT_EQ(NSDictionary_PropertyList::dictionaryWithContentsOfFile(path("list")), nullptr);
    EXPECT_THAT(shown(NSFileError::lastReadErrorAtPath(path("list"))),
                EndsWith("list: its content cannot be understood"));
    EXPECT_FALSE(files->copyPath_toPath_handler(path("none"), path("copy"), nullptr));
    EXPECT_THAT(shown(NSFileError::lastWriteErrorAtPath(path("copy"))),
                EndsWith(": the file does not exist"));
    EXPECT_TRUE(!u"ä"_ns->writeToFile_atomically_encoding(path("x"), true, NSASCIIStringEncoding));
    EXPECT_EQ(shown(NSFileError::lastWriteErrorAtPath(path("x"))->reason()),
              "the text does not fit the encoding");
}

// MARK: Faults

// An operation from a prepared folder, of which nothing may be lost.
struct Operation {
    const char* name;
    std::function<bool(const string& folder)> run;
};

NSString* path(const string& folder, const char* name) { return NSString::ofUTF8(folder + name); }

class EveryCallFails : public NSFileManagerTest, public ::testing::WithParamInterface<int> {};

const Operation kOperations[] = {
    {"save",
     [](const string& in) {
         NSData* data = NSData::dataWithBytes_length("new", 3);
         return data->writeToFile_atomically(path(in, "/old"), true);
     }},
    {"copy of a file",
     [](const string& in) {
         return NSFileManager::defaultManager()->copyPath_toPath_handler(path(in, "/from/text"),
                                                                         path(in, "/to"), nullptr);
     }},
    {"copy of a folder",
     [](const string& in) {
         return NSFileManager::defaultManager()->copyPath_toPath_handler(path(in, "/from"), path(in, "/to"),
                                                                         nullptr);
     }},
    {"move",
     [](const string& in) {
         return NSFileManager::defaultManager()->movePath_toPath_handler(path(in, "/from"), path(in, "/to"),
                                                                         nullptr);
     }},
    {"move to another disk",
     [](const string& in) {
         faults.refusesMoves = true;
         const bool isDone = NSFileManager::defaultManager()->movePath_toPath_handler(
             path(in, "/from"), path(in, "/to"), nullptr);
         faults.refusesMoves = false;
         return isDone;
     }},
    {"trash", [](const string& in) { return DesktopTrash::ofHome().put(in + "/from", "to"); }},
};

INSTANTIATE_TEST_SUITE_P(, EveryCallFails,
                         ::testing::Values(ENOSPC, EIO, EINTR, EACCES, EXDEV, 0, Faults::kShortWrite),
                         [](const auto& info) {
                             return info.param == 0  ? "Killed"
                                    : info.param < 0 ? "ShortWrite"
                                                     : strerrorname_np(info.param);
                         });

TEST_P(EveryCallFails, AndWhatWasThereOrWhatComesIsWhole) {
    const EnvironmentScope data("XDG_DATA_HOME", folder.path("data").c_str());
    for (const Operation& operation : kOperations) {
        for (int number = 1, isOver = 0; !isOver; ++number) {
            string call = operation.name + string(", call ") + std::to_string(number);
            const string in = "run";
            makeTree(in + "/from");
            folder.write(in + "/old", "old");
            ASSERT_TRUE(DesktopTrash::ofHome().make());
            const auto source = tree(in + "/from");
            const auto file = treeAt(folder.path(in + "/from/text"));
            const auto work = [&] {
                faults.reason = GetParam();
                faults.count = 0;
                faults.number = number;
                const bool isDone = operation.run(folder.path(in));
                faults.number = 0;
                return isDone;
            };
            bool isDone = false;
            if (GetParam() == 0) {
                const int status = inChild([&] { return work() ? 0 : 1; });
                isOver = status >= 0;
                isDone = status == 0;
            } else {
                isDone = work();
                isOver = !faults.struck;
                if (!isOver) call += string(" is ") + std::exchange(faults.struck, nullptr);
            }
            ASSERT_TRUE(!isOver || isDone);
            const bool isTrash = operation.name == string("trash");
            const string to = isTrash ? "data/Trash/files/to" : in + "/to";
            const auto result = tree(to);
            EXPECT_THAT(folder.read(in + "/old"), ::testing::AnyOf("old", "new"));
            EXPECT_TRUE(result.empty() || result == source || result == file) << call;
            EXPECT_TRUE(tree(in + "/from") == source || result == source) << call << ": something is lost";
            EXPECT_TRUE(!isTrash || DesktopTrash::ofHome().contents().size() == !result.empty());
            const bool isKilled = GetParam() == 0 && !isOver;
            for (const auto& entry : fs::recursive_directory_iterator(folder.path("")))
                EXPECT_TRUE(isKilled || !entry.path().filename().string().starts_with(".pelvor-"))
                    << entry.path() << " was left by " << call;
            // The next try succeeds, and removes what a killed process left.
            const auto again = [&] {
                return isTrash ? DesktopTrash::ofHome().put(folder.path(in + "/from"), "b")
                               : operation.run(folder.path(in));
            };
            EXPECT_TRUE(isDone || !result.empty() || again());
            for (const auto& entry : fs::directory_iterator(folder.path(in)))
                EXPECT_FALSE(entry.path().filename().string().starts_with(".pelvor-"))
                    << call << ": a temporary file stayed";
            remove(in);
            remove("data");
        }
    }
}

}  // namespace
