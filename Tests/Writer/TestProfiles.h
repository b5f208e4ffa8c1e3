// SPDX-License-Identifier: Apache-2.0
// Profiles of readers and writers for tests.
#pragma once

#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Prelude.h"

namespace pelvor {

/// Adds a profile to the registry. The document types may be none; an order of 0 is left out.
inline PBProfile* addProfile(PBRegistry* registry, const char* identifier, NSString* type,
                             std::initializer_list<id> documentTypes, int order,
                             NSString* className = u"WRTestPathReader"_ns) {
    auto* entries = NSMutableDictionary::of({{PBProfileTypeKey, type},
                                             {PBProfileDocumentTypesKey, NSArray::of(documentTypes)},
                                             {PBProfileClassKey, className}});
    if (order) entries->setObject_forKey(NSNumber::numberWithInt(order), PBProfilePaletteOrderKey);
    auto* profile =
        PBProfile::profileWithIdentifier_dictionary_bundle(NSString::ofUTF8(identifier), entries, nullptr);
    registry->addProfile(profile);
    return profile;
}

}  // namespace pelvor
