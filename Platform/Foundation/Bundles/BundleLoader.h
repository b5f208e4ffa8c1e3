// SPDX-License-Identifier: Apache-2.0
// BundleLoader: brings a bundle's code into the process; for Foundation's own sources.
#pragma once

#include <string>
#include <vector>

#include "Foundation/NSBundle.h"

namespace pelvor {

struct BundleContents;

/// Why a bundle was not loaded.
struct BundleFault {
    const char* stage;  ///< "information", "identifier", "executable", "interface", "code", "registration"
    std::string reason;
};

class BundleLoader {
  public:
    enum class Outcome { loaded, wasLoaded };

    /// Loads the bundle's code and registers its classes, whose names `classNames` receives. Throws
    /// BundleFault. Threads take turns; a constructor in the code of a bundle may load another bundle.
    static Outcome load(NSBundle* bundle, std::vector<std::string>& classNames);

  private:
    explicit BundleLoader(NSBundle* bundle);

    void run(std::vector<std::string>& classNames);
    void checkInformation();
    void checkIdentifier();
    void checkInterface();
    void* loadCode(const std::string& executable);
    Library* findLibrary(void* handle);
    void registerClasses(Library* library, std::vector<std::string>& classNames);

    Unretained<NSBundle> _bundle;
    BundleContents& _contents;
};

}  // namespace pelvor
