// SPDX-License-Identifier: Apache-2.0
// OFStringScanner: a scanner over one whole string.
#pragma once

#include "Scanning/OFCharacterScanner.h"

namespace pelvor {

/// Reads a copy of the string's units, in one buffer; it can move anywhere in it that marks allow.
class PELVOR_EXPORT OFStringScanner : public OFCharacterScanner, OFCharacterScanner::HiddenCreators {
    PELVOR_CLASS(OFStringScanner, OFCharacterScanner);
    PELVOR_CREATORS(initWithString);

  public:
    /// The string is retained; no string counts as an empty one.
    static Retained<OFStringScanner> initWithString(NSString* string, Class* cls = classObject());

  protected:
    OFStringScanner() = default;
    ~OFStringScanner() = default;

  private:
    Retained<NSString> _targetString;
};

}  // namespace pelvor
