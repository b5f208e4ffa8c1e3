// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocumentSaver.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBProfileKeys.h"
#include "PBProfileSet.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInObjects.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/SameFile.h"
#include "Writer/WRDocument.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

bool hasFidelity(WRDocument* document, NSString* fidelity) {
    return document->fidelity() && document->fidelity()->isEqualToString(fidelity);
}

bool isRich(PBProfile* profile) {
    auto* value = cast<NSNumber>(profile->valueForKey(PBProfileRichnessKey));
    return value && value->boolValue();
}

NSMutableDictionary* optionsFor(WRDocument* document, NSString* encodingName) {
    auto* options = NSMutableDictionary::dictionary();
    if (encodingName) options->setObject_forKey(encodingName, WREncodingKey);
    if (NSString* own = document->encodingName()) options->setObject_forKey(own, WRDocumentEncodingKey);
    options->setObject_forKey(NSNumber::numberWithBool(document->hasByteOrderMark()), WRByteOrderMarkKey);
    // A copy, for the document may change later.
    if (document->richText()) options->setObject_forKey(document->richText()->copy().get(), WRRichTextKey);
    if (document->settings()) options->setObject_forKey(document->settings(), WRDocumentSettingsKey);
    return options;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRDocumentSaver, writerLibrary) {
    methods.creator<"initWithProfiles:", &WRDocumentSaver::initWithProfiles>();
    methods.instance<"saveDocument:toPath:encoding:", &WRDocumentSaver::saveDocument_toPath_encoding>();
    methods.instance<"problem", &WRDocumentSaver::problem>();
    methods.instance<"chooseWriterForDocument:path:", &WRDocumentSaver::chooseWriterForDocument_path>();
    methods.instance<"readerForPath:", &WRDocumentSaver::readerForPath>();
    methods.instance<"writer", &WRDocumentSaver::writer>();
    methods.instance<"dropsFormats:", &WRDocumentSaver::dropsFormats>();
}

WRDocumentSaver::~WRDocumentSaver() = default;

Retained<WRDocumentSaver> WRDocumentSaver::initWithProfiles(PBProfileSet* profiles, Class* cls) {
    auto self = make<WRDocumentSaver>(cls);
    self->_profiles.set(profiles);
    return self;
}

NSDictionary* WRDocumentSaver::saveDocument_toPath_encoding(WRDocument* document, NSString* path,
                                                            NSString* encodingName) {
    _remedy = SavingRemedy::none;
    chooseWriterForDocument_path(document, path);
    _problem.set(problemOfSaving(document, path, encodingName));
    if (_problem) return nullptr;
    NSDictionary* answer = askPlugIn(_writer, "writeText:toPath:options:"_sel, document->text(), path,
                                     optionsFor(document, encodingName));
    _problem.set(problemOfAnswer(answer, WRByteCountKey, _writer));
    if (id error = answer->objectForKey(WRErrorKey))
        _remedy = error->isEqual(WRErrorEncoding) ? SavingRemedy::encoding
                  : error->isEqual(WRErrorFile)   ? SavingRemedy::file
                                                  : SavingRemedy::none;
    return _problem ? nullptr : answer;
}

// The best writer for the path. A document that is saved where it was read stays of its kind: the source of a
// web page that was read as plain text does not become a page that shows that source.
PBProfile* WRDocumentSaver::chooseWriterForDocument_path(WRDocument* document, NSString* path) {
    _writer = nullptr;
    const bool keepsKind = document->reader() && isSameFile(path, document->path());
    for (id candidate : profilesForDocument(_profiles, PBProfileDocumentWriterType, path)) {
        auto* writer = static_cast<PBProfile*>(candidate);
        if (keepsKind && isRich(writer) != isRich(document->reader())) continue;
        _writer.set(writer);
        break;
    }
    return _writer;
}

PBProfile* WRDocumentSaver::readerForPath(NSString* path) {
    for (id candidate : profilesForDocument(_profiles, PBProfileDocumentReaderType, path)) {
        auto* reader = static_cast<PBProfile*>(candidate);
        if (_writer && isRich(reader) == isRich(_writer) && !reader->valueForKey(WRFidelityKey))
            return reader;
    }
    return nullptr;
}

bool WRDocumentSaver::keepsFormats(PBProfile* writer) {
    id fidelity = writer ? writer->valueForKey(WRFidelityKey) : nullptr;
    return fidelity && fidelity->isEqual(WRFidelityRich);
}

bool WRDocumentSaver::dropsFormats(WRDocument* document) {
    return _writer && (document->richText() || document->settings()) && !keepsFormats(_writer);
}

// What forbids the saving before any writer is asked; null if nothing does.
NSString* WRDocumentSaver::problemOfSaving(WRDocument* document, NSString* path, NSString* encodingName) {
    if (hasFidelity(document, WRFidelityView))
        return localizedFormat(
            u"_The document \"%@\" was not written: \"%@\" only shows documents, and what it shows is not their content."_ns,
            path, nameOfProfile(document->reader()));
    if (hasFidelity(document, WRFidelityPart) && isSameFile(path, document->path())) {
        _remedy = SavingRemedy::file;
        return localizedFormat(
            u"_The document \"%@\" was not written: \"%@\" leaves out some of what is in the file. Save it as another file."_ns,
            path, nameOfProfile(document->reader()));
    }
    if (document->isLossy() && !encodingName && !keepsFormats(_writer)) {
        _remedy = SavingRemedy::encoding;
        return localizedFormat(
            u"_The document \"%@\" was not written: its encoding \"%@\" was guessed, and would give other bytes than were read. Name an encoding by \"--encoding\" or \"--save-encoding\"."_ns,
            path, document->encodingName());
    }
    if (!_writer)
        return localizedFormat(u"_The document \"%@\" could not be written: there is no writer for it."_ns,
                               path);
    return nullptr;
}

}  // namespace pelvor
