// SPDX-License-Identifier: Apache-2.0
#include "PBScrollView.h"

#include "BaseInterfaceLibrary.h"
#include "Interface/NSClipView.h"
#include "Interface/NSScroller.h"
#include "PBNotificationCenter.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBScrollView, baseInterfaceLibrary) {
    methods.classLevel<"load", &PBScrollView::load>();
    methods.classLevel<"didLoad", &PBScrollView::didLoad>();
    methods.instance<"scrollClipView:toPoint:", &PBScrollView::scrollClipView_toPoint>();
}

namespace {

// The notification is silenced, which is counted, for as long as this lives.
class FocusSilence {
  public:
    FocusSilence() {
        NSNotificationCenter_PelvorAdditions::disableNotificationName(NSViewFocusDidChangeNotification);
    }
    ~FocusSilence() {
        NSNotificationCenter_PelvorAdditions::enableNotificationName(NSViewFocusDidChangeNotification);
    }
    FocusSilence(const FocusSilence&) = delete;
    FocusSilence& operator=(const FocusSilence&) = delete;
};

}  // namespace

void PBScrollView::didLoad() {
    if (NSScrollView::classRecord.effectiveClass() != classObject())
        classObject()->poseAsClass(&NSScrollView::classRecord);
}

void PBScrollView::scrollClipView_toPoint(NSClipView* clipView, NSPoint point) {
    const auto alive = Retained<PBScrollView>::retaining(this);
    {
        const FocusSilence silence;
        NSScrollView::scrollClipView_toPoint(clipView, point);
    }
    const SEL cleaning = "scheduleRemoveScrollingTrails"_sel;
    NSView* document = documentView();
    if (document && document->respondsToSelector(cleaning)) send(document, cleaning);
}

}  // namespace pelvor
