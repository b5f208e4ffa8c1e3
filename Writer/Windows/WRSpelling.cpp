// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRSpelling.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSAlert.h"
#include "Interface/NSMenuItem.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "Runtime/Registry.h"
#include "Spelling/NSSpellChecker-PelvorAdditions.h"
#include "Text/NSTextStorage.h"
#include "Writer/LocalizedText.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRSpellingMarks.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr NSUInteger kMostGuesses = 7;

NSSpellChecker* checker() { return NSSpellChecker_PelvorAdditions::pelvorSpellChecker(); }

bool areMarksWanted() {
    id wanted = NSUserDefaults::standardUserDefaults()->objectForKey(WRMarksMisspellingsPreference);
    return !wanted || NSUserDefaults::standardUserDefaults()->boolForKey(WRMarksMisspellingsPreference);
}

NSMenuItem* addItem(NSMenu* menu, NSString* key, SEL action) {
    return menu->addItemWithTitle_action_keyEquivalent(localized(key), action, u""_ns);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRSpelling, windowsLibrary) {
    methods.instance<"marks", &WRSpelling::marks>();
    methods.instance<"stop", &WRSpelling::stop>();
    methods.instance<"toggleSpellingMarks:", &WRSpelling::toggleSpellingMarks>();
    methods.instance<"validateMenuItem:", &WRSpelling::validateMenuItem>();
    methods.instance<"validateToggleSpellingMarks:", &WRSpelling::validateToggleSpellingMarks>();
    methods.instance<"showNextMisspelling:", &WRSpelling::showNextMisspelling>();
    methods.instance<"validateShowNextMisspelling:", &WRSpelling::validateShowNextMisspelling>();
    methods.instance<"replaceMisspelling:", &WRSpelling::replaceMisspelling>();
    methods.instance<"ignoreMisspelling:", &WRSpelling::ignoreMisspelling>();
    methods.instance<"learnMisspelling:", &WRSpelling::learnMisspelling>();
    methods.instance<"menuNeedsUpdate:", &WRSpelling::menuNeedsUpdate>();
    methods.instance<"menuDidClose:", &WRSpelling::menuDidClose>();
    methods.instance<"showGuesses:forWord:", &WRSpelling::showGuesses_forWord>();
    methods.instance<"selectionDidChange:", &WRSpelling::selectionDidChange>();
    methods.instance<"defaultsDidChange:", &WRSpelling::defaultsDidChange>();
}

Retained<WRSpelling> WRSpelling::create(WRPageView* view) {
    auto self = make<WRSpelling>();
    self->_view = view;
    self->_marks = WRSpellingMarks::create(
        view->textStorage(),
        {[view] { return view->visibleTextRange(); }, [view](NSRange range) { view->redrawRange(range); }});
    self->_marks->setOn(areMarksWanted());
    view->setSpellingMarks(self->_marks);
    self->_menu = NSMenu::initWithTitle(u""_ns);
    self->_menu->setDelegate(self);
    view->setMenu(self->_menu);
    auto* centre = NSNotificationCenter::defaultCenter();
    centre->addObserver_selector_name_object(self, "selectionDidChange:"_sel,
                                             NSTextViewDidChangeSelectionNotification, view);
    centre->addObserver_selector_name_object(self, "defaultsDidChange:"_sel,
                                             NSUserDefaultsDidChangeNotification, nullptr);
    return self;
}

WRSpelling::~WRSpelling() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRSpelling::stop() {
    NSNotificationCenter::defaultCenter()->removeObserver(this);
    checker()->cancelGuessesForTarget(this);
    _view->setSpellingMarks(nullptr);
    _marks->stop();
}

void WRSpelling::selectionDidChange(NSNotification*) { _marks->caretDidMove(_view->selectedRange()); }

void WRSpelling::defaultsDidChange(NSNotification*) { _marks->setOn(areMarksWanted()); }

// MARK: Commands

bool WRSpelling::validateMenuItem(id item) {
    bool isEnabled = true;
    dispatchValidationTo_result(item, this, &isEnabled);
    return isEnabled;
}

void WRSpelling::toggleSpellingMarks(id) {
    NSUserDefaults::standardUserDefaults()->setObject_forKey(NSNumber::numberWithBool(!_marks->isOn()),
                                                             WRMarksMisspellingsPreference);
    _marks->setOn(areMarksWanted());
}

