// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRLanguageCommands.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSUndoManager.h"
#include "Interface/NSMenu.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "NSInputManager-PelvorAdditions.h"
#include "PBProfileKeys.h"
#include "PBProfileSet.h"
#include "PBRegistry.h"
#include "Text/NSTextStorage.h"
#include "Writer/LocalizedText.h"
#include "Writer/Pages/TextLanguage.h"
#include "Writer/ProfileChoice.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

using Keyboards = NSInputManager_PelvorAdditions;

// "de" of "de-AT" and "de_AT".
NSString* languageAlone(NSString* name) {
    const NSRange mark =
        name->rangeOfCharacterFromSet(NSCharacterSet::characterSetWithCharactersInString(u"-_"_ns));
    return mark.location == NSNotFound ? name : name->substringToIndex(mark.location);
}

// What one of the two says of regions counts only if the other says it, too.
bool isSameLanguage(NSString* one, NSString* other) {
    return one && other && languageAlone(one)->isEqualToString(languageAlone(other));
}

bool isFor(PBKeyboardInputMethod* keyboard, NSString* language) {
    return keyboard && isSameLanguage(keyboardLayoutLanguage(keyboard->keyboardLayoutRef()), language);
}

// To the first layout for the language, unless the current one is for it.
void switchKeyboard(NSString* language) {
    if (isFor(Keyboards::currentKeyboardLayout(), language)) return;
    for (id each : Keyboards::availableKeyboardLayouts()) {
        auto* keyboard = static_cast<PBKeyboardInputMethod*>(each);
        if (isFor(keyboard, language)) return void(Keyboards::setCurrentKeyboardLayout(keyboard));
    }
}

NSString* nameIn(id sender) {
    auto* item = cast<NSMenuItem>(sender);
    return item ? cast<NSString>(item->representedObject()) : nullptr;
}

}  // namespace

// MARK: Commands

PELVOR_DEFINE_CLASS(WRLanguageCommands, windowsLibrary) {
    methods.instance<"takeLanguageFrom:", &WRLanguageCommands::takeLanguageFrom>();
    methods.instance<"validateMenuItem:", &WRLanguageCommands::validateMenuItem>();
    methods.instance<"validateTakeLanguageFrom:", &WRLanguageCommands::validateTakeLanguageFrom>();
    methods.instance<"selectionDidChange:", &WRLanguageCommands::selectionDidChange>();
}

Retained<WRLanguageCommands> WRLanguageCommands::create(WRPageView* view) {
    auto self = make<WRLanguageCommands>();
    self->_view = view;
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self, "selectionDidChange:"_sel, NSTextViewDidChangeSelectionNotification, view);
    return self;
}

WRLanguageCommands::~WRLanguageCommands() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRLanguageCommands::takeLanguageFrom(id sender) {
    NSString* name = nameIn(sender);
    if (!name || !_view->isEditable()) return;
    NSDictionary* language = attributesOfLanguage(name);
    const NSRange range = _view->selectedRange();
    if (range.length > 0) {
        _view->breakUndoCoalescing();
        if (!_view->shouldChangeTextInRange_replacementString(range, nullptr)) return;
        _view->textStorage()->addAttributes_range(language, range);
        _view->breakUndoCoalescing();
        if (NSUndoManager* undo = _view->undoManager())
            undo->setActionName(static_cast<NSMenuItem*>(sender)->title());
        _view->didChangeText();
    }
    auto typing = NSMutableDictionary::initWithDictionary(_view->typingAttributes());
    typing->addEntriesFromDictionary(language);
    _view->setTypingAttributes(typing);
    _caretLanguage.set(name);
    switchKeyboard(name);
}

bool WRLanguageCommands::validateMenuItem(id item) {
    bool isEnabled = true;
    dispatchValidationTo_result(item, this, &isEnabled);
    return isEnabled;
}

bool WRLanguageCommands::validateTakeLanguageFrom(id sender) {
    auto* item = cast<NSMenuItem>(sender);
    NSString* name = nameIn(item);
    if (!name) return false;
    const NSRange range = _view->selectedRange();
    NSRange same = range;
    NSString* language = range.length > 0 ? languageInText(_view->textStorage(), range.location, &same, range)
                                          : languageOfAttributes(_view->typingAttributes());
    const int state = same == range ? 1 : -1;  // a part of the selection may be in another one
    item->setState(isSameLanguage(name, language) ? state : 0);
    return _view->isEditable();
}

// The user may switch the keyboard, too: only another language at the caret counts.
void WRLanguageCommands::selectionDidChange(NSNotification*) {
    if (!preference(WRKeyboardFollowsLanguagePreference)) return;
    NSString* language = languageOfAttributes(_view->typingAttributes());
    const bool isOther = !isSameLanguage(language, _caretLanguage);
    _caretLanguage.set(language);
    if (isOther && language) switchKeyboard(language);
}

// MARK: Menu

PELVOR_DEFINE_CLASS(WRLanguageMenu, windowsLibrary) {
    methods.creator<"init", &WRLanguageMenu::init>();
    methods.instance<"menuNeedsUpdate:", &WRLanguageMenu::menuNeedsUpdate>();
}

Retained<WRLanguageMenu> WRLanguageMenu::init(Class* cls) { return make<WRLanguageMenu>(cls); }

void WRLanguageMenu::menuNeedsUpdate(NSMenu* menu) {
    if (!menu) return;
    menu->removeAllItems();
    const auto add = [menu](NSString* title, NSString* name) {
        menu->addItemWithTitle_action_keyEquivalent(title, "takeLanguageFrom:"_sel, u""_ns)
            ->setRepresentedObject(name);
    };
    for (id each : profilesInOrder(PBRegistry::sharedRegistry()->profilesOfType(PBProfileLanguageType))) {
        auto* profile = static_cast<PBProfile*>(each);
        if (auto* name = cast<NSString>(profile->valueForKey(u"code"_ns))) add(nameOfProfile(profile), name);
    }
    menu->addItem(NSMenuItem::separatorItem());
    add(localized(u"_No Language"_ns), u""_ns);
}

}  // namespace pelvor
