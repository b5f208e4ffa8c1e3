// SPDX-License-Identifier: Apache-2.0
// The attributes of a word processor's text, and what it asks of and does to attributed strings: languages,
// words, paragraphs, attachments, and attributes whose values are sets.
//
//     PBSystemLanguage = language;  // the host's, once, when it starts
//     bool isWord;
//     NSRange word = rangeOfWordAtIndex_isWord(text, 10, &isWord);
//     addPluralAttribute_value_range(text, PBHighlightAttributeName, comment, word);
//
// Operations that return strings, attributes or values return them borrowed. An index or a range outside the
// text raises NSRangeException; null as a string, a name or a value raises NSInvalidArgumentException;
// pointers to results may be null.
#pragma once

#include "Foundation/NSMutableAttributedString.h"
#include "Text/TextAttributes.h"

namespace pelvor {

struct Category;
class NSSet;
class NSString;

// MARK: Names of attributes, with the texts that documents are stored with

/// "PBStyleNoteReference": marks the reference to a note. Not typed on.
extern PELVOR_EXPORT NSString* const PBStyleNoteReferenceAttributeName;
/// "PBStyleCharacter": the character style of the run.
extern PELVOR_EXPORT NSString* const PBStyleCharacterAttributeName;
/// "PBStyleParagraph": the named paragraph style of the run.
extern PELVOR_EXPORT NSString* const PBStyleParagraphAttributeName;
/// "PBStyleNoteText": the style of the text of notes.
extern PELVOR_EXPORT NSString* const PBStyleNoteTextAttributeName;
/// "PBFontSubstituted": marks text whose font is missing and was replaced by another one.
extern PELVOR_EXPORT NSString* const PBFontSubstitutedAttributeName;
/// "PBFontCaseChange": small capitals and the like.
extern PELVOR_EXPORT NSString* const PBFontCaseChangeAttributeName;
/// "PBFontSize": the size of the font.
extern PELVOR_EXPORT NSString* const PBFontSizeAttributeName;
/// "PBCompressedFont": wide or narrow, whatever the font.
extern PELVOR_EXPORT NSString* const PBExpandedFontAttributeName;
/// "PBItalicFont": italic, whatever the font.
extern PELVOR_EXPORT NSString* const PBItalicFontAttributeName;
/// "PBBoldFont": bold, whatever the font.
extern PELVOR_EXPORT NSString* const PBBoldFontAttributeName;
/// "PBFloatingContent": what is anchored at the character. Not typed on.
extern PELVOR_EXPORT NSString* const PBFloatingContentAttributeName;
/// "PBHighlight": highlighted text.
extern PELVOR_EXPORT NSString* const PBHighlightAttributeName;
/// "PBLanguage": a language object; text without one is in the system language.
extern PELVOR_EXPORT NSString* const PBLanguageAttributeName;
/// "PBModelAttributes": the attributes of the model that the displayed ones come from.
extern PELVOR_EXPORT NSString* const PBModelAttributesAttributeName;
/// "PBAutomaticNumber": a number that the document counts.
extern PELVOR_EXPORT NSString* const PBAutomaticNumberAttributeName;
/// "PBNewlineBeforeFeedAttrName": marks the newline that stands before a page break.
extern PELVOR_EXPORT NSString* const PBNewlineBeforeFormFeedAttachmentAttributeName;
/// "PBBreakType": what a break character breaks. Not typed on.
extern PELVOR_EXPORT NSString* const PBBreakTypeAttributeName;

// Names of the platform's attributes that its oldest releases do not declare.

extern PELVOR_EXPORT NSString* const PBStrokeColorAttributeName;         ///< "NSStrokeColor"
extern PELVOR_EXPORT NSString* const PBShadowAttributeName;              ///< "NSShadow"
extern PELVOR_EXPORT NSString* const PBExpansionAttributeName;           ///< "NSExpansion"
extern PELVOR_EXPORT NSString* const PBStrokeWidthAttributeName;         ///< "NSStrokeWidth"
extern PELVOR_EXPORT NSString* const PBObliquenessAttributeName;         ///< "NSObliqueness"
extern PELVOR_EXPORT NSString* const PBStrikethroughColorAttributeName;  ///< "NSStrikethroughColor"
extern PELVOR_EXPORT NSString* const PBStrikethroughStyleAttributeName;  ///< "NSStrikethrough"
extern PELVOR_EXPORT NSString* const PBToolTipAttributeName;             ///< "NSToolTip"

/// "pelvor-anchor": the scheme of links to an anchor in the same document.
extern PELVOR_EXPORT NSString* const PBHTMLAnchorDestinationLinkProtocol;

// MARK: Languages

/// The language of text that has none of its own. The host sets it when it starts, and keeps the object
/// alive; null until then: each character then counts as a word, and no paragraphs are found.
///
/// A language is any object with these operations:
///
///     NSRange rangeWithGranularity:(int) forString:(NSAttributedString*) range:(NSRange)
///         the word, or what stands between two words, at a range of one character; granularity is 1
///     id acquireBoundaryScanner, void relinquishBoundaryScanner:(id)
///         lend a scanner with void setString:(NSString*), which takes null too, and
///         NSUInteger offsetOfWordBoundaryFrom:(NSUInteger) isForwardSearch:(bool)
///         for the nearest boundary behind the offset, or backwards before it, or NSNotFound
///     NSRange paragraphRangeForString:(NSString*) range:(NSRange)
///             wordCount:(NSUInteger*) charCount:(NSUInteger*)
///         the range up to and with the first paragraph end, at NSNotFound if there is none; writes how many
///         words and characters it passed; neither pointer is null
///     bool isRightToLeft
extern PELVOR_EXPORT id PBSystemLanguage;

/// The language of text with these attributes, which may be null.
PELVOR_EXPORT id PBEffectiveLanguageForAttributes(NSDictionary* attributes);
/// The direction of the paragraph style, else that of the language; never the natural one. The attributes may
/// be null.
PELVOR_EXPORT NSWritingDirection PBEffectiveWritingDirectionForAttributes(NSDictionary* attributes);

/// The language at the index; the range is the run, or the stretch inside the limit, over which the attribute
/// is equal, also where the text has no language of its own.
PELVOR_EXPORT id languageAttributeAtIndex_effectiveRange(NSAttributedString* text, NSUInteger index,
                                                         NSRange* effectiveRange);
PELVOR_EXPORT id languageAttributeAtIndex_longestEffectiveRange_inRange(NSAttributedString* text,
                                                                        NSUInteger index,
                                                                        NSRange* longestRange, NSRange limit);
/// The language at the index, and a range from the start of the suggested one for which that language may
/// judge words: its stretch, without a word at its end that goes on in another language.
PELVOR_EXPORT id languageAttributeAtIndex_cleanEffectiveRange_suggestedRange(NSAttributedString* text,
                                                                             NSUInteger index,
                                                                             NSRange* cleanRange,
                                                                             NSRange suggestedRange);

// MARK: Creation

struct PELVOR_EXPORT NSAttributedString_PelvorAdditions {
    /// The empty attributed string, always the same object.
    static NSAttributedString* attributedString();
    static NSAttributedString* attributedStringWithString(NSString* string);
};

struct PELVOR_EXPORT NSMutableAttributedString_PelvorAdditions {
    /// Empty.
    static NSMutableAttributedString* attributedString(Class* cls = NSMutableAttributedString::classObject());
    static NSMutableAttributedString* attributedStringWithString(
        NSString* string, Class* cls = NSMutableAttributedString::classObject());
    static Retained<NSMutableAttributedString> newWithString_attributes(
        NSString* string, NSDictionary* attributes, Class* cls = NSMutableAttributedString::classObject());
};

// MARK: Attributes and attachments

/// Null; texts of hosts have one.
PELVOR_EXPORT id stylesheet(NSAttributedString* text);
/// Those of the first character; without entries for an empty text.
PELVOR_EXPORT NSDictionary* firstAttributes(NSAttributedString* text);
PELVOR_EXPORT NSDictionary* attributesAtIndex(NSAttributedString* text, NSUInteger index);
/// The attachment at the index; null if another character than NSAttachmentCharacter stands there.
PELVOR_EXPORT id attachmentAtIndex(NSAttributedString* text, NSUInteger index);
/// The first attachment at or behind the offset, which becomes its index; without one null, and the offset
/// stays.
PELVOR_EXPORT id nextAttachmentFromOffset(NSAttributedString* text, NSUInteger* offset);
/// The first value that the attribute has in the range. `effectiveRange` becomes the whole run that has it.
PELVOR_EXPORT id nextAttribute_effectiveRange_inRange(NSAttributedString* text, NSString* name,
                                                      NSRange* effectiveRange, NSRange range);
/// The part of the range over which the attribute stays what it is at the location. The location is inside
/// the range; one away from it gives the whole range or the empty range at the location.
PELVOR_EXPORT NSRange constrainRange_toSingleAttribute_location(NSAttributedString* text, NSRange range,
                                                                NSString* name, NSUInteger location);
/// The range, cut before the mask to where the attribute is as at the mask's first character, and behind the
/// mask to where it is as at the mask's last. The mask begins inside the range.
PELVOR_EXPORT NSRange constrainRange_toSingleAttribute_mask(NSAttributedString* text, NSRange range,
                                                            NSString* name, NSRange mask);
/// The text with the attributes that it lacks; those that it has stay. The receiver if nothing changes.
PELVOR_EXPORT NSAttributedString* attributedStringByAddingUndefinedAttributes(NSAttributedString* text,
                                                                              NSDictionary* attributes);

// MARK: Words and paragraphs, as the languages of the text have them

/// The word, or what stands between words, at the index. `isWord` tells whether another character than white
/// space or punctuation stands at the index.
PELVOR_EXPORT NSRange rangeOfWordAtIndex_isWord(NSAttributedString* text, NSUInteger index, bool* isWord);
/// The end of the word at or behind the index; backwards the start of the word before it. The index itself at
/// the end of the text, or backwards at the front.
PELVOR_EXPORT NSUInteger nextWordFromIndex_forward(NSAttributedString* text, NSUInteger index,
                                                   bool isForward);
/// The first paragraph in the range, from the range's start to the paragraph's end; PBNotFoundRange if no
/// paragraph ends in the range. The counts are those up to there, or of the whole range.
PELVOR_EXPORT NSRange paragraphRangeForRange_wordCount_charCount(NSAttributedString* text, NSRange range,
                                                                 NSUInteger* wordCount,
                                                                 NSUInteger* charCount);
/// How many paragraphs end in the range. The counts are those of the whole range.
PELVOR_EXPORT NSUInteger paragraphsInRange_wordCount_charCount(NSAttributedString* text, NSRange range,
                                                               NSUInteger* wordCount, NSUInteger* charCount);

// MARK: Changes

/// Appends the string with these attributes, or with none for null.
PELVOR_EXPORT void appendString_withAttributes(NSMutableAttributedString* text, NSString* string,
                                               NSDictionary* attributes);
/// Appends the string with the attributes of the last character, or without attributes.
PELVOR_EXPORT void appendString_extendAttributes(NSMutableAttributedString* text, NSString* string,
                                                 bool extendsAttributes);
/// Puts one character with the attachment in place of the range. A range of one character that can bear an
/// attachment keeps its character. The character has these attributes; for null those that replacing text
/// takes.
PELVOR_EXPORT void replaceCharactersInRange_withTextAttachment_attributes(NSMutableAttributedString* text,
                                                                          NSRange range, id attachment,
                                                                          NSDictionary* attributes);
PELVOR_EXPORT void replaceCharactersInRange_withTextAttachment(NSMutableAttributedString* text, NSRange range,
                                                               id attachment);
/// Adds the attributes that a run of the range lacks; those that it has stay.
PELVOR_EXPORT void addUndefinedAttributes_range(NSMutableAttributedString* text, NSDictionary* attributes,
                                                NSRange range);
/// Sets the attributes, without an attachment among them; the range keeps the attachments that it has.
PELVOR_EXPORT void setAttributesPreservingAttachments_inRange(NSMutableAttributedString* text,
                                                              NSDictionary* attributes, NSRange range);
/// Copies the attributes from the start of the other text to the start of the range, as far as both reach.
PELVOR_EXPORT void setAttributesFromAttributedString_range(NSMutableAttributedString* text,
                                                           NSAttributedString* other, NSRange range);

// MARK: Plural attributes: the value is an immutable set, so that several things can be said of one text

/// Adds the value to the sets of the range.
PELVOR_EXPORT void addPluralAttribute_value_range(NSMutableAttributedString* text, NSString* name, id value,
                                                  NSRange range);
/// Removes the value from the sets of the range; with its last value a set goes, too.
PELVOR_EXPORT void removePluralAttribute_value_range(NSMutableAttributedString* text, NSString* name,
                                                     id value, NSRange range);
/// The stretch of whole runs around the index whose sets hold the value, as far as the runs begin in the
/// limit; PBNotFoundRange if the one at the index does not hold it.
PELVOR_EXPORT NSRange rangeOfPluralAttribute_withValue_atIndex_inRange(NSAttributedString* text,
                                                                       NSString* name, id value,
                                                                       NSUInteger index, NSRange limit);
/// All values of the sets in the range; null if there are none.
PELVOR_EXPORT NSSet* unionPluralAttribute_inRange(NSAttributedString* text, NSString* name, NSRange range);

extern const Category NSAttributedString_PelvorAdditions_category;
extern const Category NSMutableAttributedString_PelvorAdditions_category;

}  // namespace pelvor
