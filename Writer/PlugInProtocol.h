// SPDX-License-Identifier: Apache-2.0
// The messages, keys and values that Writer and its plug-ins share.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

// A plug-in is a bundle in the PlugIns folder of Writer. Its Profiles.plist declares what it offers; each
// profile has an identifier, PBProfileTypeKey, PBProfileNameKey (the key of the name in the table that
// PBProfileStringsKey names) and, where there is code behind it, PBProfileClassKey. Writer makes an object by
// sending `init` to the class of that name, and sends it the messages below, so a plug-in needs this
// header but no code of Writer's. All messages come on the main thread.
//
// Document readers (PBProfileDocumentReaderType)
//
//     NSDictionary* readDocumentAtPath:(NSString*) options:(NSDictionary*)
//         Options: WREncodingKey, if the user named an encoding; WRProgressKey.
//         Returns WRTextKey and, where they make sense, WREncodingKey, WRByteOrderMarkKey, WRByteCountKey,
//         WRLossyKey, WRConfidenceKey, WROtherEncodingsKey, WRContradictingMarkKey; or WRErrorKey and
//         WRMessageKey. After WRErrorRefused the next reader is tried, and also where the user named
//         an encoding and the answer has no WREncodingKey.
//
//         A document with formats has WRRichTextKey besides, and may have WRDocumentSettingsKey. An answer
//         without an error may have WRMessageKey: what the user should know about the reading.
//
//         A reader whose text is less than the document says so by WRFidelityKey, in its profile or, where it
//         depends on the document, in the answer.
//
// Document writers (PBProfileDocumentWriterType)
//
//     NSDictionary* writeText:(NSString*) toPath:(NSString*) options:(NSDictionary*)
//         Options: WREncodingKey, if the user named an encoding; WRDocumentEncodingKey and
//         WRByteOrderMarkKey, the encoding and the mark that the document was read with, if there were any;
//         WRRichTextKey and WRDocumentSettingsKey, if the document has them. A writer that writes these has
//         WRFidelityRich in its profile; with others the user is told that formats are not written.
//         Returns WREncodingKey and WRByteCountKey, and perhaps WRMessageKey with what the user should know;
//         or WRErrorKey and WRMessageKey, and then the file at the path is what it was before.
//
// Page setters (WRProfilePageSetterType)
//
//     NSDictionary* writePagesOfText:(NSString*) format:(NSString*) toPath:(NSString*)
//     options:(NSDictionary*)
//         The format is one that the profile lists under PBProfileFormatsKey: "pdf", "png".
//         Options: WRTitleKey, a name for documents without a title; WRRichTextKey and WRDocumentSettingsKey,
//         if the document has them; WRStyleSheetKey, WRPaperKey, WRMarginKey and WRResolutionKey, if the user
//         named these; WRKeptPathsKey.
//         Returns WRPageCountKey, WRPathsKey and WRByteCountKey, and perhaps WRMessageKey; or WRErrorKey and
//         WRMessageKey.
//
// Document services (PBProfileDocumentServiceType)
//
//     NSDictionary* examineDocument:(id)
//         The document has the methods `path` and `text`, strings, `paragraphCount`, a number, and
//         `paragraphAtIndex:`, the paragraph's text without its end.
//         Returns what was found: from names, in the user's language, to strings or numbers, in the order in
//         which they are to be shown.
//
//     NSString* languageOfText:(NSString*)
//         Services that tell languages apart may have this method. Returns the identifier of the text's
//         language, "fr", or null.
//
// PBProfileDocumentTypesKey of readers and writers lists file extensions in lower case, and "*" for
// every document. Profiles that name a document's extension go before those with "*", and among equals the
// ones with the lower PBProfilePaletteOrderKey go first; services run in that order, too.
//
// Writer never replaces a document by less than was in it. The profile of a reader has WRFidelityKey unless
// its text is the whole document.
//
// A bundle whose information dictionary has WRLoadMomentKey with the value WRLoadMomentDocument is loaded
// after the first document was opened. With the value WRLoadMomentDemand its profiles are known from the
// start, and its code is loaded when one of them is first used. All others are loaded when Writer starts.

// Keys of options, and of answers: the dictionaries that plug-ins return

/// A string: the text of the document.
inline constexpr NSString* WRTextKey = u"text"_ns;
/// An attributed string: the text with its formats, which are the attributes of Text/TextAttributes.h and
/// those of NSAttributedString-PelvorAdditions.h. Its string is the text.
inline constexpr NSString* WRRichTextKey = u"rich text"_ns;
/// A dictionary with some of the settings below.
inline constexpr NSString* WRDocumentSettingsKey = u"document settings"_ns;
/// A string: the name of an encoding, "windows-1252".
inline constexpr NSString* WREncodingKey = u"encoding"_ns;
/// A string: the name of the encoding in which the document was read.
inline constexpr NSString* WRDocumentEncodingKey = u"document encoding"_ns;
/// A number: whether the encoding is a guess, and the text in it would not be the bytes of the file again.
inline constexpr NSString* WRLossyKey = u"lossy"_ns;
/// A number: how sure a guess of the encoding is, from 0 to 100.
inline constexpr NSString* WRConfidenceKey = u"confidence"_ns;
/// An array of strings: names of other encodings that may be meant, the likeliest first.
inline constexpr NSString* WROtherEncodingsKey = u"other encodings"_ns;
/// A string: the name of the encoding whose byte-order mark the file begins with, where it was read in
/// another.
inline constexpr NSString* WRContradictingMarkKey = u"contradicting mark"_ns;
/// An object that may be told how far the reading has come, by `readerDidRead:of:` with two unsigned long
/// long numbers of bytes.
inline constexpr NSString* WRProgressKey = u"progress"_ns;
/// A number: whether the file began with a byte-order mark.
inline constexpr NSString* WRByteOrderMarkKey = u"byte order mark"_ns;
/// A number: how many bytes were read or written.
inline constexpr NSString* WRByteCountKey = u"byte count"_ns;
/// A string: one of the errors below.
inline constexpr NSString* WRErrorKey = u"error"_ns;
/// A string: what went wrong, as a sentence in the user's language.
inline constexpr NSString* WRMessageKey = u"message"_ns;

