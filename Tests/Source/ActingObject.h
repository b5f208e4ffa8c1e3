// SPDX-License-Identifier: Apache-2.0
// An object that does something when it is told to, and when it ends.
#pragma once

#include "Prelude.h"

namespace pelvor {

class ActingObject : public NSObject {
    PELVOR_CLASS(ActingObject, NSObject);

  public:
    static Retained<ActingObject> endingWith(std::function<void()> end);
    static Retained<ActingObject> acting(std::function<void(id)> action);
    /// The action is given the object, and may let go of it.
    void act() { std::function<void(id)>{action}(this); }

    std::function<void(id)> action;
    std::function<void()> end;

  protected:
    ActingObject() = default;
    ~ActingObject() {
        if (end) end();
    }
};

}  // namespace pelvor