bool WRSpelling::validateToggleSpellingMarks(id item) {
    const bool canCheck = checker()->availableLanguages()->count() > 0;
    if (auto* menuItem = cast<NSMenuItem>(item)) {
        menuItem->setState(canCheck && _marks->isOn());
        menuItem->setTitle(localized(canCheck ? u"_Check Spelling While Typing"_ns
                                              : u"_Check Spelling (no dictionaries are installed)"_ns));
    }
    return canCheck;
}

bool WRSpelling::validateShowNextMisspelling(id) { return checker()->availableLanguages()->count() > 0; }

void WRSpelling::showNextMisspelling(id) {
    const NSRange word = _marks->nextMisspelledWord(NSMaxRange(_view->selectedRange()));
    if (word.length == 0) {
        NSRunAlertPanel(localized(u"_No word is misspelled."_ns), u"%@"_ns, nullptr, nullptr, nullptr,
                        localized(u"_Text in a language without a dictionary was not checked."_ns));
        return;
    }
    _view->setSelectedRange(word);
    _view->scrollRangeToVisible(word);
}

NSRange WRSpelling::wordAtCaret() { return _marks->misspelledWordAt(_view->selectedRange().location); }

void WRSpelling::replaceMisspelling(id sender) {
    auto* item = cast<NSMenuItem>(sender);
    auto* guess = item ? cast<NSString>(item->representedObject()) : nullptr;
    const NSRange word = wordAtCaret();
    if (!guess || word.length == 0) return;
    _view->breakUndoCoalescing();
    _view->setSelectedRange(word);
    _view->insertText(guess);
    _view->breakUndoCoalescing();
}

void WRSpelling::ignoreMisspelling(id) {
    if (const NSRange word = wordAtCaret(); word.length > 0) _marks->ignoreWord(word);
}

void WRSpelling::learnMisspelling(id) {
    const NSRange word = wordAtCaret();
    if (word.length == 0 || _marks->learnWord(word)) return;
    NSString* reason = NSFileError::lastWriteErrorAtPath(u""_ns)->localizedReason();
    NSRunAlertPanel(localized(u"_The word is known until Writer is closed, but could not be kept."_ns),
                    u"%@"_ns, nullptr, nullptr, nullptr, reason);
}

// MARK: Context menu

void WRSpelling::menuNeedsUpdate(NSMenu* menu) {
    menu->removeAllItems();
    if (const NSRange word = wordAtCaret(); word.length > 0) {
        addItem(menu, u"_Looking for suggestions …"_ns, SEL());
        menu->addItem(NSMenuItem::separatorItem());
        addItem(menu, u"_Ignore"_ns, "ignoreMisspelling:"_sel);
        addItem(menu, u"_Learn Spelling"_ns, "learnMisspelling:"_sel);
        menu->addItem(NSMenuItem::separatorItem());
        checker()->requestGuessesForWord_language_target_selector(_view->string()->substringWithRange(word),
                                                                  _marks->languageAt(word.location), this,
                                                                  "showGuesses:forWord:"_sel);
    }
    addItem(menu, u"_Cut"_ns, "cut:"_sel);
    addItem(menu, u"_Copy"_ns, "copy:"_sel);
    addItem(menu, u"_Paste"_ns, "paste:"_sel);
}

void WRSpelling::menuDidClose(NSMenu*) { checker()->cancelGuessesForTarget(this); }

// In the place of the first item.
void WRSpelling::showGuesses_forWord(NSArray* guesses, NSString*) {
    if (_menu->numberOfItems() == 0 || _menu->itemAtIndex(0)->action()) return;
    const NSUInteger count = std::min(guesses->count(), kMostGuesses);
    if (count == 0) return _menu->itemAtIndex(0)->setTitle(localized(u"_No suggestions"_ns));
    _menu->removeItemAtIndex(0);
    for (NSUInteger i = 0; i < count; ++i) {
        auto* guess = cast<NSString>(guesses->objectAtIndex(i));
        NSMenuItem* item = _menu->insertItemWithTitle_action_keyEquivalent_atIndex(
            guess, "replaceMisspelling:"_sel, u""_ns, static_cast<NSInteger>(i));
        item->setRepresentedObject(guess);
        _menu->validateItem(item);
    }
}

}  // namespace pelvor
