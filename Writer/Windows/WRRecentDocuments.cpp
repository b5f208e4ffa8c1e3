// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRRecentDocuments.h"

#include <algorithm>

#include "Foundation/NSFileManager.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSMenu.h"
#include "Writer/LocalizedText.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr NSInteger kMostPaths = 50;

NSUInteger wantedCount() {
    return static_cast<NSUInteger>(
        std::clamp<NSInteger>(preference(WRRecentDocumentCountPreference), 0, kMostPaths));
}

NSArray* storedPaths() {
    NSArray* paths = NSUserDefaults::standardUserDefaults()->stringArrayForKey(WRRecentDocumentsPreference);
    return paths ? paths : NSArray::array();
}

void store(NSArray* paths) {
    NSUserDefaults::standardUserDefaults()->setObject_forKey(paths, WRRecentDocumentsPreference);
}

// Another file of the list has the same name.
bool isNameShared(NSString* path, NSArray* paths) {
    for (id other : paths)
        if (!other->isEqual(path) &&
            static_cast<NSString*>(other)->lastPathComponent()->isEqualToString(path->lastPathComponent()))
            return true;
    return false;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRRecentDocuments, windowsLibrary) {
    methods.creator<"init", &WRRecentDocuments::init>();
    methods.instance<"addPath:", &WRRecentDocuments::addPath>();
    methods.instance<"paths", &WRRecentDocuments::paths>();
    methods.instance<"removeAllPaths", &WRRecentDocuments::removeAllPaths>();
    methods.instance<"defaultsDidChange:", &WRRecentDocuments::defaultsDidChange>();
    methods.instance<"menuNeedsUpdate:", &WRRecentDocuments::menuNeedsUpdate>();
}

Retained<WRRecentDocuments> WRRecentDocuments::init(Class* cls) {
    auto self = make<WRRecentDocuments>(cls);
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self, "defaultsDidChange:"_sel, NSUserDefaultsDidChangeNotification, nullptr);
    return self;
}

WRRecentDocuments::~WRRecentDocuments() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRRecentDocuments::addPath(NSString* path) {
    auto* paths = NSMutableArray::arrayWithArray(storedPaths());
    paths->removeObject(path);
    paths->insertObject_atIndex(path, 0);
    while (paths->count() > wantedCount()) paths->removeLastObject();
    store(paths);
}

void WRRecentDocuments::defaultsDidChange(NSNotification*) {
    NSArray* paths = storedPaths();
    if (paths->count() > wantedCount()) store(paths->subarrayWithRange({0, wantedCount()}));
}

NSArray* WRRecentDocuments::paths() {
    auto* there = NSMutableArray::array();
    for (id path : storedPaths())
        if (NSFileManager::defaultManager()->fileExistsAtPath(static_cast<NSString*>(path)))
            there->addObject(path);
    return there;
}

void WRRecentDocuments::removeAllPaths() { store(NSArray::array()); }

void WRRecentDocuments::menuNeedsUpdate(NSMenu* menu) {
    NSArray* paths = this->paths();
    menu->removeAllItems();
    for (id object : paths) {
        auto* path = static_cast<NSString*>(object);
        NSString* title = path->lastPathComponent();
        if (isNameShared(path, paths))
            title =
                NSString::stringWithFormat(u"%@ – %@"_ns, title, path->stringByDeletingLastPathComponent());
        menu->addItemWithTitle_action_keyEquivalent(title, "openRecentDocument:"_sel, u""_ns)
            ->setRepresentedObject(path);
    }
    if (paths->count()) menu->addItem(NSMenuItem::separatorItem());
    menu->addItemWithTitle_action_keyEquivalent(localized(u"_Clear Menu"_ns), "clearRecentDocuments:"_sel,
                                                u""_ns);
}

}  // namespace pelvor
