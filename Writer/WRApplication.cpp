// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRApplication.h"

#include <cstdio>

#include "Foundation/NSArray.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableSet.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "PBPostLoader.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "PBUtil.h"
#include "Runtime/AutoreleasePool.h"
#include "Writer/PlugInObjects.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/TextMeasure.h"
#include "Writer/WRArguments.h"
#include "Writer/WRDocumentOpener.h"
#include "Writer/WRDocumentSaver.h"
#include "Writer/WRPlugInLoader.h"
#include "Writer/WRProfileListing.h"
#include "Writer/WRReport.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

using Clock = std::chrono::steady_clock;

constexpr NSUInteger kFirstLineLength = 72;

NSString* localized(NSString* key) { return _PBDoLocalize(key, nullptr); }

template <class... Arguments>
NSString* localizedFormat(NSString* key, const Arguments&... arguments) {
    return NSString::stringWithFormat(localized(key), arguments...);
}

NSNumber* number(unsigned long long value) { return NSNumber::numberWithUnsignedLongLong(value); }

PBRegistry* registry() { return PBRegistry::sharedRegistry(); }

NSDictionary* optionsWithEncoding(NSString* name) {
    return name ? NSDictionary::dictionaryWithObject_forKey(name, WREncodingKey) : NSDictionary::dictionary();
}

NSString* namesOf(NSArray* bundles) {
    auto* names = NSMutableArray::array();
    for (id bundle : bundles) names->addObject(WRPlugInLoader::nameOfBundle(static_cast<NSBundle*>(bundle)));
    return names->componentsJoinedByString(u", "_ns);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRApplication, writerLibrary) {
    methods.instance<"run", &WRApplication::run>();
    methods.instance<"profilesDidChange:", &WRApplication::profilesDidChange>();
}

WRApplication::~WRApplication() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

Retained<WRApplication> WRApplication::initWithArguments_start(NSArray* arguments, Clock::time_point start) {
    auto self = make<WRApplication>();
    self->_start = start;
    self->_arguments = WRArguments::initWithArguments(arguments);
    self->_report = WRReport::init();
    self->_arrivals = NSMutableArray::init();
    self->_knownIdentifiers = NSMutableSet::init();
    return self;
}

int WRApplication::run() {
    if (NSString* problem = _arguments->problem()) {
        complain(problem);
        return 2;
    }
    if (_arguments->wantsHelp()) {
        print(WRArguments::usage()->stringByAppendingString(u"\n"_ns));
        return 0;
    }
    startUp();
    bool isGood = true;
    if (!_arguments->wantsList()) {
        isGood = openDocument();
        if (isGood) {
            loadDocumentPlugIns();
            examineDocument();
            isGood = saveDocument();
        }
    }
    markMoment("end");
    if (_arguments->wantsTiming()) print(NSString::ofUTF8(_timing));
    return isGood && std::fflush(stdout) == 0 ? 0 : 1;
}

// MARK: Stages

// The classes that are linked in go through their hooks first; every bundle that is loaded later brings a cycle
// of its own.
void WRApplication::startUp() {
    PBPostLoader::processClasses();
    markMoment("classes");
    _loader = WRPlugInLoader::initWithFolder(NSBundle::mainBundle()->builtInPlugInsPath());
    NSArray* bundles = _loader->loadPlugInsForMoment(nullptr);
    markMoment("ready");
    reportStart(bundles);
}

bool WRApplication::openDocument() {
    NSString* path = _arguments->documentPath();
    if (!path) path = NSBundle::mainBundle()->pathForResource_ofType(u"Sample"_ns, u"txt"_ns);
    if (!path) {
        complain(localized(u"_The sample document is missing."_ns));
        return false;
    }
    auto opener = WRDocumentOpener::initWithProfiles(registry());
    _document.set(
        opener->openDocumentAtPath_options(path, optionsWithEncoding(_arguments->encodingName())));
    if (!_document) {
        complain(opener->problem());
        return false;
    }
    markMoment("opened");
    reportDocument(opener);
    return true;
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
    for (id object : profilesInOrder(registry()->profilesOfType(PBProfileDocumentServiceType))) {
        AutoreleasePool pool;
        auto* profile = static_cast<PBProfile*>(object);
        NSDictionary* answer = askPlugIn(profile, "examineDocument:"_sel, _document.get());
        _report->addHeading(nameOfProfile(profile));
        if (answer->objectForKey(WRErrorKey)) {
            _report->addLine(problemOfAnswer(answer, WRTextKey, profile));
            continue;
        }
        for (NSDictionaryEntry entry : answer)
            _report->addLabel_value(entry.key->description(), entry.value);
    }
    print(_report->takeText());
    markMoment("examined");
}

