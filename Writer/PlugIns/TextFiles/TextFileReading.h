// SPDX-License-Identifier: Apache-2.0
// Reads text files for the readers of this folder's plug-ins.
#pragma once

#include "Runtime/Object.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// What a reader answers for the text file at the path: its text, encoding, mark and byte count, or an error.
/// Messages come from the string tables of the reader's bundle. Borrowed.
NSDictionary* readTextFile(NSString* path, NSDictionary* options, id reader);

/// The entry of a dictionary of options or answers if it is a string, else none; none for no dictionary.
NSString* stringEntry(NSDictionary* dictionary, NSString* key);

/// Whether the entry of a dictionary of options is a number other than 0.
bool numberEntry(NSDictionary* dictionary, NSString* key);

/// The answer that tells of an error. Borrowed.
NSDictionary* errorAnswer(NSString* error, NSString* message);

}  // namespace pelvor
