// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRFileDropView.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSPasteboardTypes.h"
#include "Interface/NSDraggingInfo.h"
#include "Interface/NSPasteboard.h"
#include "Writer/Windows/WRDesktop.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

bool hasDraggedFiles(NSDraggingInfo* info) {
    NSArray* wanted = NSArray::of({NSFilenamesPboardType});
    return info && info->draggingPasteboard()->availableTypeFromArray(wanted);
}

bool openDraggedFiles(NSDraggingInfo* info) {
    if (!hasDraggedFiles(info)) return false;
    auto* paths = cast<NSArray>(info->draggingPasteboard()->propertyListForType(NSFilenamesPboardType));
    WRDesktop* desktop = WRDesktop::current();
    if (!paths || paths->count() == 0 || !desktop) return false;
    performSelector_withObject_afterDelay(desktop, "openPaths:"_sel, paths, 0);
    return true;
}

PELVOR_DEFINE_CLASS(WRFileDropView, windowsLibrary) {
    methods.instanceAs<"draggingEntered:", &WRFileDropView::draggingMoved>();
    methods.instance<"performDragOperation:", &WRFileDropView::performDragOperation>();
}

Retained<WRFileDropView> WRFileDropView::create(NSRect frame) {
    auto self = cast<WRFileDropView>(NSView::initWithFrame(frame, classObject()));
    self->registerForDraggedTypes(NSArray::of({NSFilenamesPboardType}));
    return self;
}

NSUInteger WRFileDropView::draggingMoved(NSDraggingInfo* info) {
    return hasDraggedFiles(info) ? NSDragOperationCopy : NSDragOperationNone;
}

}  // namespace pelvor
