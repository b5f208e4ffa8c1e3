// SPDX-License-Identifier: Apache-2.0
// NSTextView: shows, selects and edits the text of a text storage.
#pragma once

#include <memory>

#include "Interface/NSText.h"

namespace pelvor {

class NSArray;
class NSAttributedString;
class NSDictionary;
class NSDraggingInfo;
class NSEvent;
class NSLayoutManager;
class NSPasteboard;
class NSTextContainer;
class NSTextStorage;
class NSTimer;
class NSUndoManager;
enum class TextMove : int;
struct CaretPlace;
struct TextViewState;

enum NSSelectionGranularity : int {
    NSSelectByCharacter = 0,
    NSSelectByWord = 1,
    NSSelectByParagraph = 2,
};

/// On which line the caret stands where a line was broken for its width: behind the last character of the
/// upper line, or before the first one of the lower line.
enum NSSelectionAffinity : int {
    NSSelectionAffinityUpstream = 0,
    NSSelectionAffinityDownstream = 1,
};

/// Posted with the text view as object; the user information has the old range, an NSValue, under the key
/// "NSOldSelectedCharacterRange". The delegate hears of it by the message "textViewDidChangeSelection:".
extern PELVOR_EXPORT NSString* const NSTextViewDidChangeSelectionNotification;

/// Shows, selects and edits the text of a text storage:
///
///     auto text = NSTextView::initWithFrame({{0, 0}, {400, 300}});
///     text->setString(u"Dear Anna,"_ns);
///     text->setSelectedRange({5, 4});
///     text->insertText(u"Berta"_ns);                     // as if it was typed: asked, told, can be undone
///     scrollView->setDocumentView(text);
///
/// A view made by `initWithFrame` has a text storage, a layout manager and an endless text container of its
/// own, as wide as the view. One made by `initWithFrame_textContainer` shows all containers of the
/// container's layout manager, and keeps its text storage; a subclass that shows pages says in
/// `originOfTextContainer` where each of them stands.
///
/// **Editing.** What the user does asks `shouldChangeTextInRange:replacementString:`, changes the text
/// storage, and calls `didChangeText`. Code that edits on behalf of the user does the same; the first of the
/// calls is also what notes how the change is undone. The text storage may be changed without them at any
/// time: the view follows.
///
/// **Delegate.** It may have any of these operations:
///
///     bool textShouldBeginEditing:(NSText*)             false keeps the text as it is
///     bool textShouldEndEditing:(NSText*)               false keeps the view first responder
///     bool textView:shouldChangeTextInRange:(NSRange) replacementString:(NSString*)    null: attributes only
///     NSRange textView:willChangeSelectionFromCharacterRange:(NSRange) toCharacterRange:(NSRange)
///     bool textView:(NSTextView*) doCommandBySelector:(SEL)    true if it has done the command
///     bool textView:clickedOnLink:(id) atIndex:(NSUInteger)    true if it has done what the link wants
///     NSUndoManager* undoManagerForTextView:(NSTextView*)
///
/// and those that tell of notifications. It may do anything in them.
///
/// **Commands.** The view takes, as methods without C++ functions of their own, the commands of key bindings
/// with a sender as argument: "moveRight:", "moveRightAndModifySelection:" and so on for left, up, down,
/// forward, backward, for words, lines, paragraphs, pages and the document; "deleteBackward:" and its kin;
/// "insertNewline:", "insertTab:" and its kin; "selectAll:", "selectWord:", "selectLine:",
/// "selectParagraph:"; "copy:", "cut:", "paste:", "pasteAsPlainText:", "delete:", "undo:", "redo:";
/// "transpose:", "yank:", "uppercaseWord:", "lowercaseWord:", "capitalizeWord:"; "alignLeft:" and its kin;
/// "scrollPageDown:" and its kin, "centerSelectionInVisibleArea:".
///
/// Only lines that look different are drawn again. Main thread.
class PELVOR_EXPORT NSTextView : public NSText {
    PELVOR_CLASS(NSTextView, NSText);
    PELVOR_CREATORS(init, initWithFrame, initWithFrame_textContainer);

