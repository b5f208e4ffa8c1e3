// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRSpelling.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSAlert.h"
#include "Interface/NSEvent.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSWindow.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "Runtime/Registry.h"
#include "Spelling/NSSpellChecker-PelvorAdditions.h"
#include "Text/NSTextStorage.h"
#include "Writer/LocalizedText.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WRDocumentWindow.h"
#include "Writer/Windows/WRNoticeBar.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRSpellingMarks.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr NSUInteger kMostGuesses = 7;
constexpr std::int32_t kTicksUntilNotice = 30;  // half a second

NSSpellChecker* checker() { return NSSpellChecker_PelvorAdditions::pelvorSpellChecker(); }

bool areMarksWanted() { return preference(WRMarksMisspellingsPreference); }

NSMenuItem* addItem(NSMenu* menu, NSString* key, SEL action) {
    return menu->addItemWithTitle_action_keyEquivalent(localized(key), action, u""_ns);
}

NSString* wordIn(id sender) {
    auto* item = cast<NSMenuItem>(sender);
    return item ? cast<NSString>(item->representedObject()) : nullptr;
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
    methods.instance<"cancelOperation:", &WRSpelling::cancelOperation>();
    methods.instance<"unlearnWord:", &WRSpelling::unlearnWord>();
    methods.instance<"unignoreWord:", &WRSpelling::unignoreWord>();
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
    stopSearch();
    _view->setSpellingMarks(nullptr);
    _marks->stop();
}

void WRSpelling::selectionDidChange(NSNotification*) {
    stopSearch();
    _marks->caretDidMove(_view->selectedRange());
}

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

// MARK: Searching

void WRSpelling::showNextMisspelling(id) {
    stopSearch();
    _searchStart = TickCount();
    const auto show = [this](NSRange word) {
        stopSearch();
        if (word.length == 0) return tellThatAllIsRight();
        _view->setSelectedRange(word);
        _view->scrollRangeToVisible(word);
    };
    _marks->findMisspelledWord(NSMaxRange(_view->selectedRange()), show,
                               [this](double part) { searchDidGoOn(part); });
}

// An alert runs the loop, which no idle work can wait for.
void WRSpelling::tellThatAllIsRight() {
    const auto tell = [] {
        NSRunAlertPanel(localized(u"_No word is misspelled."_ns), u"%@"_ns, nullptr, nullptr, nullptr,
                        localized(u"_Text in a language without a dictionary was not checked."_ns));
    };
    NSRunLoop::mainRunLoop()->perform(tell, nullptr);
}

// Leaves a notice alone that somebody else shows. A notice that the user has closed does not come back.
void WRSpelling::searchDidGoOn(double part) {
    auto* owner = cast<WRDocumentWindow>(_view->window() ? _view->window()->delegate() : nullptr);
    if (!owner || TickCount() - _searchStart < kTicksUntilNotice) return;
    NSString* text = NSString::stringWithFormat(localized(u"_Looking for misspelled words: %d %%"_ns),
                                                static_cast<int>(part * 100));
    if (_progress && owner->notice() == _progress) return _progress->setText(text);
    if (_progress || owner->notice()) return;
    owner->showNotice(text, {{localized(u"_Stop"_ns), [this] { stopSearch(); }}});
    _progress.set(owner->notice());
}

void WRSpelling::stopSearch() {
    _marks->stopSearch();
    const auto progress = std::exchange(_progress, nullptr);
    if (auto* owner = cast<WRDocumentWindow>(_view->window() ? _view->window()->delegate() : nullptr);
        progress && owner && owner->notice() == progress)
        owner->hideNotice();
}

void WRSpelling::cancelOperation(id sender) {
    if (_marks->isSearching()) return stopSearch();
    if (nextResponder()) nextResponder()->tryToPerform_with("cancelOperation:"_sel, sender);
}

// MARK: Words

NSRange WRSpelling::wordAtCaret() { return _marks->misspelledWordAt(_view->selectedRange().location); }

