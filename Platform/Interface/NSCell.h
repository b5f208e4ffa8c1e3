// SPDX-License-Identifier: Apache-2.0
// NSCell: what a control shows in one of its places, and how the place reacts to the mouse.
#pragma once

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSString.h"
#include "Interface/NSImage.h"
#include "Interface/NSView.h"
#include "Runtime/WeakHandle.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/TextAttributes.h"

namespace pelvor {

class NSEvent;
class NSText;

enum NSCellType : int { NSNullCellType = 0, NSTextCellType = 1, NSImageCellType = 2 };

/// The states of what can be switched on; also in menus.
enum NSCellStateValue : int { NSMixedState = -1, NSOffState = 0, NSOnState = 1 };

/// Where an image stands beside a title.
enum NSCellImagePosition : int {
    NSNoImage = 0,
    NSImageOnly = 1,
    NSImageLeft = 2,
    NSImageRight = 3,
    NSImageBelow = 4,
    NSImageAbove = 5,
    NSImageOverlaps = 6,
};

/// Draws a value in a rectangle of a view, and follows the mouse there. A control has a cell, a table one for
/// each column, which draws row after row:
///
///     auto cell = NSCell::initTextCell(u"Chapter 1"_ns);
///     cell->setAlignment(NSRightTextAlignment);
///     cell->drawWithFrame_inView({{0, 0}, {120, 20}}, view);   // into the current graphics context
///
/// The value may be any object: strings, attributed strings and numbers are shown as text, images as
/// pictures. Setters tell the control whose cell this is, which draws it again. Main thread.
class PELVOR_EXPORT NSCell : public NSObject {
    PELVOR_CLASS(NSCell, NSObject);
    PELVOR_CREATORS(init, initTextCell, initImageCell);

  public:
    // Creation

    /// A cell for text, with the empty string as its value.
    static Retained<NSCell> init(Class* cls = classObject());
    /// Null stands for the empty string.
    static Retained<NSCell> initTextCell(NSString* text, Class* cls = classObject());
    static Retained<NSCell> initImageCell(NSImage* image, Class* cls = classObject());
    /// A cell of the same class with the same properties, of no control.
    Retained<Object> copyWithZone(void* zone) override;
    Retained<NSCell> copy() { return cast<NSCell>(copyWithZone(nullptr)); }

    // The value

    virtual id objectValue() { return _objectValue; }
    /// Retains the value, and copies a string. Null stands for nothing to show.
    virtual void setObjectValue(id value);
    bool hasValidObjectValue() { return objectValue() != nullptr; }
    /// The value as a text: a string itself, the text of an attributed string, a number as a reader writes
    /// it;
    /// "" for null and for values that have no text.
    virtual NSString* stringValue();
    void setStringValue(NSString* text);
    /// The value with the attributes that it is drawn with.
    virtual NSAttributedString* attributedStringValue();
    void setAttributedStringValue(NSAttributedString* text);
    /// The number that the text begins with, 0 if there is none.
    virtual int intValue();
    void setIntValue(int value);
    float floatValue() { return static_cast<float>(doubleValue()); }
    void setFloatValue(float value);
    virtual double doubleValue();
    void setDoubleValue(double value);
    /// Takes the value of the sender, which has an operation of that name.
    void takeStringValueFrom(id sender);
    void takeObjectValueFrom(id sender);
    void takeIntValueFrom(id sender);
    void takeDoubleValueFrom(id sender);
    /// Compares the texts. Raises NSInvalidArgumentException for what is no cell.
    NSComparisonResult compare(id other);

    NSCellType type() { return _values.type; }
    /// Another type than before loses the value.
    void setType(NSCellType type);
    /// The text of a button, and of other cells their value.
    virtual NSString* title() { return stringValue(); }
    virtual void setTitle(NSString* title) { setStringValue(title); }
    NSImage* image() { return _image; }
    virtual void setImage(NSImage* image);
    id representedObject() { return _representedObject; }
    void setRepresentedObject(id object);

    // State

    /// NSOnState, NSOffState, or NSMixedState where that is allowed.
    int state() { return _values.state; }
    /// Any number but 0 switches on, below 0 where mixed is allowed sets that.
    virtual void setState(int state);
    bool allowsMixedState() { return _values.allowsMixedState; }
    void setAllowsMixedState(bool allows);
    /// The state that a click leads to.
    int nextState();
    virtual void setNextState() { setState(nextState()); }

