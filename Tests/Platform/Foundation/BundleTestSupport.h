// SPDX-License-Identifier: Apache-2.0
// Bundles made for one test.
#pragma once

#include <filesystem>
#include <initializer_list>

#include "Foundation/NSBundle.h"
#include "Prelude.h"

namespace pelvor::testing {

namespace fs = std::filesystem;

/// A folder that goes with the object, and bundles in it.
class BundleFolder {
  public:
    BundleFolder();
    ~BundleFolder();
    BundleFolder(const BundleFolder&) = delete;
    BundleFolder& operator=(const BundleFolder&) = delete;

    const fs::path& path() const { return _path; }
    /// Writes the file, below the folder, with the folders that lead to it.
    fs::path write(const fs::path& file, const std::string& content) const;
    /// A bundle with an Info.plist of these texts, and its folder Contents.
    fs::path makeBundle(const fs::path& name,
                        std::initializer_list<std::pair<std::string, std::string>> information) const;

  private:
    fs::path _path;
};

/// An XML property list with this inside.
std::string propertyList(const std::string& inside);
std::string contentOf(const fs::path& file);
NSString* stringOf(const fs::path& path);
NSBundle* bundleAt(const fs::path& path);

/// The plug-in of that name in the build folder, and its code.
fs::path testPlugIn(const std::string& name);
fs::path testPlugInCode(const std::string& name);

/// The environment in which the user reads these languages, "fr_CA:de", for a scope.
class LanguageScope {
  public:
    explicit LanguageScope(const char* languages);
    ~LanguageScope();

  private:
    std::vector<std::pair<const char*, std::string>> _before;
};

}  // namespace pelvor::testing
