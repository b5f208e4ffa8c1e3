// SPDX-License-Identifier: Apache-2.0
// A target of actions.
#pragma once

#include "Prelude.h"

namespace pelvor {

/// Counts the actions that it gets by "act:", and does what it is told.
class ActionTarget final : public NSObject {
    PELVOR_CLASS(ActionTarget, NSObject);

  public:
    void act(id sender) {
        ++count;
        last.set(sender);
        if (reaction) reaction();
    }

    int count = 0;
    Retained<Object> last;
    std::function<void()> reaction;
};

}  // namespace pelvor
