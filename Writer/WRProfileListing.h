// SPDX-License-Identifier: Apache-2.0
// WRProfileListing: shows registered profiles by kind.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class PBProfile;
class PBProfileSet;
class WRReport;

/// The profiles of a set, by kind, with their names in the user's language. Main thread.
class PELVOR_EXPORT WRProfileListing : public NSObject {
    PELVOR_CLASS(WRProfileListing, NSObject);
    PELVOR_CREATORS(initWithProfiles);

  public:
    static Retained<WRProfileListing> initWithProfiles(PBProfileSet* profiles, Class* cls = classObject());

    /// Adds a line for each kind that has profiles.
    void addToReport(WRReport* report);

    /// "Plain text (txt, text, *)": the name, and the document types or the abbreviation if there are any.
    /// Borrowed.
    static NSString* textOfProfile(PBProfile* profile);
    /// "Document readers", in the user's language; the kind itself if it is not a known one. Borrowed.
    static NSString* nameOfKind(NSString* kind);

  protected:
    WRProfileListing() = default;
    ~WRProfileListing();

  private:
    Retained<PBProfileSet> _profiles;
};

}  // namespace pelvor
