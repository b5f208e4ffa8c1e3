// SPDX-License-Identifier: Apache-2.0
// NSPropertyListError: why a property list could not be read or written.
#pragma once

#include "Foundation/NSRange.h"
#include "Foundation/NSString.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSString;
struct PropertyListFault;

/// What reading or writing a property list answers where there is no result. Immutable; any thread.
class PELVOR_EXPORT NSPropertyListError : public NSObject {
    PELVOR_CLASS(NSPropertyListError, NSObject);

  public:
    // C++ only
    /// For the readers and writers.
    static Retained<NSPropertyListError> create(const PropertyListFault& fault);

    /// What is wrong, without its place.
    NSString* reason() { return _reason; }
    /// Where reading stopped, counting from 1; 0 for binary lists, when writing, and when nothing was read.
    NSUInteger line() { return _line; }
    /// In characters of the line; in old-style lists in UTF-16 units.
    NSUInteger column() { return _column; }
    /// The same counting from 0 through the whole text: bytes, in old-style lists UTF-16 units.
    NSUInteger offset() { return _offset; }
    /// When writing, the keys and indexes that lead from the root to the object at fault, "styles.2.name";
    /// else "".
    NSString* keyPath() { return _keyPath; }
    /// The reason and its place: "line 3, column 14: …", "at byte 41: …", "at styles.2.name: …".
    NSString* description() override;

  protected:
    NSPropertyListError() = default;
    ~NSPropertyListError() = default;

  private:
    Retained<NSString> _reason;
    Retained<NSString> _keyPath;
    NSUInteger _line = 0;
    NSUInteger _column = 0;
    NSUInteger _offset = 0;
};

}  // namespace pelvor
