// SPDX-License-Identifier: Apache-2.0
#include "BundleTestSupport.h"

#include <fstream>

namespace pelvor::testing {

BundleFolder::BundleFolder() {
    std::string pattern = (fs::temp_directory_path() / "pelvor-bundles-XXXXXX").string();
    _path = fs::canonical(mkdtemp(pattern.data()));
}

BundleFolder::~BundleFolder() {
    std::error_code error;
    fs::remove_all(_path, error);
}

fs::path BundleFolder::write(const fs::path& file, const std::string& content) const {
    fs::path path = _path / file;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

fs::path BundleFolder::makeBundle(
    const fs::path& name, std::initializer_list<std::pair<std::string, std::string>> information) const {
    std::string entries;
    for (const auto& [key, value] : information)
        entries += "<key>" + key + "</key><string>" + value + "</string>";
    write(name / "Contents/Info.plist", propertyList("<dict>" + entries + "</dict>"));
    return _path / name;
}

std::string propertyList(const std::string& inside) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + inside + "</plist>\n";
}

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

NSString* stringOf(const fs::path& path) { return NSString::ofUTF8(path.string()); }

NSBundle* bundleAt(const fs::path& path) { return NSBundle::bundleWithPath(stringOf(path)); }

fs::path testPlugIn(const std::string& name) { return fs::path(PELVOR_TEST_PLUGINS) / (name + ".bundle"); }

fs::path testPlugInCode(const std::string& name) {
    return testPlugIn(name) / "Contents/Linux" / (name + ".so");
}

}  // namespace pelvor::testing
