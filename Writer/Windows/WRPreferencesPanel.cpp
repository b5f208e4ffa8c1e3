// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRPreferencesPanel.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSButton.h"
#include "Interface/NSMenu.h"
#include "Interface/NSPopUpButton.h"
#include "Writer/LocalizedText.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WRFormView.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WRRuler.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

const struct {
    NSString *key, *title;
} kBoxes[] = {
    {WRMarksMisspellingsPreference, u"_Mark misspelled words"_ns},
    {WRKeyboardFollowsLanguagePreference, u"_Switch the keyboard to the language at the caret"_ns},
    {WRShowsRulerPreference, u"_Show the ruler"_ns},
};

void addNumber(NSMenu* menu, NSString* title, int number) {
    menu->addItemWithTitle_action_keyEquivalent(title, SEL(), u""_ns)
        ->setRepresentedObject(NSNumber::numberWithInt(number));
}

void addCounts(NSMenu* menu) {
    addNumber(menu, localized(u"_None"_ns), 0);
    for (const int count : {5, 10, 20, 50})
        addNumber(menu, NSString::stringWithFormat(u"%d"_ns, count), count);
}

// What is set, or holds at first.
id valueOf(NSString* key) {
    if (key->isEqualToString(WRRulerUnitPreference)) return WRRuler::wantedUnit();
    return NSNumber::numberWithInt(static_cast<int>(preference(key)));
}

}  // namespace

PELVOR_DEFINE_CLASS(WRPreferencesPanel, windowsLibrary) {
    methods.creator<"init", &WRPreferencesPanel::init>();
    methods.instance<"window", &WRPreferencesPanel::window>();
    methods.instance<"takeBox:", &WRPreferencesPanel::takeBox>();
    methods.instance<"takePopUp:", &WRPreferencesPanel::takePopUp>();
    methods.instance<"defaultsDidChange:", &WRPreferencesPanel::defaultsDidChange>();
}

Retained<WRPreferencesPanel> WRPreferencesPanel::init(Class* cls) {
    auto self = make<WRPreferencesPanel>(cls);
    self->makePanel();
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self, "defaultsDidChange:"_sel, NSUserDefaultsDidChangeNotification, nullptr);
    return self;
}

WRPreferencesPanel::~WRPreferencesPanel() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRPreferencesPanel::makePanel() {
    constexpr float kFieldWidth = 160;
    auto form = WRFormView::create(this, kFieldWidth);
    const auto addChoice = [&](NSString* key, NSString* label, void (*fill)(NSMenu*)) {
        auto* button = form->addPopUp(localized(label), NSArray::array(), "takePopUp:"_sel);
        fill(button->menu());
        _choices.push_back({key, Retained<NSPopUpButton>::retaining(button)});
    };
    addChoice(WRRulerUnitPreference, u"_Unit of the ruler:"_ns, &WRRuler::addUnitsToMenu);
    addChoice(WRRecentDocumentCountPreference, u"_Recent documents:"_ns, &addCounts);
    for (const auto& [key, title] : kBoxes)
        _boxes.push_back(
            {key, Retained<NSButton>::retaining(form->addCheckBox(localized(title), "takeBox:"_sel))});
    _panel = form->panelWithTitle(localized(u"_Preferences"_ns));
    showValues();
}

void WRPreferencesPanel::showValues() {
    for (const auto& [key, button] : _boxes) button->setState(preference(key) ? NSOnState : NSOffState);
    for (const auto& [key, button] : _choices)
        button->selectItemAtIndex(button->menu()->indexOfItemWithRepresentedObject(valueOf(key)));
}

void WRPreferencesPanel::takeBox(id sender) {
    for (const auto& [key, button] : _boxes)
        if (button == sender)
            return NSUserDefaults::standardUserDefaults()->setBool_forKey(button->state() == NSOnState, key);
}

void WRPreferencesPanel::takePopUp(id sender) {
    for (const auto& [key, button] : _choices)
        if (NSMenuItem* item = button->selectedItem(); button == sender && item)
            return NSUserDefaults::standardUserDefaults()->setObject_forKey(item->representedObject(), key);
}

void WRPreferencesPanel::defaultsDidChange(NSNotification*) { showValues(); }

}  // namespace pelvor
