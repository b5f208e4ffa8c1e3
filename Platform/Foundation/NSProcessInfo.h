// SPDX-License-Identifier: Apache-2.0
// NSProcessInfo: name, arguments and environment of the running process.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;

/// The running process:
///
///     NSArray* arguments = NSProcessInfo::processInfo()->arguments();  // "writer", "letter.txt"
///
/// In texts that are not UTF-8, U+FFFD stands in place of the wrong bytes. Results are borrowed. Any thread.
class PELVOR_EXPORT NSProcessInfo : public NSObject {
    PELVOR_CLASS(NSProcessInfo, NSObject);

  public:
    static NSProcessInfo* processInfo();

    /// Returns the last component of the name by which the program was started.
    NSString* processName();
    int processIdentifier();
    /// Returns the arguments that the program was started with, its name first.
    NSArray* arguments();
    /// Returns the environment at this moment, without entries that lack "=". No thread may change the
    /// environment meanwhile.
    NSDictionary* environment();
    /// Returns a text that no other call returns, neither in this process nor in any other.
    NSString* globallyUniqueString();

  protected:
    NSProcessInfo() = default;
    ~NSProcessInfo() = default;
};

}  // namespace pelvor
