// SPDX-License-Identifier: Apache-2.0
// Additions to layout managers: line fragments, layout by force, look-ups that never lay out, attachments
// that change, and drawing outside a text view.
//
//     NSRange line = glyphRangeForLineFragmentContainingGlyphAtIndex(layoutManager, 120);
//     NSTextContainer* page = safeTextContainerForGlyphAtIndex_effectiveRange(layoutManager, 120, nullptr);
//     if (!page) forceLayoutToCharacterAtIndex(layoutManager, 120);          // it was not laid out yet
//
// Pointers to ranges may be null. Objects that are returned are borrowed.
#pragma once

#include "Text/NSLayoutManager.h"
#include "Text/TextAttributes.h"

namespace pelvor {

struct Category;

// MARK: What the text and the host allow

/// What the text storage returns for `allowsParagraphLayoutOptions`; false if it lacks that operation.
PELVOR_EXPORT bool allowsLineFragmentRejection(NSLayoutManager* layoutManager);
/// True.
PELVOR_EXPORT bool allowsMultipleTextContainers(NSLayoutManager* layoutManager);
/// What the user's settings return for `activeSelectionColor` if the view's window is the key window and its
/// first responder shows this layout manager's text, else for `nonActiveSelectionColor`; null if they lack
/// that operation.
PELVOR_EXPORT NSColor* textSelectionColorForView(NSLayoutManager* layoutManager, id view);

// MARK: Line fragments

/// The characters of the line fragment of the first glyph, or of the last one; {0, 0} if there are no glyphs.
PELVOR_EXPORT NSRange characterRangeForFirstLineFragment(NSLayoutManager* layoutManager);
PELVOR_EXPORT NSRange characterRangeForLastLineFragment(NSLayoutManager* layoutManager);
PELVOR_EXPORT NSRange characterRangeForLineFragmentContainingGlyphAtIndex(NSLayoutManager* layoutManager,
                                                                          NSUInteger index);
PELVOR_EXPORT NSRange glyphRangeForLineFragmentContainingGlyphAtIndex(NSLayoutManager* layoutManager,
                                                                      NSUInteger index);
// A logical line fragment is what a whole line would be without the exclusions that split it: all fragments
// of one container at one height that follow each other.
PELVOR_EXPORT NSRange glyphRangeForLogicalLineFragmentContainingGlyphAtIndex(NSLayoutManager* layoutManager,
                                                                             NSUInteger index);
PELVOR_EXPORT NSRect logicalLineFragmentRectForGlyphAtIndex_effectiveRange(NSLayoutManager* layoutManager,
                                                                           NSUInteger index,
                                                                           NSRange* effectiveRange);
/// The first line fragment of the container whose top is at the offset or below it; {NSNotFound, 0} if there
/// is none.
PELVOR_EXPORT NSRange glyphRangeForLineFragmentBelowVerticalOffset_inTextContainer(
    NSLayoutManager* layoutManager, float offset, NSTextContainer* container);

// MARK: Carets

/// The character before which a caret goes that was asked for at x in the line fragment. Past the middle of a
/// glyph the caret goes behind it, but never behind the line break that ends the fragment. Behind the last
/// character of a fragment that was broken for its width, that is the first character of the next fragment.
PELVOR_EXPORT NSUInteger characterIndexForHorizontalOffset_inLineFragmentContainingGlyphAtIndex(
    NSLayoutManager* layoutManager, float offset, NSUInteger index);
// The same in the fragment of the first or last glyph; 0 if there are no glyphs.

PELVOR_EXPORT NSUInteger characterIndexForFirstLineFragmentHorizontalOffset(NSLayoutManager* layoutManager,
                                                                            float offset);
PELVOR_EXPORT NSUInteger characterIndexForLastLineFragmentHorizontalOffset(NSLayoutManager* layoutManager,
                                                                           float offset);

/// The text view of the container that holds the range's first character; null for an empty text.
PELVOR_EXPORT id textViewForCharacterRange(NSLayoutManager* layoutManager, NSRange range);

// MARK: Layout by force

/// Whether some text is not laid out.
PELVOR_EXPORT bool hasLayoutHole(NSLayoutManager* layoutManager);
/// Lays out all text up to and with the character, all text if the index is at the end or beyond.
PELVOR_EXPORT void forceLayoutToCharacterAtIndex(NSLayoutManager* layoutManager, NSUInteger index);
PELVOR_EXPORT void forceFinishLayout(NSLayoutManager* layoutManager);

// MARK: Attachments

/// The frame in the container of the attachment at the glyph; zeros for other glyphs.
PELVOR_EXPORT NSRect attachmentFrameForGlyphAtIndex(NSLayoutManager* layoutManager, NSUInteger index);

/// What has to be laid out again when an attachment changes.
struct PBAttachmentInvalidation {
    std::uint32_t characterIndex;
    NSRange lineRange;       ///< the characters of the attachment's line fragment
    NSRange followingRange;  ///< those behind it in a container of fixed size; else absent, at NSNotFound
};

// An attachment that changes its size is changed between these two calls:
//
//     auto* record = prepareInvalidateLayoutForAttachmentCharacterAtIndex(layoutManager, 7);
//     picture->setBounds(larger);
//     commitInvalidateLayoutForAttachmentCharacter(layoutManager, record);

/// Finds out what depends on the attachment at the character. The record is freed by the commit; null if
/// memory is short.
PELVOR_EXPORT PBAttachmentInvalidation* prepareInvalidateLayoutForAttachmentCharacterAtIndex(
    NSLayoutManager* layoutManager, NSUInteger index);
/// Invalidates what the record says and tells the text storage that the attachment's attributes changed. Does
/// nothing for null.
PELVOR_EXPORT void commitInvalidateLayoutForAttachmentCharacter(NSLayoutManager* layoutManager,
                                                                PBAttachmentInvalidation* record);
PELVOR_EXPORT void invalidateLayoutForAttachmentCharacterAtIndex(NSLayoutManager* layoutManager,
                                                                 NSUInteger index);

// MARK: Drawing

/// Turns screen fonts off, and on platforms up to version 743 the antialiasing threshold; returns for
/// `endDrawingAsIfInTextView` what is to be restored: 1 for screen fonts, 2 for the threshold, or their sum.
PELVOR_EXPORT int beginDrawingAsIfInTextView(NSLayoutManager* layoutManager);
PELVOR_EXPORT void endDrawingAsIfInTextView(NSLayoutManager* layoutManager, int toRestore);
/// For hosts that show where lines, pages and columns are broken; draws nothing.
PELVOR_EXPORT void drawBreak_withCharacterRange_lineFragmentRect_usedRect_withOrigin_direction(
    NSLayoutManager* layoutManager, int kind, NSRange characters, NSRect fragment, NSRect used,
    NSPoint origin, NSWritingDirection direction);

// MARK: Containers, without laying out anything

/// Which glyphs stand in which container, as far as the layout went.
PELVOR_EXPORT NSContainerRunTable* containerRuns(NSLayoutManager* layoutManager);
/// The glyphs of the first run of the container; {NSNotFound, 0} if it has none yet.
PELVOR_EXPORT NSRange _containerRunGlyphRangeForTextContainer(NSLayoutManager* layoutManager,
                                                              NSTextContainer* container);
PELVOR_EXPORT NSRange safeGlyphRangeForTextContainer(NSLayoutManager* layoutManager,
                                                     NSTextContainer* container);
/// The container of the glyph and its glyphs; null if the glyph is not laid out.
PELVOR_EXPORT NSTextContainer* safeTextContainerForGlyphAtIndex_effectiveRange(NSLayoutManager* layoutManager,
                                                                               NSUInteger index,
                                                                               NSRange* range);
/// The same by the table alone.
PELVOR_EXPORT NSTextContainer* safeUncheckedTextContainerForGlyphAtIndex_effectiveRange(
    NSLayoutManager* layoutManager, NSUInteger index, NSRange* range);
/// The glyphs of the line fragment; {NSNotFound, 0} if the glyph is not laid out.
PELVOR_EXPORT NSRange safeEffectiveRangeOfLineFragmentForGlyphAtIndex(NSLayoutManager* layoutManager,
                                                                      NSUInteger index);
/// The last container that the layout reached, and its glyphs so far; null if it reached none.
PELVOR_EXPORT NSTextContainer* getLastLayedTextContainerEffectiveRange(NSLayoutManager* layoutManager,
                                                                       NSRange* range);
/// The glyphs of a container that is not in the table: {NSNotFound, 0} if layout is to be avoided, else what
/// the layout finds.
PELVOR_EXPORT NSRange glyphRangeForUnknownTextContainer_avoidLayout(NSLayoutManager* layoutManager,
                                                                    NSTextContainer* container,
                                                                    bool avoidsLayout);

extern const Category NSLayoutManager_PBInternalsExposed_category;
extern const Category NSLayoutManager_PelvorAdditions_category;

}  // namespace pelvor
