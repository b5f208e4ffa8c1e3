// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/TextInput.h"

namespace pelvor {

namespace {

bool typesText(const BackendKey& key) {
    if (key.characters.empty() || key.modifiers & (kBackendCommand | kBackendOption | kBackendControl))
        return false;
    const char16_t first = key.characters[0];
    return first >= 0x20 && first != 0x7F && (first < 0xF700 || first > 0xF8FF);
}

}  // namespace

void XTextInput::prepare() {
    _keyboard.prepare();
    _composer.prepare(_keyboard.context());
}

void XTextInput::interpret(BackendWindow window, const BackendKey& key) {
    if (key.isDown) interpretHere(window, key);
}

void XTextInput::interpretHere(BackendWindow window, const BackendKey& key) {
    if (isModifierSymbol(key.symbol)) return;
    prepare();
    const XComposer::Result composed = _composer.take(key.symbol);
    switch (composed.kind) {
        case XComposer::Result::Kind::taken:
            return;
        case XComposer::Result::Kind::composed:
            return _sink.text(window, composed.text);
        case XComposer::Result::Kind::plain:
            break;
    }
    if (typesText(key))
        _sink.text(window, key.characters);
    else
        _sink.command(window, key);
}

}  // namespace pelvor
