// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Files/FileRemoval.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "Foundation/Files/SystemPath.h"

namespace pelvor {
namespace {

class Remover {
  public:
    Remover(TreeWatcher& watcher, bool isOwn) : _watcher(watcher), _isOwn(isOwn) {}

    // False when an entry failed and the watcher did not want to go on.
    bool remove(int folder, const std::string& name, const std::string& path) {
        _watcher.willProcess(path);
        if (removeEntry(folder, name, path)) return true;
        if (_isOver) return false;
        _isOver = !_watcher.shouldProceed(errno, path, {});
        return !_isOver;
    }

    bool removeEntry(int folder, const std::string& name, const std::string& path) {
        struct stat status;
        if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
        if (!S_ISDIR(status.st_mode)) return ::unlinkat(folder, name.c_str(), 0) == 0;
        return removeContents(folder, name, path) && ::unlinkat(folder, name.c_str(), AT_REMOVEDIR) == 0;
    }

  private:
    // A folder of this process's own may have become one that nobody may write.
    bool removeContents(int folder, const std::string& name, const std::string& path) {
        if (_isOwn) (void)::fchmodat(folder, name.c_str(), 0700, 0);
        Descriptor opened = openedAt(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        std::vector<std::string> names;
        if (!opened || !readNames(opened, names)) return false;
        return std::ranges::all_of(
            names, [&](const std::string& child) { return remove(opened, child, path + "/" + child); });
    }

    TreeWatcher& _watcher;
    bool _isOwn;
    bool _isOver = false;
};

}  // namespace

bool visitNames(int folder, const std::function<void(std::string_view)>& visit) {
    Descriptor own = openedAt(folder, ".", O_RDONLY | O_DIRECTORY);
    std::unique_ptr<DIR, int (*)(DIR*)> stream(own ? ::fdopendir(own) : nullptr, ::closedir);
    if (!stream) return false;
    own.release();
    for (errno = 0; const dirent* entry = ::readdir(stream.get()); errno = 0) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") visit(name);
    }
    return errno == 0;
}

bool readNames(int folder, std::vector<std::string>& names) {
    if (!visitNames(folder, [&names](std::string_view name) { names.emplace_back(name); })) return false;
    std::ranges::sort(names);
    return true;
}

bool removeTree(const std::string& path, TreeWatcher& watcher) {
    SystemPlace place(path);
    return place && Remover(watcher, false).remove(place.folder, place.name, path);
}

bool removeOwnEntry(int folder, const char* name) {
    TreeWatcher watcher;
    return Remover(watcher, true).removeEntry(folder, name, name);
}

}  // namespace pelvor
