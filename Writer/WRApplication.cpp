// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRApplication.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>

#include "FileWatcher/ZWFNSubscribeFileWatcher.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSData.h"
#include "Foundation/NSFileManager.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableSet.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSStringEncoding.h"
#include "NSRunLoop-PelvorAdditions.h"
#include "PBDelayedActionTimer.h"
#include "PBObserverSet.h"
#include "PBPostLoader.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"
#include "Writer/DocumentCommands.h"
#include "Writer/DocumentReport.h"
#include "Writer/DocumentTrash.h"
#include "Writer/InputText.h"
#include "Writer/PageOutput.h"
#include "Writer/PlugInObjects.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/TextEdit.h"
#include "Writer/UpdateReport.h"
#include "Writer/WRAbout.h"
#include "Writer/WRArguments.h"
#include "Writer/WRDocumentCounter.h"
#include "Writer/WRDocumentOpener.h"
#include "Writer/WRDocumentSaver.h"
#include "Writer/WRFileSentry.h"
#include "Writer/WRMainLoop.h"
#include "Writer/WRPlugInLoader.h"
#include "Writer/WRProfileListing.h"
#include "Writer/WRProgressLine.h"
#include "Writer/WRReport.h"
#include "Writer/WRUploader.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

using Clock = std::chrono::steady_clock;

PBRegistry* registry() { return PBRegistry::sharedRegistry(); }

NSDictionary* optionsWithEncoding(NSString* name) {
    return name ? NSDictionary::dictionaryWithObject_forKey(name, WREncodingKey) : NSDictionary::dictionary();
}

// In KiB; 0 where the system does not tell. What the system tells of resources used counts in the program
// that started this one.
long peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        long size = 0;
        if (word == "VmHWM:" && status >> size) return size;
    }
    return 0;
}

bool isDisplayNamed() {
    const char* name = std::getenv("DISPLAY");
    return name && *name;
}

NSString* namesOf(NSArray* bundles) {
    auto* names = NSMutableArray::array();
    for (id bundle : bundles) names->addObject(WRPlugInLoader::nameOfBundle(static_cast<NSBundle*>(bundle)));
    return names->componentsJoinedByString(u", "_ns);
}

// A line an encoding, its usual name first.
NSString* namesOfAllEncodings() {
    std::string lines;
    for (const NSStringEncoding encoding : availableEncodings()) {
        for (std::string_view name : namesOfEncoding(encoding)) lines += std::string(name) + " ";
        lines.back() = '\n';
    }
    return NSString::ofUTF8(lines);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRApplication, writerLibrary) {
    methods.instance<"run", &WRApplication::run>();
    methods.instance<"profilesDidChange:", &WRApplication::profilesDidChange>();
    methods.instance<"readerDidRead:of:", &WRApplication::readerDidRead_of>();
    methods.instance<"counterDidAdvance:", &WRApplication::counterDidAdvance>();
    methods.instance<"counterDidFinish:", &WRApplication::counterDidFinish>();
    methods.instance<"takeEdit:", &WRApplication::takeEdit>();
    methods.instance<"takePosition:", &WRApplication::takePosition>();
    methods.instance<"takeLine:", &WRApplication::takeLine>();
    methods.instance<"documentFileDidChange", &WRApplication::documentFileDidChange>();
    methods.instance<"watcher:receivedNotification:forPath:",
                     &WRApplication::watcher_receivedNotification_forPath>();
    methods.instance<"plugInsAreThere:", &WRApplication::plugInsAreThere>();
    methods.instance<"documentDidChange:", &WRApplication::documentDidChange>();
}

WRApplication::~WRApplication() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

Retained<WRApplication> WRApplication::initWithArguments_start(NSArray* arguments, Clock::time_point start) {
    auto self = make<WRApplication>();
    self->_start = start;
    self->_arguments = WRArguments::initWithArguments(arguments);
    self->_report = WRReport::init();
    self->_progress = WRProgressLine::init();
    self->_loop = WRMainLoop::init();
    self->_arrivals = NSMutableArray::init();
    self->_knownIdentifiers = NSMutableSet::init();
    return self;
}

