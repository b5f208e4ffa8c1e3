// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNib.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSData.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNibError.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/Nibs/InterfaceBuilder.h"
#include "Foundation/Nibs/InterfaceFault.h"
#include "Foundation/Nibs/InterfaceFile.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSNib, foundationLibrary) {
    methods.creator<"initWithNibNamed:bundle:", &NSNib::initWithNibNamed_bundle>();
    methods.creator<"initWithNibNamed:bundle:error:", &NSNib::initWithNibNamed_bundle_error>();
    methods.creator<"initWithContentsOfFile:bundle:error:", &NSNib::initWithContentsOfFile_bundle_error>();
    methods.creator<"initWithData:bundle:error:", &NSNib::initWithData_bundle_error>();
    methods.instance<"instantiateNibWithOwner:topLevelObjects:",
                     &NSNib::instantiateNibWithOwner_topLevelObjects>();
    methods.instance<"instantiateNibWithOwner:topLevelObjects:error:",
                     &NSNib::instantiateNibWithOwner_topLevelObjects_error>();
}

namespace {

void tell(NSNibError** error, NSString* file, const InterfaceFault& fault) {
    if (error) *error = NSNibError::create(file ? file : u""_ns, fault).autorelease();
}

void tellReading(NSNibError** error, NSString* file, NSPropertyListError* reason) {
    tell(error, file, {"", "", reason ? reason->description()->toUTF8() : "it holds nothing"});
}

NSString* pathOf(NSString* name, NSBundle* bundle) {
    const bool hasType = name->pathExtension()->isEqual(u"nib"_ns);
    return bundle->pathForResource_ofType(name, hasType ? nullptr : u"nib"_ns);
}

}  // namespace

// MARK: Creation

NSNib::NSNib() = default;

NSNib::~NSNib() = default;

Retained<NSNib> NSNib::initWithNibNamed_bundle(NSString* name, NSBundle* bundle, Class* cls) {
    return initWithNibNamed_bundle_error(name, bundle, nullptr, cls);
}

Retained<NSNib> NSNib::initWithNibNamed_bundle_error(NSString* name, NSBundle* bundle, NSNibError** error,
                                                     Class* cls) {
    if (!bundle) bundle = NSBundle::mainBundle();
    NSString* path = name && name->length() ? pathOf(name, bundle) : nullptr;
    if (path) return initWithContentsOfFile_bundle_error(path, bundle, error, cls);
    tell(error, name, {"", "", "the bundle " + bundle->bundlePath()->toUTF8() + " has no such resource"});
    return nullptr;
}

Retained<NSNib> NSNib::initWithContentsOfFile_bundle_error(NSString* path, NSBundle* bundle,
                                                           NSNibError** error, Class* cls) {
    NSPropertyListError* reason = nullptr;
    id list = NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error(
        path, NSPropertyListImmutable, nullptr, &reason);
    if (list) return create(list, path, bundle, error, cls);
    tellReading(error, path, reason);
    return nullptr;
}

Retained<NSNib> NSNib::initWithData_bundle_error(NSData* data, NSBundle* bundle, NSNibError** error,
                                                 Class* cls) {
    NSPropertyListError* reason = nullptr;
    id list = NSPropertyListSerialization::propertyListWithData_options_format_error(
        data, NSPropertyListImmutable, nullptr, &reason);
    if (list) return create(list, u""_ns, bundle, error, cls);
    tellReading(error, nullptr, reason);
    return nullptr;
}

Retained<NSNib> NSNib::create(id list, NSString* path, NSBundle* bundle, NSNibError** error, Class* cls) {
    if (error) *error = nullptr;
    auto nib = make<NSNib>(cls);
    nib->_path = path->copy();
    nib->_bundle.set(bundle ? bundle : NSBundle::mainBundle());
    try {
        AutoreleasePool pool;
        nib->_file = std::make_unique<InterfaceFile>(InterfaceFile::read(list));
    } catch (const InterfaceFault& fault) {
        tell(error, path, fault);
        return nullptr;
    }
    return nib;
}

// MARK: Making the objects

bool NSNib::instantiateNibWithOwner_topLevelObjects(id owner, NSArray** objects) {
    NSNibError* error = nullptr;
    const bool isMade = instantiateNibWithOwner_topLevelObjects_error(owner, objects, &error);
    if (!isMade) NSLog(u"The objects of an interface file cannot be made: %@"_ns, error);
    return isMade;
}

bool NSNib::instantiateNibWithOwner_topLevelObjects_error(id owner, NSArray** objects, NSNibError** error) {
    if (error) *error = nullptr;
    // What the objects do when they wake may let go of the nib.
    const auto self = Retained<NSNib>::retaining(this);
    Retained<NSMutableArray> topLevel;
    try {
        AutoreleasePool pool;
        if (!_file) throw InterfaceFault{"", "", "no file has been read"};
        InterfaceBuilder builder(*_file, _bundle, owner);
        builder.build();
        topLevel = NSMutableArray::init();
        for (InterfaceIndex index : _file->topLevel) topLevel->addObject(builder.objects()[index]);
    } catch (const InterfaceFault& fault) {
        tell(error, _path, fault);
        return false;
    }
    if (objects) *objects = topLevel->copy().autorelease();
    return true;
}

}  // namespace pelvor
