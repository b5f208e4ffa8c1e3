// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRColorMenu.h"

#include "Interface/NSImage.h"
#include "Interface/NSMenu.h"
#include "Text/NSColor.h"
#include "Writer/LocalizedText.h"
#include "Writer/Windows/ColorParts.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

// Dark enough to be read on paper, but for the last ones.
const struct {
    NSString* key;
    std::uint32_t rgb;
} kColors[] = {
    {u"_Black"_ns, 0x000000},  {u"_Grey"_ns, 0x707070},  {u"_Red"_ns, 0xC02020},    {u"_Orange"_ns, 0xC86400},
    {u"_Brown"_ns, 0x7A4A1E},  {u"_Green"_ns, 0x1E7A32}, {u"_Teal"_ns, 0x107A80},   {u"_Blue"_ns, 0x1E50B4},
    {u"_Violet"_ns, 0x7832A0}, {u"_Pink"_ns, 0xC83278},  {u"_Yellow"_ns, 0xE6B400}, {u"_White"_ns, 0xFFFFFF},
};

NSColor* colorOf(std::uint32_t rgb) {
    const auto part = [rgb](int shift) { return static_cast<float>(rgb >> shift & 0xFF) / 255; };
    return NSColor::colorWithCalibratedRed_green_blue_alpha(part(16), part(8), part(0), 1);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRColorMenu, windowsLibrary) {
    methods.creator<"init", &WRColorMenu::init>();
    methods.instance<"menuNeedsUpdate:", &WRColorMenu::menuNeedsUpdate>();
}

Retained<WRColorMenu> WRColorMenu::init(Class* cls) { return make<WRColorMenu>(cls); }

void WRColorMenu::menuNeedsUpdate(NSMenu* menu) {
    if (!menu || menu->numberOfItems() > 0) return;
    const SEL action = "takeColorFrom:"_sel;
    menu->addItemWithTitle_action_keyEquivalent(localized(u"_Automatic"_ns), action, u""_ns);
    menu->addItem(NSMenuItem::separatorItem());
    for (const auto& [key, rgb] : kColors) {
        NSMenuItem* item = menu->addItemWithTitle_action_keyEquivalent(localized(key), action, u""_ns);
        NSColor* color = colorOf(rgb);
        item->setRepresentedObject(color);
        item->setImage(swatchOfColor(color).get());
    }
    menu->addItem(NSMenuItem::separatorItem());
    menu->addItemWithTitle_action_keyEquivalent(localized(u"_Other Colour…"_ns), "orderFrontColorPanel:"_sel,
                                                u""_ns);
}

}  // namespace pelvor
