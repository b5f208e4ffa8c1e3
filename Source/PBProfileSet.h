// SPDX-License-Identifier: Apache-2.0
// PBProfileSet: the profiles that match a key and a value, kept up to date with the registry.
#pragma once

#include "PBProfile.h"

namespace pelvor {

class NSArray;

/// The profiles of another set, the parent, that have a certain key, or that have one of certain values under
/// a key:
///
///     PBProfileSet* readers = PBRegistry::sharedRegistry()->profilesOfType(PBProfileDocumentReaderType);
///     for (id profile : readers->profilesWithKey(PBProfileFormatsKey)->profiles()) …
///
/// The parents of sets lead up to the registry. If the registry has changed since a set was made, the next
/// query makes the set filter its parent again.
///
/// A key may be an array. Such a key is a path, which leads from an entry of the profile through the
/// dictionaries inside this entry. A value matches an entry that is equal to the value, and an entry that is
/// an array with an equal element. The entry "*", alone or in an array, matches every value. The value "*"
/// matches every profile, even a profile without the key.
///
/// If a profile of a subclass changes the registry in its `valueForKey`, the query that called it raises
/// NSGenericException. A set retains its parent and its profiles. The order of the profiles means nothing.
/// Main thread.
class PELVOR_EXPORT PBProfileSet : public NSObject {
    PELVOR_CLASS(PBProfileSet, NSObject);
    PELVOR_CREATORS(init, initWithParent_value_key_any_version_profiles);

  public:
    /// Makes an empty set without a parent.
    static Retained<PBProfileSet> init(Class* cls = classObject());
    /// Makes a set of `profiles`, a dictionary with the PBProfiles of `parent` that match, by their
    /// identifiers. A null `value` stands for any value under the key. With `any`, `value` is an array of
    /// values, one of which has to match. `version` is the version of the registry at this moment. The set
    /// retains the parent and copies the other objects.
    static Retained<PBProfileSet> initWithParent_value_key_any_version_profiles(PBProfileSet* parent,
                                                                                id value, id key, bool any,
                                                                                std::uint32_t version,
                                                                                NSDictionary* profiles,
                                                                                Class* cls = classObject());

    // The set's profiles. Results are borrowed.

    /// All profiles, as PBProfiles.
    NSArray* profiles();
    NSArray* identifiers();
    /// The profile with the identifier; null if the set does not contain one.
    PBProfile* profileWithIdentifier(id identifier);

    // Filters that return dictionaries of PBProfiles by their identifiers, borrowed

    virtual NSDictionary* profileDictionaryWithKey(id key);
    virtual NSDictionary* profileDictionaryWithValue_forKey(id value, id key);
    virtual NSDictionary* profileDictionaryWithAnyValue_forKey(NSArray* values, id key);

    // Filters that return sets, borrowed, whose parent is this set

    PBProfileSet* profilesWithKey(id key);
    PBProfileSet* profilesWithValue_forKey(id value, id key);
    PBProfileSet* profilesWithAnyValue_forKey(NSArray* values, id key);
    /// The profiles with the value `type` under PBProfileTypeKey.
    PBProfileSet* profilesOfType(id type);

    // Staying up to date

    /// Returns the version that the registry had when the set was made; the version of a registry counts its
    /// changes. The name means "the version of the set": the operation sets nothing.
    virtual std::uint32_t setVersion() { return _version; }
    /// Whether the registry has not changed since the set was made; always true for a registry. The result
    /// never becomes true again, since the version of a set does not change: from the first change on, the
    /// set filters its parent for every query.
    bool isUpToDate();
    /// Called at the beginning of every query: filters the profiles of the parent again if the set is not up
    /// to date. A set without a parent has no profiles from then on.
    virtual void update();

    PBProfileSet* parent() { return _parent.get(); }
    id key() { return _key.get(); }
    id value() { return _value.get(); }
    /// Whether `value` is an array of values of which one must match.
    bool matchAnyValue() { return _any; }

    /// "<PBProfileSet 0x…> = profiles version=3 parent=description of the parent".
    NSString* description() override;

  protected:
    PBProfileSet() = default;
    ~PBProfileSet() = default;

  private:
    friend class PBRegistry;

    PBProfileSet* derivedSet(id value, id key, bool any, NSDictionary* profiles);
    template <class Filter>
    NSDictionary* filtered(id key, Filter passes);

    Retained<NSDictionary> _profiles;
    std::uint32_t _version = 0;
    Retained<PBProfileSet> _parent;
    Retained<Object> _key;
    Retained<Object> _value;
    bool _any = false;
};

/// The entry of the profile for the key. A key that is an array is a path: its first element is looked up in
/// the profile, and each further element in the dictionary that was found before it. The result is null if an
/// entry is missing, if one on the way is no dictionary, and for an empty path.
PELVOR_EXPORT id _PBValueForKeyInProfile(PBProfile* profile, id key);

}  // namespace pelvor
