// SPDX-License-Identifier: Apache-2.0
// Reads text files for the readers of this folder's plug-ins. Messages come from Writer's own string tables.
#pragma once

#include "Runtime/Object.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// What a reader answers for the text file at the path: its text and how that was read, or an error.
/// Borrowed.
NSDictionary* readTextFile(NSString* path, NSDictionary* options);

/// The entry of a dictionary of options or answers if it is a string; null for any other and for no
/// dictionary.
NSString* stringEntry(NSDictionary* dictionary, NSString* key);
/// Whether the entry of a dictionary of options is a number other than 0.
bool isEntrySet(NSDictionary* dictionary, NSString* key);

/// The answer that tells of an error. Borrowed.
NSDictionary* errorAnswer(NSString* error, NSString* message);
/// The answer for a file that cannot be read at all. Borrowed.
NSDictionary* unreadableAnswer(NSString* path);
/// The answer for an encoding that the platform does not know. Borrowed.
NSDictionary* unknownEncodingAnswer(NSString* encodingName);

}  // namespace pelvor
