// SPDX-License-Identifier: Apache-2.0
// What the user gives to the program as bytes: arguments and lines of standard input.
#pragma once

#include <string_view>

#include "Foundation/NSString.h"

namespace pelvor {

class NSData;

/// A string; or, for bytes that are not UTF-8, the bytes as NSData, which a command refuses: a string of them
/// would name another file or put other text into the document. Borrowed.
id objectOfInput(std::string_view bytes);

/// The bytes for a message: text where they are UTF-8, and each other byte as in "caf\xE9.txt". Borrowed.
NSString* readableBytes(NSData* bytes);

}  // namespace pelvor
