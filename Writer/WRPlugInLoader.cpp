// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRPlugInLoader.h"

#include "Foundation/NSBundle.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableSet.h"
#include "PBRegistry.h"
#include "Runtime/AutoreleasePool.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

bool isForMoment(NSBundle* bundle, NSString* moment) {
    id named = bundle->objectForInfoDictionaryKey(WRLoadMomentKey);
    return moment ? named && named->isEqual(moment) : !named;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRPlugInLoader, writerLibrary) {
    methods.creator<"initWithFolder:", &WRPlugInLoader::initWithFolder>();
    methods.classLevel<"nameOfBundle:", &WRPlugInLoader::nameOfBundle>();
    methods.instance<"loadPlugInsForMoment:", &WRPlugInLoader::loadPlugInsForMoment>();
    methods.instance<"declarePlugInsForMoment:", &WRPlugInLoader::declarePlugInsForMoment>();
    methods.instance<"lookAgain", &WRPlugInLoader::lookAgain>();
    methods.instance<"failureCount", &WRPlugInLoader::failureCount>();
}

WRPlugInLoader::~WRPlugInLoader() = default;

Retained<WRPlugInLoader> WRPlugInLoader::initWithFolder(NSString* folder, Class* cls) {
    auto self = make<WRPlugInLoader>(cls);
    self->_waiting = NSMutableArray::init();
    self->_known = NSMutableSet::init();
    if (folder) self->_folder = folder->copy();
    self->lookAgain();
    return self;
}

void WRPlugInLoader::lookAgain() {
    if (!_folder) return;
    for (id object : NSBundle::bundlesInDirectory(_folder)) {
        NSString* path = static_cast<NSBundle*>(object)->bundlePath();
        if (_known->containsObject(path)) continue;
        _known->addObject(path);
        _waiting->addObject(object);
    }
}

NSArray* WRPlugInLoader::loadPlugInsForMoment(NSString* moment) {
    auto* loaded = NSMutableArray::array();
    auto waiting = Retained<NSMutableArray>(NSMutableArray::init());
    for (id object : _waiting.get()) {
        AutoreleasePool pool;
        auto* bundle = static_cast<NSBundle*>(object);
        if (!isForMoment(bundle, moment)) {
            waiting->addObject(bundle);
        } else if (bundle->load()) {
            loaded->addObject(bundle);
        } else {
            ++_failureCount;
        }
    }
    _waiting = std::move(waiting);
    return loaded;
}

void WRPlugInLoader::declarePlugInsForMoment(NSString* moment) {
    for (id object : _waiting.get()) {
        auto* bundle = static_cast<NSBundle*>(object);
        if (isForMoment(bundle, moment)) PBRegistry::sharedRegistry()->addProfilesFromBundle(bundle);
    }
}

NSString* WRPlugInLoader::nameOfBundle(NSBundle* bundle) {
    auto* name = cast<NSString>(bundle->objectForInfoDictionaryKey(u"CFBundleName"_ns));
    return name ? name : bundle->bundlePath()->lastPathComponent()->stringByDeletingPathExtension();
}

}  // namespace pelvor
