// SPDX-License-Identifier: Apache-2.0
// WRPictureCell: sets and draws a picture in text.
#pragma once

#include "Text/NSTextAttachmentCell.h"

namespace pelvor {

class NSString;

/// The cell of a picture: as large as the attachment's bounds say, else as the picture itself at 96 pixels an
/// inch, but never larger than its page. A picture that cannot be drawn is shown as an empty frame.
class PELVOR_EXPORT WRPictureCell : public NSTextAttachmentCell {
    PELVOR_CLASS(WRPictureCell, NSTextAttachmentCell);
    PELVOR_INHERITED_CREATORS(init);

  public:
    NSSize cellSize() override;
    NSRect cellFrameForTextContainer_proposedLineFragment_glyphPosition_characterIndex(
        NSTextContainer* container, NSRect lineFragment, NSPoint position,
        NSUInteger characterIndex) override;
    void drawWithFrame_inView_characterIndex_layoutManager(NSRect frame, id view, NSUInteger characterIndex,
                                                           NSLayoutManager* layoutManager) override;

    /// Why the picture could not be drawn; null if it was, or was not asked to be.
    NSString* problem() { return _problem; }

  protected:
    WRPictureCell() = default;
    ~WRPictureCell();

  private:
    Retained<NSString> _problem;
};

}  // namespace pelvor
