// SPDX-License-Identifier: Apache-2.0
// NSProcessInfo: what is to be known about the running process.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;

/// The running process. Texts that are not UTF-8 have U+FFFD in place of the wrong bytes. Any thread.
class PELVOR_EXPORT NSProcessInfo : public NSObject {
    PELVOR_CLASS(NSProcessInfo, NSObject);

  public:
    static NSProcessInfo* processInfo();

    /// The last component of the name that the program was started by.
    NSString* processName();
    int processIdentifier();
    /// What the program was started with, its name first.
    NSArray* arguments();
    /// The environment at this moment; entries without "=" are left out. It must not be changed meanwhile.
    NSDictionary* environment();
    /// A text that no other call answers, in this process or any other.
    NSString* globallyUniqueString();

  protected:
    NSProcessInfo() = default;
    ~NSProcessInfo() = default;
};

}  // namespace pelvor
