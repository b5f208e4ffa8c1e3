// SPDX-License-Identifier: Apache-2.0
// PBRegistry: all profiles of the process.
#pragma once

#include <memory>

#include "PBProfileSet.h"
#include "Runtime/Registry.h"

namespace pelvor {

class NSMutableDictionary;
class ProfileIndexes;

/// Posted by a registry after profiles came; the sender is the registry.
extern PELVOR_EXPORT NSString* const PBProfilesDidChangeNotification;
/// The name of the declaration files, and in them the entry of the declared profiles.
extern PELVOR_EXPORT NSString* const PBProfilesKey;
/// In a declaration file the entry of identifiers that the file disables.
extern PELVOR_EXPORT NSString* const PBDisabledProfilesKey;

/// The set of all profiles that bundles have declared, each under its identifier; the source of all other
/// profile sets. A bundle declares its profiles in a property list, the resource Profiles.plist:
///
///     { Profiles = { "rtf reader" = { type = "document reader"; class = PBRTFReader; }; … };
///       DisabledProfiles = ( "old reader" ); }
///
/// Of profiles with one identifier the last that came stays. Profiles never go. `setVersion` counts the
/// profiles that came. A declaration file that cannot be read adds nothing, and one line of the platform's
/// log names the bundle, the file and the reason, with line and column. Main thread.
class PELVOR_EXPORT PBRegistry : public PBProfileSet {
    PELVOR_CLASS(PBRegistry, PBProfileSet);

  public:
    /// Makes the shared registry.
    static void initialize(Class* cls);

    /// An empty one from the beginning; none only if it was taken away.
    static PBRegistry* sharedRegistry();
    /// Puts another registry in its place, or none. Existing sets keep to the registry that they came from,
    /// but take the version of this one for the present one.
    static void setSharedRegistry(PBRegistry* registry);

    /// An empty registry.
    static Retained<PBRegistry> init(Class* cls = classObject());

    /// Reads the declarations of all frameworks, then of all other bundles, each list from its end to its
    /// beginning: a bundle's profile beats a framework's, and the one nearer the front of its list beats the
    /// others. Called once, when the process starts; a second call reads everything again.
    virtual void startRegistry();
    /// Reads the bundle's declaration file, if it has one, as `addProfilesFromPath_bundle` does.
    virtual void addProfilesFromBundle(NSBundle* bundle);
    /// Adds the profiles of one declaration file, as those of `bundle`, and then posts that profiles came,
    /// once for all of them, and also when there was nothing to read.
    virtual void addProfilesFromPath_bundle(NSString* path, NSBundle* bundle);
    /// Adds one profile, in the place of another of its identifier, and posts that profiles came. Raises
    /// NSInvalidArgumentException for no profile and for one without an identifier.
    virtual void addProfile(PBProfile* profile);
    /// Posts PBProfilesDidChangeNotification, unless a file is being read.
    virtual void _postProfilesDidChange();
    /// If the shared registry is asked for profiles although no profile came and the load-time sequence never
    /// ran, one line of the log says so, once.
    void update() override;

    /// The string in the language of the user: from the strings table of the profile of that identifier, else
    /// from the main bundle's default table, else as it is.
    NSString* localize_usingProfileNamed(NSString* string, id identifier);

  protected:
    PBRegistry();
    ~PBRegistry();

  private:
    class Suspension;
    void addProfilesFromBundles(NSArray* bundles);
    void addDeclarations_bundle(NSDictionary* declarations, NSBundle* bundle);
    NSMutableDictionary* mutableProfiles();
    std::vector<ProfileCandidate> candidates(const ProfileQuery& query) override;

    std::unique_ptr<ProfileIndexes> _indexes;  // none: to be made from the profiles when needed
    std::int32_t _suspendProfilesDidChange = 0;
    bool _awaitsStart = false;  // the shared registry, as it was made
};

/// What stands for a profile says which. Classes override the class operation by one of their own.
struct PELVOR_EXPORT NSObject_PBProfileAccess {
    /// None: a class in general stands for no profile.
    static id identifier();
};
extern const Category NSObject_PBProfileAccess_category;

}  // namespace pelvor
