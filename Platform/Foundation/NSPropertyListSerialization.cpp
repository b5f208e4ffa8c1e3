// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSPropertyListSerialization.h"

#include <cerrno>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSString.h"
#include "Foundation/PropertyLists/BinaryPropertyListWriter.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Foundation/PropertyLists/PropertyListFiles.h"
#include "Foundation/PropertyLists/PropertyListReading.h"
#include "Foundation/PropertyLists/XMLPropertyListWriter.h"
#include "Foundation/Values/NSExternalData.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSPropertyListSerialization, foundationLibrary) {
    methods.classLevel<"propertyListWithData:options:format:error:",
                       &NSPropertyListSerialization::propertyListWithData_options_format_error>();
    methods.classLevel<"propertyListWithContentsOfFile:options:format:error:",
                       &NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error>();
    methods.classLevel<"dataWithPropertyList:format:options:error:",
                       &NSPropertyListSerialization::dataWithPropertyList_format_options_error>();
    methods.classLevel<"propertyList:isValidForFormat:",
                       &NSPropertyListSerialization::propertyList_isValidForFormat>();
}

namespace {

void report(NSPropertyListError** error, const PropertyListFault& fault) {
    if (error) *error = NSPropertyListError::create(fault).autorelease();
}

void write(id propertyList, NSPropertyListFormat format, GrowingBytes& bytes) {
    switch (format) {
        case NSPropertyListXMLFormat_v1_0:
            return writeXMLPropertyList(propertyList, bytes);
        case NSPropertyListBinaryFormat_v1_0:
            return writeBinaryPropertyList(propertyList, bytes);
        default:
            throw PropertyListFault{"property lists cannot be written in this format"};
    }
}

}  // namespace

id NSPropertyListSerialization::propertyListWithData_options_format_error(
    NSData* data, NSPropertyListMutabilityOptions options, NSPropertyListFormat* format,
    NSPropertyListError** error) {
    if (error) *error = nullptr;
    try {
        if (!data) throw PropertyListFault{"the data is null"};
        std::string_view bytes(static_cast<const char*>(data->bytes()), data->length());
        auto list = readPropertyList(bytes, options);
        if (format) *format = propertyListFormatOf(bytes);
        return std::move(list).autorelease();
    } catch (const PropertyListFault& fault) {
        report(error, fault);
        return nullptr;
    }
}

id NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error(
    NSString* path, NSPropertyListMutabilityOptions options, NSPropertyListFormat* format,
    NSPropertyListError** error) {
    if (error) *error = nullptr;
    try {
        return readPropertyListFile(path, options, format).autorelease();
    } catch (const PropertyListFault& fault) {
        report(error, fault);
        errno = fault.fileError ? fault.fileError : EBADMSG;
        return nullptr;
    }
}

NSData* NSPropertyListSerialization::dataWithPropertyList_format_options_error(id propertyList,
                                                                               NSPropertyListFormat format,
                                                                               NSUInteger,
                                                                               NSPropertyListError** error) {
    if (error) *error = nullptr;
    try {
        GrowingBytes bytes;
        write(propertyList, format, bytes);
        if (bytes.size() > UINT32_MAX) throw PropertyListFault{"the list takes more than 4 GiB"};
        return NSExternalData::create(bytes).autorelease();
    } catch (const PropertyListFault& fault) {
        report(error, fault);
        return nullptr;
    }
}

bool NSPropertyListSerialization::propertyList_isValidForFormat(id propertyList,
                                                                NSPropertyListFormat format) {
    try {
        GrowingBytes bytes;
        write(propertyList, format, bytes);
        return true;
    } catch (const PropertyListFault&) {
        return false;
    }
}

}  // namespace pelvor
