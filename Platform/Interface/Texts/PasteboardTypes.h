// SPDX-License-Identifier: Apache-2.0
// The names under which other programs know the types of pasteboards, and their data.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Runtime/Retained.h"

namespace pelvor {

class NSData;
class NSString;

/// The names under which data of the type is offered to other programs, the best first.
std::vector<std::string> foreignNamesOfType(NSString* type);
/// The type that a name of another program stands for; null for names that stand for no type, such as
/// "TARGETS".
NSString* typeOfForeignName(std::string_view name);

/// The data as the other program expects it under that name, and back. Text under old names is Latin 1, lists
/// of files are lists of addresses.
std::string foreignContent(NSString* type, NSData* data, std::string_view name);
NSData* contentOfForeign(NSString* type, std::string_view content, std::string_view name);

}  // namespace pelvor
