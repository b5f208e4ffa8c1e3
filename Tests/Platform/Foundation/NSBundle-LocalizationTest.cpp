// SPDX-License-Identifier: Apache-2.0
#include "BundleTestSupport.h"
#include "Foundation/NSBundle.h"
#include "Prelude.h"

namespace pelvor::testing {
namespace {

std::vector<std::string> texts(NSArray* strings) {
    std::vector<std::string> texts;
    for (id string : strings) texts.push_back(string->description()->toUTF8());
    return texts;
}

class NSBundleLocalizationTest : public ::testing::Test {
  protected:
    // A bundle in Italian with these localisations, each with a table of its own name.
    NSBundle* bundleIn(std::initializer_list<const char*> languages) {
        fs::path path = folder.makeBundle("A.bundle", {{"CFBundleDevelopmentRegion", "it"}});
        for (const std::string language : languages)
            folder.write(path / ("Contents/Resources/" + language + ".lproj/Localizable.strings"),
                         "\"_Open\" = \"open in " + language + "\";\n");
        return bundleAt(path);
    }
    static std::string open(NSBundle* bundle) {
        return bundle->localizedStringForKey_value_table(u"_Open"_ns, nullptr, nullptr)->toUTF8();
    }

    BundleFolder folder;
};

TEST_F(NSBundleLocalizationTest, TheUsersLanguagesAreTriedThenTheBundlesThenEnglish) {
    auto* bundle = bundleIn({"en", "fr", "fr_CA", "de", "it", "zh-Hant"});
    EXPECT_THAT(texts(bundle->localizations()), ElementsAre("de", "en", "fr", "fr_CA", "it", "zh-Hant"));
    struct {
        const char* languages;
        std::vector<std::string> preferred;
    } const rows[] = {
        {"en", {"en", "it"}},
        {"de", {"de", "it", "en"}},
        {"fr_CA", {"fr_CA", "fr", "it", "en"}},
        {"fr_FR:de_AT", {"fr", "de", "it", "en"}},
        {"ja", {"it", "en"}},
        {"zh-Hant-TW", {"zh-Hant", "it", "en"}},
    };
    for (const auto& row : rows) {
        LanguageScope scope(row.languages);
        EXPECT_EQ(texts(bundle->preferredLocalizations()), row.preferred) << row.languages;
        EXPECT_EQ(open(bundle), "open in " + row.preferred.front());
    }
}

TEST_F(NSBundleLocalizationTest, TheFirstLocalisationThatHasTheTableCounts) {
    auto* bundle = bundleIn({"de", "en"});
    folder.write("A.bundle/Contents/Resources/en.lproj/Menus.strings", "\"_Quit\" = \"Quit\";");
    LanguageScope scope("de");
    auto look = [&](NSString* key, NSString* table) {
        return bundle->localizedStringForKey_value_table(key, nullptr, table)->toUTF8();
    };
    EXPECT_EQ(look(u"_Quit"_ns, u"Menus"_ns), "Quit");  // German has no such table
    EXPECT_EQ(look(u"_Open"_ns, u""_ns), "open in de");
    EXPECT_EQ(look(u"_Quit"_ns, u"Localizable"_ns), "_Quit");
    EXPECT_EQ(look(u"_Quit"_ns, u"NoTable"_ns), "_Quit");
}

TEST_F(NSBundleLocalizationTest, AMissingKeyAnswersTheVeryValueOrTheVeryKey) {
    auto* bundle = bundleIn({"en"});
    auto value = NSString::initWithUTF8String("marker"), key = NSString::initWithUTF8String("_Absent");
    auto look = [&](NSString* aKey, NSString* aValue) {
        return bundle->localizedStringForKey_value_table(aKey, aValue, nullptr);
    };
    EXPECT_TRUE(look(key, value) == value && look(nullptr, value) == value);
    EXPECT_TRUE(look(key, nullptr) == key && look(key, u""_ns) == key);
    EXPECT_TRUE(look(u"_Open"_ns, value) != value);
    EXPECT_EQ(look(nullptr, nullptr)->length(), 0u);
}

TEST_F(NSBundleLocalizationTest, ATranslationThatEqualsTheValueIsNotTheValue) {
    auto* bundle = bundleIn({"en"});
    folder.write("A.bundle/Contents/Resources/en.lproj/Odd.strings",
                 "\"_Key\" = \"marker\"; \"_Empty\" = \"\";");
    NSString* marker = u"marker"_ns;
    auto* found = bundle->localizedStringForKey_value_table(u"_Key"_ns, marker, u"Odd"_ns);
    EXPECT_TRUE(found->isEqualToString(marker));
    EXPECT_FALSE(found == marker);
    EXPECT_EQ(bundle->localizedStringForKey_value_table(u"_Empty"_ns, marker, u"Odd"_ns)->length(), 0u);
}

TEST_F(NSBundleLocalizationTest, ATableThatCannotBeReadIsLoggedOnce) {
    auto* bundle = bundleIn({"en"});
    folder.write("A.bundle/Contents/Resources/en.lproj/Bad.strings", "\"_Key\" = ");
    LogLines log;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(bundle->localizedStringForKey_value_table(u"_Key"_ns, nullptr, u"Bad"_ns)->toUTF8(),
                  "_Key");
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("Bad.strings")));
}

}  // namespace
}  // namespace pelvor::testing
