// SPDX-License-Identifier: Apache-2.0
// Tests of the user's languages, from the user defaults and from the environment.
#include "Foundation/UserLanguages.h"

#include "Foundation/NSUserDefaults.h"
#include "Platform/Foundation/EnvironmentScope.h"
#include "Prelude.h"

namespace pelvor {
namespace {

class UserLanguages : public testing::Test {
  protected:
    UserLanguages() { NSUserDefaults::setStandardUserDefaults(defaults); }
    ~UserLanguages() override { NSUserDefaults::setStandardUserDefaults(nullptr); }

    static std::string languages() { return userLanguages()->componentsJoinedByString(u" "_ns)->toUTF8(); }

    Retained<NSUserDefaults> defaults = NSUserDefaults::initVolatile();
};

TEST_F(UserLanguages, ComeFromTheEnvironment) {
    struct {
        const char* all;
        const char* messages;
        const char* lang;
        const char* language;
        std::string_view languages;
    } const rows[] = {
        {nullptr, nullptr, nullptr, nullptr, "en"},
        {"", "", "de_AT.UTF-8", "", "de-AT de"},
        {nullptr, "fr_FR", "de_AT.UTF-8", nullptr, "fr-FR fr"},
        {"it", "fr_FR", "de_AT.UTF-8", nullptr, "it"},
        {nullptr, nullptr, "de_AT.UTF-8", "pt_BR:pt_PT:en", "pt-BR pt pt-PT en"},
        {nullptr, nullptr, nullptr, "sv", "sv"},
        {"C", nullptr, "de_AT", "sv", "en"},
        {"C.UTF-8", nullptr, nullptr, "sv", "en"},
        {"POSIX", nullptr, nullptr, nullptr, "en"},
        {nullptr, nullptr, "sr_RS@latin", nullptr, "sr-Latn-RS sr-Latn sr"},
        {nullptr, nullptr, "ca_ES@euro", nullptr, "ca-ES ca"},
        {nullptr, nullptr, "de_DE", "::../x:12", "de-DE de"},
        {nullptr, nullptr, "no such locale", nullptr, "en"},
    };
    for (const auto& row : rows) {
        EnvironmentScope scopes[] = {{"LC_ALL", row.all},
                                     {"LC_MESSAGES", row.messages},
                                     {"LANG", row.lang},
                                     {"LANGUAGE", row.language}};
        EXPECT_EQ(languages(), row.languages);
    }
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

}  // namespace
}  // namespace pelvor
