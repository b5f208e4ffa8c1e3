// SPDX-License-Identifier: Apache-2.0
// NSSpellChecker: finds misspelled words, and words that may have been meant.
#pragma once

#include <memory>
#include <vector>

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSArray;
class NSString;

/// Posted on the main thread when a dictionary has been read that `prepareLanguage` did not wait for, with
/// the language's name, an NSString, as object. A dictionary that cannot be read is announced, too.
extern PELVOR_EXPORT NSString* const NSSpellCheckerDidPrepareLanguageNotification;

/// Checks texts against the dictionaries that are installed for Hunspell:
///
///     NSSpellChecker* checker = NSSpellChecker::sharedSpellChecker();
///     checker->setLanguage(u"en_GB"_ns);
///     NSString* text = u"Colour is no eror."_ns;
///     NSRange wrong = checker->checkSpellingOfString_startingAt(text, 0);  // {13, 4}
///     NSArray* guesses = checker->guessesForWord(text->substringWithRange(wrong));  // "error", …
///
/// **Languages** are named as the files of their dictionaries: "en_GB" for en_GB.dic and en_GB.aff. The
/// folders, in the order in which the first file of a name counts, are those of the environment variable
/// DICPATH, "hunspell" in the user's folder for data ($XDG_DATA_HOME), and "hunspell", "myspell/dicts" and
/// "myspell" in each folder of $XDG_DATA_DIRS (/usr/local/share and /usr/share). Names of the same files
/// share one dictionary in memory. A pair of files that cannot be a dictionary is left out, and a line of the
/// log says why. An operation that takes a language also takes other names for it: "en-GB", and "de" or
/// "de_AT" where there is only de_DE. Where an operation on words takes a language, null stands for
/// `language`; the operations on languages raise NSInvalidArgumentException for null. A text in a language
/// without a dictionary has no misspelled words.
///
/// **Words** are found by the rules of Unicode. Straight and curly apostrophes are alike, and so are composed
/// and decomposed letters; soft hyphens do not count. Never misspelled are:
/// - words with a digit or an underscore, with ideographs or kana, or with more than 100 units;
/// - words without a letter of the script that the language is written in, such as Greek ones in English;
/// - what stands in a web address, a mail address or a name that begins with "@", a path that begins with
///   "/", "~" or ".", or any stretch with a backslash; and names such as "notes.txt" or "example.org";
/// - parts of a word with hyphens, or with raised or lowered figures, if the dictionary has the whole word;
/// - a word before a full stop that the dictionary has together with the full stop.
/// A word of letters from several scripts, or with a letter that the dictionary's encoding lacks, is
/// misspelled.
///
/// **Time.** The first use of a language reads its dictionary, which takes up to 0.2 s; `prepareLanguage`
/// has another thread do that. A check of known words takes less than a microsecond a word. Guesses take a
/// tenth of a second and more; `requestGuessesForWord:…` makes them on another thread.
///
/// Main thread. Objects are borrowed. A null string or word raises NSInvalidArgumentException.
class PELVOR_EXPORT NSSpellChecker : public NSObject {
    PELVOR_CLASS(NSSpellChecker, NSObject);

  public:
    static NSSpellChecker* sharedSpellChecker();

    // Languages

    /// Returns the names of all languages that have a dictionary, in alphabetical order. Folders that have
    /// changed are looked through again.
    NSArray* availableLanguages();
    /// Returns the language that is used where none is given: unless it was set, the first of the user's
    /// languages (UserLanguages.h) that has a dictionary, else the first of all; null without dictionaries.
    NSString* language();
    /// Returns false, and changes nothing, if the language has no dictionary.
    bool setLanguage(NSString* name);
    /// Returns the available language that the name stands for; null if there is none.
    NSString* availableLanguageForName(NSString* name);
    /// Returns the name for users in the user's language: "English (United Kingdom)". Parts that stand for
    /// nothing are returned as they are: "xx (YY)" for "xx_YY".
    NSString* localizedNameForLanguage(NSString* name);
    /// Returns true if a check in the language can begin at once, because the dictionary has been read or
    /// because the language has no dictionary. Otherwise has another thread read the dictionary, and posts
    /// NSSpellCheckerDidPrepareLanguageNotification afterwards, once however often it is called meanwhile.
    bool prepareLanguage(NSString* name);

    // Checking. The start is an index of the string; a start inside a word stands for the word's end.

