// SPDX-License-Identifier: Apache-2.0
// Writes text files for the writers of this folder's plug-ins.
#pragma once

#include <string>

#include "Runtime/Object.h"

namespace pelvor {

class NSData;
class NSDictionary;
class NSString;

/// An answer that tells that the file at the path could not be written, and why. Borrowed.
NSDictionary* unwritableAnswer(NSString* path, NSString* reason);

/// Writes a file with these bytes at the path, as a whole or not at all. Returns null, or an answer whose
/// message tells why the file could not be written. Borrowed.
NSDictionary* writeFile(NSData* data, NSString* path);

/// Writes a file like the operation above. Returns the answer of a writer, borrowed.
NSDictionary* writeTextFile(const std::string& bytes, NSString* encodingName, NSString* path);

}  // namespace pelvor
