// SPDX-License-Identifier: Apache-2.0
// WRDocumentSaver: finds a writer for a document and has it written.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSDictionary;
class PBProfile;
class PBProfileSet;
class WRDocument;

/// What the user can do where a document was not written.
enum class SavingRemedy : std::uint8_t {
    none,      ///< written, or the problem lies elsewhere
    encoding,  ///< name another encoding
    file,      ///< save it as another file
};

/// Has the best writer that a profile query finds for the path write a document, unless the file at the path
/// would lose content. Main thread.
class PELVOR_EXPORT WRDocumentSaver : public NSObject {
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
    // C++ only
    SavingRemedy remedy() { return _remedy; }

    /// Finds the writer for the document at the path, which is not asked yet.
    PBProfile* chooseWriterForDocument_path(WRDocument* document, NSString* path);
    /// The profile of the writer that was chosen or tried last; null if there was none.
    PBProfile* writer() { return _writer; }
    /// The profile of a reader that reads what the writer wrote to the path; null if there is none.
    PBProfile* readerForPath(NSString* path);
    /// Whether the profile is that of a writer that writes formats. False for null.
    static bool keepsFormats(PBProfile* writer);
    /// Whether the document has formats or page settings and the writer does not write them.
    bool dropsFormats(WRDocument* document);

  protected:
    WRDocumentSaver() = default;
    ~WRDocumentSaver();

  private:
    NSString* problemOfSaving(WRDocument* document, NSString* path, NSString* encodingName);

    Retained<PBProfileSet> _profiles;
    Retained<PBProfile> _writer;
    Retained<NSString> _problem;
    SavingRemedy _remedy = SavingRemedy::none;
};

}  // namespace pelvor
