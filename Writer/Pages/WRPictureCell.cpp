// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/WRPictureCell.h"

#include <algorithm>

#include "Foundation/NSString.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSTextAttachment.h"
#include "Text/NSTextContainer.h"
#include "Writer/Pages/PagesLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRPictureCell, pagesLibrary) {
    methods.instance<"cellSize", &WRPictureCell::cellSize>();
    methods.instance<
        "cellFrameForTextContainer:proposedLineFragment:glyphPosition:characterIndex:",
        &WRPictureCell::cellFrameForTextContainer_proposedLineFragment_glyphPosition_characterIndex>();
    methods.instance<"drawWithFrame:inView:characterIndex:layoutManager:",
                     &WRPictureCell::drawWithFrame_inView_characterIndex_layoutManager>();
    methods.instance<"problem", &WRPictureCell::problem>();
}

WRPictureCell::~WRPictureCell() = default;

NSSize WRPictureCell::cellSize() {
    const NSSize bounds = NSTextAttachmentCell::cellSize();
    if ((bounds.width > 0 && bounds.height > 0) || !attachment()) return bounds;
    const NSSize pixels = NSGraphicsContext::sizeOfImage(attachment()->contents());
    return {pixels.width * 0.75F, pixels.height * 0.75F};
}

NSRect WRPictureCell::cellFrameForTextContainer_proposedLineFragment_glyphPosition_characterIndex(
    NSTextContainer* container, NSRect lineFragment, NSPoint, NSUInteger) {
    const NSSize size = cellSize();
    if (!container || size.width <= 0 || size.height <= 0) return {cellBaselineOffset(), size};
    const float factor = std::min(
        {1.0F, lineFragment.size.width / size.width, container->containerSize().height / size.height});
    return {cellBaselineOffset(), {size.width * factor, size.height * factor}};
}

void WRPictureCell::drawWithFrame_inView_characterIndex_layoutManager(NSRect frame, id, NSUInteger,
                                                                      NSLayoutManager*) {
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    if (!context || !attachment() || !attachment()->contents()) return;
    NSString* reason = nullptr;
    if (context->drawImage_inRect_reason(attachment()->contents(), frame, &reason)) return;
    _problem.set(reason);
    context->setColor(NSColor::grayColor());
    context->strokeRect_width(frame, 0.5F);
}

}  // namespace pelvor