  public:
    static Retained<NSTextView> init(Class* cls = classObject());
    static Retained<NSTextView> initWithFrame(NSRect frame, Class* cls = classObject());
    /// Null as container makes a view without text, until `setTextContainer` is called.
    static Retained<NSTextView> initWithFrame_textContainer(NSRect frame, NSTextContainer* container,
                                                            Class* cls = classObject());

    // Text, layout and places. Null where there is none; borrowed.

    NSTextStorage* textStorage();
    NSLayoutManager* layoutManager();
    /// The first one.
    NSTextContainer* textContainer();
    /// Shows the containers of this one's layout manager from now on.
    void setTextContainer(NSTextContainer* container);
    /// The room left free at the left and right, and above and below the text; zeros at first.
    NSSize textContainerInset();
    void setTextContainerInset(NSSize inset);
    NSPoint textContainerOrigin();
    /// Where the container's upper left corner is in the view. Subclasses place pages.
    virtual NSPoint originOfTextContainer(NSTextContainer* container);
    /// The indexes of the containers that may show something in the rectangle, and of those that are
    /// nearest to it; all of them, unless a subclass that places pages knows better.
    virtual NSRange indexesOfTextContainersNearRect(NSRect rect);
    /// The place between two characters that is nearest to the point of the view, and which of its two lines.
    NSUInteger characterIndexForInsertionAtPoint(NSPoint point);
    /// Where the caret stands in the view, without width; zeros where there is no room for the text.
    NSRect caretRectForCharacterAtIndex(NSUInteger index);
    /// Below the caret, where that is seen.
    NSPoint contextMenuPlace() override;
    /// The least rectangle of the view that holds the characters.
    NSRect rectForCharacterRange(NSRange range);

    NSString* string() override;
    void setString(NSString* string) override;
    void replaceCharactersInRange_withString(NSRange range, NSString* string) override;

    // Attributes of the whole text, as its front has them; null and natural where nobody has set them.

    NSFont* font();
    void setFont(NSFont* font);  // as all of these: asks and tells nobody, and cannot be undone
    NSColor* textColor();
    void setTextColor(NSColor* color);
    int alignment();
    void setAlignment(int alignment);
    /// What typed characters get, never null; set anew with each other selection.
    NSDictionary* typingAttributes();
    void setTypingAttributes(NSDictionary* attributes);

    // Selection

    NSRange selectedRange() override;
    void setSelectedRange(NSRange range) override;
    /// Selects the range; false for `stillSelecting` once the user is done. Raises NSRangeException for a
    /// range that is not in the text.
    virtual void setSelectedRange_affinity_stillSelecting(NSRange range, NSSelectionAffinity affinity,
                                                          bool stillSelecting);
    /// What is selected for the user who asks for the range: widened to whole words or paragraphs.
    virtual NSRange selectionRangeForProposedRange_granularity(NSRange range,
                                                               NSSelectionGranularity granularity);
    NSSelectionAffinity selectionAffinity();
    NSSelectionGranularity selectionGranularity();
    void setSelectionGranularity(NSSelectionGranularity granularity);
    /// Null stands for the colour of the theme.
    NSColor* insertionPointColor();
    void setInsertionPointColor(NSColor* color);
    NSColor* selectionColor();
    void setSelectionColor(NSColor* color);
    void scrollRangeToVisible(NSRange range) override;

    // Editing

