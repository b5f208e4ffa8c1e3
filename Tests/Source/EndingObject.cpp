// SPDX-License-Identifier: Apache-2.0
#include "EndingObject.h"

namespace pelvor {
namespace {

constinit Library endingObjectLibrary{"EndingObject", {}, kClassesOf<EndingObject>, {}};

}  // namespace

PELVOR_DEFINE_CLASS(EndingObject, endingObjectLibrary) {}

Retained<EndingObject> EndingObject::make(std::function<void()> end) {
    auto object = pelvor::make<EndingObject>();
    object->end = std::move(end);
    return object;
}

}  // namespace pelvor
