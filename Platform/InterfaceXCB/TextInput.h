// SPDX-License-Identifier: Apache-2.0
// XTextInput: what keys become: text, text that is being composed, or commands.
#pragma once

#include "InterfaceXCB/Composer.h"
#include "InterfaceXCB/InputMethod.h"

namespace pelvor {

/// Keys go to the input method, if there is one; those that it has no use for are interpreted here.
class XTextInput : private XInputMethod::Client {
  public:
    XTextInput(XConnection& connection, BackendSink& sink, XKeyboard& keyboard)
        : _sink(sink), _keyboard(keyboard), _method(connection, *this) {}

    /// What takes too long before the first picture is shown.
    void prepare();
    XInputMethod& method() { return _method; }

    /// Keeps a key as the server sent it, for input methods; tells them of releases.
    void note(BackendWindow window, const xcb_key_press_event_t& event);
    void interpret(BackendWindow window, const BackendKey& key);
    /// Forgets half a sequence and what is being composed.
    void reset(BackendWindow window);

  private:
    void keyCameBack(BackendWindow window, const BackendKey& key) override;
    void composed(BackendWindow window, std::u16string_view text) override { _sink.text(window, text); }
    void composing(BackendWindow window, const Preedit::Shown& preedit) override;

    BackendSink& _sink;
    XKeyboard& _keyboard;
    XComposer _composer;
    XInputMethod _method;
    std::deque<std::shared_ptr<xcb_key_press_event_t>> _events;  ///< the latest keys
};

}  // namespace pelvor
