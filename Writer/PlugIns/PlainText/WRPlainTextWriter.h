// SPDX-License-Identifier: Apache-2.0
// WRPlainTextWriter: writes documents as nothing but text.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Writes the text as it is, in the encoding that the user named; else in the one in which the document was
/// read, with a byte-order mark if there was one; else in UTF-8. A text that does not fit the encoding is not
/// written: no character is ever replaced by another.
class WRPlainTextWriter : public NSObject {
    PELVOR_CLASS(WRPlainTextWriter, NSObject);

  public:
    NSDictionary* writeText_toPath_options(NSString* text, NSString* path, NSDictionary* options);

  protected:
    WRPlainTextWriter() = default;
    ~WRPlainTextWriter() = default;
};

}  // namespace pelvor
