// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSActionCell.h"

#include "Interface/InterfaceLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSActionCell, interfaceLibrary) {}

void NSActionCell::takeProperties(NSCell* other) {
    NSCell::takeProperties(other);
    setTarget(other->target());
    _action = other->action();
    _tag = other->tag();
}

}  // namespace pelvor
