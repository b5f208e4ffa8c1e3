// SPDX-License-Identifier: Apache-2.0
// PBProfile: the description of one pluggable piece, as a bundle declared it.
#pragma once

#include "Foundation/NSBundle.h"
#include "Foundation/NSDictionary.h"

namespace pelvor {

/// A property-list dictionary with an identifier that describes a document reader, a palette, a unit or
/// another pluggable piece. PBProfileKeys.h lists the keys. Profiles come out of the declaration files of
/// bundles, through the registry:
///
///     PBProfile* reader = PBRegistry::sharedRegistry()->profileWithIdentifier(u"rtf reader"_ns);
///     NSString* name = reader->localize(cast<NSString>(reader->valueForKey(PBProfileNameKey)));
///     Class* cls = reader->profileClass();
///
/// A profile never changes. Two profiles are equal only if they are the same object. Main thread.
class PELVOR_EXPORT PBProfile : public NSObject {
    PELVOR_CLASS(PBProfile, NSObject);
    PELVOR_CREATORS(profileWithIdentifier_dictionary_bundle, initWithIdentifier_dictionary_bundle);

  public:
    static void initialize(Class* cls);

    static PBProfile* profileWithIdentifier_dictionary_bundle(id identifier, NSDictionary* dictionary,
                                                              NSBundle* bundle, Class* cls = classObject());
    /// Makes a profile from a copy of the identifier, which is a string in most cases, and a copy of the
    /// dictionary. The profile retains the bundle. Everywhere in the dictionary, also in dictionaries and
    /// arrays inside it, a value "val" becomes the pasteboard type of PDF data. A null dictionary makes a
    /// profile without entries; the bundle may be null.
    static Retained<PBProfile> initWithIdentifier_dictionary_bundle(id identifier, NSDictionary* dictionary,
                                                                    NSBundle* bundle,
                                                                    Class* cls = classObject());

    id identifier() { return _identifier.get(); }
    NSBundle* bundle() { return _bundle.get(); }

    /// The entry under the key; null if the key has no entry.
    virtual id valueForKey(id key);
    /// Returns what `valueForKey` returns.
    id objectForKey(id key) { return valueForKey(key); }

    /// The entry of PBProfileTypeKey: a string, or an array of strings.
    id type();
    /// The class that the entry of PBProfileClassKey names; null if there is no entry or no such class is
    /// loaded.
    Class* profileClass();
    /// The entry of PBProfileStringsKey, the name of a strings table.
    id stringsName();
    /// The string in the user's language, from the profile's strings table in its bundle, or in the main
    /// bundle if the profile has no bundle. A string that the table lacks is returned as it is, and so is
    /// every string if the profile names no table.
    NSString* localize(NSString* string);

    /// "<PBProfile 0x…>: identifier = dictionary".
    NSString* description() override;

  protected:
    PBProfile() = default;
    ~PBProfile() = default;

  private:
    Retained<NSDictionary> _info;
    Retained<Object> _identifier;
    Retained<NSBundle> _bundle;
};

}  // namespace pelvor
