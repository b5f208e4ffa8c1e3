// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSString-PropertyList.h"

#include "Foundation/NSDictionary.h"
#include "Foundation/NSFormat.h"
#include "Foundation/PropertyLists/OldStylePropertyListReader.h"
#include "Foundation/PropertyLists/PropertyListCategories.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Foundation/PropertyLists/PropertyListReading.h"
#include "Foundation/PropertyLists/XMLPropertyListReader.h"
#include "Runtime/NSException.h"

namespace pelvor {

namespace {

void requireString(NSString* string, NSString* operation) {
    if (!string) raiseException(NSInvalidArgumentException, u"%@: the string is null"_ns, operation);
}

}  // namespace

id propertyList(NSString* string) {
    requireString(string, u"propertyList"_ns);
    try {
        std::string utf8 = string->toUTF8();
        if (propertyListFormatOf(utf8) == NSPropertyListXMLFormat_v1_0)
            return readXMLPropertyList(utf8, NSPropertyListImmutable, XMLEncoding::utf8).autorelease();
        StringUnits units(string);
        return readOldStylePropertyList(units, NSPropertyListImmutable).autorelease();
    } catch (const PropertyListFault&) {
        return nullptr;
    }
}

NSDictionary* propertyListFromStringsFileFormat(NSString* string) {
    requireString(string, u"propertyListFromStringsFileFormat"_ns);
    try {
        StringUnits units(string);
        auto list = readOldStylePropertyList(units, NSPropertyListImmutable);
        if (!cast<NSDictionary>(list)) return nullptr;
        return static_cast<NSDictionary*>(std::move(list).autorelease());
    } catch (const PropertyListFault&) {
        return nullptr;
    }
}

namespace {

void defineMethods(MethodTable<NSString>& methods) {
    methods.instance<"propertyList", &propertyList>();
    methods.instance<"propertyListFromStringsFileFormat", &propertyListFromStringsFileFormat>();
}

}  // namespace

constinit const Category NSString_PropertyList_category =
    Category::of<NSString, defineMethods>("PropertyList");

}  // namespace pelvor
