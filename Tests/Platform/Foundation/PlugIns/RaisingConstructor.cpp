// SPDX-License-Identifier: Apache-2.0
// A plug-in whose code cannot be set up.
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"

namespace {

struct Failure {
    Failure() { throw pelvor::NSException("PlugInException", "no lamp oil"); }
} failure;

constinit pelvor::Library library{"RaisingConstructor", {}, {}, {}};

}  // namespace

PELVOR_PLUGIN(library)
