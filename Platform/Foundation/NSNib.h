// SPDX-License-Identifier: Apache-2.0
// NSNib: an interface file, from which objects are made.
#pragma once

#include <memory>

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSBundle;
class NSData;
class NSNibError;
struct InterfaceFile;

// The keys of an external name table (NSBundle-NibLoading.h).
inline constexpr NSString* NSNibOwner = u"NSOwner"_ns;
inline constexpr NSString* NSNibTopLevelObjects = u"NSTopLevelObjects"_ns;

/// An interface file that has been read: objects with their classes, values and connections, which can be
/// made any number of times for an owner. docs/interface-files.md describes the files, Name.nib among a
/// bundle's resources.
///
///     auto nib = NSNib::initWithNibNamed_bundle(u"About"_ns, nullptr);
///     NSArray* objects;
///     if (nib && nib->instantiateNibWithOwner_topLevelObjects(controller, &objects))
///         controller->keep(objects);
///
/// Whoever loads a file keeps the objects that are to stay: the array of the top-level objects owns them, and
/// so do outlets whose setters retain. An object that nobody keeps ends with the current autorelease pool.
/// When objects cannot be made, nothing stays behind: what had been made is let go, and outlets and values
/// that refer to objects of the file, those of the owner too, are set to null again. Main thread.
class PELVOR_EXPORT NSNib : public NSObject {
    PELVOR_CLASS(NSNib, NSObject);
    PELVOR_CREATORS(initWithNibNamed_bundle, initWithNibNamed_bundle_error,
                    initWithContentsOfFile_bundle_error, initWithData_bundle_error);

  public:
    // Creation. A null bundle stands for the main bundle. These return null for a file that is missing,
    // damaged, or contradicts itself; `error`, unless null, receives the reason, borrowed, and null after a
    // success. Classes and keys are looked up when the objects are made.

    /// Reads the resource of that name, with or without ".nib", in the user's language.
    static Retained<NSNib> initWithNibNamed_bundle(NSString* name, NSBundle* bundle,
                                                   Class* cls = classObject());
    static Retained<NSNib> initWithNibNamed_bundle_error(NSString* name, NSBundle* bundle, NSNibError** error,
                                                         Class* cls = classObject());
    /// Texts are looked up in the bundle.
    static Retained<NSNib> initWithContentsOfFile_bundle_error(NSString* path, NSBundle* bundle,
                                                               NSNibError** error,
                                                               Class* cls = classObject());
    static Retained<NSNib> initWithData_bundle_error(NSData* data, NSBundle* bundle, NSNibError** error,
                                                     Class* cls = classObject());

    // Making the objects. The owner may be null; connections of the owner are then left out. `objects`,
    // unless null, receives the top-level objects, borrowed; after a failure it is left as it was. What
    // operations of the objects raise is a failure, too.

    /// Returns whether the objects were made; a line of the log tells why they were not.
    bool instantiateNibWithOwner_topLevelObjects(id owner, NSArray** objects);
    /// Does the same without a line in the log.
    bool instantiateNibWithOwner_topLevelObjects_error(id owner, NSArray** objects, NSNibError** error);

  protected:
    NSNib();
    ~NSNib();

  private:
    static Retained<NSNib> create(id list, NSString* path, NSBundle* bundle, NSNibError** error, Class* cls);

    std::unique_ptr<InterfaceFile> _file;
    Retained<NSString> _path;
    Retained<NSBundle> _bundle;
};

}  // namespace pelvor
