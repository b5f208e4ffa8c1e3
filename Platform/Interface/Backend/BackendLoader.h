// SPDX-License-Identifier: Apache-2.0
// Which back end a process gets.
#pragma once

#include <memory>

#include "Interface/Backend/Backend.h"

namespace pelvor {

/// Loads the module of the display that the environment names, and connects. Without a display, or with
/// PELVOR_DISPLAY set to "none", nothing is loaded and the back end is a HeadlessBackend; if a display was
/// named and cannot be had, the reason is logged. Any other value of PELVOR_DISPLAY is logged and passed
/// over.
std::unique_ptr<InterfaceBackend> openBackend(BackendSink& sink);

}  // namespace pelvor
