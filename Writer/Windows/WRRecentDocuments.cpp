// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRRecentDocuments.h"

#include "Foundation/NSFileManager.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSMenu.h"
#include "Writer/LocalizedText.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr NSUInteger kMostPaths = 10;

NSArray* storedPaths() {
    NSArray* paths = NSUserDefaults::standardUserDefaults()->stringArrayForKey(WRRecentDocumentsPreference);
    return paths ? paths : NSArray::array();
}

void store(NSArray* paths) {
    auto* defaults = NSUserDefaults::standardUserDefaults();
    defaults->setObject_forKey(paths, WRRecentDocumentsPreference);
    defaults->synchronize();
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
    methods.instance<"menuNeedsUpdate:", &WRRecentDocuments::menuNeedsUpdate>();
}

Retained<WRRecentDocuments> WRRecentDocuments::init(Class* cls) { return make<WRRecentDocuments>(cls); }

void WRRecentDocuments::addPath(NSString* path) {
    auto* paths = NSMutableArray::arrayWithArray(storedPaths());
    paths->removeObject(path);
    paths->insertObject_atIndex(path, 0);
    while (paths->count() > kMostPaths) paths->removeLastObject();
    store(paths);
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
