// SPDX-License-Identifier: Apache-2.0
// NSTextField: a text that the user may change, in a field.
#pragma once

#include "Interface/NSControl.h"
#include "Interface/NSTextFieldCell.h"

namespace pelvor {

class NSNotification;

/// A field with a text. While the field has the keys, the window's field editor edits the text:
///
///     auto name = NSTextField::initWithFrame({{20, 20}, {160, 24}});
///     name->setStringValue(u"Anna"_ns);
///     name->setDelegate(form);
///
/// The action is sent when Return is typed. Tab goes to the next view that takes keys, Escape forgets what
/// was typed. The delegate may have `control:textShouldBeginEditing:`, `control:textShouldEndEditing:`,
/// `control:textView:doCommandBySelector:`, `controlTextDidBeginEditing:`, `controlTextDidChange:` and
/// `controlTextDidEndEditing:`. A label is a field that can be neither edited nor selected:
///
///     label->setSelectable(false);
///     label->setBezeled(false);
///     label->setDrawsBackground(false);
///
/// Main thread.
class PELVOR_EXPORT NSTextField : public NSControl {
    PELVOR_CLASS(NSTextField, NSControl);
    PELVOR_CREATORS(initWithFrame);

  public:
    /// An empty field that can be edited, with a frame around it and a background.
    static Retained<NSTextField> initWithFrame(NSRect frame, Class* cls = classObject());
    static Class* cellClass() { return NSTextFieldCell::classObject(); }

    id delegate() { return _delegate.object().autorelease(); }
    /// Not kept alive; null once it has ended.
    virtual void setDelegate(id delegate) { _delegate = WeakHandle(delegate); }

    bool isEditable();
    void setEditable(bool isEditable);
    bool isSelectable();
    void setSelectable(bool isSelectable);
    bool isBezeled();
    void setBezeled(bool isBezeled);
    bool isBordered();
    void setBordered(bool isBordered);
    NSColor* textColor();
    void setTextColor(NSColor* color);
    NSColor* backgroundColor();
    void setBackgroundColor(NSColor* color);
    bool drawsBackground();
    void setDrawsBackground(bool draws);

    /// Edits the text, with all of it selected. Does nothing if it cannot be selected or the field is in no
    /// window.
    virtual void selectText(id sender);

    // What the field editor asks and tells its delegate, which the field is

    virtual bool textShouldBeginEditing(NSText* text);
    virtual bool textShouldEndEditing(NSText* text);
    virtual void textDidBeginEditing(NSNotification* notification);
    virtual void textDidChange(NSNotification* notification);
    virtual void textDidEndEditing(NSNotification* notification);
    bool textView_doCommandBySelector(NSText* text, SEL command);

    bool acceptsFirstResponder() override;
    bool becomeFirstResponder() override;
    void mouseDown(NSEvent* event) override;
    void drawRect(NSRect dirty) override;

  protected:
    NSTextField() = default;
    ~NSTextField() = default;

  private:
    NSTextFieldCell* fieldCell() { return cast<NSTextFieldCell>(cell()); }
    template <class... Arguments>
    bool delegateAllows(SEL question, Arguments... arguments);

    WeakHandle _delegate;
};

}  // namespace pelvor
