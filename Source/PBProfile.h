// SPDX-License-Identifier: Apache-2.0
// PBProfile: the description of one pluggable piece, as its bundle declared it.
#pragma once

#include "Foundation/NSBundle.h"
#include "Foundation/NSDictionary.h"

namespace pelvor {

/// A property-list dictionary under an identifier: a document reader, a palette, a unit … PBProfileKeys.h
/// names the keys. Profiles never change once made. They come out of the declaration files of bundles,
/// through the registry:
///
///     PBProfile* reader = PBRegistry::sharedRegistry()->profileWithIdentifier(u"rtf reader"_ns);
///     Class* cls = reader->profileClass();
///
/// Two profiles are equal only if they are the same object. Main thread.
class PELVOR_EXPORT PBProfile : public NSObject {
    PELVOR_CLASS(PBProfile, NSObject);

  public:
    static void initialize(Class* cls);

    static PBProfile* profileWithIdentifier_dictionary_bundle(id identifier, NSDictionary* dictionary,
                                                              NSBundle* bundle, Class* cls = classObject());
    /// Copies the identifier, which is mostly a string, and the dictionary; retains the bundle. In the
    /// dictionary, and in dictionaries and arrays inside it, every string "val" that is a value becomes the
    /// pasteboard type of PDF data. No dictionary makes a profile without entries; the bundle may be none.
    static Retained<PBProfile> initWithIdentifier_dictionary_bundle(id identifier, NSDictionary* dictionary,
                                                                    NSBundle* bundle,
                                                                    Class* cls = classObject());

    id identifier() { return _identifier.get(); }
    NSBundle* bundle() { return _bundle.get(); }

    /// The entry under the key; none where there is none. Both operations are the same.
    virtual id valueForKey(id key);
    id objectForKey(id key) { return valueForKey(key); }

    /// The entry of PBProfileTypeKey: a string, or an array of strings.
    id type();
    /// The loaded class that PBProfileClassKey names, else none.
    Class* profileClass();
    /// The entry of PBProfileStringsKey, a table's name.
    id stringsName();
    /// The string as the profile's strings table in its bundle has it, or in the main bundle for a profile
    /// without one. A string that the table lacks comes back as it is, and so does every string for a profile
    /// that names no table.
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
