// SPDX-License-Identifier: Apache-2.0
// WRApplication: the program, from its arguments to its exit status.
#pragma once

#include <chrono>

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSMutableArray;
class NSMutableSet;
class NSNotification;
class WRArguments;
class WRDocument;
class WRDocumentOpener;
class WRPlugInLoader;
class WRReport;

/// Starts the library, loads plug-ins, opens a document and tells about it. One a process; main thread.
class WRApplication : public NSObject {
    PELVOR_CLASS(WRApplication, NSObject);

  public:
    /// Takes the strings that follow the program's name. Times are counted from `start` on.
    static Retained<WRApplication> initWithArguments_start(NSArray* arguments,
                                                           std::chrono::steady_clock::time_point start);

    /// Does it all and answers the exit status: 0; 1 if the document could not be read or written; 2 for
    /// arguments that mean nothing. Prints to standard output, and what went wrong to standard error.
    int run();

    /// Observes PBProfilesDidChangeNotification: notes the profiles that are new.
    void profilesDidChange(NSNotification* notification);

  protected:
    WRApplication() = default;
    ~WRApplication();

  private:
    void startUp();
    bool openDocument();
    void loadDocumentPlugIns();
    void examineDocument();
    bool saveDocument();

    void reportStart(NSArray* bundles);
    void reportDocument(WRDocumentOpener* opener);
    NSString* reasonForReader(WRDocumentOpener* opener);
    void reportArrivals(NSArray* bundles);

    void markMoment(const char* name);
    void print(NSString* text);
    void complain(NSString* problem);

    Retained<WRArguments> _arguments;
    Retained<WRReport> _report;
    Retained<WRPlugInLoader> _loader;
    Retained<WRDocument> _document;
    Retained<NSMutableArray> _arrivals;  // PBProfiles, since the start
    Retained<NSMutableSet> _knownIdentifiers;
    std::chrono::steady_clock::time_point _start;
    std::string _timing;
};

}  // namespace pelvor
