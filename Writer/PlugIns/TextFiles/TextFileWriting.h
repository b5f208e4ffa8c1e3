// SPDX-License-Identifier: Apache-2.0
// Writes text files for the writers of this folder's plug-ins.
#pragma once

#include <string_view>

#include "Runtime/Object.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Puts a file of these bytes at the path, as a whole or not at all, and answers what a writer answers for
/// it. Messages come from the string tables of the writer's bundle. Borrowed.
NSDictionary* writeTextFile(std::string_view bytes, NSString* encodingName, NSString* path, id writer);

/// The answer for an encoding of which the platform does not know. Borrowed.
NSDictionary* unknownEncodingAnswer(NSString* encodingName, id plugIn);

}  // namespace pelvor
