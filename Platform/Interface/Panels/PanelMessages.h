// SPDX-License-Identifier: Apache-2.0
// What panels for files tell the user.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// The library's text for the key, which is the English text behind an underscore. Borrowed.
NSString* panelText(NSString* key);
/// Shows an alert with the text for the key, which has places for a name and a reason.
void complain(NSString* key, NSString* name, NSString* reason);
/// The same with the reason in `errno` why the file or folder at the path cannot be read or written.
void complainOfFile(NSString* key, NSString* name, NSString* path, bool isWriting);

}  // namespace pelvor
