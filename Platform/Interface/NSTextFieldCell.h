// SPDX-License-Identifier: Apache-2.0
// NSTextFieldCell: a text in a field.
#pragma once

#include "Interface/NSActionCell.h"

namespace pelvor {

/// A text with colours of its own; the cell of text fields and of the columns of tables. Main thread.
class PELVOR_EXPORT NSTextFieldCell : public NSActionCell {
    PELVOR_CLASS(NSTextFieldCell, NSActionCell);
    PELVOR_INHERITED_CREATORS(init, initTextCell, initImageCell);

  public:
    /// Null stands for the system's colour of texts, and for its colour behind them.
    NSColor* textColor() { return _textColor; }
    void setTextColor(NSColor* color);
    NSColor* backgroundColor() { return _backgroundColor; }
    void setBackgroundColor(NSColor* color);
    /// Whether the background is drawn; not at first.
    bool drawsBackground() { return _drawsBackground; }
    void setDrawsBackground(bool draws);
    /// What is shown, in grey, as long as the field is empty; may be null.
    NSString* placeholderString() { return _placeholder; }
    void setPlaceholderString(NSString* text);

    bool isOpaque() override;
    void drawWithFrame_inView(NSRect frame, NSView* view) override;
    void drawInteriorWithFrame_inView(NSRect frame, NSView* view) override;

    // C++ only

    NSColor* effectiveTextColor() override;

  protected:
    NSTextFieldCell() = default;
    ~NSTextFieldCell() = default;

    void takeProperties(NSCell* other) override;

  private:
    Retained<NSColor> _textColor, _backgroundColor;
    Retained<NSString> _placeholder;
    bool _drawsBackground = false;
};

}  // namespace pelvor
