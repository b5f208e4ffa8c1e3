// SPDX-License-Identifier: Apache-2.0
// WRRichTextWriter: writes rich text files.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Writes RTF files: the rich text among the options, or the plain text if there is none. The bytes are
/// ASCII.
class WRRichTextWriter : public NSObject {
    PELVOR_CLASS(WRRichTextWriter, NSObject);

  public:
    NSDictionary* writeText_toPath_options(NSString* text, NSString* path, NSDictionary* options);

  protected:
    WRRichTextWriter() = default;
    ~WRRichTextWriter() = default;
};

}  // namespace pelvor
