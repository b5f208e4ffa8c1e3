// SPDX-License-Identifier: Apache-2.0
// Writes text files for the writers of this folder's plug-ins.
#pragma once

#include <string>

#include "Runtime/Object.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Puts a file of these bytes at the path, as a whole or not at all. Returns what a writer answers for it; if
/// that is an error, its message tells why the file could not be written. Borrowed.
NSDictionary* writeTextFile(const std::string& bytes, NSString* encodingName, NSString* path);

}  // namespace pelvor
