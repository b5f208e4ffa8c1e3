// SPDX-License-Identifier: Apache-2.0
// WRDocument: a document that is open.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "Foundation/NSString.h"
#include "Writer/FileIdentity.h"

namespace pelvor {

class NSArray;
class NSAttributedString;
class NSDictionary;
class NSMutableAttributedString;
class NSMutableString;
class PBProfile;

/// Posted by a document after its text, or its formats, have changed.
inline constexpr NSString* WRDocumentDidChangeNotification = u"WRDocumentDidChangeNotification"_ns;

/// The text of a document and how it came in. Main thread.
class PELVOR_EXPORT WRDocument : public NSObject {
    PELVOR_CLASS(WRDocument, NSObject);
    PELVOR_CREATORS(initWithName, initWithPath_reader_answer);

  public:
    /// Takes the answer of a reader. Returns null if the answer has no text, or its rich text has another.
    static Retained<WRDocument> initWithPath_reader_answer(NSString* path, PBProfile* reader,
                                                           NSDictionary* answer, Class* cls = classObject());

    /// An empty document without a file.
    static Retained<WRDocument> initWithName(NSString* name, Class* cls = classObject());

    /// "" for a document without a file.
    NSString* path() { return _path; }
    bool hasFile() { return _path->length() > 0; }
    /// The name of the file, or of a document without a file.
    NSString* name();
    void setName(NSString* name);
    /// Whether the text has changed since the document was read or made.
    bool hasChanged() { return _hasChanged; }
    /// Whether nobody has used the document: it has no file and no text, and has not changed. Another one may
    /// take its place without a question.
    bool isUnused() { return !hasFile() && !hasChanged() && text()->length() == 0; }
    /// The document's file is the one at the path from now on, which a writer has written. The reader, which
    /// may be null, is one for such a file. The name of the encoding is null where there is none.
    void wasWrittenToPath_reader_encoding(NSString* path, PBProfile* reader, NSString* encodingName);
    /// How the document came in is what the other one, read from its file again, says. The text stays, and so
    /// does its having formats, which undoing may bring back.
    void takeReading(WRDocument* other);
    // C++ only
    /// The file when it was last read or written, or when the user has last decided to replace it.
    const FileIdentity& fileIdentity() { return _fileIdentity; }
    void setFileIdentity(const FileIdentity& identity) { _fileIdentity = identity; }

    /// The text, borrowed; valid until the next change.
    NSString* text();
    /// The text with its formats, borrowed; null for a document without formats.
    NSAttributedString* richText();
    /// Whether the document has formats of its own. A document that is only shown in some format, as plain
    /// text is, has none, until the user gives it one.
    bool hasFormats() { return _hasFormats; }
    void setHasFormats(bool hasFormats) { _hasFormats = hasFormats; }
    /// The settings of PlugInProtocol.h; null for a document without settings.
    NSDictionary* settings() { return _settings; }
    void setSettings(NSDictionary* settings);

    // Changes of the text. Where there are formats, new text has those of the text that it replaces, or of
    // the text before it.

    /// Raises NSRangeException for a range outside.
    void replaceCharactersInRange_withString(NSRange range, NSString* string);
    /// Looks from the front on, unit by unit.
    void replaceAllOccurrencesOfString_withString(NSString* target, NSString* replacement);
    /// Puts another text in the place of the whole. Words keep their formats, word by word.
    void setText(NSString* text);
    /// Calls the function with the text, which it may change. The formats become those that `setText` gives.
    void changeText(const std::function<void(NSMutableString*)>& change);
    /// From now on this is the text: it has the document's characters in the formats that they are shown in.
    /// Whoever edits it calls `textDidChange` after each edit. The document keeps it.
    void adoptText(NSMutableAttributedString* text);
    void textDidChange();

    /// The reader's answer without the texts.
    NSDictionary* answer() { return _answer; }
    /// The profile of the reader that read the document.
    PBProfile* reader() { return _reader; }
    /// Null where there is no encoding, as for bytes.
    NSString* encodingName();
    bool hasByteOrderMark();
    /// Whether the encoding is a guess in which the text would not be the bytes of the file again.
    bool isLossy();
    /// How sure a guess of the encoding is, from 0 to 100; 100 for an encoding that is no guess.
    int confidence();
    /// The names of other encodings that may be meant. Borrowed.
    NSArray* otherEncodings();
    /// The name of the encoding whose byte-order mark the file has although it was read in another; else
    /// null.
    NSString* contradictingMark();
    /// What the reader says that the user should know, as sentences; else null.
    NSString* message();
    /// How much of the document its text is: a value of WRFidelityKey, or null for the whole document.
    NSString* fidelity();
    /// The length of the file when it was read.
    unsigned long long byteCount();

    /// Paragraphs are those of `paragraphRangeForRange`; the end of the text ends the last one. An empty text
    /// has no paragraphs.
    NSUInteger paragraphCount();
    /// The paragraph without its end. Raises NSRangeException for an index at or past the count.
    NSString* paragraphAtIndex(NSUInteger index);
    /// The range of that paragraph in the text. Raises like `paragraphAtIndex`.
    NSRange rangeOfParagraphAtIndex(NSUInteger index);

  protected:
    WRDocument() = default;
    ~WRDocument();

  private:
    const std::vector<NSRange>& paragraphs();

    Retained<NSString> _path, _name;
    FileIdentity _fileIdentity;
    // The text is the attributed one where there is one; then the string is null after a change, until
    // somebody asks.
    Retained<NSString> _text;
    Retained<NSMutableAttributedString> _attributedText;
    bool _hasFormats = false, _hasChanged = false;
    Retained<PBProfile> _reader;
    Retained<NSDictionary> _settings;
    Retained<NSDictionary> _answer;                   // the reader's, without the texts
    std::optional<std::vector<NSRange>> _paragraphs;  // found when they are first needed
};

}  // namespace pelvor
