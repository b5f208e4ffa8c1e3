// SPDX-License-Identifier: Apache-2.0
// An object that does something when it ends.
#pragma once

#include "Prelude.h"

namespace pelvor {

class EndingObject : public NSObject {
    PELVOR_CLASS(EndingObject, NSObject);

  public:
    static Retained<EndingObject> make(std::function<void()> end);
    std::function<void()> end;

  protected:
    EndingObject() = default;
    ~EndingObject() {
        if (end) end();
    }
};

}  // namespace pelvor