int WRApplication::run() {
    if (NSString* problem = _arguments->problem()) {
        complain(problem);
        return 2;
    }
    if (_arguments->hasOption(u"--help"_ns)) {
        print(WRArguments::usage()->stringByAppendingString(u"\n"_ns));
        return 0;
    }
    if (_arguments->hasOption(u"--encodings"_ns)) {
        print(namesOfAllEncodings());
        return 0;
    }
    if (_arguments->hasOption(u"--about"_ns)) return printAbout();
    if (_arguments->hasOption(u"--check-updates"_ns)) {
        printUpdates();
        return exitStatus();
    }
    startUp();
    if (!_arguments->hasOption(u"--list"_ns) && openDocument()) {
        changeText();
        loadDocumentPlugIns();
        _desktop ? runDesktop() : workWithoutWindows();
    }
    _desktop = nullptr;
    markMoment("end");
    if (_arguments->hasOption(u"--timing"_ns)) print(NSString::ofUTF8(_timing));
    return exitStatus();
}

void WRApplication::workWithoutWindows() {
    examineDocument();
    runMainLoop();
    saveDocument();
    setPages();
    uploadDocument();
    trashDocument();
}

int WRApplication::exitStatus() { return !_hasFailed && std::fflush(stdout) == 0 ? 0 : 1; }

int WRApplication::printAbout() {
    NSString* text = make<WRAbout>()->text();
    if (text)
        print(text->stringByAppendingString(u"\n"_ns));
    else
        complain(localized(u"_The interface file \"About\" is missing or damaged."_ns));
    return text && std::fflush(stdout) == 0 ? 0 : 1;
}

void WRApplication::printUpdates() {
    if (NSString* problem = reportUpdates(_report)) complain(problem);
    print(_report->takeText());
}

// MARK: Stages

// The classes that are linked in go through their hooks first; every bundle that is loaded later brings a
// cycle of its own.
void WRApplication::startUp() {
    PBPostLoader::processClasses();
    markMoment("classes");
    _loader = WRPlugInLoader::initWithFolder(NSBundle::mainBundle()->builtInPlugInsPath());
    NSArray* bundles = _loader->loadPlugInsForMoment(nullptr);
    _loader->declarePlugInsForMoment(WRLoadMomentDemand);
    markMoment("ready");
    makeDesktop();
    reportStart(bundles);
}

// A display that is named may turn out not to be there; the reason is then in the log.
void WRApplication::makeDesktop() try {
    if (!_arguments->wantsWindows() || !isDisplayNamed()) return;
    NSArray* profiles = registry()->profilesOfType(WRProfileDesktopType)->profiles();
    if (profiles->count() == 0) return;
    auto desktop = makePlugInObject(static_cast<PBProfile*>(profiles->objectAtIndex(0)));
    if (send<bool>(desktop.get(), "hasDisplay"_sel)) _desktop = std::move(desktop);
    markMoment("desktop");
} catch (...) {
    complainOfException();
}

void WRApplication::runDesktop() try {
    NSString* problem =
        send<NSString*>(_desktop.get(), "showDocument:options:"_sel, _document.get(), pageWishes(_arguments));
    markMoment("shown");
    if (problem) return complain(problem);
    if (!_plugInFolder) watchPlugIns();
    send(_desktop.get(), "run"_sel);
    endWatchingPlugIns();
    if (!send<bool>(_desktop.get(), "hasDisplay"_sel)) _hasFailed = true;  // it is lost, as the log says
} catch (...) {
    complainOfException();
}

