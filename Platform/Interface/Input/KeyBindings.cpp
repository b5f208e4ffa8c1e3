// SPDX-License-Identifier: Apache-2.0
#include "Interface/Input/KeyBindings.h"

#include <utility>

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSString.h"
#include "Interface/NSEvent.h"

namespace pelvor {
namespace {

constexpr std::uint32_t kModifiers = kBackendShift | kBackendControl | kBackendOption | kBackendCommand;
constexpr std::pair<char16_t, std::uint32_t> kSigns[] = {
    {u'^', kBackendControl}, {u'~', kBackendOption}, {u'@', kBackendCommand}, {u'$', kBackendShift}};

std::uint64_t keyOf(std::uint32_t modifiers, char16_t unit) {
    return (static_cast<std::uint64_t>(modifiers & kModifiers) << 16) | unit;
}

// 0 for a text that names no key.
std::uint64_t parse(std::u16string_view text) {
    std::uint32_t modifiers = 0;
    while (text.size() > 1) {
        std::uint32_t found = 0;
        for (auto [sign, modifier] : kSigns)
            if (text[0] == sign) found = modifier;
        if (!found) return 0;
        modifiers |= found;
        text.remove_prefix(1);
    }
    return text.empty() ? 0 : keyOf(modifiers, text[0]);
}

struct OwnBinding {
    const char16_t* key;
    const char* command;
};

// The bindings that desktops have in common.
constexpr OwnBinding kOwnBindings[] = {
    // Moving
    {u"\uF702", "moveLeft:"},
    {u"\uF703", "moveRight:"},
    {u"\uF700", "moveUp:"},
    {u"\uF701", "moveDown:"},
    {u"@\uF702", "moveWordLeft:"},
    {u"@\uF703", "moveWordRight:"},
    {u"@\uF700", "moveToBeginningOfParagraph:"},
    {u"@\uF701", "moveToEndOfParagraph:"},
    {u"\uF729", "moveToBeginningOfLine:"},
    {u"\uF72B", "moveToEndOfLine:"},
    {u"@\uF729", "moveToBeginningOfDocument:"},
    {u"@\uF72B", "moveToEndOfDocument:"},
    {u"\uF72C", "pageUp:"},
    {u"\uF72D", "pageDown:"},
    // Selecting
    {u"$\uF702", "moveLeftAndModifySelection:"},
    {u"$\uF703", "moveRightAndModifySelection:"},
    {u"$\uF700", "moveUpAndModifySelection:"},
    {u"$\uF701", "moveDownAndModifySelection:"},
    {u"@$\uF702", "moveWordLeftAndModifySelection:"},
    {u"@$\uF703", "moveWordRightAndModifySelection:"},
    {u"@$\uF700", "moveToBeginningOfParagraphAndModifySelection:"},
    {u"@$\uF701", "moveToEndOfParagraphAndModifySelection:"},
    {u"$\uF729", "moveToBeginningOfLineAndModifySelection:"},
    {u"$\uF72B", "moveToEndOfLineAndModifySelection:"},
    {u"@$\uF729", "moveToBeginningOfDocumentAndModifySelection:"},
    {u"@$\uF72B", "moveToEndOfDocumentAndModifySelection:"},
    {u"$\uF72C", "pageUpAndModifySelection:"},
    {u"$\uF72D", "pageDownAndModifySelection:"},
    {u"@a", "selectAll:"},
    // Deleting
    {u"\u007F", "deleteBackward:"},
    {u"$\u007F", "deleteBackward:"},
    {u"@\u007F", "deleteWordBackward:"},
    {u"@$\u007F", "deleteToBeginningOfLine:"},
    {u"\u0008", "deleteBackward:"},
    {u"\uF728", "deleteForward:"},
    {u"@\uF728", "deleteWordForward:"},
    {u"@$\uF728", "deleteToEndOfLine:"},
    // Inserting
    {u"\r", "insertNewline:"},
    {u"\n", "insertNewline:"},
    {u"\u0003", "insertNewline:"},
    {u"$\r", "insertLineBreak:"},
    {u"@\r", "insertNewlineIgnoringFieldEditor:"},
    {u"\t", "insertTab:"},
    {u"\u0019", "insertBacktab:"},
    {u"$\t", "insertBacktab:"},
    {u"$\u0019", "insertBacktab:"},
    {u"@\t", "selectNextKeyView:"},
    {u"@$\t", "selectPreviousKeyView:"},
    {u"@$\u0019", "selectPreviousKeyView:"},
    {u"~\t", "insertTabIgnoringFieldEditor:"},
    // The clipboard and what was done, for programs without menus
    {u"@c", "copy:"},
    {u"@x", "cut:"},
    {u"@v", "paste:"},
    {u"@\uF727", "copy:"},
    {u"$\uF727", "paste:"},
    {u"$\uF728", "cut:"},
    {u"@z", "undo:"},
    {u"@y", "redo:"},
    {u"@$z", "redo:"},
    // Ending and asking
    {u"\u001B", "cancelOperation:"},
    {u"\uF746", "showContextHelp:"},
    {u"~\u001B", "complete:"},
};

std::vector<SEL> commandsOf(id value) {
    std::vector<SEL> commands;
    auto add = [&](id each) {
        auto* name = cast<NSString>(each);
        if (name && name->length()) commands.push_back(registerSelector(name->toUTF8()));
    };
    if (auto* list = cast<NSArray>(value))
        for (id each : list) add(each);
    else
        add(value);
    return commands;
}

}  // namespace

KeyBindings::KeyBindings() {
    for (const OwnBinding& binding : kOwnBindings)
        _commands[parse(binding.key)] = {registerSelector(binding.command)};
}

std::u16string KeyBindings::add(NSDictionary* bindings) {
    for (id each : bindings->allKeys()) {
        auto* text = cast<NSString>(each);
        const std::u16string units = text ? text->toUTF16() : u"?";
        const std::uint64_t key = text ? parse(units) : 0;
        if (!key) return units;
        _commands[key] = commandsOf(bindings->objectForKey(each));
    }
    return u"";
}

// Letters and digits are looked up as the first layout with ASCII types them, without Shift's effect.
const std::vector<SEL>& KeyBindings::commandsFor(const BackendKey& key) const {
    static const std::vector<SEL> none;
    for (const std::u16string* text :
         {&key.charactersIgnoringModifiers, &key.shortcutCharacters, &key.characters}) {
        if (text->empty()) continue;
        char16_t unit = (*text)[0];
        if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + (u'a' - u'A'));
        auto found = _commands.find(keyOf(key.modifiers, unit));
        if (found != _commands.end()) return found->second;
    }
    return none;
}

NSDictionary* KeyBindings::dictionary() const {
    NSMutableDictionary* result = NSMutableDictionary::dictionary();
    for (const auto& [key, commands] : _commands) {
        std::u16string text;
        for (auto [sign, modifier] : kSigns)
            if ((key >> 16) & modifier) text += sign;
        text += static_cast<char16_t>(key & 0xFFFF);
        NSMutableArray* names = NSMutableArray::array();
        for (SEL command : commands) names->addObject(NSString::ofUTF8(command.name()));
        if (names->count())
            result->setObject_forKey(names->count() == 1 ? names->objectAtIndex(0) : names,
                                     NSString::of(text));
    }
    return result;
}

}  // namespace pelvor
