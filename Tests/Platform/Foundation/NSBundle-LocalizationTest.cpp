// SPDX-License-Identifier: Apache-2.0
#include "BundleTestSupport.h"
#include "Platform/Foundation/Pebble.h"

namespace {

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
    static NSString* look(NSBundle* bundle, NSString* key, NSString* value = nullptr,
                          NSString* table = nullptr) {
        return bundle->localizedStringForKey_value_table(key, value, table);
    }

    BundleFolder folder;
};

TEST_F(NSBundleLocalizationTest, TheUsersLanguagesAreTriedThenTheBundlesThenEnglish) {
    auto* bundle = bundleIn({"en", "fr", "fr_CA", "de", "it", "zh-Hant"});
    EXPECT_EQ(listing(bundle->localizations()), "de en fr fr_CA it zh-Hant");
    expectAll({"en -> en it", "de -> de it en", "fr_CA -> fr_CA fr it en", "fr_FR:de_AT -> fr de it en",
               "ja -> it en", "zh-Hant-TW -> zh-Hant it en"},
              [&](const std::string& languages) {
                  LanguageScope scope(languages.c_str());
                  std::string preferred = listing(bundle->preferredLocalizations());
                  EXPECT_EQ(shown(look(bundle, u"_Open"_ns)),
                            "open in " + preferred.substr(0, preferred.find(' ')));
                  return preferred;
              });
}

TEST_F(NSBundleLocalizationTest, TheFirstLocalisationThatHasTheTableCounts) {
    auto* bundle = bundleIn({"de", "en"});
    folder.write("A.bundle/Contents/Resources/en.lproj/Menus.strings", "\"_Quit\" = \"Quit\";");
    LanguageScope scope("de");
    EXPECT_EQ(shown(look(bundle, u"_Quit"_ns, nullptr, u"Menus"_ns)), "Quit");  // German has no such table
    EXPECT_EQ(shown(look(bundle, u"_Open"_ns, nullptr, u""_ns)), "open in de");
    for (NSString* table : {u"Localizable"_ns, u"NoTable"_ns})
        EXPECT_EQ(shown(look(bundle, u"_Quit"_ns, nullptr, table)), "_Quit");
}

TEST_F(NSBundleLocalizationTest, OnlyAMissingKeyAnswersTheVeryValueOrTheVeryKey) {
    auto* bundle = bundleIn({"en"});
    folder.write("A.bundle/Contents/Resources/en.lproj/Odd.strings", "_Key = marker; _Empty = \"\";");
    auto value = NSString::initWithUTF8String("marker"), key = NSString::initWithUTF8String("_Absent");
    EXPECT_TRUE(look(bundle, key, value) == value && look(bundle, nullptr, value) == value);
    EXPECT_TRUE(look(bundle, key) == key && look(bundle, key, u""_ns) == key);
    EXPECT_EQ(look(bundle, nullptr)->length(), 0u);
    auto* found = look(bundle, u"_Key"_ns, value, u"Odd"_ns);
    EXPECT_TRUE(found->isEqualToString(value) && found != value);
    EXPECT_EQ(look(bundle, u"_Empty"_ns, value, u"Odd"_ns)->length(), 0u);
}

TEST_F(NSBundleLocalizationTest, ATableThatCannotBeReadIsLoggedOnce) {
    auto* bundle = bundleIn({"en"});
    const fs::path resources = "A.bundle/Contents/Resources/en.lproj";
    folder.write(resources / "Bad.strings", "\"_Key\" = ");
    folder.write(resources / "List.strings", "(_Key)");
    folder.write(resources / "Empty.strings", "");
    ASSERT_EQ(mkfifo((folder.path() / resources / "Pipe.strings").c_str(), 0600), 0);
    LogLines log;
    for (NSString* table : {u"Bad"_ns, u"Bad"_ns, u"List"_ns, u"Empty"_ns, u"Pipe"_ns})
        EXPECT_EQ(shown(look(bundle, u"_Key"_ns, nullptr, table)), "_Key");
    EXPECT_THAT(log.lines,
                ElementsAre(HasSubstr("Bad.strings cannot be read: line 1, column 10: the text ends"),
                            HasSubstr("List.strings cannot be read: it is a list"),
                            EndsWith("Pipe.strings cannot be read: the file cannot be read: "
                                     "it is no regular file")));
}

}  // namespace
