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
#include "Runtime/WeakHandle.h"
#include "TemporaryFolder.h"
#include "TestClasses.h"

namespace {

namespace fs = std::filesystem;
using std::string;

// Keeps what a file manager tells, and says what a test wants it to say.
class Handler : public NSObject {
    PELVOR_CLASS(Handler, NSObject);

  public:
    void willProcess(id, NSString* path) {
        paths.push_back(path->lastPathComponent()->toUTF8());
        if (auto call = reaction) call(paths.back());
    }
    bool shouldProceed(id, NSDictionary* error) {
        errors.push_back(shown(cast<NSString>(error->objectForKey(u"Path"_ns))->lastPathComponent(),
                               error->objectForKey(u"Error"_ns)));
        return goesOn;
    }

    std::vector<string> paths, errors;
    bool goesOn = true;
    std::function<void(const string& name)> reaction;
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

    NSString* path(const string& name) const {
        const string bytes = folder.path(name);
        return files->stringWithFileSystemRepresentation_length(bytes.data(),
                                                                static_cast<NSUInteger>(bytes.size()));
    }
    // Does what the words say, "copy file folder/copy", of names without blanks. "carry" is a move to another
    // file system.
    bool perform(const string& words, id handler = nullptr) const {
        string verb, from, to;
        std::istringstream(words) >> verb >> from >> to;
        if (verb == "copy") return files->copyPath_toPath_handler(path(from), path(to), handler);
        if (verb == "remove") return files->removeFileAtPath_handler(path(from), handler);
        if (verb == "make") return files->createDirectoryAtPath_attributes(path(from), nullptr);
        if (verb == "list") return files->directoryContentsAtPath(path(from));
        if (verb == "save")
            return NSData::dataWithBytes_length("new", 3)->writeToFile_atomically(path(from), true);
        if (verb == "trash") return DesktopTrash::ofHome().put(folder.path(from), to);
        faults.refusesMoves = verb == "carry";
        const bool isDone = files->movePath_toPath_handler(path(from), path(to), handler);
        faults.refusesMoves = false;
        return isDone;
    }
    // "done", or the name of the reason.
    template <class Operation>
    static string outcomeOf(Operation operation) {
        errno = 0;
        return operation() ? "done" : errno ? strerrorname_np(errno) : "failed";
    }
    string does(const string& words, id handler = nullptr) const {
        return outcomeOf([&] { return perform(words, handler); });
    }
    struct stat statusOf(const string& name) const {
        struct stat status {};
        lstat(folder.path(name).c_str(), &status);
        return status;
    }
    // What is below, with the type and rights, the time and the content of each entry.
    std::vector<string> tree(const string& name) const {
        const fs::path top = folder.path(name);
        std::vector<string> tree;
        const auto add = [&](const fs::path& entry) {
            const struct stat status = statusOf(entry);
            if (status.st_mode == 0) return;
            tree.push_back(shown(entry.lexically_relative(top).string(), status.st_mode,
                                 S_ISDIR(status.st_mode) ? 0 : status.st_mtim.tv_sec,
                                 S_ISLNK(status.st_mode)   ? fs::read_symlink(entry).string()
                                 : S_ISREG(status.st_mode) ? folder.read(entry)
                                                           : ""));
        };
        add(top);
        if (fs::is_directory(fs::symlink_status(top)))
            for (const auto& entry : fs::recursive_directory_iterator(top)) add(entry.path());
        std::ranges::sort(tree);
        return tree;
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
    const auto before = tree("from");
    for (bool isInside : {true, false}) {
        faults.refusesCopiesInside = !isInside;
        ASSERT_EQ(does("copy from to"), "done");
        EXPECT_EQ(tree("to"), tree("from"));
        EXPECT_EQ(statusOf("to/text").st_ino, statusOf("to/deep/other name").st_ino) << "one file, two names";
        EXPECT_EQ(does("remove to"), "done");
    }
    ASSERT_EQ(does("move from to"), "done");
    EXPECT_EQ(tree("to"), before);
    EXPECT_THAT(names(), ElementsAre("to"));
    NSArray* contents = files->directoryContentsAtPath(path("to"));
    EXPECT_EQ(shown(files->subpathsAtPath(path("to/deep"))->count(), contents->count()), "3 6");
    NSString* odd = cast<NSString>(contents->objectAtIndex(0));
    EXPECT_TRUE(files->fileExistsAtPath(path("to")->stringByAppendingPathComponent(odd))) << "no UTF-8";
    EXPECT_EQ(does("remove to"), "done");
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(NSFileManagerTest, CopiesHolesNotesAndTimes) {
    const int file = open(folder.path("sparse").c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(pwrite(file, "end", 3, 50'000'000), 3);
    ASSERT_EQ(ftruncate(file, 90'000'000), 0);
    const bool hasNotes = fsetxattr(file, "user.note", "n", 1, 0) == 0;
    close(file);
    // The size, the time, whether there are holes, and the note.
    const auto described = [&](const string& name) {
        const struct stat status = statusOf(name);
        char note[2] = "-";
        getxattr(folder.path(name).c_str(), "user.note", note, 1);
        return shown(status.st_size, status.st_mtim.tv_nsec, status.st_blocks < 1000, note);
    };
    EXPECT_TRUE(described("sparse").ends_with(hasNotes ? "n" : "-"));
    for (bool isInside : {true, false}) {
        faults.refusesCopiesInside = !isInside;
        ASSERT_EQ(does("copy sparse copy"), "done");
        EXPECT_EQ(described("copy"), described("sparse"));
        EXPECT_TRUE(files->contentsAtPath(path("copy"))->isEqual(files->contentsAtPath(path("sparse"))));
        EXPECT_EQ(does("remove copy"), "done");
    }
    EXPECT_EQ(does("copy /proc/self/status status"), "done");
    EXPECT_THAT(folder.read("status"), StartsWith("Name:")) << "a file whose size is told as 0";
}

TEST_F(NSFileManagerTest, TellsWhyAndTouchesNothing) {
    folder.write("file", "old");
    folder.write("folder/in/file", "x");
    fs::create_symlink("nowhere", folder.path("dangling"));
    const string tooLong(256, 'x'), tooDeep = string(5000, '/') + "x/" + string(5000, 'x');
    const std::pair<const char*, string> rows[] = {
        {"ENOENT", "copy nothing x; move nothing x; remove nothing; copy file none/x"},
        {"EEXIST",
         "copy file folder/in/file; move file folder/in/file; move file dangling; "
         "copy folder/in folder; make folder"},
        {"ENOTDIR", "copy file file/x; list file"},
        {"EINVAL",
         "copy folder folder/in/folder; move folder folder/in/folder; remove folder/..; remove /; "
         "copy fi" +
             string(1, 0) + "le x"},
        {"ENAMETOOLONG", "copy file " + tooLong + "; move file " + tooDeep}};
    for (const auto& [reason, operations] : rows) {
        std::istringstream all(operations);
        for (string words; std::getline(all >> std::ws, words, ';');) EXPECT_EQ(does(words), reason) << words;
    }
    const auto noSource = [&] { return files->movePath_toPath_handler(nullptr, path("x"), nullptr); };
    const auto noTarget = [&] { return files->copyPath_toPath_handler(path("file"), u""_ns, nullptr); };
    EXPECT_EQ(outcomeOf(noSource) + outcomeOf(noTarget), "ENOENTENOENT");
    NSDictionary* noDate = NSDictionary::of({{NSFileModificationDate, u"today"_ns}});
    EXPECT_EQ(outcomeOf([&] { return files->changeFileAttributes_atPath(noDate, path("file")); }), "EINVAL");
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
    for (const string name : {"pipe", "socket"}) {
        EXPECT_EQ(does("copy " + name + " copy"), "done") << name;
        EXPECT_EQ(statusOf("copy").st_mode, statusOf(name).st_mode) << name;
        EXPECT_EQ(does("remove copy"), "done");
    }
    EXPECT_EQ(perform("copy /dev/null null"), geteuid() == 0);
    fs::create_symlink(folder.write("victim", "untouched"), folder.path("link"));
    EXPECT_TRUE(perform("copy link other") && perform("remove link/"));
    EXPECT_EQ(folder.read("other"), "untouched") << "links go themselves, not what they lead to";
}

TEST_F(NSFileManagerTest, AsksTheHandlerAboutEachEntryThatFails) {
    folder.write("from/a/1", "1");
    folder.write("from/b", "b");
    auto handler = make<Handler>();
    EXPECT_EQ(does("copy from all", handler), "done");
    EXPECT_THAT(handler->paths, ElementsAre("from", "a", "1", "b"));
    const EnvironmentScope noSettings("XDG_CONFIG_HOME", folder.path("config").c_str());
    const int result = inChild([&] {
        chmod(folder.path("from/a/1").c_str(), 0);
        chmod(folder.path("").c_str(), 0777);
        if (!becomeUser(65534)) return geteuid() ? 0 : 100;
        EXPECT_EQ(does("copy from some", handler), "done");
        EXPECT_TRUE(!fs::exists(folder.path("some/a/1")) && folder.read("some/b") == "b");
        handler->goesOn = false;
        EXPECT_EQ(does("copy from none", handler), "EACCES");
        EXPECT_THAT(handler->errors, ElementsAre("1 permission was denied", "1 permission was denied"));
        return fs::exists(folder.path("none")) || HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(does("copy nothing x", handler), "ENOENT") << "nobody can go on without the entry itself";
}

TEST_F(NSFileManagerTest, BearsAHandlerThatRaisesOrEndsItsOwner) {
    makeTree("from");
    auto handler = make<Handler>();
    handler->reaction = [](const string& name) {
        if (name == "pipe") throw NSException("Handler", name);
    };
    EXPECT_EQ(RAISED(perform("copy from to", handler)), "Handler: pipe");
    EXPECT_THAT(names(), ElementsAre("from"));
    const WeakHandle handle(handler.get());
    handler->reaction = [&](const string&) {
        handler = nullptr;
        EXPECT_TRUE(handle.object());
    };
    EXPECT_EQ(does("copy from to", handler), "done");
    EXPECT_FALSE(handle.object());
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
    NSDictionary* link = files->fileAttributesAtPath_traverseLink(path("link"), false);
    EXPECT_EQ(shown(file->objectForKey(NSFilePosixPermissions), file->objectForKey(NSFileSize),
                    file->objectForKey(NSFileReferenceCount), file->objectForKey(NSFileType),
                    link->objectForKey(NSFileType)),
              "416 7 1 NSFileTypeRegular NSFileTypeSymbolicLink");
    EXPECT_EQ(cast<NSDate>(file->objectForKey(NSFileModificationDate))->timeIntervalSince1970(), -1.5);
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
        return shown(
            NSFileError::errorWithCode_path_isWriting(code, u"/none/f"_ns, isWriting)->localizedReason());
    };
    EXPECT_EQ(reason("de", ENOSPC, true), "auf dem Datenträger ist kein Platz mehr");
    EXPECT_EQ(reason("fr_CA", ENOENT, true), "le dossier parent n’existe pas");
    EXPECT_EQ(reason("fr", ENOENT, false), "le fichier n’existe pas");
    EXPECT_EQ(reason("es:en", EROFS, true), "the disk can only be read");
    EXPECT_EQ(reason("en", EFBIG, false) + ", " + reason("en", EFBIG, true),
              "the file is too large, the file would be too large");
    EXPECT_EQ(reason("de", EADV, true), "Advertise error") << "one that is too rare";
    const auto lastReason = [&](const char* name) {
        return shown(NSFileError::lastWriteErrorAtPath(path(name))->reason());
    };
    EXPECT_FALSE(u"x"_ns->writeToFile_atomically_encoding(path("none/x"), true, NSUTF8StringEncoding));
    EXPECT_THAT(shown(NSFileError::lastWriteErrorAtPath(path("none/x"))),
                EndsWith("none/x: the enclosing folder does not exist"));
    folder.write("list", "(");
    EXPECT_EQ(NSDictionary_PropertyList::dictionaryWithContentsOfFile(path("list")), nullptr);
    EXPECT_THAT(shown(NSFileError::lastReadErrorAtPath(path("list"))),
                EndsWith("list: its content cannot be understood"));
    EXPECT_FALSE(perform("copy none copy"));
    EXPECT_EQ(lastReason("copy"), "the file does not exist");
    EXPECT_FALSE(u"ä"_ns->writeToFile_atomically_encoding(path("x"), true, NSASCIIStringEncoding));
    EXPECT_EQ(lastReason("x"), "the text does not fit the encoding");
}

// MARK: Faults

class EveryCallFails : public NSFileManagerTest, public ::testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(, EveryCallFails,
                         ::testing::Values(ENOSPC, EIO, EINTR, EACCES, EXDEV, 0, Faults::kShortWrite),
                         [](const auto& info) {
                             return info.param == 0  ? "Killed"
                                    : info.param < 0 ? "ShortWrite"
                                                     : strerrorname_np(info.param);
                         });

TEST_P(EveryCallFails, AndWhatWasThereOrWhatComesIsWhole) {
    const EnvironmentScope data("XDG_DATA_HOME", folder.path("data").c_str());
    for (const string operation : {"save old", "copy from/text to", "copy from to", "move from to",
                                   "carry from to", "trash from to"}) {
        const bool isTrash = operation.starts_with("trash");
        const string to = isTrash ? "data/Trash/files/to" : "to";
        for (int number = 1, isOver = 0; !isOver; ++number) {
            string call = operation + ", call " + std::to_string(number);
            makeTree("from");
            folder.write("old", "old");
            ASSERT_TRUE(DesktopTrash::ofHome().make());
            const auto source = tree("from"), file = tree("from/text");
            const auto work = [&] {
                faults.reason = GetParam();
                faults.count = 0;
                faults.number = number;
                const bool isDone = perform(operation);
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
            ASSERT_TRUE(!isOver || isDone) << call;
            const auto result = tree(to);
            EXPECT_THAT(folder.read("old"), ::testing::AnyOf("old", "new")) << call;
            EXPECT_TRUE(result.empty() || result == source || result == file) << call;
            EXPECT_TRUE(tree("from") == source || result == source) << call << ": something is lost";
            EXPECT_TRUE(!isTrash || DesktopTrash::ofHome().contents().size() == !result.empty()) << call;
            const auto expectNothingLeft = [&](auto entries) {
                for (const auto& entry : entries)
                    EXPECT_THAT(entry.path().filename().string(), ::testing::Not(StartsWith(".pelvor-")))
                        << call;
            };
            if (GetParam() != 0 || isOver)
                expectNothingLeft(fs::recursive_directory_iterator(folder.path("")));
            // The next try succeeds, and removes what a killed process left.
            EXPECT_TRUE(isDone || !result.empty() || perform(isTrash ? "trash from b" : operation)) << call;
            expectNothingLeft(fs::directory_iterator(folder.path("")));
            for (const string& name : names()) perform("remove " + name);
        }
    }
}

}  // namespace