bool WRApplication::saveDocument() {
    NSString* path = _arguments->savePath();
    if (!path) return true;
    auto saver = WRDocumentSaver::initWithProfiles(registry());
    NSDictionary* answer = saver->saveText_toPath_options(
        _document->text(), path, optionsWithEncoding(_arguments->saveEncodingName()));
    if (!answer) {
        complain(saver->problem());
        return false;
    }
    _report->addHeading(localized(u"_Written"_ns));
    _report->addLabel_value(localized(u"_Path"_ns), path);
    _report->addLabel_value(localized(u"_Writer"_ns), nameOfProfile(saver->writer()));
    if (id encoding = answer->objectForKey(WREncodingKey))
        _report->addLabel_value(localized(u"_Encoding"_ns), encoding);
    _report->addLabel_value(localized(u"_Bytes"_ns), answer->objectForKey(WRByteCountKey));
    print(_report->takeText());
    markMoment("saved");
    return true;
}

// MARK: Reports

void WRApplication::reportStart(NSArray* bundles) {
    NSBundle* bundle = NSBundle::mainBundle();
    id version = bundle->objectForInfoDictionaryKey(u"CFBundleShortVersionString"_ns);
    _report->addHeading(localizedFormat(u"_PelvorWriter %@"_ns, version));
    _report->addLabel_value(localized(u"_Bundle"_ns), bundle->bundlePath());
    _report->addLabel_value(localizedFormat(u"_Plug-ins (%u)"_ns, bundles->count()), namesOf(bundles));
    if (const NSUInteger failures = _loader->failureCount())
        _report->addLine(localizedFormat(u"_Plug-ins that could not be loaded: %u; see the log"_ns, failures));
    _report->addHeading(localized(u"_Registered"_ns));
    WRProfileListing::initWithProfiles(registry())->addToReport(_report);
    print(_report->takeText());
}

void WRApplication::reportDocument(WRDocumentOpener* opener) {
    const TextMeasure measure = measureDocument(_document);
    _report->addHeading(localizedFormat(u"_Document \"%@\""_ns, _document->path()->lastPathComponent()));
    auto add = [this](NSString* label, id value) { _report->addLabel_value(localized(label), value); };
    add(u"_Path"_ns, _document->path());
    add(u"_Reader"_ns, reasonForReader(opener));
    if (NSString* encoding = _document->encodingName())
        add(u"_Encoding"_ns, _document->hasByteOrderMark()
                                 ? localizedFormat(u"_%@ with a byte-order mark"_ns, encoding)
                                 : encoding);
    add(u"_Bytes"_ns, number(_document->byteCount()));
    add(u"_UTF-16 units"_ns, number(_document->text()->length()));
    add(u"_Code points"_ns, number(measure.codePoints));
    add(u"_Words"_ns, number(measure.words));
    add(u"_Paragraphs"_ns, number(_document->paragraphCount()));
    if (measure.longestLength)
        add(u"_Longest paragraph"_ns, localizedFormat(u"_number %u, of %u units"_ns,
                                                      measure.longestParagraph + 1, measure.longestLength));
    add(u"_First line"_ns, firstLineOfDocument(_document, kFirstLineLength));
    print(_report->takeText());
}

// "Plain text, chosen of 2 for documents "txt"".
NSString* WRApplication::reasonForReader(WRDocumentOpener* opener) {
    PBProfile* reader = _document->reader();
    NSArray* candidates = opener->candidates();
    NSString* extension = _document->path()->pathExtension();
    if (candidates->indexOfObjectIdenticalTo(reader) > 0)
        return localizedFormat(u"_%@, the first of %u that did not refuse"_ns, nameOfProfile(reader),
                               candidates->count());
    if (isNamedForDocument(reader, _document->path()))
        return localizedFormat(u"_%@, of %u, because it is for \"%@\" documents"_ns, nameOfProfile(reader),
                               candidates->count(), extension);
    return localizedFormat(u"_%@, of %u, because it takes every document"_ns, nameOfProfile(reader),
                           candidates->count());
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
    print(_report->takeText());
}

// MARK: Output

// "timing ready 12.345", in milliseconds.
void WRApplication::markMoment(const char* name) {
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - _start;
    char line[80];
    std::snprintf(line, sizeof line, "timing %s %.3f\n", name, elapsed.count());
    _timing += line;
}

void WRApplication::print(NSString* text) {
    const std::string bytes = text->toUTF8();
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

void WRApplication::complain(NSString* problem) {
    print(_report->takeText());
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n", WRReport::printableText(problem)->toUTF8().c_str());
}

}  // namespace pelvor
