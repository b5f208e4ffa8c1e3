// SPDX-License-Identifier: Apache-2.0
#include "Foundation/DesktopTrash.h"

#include <limits.h>
#include <sys/stat.h>

#include <cctype>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <span>
#include <sstream>
#include <string_view>

#include "Foundation/Files/FileContents.h"
#include "Foundation/Files/FileRemoval.h"
#include "Foundation/Files/FileTrees.h"
#include "Foundation/Files/SystemPath.h"
#include "Foundation/Files/TemporaryFile.h"
#include "Foundation/Files/UserFolders.h"

namespace pelvor {
namespace {

constexpr std::string_view kTextSuffix = ".trashinfo";

// MARK: The texts

std::string percentEncoded(std::string_view path) {
    static constexpr std::string_view kPlain = "/-_.!~*'()";
    std::string text;
    for (unsigned char c : path) {
        if ((c < 0x80 && std::isalnum(c)) || kPlain.find(static_cast<char>(c)) != kPlain.npos) {
            text += static_cast<char>(c);
        } else {
            char code[4];
            std::snprintf(code, sizeof code, "%%%02X", c);
            text += code;
        }
    }
    return text;
}

std::string percentDecoded(std::string_view text) {
    std::string path;
    for (std::size_t place = 0; place < text.size(); ++place) {
        unsigned char byte = 0;
        const char* digits = text.data() + place + 1;
        if (text[place] == '%' && place + 2 < text.size() &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            path += static_cast<char>(byte);
            place += 2;
        } else {
            path += text[place];
        }
    }
    return path;
}

// "2004-08-31T22:32:08", in the time of the place.
std::string dateText(std::time_t date) {
    std::tm parts{};
    ::localtime_r(&date, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts)};
}

std::time_t dateOf(const std::string& text) {
    std::tm parts{};
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d", &parts.tm_year, &parts.tm_mon, &parts.tm_mday,
                    &parts.tm_hour, &parts.tm_min, &parts.tm_sec) != 6)
        return 0;
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    parts.tm_isdst = -1;
    const std::time_t date = std::mktime(&parts);
    return date == -1 ? 0 : date;
}

// The values that the first group of the text has; of two lines with one key, the first counts.
std::pair<std::string, std::string> pathAndDateIn(const std::string& text) {
    std::istringstream lines(text);
    std::string line, path, date;
    if (!std::getline(lines, line) || line != "[Trash Info]") return {};
    while (std::getline(lines, line) && !line.starts_with('[')) {
        if (path.empty() && line.starts_with("Path=")) path = percentDecoded(line.substr(5));
        if (date.empty() && line.starts_with("DeletionDate=")) date = line.substr(13);
    }
    return {path, date};
}

// MARK: Where trashes are

std::string resolved(const std::string& path) {
    char buffer[PATH_MAX];
    return ::realpath(path.c_str(), buffer) ? buffer : "";
}

// The folder of a file with all links resolved, and the file's own name, which may be that of a link.
std::string resolvedPlace(const std::string& path) {
    const std::size_t end = path.find_last_not_of('/') + 1;
    const std::size_t start = path.substr(0, end).rfind('/') + 1;
    const std::string folder = resolved(start ? path.substr(0, start) : ".");
    if (folder.empty()) return folder;
    return (folder == "/" ? "" : folder) + "/" + path.substr(start, end - start);
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::optional<dev_t> fileSystemOf(std::string path) {
    struct stat status;
    while (::stat(path.c_str(), &status) != 0) {
        if (path == "/" || path.find('/') == path.npos) return {};
        path = folderOf(path);
    }
    return status.st_dev;
}

// The uppermost folder that lies on the same file system.
std::string topOfFileSystem(std::string folder) {
    const auto own = fileSystemOf(folder);
    while (folder != "/" && fileSystemOf(folderOf(folder)) == own) folder = folderOf(folder);
    return folder;
}

// A folder of the user's, which is no link: somebody else may have planted one.
bool isOwnFolder(const std::string& path) {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0) return false;
    return (S_ISDIR(status.st_mode) && status.st_uid == ::geteuid()) || failWith(EACCES);
}

// Whether everybody may have a folder of their own in this folder, without touching those of others.
bool isSharedTrash(const std::string& path) {
    struct stat status;
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX);
}

bool makeOwnFolder(const std::string& path) {
    return ::mkdir(path.c_str(), 0700) == 0 || (errno == EEXIST && isOwnFolder(path));
}

// The fifth field of a line is the place of a file system, in which blanks and the like are octal numbers.
std::string placeOfFileSystem(const std::string& line) {
    std::istringstream fields(line);
    std::string field, place;
    for (int i = 0; i < 5; ++i) fields >> field;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] != '\\' || i + 3 >= field.size()) {
            place += field[i];
        } else {
            place += static_cast<char>(std::strtol(field.substr(i + 1, 3).c_str(), nullptr, 8));
            i += 3;
        }
    }
    return place;
}

}  // namespace

DesktopTrash DesktopTrash::ofHome() { return {userFolder("XDG_DATA_HOME", ".local/share") + "/Trash", ""}; }

