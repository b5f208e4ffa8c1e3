// SPDX-License-Identifier: Apache-2.0
// Which files become languages.
#include <sys/stat.h>

#include "DictionaryScope.h"
#include "Prelude.h"

namespace {

namespace fs = std::filesystem;

std::string languages(DictionaryScope& scope) { return listed(scope.checker()->availableLanguages()); }

TEST(DictionaryFiles, AreOfferedUnderAllNamesAndReadOnce) {
    DictionaryScope scope("en_GB", "colour\n");
    fs::create_symlink("en_GB.dic", scope.folder.path("usr/hunspell/en_AU.dic"));
    fs::create_symlink("en_GB.aff", scope.folder.path("usr/hunspell/en_AU.aff"));
    // The same files in the old folder, and a file of the user's that counts first.
    fs::create_directories(scope.folder.path("usr/myspell"));
    fs::create_directory_symlink("../hunspell", scope.folder.path("usr/myspell/dicts"));
    scope.add("fr", "mer\n");
    scope.folder.write("home/hunspell/fr.dic", "1\nmère\n");
    scope.folder.write("home/hunspell/fr.aff", "SET UTF-8\n");
    scope.folder.write("more/de_DE.dic", "1\nMeer\n");
    scope.folder.write("more/de_DE.aff", "");
    EnvironmentScope path("DICPATH", ("relative:" + scope.folder.path("more")).c_str());
    EXPECT_EQ(languages(scope), "de_DE, en_AU, en_GB, fr");
    EXPECT_EQ(scope.wrongIn(u"mer mère"_ns, u"fr"_ns), " mer");

    // What is learned and read in one name is there in the other.
    EXPECT_FALSE(scope.checker()->prepareLanguage(u"en_AU"_ns));
    EXPECT_EQ(scope.wrongIn(u"colour color"_ns, u"en_GB"_ns), " color");
    EXPECT_TRUE(scope.checker()->prepareLanguage(u"en_AU"_ns));
    EXPECT_TRUE(scope.checker()->learnWord_language(u"color"_ns, u"en_AU"_ns));
    EXPECT_TRUE(scope.checker()->hasLearnedWord_language(u"color"_ns, u"en_GB"_ns));

    // A new dictionary is found by those who ask for all.
    scope.add("sv", "hav\n");
    EXPECT_THAT(languages(scope), HasSubstr("sv"));
}

TEST(DictionaryFiles, ThatAreNoDictionariesAreLeftOutWithTheReason) {
    DictionaryScope scope("en", "fine\n");
    const auto with = [](std::string_view content) {
        return [=](const fs::path& path) { std::ofstream(path) << content; };
    };
    struct {
        const char* file;
        std::string reason;
        std::function<void(const fs::path&)> make;
    } const rows[] = {
        {"no_count.dic", "its first line is not the count of its words", with("word\nother\n")},
        {"large_count.dic", "its first line is not the count of its words", with("260000000\nword\n")},
        {"garbage.dic", "its first line is not the count of its words", with({"\0\xFF\xFE\n\n1", 6})},
        {"odd_encoding.aff", "its encoding, \"KLINGON-8\", is unknown", with("# affixes\nSET\tKLINGON-8\n")},
        {"alone.aff", "the file does not exist", [](auto&) {}},
        {"pipe.dic", "it is no regular file", [](auto& path) { mkfifo(path.c_str(), 0600); }},
        {"folder.aff", "it is no regular file", [](auto& path) { fs::create_directory(path); }},
        {"huge.aff", "it is larger than 256 MB",
         [](auto& path) { std::ofstream(path).seekp(1 << 28) << "x"; }},
        {"loop.dic", "", [](auto& path) { fs::create_symlink(path, path); }},
    };
    for (const auto& row : rows) {
        const fs::path path = scope.folder.path(std::string("usr/hunspell/") + row.file);
        scope.add(path.stem(), "word\n");
        fs::remove(path);
        row.make(path);
    }
    scope.folder.write("usr/hunspell/hyph_en.dic", "UTF-8\n.a1b\n");  // patterns, which nobody complains of
    LogLines log;
    EXPECT_EQ(languages(scope), "en");
    for (const auto& row : rows)
        EXPECT_THAT(log.lines, Contains(HasSubstr(row.file + (" is left out: " + row.reason))));
    EXPECT_EQ(log.lines.size(), std::size(rows)) << joined(log.lines);
    scope.add("de", "fein\n");
    languages(scope);
    EXPECT_EQ(log.lines.size(), std::size(rows)) << "each complaint is made once";
}

TEST(DictionaryFiles, AreFoundByOtherNamesOfTheLanguage) {
    DictionaryScope scope;
    for (const char* name : {"de_DE", "de_AT", "en_GB", "en_US", "fr", "sr", "sr_Latn"})
        scope.add(name, "x\n");
    scope.checker()->availableLanguages();
    // "en" is the user's own.
    expectAll({"de-AT -> de_AT", "de -> de_DE", "de_CH -> de_DE", "en -> en_GB", "fr_CA -> fr", "FR -> fr",
               "sr-Latn -> sr_Latn", "ja -> (null)", " -> (null)"},
              [&](const std::string& name) {
                  return scope.checker()->availableLanguageForName(NSString::ofUTF8(name));
              });
    EXPECT_EQ(shown(scope.checker()->language()), "en_GB");
    EXPECT_FALSE(scope.checker()->setLanguage(u"../fr"_ns));
    EXPECT_TRUE(scope.checker()->setLanguage(u"de-CH"_ns));
    EXPECT_EQ(shown(scope.checker()->language()), "de_DE");
    EXPECT_EQ(shown(scope.checker()->localizedNameForLanguage(u"en_GB"_ns)), "English (United Kingdom)");
    LanguageScope french("fr");
    EXPECT_EQ(shown(scope.checker()->localizedNameForLanguage(u"en_GB"_ns)), "Anglais (Royaume-Uni)");
    EXPECT_EQ(shown(scope.checker()->localizedNameForLanguage(u""_ns)), "");
}

}  // namespace
