// SPDX-License-Identifier: Apache-2.0
// WRDocumentSaver: finds a writer for a document and has it written.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;
class PBProfile;
class PBProfileSet;
class WRDocument;

/// Has the best writer that a profile query finds for the path write a document, unless the file at the path
/// would lose content. Main thread.
class WRDocumentSaver : public NSObject {
    PELVOR_CLASS(WRDocumentSaver, NSObject);
    PELVOR_CREATORS(initWithProfiles);

  public:
    static Retained<WRDocumentSaver> initWithProfiles(PBProfileSet* profiles, Class* cls = classObject());

    /// Writes the document in the named encoding, or, if `encodingName` is null, in the encoding in which the
    /// document was read. Returns the answer of the writer, borrowed. Returns null if the document was not
    /// written; `problem` then tells the reason.
    NSDictionary* saveDocument_toPath_encoding(WRDocument* document, NSString* path, NSString* encodingName);

    /// Why the last document was not written, as a sentence for the user; null if it was written.
    NSString* problem() { return _problem; }
    /// The profile of the writer that was tried last; null if there was no writer.
    PBProfile* writer() { return _writer; }
    /// Whether the document has formats and that writer does not write them.
    bool dropsFormats(WRDocument* document);

  protected:
    WRDocumentSaver() = default;
    ~WRDocumentSaver();

  private:
    PBProfile* writerFor(WRDocument* document, NSString* path);
    NSString* problemOfSaving(WRDocument* document, NSString* path, NSString* encodingName);

    Retained<PBProfileSet> _profiles;
    Retained<PBProfile> _writer;
    Retained<NSString> _problem;
};

}  // namespace pelvor
