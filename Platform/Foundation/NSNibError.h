// SPDX-License-Identifier: Apache-2.0
// NSNibError: why an interface file cannot be used.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

struct InterfaceFault;

/// Why an interface file cannot be read, or its objects cannot be made. Immutable. Any thread.
class PELVOR_EXPORT NSNibError : public NSObject {
    PELVOR_CLASS(NSNibError, NSObject);
    PELVOR_CREATORS(create);

  public:
    // C++ only
    /// For the readers of interface files.
    static Retained<NSNibError> create(NSString* file, const InterfaceFault& fault);

    /// Returns the path of the file; of a file that was not found its name, and of data "".
    NSString* file() { return _file; }
    /// Returns the identifier of the object that has the fault, "owner" for the owner; "" if the fault is the
    /// file's. An object without identifier is called by its place, "3", the first being 1.
    NSString* object() { return _object; }
    /// Returns the key with the fault: a key of the file's format, or a key of the object's values, an
    /// outlet or an action; "" if there is none.
    NSString* key() { return _key; }
    NSString* reason() { return _reason; }
    /// Returns all of these: "About.nib: object 'title', key 'width': the text 'wide' cannot become a float".
    NSString* description() override;

  protected:
    NSNibError() = default;
    ~NSNibError() = default;

  private:
    Retained<NSString> _file;
    Retained<NSString> _object;
    Retained<NSString> _key;
    Retained<NSString> _reason;
};

}  // namespace pelvor
