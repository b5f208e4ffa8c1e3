// SPDX-License-Identifier: Apache-2.0
// WRWebPageWriter: writes documents as web pages.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// Writes an HTML page: the first paragraph is the page's title, every paragraph an element of its own. The
/// encoding is UTF-8 or the one that the user named; what it lacks is written by number.
class WRWebPageWriter : public NSObject {
    PELVOR_CLASS(WRWebPageWriter, NSObject);

  public:
    NSDictionary* writeText_toPath_options(NSString* text, NSString* path, NSDictionary* options);

  protected:
    WRWebPageWriter() = default;
    ~WRWebPageWriter() = default;
};

}  // namespace pelvor
