// SPDX-License-Identifier: Apache-2.0
// NSLayoutManager: sets a text storage's text in lines, and tells where everything stands.
#pragma once

#include <memory>
#include <vector>

#include "Foundation/NSGeometry.h"
#include "Text/NSContainerRunTable.h"
#include "Text/NSFont.h"

namespace pelvor {

class LayoutState;
class NSArray;
class NSColor;
class NSDictionary;
class NSTextContainer;
class NSTextStorage;

/// What a view has to know of a line fragment to find out whether the fragment looks as before.
struct LaidLine {
    NSRange range;  ///< its characters
    NSRect rect;    ///< the fragment
    NSRect used;    ///< the part of it that holds text
    bool isRightToLeft = false;
};

/// Posted on the main thread when hyphenation patterns have been read that a layout manager did not wait for,
/// with the language's name, an NSString, as object.
extern PELVOR_EXPORT NSString* const NSHyphenationPatternsDidLoadNotification;

/// What stands for units that have no glyph of their own.
inline constexpr NSGlyph NSNullGlyph = 0;
/// What stands for tabs, line ends and other characters that show nothing.
inline constexpr NSGlyph NSControlGlyph = 0x00FFFFFF;

/// Sets the text of a text storage in the lines of text containers, one container after the other, and maps
/// between characters, glyphs, lines and places.
///
///     auto layoutManager = NSLayoutManager::init();
///     storage->addLayoutManager(layoutManager);
///     layoutManager->addTextContainer(NSTextContainer::initWithContainerSize({400, 1e7}).get());
///     NSRect line = layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(1000, nullptr);
///
/// **Glyph indexes** are the indexes of the text's units, so that there are as many as the text has units and
/// nobody has to lay out text to count them. What is set as one piece (the letters of a ligature, a letter
/// with its marks) belongs to the glyph of its first unit; the other units have NSNullGlyph. The operations
/// that map ranges widen them to whole pieces.
///
/// **Laziness.** Nothing is laid out before somebody asks for a place. An operation lays out what it needs:
/// in a single endless container the paragraphs that it asks about, else all text up to there, since pages
/// depend on the text before them. In the endless container, places below text that was not laid out yet are
/// estimates, which become right as that text is laid out. Operations that never lay out say so. An edit of
/// the storage lays out again, when asked for, the paragraphs that it touched; what follows moves. A
/// paragraph is kept in blocks of some thousand units, so that a long one is laid out again in part only.
///
/// Coordinates are a container's, in points, y downwards. Line fragments stand below each other without gaps:
/// line and paragraph spacing belong to their heights. An index at or past the end raises NSRangeException.
/// Places of text that has no room in any container are zeros, and the glyphs of a container that the layout
/// manager does not list are {NSNotFound, 0}.
///
/// The layout manager hears of edits when the text storage has processed them. Before, between `beginEditing`
/// and `endEditing` and in observers of the storage's notifications, operations that may lay out raise
/// NSInternalInconsistencyException if characters changed.
///
/// One thread at a time.
class PELVOR_EXPORT NSLayoutManager : public NSObject {
    PELVOR_CLASS(NSLayoutManager, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<NSLayoutManager> init(Class* cls = classObject());

    // Text, containers and delegate

    /// Not kept alive; the storage keeps its layout managers.
    NSTextStorage* textStorage();
    /// For text storages, which call it from `addLayoutManager`.
    void setTextStorage(NSTextStorage* textStorage);
    /// The containers in the order in which text fills them, borrowed.
    NSArray* textContainers();
    /// The containers one by one, without a list of them. An index outside raises NSRangeException.
    NSUInteger textContainerCount();
    NSTextContainer* textContainerAtIndex(NSUInteger index);
    // The layout manager keeps its containers. Null as container, and one that is in the list of a layout
    // manager already, raise NSInvalidArgumentException, an index outside the list NSRangeException.

    void addTextContainer(NSTextContainer* container);
    void insertTextContainer_atIndex(NSTextContainer* container, NSUInteger index);
    void removeTextContainerAtIndex(NSUInteger index);
    /// Whether the window's first responder is the text view of one of the containers.
    bool layoutManagerOwnsFirstResponderInWindow(id window);
    /// Any object with this operation, which may add containers but not remove any:
    ///
    ///     void layoutManager:(NSLayoutManager*) didCompleteLayoutForTextContainer:(NSTextContainer*)
    ///     atEnd:(bool)
    ///
    /// It is called with each container that is full; with the container that holds the end of the text, and
    /// true, when everything is laid out, also the empty line behind a last line end; and with null when text
    /// is left without a container: then it may add one. Not kept alive.
    id delegate();
    void setDelegate(id delegate);

    // What changed

    /// Called by the text storage after an edit: the units at `newRange` replace as many less `delta`;
    /// attributes or characters changed within `invalidatedRange`.
    void textStorage_edited_range_changeInLength_invalidatedRange(NSTextStorage* storage, unsigned mask,
                                                                  NSRange newRange, NSInteger delta,
                                                                  NSRange invalidatedRange);
    void textContainerChangedGeometry(NSTextContainer* container);
    void textContainerChangedTextView(NSTextContainer* container);
    /// Forgets the lines of the characters. If that is soft, the lines stay as they are broken where that is
    /// still right, but their places are determined anew. Writes the characters concerned to `actualRange`
    /// unless that is null.
    void invalidateLayoutForCharacterRange_isSoft_actualCharacterRange(NSRange range, bool isSoft,
                                                                       NSRange* actualRange);
    // Text views that take this message hear of all that has to be drawn again: that the characters at the
    // edited range replace as many less the change, and that those of the invalidated range look different.
    //
    //     void layoutManager:(NSLayoutManager*) editedRange:(NSRange) changeInLength:(NSInteger)
    //     invalidatedRange:(NSRange)
    //
    // With empty ranges and no change, text has moved: an estimate has become a fact. The views must not ask
    // the layout manager in that message.

    /// Tells the text views that show the characters to draw them again. Lays out nothing.
    void invalidateDisplayForCharacterRange(NSRange range);
    void invalidateDisplayForGlyphRange(NSRange range) { invalidateDisplayForCharacterRange(range); }

    // Settings

    bool usesScreenFonts();
    void setUsesScreenFonts(bool uses);
    /// As NSParagraphStyle's; 0 unless it is set. Holds for paragraphs whose own factor is 0.
    float hyphenationFactor();
    void setHyphenationFactor(float factor);
    /// Whether layout waits while the hyphenation patterns of a language are read for the first time, which
    /// takes seconds for some languages; true unless it is set. Otherwise words are not divided until the
    /// patterns are there. The program then hears of NSHyphenationPatternsDidLoadNotification and invalidates
    /// what it wants to be laid out anew.
    bool waitsForHyphenation();
    void setWaitsForHyphenation(bool waits);
    /// Whether the font's leading counts to the height of lines; true unless it is set.
    bool usesFontLeading();
    void setUsesFontLeading(bool uses);
    bool ignoresAntialiasThreshold();
    void setIgnoresAntialiasThreshold(bool ignores);
    /// The language of text with these attributes as a BCP 47 name, borrowed, for breaking lines and words:
    /// the value of NSLanguageAttributeName, else null. Subclasses know other attributes.
    virtual NSString* languageForAttributes(NSDictionary* attributes);

    // How far the layout is; nothing here lays out.

    /// The end of the text if all is laid out.
    NSUInteger firstUnlaidCharacterIndex();
    NSUInteger firstUnlaidGlyphIndex() { return firstUnlaidCharacterIndex(); }
    /// Which glyphs stand in which container, as far as that is known; borrowed.
    NSContainerRunTable* containerRunTable();
    /// The glyphs of the line fragment; {NSNotFound, 0} where it is not laid out.
    NSRange glyphRangeForLaidLineFragmentContainingGlyphAtIndex(NSUInteger index);

    // Glyphs and characters; nothing here but the widening to whole pieces lays out.

    NSUInteger numberOfGlyphs();
    bool isValidGlyphIndex(NSUInteger index) { return index < numberOfGlyphs(); }
    /// Lays the line out.
    NSGlyph glyphAtIndex(NSUInteger index);
    NSUInteger characterIndexForGlyphAtIndex(NSUInteger index);
    NSUInteger glyphIndexForCharacterAtIndex(NSUInteger index);
    /// Ranges widened to whole pieces; the pointer may be null.
    NSRange glyphRangeForCharacterRange_actualCharacterRange(NSRange range, NSRange* actualRange);
    NSRange characterRangeForGlyphRange_actualGlyphRange(NSRange range, NSRange* actualRange);

    // Places. These operations lay out what they need. Pointers to ranges may be null.

    void ensureLayoutForCharacterRange(NSRange range);
    void ensureLayoutForTextContainer(NSTextContainer* container);
    /// Null for a glyph that has no room in any container.
    NSTextContainer* textContainerForGlyphAtIndex_effectiveRange(NSUInteger index, NSRange* glyphRange);
    NSRange glyphRangeForTextContainer(NSTextContainer* container);
    /// The whole of the line's room, or of the fragment's where exclusions split the line.
    NSRect lineFragmentRectForGlyphAtIndex_effectiveRange(NSUInteger index, NSRange* glyphRange);
    /// The part of it that holds the text, with the padding at both ends.
    NSRect lineFragmentUsedRectForGlyphAtIndex_effectiveRange(NSUInteger index, NSRange* glyphRange);
    /// The point on the baseline at the glyph's left edge, whatever the direction of the text, from the
    /// origin of the line fragment.
    NSPoint locationForGlyphAtIndex(NSUInteger index);
    /// The area of what is laid out in the container; nothing is laid out. In an endless container the height
    /// of text that was not laid out yet is estimated.
    NSRect usedRectForTextContainer(NSTextContainer* container);
    NSRect boundingRectForGlyphRange_inTextContainer(NSRange range, NSTextContainer* container);
    /// The frame's size of an attachment; -1 by -1 for other glyphs.
    NSSize attachmentSizeForGlyphAtIndex(NSUInteger index);
    /// The attachment's frame in the container; zeros for other glyphs.
    NSRect attachmentRectForGlyphAtIndex(NSUInteger index);

    // The line behind a text's last line end, or of an empty text; zeros and null if there is none or no
    // room.

    NSRect extraLineFragmentRect();
    NSRect extraLineFragmentUsedRect();
    NSTextContainer* extraLineFragmentTextContainer();

    // From places to text

    /// The whole lines that the rectangle touches.
    NSRange glyphRangeForBoundingRect_inTextContainer(NSRect bounds, NSTextContainer* container);
    /// As far as lines are laid out.
    NSRange glyphRangeForBoundingRectWithoutAdditionalLayout_inTextContainer(NSRect bounds,
                                                                             NSTextContainer* container);
    /// The nearest glyph in the line at the point's height, in the first or last line if the point is above
    /// or below all lines, and in the line below a gap that an exclusion leaves between lines. What share of
    /// the glyph lies before the point in writing direction, from 0 to 1, is written unless the pointer is
    /// null. 0 in a container without text.
    NSUInteger glyphIndexForPoint_inTextContainer_fractionOfDistanceThroughGlyph(NSPoint point,
                                                                                 NSTextContainer* container,
                                                                                 float* fraction);
    NSUInteger glyphIndexForPoint_inTextContainer(NSPoint point, NSTextContainer* container);
    /// The character that begins at the nearest place for a caret: inside ligatures, never inside what the
    /// user sees as one character.
    NSUInteger characterIndexForPoint_inTextContainer_fractionOfDistanceBetweenInsertionPoints(
        NSPoint point, NSTextContainer* container, float* fraction);

    // Carets and selections

    /// Where a caret before the character stands, from the top of its line to the bottom, without width; at
    /// the length of the text, behind the last character. Inside what the user sees as one character it
    /// stands before that; at the end of a line that was broken for its width it stands at the start of the
    /// next line.
    NSRect caretRectForCharacterAtIndex(NSUInteger index);
    /// Where a caret behind the character stands, in the character's own line, also at the end of a line that
    /// was broken for its width.
    NSRect caretRectBehindCharacterAtIndex(NSUInteger index);
    /// The rectangles of the range's characters, one or more a line, valid until the next call; their number
    /// is written to `count` unless that is null. `selection` is all that is selected, of which the range is
    /// a part that is to be drawn: a whole line of the range from whose end the selection goes on is a
    /// rectangle from edge to edge.
    const NSRect* rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
        NSRange range, NSRange selection, NSTextContainer* container, NSUInteger* count);

