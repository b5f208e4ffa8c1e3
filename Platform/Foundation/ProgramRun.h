// SPDX-License-Identifier: Apache-2.0
// Running other programs.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;

/// Runs the program at the path with the arguments, which are strings, and waits until it has exited. It
/// reads nothing, and gets the process's environment, but with `searchPath`, unless null, as its PATH.
/// `output`, unless null, receives all bytes that the program writes to its standard output; they are dropped
/// otherwise. Returns the exit status, 128 and the number of the signal that ended the program, or -1 with
/// the reason in `errno` if the program could not be run. Any thread.
PELVOR_EXPORT int runProgram(NSString* path, NSArray* arguments, std::string* output = nullptr,
                             NSString* searchPath = nullptr);

/// Starts the program of that name, which the folders of PATH are searched for, with the arguments, which are
/// strings, and returns without waiting. The program reads nothing, writes where this one does, and goes on
/// when this one ends. Returns false, with the reason in `errno`, if it could not be started. Any thread.
PELVOR_EXPORT bool startProgram(NSString* name, NSArray* arguments);

/// Returns the folder of the programs that belong to the library, which lies beside the library's code.
/// Borrowed.
PELVOR_EXPORT NSString* libraryProgramsFolder();

}  // namespace pelvor
