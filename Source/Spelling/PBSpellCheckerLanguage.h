// SPDX-License-Identifier: Apache-2.0
// PBSpellCheckerLanguage: a language in which the user has texts checked.
#pragma once

#include "Foundation/NSString.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;
class NSMutableDictionary;

/// The spell checker's name of a language, the name that users see, and whether checking is suspended. A
/// settings dictionary keeps the two names:
///
///     auto* language = PBSpellCheckerLanguage::spellLanguageWithLanguageName(u"en_GB"_ns);
///     language->displayName();  // "English (United Kingdom)"
///     language->saveToDictionary(settings);  // {languageName = "en_GB"; languageDisplayName = …}
///     …
///     language = PBSpellCheckerLanguage::spellLanguageForDictionary(settings);
///
/// A missing display name is asked from the spell checker: the message `displayNameForLanguageName:` to what
/// the class NSSpellChecker returns for `pelvorSpellChecker`. Objects are borrowed; main thread.
class PELVOR_EXPORT PBSpellCheckerLanguage : public NSObject {
    PELVOR_CLASS(PBSpellCheckerLanguage, NSObject);
    PELVOR_CREATORS(init, spellLanguageWithLanguageName, spellLanguageForDictionary);

  public:
    /// A language without names that is not suspended.
    static Retained<PBSpellCheckerLanguage> init(Class* cls = classObject());
    /// The language of that name, with the display name that the spell checker gives. Raises
    /// NSInvalidArgumentException for a null name.
    static PBSpellCheckerLanguage* spellLanguageWithLanguageName(NSString* name, Class* cls = classObject());
    /// The language that `loadFromDictionary` reads; null where that fails.
    static PBSpellCheckerLanguage* spellLanguageForDictionary(NSDictionary* settings,
                                                              Class* cls = classObject());

    NSString* displayName() { return _displayName; }
    void setDisplayName(NSString* name) { _displayName.set(name); }
    NSString* languageName() { return _langName; }
    void setLanguageName(NSString* name) { _langName.set(name); }
    bool isSuspended() { return _isSuspended; }
    void setIsSuspended(bool isSuspended) { _isSuspended = isSuspended; }

    /// Takes the names from the settings. Without a display name there, the spell checker gives one. Returns
    /// false and changes nothing if the settings are null or have no language name; a value that is no string
    /// counts as missing.
    bool loadFromDictionary(NSDictionary* settings);
    /// Writes each name that is not null. Always returns true. Raises NSInvalidArgumentException for a null
    /// dictionary.
    bool saveToDictionary(NSMutableDictionary* settings);

    /// Whether the other object is a PBSpellCheckerLanguage with the same two names. Suspension does not
    /// count.
    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// PBSpellCheckerLanguage {en_GB "English (United Kingdom)"}
    NSString* description() override;

  protected:
    PBSpellCheckerLanguage() = default;
    ~PBSpellCheckerLanguage() = default;

  private:
    Retained<NSString> _displayName;
    Retained<NSString> _langName;
    bool _isSuspended = false;
};

}  // namespace pelvor
