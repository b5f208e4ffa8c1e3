// SPDX-License-Identifier: Apache-2.0
#include "ProfileFixture.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace pelvor::testing {

std::set<std::string> names(PBProfileSet* set) {
    std::set<std::string> names;
    for (id identifier : set->identifiers()) names.insert(cast<NSString>(identifier)->toUTF8());
    return names;
}

std::set<std::string> names(NSDictionary* profiles) {
    std::set<std::string> names;
    for (auto [identifier, profile] : profiles) names.insert(cast<NSString>(identifier)->toUTF8());
    return names;
}

SharedRegistry::SharedRegistry(PBRegistry* registry) {
    _previous.set(PBRegistry::sharedRegistry());
    PBRegistry::setSharedRegistry(registry);
}

SharedRegistry::~SharedRegistry() { PBRegistry::setSharedRegistry(_previous); }

TemporaryFolder::TemporaryFolder() {
    std::string name = std::filesystem::temp_directory_path() / "profiles-XXXXXX";
    if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
    _path = name;
}

TemporaryFolder::~TemporaryFolder() { std::filesystem::remove_all(_path); }

NSString* TemporaryFolder::write(const std::string& name, const std::string& text) {
    std::filesystem::path path = _path / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return NSString::ofUTF8(path.string());
}

TemporaryBundle::TemporaryBundle(const std::string& name) : _name(name + ".bundle") {
    _folder.write(_name + "/Contents/Info.plist",
                  "{ CFBundleIdentifier = \"test." + name + "\"; CFBundleName = \"" + name + "\"; }");
}

NSBundle* TemporaryBundle::bundle() {
    if (!_bundle) _bundle.set(NSBundle::bundleWithPath(NSString::ofUTF8((_folder.path() / _name).string())));
    return _bundle;
}

}  // namespace pelvor::testing
