// SPDX-License-Identifier: Apache-2.0
// WRSpelling: the commands that concern the spelling of a document.
#pragma once

#include "Interface/NSResponder.h"

namespace pelvor {

class NSArray;
class NSMenu;
class NSNotification;
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
    void showNextMisspelling(id sender);
    bool validateMenuItem(id item);
    bool validateShowNextMisspelling(id item);
    // For the misspelled word at the caret. The sender of the first one represents the word to be used.
    void replaceMisspelling(id sender);
    void ignoreMisspelling(id sender);
    void learnMisspelling(id sender);

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

    Unretained<WRPageView> _view = nullptr;  // shown by the window that keeps this object
    Retained<WRSpellingMarks> _marks;
    Retained<NSMenu> _menu;
};

}  // namespace pelvor
