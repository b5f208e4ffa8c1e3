// SPDX-License-Identifier: Apache-2.0
#include "NSBundle-PelvorAdditions.h"

#include <cmath>

#include "Foundation/NSBundle-NibLoading.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNib.h"
#include "Foundation/PlatformVersion.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

constexpr double kFirstVersionWithParsedFiles = 743;

void defineAdditions(MethodTable<NSBundle>& methods) {
    using Additions = NSBundle_PelvorAdditions;
    methods.classLevel<"loadNibNamed:owner:identifier:", &Additions::loadNibNamed_owner_identifier>();
    methods.classLevel<"loadNibNamed:owner:identifier:topLevelObjects:",
                       &Additions::loadNibNamed_owner_identifier_topLevelObjects>();
    methods.instance<"loadNibNamed:owner:identifier:", &loadNibNamed_owner_identifier>();
    methods.instance<"loadNibNamed:owner:identifier:topLevelObjects:",
                     &loadNibNamed_owner_identifier_topLevelObjects>();
}

// The files that were loaded with an identifier, by identifier.
NSMutableDictionary* keptFiles() {
    static auto* const files = new Retained<NSMutableDictionary>(NSMutableDictionary::init());
    return *files;
}

bool loadParsedFile(NSBundle* bundle, NSString* name, id owner, id identifier, NSArray** objects) {
    auto nib = Retained<NSNib>::retaining(
        identifier ? static_cast<NSNib*>(keptFiles()->objectForKey(identifier)) : nullptr);
    if (!nib) {
        nib = NSNib::initWithNibNamed_bundle(name, bundle);
        if (!nib) return false;
        if (identifier) keptFiles()->setObject_forKey(nib, identifier);
    }
    return nib->instantiateNibWithOwner_topLevelObjects(owner, objects);
}

bool loadByNameTable(NSBundle* bundle, NSString* name, id owner, NSArray** objects) {
    auto* loaded = NSMutableArray::array();
    auto* names = NSMutableDictionary::dictionary();
    if (owner) names->setObject_forKey(owner, NSNibOwner);
    names->setObject_forKey(loaded, NSNibTopLevelObjects);
    const bool isLoaded = loadNibFile_externalNameTable_withZone(bundle, name, names, nullptr);
    if (isLoaded && objects) *objects = loaded;
    return isLoaded;
}

}  // namespace

constinit const Category NSBundle_PelvorAdditions_category =
    Category::of<NSBundle, defineAdditions>("PelvorAdditions");

bool NSBundle_PelvorAdditions::loadNibNamed_owner_identifier(NSString* name, id owner, id identifier) {
    return loadNibNamed_owner_identifier_topLevelObjects(name, owner, identifier, nullptr);
}

bool NSBundle_PelvorAdditions::loadNibNamed_owner_identifier_topLevelObjects(NSString* name, id owner,
                                                                             id identifier,
                                                                             NSArray** objects) {
    using pelvor::loadNibNamed_owner_identifier_topLevelObjects;
    NSBundle* own = owner ? NSBundle::bundleForClass(owner->class_()) : nullptr;
    return (own && loadNibNamed_owner_identifier_topLevelObjects(own, name, owner, identifier, objects)) ||
           loadNibNamed_owner_identifier_topLevelObjects(NSBundle::mainBundle(), name, owner, identifier,
                                                         objects);
}

bool loadNibNamed_owner_identifier(NSBundle* bundle, NSString* name, id owner, id identifier) {
    requireArgument(bundle, "loadNibNamed:owner:identifier:", "the bundle");
    return loadNibNamed_owner_identifier_topLevelObjects(bundle, name, owner, identifier, nullptr);
}

bool loadNibNamed_owner_identifier_topLevelObjects(NSBundle* bundle, NSString* name, id owner, id identifier,
                                                   NSArray** objects) {
    requireArgument(bundle, "loadNibNamed:owner:identifier:topLevelObjects:", "the bundle");
    return std::floor(platformVersion()) >= kFirstVersionWithParsedFiles
               ? loadParsedFile(bundle, name, owner, identifier, objects)
               : loadByNameTable(bundle, name, owner, objects);
}

}  // namespace pelvor
