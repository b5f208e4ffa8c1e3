// SPDX-License-Identifier: Apache-2.0
#include "Spelling/PBSpellCheckerLanguage.h"

#include "BaseSpellCheckingLibrary.h"
#include "Foundation/NSMutableDictionary.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "SpellChecking/NSSpellChecker.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBSpellCheckerLanguage, baseSpellCheckingLibrary) {
    methods.creator<"init", &PBSpellCheckerLanguage::init>();
    methods
        .creator<"spellLanguageWithLanguageName:", &PBSpellCheckerLanguage::spellLanguageWithLanguageName>();
    methods.creator<"spellLanguageForDictionary:", &PBSpellCheckerLanguage::spellLanguageForDictionary>();
    methods.instance<"displayName", &PBSpellCheckerLanguage::displayName>();
    methods.instance<"setDisplayName:", &PBSpellCheckerLanguage::setDisplayName>();
    methods.instance<"languageName", &PBSpellCheckerLanguage::languageName>();
    methods.instance<"setLanguageName:", &PBSpellCheckerLanguage::setLanguageName>();
    methods.instance<"isSuspended", &PBSpellCheckerLanguage::isSuspended>();
    methods.instance<"setIsSuspended:", &PBSpellCheckerLanguage::setIsSuspended>();
    methods.instance<"loadFromDictionary:", &PBSpellCheckerLanguage::loadFromDictionary>();
    methods.instance<"saveToDictionary:", &PBSpellCheckerLanguage::saveToDictionary>();
    methods.instance<"isEqual:", &PBSpellCheckerLanguage::isEqual>();
    methods.instance<"hash", &PBSpellCheckerLanguage::hash>();
    methods.instance<"description", &PBSpellCheckerLanguage::description>();
}

namespace {

constexpr NSString* _PBSpellCheckerLanguageKey_name = u"languageName"_ns;
constexpr NSString* _PBSpellCheckerLanguageKey_displayName = u"languageDisplayName"_ns;

// By messages, so that a host may put operations of its own in their place.
NSString* displayNameGivenFor(NSString* languageName) {
    id checker = send<id>(NSSpellChecker::classObject(), "pelvorSpellChecker"_sel);
    return send<NSString*>(checker, "displayNameForLanguageName:"_sel, languageName);
}

bool areEqual(NSString* one, NSString* other) { return one == other || (one && one->isEqual(other)); }

}  // namespace

Retained<PBSpellCheckerLanguage> PBSpellCheckerLanguage::init(Class* cls) {
    return make<PBSpellCheckerLanguage>(cls);
}

PBSpellCheckerLanguage* PBSpellCheckerLanguage::spellLanguageWithLanguageName(NSString* name, Class* cls) {
    requireArgument(name, "spellLanguageWithLanguageName:", "the name");
    auto language = init(cls);
    language->setLanguageName(name);
    language->setDisplayName(displayNameGivenFor(name));
    return std::move(language).autorelease();
}

PBSpellCheckerLanguage* PBSpellCheckerLanguage::spellLanguageForDictionary(NSDictionary* settings,
                                                                           Class* cls) {
    auto language = init(cls);
    return language->loadFromDictionary(settings) ? std::move(language).autorelease() : nullptr;
}

bool PBSpellCheckerLanguage::loadFromDictionary(NSDictionary* settings) {
    if (!settings) return false;
    auto* name = cast<NSString>(settings->objectForKey(_PBSpellCheckerLanguageKey_name));
    if (!name) return false;
    auto* shown = cast<NSString>(settings->objectForKey(_PBSpellCheckerLanguageKey_displayName));
    if (!shown) shown = displayNameGivenFor(name);
    setLanguageName(name);
    setDisplayName(shown);
    return true;
}

bool PBSpellCheckerLanguage::saveToDictionary(NSMutableDictionary* settings) {
    requireArgument(settings, "saveToDictionary:", "the dictionary");
    if (_langName) settings->setObject_forKey(_langName, _PBSpellCheckerLanguageKey_name);
    if (_displayName) settings->setObject_forKey(_displayName, _PBSpellCheckerLanguageKey_displayName);
    return true;
}

bool PBSpellCheckerLanguage::isEqual(id other) {
    auto* language = cast<PBSpellCheckerLanguage>(other);
    return language && areEqual(_displayName, language->_displayName) &&
           areEqual(_langName, language->_langName);
}

std::uintptr_t PBSpellCheckerLanguage::hash() { return _langName ? _langName->hash() : 0; }

NSString* PBSpellCheckerLanguage::description() {
    return NSString::stringWithFormat(u"PBSpellCheckerLanguage {%@ \"%s\"}"_ns, _langName,
                                      _displayName ? _displayName->UTF8String() : nullptr);
}

}  // namespace pelvor
