// SPDX-License-Identifier: Apache-2.0
// WRRichTextReader: reads rich text files.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Reads text, formats and settings of RTF files. A broken file is read as far as it makes sense, and the
/// answer tells where it is broken. The answer says that it is a part of the document if something was left
/// out.
class WRRichTextReader : public NSObject {
    PELVOR_CLASS(WRRichTextReader, NSObject);

  public:
    NSDictionary* readDocumentAtPath_options(NSString* path, NSDictionary* options);

  protected:
    WRRichTextReader() = default;
    ~WRRichTextReader() = default;
};

}  // namespace pelvor