bool WRApplication::openDocument() {
    AutoreleasePool pool;  // what the reader made goes, but for the text
    NSString* path = _arguments->documentPath();
    if (!path && _desktop) {
        _document = WRDocument::initWithName(localized(u"_Untitled"_ns));
        return true;
    }
    if (!path) path = NSBundle::mainBundle()->pathForResource_ofType(u"Sample"_ns, u"txt"_ns);
    if (!path) {
        complain(localized(u"_The sample document is missing."_ns));
        return false;
    }
    // Windows keep paths for later starts, from other folders.
    if (_desktop && !path->isAbsolutePath())
        path = NSFileManager::defaultManager()->currentDirectoryPath()->stringByAppendingPathComponent(path);
    _path = path->copy();
    if (_arguments->hasOption(u"--stay"_ns)) watchFiles();
    _document.set(readDocument());
    markMoment("opened");
    return static_cast<bool>(_document);
}

// Returns null after a complaint.
WRDocument* WRApplication::readDocument() {
    auto opener = WRDocumentOpener::initWithProfiles(registry());
    auto* options = NSMutableDictionary::dictionaryWithDictionary(
        optionsWithEncoding(_arguments->valueOfOption(u"--encoding"_ns)));
    options->setObject_forKey(this, WRProgressKey);
    WRDocument* document = _desktop ? opener->openOrMakeDocumentAtPath_options(_path, options)
                                    : opener->openDocumentAtPath_options(_path, options);
    if (!document) {
        complain(opener->problem());
        return nullptr;
    }
    if (document->reader()) reportDocument(_report, document, opener);
    print(_report->takeText());
    auto* centre = NSNotificationCenter::defaultCenter();
    centre->removeObserver_name_object(this, WRDocumentDidChangeNotification, nullptr);
    centre->addObserver_selector_name_object(this, "documentDidChange:"_sel, WRDocumentDidChangeNotification,
                                             document);
    return document;
}

void WRApplication::documentDidChange(NSNotification*) { _hasOwnChanges = true; }

void WRApplication::readerDidRead_of(unsigned long long count, unsigned long long length) {
    _progress->showTask_done_of(localized(u"_Reading"_ns), count, length);
}

void WRApplication::changeText() try {
    changeDocument(_document, _arguments, _report);
    print(_report->takeText());
} catch (...) {
    complainOfException();
}

void WRApplication::loadDocumentPlugIns() {
    _knownIdentifiers->addObjectsFromArray(registry()->identifiers());
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        this, "profilesDidChange:"_sel, PBProfilesDidChangeNotification, registry());
    NSArray* bundles = _loader->loadPlugInsForMoment(WRLoadMomentDocument);
    markMoment("document plug-ins");
    if (bundles->count()) reportArrivals(bundles);
}

void WRApplication::profilesDidChange(NSNotification* notification) {
    for (id identifier : registry()->identifiers()) {
        if (_knownIdentifiers->containsObject(identifier)) continue;
        _knownIdentifiers->addObject(identifier);
        _arrivals->addObject(registry()->profileWithIdentifier(identifier));
    }
}

void WRApplication::examineDocument() {
    NSArray* services = profilesInOrder(registry()->profilesOfType(PBProfileDocumentServiceType));
    for (NSUInteger done = 0; id object : services) {
        AutoreleasePool pool;
        _progress->showTask_done_of(localized(u"_Examining"_ns), done++, services->count());
        auto* profile = static_cast<PBProfile*>(object);
        NSDictionary* answer = askPlugIn(profile, "examineDocument:"_sel, _document.get());
        _report->addHeading(nameOfProfile(profile));
        if (answer->objectForKey(WRErrorKey)) {
            _report->addLine(problemOfAnswer(answer, WRTextKey, profile));
            continue;
        }
        for (NSDictionaryEntry entry : answer) _report->addLabel_value(entry.key->description(), entry.value);
    }
    print(_report->takeText());
    markMoment("examined");
}

