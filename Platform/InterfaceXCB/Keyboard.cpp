// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Keyboard.h"

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <utility>

#include "InterfaceXCB/Text.h"

// A field of its structures has the name of a keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace pelvor {

namespace {

constexpr std::uint32_t kCoreModifiers = 0xFF;
constexpr std::uint32_t kLayoutShift = 13;  // of the state of an event
constexpr std::uint32_t kIgnoredModifiers =
    XCB_MOD_MASK_LOCK | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

struct SymbolCharacter {
    xkb_keysym_t symbol;
    char16_t character;
};
/// Keys that type what Unicode has no character for, or that have a character of their own by tradition.
constexpr SymbolCharacter kFunctionKeys[] = {
    {XKB_KEY_Up, 0xF700},         {XKB_KEY_Down, 0xF701},
    {XKB_KEY_Left, 0xF702},       {XKB_KEY_Right, 0xF703},
    {XKB_KEY_KP_Up, 0xF700},      {XKB_KEY_KP_Down, 0xF701},
    {XKB_KEY_KP_Left, 0xF702},    {XKB_KEY_KP_Right, 0xF703},
    {XKB_KEY_Insert, 0xF727},     {XKB_KEY_KP_Insert, 0xF727},
    {XKB_KEY_Delete, 0xF728},     {XKB_KEY_KP_Delete, 0xF728},
    {XKB_KEY_Home, 0xF729},       {XKB_KEY_KP_Home, 0xF729},
    {XKB_KEY_Begin, 0xF72A},      {XKB_KEY_KP_Begin, 0xF72A},
    {XKB_KEY_End, 0xF72B},        {XKB_KEY_KP_End, 0xF72B},
    {XKB_KEY_Page_Up, 0xF72C},    {XKB_KEY_KP_Page_Up, 0xF72C},
    {XKB_KEY_Page_Down, 0xF72D},  {XKB_KEY_KP_Page_Down, 0xF72D},
    {XKB_KEY_Print, 0xF72E},      {XKB_KEY_Scroll_Lock, 0xF72F},
    {XKB_KEY_Pause, 0xF730},      {XKB_KEY_Sys_Req, 0xF731},
    {XKB_KEY_Break, 0xF732},      {XKB_KEY_Menu, 0xF735},
    {XKB_KEY_Clear, 0xF739},      {XKB_KEY_Select, 0xF741},
    {XKB_KEY_Execute, 0xF742},    {XKB_KEY_Undo, 0xF743},
    {XKB_KEY_Redo, 0xF744},       {XKB_KEY_Find, 0xF745},
    {XKB_KEY_Help, 0xF746},       {XKB_KEY_BackSpace, 0x7F},
    {XKB_KEY_Tab, 0x09},          {XKB_KEY_KP_Tab, 0x09},
    {XKB_KEY_ISO_Left_Tab, 0x19}, {XKB_KEY_Return, 0x0D},
    {XKB_KEY_KP_Enter, 0x03},     {XKB_KEY_Escape, 0x1B},
};

bool isKeypadSymbol(xkb_keysym_t symbol) { return symbol >= XKB_KEY_KP_Space && symbol <= XKB_KEY_KP_Equal; }

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        parts.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

}  // namespace

std::u16string charactersOfSymbol(xkb_keysym_t symbol) {
    if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F35)
        return {static_cast<char16_t>(0xF704 + symbol - XKB_KEY_F1)};
    const auto* found = std::ranges::find(kFunctionKeys, symbol, &SymbolCharacter::symbol);
    if (found != std::end(kFunctionKeys)) return {found->character};
    const char32_t character = xkb_keysym_to_utf32(symbol);
    return character ? utf16(character) : std::u16string();
}

bool isModifierSymbol(xkb_keysym_t symbol) {
    return (symbol >= XKB_KEY_Shift_L && symbol <= XKB_KEY_Hyper_R) ||
           (symbol >= XKB_KEY_ISO_Lock && symbol <= XKB_KEY_ISO_Level5_Lock) || symbol == XKB_KEY_Num_Lock ||
           symbol == XKB_KEY_Mode_switch;
}

std::vector<BackendLayout> layoutsOfRules(std::string_view rules) {
    std::vector<std::string> fields = split(rules, '\0');
    fields.resize(std::max<std::size_t>(fields.size(), 4));
    std::vector<std::string> variants = split(fields[3], ',');
    std::vector<BackendLayout> layouts;
    for (const std::string& name : split(fields[2], ',')) {
        const std::size_t i = layouts.size();
        const std::string variant = i < variants.size() ? variants[i] : "";
        BackendLayout layout;
        layout.group = static_cast<std::uint32_t>(i);
        layout.name = variant.empty() ? name : name + "(" + variant + ")";
        layout.shortName = name;
        layouts.push_back(std::move(layout));
    }
    return layouts;
}

