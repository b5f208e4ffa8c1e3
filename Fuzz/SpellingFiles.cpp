// SPDX-License-Identifier: Apache-2.0
// The heads of files that ought to be dictionaries, and a file of learned words that somebody has edited. The
// first byte says which file the rest is.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "Foundation/NSArray.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSString.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"
#include "SpellChecking/NSSpellChecker.h"
#include "TemporaryFolder.h"

using namespace pelvor;

namespace {

// The folders of this process, which go with the process.
struct Home : TemporaryFolder {
    Home() {
        setenv("XDG_DATA_HOME", path("data").c_str(), 1);
        setenv("XDG_DATA_DIRS", path("none").c_str(), 1);
        std::filesystem::create_directories(path("data/pelvor/spelling"));
        std::filesystem::create_directories(path("more"));
        write("data/hunspell/en.dic", "1\nsea\n");
        write("data/hunspell/en.aff", "SET UTF-8\n");
        setLogSink([](const LogEntry&) {});
    }
};

void checkDictionary(const Home& home, const std::string& words, const std::string& affixes) {
    home.write("more/xx.dic", words);
    home.write("more/xx.aff", affixes);
    static bool isOther = false;  // other names of the folder have it read again
    isOther = !isOther;
    setenv("DICPATH", home.path(isOther ? "more" : "./more").c_str(), 1);
    const NSUInteger count = NSSpellChecker::sharedSpellChecker()->availableLanguages()->count();
    require(count == 1 || count == 2, "the other dictionary is offered whatever this one is");
}

void checkLearnedWords(const Home& home, std::string text) {
    NSSpellChecker* checker = NSSpellChecker::sharedSpellChecker();
    constexpr const char* kFile = "data/pelvor/spelling/en.words";
    home.write(kFile, text);
    if (!text.empty() && text.back() != '\n') text += '\n';
    require(checker->learnWord_language(u"zzz"_ns, u"en"_ns), "a word can be learned");
    require(checker->hasLearnedWord_language(u"zzz"_ns, u"en"_ns), "a learned word is known");
    const std::string after = home.read(kFile);
    require(after == text || after == text + "zzz\n", "all lines stay, and the word comes behind them");
    require(checker->unlearnWord_language(u"zzz"_ns, u"en"_ns), "a word can be taken away");
    require(!checker->hasLearnedWord_language(u"zzz"_ns, u"en"_ns), "then it is unknown");
    if (after != text) require(home.read(kFile) == text, "nothing else goes with the word");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Home home;
    AutoreleasePool pool;
    if (size == 0) return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 3) {
        case 0:
            checkDictionary(home, text, "SET UTF-8\n");
            break;
        case 1:
            checkDictionary(home, "1\nword\n", text);
            break;
        default:
            checkLearnedWords(home, text);
    }
    return 0;
}