    /// Whether the user may change the characters, or with null only their attributes; asks the delegate.
    virtual bool shouldChangeTextInRange_replacementString(NSRange range, NSString* replacement);
    /// Tells of the change.
    virtual void didChangeText();
    /// {NSNotFound, 0} where the user may not edit.
    NSRange rangeForUserTextChange();
    /// Types a string or attributed string over the selection. Null and other objects do nothing.
    void insertText(id text) override;
    /// True at first.
    bool allowsUndo();
    void setAllowsUndo(bool allows);
    NSUndoManager* undoManager() override;
    /// What is typed from now on is undone by itself.
    void breakUndoCoalescing();
    /// Sends the command to the delegate, to the view, or up the chain of responders.
    void doCommandBySelector(SEL selector) override;

    // Text that is being composed

    /// Shows the string or attributed string, underlined, in the place of the text that was being composed or
    /// else of the selection; the range is what is selected of it.
    virtual void setMarkedText_selectedRange(id text, NSRange selection);
    /// The text that was being composed is text like any other from now on.
    void unmarkText();
    bool hasMarkedText();
    /// {NSNotFound, 0} if nothing is being composed.
    NSRange markedRange();
    /// The part of the range that is in the text; null if there is none.
    NSAttributedString* attributedSubstringFromRange(NSRange range);
    /// On the screen.
    NSRect firstRectForCharacterRange(NSRange range);
    NSUInteger characterIndexForPoint(NSPoint pointOnScreen);

    // Caret

    bool shouldDrawInsertionPoint();
    virtual void drawInsertionPointInRect_color_turnedOn(NSRect rect, NSColor* color, bool isOn);
    /// Shows the caret where it is now, and begins to blink anew.
    void updateInsertionPointStateAndRestartTimer(bool restarts);

    // Copying

    /// The best first: rich text if the program has code for that, then plain text.
    virtual NSArray* writablePasteboardTypes();
    virtual NSArray* readablePasteboardTypes();
    bool writeSelectionToPasteboard_types(NSPasteboard* pasteboard, NSArray* types);
    virtual bool writeSelectionToPasteboard_type(NSPasteboard* pasteboard, NSString* type);
    bool readSelectionFromPasteboard(NSPasteboard* pasteboard);
    virtual bool readSelectionFromPasteboard_type(NSPasteboard* pasteboard, NSString* type);

    // Dragging (see NSDraggingInfo). What is dragged from a text that can be edited moves, also into another
    // window of this program, unless Ctrl is down; field editors and other programs get and give copies.

    virtual NSUInteger draggingMoved(NSDraggingInfo* info);
    virtual bool performDragOperation(NSDraggingInfo* info);

    // Of the superclasses

    void setEditable(bool isEditable) override;
    void setSelectable(bool isSelectable) override;
    void sizeToFit() override;
    void setFrameSize(NSSize size) override;
    void resizeWithOldSuperviewSize(NSSize oldSize) override;
    bool isFlipped() override { return true; }
    bool isOpaque() override { return drawsBackground(); }
    bool acceptsFirstResponder() override { return isSelectable(); }
    bool becomeFirstResponder() override;
    bool resignFirstResponder() override;
    void viewWillMoveToWindow(NSWindow* window) override;
    void viewDidMoveToWindow() override;
    void viewDidMoveToSuperview() override;
    void resetCursorRects() override;
    void viewWillDraw() override;
    void drawRect(NSRect dirty) override;
    void keyDown(NSEvent* event) override;
    void mouseDown(NSEvent* event) override;
    void mouseDragged(NSEvent* event) override;
    void mouseUp(NSEvent* event) override;
    void otherMouseDown(NSEvent* event) override;

  protected:
    NSTextView();
    ~NSTextView();

    /// Marks the lower edge alone if only the height has changed: the text marks its lines by itself.
    void markResize(NSRect oldFrame) override;