// MARK: Keymap

void XKeymapEnd::operator()(xkb_context* context) const { xkb_context_unref(context); }
void XKeymapEnd::operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
void XKeymapEnd::operator()(xkb_state* state) const { xkb_state_unref(state); }

xkb_context* XKeyboard::context() {
    if (!_context) _context.reset(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    return _context.get();
}

bool XKeyboard::startExtension() {
    if (std::exchange(_isStarted, true)) return _firstEvent != 0;
    if (!xkb_x11_setup_xkb_extension(_connection, XKB_X11_MIN_MAJOR_XKB_VERSION,
                                     XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                     nullptr, nullptr, &_firstEvent, nullptr))
        return false;
    constexpr std::uint16_t kWanted = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
                                      XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    constexpr std::uint16_t kMapParts = 0xFF;
    xcb_xkb_select_events(_connection, XCB_XKB_ID_USE_CORE_KBD, kWanted, 0, kWanted, kMapParts, kMapParts,
                          nullptr);
    xcb_discard_reply(_connection,
                      xcb_xkb_per_client_flags(_connection, XCB_XKB_ID_USE_CORE_KBD,
                                               XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                                               XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0)
                          .sequence);
    return true;
}

void XKeyboard::fetchKeymap() {
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(_connection);
    if (device < 0 || !context()) return;
    std::unique_ptr<xkb_keymap, XKeymapEnd> keymap(
        xkb_x11_keymap_new_from_device(context(), _connection, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap) return;
    _state.reset(xkb_state_new(keymap.get()));
    _keymap = std::move(keymap);
    const auto state =
        _connection.wait<xcb_xkb_get_state_reply_t>(xcb_xkb_get_state(_connection, XCB_XKB_ID_USE_CORE_KBD));
    if (state) _group = state->group;
    if (!_toldGroup) _toldGroup = _group;
}

void XKeyboard::prepare() {
    if (!_isStale || _connection.isLost() || !startExtension()) return;
    _isStale = false;
    _layouts.clear();
    fetchKeymap();
}

xkb_keysym_t XKeyboard::symbol(xkb_keycode_t code, std::uint32_t modifiers, std::uint32_t group) {
    if (!_state) return XKB_KEY_NoSymbol;
    xkb_state_update_mask(_state.get(), modifiers & kCoreModifiers, 0, 0, 0, 0, group);
    return xkb_state_key_get_one_sym(_state.get(), code);
}

std::uint32_t XKeyboard::modifiers(std::uint32_t state) {
    constexpr struct {
        std::uint32_t mask;
        std::uint32_t modifier;
    } kMasks[] = {{XCB_MOD_MASK_LOCK, kBackendCapsLock},
                  {XCB_MOD_MASK_SHIFT, kBackendShift},
                  {XCB_MOD_MASK_CONTROL, kBackendCommand},
                  {XCB_MOD_MASK_1, kBackendOption},
                  {XCB_MOD_MASK_4, kBackendControl}};
    std::uint32_t modifiers = 0;
    for (const auto& row : kMasks)
        if (state & row.mask) modifiers |= row.modifier;
    return modifiers;
}

/// Prefers the current layout, so that a key is what is written on it, as long as a shortcut can name it.
std::u16string XKeyboard::shortcutCharacters(xkb_keycode_t code, std::uint32_t state, std::uint32_t group) {
    const std::uint32_t kept = state & (XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_2);  // and the numbers of a keypad
    const std::uint32_t count = _keymap ? xkb_keymap_num_layouts(_keymap.get()) : 0;
    for (std::uint32_t i = 0; i <= count; ++i) {
        const xkb_keysym_t found = symbol(code, kept, i == 0 ? group : i - 1);
        const char32_t character = xkb_keysym_to_utf32(found);
        if (character >= 0x20 && character < 0x7F) return utf16(character);
    }
    return charactersOfSymbol(symbol(code, kept, group));
}

double XKeyboard::secondsOf(const xcb_key_press_event_t& event) { return _connection.secondsOf(event.time); }

BackendKey XKeyboard::key(const xcb_key_press_event_t& event) {
    prepare();
    BackendKey key;
    key.isDown = kindOf(event) == XCB_KEY_PRESS;
    key.isRepeat = key.isDown && _keysDown[event.detail];
    _keysDown[event.detail] = key.isDown;
    key.code = static_cast<std::uint16_t>(event.detail - 8);
    key.group = event.state >> kLayoutShift & 3;
    key.symbol = symbol(event.detail, event.state, key.group);
    key.modifiers = modifiers(event.state) | (isKeypadSymbol(key.symbol) ? kBackendNumericPad : 0U);
    key.characters = charactersOfSymbol(key.symbol);
    key.charactersIgnoringModifiers =
        charactersOfSymbol(symbol(event.detail, event.state & ~kIgnoredModifiers, key.group));
    key.shortcutCharacters = shortcutCharacters(event.detail, event.state, key.group);
    key.seconds = _connection.secondsOf(event.time);

    // The state of an event is that before it; a modifier key changes it.
    std::uint32_t changed = 0;
    switch (key.symbol) {
        case XKB_KEY_Shift_L:
        case XKB_KEY_Shift_R:
            changed = kBackendShift;
            break;
        case XKB_KEY_Control_L:
        case XKB_KEY_Control_R:
            changed = kBackendCommand;
            break;
        case XKB_KEY_Alt_L:
        case XKB_KEY_Alt_R:
        case XKB_KEY_Meta_L:
        case XKB_KEY_Meta_R:
            changed = kBackendOption;
            break;
        case XKB_KEY_Super_L:
        case XKB_KEY_Super_R:
            changed = kBackendControl;
            break;
    }
    key.modifiers = key.isDown ? key.modifiers | changed : key.modifiers & ~changed;
    return key;
}

// MARK: Layouts

std::vector<BackendLayout> XKeyboard::layouts() {
    prepare();
    if (_connection.isLost() || !_keymap) return {};
    if (_layouts.empty()) readLayouts();
    // After a change of the layouts the server may name a group that is no more; keys use the groups in turn.
    const std::size_t current = _layouts.empty() ? 0 : _group % _layouts.size();
    for (BackendLayout& layout : _layouts) layout.isCurrent = layout.group == current;
    return _layouts;
}

void XKeyboard::readLayouts() {
    const XProperty rules = _connection.property(_connection.root(), _connection[Atom::_XKB_RULES_NAMES]);
    _layouts = layoutsOfRules(rules.bytes);
    _layouts.resize(xkb_keymap_num_layouts(_keymap.get()));
    for (std::uint32_t group = 0; group < _layouts.size(); ++group) {
        BackendLayout& layout = _layouts[group];
        const char* shown = xkb_keymap_layout_get_name(_keymap.get(), group);
        const BackendLayout* known = _registry.find(layout.name);
        layout.group = group;
        if (layout.name.empty()) layout.name = shown ? shown : "group " + std::to_string(group + 1);
        layout.displayName = known ? known->displayName : shown ? shown : layout.name;
        if (known) layout.language = known->language;
    }
}

bool XKeyboard::setLayout(std::uint32_t group) {
    prepare();
    if (_connection.isLost() || !_keymap || group >= xkb_keymap_num_layouts(_keymap.get())) return false;
    xcb_xkb_latch_lock_state(_connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, static_cast<std::uint8_t>(group),
                             0, 0, 0);
    const auto state =
        _connection.wait<xcb_xkb_get_state_reply_t>(xcb_xkb_get_state(_connection, XCB_XKB_ID_USE_CORE_KBD));
    if (state) _group = state->group;
    return state && state->group == group;
}

bool XKeyboard::handle(const XAnyEvent& event, bool& isChanged) {
    isChanged = false;
    if (kindOf(event) == XCB_PROPERTY_NOTIFY) {
        // The names of the layouts, which come behind a new keymap.
        const auto& change = as<xcb_property_notify_event_t>(event);
        if (change.window != _connection.root() || change.atom != _connection[Atom::_XKB_RULES_NAMES])
            return false;
        _layouts.clear();
        isChanged = _firstEvent != 0;
        return true;
    }
    if (_firstEvent == 0 || kindOf(event) != _firstEvent) return false;
    const std::uint8_t kind = as<xcb_generic_event_t>(event).pad0;  // of the extension's own
    if (kind == XCB_XKB_STATE_NOTIFY) {
        const auto& state = as<xcb_xkb_state_notify_event_t>(event);
        _group = state.group;
        isChanged = std::exchange(_toldGroup, _group) != _group;
    } else if (kind == XCB_XKB_NEW_KEYBOARD_NOTIFY || kind == XCB_XKB_MAP_NOTIFY) {
        // Also told when another device types; several times for one change. The keymap is fetched once.
        isChanged = !std::exchange(_isStale, true);
    }
    return true;
}

}  // namespace pelvor
