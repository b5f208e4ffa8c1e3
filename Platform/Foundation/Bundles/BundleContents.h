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
    Retained<NSDictionary> dictionary;  ///< empty where it cannot be used
    std::string fault;                  ///< why not; "" for a sound one
};

/// Reads the file. Everything in it that the platform uses is of the right type in a sound one.
BundleInformation readBundleInformation(const std::string& path);

/// The largest Info.plist that is read, in bytes.
inline constexpr std::uint64_t kLargestBundleInformation = 16u << 20;

/// What a bundle's object knows. What is read lazily is guarded by `mutex`; the first block does not change
/// after the object was made, `isFramework` and the state of the code aside.
struct BundleContents {
    enum class Code : std::uint8_t {
        notLoaded,
        loading,
        loaded,
        unusable  ///< in memory, but a constructor of it failed
    };

    Retained<NSString> path;
    std::string folder;  ///< Contents, or the bundle itself
    std::string resources;
    std::string executable;  ///< known beforehand of the main bundle only
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
