// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSOpenPanel.h"

#include "Foundation/NSArray.h"
#include "Interface/InterfaceLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSOpenPanel, interfaceLibrary) {
    methods.creator<"openPanel", &NSOpenPanel::openPanel>();
    methods.creator<"initWithContentRect:styleMask:backing:defer:",
                    &NSOpenPanel::initWithContentRect_styleMask_backing_defer>();
    methods.instance<"runModalForTypes:", &NSOpenPanel::runModalForTypes>();
    methods.instance<"runModalForDirectory:file:types:", &NSOpenPanel::runModalForDirectory_file_types>();
    methods.instance<"filenames", &NSOpenPanel::filenames>();
    methods.instance<"canChooseFiles", &NSOpenPanel::canChooseFiles>();
    methods.instance<"setCanChooseFiles:", &NSOpenPanel::setCanChooseFiles>();
    methods.instance<"canChooseDirectories", &NSOpenPanel::canChooseDirectories>();
    methods.instance<"setCanChooseDirectories:", &NSOpenPanel::setCanChooseDirectories>();
    methods.instance<"allowsMultipleSelection", &NSOpenPanel::allowsMultipleSelection>();
    methods.instance<"setAllowsMultipleSelection:", &NSOpenPanel::setAllowsMultipleSelection>();
}

NSOpenPanel* NSOpenPanel::openPanel(Class* cls) { return cast<NSOpenPanel>(NSSavePanel::savePanel(cls)); }

Retained<NSOpenPanel> NSOpenPanel::initWithContentRect_styleMask_backing_defer(NSRect contentRect,
                                                                               NSUInteger styleMask,
                                                                               NSBackingStoreType backing,
                                                                               bool defer, Class* cls) {
    return cast<NSOpenPanel>(NSSavePanel::initWithContentRect_styleMask_backing_defer(contentRect, styleMask,
                                                                                      backing, defer, cls));
}

NSInteger NSOpenPanel::runModalForTypes(NSArray* types) {
    setAllowedFileTypes(types);
    return runModal();
}

NSInteger NSOpenPanel::runModalForDirectory_file_types(NSString* directory, NSString* name, NSArray* types) {
    setAllowedFileTypes(types);
    return runModalForDirectory_file(directory, name);
}

NSArray* NSOpenPanel::filenames() { return chosenPaths() ? chosenPaths() : NSArray::array(); }

void NSOpenPanel::setCanChooseFiles(bool can) { _canChooseFiles = can; }
void NSOpenPanel::setCanChooseDirectories(bool can) { _canChooseDirectories = can; }
void NSOpenPanel::setAllowsMultipleSelection(bool allows) { _allowsMultipleSelection = allows; }

}  // namespace pelvor
