// SPDX-License-Identifier: Apache-2.0
// WRDocumentOpener: finds a reader for a document and has it read.
#pragma once

#include "Foundation/NSString.h"
#include "Writer/WRDocument.h"

namespace pelvor {

class NSArray;
class NSDictionary;
class PBProfileSet;

/// Tries the readers that a profile query finds, the best first, until one of them does not refuse the
/// document:
///
///     auto opener = WRDocumentOpener::initWithProfiles(PBRegistry::sharedRegistry());
///     WRDocument* document = opener->openDocumentAtPath_options(path, options);
///     if (!document) complain(opener->problem());
///
/// Main thread.
class PELVOR_EXPORT WRDocumentOpener : public NSObject {
    PELVOR_CLASS(WRDocumentOpener, NSObject);
    PELVOR_CREATORS(initWithProfiles);

  public:
    static Retained<WRDocumentOpener> initWithProfiles(PBProfileSet* profiles, Class* cls = classObject());

    /// Returns the document, borrowed. Returns null if no reader can read it; `problem` then tells the
    /// reason. `options` are the options of readers (PlugInProtocol.h).
    WRDocument* openDocumentAtPath_options(NSString* path, NSDictionary* options);
    /// Does so; where there is no file, but its folder is there, returns an empty document that will be saved
    /// at the path.
    WRDocument* openOrMakeDocumentAtPath_options(NSString* path, NSDictionary* options);

    /// Why the last document was not opened, as a sentence for the user; null if it was opened.
    NSString* problem() { return _problem; }
    /// The profiles of the readers that came into question for the last document, the best first.
    NSArray* candidates() { return _candidates; }

  protected:
    WRDocumentOpener() = default;
    ~WRDocumentOpener();

  private:
    WRDocument* askReaders(NSString* path, NSDictionary* options);

    Retained<PBProfileSet> _profiles;
    Retained<NSArray> _candidates;
    Retained<NSString> _problem;
};

}  // namespace pelvor
