// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSArray-PropertyList.h"

#include <cerrno>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSString.h"
#include "Foundation/PropertyLists/PropertyListCategories.h"
#include "Foundation/PropertyLists/PropertyListFiles.h"
#include "Runtime/AutoreleasePool.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

Retained<NSArray> NSArray_PropertyList::initWithContentsOfFile(NSString* path, Class* cls) {
    requireArgument(cls, "initWithContentsOfFile:", "the class");
    bool isMutable = cls->isSubclassOfClass(NSMutableArray::classObject());
    AutoreleasePool pool;
    id list = NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error(
        path, isMutable ? NSPropertyListMutableContainers : NSPropertyListImmutable, nullptr, nullptr);
    auto* array = cast<NSArray>(list);
    if (list && !array) errno = EBADMSG;
    return Retained<NSArray>::retaining(array);
}

NSArray* NSArray_PropertyList::arrayWithContentsOfFile(NSString* path, Class* cls) {
    requireArgument(cls, "arrayWithContentsOfFile:", "the class");
    return initWithContentsOfFile(path, cls).autorelease();
}

bool writeToFile_atomically(NSArray* array, NSString* path, bool isAtomic) {
    return writePropertyListFile(array, path, isAtomic);
}

namespace {

void defineMethods(MethodTable<NSArray>& methods) {
    methods.classLevel<"arrayWithContentsOfFile:", &NSArray_PropertyList::arrayWithContentsOfFile>();
    methods.classLevel<"initWithContentsOfFile:", &NSArray_PropertyList::initWithContentsOfFile>();
    methods.instanceAs<"writeToFile:atomically:",
                       static_cast<bool (*)(NSArray*, NSString*, bool)>(&writeToFile_atomically)>();
}

}  // namespace

constinit const Category NSArray_PropertyList_category = Category::of<NSArray, defineMethods>("PropertyList");

}  // namespace pelvor
