// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSBundle-NibLoading.h"

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNib.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSBundle>& methods) {
    methods.classLevel<"loadNibFile:externalNameTable:withZone:",
                       &NSBundle_NibLoading::loadNibFile_externalNameTable_withZone>();
    methods.instance<"loadNibFile:externalNameTable:withZone:", &loadNibFile_externalNameTable_withZone>();
}

bool instantiate(Retained<NSNib> nib, NSDictionary* names) {
    id owner = names ? names->objectForKey(NSNibOwner) : nullptr;
    auto* added = names ? cast<NSMutableArray>(names->objectForKey(NSNibTopLevelObjects)) : nullptr;
    NSArray* objects = nullptr;
    if (!nib || !nib->instantiateNibWithOwner_topLevelObjects(owner, &objects)) return false;
    if (added) added->addObjectsFromArray(objects);
    return true;
}

}  // namespace

constinit const Category NSBundle_NibLoading_category = Category::of<NSBundle, defineAdditions>("NibLoading");

bool NSBundle_NibLoading::loadNibFile_externalNameTable_withZone(NSString* path, NSDictionary* names, void*) {
    return instantiate(NSNib::initWithContentsOfFile_bundle_error(path, nullptr, nullptr), names);
}

bool loadNibFile_externalNameTable_withZone(NSBundle* bundle, NSString* name, NSDictionary* names, void*) {
    requireArgument(bundle, "loadNibFile:externalNameTable:withZone:", "the bundle");
    return instantiate(NSNib::initWithNibNamed_bundle(name, bundle), names);
}

}  // namespace pelvor
