// SPDX-License-Identifier: Apache-2.0
#include "Interface/KeyboardLayouts.h"

#include <algorithm>
#include <cstdlib>
#include <map>

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/ProgramRun.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/Input/LayoutNames.h"
#include "Interface/NSApplication.h"
#include "Interface/NSImage.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSGraphicsContext.h"
#include "Text/NSString-Drawing.h"
#include "Text/TextAttributes.h"

namespace pelvor {

NSString* const NSKeyboardLayoutsDidChangeNotification = u"NSKeyboardLayoutsDidChangeNotification"_ns;
NSString* const NSCurrentKeyboardLayoutDidChangeNotification =
    u"NSCurrentKeyboardLayoutDidChangeNotification"_ns;

namespace {

struct KeyboardLayout : OpaqueKeyboardLayout {
    BackendLayout facts;  ///< the group and whether it is current are those of some moment
    std::int32_t script = smRoman;
    Retained<NSImage> icon;
};

// By name. References stay good for ever, so nothing is taken out.
std::map<std::string, KeyboardLayout>& layoutsByName() {
    static auto& layouts = *new std::map<std::string, KeyboardLayout>;
    return layouts;
}

KeyboardLayout* layoutFor(const BackendLayout& facts) {
    auto [place, isNew] = layoutsByName().try_emplace(facts.name);
    KeyboardLayout& layout = place->second;
    if (isNew) {
        layout.facts = facts;
        layout.identifier = keyboardLayoutIdentifier(NSString::ofUTF8(facts.name));
        layout.script = scriptSystemOfLanguage(facts.language);
    }
    return &layout;
}

DisplayConnection& display() {
    NSApplication::sharedApplication();
    return DisplayConnection::shared();
}

KeyboardLayout* currentLayout() {
    for (const BackendLayout& layout : display().layouts())
        if (layout.isCurrent) return layoutFor(layout);
    return nullptr;
}

bool switchTo(const BackendLayout& layout) {
    if (layout.isCurrent) return true;
    const bool isSwitched = display().backend().setLayout(layout.group);
    display().needsTurn();  // the notice has come with the reply, and nothing else wakes the run loop
    return isSwitched;
}

Retained<NSImage> iconOf(const BackendLayout& facts) {
    constexpr float kSize = 16, kHeight = 12;
    NSString* letters = NSString::ofUTF8(facts.shortName.substr(0, 3))->uppercaseString();
    if (letters->length() == 0) return nullptr;
    auto context = NSGraphicsContext::initWithImageSize_scale({kSize, kSize}, display().scale());
    const auto outer = Retained<NSGraphicsContext>::retaining(NSGraphicsContext::currentContext());
    NSGraphicsContext::setCurrentContext(context);
    fillRounded({{0, (kSize - kHeight) / 2}, {kSize, kHeight}}, 2.5f, ThemeColor::secondaryText);
    NSDictionary* attributes =
        NSDictionary::of({{NSFontAttributeName, NSFont::boldSystemFontOfSize(letters->length() > 2 ? 6 : 8)},
                          {NSForegroundColorAttributeName, themeColor(ThemeColor::textOnAccent)}});
    const NSSize extent = sizeWithAttributes(letters, attributes);
    drawAtPoint_withAttributes(letters, {(kSize - extent.width) / 2, (kSize - extent.height) / 2},
                               attributes);
    NSGraphicsContext::setCurrentContext(outer);
    auto image = NSImage::initWithData(context->dataWithReason(nullptr));
    if (image) image->setSize({kSize, kSize});
    return image;
}

const void* propertyOf(KeyboardLayout& layout, KeyboardLayoutPropertyTag tag) {
    const auto integer = [](std::int32_t value) {
        return reinterpret_cast<const void*>(static_cast<std::intptr_t>(value));
    };
    switch (tag) {
        case kKLIdentifier:
            return integer(layout.identifier);
        case kKLIcon:
            if (!layout.icon) layout.icon = iconOf(layout.facts);
            return layout.icon.get();
        case kKLLocalizedName:
            return layout.facts.displayName.empty()
                       ? nullptr
                       : NSString::ofUTF8(localizedLayoutName(layout.facts.displayName));
        case kKLName:
            return NSString::ofUTF8(layout.facts.name);
        case kKLGroupIdentifier:
            return integer(layout.script);
    }
    return nullptr;
}

}  // namespace

OSStatus KLGetKeyboardLayoutCount(NSInteger* count) {
    if (!count) return paramErr;
    *count = static_cast<NSInteger>(display().layouts().size());
    return *count > 0 ? noErr : resNotFound;
}

OSStatus KLGetKeyboardLayoutAtIndex(NSInteger index, KeyboardLayoutRef* layout) {
    if (!layout) return paramErr;
    *layout = nullptr;
    const auto layouts = display().layouts();
    if (index < 0 || static_cast<std::size_t>(index) >= layouts.size()) return paramErr;
    *layout = layoutFor(layouts[static_cast<std::size_t>(index)]);
    return noErr;
}

OSStatus KLGetKeyboardLayoutWithIdentifier(std::int32_t identifier, KeyboardLayoutRef* layout) {
    if (!layout) return paramErr;
    *layout = nullptr;
    const auto isMeant = [&](const auto& each) { return each.second.identifier == identifier; };
    for (const BackendLayout& each : display().layouts()) layoutFor(each);
    auto found = std::ranges::find_if(layoutsByName(), isMeant);
    if (found != layoutsByName().end()) return *layout = &found->second, noErr;
    for (const BackendLayout& each : display().backend().knownLayouts())
        if (keyboardLayoutIdentifier(NSString::ofUTF8(each.name)) == identifier)
            return *layout = layoutFor(each), noErr;
    return resNotFound;
}

OSStatus KLGetKeyboardLayoutProperty(KeyboardLayoutRef layout, KeyboardLayoutPropertyTag tag,
                                     const void** value) {
    if (!value) return paramErr;
    *value = nullptr;
    if (!layout) return paramErr;
    *value = propertyOf(static_cast<KeyboardLayout&>(*layout), tag);
    const bool isInteger = tag == kKLIdentifier || tag == kKLGroupIdentifier;
    return *value || isInteger ? noErr : resNotFound;
}

OSStatus KLGetCurrentKeyboardLayout(KeyboardLayoutRef* layout) {
    if (!layout) return paramErr;
    *layout = currentLayout();
    return *layout ? noErr : resNotFound;
}

OSStatus KLSetCurrentKeyboardLayout(KeyboardLayoutRef layout) {
    if (!layout) return paramErr;
    for (const BackendLayout& each : display().layouts())
        if (layoutFor(each) == layout) return switchTo(each) ? noErr : resNotFound;
    return resNotFound;
}

void KeyScript(std::int16_t code) {
    const std::int32_t script = code & 0x7F;
    if (code < 0 || GetScriptManagerVariable(smKeyScript) == script) return;
    for (const BackendLayout& each : display().layouts())
        if (layoutFor(each)->script == script) {
            switchTo(each);
            return;
        }
}

std::int32_t GetScriptManagerVariable(std::int16_t selector) {
    KeyboardLayout* current = selector == smKeyScript ? currentLayout() : nullptr;
    return current ? current->script : smRoman;
}

std::int32_t keyboardLayoutIdentifier(NSString* name) {
    std::uint32_t hash = 2166136261U;
    if (name)
        for (const char byte : name->toUTF8()) hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
    return hash == 0 ? 1 : static_cast<std::int32_t>(hash);
}

NSString* keyboardLayoutLanguage(KeyboardLayoutRef layout) {
    if (!layout) return nullptr;
    const std::string tag = languageTag(static_cast<KeyboardLayout*>(layout)->facts.language);
    return tag.empty() ? nullptr : NSString::ofUTF8(tag);
}

bool openKeyboardSettings() {
    struct Settings {
        std::string_view desktop;  // a part of what XDG_CURRENT_DESKTOP says
        const char16_t* program;
        const char16_t* page;
    };
    static constexpr Settings kPrograms[] = {
        {"Budgie", u"budgie-control-center", u"keyboard"},
        {"GNOME", u"gnome-control-center", u"keyboard"},
        {"KDE", u"systemsettings", u"kcm_keyboard"},
        {"KDE", u"systemsettings5", u"kcm_keyboard"},
        {"KDE", u"kcmshell6", u"kcm_keyboard"},
        {"KDE", u"kcmshell5", u"kcm_keyboard"},
        {"XFCE", u"xfce4-keyboard-settings", nullptr},
        {"Cinnamon", u"cinnamon-settings", u"keyboard"},
        {"MATE", u"mate-keyboard-properties", nullptr},
        {"LXQt", u"lxqt-config-input", nullptr},
        {"Unity", u"unity-control-center", u"keyboard"},
        {"Pantheon", u"io.elementary.settings", u"input/keyboard"},
    };
    const char* variable = std::getenv("XDG_CURRENT_DESKTOP");
    const std::string_view desktop = variable ? variable : "";
    const auto start = [](const Settings& settings) {
        NSArray* page = settings.page ? NSArray::of({NSString::of(settings.page)}) : NSArray::array();
        return startProgram(NSString::of(settings.program), page);
    };
    for (const bool isOfDesktop : {true, false})
        for (const Settings& settings : kPrograms)
            if ((desktop.find(settings.desktop) != desktop.npos) == isOfDesktop && start(settings))
                return true;
    return false;
}

}  // namespace pelvor