// The caret may stand behind the word.
NSRange WRSpelling::rightWordAtCaret() {
    NSUInteger place = _view->selectedRange().location;
    NSString* text = _view->string();
    const auto isWord = [text](NSUInteger unit) {
        return unit < text->length() &&
               NSCharacterSet::alphanumericCharacterSet()->characterIsMember(text->characterAtIndex(unit));
    };
    if (!isWord(place) && place > 0) --place;
    return isWord(place) ? _view->selectionRangeForProposedRange_granularity({place, 0}, NSSelectByWord)
                         : NSRange{place, 0};
}

void WRSpelling::replaceMisspelling(id sender) {
    NSString* guess = wordIn(sender);
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
    if (const NSRange word = wordAtCaret(); word.length > 0) learnedWordsAreKept(_marks->learnWord(word));
}

void WRSpelling::unlearnWord(id sender) {
    if (NSString* word = wordIn(sender))
        learnedWordsAreKept(_marks->unlearnWord_at(word, rightWordAtCaret()));
}

void WRSpelling::unignoreWord(id sender) {
    if (NSString* word = wordIn(sender)) _marks->unignoreWord(word);
}

// Tells the user if they are not.
void WRSpelling::learnedWordsAreKept(bool areKept) {
    if (areKept) return;
    NSString* reason = NSFileError::lastWriteErrorAtPath(u""_ns)->localizedReason();
    NSRunAlertPanel(localized(u"_The word is known until Writer is closed, but could not be kept."_ns),
                    u"%@"_ns, nullptr, nullptr, nullptr, reason);
}

// MARK: Context menu

void WRSpelling::menuNeedsUpdate(NSMenu* menu) {
    menu->removeAllItems();
    if (const NSRange word = wordAtCaret(); word.length > 0)
        addItemsForMisspelling(menu, word);
    else
        addItemsForRightWord(menu);
    addItem(menu, u"_Cut"_ns, "cut:"_sel);
    addItem(menu, u"_Copy"_ns, "copy:"_sel);
    addItem(menu, u"_Paste"_ns, "paste:"_sel);
}

void WRSpelling::addItemsForMisspelling(NSMenu* menu, NSRange word) {
    addItem(menu, u"_Looking for suggestions …"_ns, SEL());
    menu->addItem(NSMenuItem::separatorItem());
    addItem(menu, u"_Ignore"_ns, "ignoreMisspelling:"_sel);
    addItem(menu, u"_Learn Spelling"_ns, "learnMisspelling:"_sel);
    menu->addItem(NSMenuItem::separatorItem());
    checker()->requestGuessesForWord_language_target_selector(_view->string()->substringWithRange(word),
                                                              _marks->languageAt(word.location), this,
                                                              "showGuesses:forWord:"_sel);
}

// A word that the user has taught can be wrong after all.
void WRSpelling::addItemsForRightWord(NSMenu* menu) {
    const NSRange word = rightWordAtCaret();
    if (word.length == 0) return;
    const auto add = [menu](NSString* taught, NSString* key, SEL action) {
        if (!taught) return;
        addItem(menu, key, action)->setRepresentedObject(taught);
        menu->addItem(NSMenuItem::separatorItem());
    };
    add(_marks->ignoredWordAt(word), u"_Do Not Ignore"_ns, "unignoreWord:"_sel);
    add(_marks->learnedWordAt(word), u"_Unlearn Spelling"_ns, "unlearnWord:"_sel);
}

void WRSpelling::menuDidClose(NSMenu*) { checker()->cancelGuessesForTarget(this); }

// In the place of the first item. A menu that was opened by the keyboard has its first command highlighted.
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
    NSMenuItem* highlighted = _menu->highlightedItem();
    if (highlighted && highlighted->action() == "ignoreMisspelling:"_sel)
        _menu->setHighlightedItem(_menu->itemAtIndex(0));
}

}  // namespace pelvor
