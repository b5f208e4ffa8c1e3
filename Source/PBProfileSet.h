// SPDX-License-Identifier: Apache-2.0
// PBProfileSet: the profiles that match a key and a value, kept true to the registry.
#pragma once

#include <vector>

#include "PBProfile.h"

namespace pelvor {

class NSArray;
struct ProfileCandidate;
struct ProfileQuery;

/// A view of the profiles of another set, its parent: those that have a key, or under it one of some values.
/// Views of views lead up to the registry. A set filters its parent anew when it is asked after the
/// registry has changed:
///
///     PBProfileSet* readers = registry->profilesOfType(PBProfileDocumentReaderType);
///     for (id profile : readers->profilesWithKey(u"formats"_ns)->profiles()) …
///
/// A key may be an array: a path that leads from the profile's entry through dictionaries in it. A value
/// matches an equal entry and an entry that is an array with an equal element. The entry "*", alone or in
/// an array, matches every value; the value "*" matches every profile, also those without the key.
///
/// Sets retain their parents and hold their profiles. The order of profiles means nothing. Main thread.
class PELVOR_EXPORT PBProfileSet : public NSObject {
    PELVOR_CLASS(PBProfileSet, NSObject);

  public:
    /// An empty set without parent.
    static Retained<PBProfileSet> init(Class* cls = classObject());
    /// The set of `profiles`, identifiers to PBProfiles, that are what `parent` gives for the key and the
    /// value: with `any`, an array of values of which one suffices; no value if having the key is enough.
    /// `version` is the registry's at this moment. Key, value and profiles are copied.
    static Retained<PBProfileSet> initWithParent_value_key_any_version_profiles(PBProfileSet* parent,
                                                                                id value, id key, bool any,
                                                                                std::uint32_t version,
                                                                                NSDictionary* profiles,
                                                                                Class* cls = classObject());

    // The set's profiles

    /// PBProfiles.
    NSArray* profiles();
    NSArray* identifiers();
    /// None where there is no such profile.
    PBProfile* profileWithIdentifier(id identifier);

    // Filters that answer dictionaries from identifiers to PBProfiles

    virtual NSDictionary* profileDictionaryWithKey(id key);
    virtual NSDictionary* profileDictionaryWithValue_forKey(id value, id key);
    virtual NSDictionary* profileDictionaryWithAnyValue_forKey(NSArray* values, id key);

    // Filters that answer sets whose parent is the receiver

    PBProfileSet* profilesWithKey(id key);
    PBProfileSet* profilesWithValue_forKey(id value, id key);
    PBProfileSet* profilesWithAnyValue_forKey(NSArray* values, id key);
    /// The profiles with the value `type` for PBProfileTypeKey.
    PBProfileSet* profilesOfType(id type);

    // Staying up to date

    /// Answers the registry's version at the time when the set was made; a registry's own counts its
    /// changes. Sets nothing, in spite of the name.
    virtual std::uint32_t setVersion() { return _version; }
    /// Whether the registry has not changed since the set was made; always for a registry. A set that was
    /// overtaken stays so: it filters its parent for every query from then on, and its version stays too.
    bool isUpToDate();
    /// What every query begins with: filters the parent's profiles again if the set is not up to date. A set
    /// without parent has no profiles then.
    virtual void update();

    PBProfileSet* parent() { return _parent.get(); }
    id key() { return _key.get(); }
    id value() { return _value.get(); }
    /// Whether `value` is an array of values of which one suffices.
    bool matchAnyValue() { return _any; }

    /// "<PBProfileSet 0x…> = profiles version=3 parent=description of the parent".
    NSString* description() override;

  protected:
    PBProfileSet() = default;
    ~PBProfileSet() = default;

  private:
    friend class PBRegistry;

    PBProfileSet* derivedSet(id value, id key, bool any, NSDictionary* profiles);
    virtual std::vector<ProfileCandidate> candidates(const ProfileQuery& query);
    template <class Filter>
    NSDictionary* filtered(const ProfileQuery& query, Filter passes);

    Retained<NSDictionary> _profiles;
    std::uint32_t _version = 0;
    Retained<PBProfileSet> _parent;
    Retained<Object> _key;
    Retained<Object> _value;
    bool _any = false;
};

/// The profile's entry for the key. A key that is an array is a path: its first element is looked up in the
/// profile, the others in turn in the dictionary found before. None where an entry is missing or no
/// dictionary is there to look into, and for an empty path.
PELVOR_EXPORT id _PBValueForKeyInProfile(PBProfile* profile, id key);

}  // namespace pelvor
