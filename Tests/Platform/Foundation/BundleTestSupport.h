// SPDX-License-Identifier: Apache-2.0
// Bundles made for one test.
#pragma once

#include <filesystem>
#include <optional>

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

/// Gives an environment variable another value for a scope.
class EnvironmentScope {
  public:
    /// No value takes the variable away.
    EnvironmentScope(const char* name, const char* value) : _name(name) {
        if (const char* before = std::getenv(name)) _before = before;
        set(value);
    }
    ~EnvironmentScope() { set(_before ? _before->c_str() : nullptr); }
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;

  private:
    void set(const char* value) { value ? setenv(_name, value, 1) : unsetenv(_name); }

    const char* _name;
    std::optional<std::string> _before;
};

/// The environment in which the user reads these languages, "fr_CA:de", for a scope.
struct LanguageScope {
    explicit LanguageScope(const char* languages) : _languages("LANGUAGE", languages) {}

  private:
    EnvironmentScope _languages, _locale{"LC_ALL", "en_US.UTF-8"};
};

}  // namespace pelvor::testing
using namespace pelvor::testing;
