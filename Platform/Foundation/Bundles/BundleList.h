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

    /// Makes the main bundle and those of the frameworks that the program is linked to, the first time.
    void setUp();

    NSBundle* mainBundle() const { return _main; }
    /// The folder's bundle, an object of the class if it has to be made; none if there is no folder.
    NSBundle* bundleWithPath(const std::string& path, Class* cls);
    /// The bundles in the order in which they were made, the main bundle first.
    std::vector<NSBundle*> all();
    NSBundle* bundleForClass(Class* cls);

    void makeFramework(NSBundle* bundle);
    /// The library's classes are the bundle's from now on, and so is all code in the file at this address.
    void noteLibrary(Library* library, NSBundle* bundle);
    void noteCode(const void* base, NSBundle* bundle);

    static BundleContents& contents(NSBundle* bundle) { return *bundle->_contents; }

  private:
    Retained<NSBundle> make(const std::string& path, Class* cls);
    NSBundle* add(Retained<NSBundle> bundle);
    void setUpMain();
    void setUpFrameworks();
    NSBundle* bundleForCode(Class* cls);

    std::mutex _mutex;
    std::once_flag _isSetUp;
    NSBundle* _main = nullptr;
    std::vector<Retained<NSBundle>> _all;
    std::unordered_map<std::string, NSBundle*> _byPath;
    std::unordered_map<const Library*, NSBundle*> _byLibrary;
    std::unordered_map<const void*, NSBundle*> _byCode;
};

}  // namespace pelvor
