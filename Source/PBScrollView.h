// SPDX-License-Identifier: Apache-2.0
// PBScrollView: a scroll view that scrolls without telling of each change of focus.
#pragma once

#include "Interface/NSScrollView.h"

namespace pelvor {

/// Takes the place of the platform's scroll view class when the load-time sequence reaches `didLoad`, so that
/// every scroll view that is made from then on is a PBScrollView. While it scrolls,
/// NSViewFocusDidChangeNotification is not posted; observers that hear of each focus would slow scrolling
/// down. Afterwards it sends its document view `scheduleRemoveScrollingTrails`, if the view has that
/// operation.
class PELVOR_EXPORT PBScrollView : public NSScrollView {
    PELVOR_CLASS(PBScrollView, NSScrollView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    /// Does nothing.
    static void load() {}
    /// Makes the class pose as NSScrollView.
    static void didLoad();

    void scrollClipView_toPoint(NSClipView* clipView, NSPoint point) override;

  protected:
    PBScrollView() = default;
    ~PBScrollView() = default;
};

}  // namespace pelvor
