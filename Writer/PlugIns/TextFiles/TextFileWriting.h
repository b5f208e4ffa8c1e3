// SPDX-License-Identifier: Apache-2.0
// Writes text files for the writers of this folder's plug-ins.
#pragma once

#include <string>

#include "Runtime/Object.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Writes a file with these bytes at the path, as a whole or not at all. Returns the answer of a writer; if
/// the file could not be written, the answer is an error whose message tells the reason. Borrowed.
NSDictionary* writeTextFile(const std::string& bytes, NSString* encodingName, NSString* path);

}  // namespace pelvor
