// SPDX-License-Identifier: Apache-2.0
#include "Writer/DocumentTrash.h"

#include <filesystem>
#include <set>

#include "Foundation/DesktopTrash.h"
#include "NSFileManager-PelvorAdditions.h"
#include "Writer/LocalizedText.h"
#include "Writer/WRReport.h"

namespace pelvor {
namespace {

// The names in the trash of all that was at the path.
std::set<std::string> namesFor(const std::filesystem::path& original, const DesktopTrash& trash) {
    std::set<std::string> names;
    for (const TrashEntry& entry : trash.contents())
        if (entry.original == original) names.insert(entry.name);
    return names;
}

}  // namespace

NSString* throwDocumentAway(NSString* path, WRReport* report) {
    const std::filesystem::path given = path->fileSystemRepresentation();
    std::error_code error;
    const auto folder = std::filesystem::canonical(std::filesystem::absolute(given).parent_path(), error);
    const DesktopTrash trash = DesktopTrash::ofFile(given);
    const auto before = namesFor(folder / given.filename(), trash);
    const int result = trashFileAtPath(NSFileManager::defaultManager(), path);
    if (result != PBFileOperationSuccess)
        return localizedFormat(u"_The document \"%@\" was not moved to the trash: %@"_ns, path,
                               PBLocalizedMessageForFileOperationResult(result));
    report->addHeading(localized(u"_In the trash"_ns));
    for (const std::string& name : namesFor(folder / given.filename(), trash))
        if (!before.contains(name))
            report->addLabel_value(localized(u"_Path"_ns), NSString::ofUTF8(trash.files() + "/" + name));
    return nullptr;
}

}  // namespace pelvor
