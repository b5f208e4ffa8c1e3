// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/PropertyListFiles.h"

#include <cerrno>

#include "Foundation/Files/FileContents.h"
#include "Foundation/Files/SystemPath.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSString.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Foundation/PropertyLists/PropertyListReading.h"

namespace pelvor {

Retained<Object> readPropertyListFile(NSString* path, NSPropertyListMutabilityOptions options,
                                      NSPropertyListFormat* format) {
    if (!path) throw PropertyListFault{.reason = "the path is null", .fileError = ENOENT};
    GrowingBytes content;
    if (!readFile(systemPath(path), content, FileReading::regularOnly)) {
        const int error = errno;
        throw PropertyListFault{.reason = std::string("the file cannot be read: ") + reasonOfFileError(error),
                                .fileError = error};
    }
    std::string_view bytes = content.view();
    if (format) *format = propertyListFormatOf(bytes);
    if (bytes.empty() && path->hasSuffix(u".strings"_ns)) return NSDictionary::init();
    return readPropertyList(bytes, options);
}

bool writePropertyListFile(id list, NSString* path, bool isAtomic) {
    NSData* data = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        list, NSPropertyListXMLFormat_v1_0, 0, nullptr);
    if (!data) errno = EINVAL;
    return data && data->writeToFile_atomically(path, isAtomic);
}

}  // namespace pelvor
