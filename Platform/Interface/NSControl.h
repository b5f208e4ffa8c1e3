// SPDX-License-Identifier: Apache-2.0
// NSControl: a view that shows a value and sends an action.
#pragma once

#include "Interface/NSCell.h"
#include "Interface/NSView.h"

namespace pelvor {

// Posted by controls whose text is edited, which are the sender, with the field editor under "NSFieldEditor"
// in the user information.

inline constexpr NSString* NSControlTextDidBeginEditingNotification =
    u"NSControlTextDidBeginEditingNotification"_ns;
inline constexpr NSString* NSControlTextDidChangeNotification = u"NSControlTextDidChangeNotification"_ns;
inline constexpr NSString* NSControlTextDidEndEditingNotification =
    u"NSControlTextDidEndEditingNotification"_ns;

/// A view with a cell, which draws the control, keeps its value and follows the mouse:
///
///     auto button = NSButton::initWithFrame({{20, 20}, {90, 26}});
///     button->setTitle(u"Justify"_ns);
///     button->setTarget(controller);
///     button->setAction("justify:"_sel);            // called with the button
///
/// Most operations are those of the cell, where they are described; a control without a cell has no value and
/// sends no action. Main thread.
class PELVOR_EXPORT NSControl : public NSView {
    PELVOR_CLASS(NSControl, NSView);
    PELVOR_CREATORS(initWithFrame);

  public:
    /// A control with a cell of the class that `cellClass` returns.
    static Retained<NSControl> initWithFrame(NSRect frame, Class* cls = classObject());
    /// The class of the cells of new controls; subclasses have their own.
    static Class* cellClass();

    NSCell* cell() { return _cell; }
    virtual void setCell(NSCell* cell);
    /// The cell that the user is working with; here the only one.
    virtual NSCell* selectedCell() { return _cell; }
    int selectedTag();
    /// Draws the cell again soon, if it is one of the control's.
    virtual void updateCell(NSCell* cell);
    /// Gives the control the size that its cell needs.
    virtual void sizeToFit();

    virtual bool isEnabled();
    virtual void setEnabled(bool isEnabled);
    id target();
    void setTarget(id target);
    SEL action();
    void setAction(SEL action);
    NSInteger tag() override;
    void setTag(int tag);
    int sendActionOn(int mask);
    bool isContinuous();
    void setContinuous(bool isContinuous);
    /// Whether further clicks of a double click do nothing.
    bool ignoresMultiClick() { return _ignoresMultiClick; }
    void setIgnoresMultiClick(bool ignores) { _ignoresMultiClick = ignores; }
    bool refusesFirstResponder();
    void setRefusesFirstResponder(bool refuses);

    NSFont* font();
    void setFont(NSFont* font);
    NSTextAlignment alignment();
    void setAlignment(NSTextAlignment alignment);
    NSWritingDirection baseWritingDirection();
    void setBaseWritingDirection(NSWritingDirection direction);

    // The value. Reading it takes over a text that is being edited; setting it replaces that text, and the
    // user goes on behind the new one.

    id objectValue();
    void setObjectValue(id value);
    NSString* stringValue();
    void setStringValue(NSString* text);
    NSAttributedString* attributedStringValue();
    void setAttributedStringValue(NSAttributedString* text);
    int intValue();
    void setIntValue(int value);
    float floatValue();
    void setFloatValue(float value);
    double doubleValue();
    void setDoubleValue(double value);
    void takeStringValueFrom(id sender);
    void takeObjectValueFrom(id sender);
    void takeIntValueFrom(id sender);
    void takeDoubleValueFrom(id sender);

    /// Sends the action with the control as its argument, as the application does. Returns whether somebody
    /// took it; false for the null selector.
    virtual bool sendAction_to(SEL action, id target);
    virtual void performClick(id sender);

    // A text that is being edited in the window's field editor

    /// The field editor while it edits this control, else null.
    NSText* currentEditor();
    /// Ends editing, and forgets what was typed. Returns whether the control was being edited.
    virtual bool abortEditing();
    /// Takes over what has been typed, and goes on editing.
    virtual void validateEditing();

    bool isFlipped() override { return true; }
    bool isOpaque() override;
    void drawRect(NSRect dirty) override;
    void mouseDown(NSEvent* event) override;
    void resetCursorRects() override;
    bool acceptsFirstResponder() override;
    bool becomeFirstResponder() override;
    bool resignFirstResponder() override;

  protected:
    NSControl() = default;
    ~NSControl();

    /// Whether the application is handling a press of the mouse: controls that need no keys do not take them
    /// away from a text then.
    static bool isInMouseDown();
    /// Posts a notification of the field editor as one of the control, and tells the delegate, if it has a
    /// method for it.
    void tellEditing(NSString* notification, SEL message, NSText* editor, id delegate);
    /// Takes the field editor off the control. The keys stay with the control's window.
    void dropEditor(NSCell* cell, NSText* editor);

  private:
    template <auto set, class Value>
    void setValue(Value value);

    Retained<NSCell> _cell;
    bool _ignoresMultiClick = false;
};

}  // namespace pelvor
