// SPDX-License-Identifier: Apache-2.0
// A plug-in that calls a function that nobody has.
#include "Runtime/Registry.h"

int functionThatNobodyHas();

namespace {

constinit pelvor::Library library{"UndefinedSymbol", {}, {}, {}};

}  // namespace

extern "C" PELVOR_EXPORT int callIt() { return functionThatNobodyHas(); }

PELVOR_PLUGIN(library)
