// SPDX-License-Identifier: Apache-2.0
// PBRegistry: the set of all profiles of the process.
#pragma once

#include "PBProfileSet.h"
#include "Runtime/Registry.h"

namespace pelvor {

class NSMutableDictionary;

/// Posted after profiles have been added to a registry. The sender is the registry; there is no dictionary.
extern PELVOR_EXPORT NSString* const PBProfilesDidChangeNotification;
/// "Profiles": the name of the declaration files, and in them the key of the declared profiles.
extern PELVOR_EXPORT NSString* const PBProfilesKey;
/// "DisabledProfiles": in a declaration file the key of the identifiers that the file disables.
extern PELVOR_EXPORT NSString* const PBDisabledProfilesKey;

/// The set of all profiles that bundles have declared, from which all other profile sets are made:
///
///     PBRegistry* registry = PBRegistry::sharedRegistry();
///     for (id unit : registry->profilesOfType(PBProfileUnitType)->profiles()) …
///
/// A bundle declares its profiles in a property list, the resource Profiles.plist:
///
///     { Profiles = { "rtf reader" = { type = "document reader"; class = PBRTFReader; }; … };
///       DisabledProfiles = ( "old reader" ); }
///
/// PBPostLoader starts the shared registry and adds the profiles of bundles that are loaded later.
///
/// A profile that is added replaces an earlier profile with the same identifier. Profiles are never removed
/// in another way. `setVersion` counts the additions. A declaration file that cannot be read adds nothing,
/// and one line of the platform's log names the bundle, the file and the reason, with line and column. Main
/// thread.
class PELVOR_EXPORT PBRegistry : public PBProfileSet, PBProfileSet::HiddenCreators {
    PELVOR_CLASS(PBRegistry, PBProfileSet);
    PELVOR_CREATORS(init);

  public:
    /// Makes the shared registry unless one was set before.
    static void initialize(Class* cls);

    /// The registry of the process. It is empty at first, and null only if null was set.
    static PBRegistry* sharedRegistry();
    /// Makes `registry`, which may be null, the shared registry. Existing sets still belong to the registry
    /// that they came from, but compare their versions with the version of the new registry.
    static void setSharedRegistry(PBRegistry* registry);

    /// Makes an empty registry.
    static Retained<PBRegistry> init(Class* cls = classObject());

    /// Reads the declarations of all frameworks and then those of all other bundles, each list from its end
    /// to its beginning. If several bundles declare the same identifier, the profile of a bundle therefore
    /// counts more than that of a framework, and the profile of a bundle nearer to the front of the list
    /// counts more than that of a bundle behind it. PBPostLoader calls this operation once; a second call
    /// reads everything again.
    virtual void startRegistry();
    /// Reads the bundle's declaration file, if it has one, as `addProfilesFromPath_bundle` does.
    virtual void addProfilesFromBundle(NSBundle* bundle);
    /// Adds the profiles of one declaration file; they belong to `bundle`, which may be null. Then posts
    /// PBProfilesDidChangeNotification once, even if there was nothing to read.
    virtual void addProfilesFromPath_bundle(NSString* path, NSBundle* bundle);
    /// Adds the profile, in the place of a profile with the same identifier if there is one, and posts
    /// PBProfilesDidChangeNotification. Raises NSInvalidArgumentException if the profile or its identifier is
    /// null.
    virtual void addProfile(PBProfile* profile);
    /// Posts PBProfilesDidChangeNotification, unless a file is being read.
    virtual void _postProfilesDidChange();
    /// Writes one line to the log, once, if this is a query of the shared registry while no profile was added
    /// and the load-time sequence never ran.
    void update() override;

    /// The string in the user's language: what the profile with the identifier returns for `localize`, or if
    /// the identifier is null or unknown, the string from the default table of the main bundle, else the
    /// string itself.
    NSString* localize_usingProfileNamed(NSString* string, id identifier);

  protected:
    PBRegistry() = default;
    ~PBRegistry() = default;

  private:
    class Suspension;
    void addProfilesFromBundles(NSArray* bundles);
    void addDeclarations_bundle(NSDictionary* declarations, NSBundle* bundle);
    NSMutableDictionary* mutableProfiles();

    std::int32_t _suspendProfilesDidChange = 0;
    bool _awaitsStart = false;  // the shared registry, as it was made
};

/// A class operation of every class. A class that stands for a profile overrides it.
struct PELVOR_EXPORT NSObject_PBProfileAccess {
    /// The identifier of the profile that the class stands for. This implementation returns null, since most
    /// classes stand for no profile.
    static id identifier();
};
extern const Category NSObject_PBProfileAccess_category;

}  // namespace pelvor
