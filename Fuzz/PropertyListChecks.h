// SPDX-License-Identifier: Apache-2.0
// What must hold of any bytes that are read as a property list.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Foundation/NSData.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSString.h"
#include "Foundation/PropertyListLimits.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor::fuzz {

inline void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// Few shared objects, so that walks over what was read stay short under sanitizers.
inline void limitSharing() { setPropertyListLimits({.maximumDepth = 512, .maximumSharedObjects = 1 << 12}); }

inline id read(std::string_view bytes, NSPropertyListMutabilityOptions options) {
    NSPropertyListError* error = nullptr;
    NSPropertyListFormat format{};
    NSData* data = NSData::dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
    id list = NSPropertyListSerialization::propertyListWithData_options_format_error(data, options, &format,
                                                                                     &error);
    require((list == nullptr) == (error != nullptr), "a list or an error");
    if (error) {
        require(error->reason()->length() > 0, "an error has a reason");
        require((error->line() > 0) == (error->column() > 0), "a line has a column");
        require(error->offset() <= bytes.size() + 1, "an error lies inside the bytes");
    }
    return list;
}

/// Empty if the list cannot be written.
inline std::string write(id list, NSPropertyListFormat format) {
    NSPropertyListError* error = nullptr;
    NSData* data =
        NSPropertyListSerialization::dataWithPropertyList_format_options_error(list, format, 0, &error);
    require((data == nullptr) == (error != nullptr), "data or an error");
    return data ? std::string(static_cast<const char*>(data->bytes()), data->length()) : std::string();
}

/// The list is the same again after it was written as a binary list.
inline void requireBinaryRoundTrip(id list) {
    std::string bytes = write(list, NSPropertyListBinaryFormat_v1_0);
    require(!bytes.empty(), "what was read can be written");
    id again = read(bytes, NSPropertyListImmutable);
    require(again && again->isEqual(list), "a binary list is read as it was written");
    require(write(again, NSPropertyListBinaryFormat_v1_0) == bytes, "equal lists have the same bytes");
}

/// What can be written as XML is written the same after it was read again.
inline std::string requireXMLRoundTrip(id list) {
    std::string bytes = write(list, NSPropertyListXMLFormat_v1_0);
    if (bytes.empty()) return bytes;
    id again = read(bytes, NSPropertyListImmutable);
    require(again, "an XML list that was written is read");
    require(write(again, NSPropertyListXMLFormat_v1_0) == bytes, "an XML list is written as it was read");
    return bytes;
}

inline NSPropertyListMutabilityOptions optionsFor(std::size_t size) {
    return static_cast<NSPropertyListMutabilityOptions>(size % 3);
}

}  // namespace pelvor::fuzz
