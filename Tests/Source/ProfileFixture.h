// SPDX-License-Identifier: Apache-2.0
// What tests of profiles need: registries of their own, bundles and declaration files on disk.
#pragma once

#include <filesystem>
#include <set>

#include "PBRegistry.h"
#include "Prelude.h"

namespace pelvor::testing {

inline bool isSame(id object, id expected) { return object && object->isEqual(expected); }

inline PBProfile* makeProfile(id identifier, NSDictionary* entries, NSBundle* bundle = nullptr) {
    return PBProfile::profileWithIdentifier_dictionary_bundle(identifier, entries, bundle);
}

/// The identifiers of a set's profiles.
std::set<std::string> names(PBProfileSet* set);
/// The identifiers in a filter's dictionary.
std::set<std::string> names(NSDictionary* profiles);

/// Makes another registry, or none, the shared one while it lives.
class SharedRegistry {
  public:
    explicit SharedRegistry(PBRegistry* registry);
    ~SharedRegistry();
    SharedRegistry(const SharedRegistry&) = delete;
    SharedRegistry& operator=(const SharedRegistry&) = delete;

  private:
    Retained<PBRegistry> _previous;
};

/// A folder that goes with its object.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Writes a file, with the folders on the way, and answers its path.
    NSString* write(const std::string& name, const std::string& text);
    const std::filesystem::path& path() const { return _path; }

  private:
    std::filesystem::path _path;
};

/// A bundle on disk without code.
class TemporaryBundle {
  public:
    explicit TemporaryBundle(const std::string& name);

    /// Writes a resource. To be done before the bundle is asked for resources.
    void write(const std::string& name, const std::string& text) {
        _folder.write(_name + "/Contents/Resources/" + name, text);
    }
    NSBundle* bundle();

  private:
    TemporaryFolder _folder;
    std::string _name;
    Retained<NSBundle> _bundle;
};

}  // namespace pelvor::testing
