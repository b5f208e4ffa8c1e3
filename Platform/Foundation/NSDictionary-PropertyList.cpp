// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSDictionary-PropertyList.h"

#include <cerrno>

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSString.h"
#include "Foundation/PropertyLists/PropertyListCategories.h"
#include "Foundation/PropertyLists/PropertyListFiles.h"
#include "Runtime/AutoreleasePool.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

Retained<NSDictionary> NSDictionary_PropertyList::initWithContentsOfFile(NSString* path, Class* cls) {
    requireArgument(cls, "initWithContentsOfFile:", "the class");
    bool isMutable = cls->isSubclassOfClass(NSMutableDictionary::classObject());
    AutoreleasePool pool;
    id list = NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error(
        path, isMutable ? NSPropertyListMutableContainers : NSPropertyListImmutable, nullptr, nullptr);
    auto* dictionary = cast<NSDictionary>(list);
    if (list && !dictionary) errno = EBADMSG;
    return Retained<NSDictionary>::retaining(dictionary);
}

NSDictionary* NSDictionary_PropertyList::dictionaryWithContentsOfFile(NSString* path, Class* cls) {
    requireArgument(cls, "dictionaryWithContentsOfFile:", "the class");
    return initWithContentsOfFile(path, cls).autorelease();
}

bool writeToFile_atomically(NSDictionary* dictionary, NSString* path, bool isAtomic) {
    return writePropertyListFile(dictionary, path, isAtomic);
}

namespace {

void defineMethods(MethodTable<NSDictionary>& methods) {
    methods.classLevel<"dictionaryWithContentsOfFile:",
                       &NSDictionary_PropertyList::dictionaryWithContentsOfFile>();
    methods.classLevel<"initWithContentsOfFile:", &NSDictionary_PropertyList::initWithContentsOfFile>();
    methods.instanceAs<"writeToFile:atomically:",
                       static_cast<bool (*)(NSDictionary*, NSString*, bool)>(&writeToFile_atomically)>();
}

}  // namespace

constinit const Category NSDictionary_PropertyList_category =
    Category::of<NSDictionary, defineMethods>("PropertyList");

}  // namespace pelvor
