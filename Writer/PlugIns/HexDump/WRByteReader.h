// SPDX-License-Identifier: Apache-2.0
// WRByteReader: shows documents that nobody can read as bytes.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Reads any file: its bytes in lines of sixteen, as hexadecimal numbers and as ASCII. Of a long file the
/// first 64 KiB.
class WRByteReader : public NSObject {
    PELVOR_CLASS(WRByteReader, NSObject);

  public:
    NSDictionary* readDocumentAtPath_options(NSString* path, NSDictionary* options);

  protected:
    WRByteReader() = default;
    ~WRByteReader() = default;
};

}  // namespace pelvor
