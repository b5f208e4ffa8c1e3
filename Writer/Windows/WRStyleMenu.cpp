// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRStyleMenu.h"

#include "Foundation/NSArray.h"
#include "Interface/NSMenu.h"
#include "Writer/LocalizedText.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

// These set the lines above and below the text.
bool isOfPages(NSString* name) {
    return name->isEqualToString(u"header"_ns) || name->isEqualToString(u"footer"_ns);
}

// Styles of the sheet that Writer brings have names in the user's language; others begin with a capital.
NSString* shownName(NSString* name) {
    NSString* key = NSString::stringWithFormat(u"_Style %@"_ns, name);
    NSString* text = localized(key);
    if (!text->isEqualToString(key)) return text;
    if (name->length() == 0) return name;
    return name->substringToIndex(1)->uppercaseString()->stringByAppendingString(name->substringFromIndex(1));
}

void addItem(NSMenu* menu, NSString* title, SEL action, NSString* name) {
    menu->addItemWithTitle_action_keyEquivalent(title, action, u""_ns)->setRepresentedObject(name);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRStyleMenu, windowsLibrary) {
    methods.creator<"init", &WRStyleMenu::init>();
    methods.instance<"menuNeedsUpdate:", &WRStyleMenu::menuNeedsUpdate>();
}

Retained<WRStyleMenu> WRStyleMenu::init(Class* cls) { return make<WRStyleMenu>(cls); }

void WRStyleMenu::menuNeedsUpdate(NSMenu* menu) {
    if (!menu) return;
    menu->removeAllItems();
    WRFormatCommands* commands = WRFormatCommands::current();
    if (!commands) return;
    addItem(menu, shownName(kPlainStyleName), "takeParagraphStyleFrom:"_sel, kPlainStyleName);
    for (id object : commands->sheet().paragraphStyleNames())
        if (auto* name = static_cast<NSString*>(object);
            !isOfPages(name) && !name->isEqualToString(kPlainStyleName))
            addItem(menu, shownName(name), "takeParagraphStyleFrom:"_sel, name);
    menu->addItem(NSMenuItem::separatorItem());
    addItem(menu, localized(u"_No Character Style"_ns), "takeCharacterStyleFrom:"_sel, nullptr);
    for (id object : commands->sheet().characterStyleNames())
        addItem(menu, shownName(static_cast<NSString*>(object)), "takeCharacterStyleFrom:"_sel,
                static_cast<NSString*>(object));
}

}  // namespace pelvor