    bool isEnabled() { return _values.isEnabled; }
    virtual void setEnabled(bool isEnabled);
    bool isHighlighted() { return _values.isHighlighted; }
    void setHighlighted(bool isHighlighted);
    bool isEditable() { return _values.isEditable; }
    /// What can be edited can be selected as well.
    void setEditable(bool isEditable);
    bool isSelectable() { return _values.isSelectable; }
    /// What cannot be selected cannot be edited either.
    void setSelectable(bool isSelectable);
    bool showsFirstResponder() { return _values.showsFirstResponder; }
    /// Whether the cell is drawn as the one that keys go to.
    void setShowsFirstResponder(bool shows);
    bool refusesFirstResponder() { return _values.refusesFirstResponder; }
    void setRefusesFirstResponder(bool refuses) { _values.refusesFirstResponder = refuses; }
    bool acceptsFirstResponder() { return isEnabled() && !refusesFirstResponder(); }

    // Look

    NSFont* font();
    /// Null stands for the system font of the cell's control size.
    void setFont(NSFont* font);
    NSControlSize controlSize() { return _values.controlSize; }
    void setControlSize(NSControlSize size);
    NSTextAlignment alignment() { return _values.alignment; }
    void setAlignment(NSTextAlignment alignment);
    NSLineBreakMode lineBreakMode() { return _values.lineBreakMode; }
    /// Cells show one line and cut it at its end, unless they wrap.
    void setLineBreakMode(NSLineBreakMode mode);
    bool wraps() { return _values.lineBreakMode <= NSLineBreakByCharWrapping; }
    void setWraps(bool wraps);
    bool isScrollable() { return _values.isScrollable; }
    /// Whether a text that is edited moves aside when it becomes too long. Such a cell does not wrap.
    void setScrollable(bool isScrollable);
    /// The side that the text, and the marks, segments and indicators beside it, begin at. Natural at first:
    /// a text decides by its letters, and the rest begins where menus do in the user's language.
    NSWritingDirection baseWritingDirection() { return _values.baseWritingDirection; }
    void setBaseWritingDirection(NSWritingDirection direction);
    virtual bool isBordered() { return _values.isBordered; }
    /// A thin line around the cell; excludes a bezel.
    virtual void setBordered(bool isBordered);
    bool isBezeled() { return _values.isBezeled; }
    /// The frame of a text field; excludes a border.
    void setBezeled(bool isBezeled);
    /// Whether the cell covers its whole frame.
    virtual bool isOpaque() { return false; }

    // Action. Plain cells have none: their setters do nothing.

    virtual id target() { return nullptr; }
    virtual void setTarget(id target);
    virtual SEL action() { return {}; }
    virtual void setAction(SEL action);
    virtual int tag() { return -1; }
    virtual void setTag(int tag);
    /// Sets the events that send the action, as a mask of event types, and returns the previous mask. At
    /// first it is the end of a click.
    int sendActionOn(int mask);
    bool isContinuous();
    /// Whether the action is sent again and again while the mouse is held.
    void setContinuous(bool isContinuous);
    virtual NSString* keyEquivalent() { return u""_ns; }
    /// Does what a click does, without the mouse. Nothing if the cell is disabled.
    virtual void performClick(id sender);

    // Room

    /// The least size that shows everything; a great width for cells that wrap.
    NSSize cellSize();
    /// The same within a width.
    virtual NSSize cellSizeForBounds(NSRect bounds);
    /// The frame without border or bezel.
    virtual NSRect drawingRectForBounds(NSRect bounds);
    virtual NSRect titleRectForBounds(NSRect bounds);
    virtual NSRect imageRectForBounds(NSRect bounds) { return drawingRectForBounds(bounds); }

    // Drawing, into the current graphics context in the view's coordinates

    /// The control or table that shows the cell; not kept alive, and null once that ended.
    NSView* controlView();
    void setControlView(NSView* view);
    /// Border and contents. The view becomes the control view.
    virtual void drawWithFrame_inView(NSRect frame, NSView* view);
    virtual void drawInteriorWithFrame_inView(NSRect frame, NSView* view);
    /// Draws the cell in that state and leaves it in it.
    virtual void highlight_withFrame_inView(bool isHighlighted, NSRect frame, NSView* view);

