// SPDX-License-Identifier: Apache-2.0
// WRPlainTextReader: reads documents that are nothing but text.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Reads text in UTF-8, UTF-16, UTF-32 or Windows-1252, found out from the bytes, or in the encoding that the
/// user named, which may be any that the platform knows. Refuses what does not look like text, unless the
/// user named an encoding.
class WRPlainTextReader : public NSObject {
    PELVOR_CLASS(WRPlainTextReader, NSObject);

  public:
    NSDictionary* readDocumentAtPath_options(NSString* path, NSDictionary* options);

  protected:
    WRPlainTextReader() = default;
    ~WRPlainTextReader() = default;
};

}  // namespace pelvor
