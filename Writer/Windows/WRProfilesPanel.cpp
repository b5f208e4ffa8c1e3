// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRProfilesPanel.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Writer/LocalizedText.h"
#include "Writer/ProfileChoice.h"
#include "Writer/WRPlugInLoader.h"
#include "Writer/WRProfileListing.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

enum ColumnIndex : NSUInteger { kName, kKind, kPlugIn };

int compareNames(id a, id b, void*) {
    return nameOfProfile(static_cast<PBProfile*>(a))
        ->localizedCaseInsensitiveCompare(nameOfProfile(static_cast<PBProfile*>(b)));
}

}  // namespace

PELVOR_DEFINE_CLASS(WRProfilesPanel, windowsLibrary) {
    methods.creator<"init", &WRProfilesPanel::init>();
    methods.instance<"profilesDidChange:", &WRProfilesPanel::profilesDidChange>();
}

Retained<WRProfilesPanel> WRProfilesPanel::init(Class* cls) {
    auto self = make<WRProfilesPanel>(cls);
    self->_profiles = NSArray::init();
    self->makeWindow(
        localized(u"_Plug-ins"_ns),
        std::initializer_list<Column>{
            {localized(u"_Name"_ns), 200}, {localized(u"_Kind"_ns), 140}, {localized(u"_Plug-in"_ns), 140}});
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self, "profilesDidChange:"_sel, PBProfilesDidChangeNotification, PBRegistry::sharedRegistry());
    self->profilesDidChange(nullptr);
    return self;
}

WRProfilesPanel::~WRProfilesPanel() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

NSUInteger WRProfilesPanel::rowCount() { return _profiles->count(); }

id WRProfilesPanel::valueAt(NSUInteger row, NSUInteger column) {
    auto* profile = static_cast<PBProfile*>(_profiles->objectAtIndex(row));
    if (column == kName) return nameOfProfile(profile);
    if (column == kPlugIn)
        return profile->bundle() ? WRPlugInLoader::nameOfBundle(profile->bundle()) : nullptr;
    auto* kind = cast<NSString>(profile->valueForKey(PBProfileTypeKey));
    return kind ? WRProfileListing::nameOfKind(kind) : nullptr;
}

void WRProfilesPanel::profilesDidChange(NSNotification*) {
    _profiles.set(
        PBRegistry::sharedRegistry()->profiles()->sortedArrayUsingFunction_context(&compareNames, nullptr));
    reload();
}

}  // namespace pelvor
