// SPDX-License-Identifier: Apache-2.0
// Reads text files for the readers of this folder's plug-ins. Messages come from Writer's own string tables.
#pragma once

#include "Runtime/Object.h"

namespace pelvor {

class NSDictionary;
class NSString;
class TextFileSource;

/// The answer of a reader for the text file at the path: the text and how it was read, or an error. Borrowed.
NSDictionary* readTextFile(NSString* path, NSDictionary* options);

/// The entry of the dictionary under the key if the entry is a string; null for any other entry and for a
/// null dictionary.
NSString* stringEntry(NSDictionary* dictionary, NSString* key);
/// Whether the entry of a dictionary of options is a number other than 0.
bool isEntrySet(NSDictionary* dictionary, NSString* key);

/// An answer with the error. Borrowed.
NSDictionary* errorAnswer(NSString* error, NSString* message);
/// The answer for a file that cannot be read at all, with the reason that the source tells. Borrowed.
NSDictionary* unreadableAnswer(NSString* path, const TextFileSource& source);
/// The answer for an encoding that the platform does not know. Borrowed.
NSDictionary* unknownEncodingAnswer(NSString* encodingName);

}  // namespace pelvor
