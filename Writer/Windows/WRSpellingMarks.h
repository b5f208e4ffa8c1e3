// SPDX-License-Identifier: Apache-2.0
// WRSpellingMarks: which words of a text are misspelled while it is written.
#pragma once

#include <functional>

#include "Writer/Windows/TextPieces.h"
#include "Writer/Windows/WRTextWork.h"

namespace pelvor {

class NSString;

/// Checks the words of a text when the main loop is idle, what is seen first, each in the language of its
/// text (the attributes NSLanguageAttributeName and PBLanguageAttributeName). Text in a language without a
/// dictionary is not checked. After an edit only the words around it are checked again; marks behind it move
/// with the text. The word that is being typed is not marked until the caret leaves it.
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
    /// The first misspelled word that begins at or behind the unit, or else before it; {NSNotFound, 0} if
    /// there is none. Checks what has not been checked, and waits for dictionaries.
    NSRange nextMisspelledWord(NSUInteger unit);
    /// The name of the language at the unit, borrowed; null if the text has no such unit.
    NSString* languageAt(NSUInteger unit);

    bool isOn() { return _isOn; }
    void setOn(bool isOn);
    void caretDidMove(NSRange selection);
    /// The word at the range is right: in this text, or for good.
    void ignoreWord(NSRange range);
    /// Returns false if the user's file of learned words could not be written; the word counts as right all
    /// the same until the program ends.
    bool learnWord(NSRange range);
    /// Checks again what is marked, since words are right now that were not.
    void checkMarksAgain();

    /// Observes the spell checker.
    void dictionaryDidLoad(id notification);
    void stop() override;

  protected:
    WRSpellingMarks() = default;
    ~WRSpellingMarks();

    void textDidChange(unsigned mask, NSRange range, NSInteger change) override;
    bool workABit() override;

  private:
    // From the start of the piece.
    struct Marks {
        std::vector<NSRange> words;
        void append(const Marks& next, NSUInteger offset);
        void edit(NSRange range, NSInteger change);
    };

    bool isTyped(NSRange word);
    bool areDictionariesReady(NSRange range);
    std::vector<NSRange> misspelledWordsIn(NSRange range);
    void replaceMarks(Marks& marks, std::vector<NSRange> words, NSUInteger start);
    template <class Function>
    void eachLanguageIn(NSRange range, Function function);

    TextPieces<Marks> _pieces;
    View _view;
    int _tag = 0;                    // names the document to the spell checker
    NSUInteger _typed = NSNotFound;  // the end of the last edit, until the caret is elsewhere
    bool _isOn = true;
};

}  // namespace pelvor
