// SPDX-License-Identifier: Apache-2.0
// WRTypography: counts what a compositor would look for.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;

/// Tells how quotation marks, dashes, ellipses and spaces are written.
class WRTypography : public NSObject {
    PELVOR_CLASS(WRTypography, NSObject);

  public:
    NSDictionary* examineDocument(id document);

  protected:
    WRTypography() = default;
    ~WRTypography() = default;
};

}  // namespace pelvor
