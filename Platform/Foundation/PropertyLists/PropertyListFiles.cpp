// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/PropertyListFiles.h"

#include "Foundation/NSData.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Foundation/PropertyLists/PropertyListReading.h"

namespace pelvor {

Retained<Object> readPropertyListFile(NSString* path, NSPropertyListMutabilityOptions options) {
    if (!path) return nullptr;
    auto data = NSData::initWithContentsOfFile(path);
    if (!data) return nullptr;
    try {
        return readPropertyList({static_cast<const char*>(data->bytes()), data->length()}, options);
    } catch (const PropertyListFault&) {
        return nullptr;
    }
}

bool writePropertyListFile(id list, NSString* path, bool isAtomic) {
    NSData* data = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        list, NSPropertyListXMLFormat_v1_0, 0, nullptr);
    return data && path && data->writeToFile_atomically(path, isAtomic);
}

}  // namespace pelvor
