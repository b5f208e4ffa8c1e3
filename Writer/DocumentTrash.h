// SPDX-License-Identifier: Apache-2.0
// Throwing a document away.
#pragma once

#include "Runtime/Export.h"

namespace pelvor {

class NSString;

/// Moves the file to the user's trash; its place there is written to the pointer, borrowed. Returns what went
/// wrong, as a sentence for the user; null if nothing did. Borrowed. Main thread.
PELVOR_EXPORT NSString* throwDocumentAway(NSString* path, NSString** place);

}  // namespace pelvor
