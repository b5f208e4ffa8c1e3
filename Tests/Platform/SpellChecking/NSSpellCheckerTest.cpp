// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/NSSpellChecker.h"

#include "DictionaryScope.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSRunLoop.h"
#include "Prelude.h"
#include "TestClasses.h"

namespace {

namespace fs = std::filesystem;

TEST(NSSpellChecker, FindsTheNextMisspelledWord) {
    DictionaryScope scope("en_GB", "the\nsea\n");
    NSSpellChecker* checker = scope.checker();
    NSString* text = u"the see, the sae."_ns;
    EXPECT_EQ(checker->checkSpellingOfString_startingAt(text, 5), (NSRange{13, 3})) << "from inside a word";
    EXPECT_EQ(checker->checkSpellingOfString_startingAt(text, 17), (NSRange{4, 3})) << "from the end";
    NSInteger count = -1;
    const auto check = [&](NSUInteger start, bool wrap) {
        return checker->checkSpellingOfString_startingAt_language_wrap_inSpellDocumentWithTag_wordCount(
            text, start, nullptr, wrap, 0, &count);
    };
    EXPECT_EQ(check(7, false), (NSRange{13, 3}));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(check(16, false), (NSRange{NSNotFound, 0}));
    EXPECT_EQ(check(14, true), (NSRange{4, 3}));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(checker->countWordsInString_language(u"Don't, 3 see-saws."_ns, nullptr), 4);
    EXPECT_EQ(RAISED(checker->checkSpellingOfString_startingAt(text, 18)),
              "NSRangeException: checkSpellingOfString:startingAt: index (18) beyond bounds (17)");
    EXPECT_EQ(scope.wrongIn(u"xyz"_ns, u"ja"_ns), "") << "a language without a dictionary";
}

TEST(NSSpellChecker, KnowsWhatIsNoMisspelledWord) {
    DictionaryScope scope("en", "sea\ndon't\nl\xE2\x80\x99\x65\x61u\ncafé\netc.\nhoc\nad-lib\nword\nHfO₂\n");
    expectAll(
        {
            "Sea SEA sEa ->  sEa",
            "don't don\u2019t Don\u2019t don\u02BCt dont ->  dont",
            "l'eau l\u2019eau 'sea' \u2018sea\u2019 -> ",
            "cafe\u0301 caf\u00E9 se\u00ADa cafe ->  cafe",
            "sea etc. etc, ETC. ->  etc",
            "ad-lib ad\u2011lib ad-word lib HfO\u2082 HfO ->  ad lib HfO",
            "x86 2nd my_name 東京 カナ -> ",
            "Море θάλασσα بحر 바다 µ Анна's Анна\u2019s -> ",
            "s\u0435a seaв мsea ->  s\u0435a seaв мsea",  // letters of two scripts
            "http://zzz.qq/yyy?b=xxx (www.zzz.qq) zzz@yyy.xx @zzz mailto:zzz zzz ->  zzz",
            "/usr/shar/zzz ~/zzz ./zzz c:\\zzz zzz/word notes.txt zzz.org Zzz.Org ->  zzz Zzz.Org",
            " -> ",
        },
        [&](const std::string& text) {
            const std::string wrong = scope.wrongIn(NSString::ofUTF8(text));
            EXPECT_EQ(scope.wrongIn(NSString::ofUTF8(text)), wrong) << text << ", again";
            return wrong;
        });
    const std::u16string longest(100, u'z');
    EXPECT_EQ(scope.wrongIn(NSString::of(longest)), " " + std::string(100, 'z'));
    EXPECT_EQ(scope.wrongIn(NSString::of(longest + u"z")), "");
    EXPECT_NE(scope.wrongIn(NSString::of(u"sea \xD800 \xDC00zz\xD800")), "");
}

TEST(NSSpellChecker, ConvertsToTheEncodingsOfDictionaries) {
    struct Case {
        const char* encoding;
        const char* word;
        const char16_t* text;
    };
    DictionaryScope scope;
    for (const auto& [encoding, word, units] :
         std::vector<Case>{{"ISO8859-1", "K\xE4se", u"Käse"},
                           {"ISO8859-2", "\xB3\xF3\xBC", u"łóź"},
                           {"microsoft-cp1251", "\xEC\xEE\xF0\xE5", u"море"},
                           {"KOI8-U", "\xCD\xCF\xD2\xA4", u"морє"},
                           {"TIS620-2533", "\xB7\xD0\xE0\xC5", u"ทะเล"},
                           {"UTF-8", "\xF0\x90\x90\xA8\xF0\x90\x90\xB2", u"\U00010428\U00010432"}}) {
        SCOPED_TRACE(encoding);
        scope.add(encoding, std::string(word) + "\n", std::string("SET ") + encoding + "\n");
        scope.checker()->availableLanguages();
        NSString *text = NSString::of(units), *name = NSString::ofUTF8(encoding);
        EXPECT_EQ(scope.wrongIn(text, name), "");
        EXPECT_EQ(scope.wrongIn(u"\u03B8\u03AC"_ns, name), " \u03B8\u03AC") << "not in the encoding";
        NSArray* guesses =
            scope.checker()->guessesForWord_language(text->stringByAppendingString(text), name);
        EXPECT_TRUE(guesses->containsObject(text)) << guesses;
    }
}

TEST(NSSpellChecker, KeepsLearnedWordsInAFile) {
    DictionaryScope scope("en", "sea\n");
    scope.folder.write("home/pelvor/spelling/en.words", "# mine\r\n\xFF\xFE garbage\nPelvor\r\n\nlast");
    NSSpellChecker* checker = scope.checker();
    EXPECT_EQ(scope.wrongIn(u"Pelvor PELVOR pelvor Last LAST lASt mine"_ns), " pelvor lASt mine");
    EXPECT_EQ(scope.wrongIn(u"Pelvor\u2019s sea's"_ns), " sea's");
    EXPECT_TRUE(checker->learnWord(u"wouldn\u2019ta"_ns));
    EXPECT_EQ(scope.wrongIn(u"wouldn'ta Wouldn\u2019ta"_ns), "");
    EXPECT_EQ(scope.folder.read("home/pelvor/spelling/en.words"),
              "# mine\r\n\xFF\xFE garbage\nPelvor\r\n\nlast\nwouldn'ta\n");

    // Another program's words stay, and become known.
    const std::string file = scope.folder.path("home/pelvor/spelling/en.words");
    std::ofstream(file, std::ios::app) << "theirs\n";
    EXPECT_TRUE(checker->unlearnWord(u"last"_ns));
    EXPECT_TRUE(checker->hasLearnedWord(u"theirs"_ns) && !checker->hasLearnedWord(u"last"_ns));
    EXPECT_EQ(scope.wrongIn(u"last Last theirs"_ns), " last Last");
    EXPECT_EQ(scope.folder.read("home/pelvor/spelling/en.words"),
              "# mine\r\n\xFF\xFE garbage\nPelvor\r\n\nwouldn'ta\ntheirs\n");
    for (NSString* bad : {u"a\nb"_ns, u"\u00AD"_ns})
        EXPECT_THAT(RAISED(checker->learnWord(bad)), HasSubstr("learnWord:language: the word is empty or"));

    // A file that is no file of ours is not written over; its word counts nevertheless, and is kept later.
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_FALSE(checker->learnWord(u"unkept"_ns));
    EXPECT_EQ(scope.wrongIn(u"unkept"_ns), "");
    fs::remove(file);
    EXPECT_TRUE(checker->learnWord(u"kept"_ns));
    EXPECT_THAT(scope.folder.read("home/pelvor/spelling/en.words"),
                AllOf(HasSubstr("\nunkept\n"), HasSubstr("\nkept\n")));
}

TEST(NSSpellChecker, IgnoresWordsInOneDocument) {
    DictionaryScope scope("en", "sea\n");
    NSSpellChecker* checker = scope.checker();
    const int one = NSSpellChecker::uniqueSpellDocumentTag(),
              other = NSSpellChecker::uniqueSpellDocumentTag();
    const auto wrong = [&](int tag) { return scope.wrongIn(u"zzz Zzz y\u2019y"_ns, nullptr, tag); };
    checker->ignoreWord_inSpellDocumentWithTag(u"zzz"_ns, one);
    checker->ignoreWord_inSpellDocumentWithTag(u"y'y"_ns, 0);
    EXPECT_EQ(wrong(one), " y\u2019y");
    EXPECT_EQ(wrong(other), " zzz Zzz y\u2019y");
    EXPECT_EQ(wrong(0), " zzz Zzz y\u2019y") << "no document has no ignored words";
    checker->ignoreWord_inSpellDocumentWithTag(u"y'y"_ns, one);
    NSArray* words = checker->ignoredWordsInSpellDocumentWithTag(one);
    EXPECT_EQ(listed(words), "y'y, zzz");
    EXPECT_TRUE(checker->unignoreWord_inSpellDocumentWithTag(u"y\u2019y"_ns, one));
    EXPECT_FALSE(checker->unignoreWord_inSpellDocumentWithTag(u"Zzz"_ns, one));
    EXPECT_EQ(wrong(one), " y\u2019y");
    checker->closeSpellDocumentWithTag(one);
    checker->setIgnoredWords_inSpellDocumentWithTag(words, other);
    EXPECT_EQ(wrong(one) + wrong(other), " zzz Zzz y\u2019y");
}

TEST(NSSpellChecker, GuessesTheLikeliestFirst) {
    DictionaryScope scope;
    scope.add("en", "te\nth\nthe\neh\nfont\ndon\ndon't\ndint\nLondon\nqua\nça\nCA\nva\n-haus\nhaus-\nHaus\n",
              "SET UTF-8\nTRY esianrtolcdugmphbyfvkwzç'\n");
    expectAll({"teh -> the, te, th, eh", "Teh -> The, Eh, Te, Th", "TEH -> THE, TE, TH, EH",
               "dont -> don't, font, dint, don", "Dont -> Don't, Font, Dint, Don", "london -> London, don't",
               "ca -> ça, CA, va", "haus -> Haus"},
              [&](const std::string& word) {
                  return listed(scope.checker()->guessesForWord(NSString::ofUTF8(word)));
              });
}

std::vector<std::string> told;
const std::thread::id mainThread = std::this_thread::get_id();

void showGuesses(NSObject*, NSArray* guesses, NSString* word) {
    told.push_back(shown(std::this_thread::get_id() == mainThread, word) + ": " + listed(guesses));
}

void runUntil(auto isDone) {
    while (!isDone()) NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
}

TEST(NSSpellChecker, GuessesOnAnotherThread) {
    DictionaryScope scope("en", "sea\nwon't\n");
    NSSpellChecker* checker = scope.checker();
    EXPECT_EQ(listed(checker->guessesForWord(u"saa"_ns)), "sea");
    EXPECT_EQ(listed(checker->guessesForWord(u"wont\u2019t"_ns)), "won\u2019t");
    Class* listeners = makeClass<"show:forWord:", &showGuesses>("Guessing");
    auto listener = instanceOf(listeners), other = instanceOf(listeners), ended = instanceOf(listeners);
    const auto request = [&](NSString* word, id target) {
        checker->requestGuessesForWord_language_target_selector(word, nullptr, target, "show:forWord:"_sel);
    };
    request(u"seaa"_ns, listener);
    request(u"wan't"_ns, listener);  // takes the place of the first
    request(u"seaa"_ns, ended);
    ended = nullptr;
    request(u"saea"_ns, other);
    runUntil([] { return told.size() == 2; });
    EXPECT_THAT(told, ElementsAre("1 wan't: won't", "1 saea: sea"));
    request(u"seaa"_ns, listener);
    checker->cancelGuessesForTarget(listener);
    checker->requestGuessesForWord_language_target_selector(u"q"_ns, u"ja"_ns, other, "show:forWord:"_sel);
    runUntil([] { return told.size() == 3; });
    EXPECT_EQ(told.back(), "1 q: ");
}

TEST(NSSpellChecker, ReadsDictionariesOnAnotherThread) {
    DictionaryScope scope("de_DE", "Meer\n");
    const auto notices = Listener::to(NSSpellCheckerDidPrepareLanguageNotification);
    EXPECT_FALSE(scope.checker()->prepareLanguage(u"de"_ns));
    scope.checker()->prepareLanguage(u"de_DE"_ns);  // no second notice
    EXPECT_EQ(scope.wrongIn(u"Meer meer"_ns, u"de"_ns), " meer") << "who does not wait for it, waits here";
    runUntil([&] { return !notices->heard.empty(); });
    EXPECT_EQ(shown(notices->heard[0]->object()), "de_DE");
    EXPECT_EQ(notices->takeCount(), 1u);
    EXPECT_TRUE(scope.checker()->prepareLanguage(u"de"_ns) && scope.checker()->prepareLanguage(u"ja"_ns));
}

TEST(NSSpellChecker, GoesOnWithoutDictionaries) {
    DictionaryScope scope;
    NSSpellChecker* checker = scope.checker();
    EXPECT_EQ(checker->language(), nullptr);
    EXPECT_FALSE(checker->setLanguage(u"en"_ns));
    EXPECT_EQ(scope.wrongIn(u"zzz"_ns) + listed(checker->guessesForWord(u"zzz"_ns)), "");
    EXPECT_EQ(checker->countWordsInString_language(u"two words"_ns, nullptr), 2);
    EXPECT_FALSE(checker->learnWord(u"zzz"_ns) || checker->hasLearnedWord(u"zzz"_ns));
}

TEST(NSSpellChecker, ReadsTheInstalledDictionaries) {
    DictionaryScope scope;
    EnvironmentScope data("XDG_DATA_DIRS", "/usr/share");
    struct Case {
        const char* name;
        const char16_t* text;
        const char* wrong;
        const char16_t* guess;
    };
    for (const auto& [name, text, wrong, guess] : std::vector<Case>{
             {"en_GB", u"The colour isn\u2019t wrnog.", " wrnog", u"wrong"},
             {"de_DE", u"Die Straße ist in Müchen z.B.", " Müchen", u"München"},
             {"fr", u"Aujourd\u2019hui l\u2019été n\u2019est pas arrivvé.", " arrivvé", u"arrivé"}}) {
        NSString* language = NSString::ofUTF8(name);
        if (!scope.checker()->availableLanguages()->containsObject(language)) continue;
        EXPECT_EQ(scope.wrongIn(NSString::of(text), language), wrong) << language;
        NSArray* guesses = scope.checker()->guessesForWord_language(NSString::ofUTF8(wrong + 1), language);
        EXPECT_TRUE(guesses->containsObject(NSString::of(guess))) << guesses;
    }
}

}  // namespace
