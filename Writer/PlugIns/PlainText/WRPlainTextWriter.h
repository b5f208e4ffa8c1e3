// SPDX-License-Identifier: Apache-2.0
// WRPlainTextWriter: writes documents as nothing but text.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Writes the text as it is, in UTF-8 or in the encoding that the user named. A text that does not fit the
/// encoding is not written: no character is ever replaced by another.
class WRPlainTextWriter : public NSObject {
    PELVOR_CLASS(WRPlainTextWriter, NSObject);

  public:
    NSDictionary* writeText_toPath_options(NSString* text, NSString* path, NSDictionary* options);

  protected:
    WRPlainTextWriter() = default;
    ~WRPlainTextWriter() = default;
};

}  // namespace pelvor
