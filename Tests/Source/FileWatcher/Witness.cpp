// SPDX-License-Identifier: Apache-2.0
#include "Witness.h"

#include "BaseLibrary.h"

namespace pelvor {

constexpr Library* kDependencies[] = {&baseLibrary};
constinit Library witnessLibrary{"Witness", kDependencies, kClassesOf<Witness>, {}};

PELVOR_DEFINE_CLASS(Witness, witnessLibrary) {
    methods.instanceAs<"watcher:receivedNotification:forPath:", &Witness::watched>();
    methods.instanceAs<"fileWatcher:notedAction:forFileAtPath:", &Witness::noted>();
    methods.instance<"hear:", &Witness::hear>();
}

}  // namespace pelvor
