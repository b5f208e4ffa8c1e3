// SPDX-License-Identifier: Apache-2.0
// NSPropertyListError: why a property list could not be read or written.
#pragma once

#include "Foundation/NSRange.h"
#include "Foundation/NSString.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSString;
struct PropertyListFault;

/// Why a property list could not be read or written. Immutable. Any thread.
class PELVOR_EXPORT NSPropertyListError : public NSObject {
    PELVOR_CLASS(NSPropertyListError, NSObject);
    PELVOR_CREATORS(create);

  public:
    // C++ only
    /// For the readers and writers.
    static Retained<NSPropertyListError> create(const PropertyListFault& fault);

    /// Returns what is wrong, without its place.
    NSString* reason() { return _reason; }
    /// Returns the line in which reading stopped, counting from 1; 0 for binary lists, after writing, and if
    /// nothing was read.
    NSUInteger line() { return _line; }
    /// Returns the column in that line, counting from 1: in characters for XML, in UTF-16 units for old-style
    /// lists.
    NSUInteger column() { return _column; }
    /// Returns the place counting from 0 from the beginning of the text: in bytes, in old-style lists in
    /// UTF-16 units.
    NSUInteger offset() { return _offset; }
    /// After writing, returns the keys and indexes that lead from the root to the object that cannot be
    /// written, "styles.2.name"; after reading, returns "".
    NSString* keyPath() { return _keyPath; }
    /// Returns the reason with its place: "line 3, column 14: …", "at byte 41: …", "at styles.2.name: …".
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
