// SPDX-License-Identifier: Apache-2.0
// ShownLines: which lines of a text view are on the screen, so that only those that changed are drawn again.
#pragma once

#include <functional>
#include <vector>

#include "Text/NSLayoutManager.h"

namespace pelvor {

/// A line fragment as it was drawn; its rectangles are in the coordinates of the view.
struct ShownLine : LaidLine {
    NSRange selected{};  ///< what of it is selected, from its first character
    bool isSelectedToEdge = false;
    bool isActive = false;   ///< the selection is where the keys go
    bool isChanged = false;  ///< what it shows is no longer what it showed
};

/// Remembers the lines that were drawn. Edits move and mark them; `update` compares them with the lines as
/// they are laid out now.
class ShownLines {
  public:
    /// The characters at the range replace as many less `delta`, or look different.
    void invalidate(NSRange range, NSInteger delta);
    void invalidateAll();
    /// Calls the function with each rectangle in which a line stood or stands that looks different now, and
    /// remembers the new lines.
    void update(std::vector<ShownLine> lines, const std::function<void(NSRect)>& damage);
    /// The first line between the two heights; null if there is none, or if it is changed.
    const ShownLine* firstIn(float top, float bottom) const;

  private:
    std::vector<ShownLine> _lines;  // in the order of the text
};

}  // namespace pelvor
