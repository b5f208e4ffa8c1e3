// SPDX-License-Identifier: Apache-2.0
// NSText: what all views that show and edit text have in common.
#pragma once

#include "Interface/NSView.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class NSColor;
class NSFont;

// Notifications of text views, with the text view as object. The delegate hears of them by the messages
// "textDidBeginEditing:", "textDidChange:" and "textDidEndEditing:".

/// Posted before the first change after the view became first responder.
extern PELVOR_EXPORT NSString* const NSTextDidBeginEditingNotification;
extern PELVOR_EXPORT NSString* const NSTextDidChangeNotification;
/// Posted when the view is no longer first responder, and by field editors when a key ends editing. The user
/// information has the key "NSTextMovement" with one of the numbers below.
extern PELVOR_EXPORT NSString* const NSTextDidEndEditingNotification;

/// Which key ended the editing of a field.
enum NSTextMovement : int {
    NSIllegalTextMovement = 0,
    NSReturnTextMovement = 0x10,
    NSTabTextMovement = 0x11,
    NSBacktabTextMovement = 0x12,
    NSLeftTextMovement = 0x13,
    NSRightTextMovement = 0x14,
    NSUpTextMovement = 0x15,
    NSDownTextMovement = 0x16,
    NSCancelTextMovement = 0x17,
};

/// A view that shows text, lets the user select it, and perhaps edit it. NSTextView implements the class;
/// what concerns the text itself is declared there. Main thread.
class PELVOR_EXPORT NSText : public NSView {
    PELVOR_CLASS(NSText, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    // The text

    /// A live view of the text, borrowed.
    virtual NSString* string() = 0;
    /// Null stands for an empty text. The caret goes before the first character. Nobody is asked or told, and
    /// no step on the text can be undone any more.
    virtual void setString(NSString* string) = 0;
    /// Raises NSRangeException for a range that is not in the text.
    virtual void replaceCharactersInRange_withString(NSRange range, NSString* string) = 0;
    virtual NSRange selectedRange() = 0;
    virtual void setSelectedRange(NSRange range) = 0;
    virtual void scrollRangeToVisible(NSRange range) = 0;

    // Settings

    /// Not kept alive.
    id delegate() { return _delegate.object().autorelease(); }
    void setDelegate(id delegate) { _delegate = WeakHandle(delegate); }
    bool isEditable() { return _isEditable; }
    /// What can be edited can be selected.
    virtual void setEditable(bool isEditable);
    bool isSelectable() { return _isSelectable; }
    /// What cannot be selected cannot be edited.
    virtual void setSelectable(bool isSelectable);
    /// Whether parts of the text can look different; true at first.
    bool isRichText() { return _isRichText; }
    void setRichText(bool isRichText) { _isRichText = isRichText; }
    /// Whether Return, Tab and Escape end editing instead of becoming part of the text.
    bool isFieldEditor() { return _isFieldEditor; }
    void setFieldEditor(bool isFieldEditor) { _isFieldEditor = isFieldEditor; }
    bool drawsBackground() { return _drawsBackground; }
    virtual void setDrawsBackground(bool draws);
    NSColor* backgroundColor() { return _backgroundColor; }
    /// Null stands for white.
    virtual void setBackgroundColor(NSColor* color);

    // Size. A view that is resizable in a direction grows and shrinks with its text, between two sizes.

    NSSize minSize() { return _minSize; }
    void setMinSize(NSSize size) { _minSize = size; }
    NSSize maxSize() { return _maxSize; }
    void setMaxSize(NSSize size) { _maxSize = size; }
    bool isVerticallyResizable() { return _isVerticallyResizable; }
    void setVerticallyResizable(bool isResizable) { _isVerticallyResizable = isResizable; }
    bool isHorizontallyResizable() { return _isHorizontallyResizable; }
    void setHorizontallyResizable(bool isResizable) { _isHorizontallyResizable = isResizable; }
    virtual void sizeToFit() = 0;

  protected:
    NSText();
    ~NSText();

  private:
    WeakHandle _delegate;
    Retained<NSColor> _backgroundColor;
    NSSize _minSize{};
    NSSize _maxSize{1e7F, 1e7F};
    bool _isEditable = true;
    bool _isSelectable = true;
    bool _isRichText = true;
    bool _isFieldEditor = false;
    bool _drawsBackground = true;
    bool _isVerticallyResizable = true;
    bool _isHorizontallyResizable = false;
};

}  // namespace pelvor
