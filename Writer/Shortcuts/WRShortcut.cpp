// SPDX-License-Identifier: Apache-2.0
#include "Writer/Shortcuts/WRShortcut.h"

#include <algorithm>
#include <optional>

#include "Foundation/NSArray.h"
#include "Interface/KeyEquivalents.h"
#include "Interface/NSEvent.h"
#include "Interface/NSMenuItem.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "Writer/Shortcuts/ShortcutsLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRShortcut, shortcutsLibrary) {
    methods.classLevel<"shortcutWithText:", &WRShortcut::shortcutWithText>();
    methods.classLevel<"shortcutWithKeyEquivalent:modifierMask:",
                       &WRShortcut::shortcutWithKeyEquivalent_modifierMask>();
    methods.classLevel<"shortcutOfItem:", &WRShortcut::shortcutOfItem>();
    methods.instance<"isMultikey", &WRShortcut::isMultikey>();
    methods.instance<"isFunctionKey", &WRShortcut::isFunctionKey>();
    methods.instance<"keyString", &WRShortcut::keyString>();
    methods.instance<"caseSensitiveKeyString", &WRShortcut::caseSensitiveKeyString>();
    methods.instance<"caseSensitiveModifiers", &WRShortcut::caseSensitiveModifiers>();
    methods.instance<"displayKeyString", &WRShortcut::displayKeyString>();
    methods.instance<"displayModifierString", &WRShortcut::displayModifierString>();
}

namespace {

struct Name {
    std::string_view text;
    unsigned value;
};

constexpr Name kModifierNames[] = {
    {"Ctrl", NSCommandKeyMask},
    {"Alt", NSAlternateKeyMask},
    {"Shift", NSShiftKeyMask},
    {"Super", NSControlKeyMask},
};

constexpr Name kKeyNames[] = {
    {"Space", ' '},
    {"Plus", '+'},
    {"Tab", NSTabCharacter},
    {"Return", NSCarriageReturnCharacter},
    {"Backspace", NSDeleteCharacter},
    {"Up", NSUpArrowFunctionKey},
    {"Down", NSDownArrowFunctionKey},
    {"Left", NSLeftArrowFunctionKey},
    {"Right", NSRightArrowFunctionKey},
    {"Ins", NSInsertFunctionKey},
    {"Del", NSDeleteFunctionKey},
    {"Home", NSHomeFunctionKey},
    {"End", NSEndFunctionKey},
    {"PageUp", NSPageUpFunctionKey},
    {"PageDown", NSPageDownFunctionKey},
};

template <std::size_t N>
unsigned valueOf(const Name (&names)[N], std::string_view text) {
    const auto* found = std::find_if(names, names + N, [=](const Name& name) { return name.text == text; });
    return found == names + N ? 0 : found->value;
}

NSString* textOfUnit(unichar unit) { return NSString::stringWithCharacters_length(&unit, 1); }

unichar characterNamed(NSString* name) {
    if (name->length() == 1) return name->lowercaseString()->characterAtIndex(0);
    const std::string text = name->toUTF8();
    if (const unsigned key = valueOf(kKeyNames, text)) return static_cast<unichar>(key);
    const int number = text.starts_with('F') ? name->substringFromIndex(1)->intValue() : 0;
    if (number < 1 || number > 35 || text != "F" + std::to_string(number)) return 0;
    return static_cast<unichar>(NSF1FunctionKey + number - 1);
}

std::optional<WRShortcut::Key> keyOfText(NSString* text) {
    WRShortcut::Key key;
    NSArray* parts = text->componentsSeparatedByString(u"+"_ns);
    for (NSUInteger i = 0; i + 1 < parts->count(); ++i) {
        const unsigned modifier =
            valueOf(kModifierNames, static_cast<NSString*>(parts->objectAtIndex(i))->toUTF8());
        if (!modifier) return std::nullopt;
        key.modifiers |= modifier;
    }
    key.character = characterNamed(static_cast<NSString*>(parts->lastObject()));
    if (!key.character) return std::nullopt;
    return key;
}

NSString* textOfKey(const WRShortcut::Key& key) {
    return modifierText(key.modifiers)->stringByAppendingString(keyText(key.character));
}

}  // namespace

WRShortcut* WRShortcut::shortcutWithText(NSString* text) {
    if (!text) return nullptr;
    auto shortcut = make<WRShortcut>();
    for (id part : text->componentsSeparatedByString(u" "_ns)) {
        const auto key = keyOfText(static_cast<NSString*>(part));
        if (!key) return nullptr;
        shortcut->_keys.push_back(*key);
    }
    return std::move(shortcut).autorelease();
}

WRShortcut* WRShortcut::shortcutWithKeyEquivalent_modifierMask(NSString* equivalent, NSUInteger mask) {
    if (!equivalent || equivalent->length() == 0) return nullptr;
    NSString* small = equivalent->lowercaseString();
    if (!small->isEqualToString(equivalent)) mask |= NSShiftKeyMask;
    auto shortcut = make<WRShortcut>();
    shortcut->_keys.push_back({small->characterAtIndex(0), mask});
    return std::move(shortcut).autorelease();
}

bool WRShortcut::Key::matches(NSEvent* event) const {
    return isKeyEquivalent(textOfUnit(character), modifiers, event->shortcutCharacters(),
                           event->modifierFlags());
}

bool WRShortcut::begins(const WRShortcut* other) const {
    return _keys.size() <= other->_keys.size() &&
           std::equal(_keys.begin(), _keys.end(), other->_keys.begin());
}

// MARK: What menu items ask

WRShortcut* WRShortcut::shownShortcutOfItem(NSMenuItem* item) {
    id shown = nullptr;
    return _getMultikeyShortcut_andOriginalTitle(item, &shown, nullptr) ? cast<WRShortcut>(shown) : nullptr;
}

WRShortcut* WRShortcut::shortcutOfItem(NSMenuItem* item) {
    if (!item) return nullptr;
    if (WRShortcut* shown = shownShortcutOfItem(item)) return shown;
    return shortcutWithKeyEquivalent_modifierMask(item->keyEquivalent(), item->keyEquivalentModifierMask());
}

bool WRShortcut::isFunctionKey() {
    return _keys.front().character >= NSUpArrowFunctionKey && _keys.front().character <= 0xF8FF;
}

NSString* WRShortcut::keyString() { return textOfUnit(_keys.front().character); }

NSString* WRShortcut::caseSensitiveKeyString() {
    return _keys.front().modifiers & NSShiftKeyMask ? keyString()->uppercaseString() : keyString();
}

NSUInteger WRShortcut::caseSensitiveModifiers() { return _keys.front().modifiers; }

NSString* WRShortcut::displayModifierString() { return modifierText(_keys.front().modifiers); }

NSString* WRShortcut::displayKeyString() {
    std::vector<Key> keys = _keys;
    keys.front().modifiers = 0;
    return textOf(keys);
}

NSString* WRShortcut::textOf(const std::vector<Key>& keys) {
    NSString* text = u""_ns;
    for (const Key& key : keys)
        text = text->length() ? text->stringByAppendingFormat(u" %@"_ns, textOfKey(key)) : textOfKey(key);
    return text;
}

bool WRShortcut::isEqual(id other) {
    auto* shortcut = cast<WRShortcut>(other);
    return shortcut && shortcut->_keys == _keys;
}

NSString* WRShortcut::description() { return textOf(_keys); }

}  // namespace pelvor
