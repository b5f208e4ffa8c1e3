// SPDX-License-Identifier: Apache-2.0
// WRDocumentSaver: finds a writer for a document and has it written.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;
class PBProfile;
class PBProfileSet;

/// Asks the best writer that a profile query finds for the path. Main thread.
class WRDocumentSaver : public NSObject {
    PELVOR_CLASS(WRDocumentSaver, NSObject);

  public:
    static Retained<WRDocumentSaver> initWithProfiles(PBProfileSet* profiles, Class* cls = classObject());

    /// What the writer answered, borrowed, or none: then `problem` tells why. Options are those of writers.
    NSDictionary* saveText_toPath_options(NSString* text, NSString* path, NSDictionary* options);

    /// Why the last text was not written, as a sentence for the user; none if it was.
    NSString* problem() { return _problem; }
    /// The profile of the writer that was asked last; none if there was none.
    PBProfile* writer() { return _writer; }

  protected:
    WRDocumentSaver() = default;
    ~WRDocumentSaver();

  private:
    Retained<PBProfileSet> _profiles;
    Retained<PBProfile> _writer;
    Retained<NSString> _problem;
};

}  // namespace pelvor
