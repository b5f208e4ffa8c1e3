// SPDX-License-Identifier: Apache-2.0
// WRDocument: a document that a reader has read.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSDictionary;
class NSMutableString;
class PBProfile;

/// Posted by a document after its text has changed.
inline constexpr NSString* WRDocumentDidChangeNotification = u"WRDocumentDidChangeNotification"_ns;

/// The text of a document and how it came in. Main thread.
class WRDocument : public NSObject {
    PELVOR_CLASS(WRDocument, NSObject);
    PELVOR_CREATORS(initWithPath_reader_answer);

  public:
    /// Takes the answer of a reader. Returns null if the answer has no text.
    static Retained<WRDocument> initWithPath_reader_answer(NSString* path, PBProfile* reader,
                                                           NSDictionary* answer, Class* cls = classObject());

    NSString* path() { return _path; }
    /// The text, borrowed; valid until the next change.
    NSString* text() { return _text; }
    /// Changes the text. Raises NSRangeException for a range outside.
    void replaceCharactersInRange_withString(NSRange range, NSString* string);
    void setText(NSString* text);
    /// Calls the function with the text, which it may change.
    void changeText(const std::function<void(NSMutableString*)>& change);
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
    void textDidChange();
    const std::vector<NSRange>& paragraphs();

    Retained<NSString> _path;
    Retained<NSString> _text;
    Retained<PBProfile> _reader;
    Retained<NSDictionary> _answer;                   // the reader's, without the text
    std::optional<std::vector<NSRange>> _paragraphs;  // found when they are first needed
};

}  // namespace pelvor