  private:
    // Commands
    template <TextMove move>
    void moveCommand(id) {
        moveBy(move, false);
    }
    template <TextMove move>
    void extendCommand(id) {
        moveBy(move, true);
    }
    template <TextMove move>
    void deleteCommand(id) {
        deleteBy(move);
    }
    template <TextMove move>
    void scrollCommand(id) {
        scrollBy(move);
    }
    template <NSSelectionGranularity granularity>
    void selectCommand(id) {
        selectAs(selectionRangeForProposedRange_granularity(selectedRange(), granularity));
    }
    template <char16_t unit>
    void insertUnit(id) {
        insertText(NSString::of({&kUnit<unit>, 1}));
    }
    template <auto change>
    void changeWords(id) {
        changeWordsBy(change);
    }
    template <int alignment>
    void alignCommand(id) {
        align(alignment);
    }
    template <char16_t unit>
    static constexpr char16_t kUnit = unit;
    void selectAll(id);
    void selectLine(id);
    void copySelection(id);
    void cutSelection(id);
    void paste(id);
    void pasteAsPlainText(id);
    void deleteSelection(id);
    void yank(id);
    void transpose(id);
    void undo(id);
    void redo(id);
    void insertNewline(id);
    void insertTab(id);
    void insertBacktab(id);
    void cancelOperation(id);
    void centerSelection(id);
    bool validateMenuItem(id item);

    void moveBy(TextMove move, bool extends);
    void deleteBy(TextMove move);
    void scrollBy(TextMove move);
    void changeWordsBy(NSString* (NSString::*change)());
    void align(int alignment);
    void selectAs(NSRange range);
    bool endFieldEditing(int movement);

    // Places
    CaretPlace placeAfterMove(TextMove move, CaretPlace from);
    CaretPlace placeAtPoint(NSPoint point);
    CaretPlace placeInLine(NSRange line, float x);
    CaretPlace placeAbove(CaretPlace from, bool isBelow);
    CaretPlace placePageAway(CaretPlace from, bool isBelow);
    CaretPlace lineEndPlace(NSRange line);
    NSRange lineAt(CaretPlace place);
    NSRect lineRect(NSUInteger index, NSTextContainer** container);
    bool isRightToLeftAt(CaretPlace place);
    NSRect caretRect(CaretPlace place);
    NSTextContainer* containerNear(NSPoint point);
    bool mayLayOut();
    NSSize clippedSize();
    void trackContainerSize();
    void letTextGo();

    // Editing
    id firstAttribute(NSString* name);
    void setAttributeOfAll(NSString* name, id value);
    bool replace(NSRange range, id text);
    void putText(NSRange range, id text, NSDictionary* attributes);
    bool beginEditing();
    void noteUndo(NSRange range, NSUInteger newLength);
    void undoTextChange(id record);
    void discardMarkedText();
    void textWasEdited(NSLayoutManager* layoutManager, NSRange edited, NSInteger change, NSRange invalidated);
    void tell(NSString* name, SEL message, id userInfo);
    bool asksDelegate(SEL question, Retained<Object>& delegate);

    // Mouse, pasteboard, drawing
    void selectTo(NSPoint point);
    bool isInSelection(NSPoint point);
    void autoscrollSelection(NSTimer* timer);
    void stopAutoscrolling();
    bool clickLink(NSUInteger index);
    bool beginDrag();
    void draggingExited(NSDraggingInfo* info);
    NSTextView* moverOf(NSDraggingInfo* info);
    void showDropPlace(NSUInteger index);
    NSUInteger dropIndex(NSDraggingInfo* info);
    void provideSelection(NSPasteboard* pasteboard, NSString* type);
    void offerPrimarySelection();
    void setNeedsPreparation();
    void prepare();
    template <class Function>
    void eachContainerIn(NSRect rect, const Function& function);
    void keepPlaceOf(NSUInteger index, float y);
    void showLines(NSRect visible);
    void drawSelection(NSRange range, NSTextContainer* container, NSPoint origin);
    void watchWindow(NSWindow* window);
    void stopBlinking();
    void windowKeyDidChange(id notification);
    void blinkCaret(NSTimer* timer);
    void placeCaret();
    void tellInputMethod();
    bool isActive();

    std::unique_ptr<TextViewState> _state;
};

}  // namespace pelvor
