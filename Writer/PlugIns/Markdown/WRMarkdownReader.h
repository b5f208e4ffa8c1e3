// SPDX-License-Identifier: Apache-2.0
// WRMarkdownReader: reads Markdown documents as the text that they stand for.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Reads a text file like the reader of plain text and takes the markup out of it.
class WRMarkdownReader : public NSObject {
    PELVOR_CLASS(WRMarkdownReader, NSObject);

  public:
    NSDictionary* readDocumentAtPath_options(NSString* path, NSDictionary* options);

  protected:
    WRMarkdownReader() = default;
    ~WRMarkdownReader() = default;
};

}  // namespace pelvor
