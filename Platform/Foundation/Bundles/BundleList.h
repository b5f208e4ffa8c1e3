// SPDX-License-Identifier: Apache-2.0
// BundleList: the bundles of the process; for Foundation's own sources.
#pragma once

#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "Foundation/NSBundle.h"

namespace pelvor {

struct BundleContents;

/// All bundles that have an object. They stay as long as the process. Any thread.
class BundleList {
  public:
    static BundleList& shared();

    /// At its first call, makes the main bundle and the bundles of the frameworks that the program is linked
    /// to.
    void setUp();

    NSBundle* mainBundle() const { return _main; }
    /// Returns the folder's bundle, which is made as an object of the class on first demand; null if there is
    /// no such folder.
    NSBundle* bundleWithPath(const std::string& path, Class* cls);
    /// Returns the bundles in the order in which they were made, the main bundle first.
    std::vector<NSBundle*> all();
    NSBundle* bundleForClass(Class* cls);

    void makeFramework(NSBundle* bundle);
    /// From now on the library's classes belong to the bundle, and so does all code in the file at the
    /// address.
    void noteLibrary(Library* library, NSBundle* bundle);
    void noteCode(const void* base, NSBundle* bundle);

    /// The bundle is loaded: `loadedBundle` finds it from now on.
    void noteLoaded(NSBundle* bundle);
    /// Returns the loaded bundle with the identifier; null if no such bundle is loaded. For the thread that
    /// loads a bundle.
    NSBundle* loadedBundle(const std::string& identifier);

    static BundleContents& contents(NSBundle* bundle) { return *bundle->_contents; }

  private:
    Retained<NSBundle> make(const std::string& path, Class* cls);
    NSBundle* add(Retained<NSBundle> bundle);
    void setUpMain();
    void setUpFrameworks();
    NSBundle* bundleForCode(Class* cls);

    std::mutex _mutex;
    std::once_flag _isSetUp;
    Unretained<NSBundle> _main = nullptr;
    std::vector<Retained<NSBundle>> _all;
    std::unordered_map<std::string, Unretained<NSBundle>> _byPath;
    std::unordered_map<const Library*, Unretained<NSBundle>> _byLibrary;
    std::unordered_map<const void*, Unretained<NSBundle>> _byCode;
    std::vector<Unretained<NSBundle>> _newlyLoaded;  // not yet among those found by their identifiers
    std::unordered_map<std::string, Unretained<NSBundle>> _loadedByIdentifier;
};

}  // namespace pelvor
