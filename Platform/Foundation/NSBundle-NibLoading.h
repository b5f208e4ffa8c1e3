// SPDX-License-Identifier: Apache-2.0
// The older way to load an interface file: its owner comes, and its objects go, through a table of names.
//
//     NSMutableArray* objects = NSMutableArray::array();
//     auto* names = NSDictionary::of({{NSNibOwner, controller}, {NSNibTopLevelObjects, objects}});
//     if (loadNibFile_externalNameTable_withZone(bundle, u"About"_ns, names, nullptr)) …
//
// Under NSNibOwner stands the owner, under NSNibTopLevelObjects a mutable array, to which the top-level
// objects are added; both entries may be missing, and the table may be null. Every call reads the file. The
// zone has no meaning. NSNib.h says who owns the objects. Main thread.
#pragma once

#include "Foundation/NSBundle.h"

namespace pelvor {

class NSDictionary;
struct Category;

struct PELVOR_EXPORT NSBundle_NibLoading {
    /// Loads the file at a path; its texts are looked up in the main bundle. Returns whether the objects were
    /// made. A file without objects that can be made leaves a line in the log, a file that cannot be read
    /// none.
    static bool loadNibFile_externalNameTable_withZone(NSString* path, NSDictionary* names, void* zone);
};

/// Loads the resource of that name, with or without ".nib", of the bundle. Returns as the class operation
/// does.
PELVOR_EXPORT bool loadNibFile_externalNameTable_withZone(NSBundle* bundle, NSString* name,
                                                          NSDictionary* names, void* zone);

extern const Category NSBundle_NibLoading_category;

}  // namespace pelvor