    /// Returns the range of the first misspelled word at or behind the start, or else, with `wrap`, before
    /// the start; {NSNotFound, 0} if there is none. The simple form wraps and has no document.
    ///
    /// `tag` names the document whose ignored words count; 0 is no document. `wordCount`, unless null,
    /// receives the number of words that were looked at, with the misspelled word. Raises NSRangeException
    /// for a start beyond the end.
    NSRange checkSpellingOfString_startingAt(NSString* string, NSUInteger start);
    NSRange checkSpellingOfString_startingAt_language_wrap_inSpellDocumentWithTag_wordCount(
        NSString* string, NSUInteger start, NSString* language, bool wrap, int tag, NSInteger* wordCount);
    /// Returns the number of words by the rules of the language.
    NSInteger countWordsInString_language(NSString* string, NSString* language);

    // C++ only
    /// Returns the ranges of all misspelled words that begin in the range. Raises NSRangeException for a
    /// range that is not inside the string.
    std::vector<NSRange> misspelledRanges(NSString* string, NSRange range, NSString* language, int tag);

    // Guesses

    /// Returns what may have been meant by the word, right or misspelled, 15 words at most. Guesses that
    /// differ from the word in nothing but accents, apostrophes and case come first, then those with two
    /// neighbouring letters exchanged, then the others, each kind in the order of the dictionary. Guesses
    /// have curly apostrophes if the word has.
    NSArray* guessesForWord(NSString* word);
    NSArray* guessesForWord_language(NSString* word, NSString* language);
    /// Makes the guesses on another thread and then sends `selector` with the guesses and the word to the
    /// target ("showGuesses:forWord:"), on the main thread in the common modes. The target is not retained; a
    /// target that has ended hears nothing. A request takes the place of an earlier one with the same target
    /// whose guesses have not been sent yet. Raises NSInvalidArgumentException if the target or the selector
    /// is null.
    void requestGuessesForWord_language_target_selector(NSString* word, NSString* language, id target,
                                                        SEL selector);
    /// Forgets the target's request: the selector is not sent.
    void cancelGuessesForTarget(id target);

    // Words that the user has taught, by dictionary. They stand in pelvor/spelling/<language>.words in the
    // user's folder for data: a word a line, in UTF-8; lines that begin with "#" are comments. A word in
    // small letters also stands for its form with a capital, and any word for its form in capitals and with
    // "'s".

    /// Adds the word. Returns false (NSFileError tells why) if the file could not be written: the word then
    /// counts until the program ends. Returns false as well, and adds nothing, if the language has no
    /// dictionary. Raises NSInvalidArgumentException for an empty word or one with more
    /// than one line.
    bool learnWord(NSString* word);
    bool learnWord_language(NSString* word, NSString* language);
    /// Returns whether the word was learned as it is written here, but for the kind of apostrophe.
    bool hasLearnedWord(NSString* word);
    bool hasLearnedWord_language(NSString* word, NSString* language);
    /// Takes the word away. Returns false as `learnWord` does.
    bool unlearnWord(NSString* word);
    bool unlearnWord_language(NSString* word, NSString* language);

    // Words that count as right in one document until it is closed

    /// Returns a number for a document that no other document has: 1 or more.
    static int uniqueSpellDocumentTag();
    /// Forgets the document's ignored words.
    void closeSpellDocumentWithTag(int tag);
    void ignoreWord_inSpellDocumentWithTag(NSString* word, int tag);
    /// Returns whether the word, as it is written here, is among the document's ignored words.
    bool isIgnoredWord_inSpellDocumentWithTag(NSString* word, int tag);
    /// Takes the word, as it is written here, from the document's ignored words. Returns false if it is not
    /// among them.
    bool unignoreWord_inSpellDocumentWithTag(NSString* word, int tag);
    /// Returns the document's ignored words, with straight apostrophes, so that a program can keep them
    /// with the document.
    NSArray* ignoredWordsInSpellDocumentWithTag(int tag);
    /// Gives the document these ignored words and no others; null stands for no words.
    void setIgnoredWords_inSpellDocumentWithTag(NSArray* words, int tag);

  protected:
    NSSpellChecker();
    ~NSSpellChecker();

  private:
    struct State;
    struct Rules;

    Rules rulesFor(NSString* language, int tag);

    std::unique_ptr<State> _state;
};

}  // namespace pelvor
