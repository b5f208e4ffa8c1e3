// SPDX-License-Identifier: Apache-2.0
// WRSpellingMarks: which words of a text are misspelled while it is written.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "Writer/Windows/TextPieces.h"
#include "Writer/Windows/WRTextWork.h"

namespace pelvor {

class NSString;

/// Checks the words of a text when the main loop is idle, what is seen first, each in the language of its
/// text (the attributes NSLanguageAttributeName and PBLanguageAttributeName). Text in a language without a
/// dictionary is not checked. In a short line whose language nobody has set (NSLanguageAttributeName), such
/// as a greeting, a word is also right if it is right in the language of the lines beside it or in the
/// user's. After an edit only the words around it are checked again; marks behind it move with the text. The
/// word that is being typed is not marked until the caret leaves it.
class WRSpellingMarks : public WRTextWork {
    PELVOR_CLASS(WRSpellingMarks, WRTextWork);

  public:
    // C++ only
    struct View {
        std::function<NSRange()> visibleRange;       ///< what the user sees of the text
        std::function<void(NSRange range)> didMark;  ///< marks in the range have come or gone
    };
    static Retained<WRSpellingMarks> create(NSTextStorage* storage, View view);

    /// What is to be marked in the range, in order.
    std::vector<NSRange> marksInRange(NSRange range);

    /// The misspelled word that touches the unit, or {NSNotFound, 0}; knows only what has been checked.
    NSRange misspelledWordAt(NSUInteger unit);
    /// Looks for the first misspelled word that begins at or behind the unit, or else before it, and calls
    /// `found` with the word, or with {NSNotFound, 0} if no word is misspelled. Calls it before returning if
    /// enough of the text has been checked. Otherwise the search goes on when the main loop is idle, and
    /// calls `didGoOn` from time to time with the part of the text that it has passed, from 0 to 1. A new
    /// search takes the place of one that goes on.
    void findMisspelledWord(NSUInteger unit, std::function<void(NSRange word)> found,
                            std::function<void(double part)> didGoOn);
    bool isSearching() { return _search.has_value(); }
    /// Ends the search; its functions are not called any more.
    void stopSearch() { _search.reset(); }
    /// The name of the language at the unit, borrowed; null if the text has no such unit.
    NSString* languageAt(NSUInteger unit);

    bool isOn() { return _isOn; }
    void setOn(bool isOn);
    void caretDidMove(NSRange selection);

    // Words that the user says are right, in this text or for good. What `learnWord` and `unlearnWord` change
    // counts in all texts. They return false if the user's file of learned words could not be written; the
    // change then counts until the program ends.

    void ignoreWord(NSRange range);
    bool learnWord(NSRange range);
    /// The learned or ignored word, as it was learned, that makes the word in the range right; null if there
    /// is no such word. Borrowed.
    NSString* learnedWordAt(NSRange range);
    NSString* ignoredWordAt(NSRange range);
    void unignoreWord(NSString* word);
    bool unlearnWord_at(NSString* word, NSRange range);

    /// Observes the spell checker.
    void dictionaryDidLoad(id notification);
    /// Observes all spelling marks: checks the text again.
    void rightWordsDidChange(id notification);
    void stop() override;

  protected:
    WRSpellingMarks() = default;
    ~WRSpellingMarks();

    void textDidChange(unsigned mask, NSRange range, NSInteger change) override;
    bool workABit() override;
    void didWork() override;

  private:
    // From the start of the piece.
    struct Marks {
        std::vector<NSRange> words;
        void append(const Marks& next, NSUInteger offset);
        void edit(NSRange range, NSInteger change);
    };

    struct Search {
        NSUInteger start;       // where it began
        NSUInteger place;       // the words before it have been passed
        bool isBefore = false;  // it has come to the end of the text, and goes on before the start
        std::function<void(NSRange)> found;
        std::function<void(double)> didGoOn;
    };

    bool isTyped(NSRange word);
    std::optional<std::vector<NSRange>> misspelledWordsIn(NSRange range);
    bool isRightBeside(NSRange word, bool& isReady);
    void goOnSearching();
    void endSearch(NSRange word);
    void checkAgain();
    void replaceMarks(Marks& marks, std::vector<NSRange> words, NSUInteger start);
    template <class Function>
    void eachLanguageIn(NSRange range, Function function);

    TextPieces<Marks> _pieces;
    View _view;
    std::optional<Search> _search;
    int _tag = 0;                    // names the document to the spell checker
    NSUInteger _typed = NSNotFound;  // the end of the last edit, until the caret is elsewhere
    bool _isOn = true;
};

}  // namespace pelvor