void WRApplication::saveDocument() {
    NSString* path = _arguments->valueOfOption(u"--save-as"_ns);
    if (!path) return;
    if (_stepFailure != StepFailure::none)
        return complain(localizedFormat(
            u"_The document \"%@\" was not written, because not all that was asked for was done."_ns, path));
    auto saver = WRDocumentSaver::initWithProfiles(registry());
    NSString* encodingName = _arguments->valueOfOption(u"--save-encoding"_ns);
    NSDictionary* answer = saver->saveDocument_toPath_encoding(_document, path, encodingName);
    if (!answer) return complain(saver->problem());
    reportWriting(_report, _document, path, saver, answer);
    _hasOwnChanges = false;
    if (_sentry) _sentry->noteFile();
    print(_report->takeText());
    markMoment("saved");
}

void WRApplication::setPages() {
    for (NSString* format : {u"pdf"_ns, u"png"_ns}) {
        AutoreleasePool pool;
        if (NSString* problem = writePages(_document, format, _arguments, registry(), _report))
            complain(problem);
        print(_report->takeText());
    }
    if (_arguments->hasOption(u"--pdf"_ns) || _arguments->hasOption(u"--png"_ns)) markMoment("pages");
}

// What cannot be taken back is not done after a failure. Complains if the user asked for it.
bool WRApplication::isLastStepDue(NSString* option) {
    if (!_arguments->hasOption(option)) return false;
    if (_hasFailed)
        complain(localizedFormat(
            u"_The argument \"%@\" was not obeyed, because not all that was asked for was done."_ns, option));
    return !_hasFailed;
}

// Sends what is on the disk.
void WRApplication::uploadDocument() {
    if (!isLastStepDue(u"--upload"_ns)) return;
    NSString* address = _arguments->valueOfOption(u"--upload"_ns);
    NSString* path = _arguments->valueOfOption(u"--save-as"_ns);
    if (!path) path = _path;
    if (NSString* problem = WRUploader::initWithProgress(_progress)->uploadFile_toAddress(path, address))
        return complain(problem);
    _report->addHeading(localized(u"_Sent"_ns));
    _report->addLabel_value(localized(u"_Path"_ns), path);
    _report->addLabel_value(localized(u"_Address"_ns), address);
    print(_report->takeText());
    markMoment("sent");
}

void WRApplication::trashDocument() {
    if (!isLastStepDue(u"--trash"_ns)) return;
    NSString* place = nullptr;
    if (NSString* problem = throwDocumentAway(_path, &place)) return complain(problem);
    _report->addHeading(localized(u"_In the trash"_ns));
    _report->addLabel_value(localized(u"_Path"_ns), place);
    print(_report->takeText());
}

// MARK: The main loop

// Edits of the command line come as a burst, as if they had been typed fast.
void WRApplication::runMainLoop() {
    count();
    for (id edit : _arguments->valuesOfOption(u"--edit"_ns))
        performSoon("takeEdit:"_sel, static_cast<NSString*>(edit));
    if (NSString* position = _arguments->valueOfOption(u"--at"_ns))
        performSoon("takePosition:"_sel, position);
    try {
        if (_arguments->hasOption(u"--stay"_ns)) _loop->stayForTarget_selector(this, "takeLine:"_sel);
        _loop->runWhile([&] { return _waitingPerforms > 0 || _counter->isCounting(); });
    } catch (...) {
        complainOfException();
    }
    _loop->end();
    if (_sentry) _sentry->invalidate();
    endWatchingPlugIns();
    _counter->invalidate();
}

void WRApplication::count() {
    if (_counter) _counter->invalidate();
    _counter = WRDocumentCounter::initWithDocument(_document);
    _counter->observers()->addObserver(this);
    _counter->start();
}

// MARK: What other programs change

// The document is watched before it is read, so that no change falls in between.
void WRApplication::watchFiles() {
    if (!_desktop)  // where windows watch by themselves
        _sentry = WRFileSentry::initWithPath_target_selector(_path, this, "documentFileDidChange"_sel);
    watchPlugIns();
}

void WRApplication::watchPlugIns() {
    NSString* folder = NSBundle::mainBundle()->builtInPlugInsPath();
    if (!folder) return;
    _plugInTimer = PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector(
        0.5, false, this, "plugInsAreThere:"_sel);
    _plugInFolder = ZWFNSubscribeFileWatcher::init();
    _plugInFolder->setDelegate(this);
    _plugInFolder->addPath(folder);
}

