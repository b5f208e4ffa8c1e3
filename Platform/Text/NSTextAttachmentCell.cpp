// SPDX-License-Identifier: Apache-2.0
#include "Text/NSTextAttachmentCell.h"

#include "Text/NSLayoutManager.h"
#include "Text/NSTextAttachment.h"
#include "Text/NSTextContainer.h"
#include "Text/TextLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTextAttachmentCell, textLibrary) {
    methods.creator<"init", &NSTextAttachmentCell::init>();
    methods.creatorAs<"new", &NSTextAttachmentCell::init>();
    methods.instance<"attachment", &NSTextAttachmentCell::attachment>();
    methods.instance<"setAttachment:", &NSTextAttachmentCell::setAttachment>();
    methods.instance<"cellSize", &NSTextAttachmentCell::cellSize>();
    methods.instance<"cellBaselineOffset", &NSTextAttachmentCell::cellBaselineOffset>();
    methods.instance<
        "cellFrameForTextContainer:proposedLineFragment:glyphPosition:characterIndex:",
        &NSTextAttachmentCell::cellFrameForTextContainer_proposedLineFragment_glyphPosition_characterIndex>();
    methods.instance<"drawWithFrame:inView:characterIndex:layoutManager:",
                     &NSTextAttachmentCell::drawWithFrame_inView_characterIndex_layoutManager>();
}

Retained<NSTextAttachmentCell> NSTextAttachmentCell::init(Class* cls) {
    return make<NSTextAttachmentCell>(cls);
}

NSSize NSTextAttachmentCell::cellSize() { return _attachment ? _attachment->bounds().size : NSZeroSize; }

NSPoint NSTextAttachmentCell::cellBaselineOffset() {
    return _attachment ? _attachment->bounds().origin : NSZeroPoint;
}

NSRect NSTextAttachmentCell::cellFrameForTextContainer_proposedLineFragment_glyphPosition_characterIndex(
    NSTextContainer*, NSRect, NSPoint, NSUInteger) {
    return {cellBaselineOffset(), cellSize()};
}

void NSTextAttachmentCell::drawWithFrame_inView_characterIndex_layoutManager(NSRect, id, NSUInteger,
                                                                             NSLayoutManager*) {}

}  // namespace pelvor
