// SPDX-License-Identifier: Apache-2.0
// Tests of the user's languages, from the user defaults and from the environment.
#include "Foundation/UserLanguages.h"

#include <list>

#include "Foundation/LocalizedNumbers.h"
#include "Foundation/NSUserDefaults.h"
#include "Platform/Foundation/BundleTestSupport.h"

namespace {

class UserLanguages : public ::testing::Test {
  protected:
    UserLanguages() { NSUserDefaults::setStandardUserDefaults(defaults); }
    ~UserLanguages() override { NSUserDefaults::setStandardUserDefaults(nullptr); }

    static std::string languages() { return userLanguages()->componentsJoinedByString(u" "_ns)->toUTF8(); }

    Retained<NSUserDefaults> defaults = NSUserDefaults::initVolatile();
};

TEST_F(UserLanguages, ComeFromTheEnvironment) {
    // LC_ALL, LC_MESSAGES, LANG and LANGUAGE; "-" is none.
    expectAll({"-,-,-,- -> en", ",,de_AT.UTF-8, -> de-AT de", "-,fr_FR,de_AT.UTF-8,- -> fr-FR fr",
               "it,fr_FR,de_AT.UTF-8,- -> it", "-,-,de_AT.UTF-8,pt_BR:pt_PT:en -> pt-BR pt pt-PT en",
               "-,-,-,sv -> sv", "C,-,de_AT,sv -> en", "C.UTF-8,-,-,sv -> en", "POSIX,-,-,- -> en",
               "-,-,sr_RS@latin,- -> sr-Latn-RS sr-Latn sr", "-,-,ca_ES@euro,- -> ca-ES ca",
               "-,-,de_DE,::../x:12 -> de-DE de", "-,-,no such locale,- -> en"},
              [](const std::string& row) {
                  std::istringstream values(row + ",");
                  std::list<EnvironmentScope> scopes;
                  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG", "LANGUAGE"}) {
                      std::string value;
                      std::getline(values, value, ',');
                      scopes.emplace_back(name, value == "-" ? nullptr : value.c_str());
                  }
                  return languages();
              });
}

TEST_F(UserLanguages, ComeFromTheUserDefaultsFirst) {
    EnvironmentScope locale("LC_ALL", "de_DE.UTF-8");
    EnvironmentScope list("LANGUAGE", nullptr);
    defaults->setObject_forKey(NSArray::of({u"fr-CA"_ns, u"en"_ns}), PelvorLanguages);
    EXPECT_EQ(languages(), "fr-CA en");
    for (id useless : {id(u"fr"_ns), id(NSArray::array())}) {
        defaults->setObject_forKey(useless, PelvorLanguages);
        EXPECT_EQ(languages(), "de-DE de");
    }
}

TEST_F(UserLanguages, SeparateTheFractionsOfNumbers) {
    expectAll({"en -> 12.7 12", "de-AT -> 12,7 12", "sr-Latn-RS -> 12,7 12", "fa -> 12.7 12",
               "no such language -> 12.7 12"},
              [&](const std::string& language) {
                  defaults->setObject_forKey(NSArray::of({NSString::ofUTF8(language)}), PelvorLanguages);
                  return shown(localizedNumber(u"12.7"_ns), localizedNumber(u"12"_ns));
              });
    for (NSString* written : {u"12,7"_ns, u"12.7"_ns}) EXPECT_EQ(shown(plainNumber(written)), "12.7");
}

}  // namespace
