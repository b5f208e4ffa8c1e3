// SPDX-License-Identifier: Apache-2.0
// WRFileDropView: a view on which files are dropped to open them.
#pragma once

#include "Interface/NSView.h"

namespace pelvor {

class NSDraggingInfo;

/// Whether files are dragged.
bool hasDraggedFiles(NSDraggingInfo* info);
/// Has Writer open what is dropped, when the drag has ended. Returns false if there are no files of this
/// machine.
bool openDraggedFiles(NSDraggingInfo* info);

/// The contents of a document's window. Main thread.
class WRFileDropView : public NSView, NSView::HiddenCreators {
    PELVOR_CLASS(WRFileDropView, NSView);

  public:
    // C++ only
    static Retained<WRFileDropView> create(NSRect frame);

    NSUInteger draggingMoved(NSDraggingInfo* info);
    bool performDragOperation(NSDraggingInfo* info) { return openDraggedFiles(info); }

  protected:
    WRFileDropView() = default;
    ~WRFileDropView() = default;
};

}  // namespace pelvor
