// SPDX-License-Identifier: Apache-2.0
// Which files become languages.
#include <sys/stat.h>

#include "DictionaryScope.h"
#include "Foundation/NSLog.h"
#include "Prelude.h"

namespace {

namespace fs = std::filesystem;

std::string languages(DictionaryScope& scope) { return listed(scope.checker()->availableLanguages()); }

TEST(DictionaryFiles, AreOfferedUnderAllNamesAndReadOnce) {
    DictionaryScope scope;
    scope.add("en_GB", "colour\n");
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
    DictionaryScope scope;
    std::string log;
    LogSinkScope sink([&](const LogEntry& entry) { log += std::string(entry.text) + "\n"; });
    scope.add("en", "fine\n");
    scope.add("no_count", "word\n");
    scope.folder.write("usr/hunspell/no_count.dic", "word\nother\n");
    scope.add("large_count", "");
    scope.folder.write("usr/hunspell/large_count.dic", "260000000\nword\n");
    scope.add("garbage", "");
    scope.folder.write("usr/hunspell/garbage.dic", std::string("\0\xFF\xFE\n\n1", 6));
    scope.add("odd_encoding", "word\n", "# affixes\nSET\tKLINGON-8\n");
    scope.folder.write("usr/hunspell/alone.dic", "1\nword\n");
    scope.folder.write("usr/hunspell/hyph_en.dic", "UTF-8\n.a1b\n");  // patterns, which nobody complains of
    scope.add("pipe", "");
    fs::remove(scope.folder.path("usr/hunspell/pipe.dic"));
    ASSERT_EQ(mkfifo(scope.folder.path("usr/hunspell/pipe.dic").c_str(), 0600), 0);
    scope.add("folder", "word\n");
    fs::remove(scope.folder.path("usr/hunspell/folder.aff"));
    fs::create_directory(scope.folder.path("usr/hunspell/folder.aff"));
    scope.add("huge", "word\n");
    fs::resize_file(scope.folder.path("usr/hunspell/huge.aff"), (1ULL << 28) + 1);
    fs::create_symlink("loop.dic", scope.folder.path("usr/hunspell/loop.dic"));

    EXPECT_EQ(languages(scope), "en");
    for (const char* line :
         {"no_count.dic is left out: its first line is not the count of its words",
          "large_count.dic is left out: its first line is not the count of its words",
          "garbage.dic is left out: its first line is not the count of its words",
          "odd_encoding.aff is left out: its encoding, \"KLINGON-8\", is unknown",
          "alone.aff is left out: the file does not exist", "pipe.dic is left out: it is no regular file",
          "folder.aff is left out: it is no regular file", "huge.aff is left out: it is larger than 256 MB",
          "loop.dic is left out: "})
        EXPECT_THAT(log, HasSubstr(line));
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 9) << log;
    scope.add("de", "fein\n");
    languages(scope);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 9) << "each complaint is made once";
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
