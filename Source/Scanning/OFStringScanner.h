// SPDX-License-Identifier: Apache-2.0
// OFStringScanner: a scanner over one whole string.
#pragma once

#include "Scanning/OFCharacterScanner.h"

namespace pelvor {

/// Reads a string, whose units the scanner copies into one buffer; OFCharacterScanner has an example. The
/// scanner can move to any place in the string, as far as rewind marks allow.
class PELVOR_EXPORT OFStringScanner : public OFCharacterScanner, OFCharacterScanner::HiddenCreators {
    PELVOR_CLASS(OFStringScanner, OFCharacterScanner);
    PELVOR_CREATORS(initWithString);

  public:
    /// Retains the string. Null counts as an empty string.
    static Retained<OFStringScanner> initWithString(NSString* string, Class* cls = classObject());

  protected:
    OFStringScanner() = default;
    ~OFStringScanner() = default;

  private:
    Retained<NSString> _targetString;
};

}  // namespace pelvor