void WRApplication::endWatchingPlugIns() {
    if (_plugInTimer) _plugInTimer->invalidate();
    _plugInFolder = nullptr;
}

// What this program has changed is not lost by what another has saved.
void WRApplication::documentFileDidChange() {
    _sentry->noteFile();
    if (!_sentry->isFileThere()) {
        _report->addHeading(localizedFormat(
            u"_Another program has removed the document \"%@\". Its text is still open here."_ns, _path));
        return print(_report->takeText());
    }
    if (_hasOwnChanges) {
        _report->addHeading(localizedFormat(
            u"_Another program has changed the document \"%@\". It was not read again, because it was changed here, too."_ns,
            _path));
        return print(_report->takeText());
    }
    AutoreleasePool pool;
    if (WRDocument* document = readDocument()) {
        _document.set(document);
        count();
    }
}

void WRApplication::watcher_receivedNotification_forPath(id, NSString*, NSString*) {
    _plugInTimer->schedule();
}

void WRApplication::plugInsAreThere(PBDelayedActionTimer*) {
    _loader->lookAgain();
    _loader->declarePlugInsForMoment(WRLoadMomentDemand);
    auto* bundles = NSMutableArray::arrayWithArray(_loader->loadPlugInsForMoment(nullptr));
    bundles->addObjectsFromArray(_loader->loadPlugInsForMoment(WRLoadMomentDocument));
    if (bundles->count()) reportArrivals(bundles);
}

void WRApplication::counterDidAdvance(WRDocumentCounter* counter) {
    _progress->showTask_done_of(localized(u"_Counting"_ns), counter->position(), _document->text()->length());
}

void WRApplication::counterDidFinish(WRDocumentCounter* counter) {
    reportCount(_report, counter->count());
    print(_report->takeText());
    markMoment("counted");
}

void WRApplication::performSoon(SEL selector, NSString* argument) {
    NSRunLoop_PelvorAdditions::performSelector_target_argument_order(selector, this, argument,
                                                                     _waitingPerforms++);
}

void WRApplication::takeEdit(NSString* line) {
    --_waitingPerforms;
    applyEdit(line);
}

void WRApplication::takePosition(NSString* position) {
    --_waitingPerforms;
    showPosition(position);
}

void WRApplication::showPosition(NSString* text) {
    const auto position = textPositionOf(text);
    const NSUInteger length = _document->text()->length();
    if (!position || *position > length)
        return failStep(localizedFormat(
            u"_The position \"%@\" of \"--at\" is not in the document, which has %u UTF-16 units."_ns, text,
            length));
    reportCaret(_report, _document, *position);
    print(_report->takeText());
}

// Who types a line sees that it failed, and decides what to do. Nobody else does.
void WRApplication::takeLine(id line) {
    const StepFailure failure = _stepFailure;
    auto* text = cast<NSString>(line);
    text ? obeyLine(text)
         : failStep(localizedFormat(u"_The line \"%@\" is not UTF-8."_ns,
                                    readableBytes(static_cast<NSData*>(line))));
    if (isatty(STDIN_FILENO) && _stepFailure == StepFailure::some) _stepFailure = failure;
}

void WRApplication::obeyLine(NSString* line) {
    if (line->isEqualToString(u"quit"_ns)) return _loop->end();
    if (line->isEqualToString(u"save"_ns)) return saveOnRequest();
    if (line->hasPrefix(u"at "_ns)) return showPosition(line->substringFromIndex(3));
    if (line->length()) applyEdit(line);
}