    // Mouse. Places are in the view's coordinates.

    /// Whether a cell of the class goes on following the mouse outside its frame.
    static bool prefersTrackingUntilMouseUp() { return false; }
    /// Follows the mouse from the event, which pressed the button, until the button is released, or until
    /// the mouse leaves the frame unless `untilMouseUp` is true. Sends the action on the way and at the end.
    /// Returns whether the button was released where the cell follows it. False at once for null and for a
    /// view without a window.
    virtual bool trackMouse_inRect_ofView_untilMouseUp(NSEvent* event, NSRect frame, NSView* view,
                                                       bool untilMouseUp);
    /// Whether the cell follows the mouse from there.
    virtual bool startTrackingAt_inView(NSPoint start, NSView* view);
    /// Whether the cell goes on following it.
    virtual bool continueTracking_at_inView(NSPoint last, NSPoint current, NSView* view);
    virtual void stopTracking_at_inView_mouseIsUp(NSPoint last, NSPoint stop, NSView* view, bool mouseIsUp);
    /// How long the mouse is held before a continuous cell sends its action again, and how often it does
    /// then, in seconds. A null pointer is passed over.
    virtual void getPeriodicDelay_interval(float* delay, float* interval);
    /// Sets the pointer for the part of the view where the cell stands: the text beam where text can be
    /// selected.
    virtual void resetCursorRect_inView(NSRect frame, NSView* view);

    // Editing with a text object that the window lends, the field editor

    /// Gives the text object the cell's font, alignment and colours; returns it. Null for null.
    virtual NSText* setUpFieldEditorAttributes(NSText* text);
    /// Has the text object edit the cell, and hands it the event, which may be null. Nothing happens if the
    /// cell has no text to select or the view is in no window.
    virtual void editWithFrame_inView_editor_delegate_event(NSRect frame, NSView* view, NSText* editor,
                                                            id delegate, NSEvent* event);
    /// Has the text object edit the cell, with a part of the text selected.
    virtual void selectWithFrame_inView_editor_delegate_start_length(NSRect frame, NSView* view,
                                                                     NSText* editor, id delegate, int start,
                                                                     int length);
    /// Takes the text object off the view.
    virtual void endEditing(NSText* editor);

    // C++ only

    /// The colour of the text in the cell's present state.
    virtual NSColor* effectiveTextColor();
    /// What a text without attributes of its own is drawn with. Borrowed.
    NSDictionary* textAttributes();

  protected:
    NSCell();
    ~NSCell() = default;

    struct Values {
        NSCellType type = NSTextCellType;
        int state = NSOffState;
        NSControlSize controlSize = NSRegularControlSize;
        NSTextAlignment alignment = NSNaturalTextAlignment;
        NSLineBreakMode lineBreakMode = NSLineBreakByTruncatingTail;
        NSWritingDirection baseWritingDirection = NSWritingDirectionNatural;
        int actionEvents = 0;
        bool allowsMixedState = false;
        bool isEnabled = true;
        bool isHighlighted = false;
        bool isEditable = false;
        bool isSelectable = false;
        bool isScrollable = false;
        bool isBordered = false;
        bool isBezeled = false;
        bool showsFirstResponder = false;
        bool refusesFirstResponder = false;
    };

    /// Called after every change that shows: has the control draw the cell.
    void changed();
    /// The same after a change of what a text is drawn with.
    void lookChanged();
    /// Makes the receiver like the other cell, which is of its class, except for the control view.
    virtual void takeProperties(NSCell* other);
    /// Draws a string or attributed string in the middle of the height, in one line or wrapped.
    void drawText_inRect(id text, NSRect rect);
    /// The part of a rectangle that lines of that height stand in.
    NSRect lineRect(NSRect rect, float height);
    /// The room of that text in lines of the width.
    NSSize sizeOfText_width(id text, float width);
    /// Sends the action to the target through the control.
    virtual void sendAction();

    Values _values;

  private:
    template <class T>
    void setLook(T& value, T wanted);

    Retained<Object> _objectValue;
    Retained<NSImage> _image;
    Retained<NSFont> _font;
    Retained<Object> _representedObject;
    Retained<NSDictionary> _textAttributes;
    WeakHandle _controlView;
};

}  // namespace pelvor
