// SPDX-License-Identifier: Apache-2.0
// Context menus that are opened by a key.
#pragma once

namespace pelvor {

class NSEvent;
class NSWindow;

/// Opens the context menu of the window's first responder, or of the next responder that has one, if the
/// event is a press of the key for it. Returns whether one was opened.
bool openContextMenu(NSEvent* event, NSWindow* window);

}  // namespace pelvor
