// SPDX-License-Identifier: Apache-2.0
// WRLineEndings: counts what ends the lines of a document.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;

/// Tells which line endings the text has, and whether its last line has one.
class WRLineEndings : public NSObject {
    PELVOR_CLASS(WRLineEndings, NSObject);

  public:
    NSDictionary* examineDocument(id document);

  protected:
    WRLineEndings() = default;
    ~WRLineEndings() = default;
};

}  // namespace pelvor
