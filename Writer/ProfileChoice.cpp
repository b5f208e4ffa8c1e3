// SPDX-License-Identifier: Apache-2.0
#include "Writer/ProfileChoice.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSNumber.h"
#include "PBProfileKeys.h"

namespace pelvor {
namespace {

// Profiles without an order go last.
int paletteOrder(PBProfile* profile) {
    auto* order = cast<NSNumber>(profile->valueForKey(PBProfilePaletteOrderKey));
    return order ? order->intValue() : INT32_MAX;
}

int compareProfiles(id first, id second, void* path) {
    auto* a = static_cast<PBProfile*>(first);
    auto* b = static_cast<PBProfile*>(second);
    if (path) {
        const bool isNamedA = isNamedForDocument(a, static_cast<NSString*>(path));
        const bool isNamedB = isNamedForDocument(b, static_cast<NSString*>(path));
        if (isNamedA != isNamedB) return isNamedA ? NSOrderedAscending : NSOrderedDescending;
    }
    const int orderA = paletteOrder(a);
    const int orderB = paletteOrder(b);
    if (orderA != orderB) return orderA < orderB ? NSOrderedAscending : NSOrderedDescending;
    return a->identifier()->description()->compare(b->identifier()->description());
}

}  // namespace

NSArray* profilesInOrder(PBProfileSet* profiles) {
    return profiles->profiles()->sortedArrayUsingFunction_context(compareProfiles, nullptr);
}

NSArray* profilesForDocument(PBProfileSet* profiles, NSString* type, NSString* path) {
    NSString* extension = path->pathExtension()->lowercaseString();
    PBProfileSet* matching =
        profiles->profilesOfType(type)->profilesWithValue_forKey(extension, PBProfileDocumentTypesKey);
    return matching->profiles()->sortedArrayUsingFunction_context(compareProfiles, path);
}

bool isNamedForDocument(PBProfile* profile, NSString* path) {
    NSString* extension = path->pathExtension()->lowercaseString();
    id types = profile->valueForKey(PBProfileDocumentTypesKey);
    auto* list = cast<NSArray>(types);
    return list ? list->containsObject(extension) : types && types->isEqual(extension);
}

NSString* nameOfProfile(PBProfile* profile) {
    auto* name = cast<NSString>(profile->valueForKey(PBProfileNameKey));
    return name ? profile->localize(name) : profile->identifier()->description();
}

}  // namespace pelvor
