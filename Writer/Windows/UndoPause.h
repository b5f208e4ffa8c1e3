// SPDX-License-Identifier: Apache-2.0
// Changes that cannot be undone by themselves.
#pragma once

#include "Foundation/NSUndoManager.h"

namespace pelvor {

/// As long as it lives, nothing is registered with the manager, which may be null.
class UndoPause {
  public:
    explicit UndoPause(NSUndoManager* manager) {
        _manager.set(manager);
        if (manager) manager->disableUndoRegistration();
    }
    ~UndoPause() {
        if (_manager) _manager->enableUndoRegistration();
    }
    UndoPause(const UndoPause&) = delete;

  private:
    Retained<NSUndoManager> _manager;
};

}  // namespace pelvor
