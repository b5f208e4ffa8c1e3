// SPDX-License-Identifier: Apache-2.0
// NSMutableParagraphStyle: a paragraph style that can be changed.
#pragma once

#include "Text/NSParagraphStyle.h"

namespace pelvor {

/// A paragraph style that can be changed.
class PELVOR_EXPORT NSMutableParagraphStyle : public NSParagraphStyle {
    PELVOR_CLASS(NSMutableParagraphStyle, NSParagraphStyle);
    PELVOR_INHERITED_CREATORS(init, initWithCoder);

  public:
    void setAlignment(NSTextAlignment alignment) { _values.alignment = alignment; }
    void setBaseWritingDirection(NSWritingDirection direction) { _values.baseWritingDirection = direction; }
    void setLineBreakMode(NSLineBreakMode mode) { _values.lineBreakMode = mode; }
    void setDefaultTabInterval(float interval) { _values.defaultTabInterval = interval; }
    void setFirstLineHeadIndent(float indent) { _values.firstLineHeadIndent = indent; }
    void setHeadIndent(float indent) { _values.headIndent = indent; }
    void setTailIndent(float indent) { _values.tailIndent = indent; }
    void setLineHeightMultiple(float factor) { _values.lineHeightMultiple = factor; }
    void setMinimumLineHeight(float height) { _values.minimumLineHeight = height; }
    void setMaximumLineHeight(float height) { _values.maximumLineHeight = height; }
    void setLineSpacing(float spacing) { _values.lineSpacing = spacing; }
    void setParagraphSpacing(float spacing) { _values.paragraphSpacing = spacing; }
    void setParagraphSpacingBefore(float spacing) { _values.paragraphSpacingBefore = spacing; }
    void setHyphenationFactor(float factor) { _values.hyphenationFactor = factor; }
    /// Sets the tabs, in the order of the array; null stands for an empty array. Raises
    /// NSInvalidArgumentException if an object of the array is no NSTextTab.
    void setTabStops(NSArray* tabStops);
    /// Inserts the tab behind all tabs whose locations are not greater. Raises NSInvalidArgumentException if
    /// the tab is null.
    void addTabStop(NSTextTab* tab);
    /// Removes the tabs that are equal to `tab`.
    void removeTabStop(NSTextTab* tab);
    /// Takes over all properties of the other style. Raises NSInvalidArgumentException if the other style is
    /// null.
    void setParagraphStyle(NSParagraphStyle* style);

  protected:
    NSMutableParagraphStyle() = default;
    ~NSMutableParagraphStyle() = default;
};

}  // namespace pelvor
