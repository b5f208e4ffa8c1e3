// SPDX-License-Identifier: Apache-2.0
#include "Interface/KeyEquivalents.h"

#include <unicode/uchar.h>

#include "Foundation/LibraryTexts.h"
#include "Interface/NSEvent.h"

namespace pelvor {
namespace {

constexpr NSUInteger kModifiers = NSCommandKeyMask | NSAlternateKeyMask | NSControlKeyMask | NSShiftKeyMask;
constexpr unichar kFirstFunctionKey = 0xF700, kLastFunctionKey = 0xF8FF;

struct Name {
    unsigned key;
    NSString* text;
};

// In the order in which they are shown.
const Name kModifierNames[] = {
    {NSControlKeyMask, u"_Super"_ns},
    {NSCommandKeyMask, u"_Ctrl"_ns},
    {NSAlternateKeyMask, u"_Alt"_ns},
    {NSShiftKeyMask, u"_Shift"_ns},
};

const Name kKeyNames[] = {
    {' ', u"_Space"_ns},
    {'\b', u"_Backspace"_ns},
    {0x7f, u"_Backspace"_ns},
    {'\t', u"_Tab"_ns},
    {'\r', u"_Return"_ns},
    {'\n', u"_Return"_ns},
    {3, u"_Enter"_ns},
    {0x1b, u"_Esc"_ns},
    {NSUpArrowFunctionKey, u"_Up"_ns},
    {NSDownArrowFunctionKey, u"_Down"_ns},
    {NSLeftArrowFunctionKey, u"_Left"_ns},
    {NSRightArrowFunctionKey, u"_Right"_ns},
    {NSInsertFunctionKey, u"_Ins"_ns},
    {NSDeleteFunctionKey, u"_Del"_ns},
    {NSHomeFunctionKey, u"_Home"_ns},
    {NSEndFunctionKey, u"_End"_ns},
    {NSPageUpFunctionKey, u"_Page Up"_ns},
    {NSPageDownFunctionKey, u"_Page Down"_ns},
};

bool isFunctionKey(unichar key) { return key >= kFirstFunctionKey && key <= kLastFunctionKey; }

// Whether nobody needs Shift to type the key on any layout.
bool isNamedKey(unichar key) { return key <= ' ' || key == 0x7f || isFunctionKey(key); }

}  // namespace

bool isKeyEquivalent(NSString* equivalent, NSUInteger mask, NSString* characters, NSUInteger modifiers) {
    if (!equivalent || !characters || equivalent->length() == 0 || characters->length() == 0) return false;
    const unichar wanted = equivalent->characterAtIndex(0), key = characters->characterAtIndex(0);
    const NSUInteger different = (mask ^ modifiers) & kModifiers;
    if (different & ~NSUInteger{NSShiftKeyMask}) return false;
    if (u_tolower(wanted) != u_tolower(key)) return false;
    const bool isLetter = u_tolower(wanted) != u_toupper(wanted);
    const bool needsShift = (mask & NSShiftKeyMask) || (isLetter && u_isupper(wanted));
    if (!needsShift && !isLetter && !isNamedKey(wanted)) return true;
    return needsShift == ((modifiers & NSShiftKeyMask) != 0);
}

NSString* modifierText(NSUInteger modifiers) {
    NSString* text = u""_ns;
    for (const auto& [mask, name] : kModifierNames)
        if (modifiers & mask) text = text->stringByAppendingFormat(u"%@+"_ns, localizedLibraryText(name));
    return text;
}

NSString* keyText(unichar character) {
    for (const auto& [key, name] : kKeyNames)
        if (key == character) return localizedLibraryText(name);
    if (character >= NSF1FunctionKey && character <= NSF35FunctionKey)
        return NSString::stringWithFormat(u"F%d"_ns, character - NSF1FunctionKey + 1);
    const unichar capital = static_cast<unichar>(u_toupper(character));
    return NSString::stringWithCharacters_length(&capital, 1);
}

NSString* keyEquivalentText(NSString* equivalent, NSUInteger mask) {
    if (!equivalent || equivalent->length() == 0) return u""_ns;
    const unichar key = equivalent->characterAtIndex(0);
    if (u_tolower(key) != key) mask |= NSShiftKeyMask;
    return modifierText(mask)->stringByAppendingString(keyText(key));
}

}  // namespace pelvor
