// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/TextInput.h"

#include <xcb/xcb.h>

#include <algorithm>

namespace pelvor {

namespace {

constexpr std::size_t kEventCount = 64;

}  // namespace

void XTextInput::prepare() {
    _keyboard.prepare();
    _composer.prepare(_keyboard.context());
    _method.open();
}

void XTextInput::note(BackendWindow window, const xcb_key_press_event_t& event) {
    if (kindOf(event) == XCB_KEY_RELEASE) return _method.release(window, event);
    _events.push_back(std::make_shared<xcb_key_press_event_t>(event));
    if (_events.size() > kEventCount) _events.pop_front();
}

void XTextInput::interpret(BackendWindow window, const BackendKey& key) {
    if (!key.isDown) return;
    const auto event = std::ranges::find_if(_events, [&](const auto& candidate) {
        return candidate->detail == key.code + 8 && _keyboard.secondsOf(*candidate) == key.seconds;
    });
    if (event == _events.end() || !_method.take(window, key, *event)) keyCameBack(window, key);
}

void XTextInput::reset(BackendWindow window) {
    _composer.reset();
    _method.reset(window);
}

void XTextInput::composing(BackendWindow window, const Preedit::Shown& preedit) {
    _sink.preedit(window, preedit.text, preedit.caret, preedit.spans);
}

void XTextInput::keyCameBack(BackendWindow window, const BackendKey& key) {
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
    if (isTypedText(key))
        _sink.text(window, key.characters);
    else
        _sink.command(window, key);
}

}  // namespace pelvor
