// SPDX-License-Identifier: Apache-2.0
// BundleContents: what a bundle's object knows; for Foundation's own sources.
#pragma once

#include <atomic>
#include <mutex>
#include <string>

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSMutableDictionary.h"

namespace pelvor {

struct Library;

/// What Info.plist says.
struct BundleInformation {
    Retained<NSDictionary> dictionary;  ///< empty if Info.plist cannot be used
    std::string fault;                  ///< why Info.plist cannot be used; "" if it can
};

/// Reads the file. In the dictionary of a sound file, all values that the platform uses are of the right
/// type.
BundleInformation readBundleInformation(const std::string& path);

/// The largest Info.plist that is read, in bytes.
inline constexpr std::uint64_t kLargestBundleInformation = 16u << 20;

/// What a bundle's object knows. The fields before `mutex` do not change after the object was made, except
/// `isFramework` and the state of the code. The mutex guards the fields behind it, which are read on demand.
struct BundleContents {
    enum class Code : std::uint8_t {
        notLoaded,
        loading,
        loaded,
        unusable  ///< in memory, but a constructor failed
    };

    Retained<NSString> path;
    std::string folder;  ///< Contents, or the bundle itself
    std::string resources;
    std::string executable;  ///< only of the main bundle, from the beginning
    std::atomic<bool> isFramework{false};
    std::atomic<Code> code{Code::notLoaded};
    std::string faultOfCode;
    Library* library = nullptr;

    std::recursive_mutex mutex;
    bool hasInformation = false;
    BundleInformation information;
    Retained<NSArray> localizations;
    Retained<NSArray> preferredLocalizations;
    Retained<NSArray> languages;           ///< the user's, when the preferred ones were chosen
    Retained<NSMutableDictionary> tables;  ///< string tables by name, in the preferred localisation
};

}  // namespace pelvor
