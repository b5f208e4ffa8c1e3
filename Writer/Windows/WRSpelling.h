// SPDX-License-Identifier: Apache-2.0
// WRSpelling: the commands that concern the spelling of a document.
#pragma once

#include "Interface/NSResponder.h"

namespace pelvor {

class NSArray;
class NSMenu;
class NSNotification;
class WRNoticeBar;
class WRPageView;
class WRSpellingMarks;

/// Has misspelled words marked in a page view, fills the view's context menu, and takes the commands for
/// misspelled words; follows the window in the chain of responders. Main thread.
class WRSpelling : public NSResponder {
    PELVOR_CLASS(WRSpelling, NSResponder);

  public:
    // C++ only
    static Retained<WRSpelling> create(WRPageView* view);

    WRSpellingMarks* marks() { return _marks; }
    /// Ends the work for good.
    void stop();

    // Commands

    /// Turns marks on or off in all windows.
    void toggleSpellingMarks(id sender);
    bool validateToggleSpellingMarks(id item);
    /// Selects the next misspelled word. Where the text has not been checked yet, the user can go on
    /// meanwhile: a notice tells how far the search is, and Escape or a change of the selection ends it.
    void showNextMisspelling(id sender);
    void cancelOperation(id sender);
    bool validateMenuItem(id item);
    bool validateShowNextMisspelling(id item);
    /// For the misspelled word at the caret; the sender represents the word that takes its place.
    void replaceMisspelling(id sender);
    void ignoreMisspelling(id sender);
    void learnMisspelling(id sender);
    /// For the word at the caret; the sender represents the word that was learned or ignored.
    void unlearnWord(id sender);
    void unignoreWord(id sender);

    // The context menu's delegate, and what the spell checker sends to it
    void menuNeedsUpdate(NSMenu* menu);
    void menuDidClose(NSMenu* menu);
    void showGuesses_forWord(NSArray* guesses, NSString* word);

    void selectionDidChange(NSNotification* notification);
    void defaultsDidChange(NSNotification* notification);

  protected:
    WRSpelling() = default;
    ~WRSpelling();

  private:
    NSRange wordAtCaret();
    NSRange rightWordAtCaret();
    void addItemsForMisspelling(NSMenu* menu, NSRange word);
    void addItemsForRightWord(NSMenu* menu);
    void learnedWordsAreKept(bool areKept);
    void searchDidGoOn(double part);
    void stopSearch();
    void tellThatAllIsRight();

    Unretained<WRPageView> _view = nullptr;  // shown by the window that keeps this object
    Retained<WRSpellingMarks> _marks;
    Retained<NSMenu> _menu;
    Retained<WRNoticeBar> _progress;  // the notice of the search that goes on
    std::int32_t _searchStart = 0;    // by `TickCount`
};

}  // namespace pelvor