// Who asks again, after being told that something failed, wants the document as it is.
void WRApplication::saveOnRequest() {
    NSString* path = _arguments->valueOfOption(u"--save-as"_ns);
    if (!path) return failStep(localized(u"_The line \"save\" needs the argument \"--save-as\"."_ns));
    if (_stepFailure == StepFailure::some) {
        _stepFailure = StepFailure::someToldAtSaving;
        return complain(localizedFormat(
            u"_The document \"%@\" was not written, because not all that was asked for was done. \"save\" once more writes it as it is."_ns,
            path));
    }
    _stepFailure = StepFailure::none;
    saveDocument();
}

void WRApplication::applyEdit(NSString* line) {
    const auto edit = textEditOf(line);
    const NSUInteger length = _document->text()->length();
    if (!edit) return failStep(localizedFormat(u"_The line \"%@\" means nothing."_ns, line));
    if (edit->range.location > length || edit->range.length > length - edit->range.location)
        return failStep(localizedFormat(
            u"_The edit \"%@\" lies outside the document, which has %u UTF-16 units."_ns, line, length));
    _document->replaceCharactersInRange_withString(edit->range, edit->text.get());
}

// MARK: Reports

void WRApplication::reportStart(NSArray* bundles) {
    NSBundle* bundle = NSBundle::mainBundle();
    id version = bundle->objectForInfoDictionaryKey(u"CFBundleShortVersionString"_ns);
    _report->addHeading(localizedFormat(u"_PelvorWriter %@"_ns, version));
    _report->addLabel_value(localized(u"_Bundle"_ns), bundle->bundlePath());
    _report->addLabel_value(localizedFormat(u"_Plug-ins (%u)"_ns, bundles->count()), namesOf(bundles));
    if (const NSUInteger failures = _loader->failureCount())
        _report->addLine(
            localizedFormat(u"_Plug-ins that could not be loaded: %u; see the log"_ns, failures));
    _report->addHeading(localized(u"_Registered"_ns));
    WRProfileListing::initWithProfiles(registry())->addToReport(_report);
    print(_report->takeText());
}

void WRApplication::reportArrivals(NSArray* bundles) {
    _report->addHeading(localized(u"_Loaded for the document"_ns));
    _report->addLabel_value(localizedFormat(u"_Plug-ins (%u)"_ns, bundles->count()), namesOf(bundles));
    for (id arrival : _arrivals.get()) {
        auto* profile = static_cast<PBProfile*>(arrival);
        auto* kind = cast<NSString>(profile->type());
        _report->addLabel_value(kind ? WRProfileListing::nameOfKind(kind) : u"-"_ns,
                                WRProfileListing::textOfProfile(profile));
    }
    _arrivals->removeAllObjects();
    print(_report->takeText());
}

// MARK: Output

// "timing ready 12.345" and "processor ready 12.345", in milliseconds, and "memory ready 20480", the most
// that there was so far, in KiB.
void WRApplication::markMoment(const char* name) {
    if (!_arguments->hasOption(u"--timing"_ns)) return;
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - _start;
    const double processor = 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
    char lines[200];
    std::snprintf(lines, sizeof lines, "timing %s %.3f\nprocessor %s %.3f\nmemory %s %ld\n", name,
                  elapsed.count(), name, processor, name, peakMemory());
    _timing += lines;
}

void WRApplication::print(NSString* text) {
    if (_desktop) return;  // what is to be seen is in the windows
    _progress->clear();
    const std::string bytes = text->toUTF8();
    bool isWritten =
        std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0;
    if (isWritten || _hasLostOutput) return;
    _hasLostOutput = true;  // told once
    complain(NSString::stringWithFormat(u"stdout: %s"_ns, std::strerror(errno)));
}

void WRApplication::complain(NSString* problem) {
    _hasFailed = true;
    print(_report->takeText());
    std::fprintf(stderr, "%s\n", WRReport::printableText(problem)->toUTF8().c_str());
}

void WRApplication::failStep(NSString* problem) {
    _stepFailure = StepFailure::some;
    complain(problem);
}

void WRApplication::complainOfException() {
    failStep(localizedFormat(u"_The work was broken off: %@"_ns, NSString::ofUTF8(currentExceptionReason())));
}

}  // namespace pelvor
