// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRCharactersPanel.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Writer/LocalizedText.h"
#include "Writer/ProfileChoice.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

// "Em dash"; of a string without a name its codes, "U+2014".
NSString* nameOf(NSString* characters, PBProfile* profile) {
    NSString* name = profile->localize(characters);
    if (!name->isEqualToString(characters)) return name;
    name = u""_ns;
    for (NSUInteger i = 0; i < characters->length(); ++i)
        name = NSString::stringWithFormat(u"%@%@U+%04X"_ns, name, i > 0 ? u" "_ns : u""_ns,
                                          static_cast<unsigned>(characters->characterAtIndex(i)));
    return name;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRCharactersPanel, windowsLibrary) {
    methods.creator<"init", &WRCharactersPanel::init>();
    methods.instance<"profilesDidChange:", &WRCharactersPanel::profilesDidChange>();
}

Retained<WRCharactersPanel> WRCharactersPanel::init(Class* cls) {
    auto self = make<WRCharactersPanel>(cls);
    const Column columns[] = {
        {localized(u"_Name"_ns), 240}, {localized(u"_Character"_ns), 80}, {localized(u"_Kind"_ns), 160}};
    self->makeWindow(localized(u"_Special Characters"_ns), columns);
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self, "profilesDidChange:"_sel, PBProfilesDidChangeNotification, PBRegistry::sharedRegistry());
    self->profilesDidChange(nullptr);
    return self;
}

WRCharactersPanel::~WRCharactersPanel() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRCharactersPanel::profilesDidChange(NSNotification*) {
    _rows.clear();
    for (id each : profilesInOrder(PBRegistry::sharedRegistry()->profilesOfType(PBProfilePaletteType))) {
        auto* profile = static_cast<PBProfile*>(each);
        auto* characters = cast<NSArray>(profile->valueForKey(u"characters"_ns));
        for (NSUInteger i = 0; characters && i < characters->count(); ++i)
            if (auto* text = cast<NSString>(characters->objectAtIndex(i)); text && text->length() > 0)
                _rows.push_back({Retained<NSString>::retaining(nameOf(text, profile)), text->copy(),
                                 Retained<NSString>::retaining(nameOfProfile(profile))});
    }
    reload();
}

id WRCharactersPanel::valueAt(NSUInteger row, NSUInteger column) {
    const Row& shown = _rows[row];
    return column == 0 ? shown.name : column == 1 ? shown.characters : shown.palette;
}

void WRCharactersPanel::rowWasChosen(NSUInteger row) {
    if (WRFormatCommands* front = WRFormatCommands::current())
        front->pageView()->insertText(_rows[row].characters.get());
}

}  // namespace pelvor
