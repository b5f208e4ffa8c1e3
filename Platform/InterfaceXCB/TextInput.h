// SPDX-License-Identifier: Apache-2.0
// XTextInput: what keys become: text, text that is being composed, or commands.
#pragma once

#include "InterfaceXCB/Composer.h"

namespace pelvor {

class XTextInput {
  public:
    XTextInput(XConnection& connection, BackendSink& sink, XKeyboard& keyboard)
        : _connection(connection), _sink(sink), _keyboard(keyboard) {}

    /// What takes too long before the first picture is shown.
    void prepare();
    void interpret(BackendWindow window, const BackendKey& key);
    void reset() { _composer.reset(); }

  private:
    void interpretHere(BackendWindow window, const BackendKey& key);

    XConnection& _connection;
    BackendSink& _sink;
    XKeyboard& _keyboard;
    XComposer _composer;
};

}  // namespace pelvor
