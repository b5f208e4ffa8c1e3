// SPDX-License-Identifier: Apache-2.0
// WRAbout: what the program says about itself.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class WRAboutLine;

/// The owner of the interface file About.nib. Main thread.
class PELVOR_EXPORT WRAbout : public NSObject {
    PELVOR_CLASS(WRAbout, NSObject);

  public:
    /// Returns the lines of the interface file in the user's language, with name, version and build date of
    /// the main bundle and the names of its plug-ins, none of which is loaded; borrowed. Null if the file is
    /// missing or damaged.
    NSString* text();

    // The outlets of the interface file, which are not retained.

    void setVersionLine(WRAboutLine* line) { _versionLine = line; }
    void setDateLine(WRAboutLine* line) { _dateLine = line; }
    void setPlugInsLine(WRAboutLine* line) { _plugInsLine = line; }
    /// Fills the lines in.
    void awakeFromNib();

  protected:
    WRAbout() = default;
    ~WRAbout() = default;

  private:
    Unretained<WRAboutLine> _versionLine;
    Unretained<WRAboutLine> _dateLine;
    Unretained<WRAboutLine> _plugInsLine;
};

}  // namespace pelvor
