// SPDX-License-Identifier: Apache-2.0
// Readers and writers of plain and rich text, linked into the tests of windows.
#pragma once

namespace pelvor {

/// Registers the plug-ins and adds their profiles to the shared registry, once.
void registerTextPlugIns();

}  // namespace pelvor
