// SPDX-License-Identifier: Apache-2.0
// What tests of profiles need: registries of their own, bundles on disk, and sets in few words.
#pragma once

#include "Foundation/NSString-PropertyList.h"
#include "PBRegistry.h"
#include "Prelude.h"
#include "TemporaryFolder.h"

namespace pelvor {

inline bool isSame(id object, id expected) { return object && object->isEqual(expected); }

/// The property list that the text is, or none for "none".
inline id parsed(const std::string& text) {
    return text == "none" ? nullptr : propertyList(NSString::ofUTF8(text));
}
inline PBProfile* makeProfile(id identifier, const char* entries, NSBundle* bundle = nullptr) {
    return PBProfile::profileWithIdentifier_dictionary_bundle(identifier, cast<NSDictionary>(parsed(entries)),
                                                              bundle);
}

/// The texts in their order, with blanks between.
inline std::string names(NSArray* texts) {
    return shown(texts->sortedArrayUsingSelector("compare:"_sel)->componentsJoinedByString(u" "_ns));
}
inline std::string names(PBProfileSet* set) { return names(set->identifiers()); }
inline std::string names(NSDictionary* profiles) { return names(profiles->allKeys()); }

/// Makes another registry, or none, the shared one while it lives.
class SharedRegistry {
  public:
    explicit SharedRegistry(PBRegistry* registry) { PBRegistry::setSharedRegistry(registry); }
    ~SharedRegistry() { PBRegistry::setSharedRegistry(_previous); }

  private:
    Retained<PBRegistry> _previous = Retained<PBRegistry>::retaining(PBRegistry::sharedRegistry());
};

/// A bundle in the folder, without code, with one resource more than it needs.
inline NSBundle* makeBundle(TemporaryFolder& folder, const std::string& name,
                            const std::string& resource = "none", const std::string& text = "") {
    folder.write(name + ".bundle/Contents/Info.plist", "{ CFBundleIdentifier = test." + name + "; }");
    folder.write(name + ".bundle/Contents/Resources/" + resource, text);
    return NSBundle::bundleWithPath(NSString::ofUTF8(folder.path(name + ".bundle")));
}

}  // namespace pelvor
