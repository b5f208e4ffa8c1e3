// SPDX-License-Identifier: Apache-2.0
// The keys of keyed archives; for the archiver and the unarchiver.
#pragma once

#include <string_view>

#include "Foundation/NSString.h"

namespace pelvor::archive {

inline NSString* const kArchiver = u"archiver"_ns;
inline NSString* const kArchiverName = u"NSKeyedArchiver"_ns;
inline NSString* const kVersion = u"version"_ns;
inline NSString* const kTop = u"top"_ns;
inline NSString* const kObjects = u"objects"_ns;
inline NSString* const kObject = u"object"_ns;
inline NSString* const kClass = u"class"_ns;
inline NSString* const kFields = u"fields"_ns;
inline NSString* const kItems = u"items"_ns;
inline NSString* const kKeys = u"keys"_ns;
inline NSString* const kType = u"type"_ns;
inline NSString* const kBytes = u"bytes"_ns;
inline NSString* const kValue = u"value"_ns;
inline NSString* const kRoot = u"root"_ns;

/// Whether values of the type mean the same in another process: plain numbers, and structures of them.
inline bool isPortableType(std::string_view type) {
    return !type.empty() && type.size() <= 128 && type.find_first_of("@^*:#?[(") == type.npos;
}

}  // namespace pelvor::archive