    // Drawing, into the current graphics context, whose y runs downwards. The point is the container's
    // origin.

    void drawBackgroundForGlyphRange_atPoint(NSRange range, NSPoint origin);
    /// Text with its underlines and strikethroughs, and attachments by their cells. Each cell finds the
    /// context's state as the caller left it, but for the colour. What a cell raises reaches the caller when
    /// all else is drawn; of several exceptions the first.
    void drawGlyphsForGlyphRange_atPoint(NSRange range, NSPoint origin);

    // C++ only
    /// The line fragments of the container that the rectangle touches, laid out, from the top. The line
    /// behind a last line end is not among them.
    std::vector<LaidLine> linesInRect(NSRect bounds, NSTextContainer* container);
    /// Lays out paragraphs that are not yet laid out, from the front, until about so many units are done;
    /// whether any are left. For idle time.
    bool layOutSome(NSUInteger units);
    LayoutState& state() PELVOR_LIFETIMEBOUND { return *_state; }

  protected:
    NSLayoutManager();
    ~NSLayoutManager();

  private:
    friend class LayoutState;
    void tellTextViews(NSRange edited, NSInteger delta, NSRange invalidated);
    void tellTextView(id view, NSRange edited, NSInteger delta, NSRange invalidated);

    std::unique_ptr<LayoutState> _state;
    Retained<NSContainerRunTable> _runTable;
};

}  // namespace pelvor
