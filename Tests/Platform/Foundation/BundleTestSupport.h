// SPDX-License-Identifier: Apache-2.0
// Bundles made for one test.
#pragma once

#include <optional>

#include "EnvironmentScope.h"
#include "Foundation/NSBundle.h"
#include "Prelude.h"
#include "TemporaryFolder.h"

namespace pelvor::testing {

namespace fs = std::filesystem;

inline NSString* stringOf(const fs::path& path) { return NSString::ofUTF8(path.string()); }
inline NSBundle* bundleAt(const fs::path& path) { return NSBundle::bundleWithPath(stringOf(path)); }

/// The plug-in of that name in the build folder, and its code.
inline fs::path testPlugIn(const std::string& name) {
    return fs::path(PELVOR_TEST_PLUGINS) / (name + ".bundle");
}
inline fs::path testPlugInCode(const std::string& name) {
    return testPlugIn(name) / "Contents/Linux" / (name + ".so");
}

/// An XML property list with this inside.
inline std::string propertyList(const std::string& inside) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + inside + "</plist>\n";
}

/// A folder that goes with the object, and bundles in it.
struct BundleFolder : TemporaryFolder {
    /// A bundle with an Info.plist of these texts, and its folder Contents.
    fs::path makeBundle(const std::string& name,
                        std::initializer_list<std::pair<std::string, std::string>> information = {}) const {
        std::string entries;
        for (const auto& [key, value] : information)
            entries += "<key>" + key + "</key><string>" + value + "</string>";
        write(name + "/Contents/Info.plist", propertyList("<dict>" + entries + "</dict>"));
        return path() / name;
    }
};

}  // namespace pelvor::testing
using namespace pelvor::testing;