/// A string: the path of a style sheet.
inline constexpr NSString* WRStyleSheetKey = u"style sheet"_ns;
/// A string: the size of the paper, "a4".
inline constexpr NSString* WRPaperKey = u"paper"_ns;
/// A number: the width of all four margins, in points.
inline constexpr NSString* WRMarginKey = u"margin"_ns;
/// A number: the pixels an inch of images.
inline constexpr NSString* WRResolutionKey = u"resolution"_ns;
/// An array of strings: the paths of files that must stay as they are.
inline constexpr NSString* WRKeptPathsKey = u"kept paths"_ns;
/// A number: how many pages there are.
inline constexpr NSString* WRPageCountKey = u"page count"_ns;
/// An array of strings: the paths of the files that were written.
inline constexpr NSString* WRPathsKey = u"paths"_ns;

// Attributes of text, which the library names too (NSAttributedString-PelvorAdditions.h); here for readers
// that have no use for fonts

/// A string: the name of the paragraph style that a style sheet describes, "heading 1".
inline constexpr NSString* WRParagraphStyleNameKey = u"PBStyleParagraph"_ns;
/// A string: the name of the character style, "emphasis".
inline constexpr NSString* WRCharacterStyleNameKey = u"PBStyleCharacter"_ns;
/// A WRLanguage.
inline constexpr NSString* WRLanguageAttributeKey = u"PBLanguage"_ns;

// Values of WRErrorKey

/// The reader cannot do anything with such a document; another one may.
inline constexpr NSString* WRErrorRefused = u"refused"_ns;
/// The file could not be read or written.
inline constexpr NSString* WRErrorFile = u"file"_ns;
/// The encoding is not known, or the document does not agree with it.
inline constexpr NSString* WRErrorEncoding = u"encoding"_ns;
/// The style sheet could not be read.
inline constexpr NSString* WRErrorStyleSheet = u"style sheet"_ns;
/// The plug-in threw; Writer itself makes this answer.
inline constexpr NSString* WRErrorPlugIn = u"plug-in"_ns;

// Settings of a document

// Numbers: lengths in points.
inline constexpr NSString* WRPageWidthKey = u"page width"_ns;
inline constexpr NSString* WRPageHeightKey = u"page height"_ns;
inline constexpr NSString* WRLeftMarginKey = u"left margin"_ns;
inline constexpr NSString* WRRightMarginKey = u"right margin"_ns;
inline constexpr NSString* WRTopMarginKey = u"top margin"_ns;
inline constexpr NSString* WRBottomMarginKey = u"bottom margin"_ns;
/// From the upper edge of the page to the header.
inline constexpr NSString* WRHeaderPlaceKey = u"header place"_ns;
/// From the lower edge of the page to the footer.
inline constexpr NSString* WRFooterPlaceKey = u"footer place"_ns;
// Attributed strings, in which the characters below stand for something.
inline constexpr NSString* WRHeaderKey = u"header"_ns;
inline constexpr NSString* WRFooterKey = u"footer"_ns;
// Strings.
inline constexpr NSString* WRTitleKey = u"title"_ns;
inline constexpr NSString* WRAuthorKey = u"author"_ns;
inline constexpr NSString* WRSubjectKey = u"subject"_ns;
inline constexpr NSString* WRKeywordsKey = u"keywords"_ns;
inline constexpr NSString* WRCommentKey = u"comment"_ns;

/// In headers and footers: the number of the page, the number of pages, and the title.
inline constexpr unichar WRPageNumberCharacter = 0xE010;
inline constexpr unichar WRPageCountCharacter = 0xE011;
inline constexpr unichar WRTitleCharacter = 0xE012;

// Profiles

/// A value of PBProfileTypeKey.
inline constexpr NSString* WRProfilePageSetterType = u"page setter"_ns;
/// A value of PBProfileTypeKey: Writer's windows (Windows/WRDesktop.h), a part of Writer that is loaded when
/// there is a display.
inline constexpr NSString* WRProfileDesktopType = u"desktop"_ns;

// Profiles of readers and writers

/// A string: one of the values below. Without it the text is the whole document.
inline constexpr NSString* WRFidelityKey = u"fidelity"_ns;
/// The text lacks some of the document, such as its markup: it is saved to other files only.
inline constexpr NSString* WRFidelityPart = u"part"_ns;
/// The text shows the document and is not its content: it is never saved.
inline constexpr NSString* WRFidelityView = u"view"_ns;
/// Of a writer: it writes formats and settings, too.
inline constexpr NSString* WRFidelityRich = u"rich"_ns;

// The information dictionary

inline constexpr NSString* WRLoadMomentKey = u"WRLoadMoment"_ns;
inline constexpr NSString* WRLoadMomentDocument = u"document"_ns;
inline constexpr NSString* WRLoadMomentDemand = u"demand"_ns;

}  // namespace pelvor
