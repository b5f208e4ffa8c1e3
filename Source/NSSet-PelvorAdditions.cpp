// SPDX-License-Identifier: Apache-2.0
#include "NSSet-PelvorAdditions.h"

#include "BaseLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSMutableString.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineSetAdditions(MethodTable<NSSet>& methods) {
    methods.instance<"componentsJoinedByString:", &componentsJoinedByString>();
}
void defineMutableSetAdditions(MethodTable<NSMutableSet>& methods) {
    methods.instance<"removeObjectsInArray:", &removeObjectsInArray>();
}

}  // namespace

constinit const Category NSSet_PelvorAdditions_category =
    Category::of<NSSet, defineSetAdditions>("PelvorAdditions");
constinit const Category NSMutableSet_PelvorAdditions_category =
    Category::of<NSMutableSet, defineMutableSetAdditions>("PelvorAdditions");

NSString* componentsJoinedByString(NSSet* set, NSString*) {
    NSMutableString* text = NSMutableString::string();
    for (id member : set) text->appendString(member->description());
    return text;
}

void removeObjectsInArray(NSMutableSet* set, NSArray* objects) {
    requireArgument(set, "removeObjectsInArray:", "the set");
    if (!objects) return;
    auto leaving = objects->copy();  // the end of a member may change the array
    for (NSUInteger i = leaving->count(); i > 0; --i) set->removeObject(leaving->objectAtIndex(i - 1));
}

}  // namespace pelvor
