// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocumentOpener.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "Foundation/NSArray.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSMutableDictionary.h"
#include "PBProfileKeys.h"
#include "PBProfileSet.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInObjects.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

NSString* problemOfReason(int reason, NSString* path, bool isWriting = false) {
    auto* error = NSFileError::errorWithCode_path_isWriting(reason, path, isWriting);
    return localizedFormat(u"_The document \"%@\" could not be opened: %@."_ns, path,
                           error->localizedReason());
}

// What stands in the way of reading the file, whichever reader is asked; null if nothing does.
NSString* obstacleAtPath(NSString* path) {
    const char* name = path->fileSystemRepresentation();
    struct stat status;
    if (stat(name, &status) != 0) return problemOfReason(errno, path);
    if (S_ISDIR(status.st_mode)) return problemOfReason(EISDIR, path);
    if (access(name, R_OK) != 0) return problemOfReason(errno, path);
    return S_ISREG(status.st_mode) ? nullptr : problemOfReason(0, path);
}

// What is wrong with a document that a reader made; null if nothing is.
NSString* problemOfDocument(WRDocument* document, NSDictionary* options, PBProfile* reader) {
    if (!document) return problemOfAnswer(NSDictionary::dictionary(), WRTextKey, reader);
    id wanted = options->objectForKey(WREncodingKey);
    if (!wanted || document->encodingName()) return nullptr;
    return localizedFormat(u"_The reader \"%@\" has no use for the encoding \"%@\"."_ns,
                           nameOfProfile(reader), wanted);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRDocumentOpener, writerLibrary) {
    methods.creator<"initWithProfiles:", &WRDocumentOpener::initWithProfiles>();
    methods.instance<"openDocumentAtPath:options:", &WRDocumentOpener::openDocumentAtPath_options>();
    methods
        .instance<"openOrMakeDocumentAtPath:options:", &WRDocumentOpener::openOrMakeDocumentAtPath_options>();
    methods.instance<"problem", &WRDocumentOpener::problem>();
    methods.instance<"candidates", &WRDocumentOpener::candidates>();
}

WRDocumentOpener::~WRDocumentOpener() = default;

Retained<WRDocumentOpener> WRDocumentOpener::initWithProfiles(PBProfileSet* profiles, Class* cls) {
    auto self = make<WRDocumentOpener>(cls);
    self->_profiles.set(profiles);
    self->_candidates.set(NSArray::array());
    return self;
}

WRDocument* WRDocumentOpener::openDocumentAtPath_options(NSString* path, NSDictionary* options) {
    _candidates.set(NSArray::array());
    _problem.set(obstacleAtPath(path));
    if (_problem) return nullptr;
    _candidates.set(profilesForDocument(_profiles, PBProfileDocumentReaderType, path));
    return askReaders(path, options);
}

WRDocument* WRDocumentOpener::openOrMakeDocumentAtPath_options(NSString* path, NSDictionary* options) {
    struct stat status;
    if (stat(path->fileSystemRepresentation(), &status) == 0 || errno != ENOENT)
        return openDocumentAtPath_options(path, options);
    _candidates.set(NSArray::array());
    NSString* folder = path->stringByDeletingLastPathComponent();
    const bool hasFolder = folder->length() == 0 || stat(folder->fileSystemRepresentation(), &status) == 0;
    _problem.set(hasFolder ? nullptr : problemOfReason(errno, path, true));
    if (_problem) return nullptr;
    auto* answer = NSMutableDictionary::dictionaryWithObject_forKey(u""_ns, WRTextKey);
    if (id encoding = options->objectForKey(WREncodingKey)) answer->setObject_forKey(encoding, WREncodingKey);
    return WRDocument::initWithPath_reader_answer(path, nullptr, answer).autorelease();
}

// A refusal leads to the next reader. Any other error ends the search, for the document is at fault.
WRDocument* WRDocumentOpener::askReaders(NSString* path, NSDictionary* options) {
    _problem.set(
        localizedFormat(u"_The document \"%@\" could not be opened: there is no reader for it."_ns, path));
    const FileIdentity identity = FileIdentity::ofFile(path);  // a change while somebody reads counts
    for (id candidate : _candidates.get()) {
        auto* profile = static_cast<PBProfile*>(candidate);
        NSDictionary* answer = askPlugIn(profile, "readDocumentAtPath:options:"_sel, path, options);
        _problem.set(problemOfAnswer(answer, WRTextKey, profile));
        if (!_problem) {
            auto document = WRDocument::initWithPath_reader_answer(path, profile, answer);
            _problem.set(problemOfDocument(document, options, profile));
            if (!_problem) {
                document->setFileIdentity(identity);
                return std::move(document).autorelease();
            }
        }
        id error = answer->objectForKey(WRErrorKey);
        if (error && !error->isEqual(WRErrorRefused) && !error->isEqual(WRErrorPlugIn)) return nullptr;
    }
    return nullptr;
}

}  // namespace pelvor
