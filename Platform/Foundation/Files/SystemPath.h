// SPDX-License-Identifier: Apache-2.0
// Paths as strings and as the system's bytes; for Foundation's own sources.
#pragma once

#include <string>
#include <string_view>

#include "Shared/Descriptor.h"

namespace pelvor {

class NSString;

/// The path's bytes, which are UTF-8. Each of the lone halves U+DC80 to U+DCFF stands for one of the bytes 80
/// to FF, which were no UTF-8 in the name that the string was made from; any other lone half becomes U+FFFD.
/// Null has no bytes.
std::string systemPath(NSString* path);
std::string systemPath(std::u16string_view path);

/// The units or the borrowed string from which `systemPath` makes exactly these bytes.
std::u16string unitsOfSystemPath(std::string_view bytes);
NSString* stringOfSystemPath(std::string_view bytes);

/// Whether the system can be asked for such a path; if not, `errno` is ENOENT for an empty path and EINVAL
/// for a path with a zero byte.
bool isSystemPath(const std::string& path);

/// The folder of a path, opened, and the name in it. Slashes at the end of the path do not count. A path
/// without a name of its own, such as "/" or "a/..", has no folder, which `errno` tells by EINVAL.
struct SystemPlace {
    explicit SystemPlace(const std::string& path);
    explicit operator bool() const { return bool(folder); }

    Descriptor folder;
    std::string name;
};

}  // namespace pelvor
