// SPDX-License-Identifier: Apache-2.0
// NSTextAttachmentCell: measures and draws an attachment.
#pragma once

#include "Foundation/NSGeometry.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSLayoutManager;
class NSTextAttachment;
class NSTextContainer;

/// What the layout asks for an attachment's room, and what draws the attachment. The operations are sent as
/// messages, so that objects of other classes can be cells too. The plain cell takes the room of the
/// attachment's bounds and draws nothing; subclasses draw.
///
///     NSSize PBRulerCell::cellSize() { return {100, 4}; }
///     void PBRulerCell::drawWithFrame_inView_characterIndex_layoutManager(NSRect frame, …) { … }
///
/// One thread at a time.
class PELVOR_EXPORT NSTextAttachmentCell : public NSObject {
    PELVOR_CLASS(NSTextAttachmentCell, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<NSTextAttachmentCell> init(Class* cls = classObject());

    /// Not kept alive: the attachment keeps its cell.
    NSTextAttachment* attachment() { return _attachment; }
    void setAttachment(NSTextAttachment* attachment) { _attachment = attachment; }

    /// In points.
    virtual NSSize cellSize();
    /// From the point on the baseline to the cell's lower left corner, y upwards.
    virtual NSPoint cellBaselineOffset();
    /// The room that the cell takes where its character stands at `position` in the line: from the point on
    /// the baseline, y upwards. The base returns the offset and size above.
    virtual NSRect cellFrameForTextContainer_proposedLineFragment_glyphPosition_characterIndex(
        NSTextContainer* container, NSRect lineFragment, NSPoint position, NSUInteger characterIndex);
    /// Draws into the current graphics context. The frame is in the context's coordinates, y downwards, and
    /// its size is that of the operation above. What this changes of the context's state is restored
    /// afterwards. The view is that of the container, or null.
    virtual void drawWithFrame_inView_characterIndex_layoutManager(NSRect frame, id view,
                                                                   NSUInteger characterIndex,
                                                                   NSLayoutManager* layoutManager);

  protected:
    NSTextAttachmentCell() = default;
    ~NSTextAttachmentCell() = default;

  private:
    Unretained<NSTextAttachment> _attachment = nullptr;
};

}  // namespace pelvor
