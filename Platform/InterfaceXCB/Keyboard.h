// SPDX-License-Identifier: Apache-2.0
// XKeyboard: what keys give under the layouts of the keyboard.
#pragma once

#include <bitset>
#include <optional>

#include "Interface/Backend/Backend.h"
#include "InterfaceXCB/Connection.h"
#include "InterfaceXCB/LayoutRegistry.h"

namespace pelvor {

struct XKeymapEnd {
    void operator()(xkb_context* context) const;
    void operator()(xkb_keymap* keymap) const;
    void operator()(xkb_state* state) const;
};

/// The keymap is fetched before the first key, and again before the next key after it changed. Which layout
/// and modifiers a key is pressed under stands in its event.
class XKeyboard {
  public:
    explicit XKeyboard(XConnection& connection) : _connection(connection) {}

    /// Fetches what keys need, if that has not been done.
    void prepare();
    xkb_context* context();

    BackendKey key(const xcb_key_press_event_t& event);
    double secondsOf(const xcb_key_press_event_t& event);
    /// Releases may have gone to another window.
    void forgetKeysDown() { _keysDown.reset(); }

    std::vector<BackendLayout> layouts();
    const std::vector<BackendLayout>& knownLayouts() { return _registry.all(); }
    bool setLayout(std::uint32_t group);
    /// Whether the event was about the keyboard; `isChanged` says whether the layouts or the current one are
    /// others.
    bool handle(const XAnyEvent& event, bool& isChanged);

    /// BackendModifiers, of the state of an event.
    static std::uint32_t modifiers(std::uint32_t state);

  private:
    bool startExtension();
    void fetchKeymap();
    void readLayouts();
    xkb_keysym_t symbol(xkb_keycode_t code, std::uint32_t modifiers, std::uint32_t group);
    std::u16string shortcutCharacters(xkb_keycode_t code, std::uint32_t state, std::uint32_t group);

    XConnection& _connection;
    std::unique_ptr<xkb_context, XKeymapEnd> _context;
    std::unique_ptr<xkb_keymap, XKeymapEnd> _keymap;
    std::unique_ptr<xkb_state, XKeymapEnd> _state;
    std::bitset<256> _keysDown;
    XLayoutRegistry _registry;
    std::vector<BackendLayout> _layouts;  ///< empty until somebody asks
    std::uint32_t _group = 0;
    std::optional<std::uint32_t> _toldGroup;  ///< of the last notice, which `setLayout` is ahead of
    std::uint8_t _firstEvent = 0;
    bool _isStarted = false;
    bool _isStale = true;
};

/// What a symbol types, a function key its NS…FunctionKey unit; "" if nothing.
std::u16string charactersOfSymbol(xkb_keysym_t symbol);
bool isModifierSymbol(xkb_keysym_t symbol);
/// The layouts as a server has them in its _XKB_RULES_NAMES: rules, model, layouts, variants and options with
/// a zero byte behind each. Display names and languages are not in there.
std::vector<BackendLayout> layoutsOfRules(std::string_view rules);

}  // namespace pelvor
