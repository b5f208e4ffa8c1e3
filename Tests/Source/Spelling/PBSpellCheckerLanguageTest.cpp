// SPDX-License-Identifier: Apache-2.0
#include "Spelling/PBSpellCheckerLanguage.h"

#include "EnvironmentScope.h"
#include "SpellChecking/NSSpellChecker.h"
#include "TestClasses.h"

namespace {

TEST(PBSpellCheckerLanguage, SavesAndLoadsItsNames) {
    LanguageScope german("de");
    auto* language = PBSpellCheckerLanguage::spellLanguageWithLanguageName(u"en_GB"_ns);
    EXPECT_EQ(shown(language), "PBSpellCheckerLanguage {en_GB \"Englisch (Vereinigtes Königreich)\"}");
    auto settings = NSMutableDictionary::init();
    EXPECT_TRUE(language->saveToDictionary(settings));
    language->setIsSuspended(true);
    auto* loaded = PBSpellCheckerLanguage::spellLanguageForDictionary(settings);
    EXPECT_TRUE(loaded->isEqual(language)) << "suspension does not count";
    EXPECT_FALSE(loaded->isSuspended());

    // A display name of the settings counts; a missing one is asked for.
    settings->setObject_forKey(u"Mine"_ns, u"languageDisplayName"_ns);
    EXPECT_TRUE(loaded->loadFromDictionary(settings));
    EXPECT_EQ(shown(loaded->displayName()), "Mine");
    EXPECT_FALSE(loaded->isEqual(language));
    settings->removeObjectForKey(u"languageDisplayName"_ns);
    EXPECT_TRUE(loaded->loadFromDictionary(settings) && loaded->isEqual(language));
    auto* nameless = NSDictionary::of({{u"languageDisplayName"_ns, u"Other"_ns}});
    EXPECT_FALSE(loaded->loadFromDictionary(nameless));
    EXPECT_TRUE(loaded->isEqual(language)) << "nothing has changed";
    EXPECT_EQ(PBSpellCheckerLanguage::spellLanguageForDictionary(nameless), nullptr);
    EXPECT_EQ(PBSpellCheckerLanguage::spellLanguageForDictionary(nullptr), nullptr);
}

TEST(PBSpellCheckerLanguage, DoesWithoutNames) {
    auto one = PBSpellCheckerLanguage::init(), other = PBSpellCheckerLanguage::init();
    EXPECT_TRUE(one->isEqual(other) && one->hash() == other->hash());
    one->setLanguageName(u"fr"_ns);
    EXPECT_FALSE(one->isEqual(other));
    EXPECT_EQ(shown(one.get()), "PBSpellCheckerLanguage {fr \"(null)\"}");
    auto settings = NSMutableDictionary::init();
    EXPECT_TRUE(one->saveToDictionary(settings));
    EXPECT_TRUE(settings->isEqual(NSDictionary::of({{u"languageName"_ns, u"fr"_ns}})));
}

// A host that names languages by itself.
NSString* hostName(NSObject*, NSString* name) { return name->uppercaseString(); }

TEST(PBSpellCheckerLanguage, AsksTheHostsSpellChecker) {
    const auto name = [] {
        return shown(PBSpellCheckerLanguage::spellLanguageWithLanguageName(u"en"_ns)->displayName());
    };
    EXPECT_NE(name(), "EN");
    addMethod<"displayNameForLanguageName:", &hostName>(NSSpellChecker::classObject());
    EXPECT_EQ(name(), "EN");
}

}  // namespace