// The places that the format names, the better one first.
std::vector<DesktopTrash> DesktopTrash::ofFileSystem(const std::string& top) {
    const std::string user = std::to_string(::getuid()), start = top == "/" ? "" : top;
    std::vector<DesktopTrash> folders;
    if (isSharedTrash(start + "/.Trash")) folders.push_back({start + "/.Trash/" + user, top});
    folders.push_back({start + "/.Trash-" + user, top});
    return folders;
}

DesktopTrash DesktopTrash::ofFile(const std::string& path) {
    DesktopTrash home = ofHome();
    const std::string place = resolvedPlace(path);
    if (place.empty()) return home;
    const auto own = fileSystemOf(folderOf(place));
    if (!own || own == fileSystemOf(home._folder)) return home;
    for (const DesktopTrash& folder : ofFileSystem(topOfFileSystem(folderOf(place))))
        if (folder.make()) return folder;
    return home;
}

std::vector<DesktopTrash> DesktopTrash::all() {
    std::vector<DesktopTrash> folders{ofHome()};
    std::set<std::string> seen;
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        const std::string top = placeOfFileSystem(line);
        if (!top.starts_with('/') || !seen.insert(top).second) continue;
        for (const DesktopTrash& folder : ofFileSystem(top))
            if (isOwnFolder(folder._folder)) folders.push_back(folder);
    }
    return folders;
}

// MARK: One trash

bool DesktopTrash::make() const {
    const auto make = [this](const std::string& path) {
        return _top.empty() ? makeFolders(path, 0700) : makeOwnFolder(path);
    };
    return make(_folder) && make(files()) && make(_folder + "/info");
}

bool DesktopTrash::hasName(const std::string& name) const {
    struct stat status;
    return ::lstat((files() + "/" + name).c_str(), &status) == 0 ||
           ::lstat(textPath(name).c_str(), &status) == 0;
}

// Below the top of the file system, paths are kept without it: the file system may be elsewhere tomorrow.
std::string DesktopTrash::pathToKeep(const std::string& path) const {
    if (_top.empty() || !holdsPath(path)) return path;
    return path.substr(_top == "/" ? 1 : _top.size() + 1);
}

bool DesktopTrash::holdsPath(const std::string& path) const {
    return _top.empty() || path.starts_with(_top == "/" ? _top : _top + "/");
}

// The text comes first, and takes the name: by it programs agree whose name it is.
bool DesktopTrash::put(const std::string& path, const std::string& name) const {
    const std::string place = resolvedPlace(path);
    if (!isSystemPath(path) || place.empty() || !make()) return false;
    // The trash would lose its own folders, or a file its text.
    if ((place + "/").starts_with(resolved(_folder) + "/")) return failWith(EINVAL);
    const SystemPlace text(textPath(name));
    TemporaryFile file(text.folder, text.name);
    const std::string content = "[Trash Info]\nPath=" + percentEncoded(pathToKeep(place)) +
                                "\nDeletionDate=" + dateText(std::time(nullptr)) + "\n";
    if (!text || !file.open(0600) || !writeAll(file, std::as_bytes(std::span(content))) || !file.takeTarget())
        return false;
    TreeWatcher watcher;
    if (moveTree(place, files() + "/" + name, watcher)) return true;
    const int reason = errno;
    ::unlinkat(text.folder, text.name.c_str(), 0);
    return failWith(reason);
}

std::optional<TrashEntry> DesktopTrash::entryNamed(const std::string& name) const {
    GrowingBytes bytes;
    struct stat status;
    if (::lstat((files() + "/" + name).c_str(), &status) != 0) return {};
    if (!readFile(textPath(name), bytes, FileReading::regularOnly)) return {};
    auto [path, date] = pathAndDateIn(std::string(bytes.view()));
    if (!isSystemPath(path) || ("/" + path + "/").find("/../") != path.npos) return {};
    if (!path.starts_with('/')) path = (_top == "/" ? "" : _top) + "/" + path;
    if (!holdsPath(path)) return {};
    return TrashEntry{name, path, dateOf(date)};
}

std::vector<TrashEntry> DesktopTrash::contents() const {
    std::vector<TrashEntry> entries;
    std::vector<std::string> names;
    Descriptor folder = openedAt(AT_FDCWD, (_folder + "/info").c_str(), O_RDONLY | O_DIRECTORY);
    if (!folder || !readNames(folder, names)) return entries;
    for (const std::string& name : names) {
        if (!name.ends_with(kTextSuffix)) continue;
        if (auto entry = entryNamed(name.substr(0, name.size() - kTextSuffix.size())))
            entries.push_back(std::move(*entry));
    }
    return entries;
}

bool DesktopTrash::restore(const TrashEntry& entry) const {
    // What somebody has put on a disk leads out of that disk neither by a text nor by a link.
    const std::string place = isSystemPath(entry.original) ? resolvedPlace(entry.original) : "";
    if (place.empty()) return false;
    if (!holdsPath(place)) return failWith(EACCES);
    TreeWatcher watcher;
    if (!moveTree(files() + "/" + entry.name, place, watcher)) return false;
    ::unlink(textPath(entry.name).c_str());
    return true;
}

}  // namespace pelvor
