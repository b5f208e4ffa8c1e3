// SPDX-License-Identifier: Apache-2.0
// Chooses among registered profiles.
#pragma once

#include "PBProfileSet.h"

namespace pelvor {

/// The profiles of the set in ascending palette order, then by identifier. Borrowed.
PELVOR_EXPORT NSArray* profilesInOrder(PBProfileSet* profiles);

/// Profiles of the type for a file at the path, the best first: first the profiles whose document types name
/// the extension of the file, then the profiles whose document types have "*". Each group is in the order of
/// `profilesInOrder`. Borrowed.
PELVOR_EXPORT NSArray* profilesForDocument(PBProfileSet* profiles, NSString* type, NSString* path);

/// Whether the profile's document types name the path's extension.
bool isNamedForDocument(PBProfile* profile, NSString* path);

/// The profile's name in the user's language, else its identifier. Borrowed.
PELVOR_EXPORT NSString* nameOfProfile(PBProfile* profile);

}  // namespace pelvor
