// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Composer.h"

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <utility>

#include "InterfaceXCB/Text.h"

namespace pelvor {

namespace {

/// Of the environment. Sequences give UTF-8, so that a locale of another encoding has none.
std::string localeName() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const char* value = std::getenv(name); value && *value) {
            const std::string locale = value;
            const bool isUTF8 =
                locale.find("UTF-8") != std::string::npos || locale.find("utf8") != std::string::npos;
            return isUTF8 && !locale.starts_with("C.") ? locale : "en_US.UTF-8";
        }
    return "en_US.UTF-8";
}

}  // namespace

void XComposeEnd::operator()(xkb_compose_table* table) const { xkb_compose_table_unref(table); }
void XComposeEnd::operator()(xkb_compose_state* state) const { xkb_compose_state_unref(state); }

void XComposer::prepare(xkb_context* context) {
    if (std::exchange(_isPrepared, true) || !context) return;
    std::unique_ptr<xkb_compose_table, XComposeEnd> table(
        xkb_compose_table_new_from_locale(context, localeName().c_str(), XKB_COMPOSE_COMPILE_NO_FLAGS));
    if (table) _state.reset(xkb_compose_state_new(table.get(), XKB_COMPOSE_STATE_NO_FLAGS));
}

void XComposer::reset() {
    if (_state) xkb_compose_state_reset(_state.get());
}

XComposer::Result XComposer::take(xkb_keysym_t symbol) {
    if (!_state || isModifierSymbol(symbol)) return {};
    const bool wasComposing = xkb_compose_state_get_status(_state.get()) == XKB_COMPOSE_COMPOSING;
    xkb_compose_state_feed(_state.get(), symbol);
    switch (xkb_compose_state_get_status(_state.get())) {
        case XKB_COMPOSE_COMPOSING:
            return {Result::Kind::taken, {}};
        case XKB_COMPOSE_COMPOSED: {
            std::string text(static_cast<std::size_t>(xkb_compose_state_get_utf8(_state.get(), nullptr, 0)),
                             '\0');
            xkb_compose_state_get_utf8(_state.get(), text.data(), text.size() + 1);
            reset();
            return {Result::Kind::composed, utf16(text)};
        }
        case XKB_COMPOSE_CANCELLED:
            reset();
            // There is no such sequence: the keys before are forgotten, and this key is for itself.
            if (wasComposing && (symbol == XKB_KEY_BackSpace || symbol == XKB_KEY_Escape))
                return {Result::Kind::taken, {}};
            return {};
        case XKB_COMPOSE_NOTHING:
            break;
    }
    return {};
}

}  // namespace pelvor
