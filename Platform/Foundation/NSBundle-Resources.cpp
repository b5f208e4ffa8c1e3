// SPDX-License-Identifier: Apache-2.0
// Where a bundle's resources are.
#include <algorithm>
#include <filesystem>
#include <set>

#include "Foundation/Bundles/BundleContents.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSMutableArray.h"

namespace pelvor {

namespace fs = std::filesystem;

namespace {

std::string text(NSString* string) { return string ? string->toUTF8() : ""; }

// Unlike the operator, for which an absolute second part replaces the first.
fs::path joined(const fs::path& folder, const std::string& part) {
    return part.empty() ? folder : fs::path(folder.string() + "/" + part);
}

// Returns the files of a folder in the order of their names' bytes; unless `extension` is "", only its files.
std::vector<fs::path> filesIn(const fs::path& folder, const std::string& extension) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::string name = entry->path().filename().string();
        if (!name.ends_with(".lproj") && (extension.empty() || name.ends_with("." + extension)))
            files.push_back(entry->path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string fileIn(const fs::path& folder, const std::string& name, const std::string& extension) {
    if (name.empty()) {
        auto files = extension.empty() ? std::vector<fs::path>() : filesIn(folder, extension);
        return files.empty() ? "" : files.front().string();
    }
    std::error_code error;
    fs::path file = joined(folder, extension.empty() ? name : name + "." + extension);
    return fs::exists(file, error) ? file.string() : "";
}

// Returns the folders with resources, of which the first has the resources without a language.
std::vector<fs::path> resourceFolders(const fs::path& resources, const std::string& subfolder,
                                      NSArray* localizations) {
    std::vector<fs::path> folders{joined(resources, subfolder)};
    for (id localization : localizations)
        folders.push_back(
            joined(joined(resources, text(static_cast<NSString*>(localization)) + ".lproj"), subfolder));
    return folders;
}

// Types are given with and without their stop.
std::string extensionOf(NSString* type) {
    std::string extension = text(type);
    return extension.starts_with('.') ? extension.substr(1) : extension;
}

}  // namespace

NSString* NSBundle::pathForResource(NSString* name, NSString* type, NSString* subfolder,
                                    NSArray* localizations) {
    for (const fs::path& folder : resourceFolders(_contents->resources, text(subfolder), localizations))
        if (std::string file = fileIn(folder, text(name), extensionOf(type)); !file.empty())
            return NSString::ofUTF8(file);
    return nullptr;
}

NSString* NSBundle::pathForResource_ofType(NSString* name, NSString* type) {
    return pathForResource_ofType_inDirectory(name, type, nullptr);
}

NSString* NSBundle::pathForResource_ofType_inDirectory(NSString* name, NSString* type, NSString* subfolder) {
    return pathForResource(name, type, subfolder, preferredLocalizations());
}

NSString* NSBundle::pathForResource_ofType_inDirectory_forLocalization(NSString* name, NSString* type,
                                                                       NSString* subfolder,
                                                                       NSString* localization) {
    NSArray* localizations = localization ? NSArray::arrayWithObject(localization) : nullptr;
    return pathForResource(name, type, subfolder, localizations);
}

NSArray* NSBundle::pathsForResourcesOfType_inDirectory(NSString* type, NSString* subfolder) {
    auto* paths = NSMutableArray::array();
    std::set<fs::path> names;
    for (const fs::path& folder :
         resourceFolders(_contents->resources, text(subfolder), preferredLocalizations()))
        for (const fs::path& file : filesIn(folder, extensionOf(type)))
            if (names.insert(file.filename()).second) paths->addObject(NSString::ofUTF8(file.string()));
    return paths;
}

}  // namespace pelvor
