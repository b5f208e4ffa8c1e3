// SPDX-License-Identifier: Apache-2.0
// Loading interface files, once read as often as they are needed.
//
//     using Additions = NSBundle_PelvorAdditions;
//     NSArray* objects = nullptr;  // the top-level objects; whoever loads them keeps them
//     if (Additions::loadNibNamed_owner_identifier_topLevelObjects(u"Panel"_ns, this, u"panel"_ns, &objects))
//         _objects.set(objects);
//
// With an identifier, the file is read once and kept for the life of the process: further calls with that
// identifier make the objects of the same file again, whatever name and bundle they give. Without an
// identifier, and on platforms older than version 743, every call reads the file. A file that is missing or
// cannot be read is not logged. Main thread.
#pragma once

#include "Foundation/NSBundle.h"

namespace pelvor {

struct Category;

struct PELVOR_EXPORT NSBundle_PelvorAdditions {
    /// Loads the file from the bundle that the owner's class belongs to; if that fails, from the main bundle.
    /// Returns whether one of them loaded it.
    static bool loadNibNamed_owner_identifier(NSString* name, id owner, id identifier);
    static bool loadNibNamed_owner_identifier_topLevelObjects(NSString* name, id owner, id identifier,
                                                              NSArray** objects);
};

/// Loads an interface file of the bundle for the owner. Returns whether its objects were made.
PELVOR_EXPORT bool loadNibNamed_owner_identifier(NSBundle* bundle, NSString* name, id owner, id identifier);
/// Stores the top-level objects, borrowed, in `objects` unless that is null. NSNib.h says who owns them.
PELVOR_EXPORT bool loadNibNamed_owner_identifier_topLevelObjects(NSBundle* bundle, NSString* name, id owner,
                                                                 id identifier, NSArray** objects);

extern const Category NSBundle_PelvorAdditions_category;

}  // namespace pelvor
