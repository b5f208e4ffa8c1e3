// SPDX-License-Identifier: Apache-2.0
// WRApplication: the program, from its arguments to its exit status.
#pragma once

#include <chrono>

#include "Foundation/NSString.h"
#include "Runtime/Selector.h"

namespace pelvor {

class NSArray;
class NSMutableArray;
class NSMutableSet;
class NSNotification;
class PBDelayedActionTimer;
class WRArguments;
class WRDocument;
class WRDocumentCounter;
class WRFileSentry;
class WRMainLoop;
class WRPlugInLoader;
class WRProgressLine;
class WRReport;
class ZWFNSubscribeFileWatcher;

/// Starts the library, loads plug-ins, and opens, reports, changes and writes a document. A process has one
/// application. Main thread.
class WRApplication : public NSObject {
    PELVOR_CLASS(WRApplication, NSObject);
    PELVOR_CREATORS(initWithArguments_start);

  public:
    /// Takes what follows the program's name, made by `objectOfInput`. Times are counted from `start` on.
    static Retained<WRApplication> initWithArguments_start(NSArray* arguments,
                                                           std::chrono::steady_clock::time_point start);

    /// Does the program's work and returns the exit status: 0; 1 if the document could not be read, changed,
    /// written, sent or thrown away, or newer versions are not known; 2 for arguments that mean nothing.
    /// Prints to standard output, and problems to standard error.
    int run();

    /// Observes PBProfilesDidChangeNotification: notes the profiles that are new.
    void profilesDidChange(NSNotification* notification);
    /// The message of readers: tells how far the reading has come.
    void readerDidRead_of(unsigned long long count, unsigned long long length);
    /// Observe the counter of the document: tell how far the count has come, and what was counted.
    void counterDidAdvance(WRDocumentCounter* counter);
    void counterDidFinish(WRDocumentCounter* counter);
    /// The messages of the main loop: an edit and a position of the command line, a line of standard input.
    void takeEdit(NSString* line);
    void takePosition(NSString* position);
    void takeLine(id line);
    /// The messages while the program stays: another program has saved the document, or put something into
    /// the folder of plug-ins.
    void documentFileDidChange();
    void watcher_receivedNotification_forPath(id watcher, NSString* name, NSString* path);
    void plugInsAreThere(PBDelayedActionTimer* timer);
    /// Observes the document: there are changes that are in no file.
    void documentDidChange(NSNotification* notification);

  protected:
    WRApplication() = default;
    ~WRApplication();

  private:
    int printAbout();
    void printUpdates();
    int exitStatus();
    void startUp();
    void makeDesktop();
    void runDesktop();
    void workWithoutWindows();
    bool openDocument();
    void changeText();
    void loadDocumentPlugIns();
    void examineDocument();
    void runMainLoop();
    void watchFiles();
    void watchPlugIns();
    void endWatchingPlugIns();
    void count();
    WRDocument* readDocument();
    void performSoon(SEL selector, NSString* argument);
    void obeyLine(NSString* line);
    void applyEdit(NSString* line);
    void showPosition(NSString* text);
    void saveDocument();
    void setPages();
    void uploadDocument();
    void trashDocument();
    bool isLastStepDue(NSString* option);
    void saveOnRequest();

    void reportStart(NSArray* bundles);
    void reportArrivals(NSArray* bundles);

    void markMoment(const char* name);
    void print(NSString* text);
    void complain(NSString* problem);
    void failStep(NSString* problem);
    void complainOfException();

    Retained<WRArguments> _arguments;
    Retained<WRReport> _report;
    Retained<WRProgressLine> _progress;
    Retained<WRPlugInLoader> _loader;
    Retained<NSString> _path;  // of the document
    Retained<WRDocument> _document;
    Retained<WRDocumentCounter> _counter;
    Retained<WRFileSentry> _sentry;                    // while the program stays
    Retained<ZWFNSubscribeFileWatcher> _plugInFolder;  // while the program stays
    Retained<PBDelayedActionTimer> _plugInTimer;
    bool _hasOwnChanges = false;  // of the document, that are in no file
    Retained<WRMainLoop> _loop;
    Retained<Object> _desktop;           // where windows are shown
    Retained<NSMutableArray> _arrivals;  // PBProfiles, since the start
    Retained<NSMutableSet> _knownIdentifiers;
    NSUInteger _waitingPerforms = 0;
    bool _hasFailed = false;
    bool _hasLostOutput = false;  // standard output could not be written to
    // After a failed step the document is not what the user requested, and is not written.
    enum class StepFailure { none, some, someToldAtSaving } _stepFailure = StepFailure::none;
    std::chrono::steady_clock::time_point _start;
    std::string _timing;
};

}  // namespace pelvor
