// SPDX-License-Identifier: Apache-2.0
#include "ActingObject.h"

namespace pelvor {

constinit Library actingLibrary{"Acting", {}, kClassesOf<ActingObject>, {}};
PELVOR_DEFINE_CLASS(ActingObject, actingLibrary) { methods.instance<"act", &ActingObject::act>(); }

Retained<ActingObject> ActingObject::endingWith(std::function<void()> end) {
    auto object = make<ActingObject>();
    object->end = std::move(end);
    return object;
}

Retained<ActingObject> ActingObject::acting(std::function<void(id)> action) {
    auto object = make<ActingObject>();
    object->action = std::move(action);
    return object;
}

}  // namespace pelvor
