// SPDX-License-Identifier: Apache-2.0
#include "EndingObject.h"

namespace pelvor {
PELVOR_DEFINE_CLASS(EndingObject, foundationLibrary) {}

Retained<EndingObject> EndingObject::make(std::function<void()> end) {
    auto object = pelvor::make<EndingObject>();
    object->end = std::move(end);
    return object;
}

}  // namespace pelvor
