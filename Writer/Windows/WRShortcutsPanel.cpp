// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRShortcutsPanel.h"

#include "Interface/NSMenu.h"
#include "Interface/NSMenuItem.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "Writer/LocalizedText.h"
#include "Writer/Shortcuts/WRShortcut.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRShortcutsPanel, windowsLibrary) {
    methods.creator<"init", &WRShortcutsPanel::init>();
    methods.instance<"takeMenu:", &WRShortcutsPanel::takeMenu>();
}

Retained<WRShortcutsPanel> WRShortcutsPanel::init(Class* cls) {
    auto self = make<WRShortcutsPanel>(cls);
    self->makeWindow(
        localized(u"_Keyboard Shortcuts"_ns),
        std::initializer_list<Column>{
            {localized(u"_Command"_ns), 220}, {localized(u"_Keys"_ns), 140}, {localized(u"_Menu"_ns), 140}});
    return self;
}

void WRShortcutsPanel::takeMenu(NSMenu* menu) {
    _rows.clear();
    if (menu) collect(menu, nullptr);
    reload();
}

void WRShortcutsPanel::collect(NSMenu* menu, NSString* path) {
    for (const auto& item : menu->items()) {
        if (NSMenu* submenu = item->submenu()) {
            NSString* title = trueTitle(item);
            collect(submenu, path ? NSString::stringWithFormat(u"%@ › %@"_ns, path, title) : title);
        } else if (WRShortcut* shortcut = WRShortcut::shortcutOfItem(item)) {
            _rows.push_back({trueTitle(item)->copy(), WRShortcut::textOf(shortcut->keys())->copy(),
                             (path ? path : u""_ns)->copy()});
        }
    }
}

id WRShortcutsPanel::valueAt(NSUInteger row, NSUInteger column) {
    const Row& found = _rows[row];
    return (column == 0 ? found.command : column == 1 ? found.keys : found.menu).get();
}

}  // namespace pelvor
