// SPDX-License-Identifier: Apache-2.0
#include "Interface/Panels/FolderPlaces.h"

#include <mntent.h>

#include <cstdio>
#include <memory>
#include <string_view>

#include "Foundation/NSFileManager.h"
#include "Foundation/StandardFolders.h"
#include "Interface/Panels/PanelMessages.h"

namespace pelvor {

std::vector<FolderPlace> folderPlaces() {
    std::vector<FolderPlace> places;
    const auto add = [&](NSString* title, NSString* path) {
        if (title && path) places.push_back({title->copy(), path->copy()});
    };
    add(panelText(u"_Home Folder"_ns), NSHomeDirectory());
    add(panelText(u"_Documents"_ns), folderOfType(folderType("docs"), FolderDomainUser));
    add(panelText(u"_File System"_ns), u"/"_ns);
    const auto close = [](FILE* file) { ::endmntent(file); };
    const std::unique_ptr<FILE, decltype(close)> mounts(::setmntent("/proc/self/mounts", "re"), close);
    mntent entry;
    char text[8192];
    while (mounts && ::getmntent_r(mounts.get(), &entry, text, sizeof text)) {
        const std::string_view folder = entry.mnt_dir;
        if (!folder.starts_with("/media/") && !folder.starts_with("/run/media/") &&
            !folder.starts_with("/mnt/"))
            continue;
        NSString* path = NSFileManager::defaultManager()->stringWithFileSystemRepresentation_length(
            folder.data(), static_cast<NSUInteger>(folder.size()));
        if (path) add(path->lastPathComponent(), path);
    }
    return places;
}

}  // namespace pelvor
