// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Runtime/Registry.h"

namespace desk {

using namespace pelvor;

/// The list of Desk's classes.
extern Library deskLibrary;

}  // namespace desk
