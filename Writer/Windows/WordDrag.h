// SPDX-License-Identifier: Apache-2.0
// WordDrag: blanks around words that are dragged.
#pragma once

#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"

namespace pelvor {

class NSDraggingInfo;
class NSTextView;

/// Whole words that are dragged from a text of this program take one blank from the place where they were,
/// and get one on each side where words or marks would touch them:
///
///     WordDrag drag(info);
///     if (!NSTextView::performDragOperation(info)) return false;
///     drag.fitBlanks(this);
///
/// Words of scripts that are written without blanks are left alone. Undoing the drop undoes this, too.
class WordDrag {
  public:
    /// Before something is dropped.
    explicit WordDrag(NSDraggingInfo* info);
    /// After it was; it is selected in the view.
    void fitBlanks(NSTextView* view);

  private:
    Retained<NSTextView> _source;        // null if no whole words are dragged
    NSUInteger _place = 0, _length = 0;  // of the words, and of the whole text, before the drop
};

}  // namespace pelvor
