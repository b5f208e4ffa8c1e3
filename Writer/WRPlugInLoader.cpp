// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRPlugInLoader.h"

#include "Foundation/NSBundle.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
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

bool hasRegisteredProfiles(NSBundle* bundle) {
    for (id profile : PBRegistry::sharedRegistry()->profiles())
        if (static_cast<PBProfile*>(profile)->bundle() == bundle) return true;
    return false;
}

// The registry passes over declarations that it cannot read; the author of the plug-in wants to know.
void logUnreadableDeclarations(NSBundle* bundle) {
    NSString* path = bundle->pathForResource_ofType(PBProfilesKey, u"plist"_ns);
    if (!path || hasRegisteredProfiles(bundle)) return;
    NSPropertyListError* error = nullptr;
    NSData* data = NSData::dataWithContentsOfFile(path);
    id list = data ? NSPropertyListSerialization::propertyListWithData_options_format_error(
                         data, NSPropertyListImmutable, nullptr, &error)
                   : nullptr;
    if (cast<NSDictionary>(list)) return;
    NSString* reason = error ? error->description() : list ? u"no dictionary"_ns : u"cannot be read"_ns;
    NSLog(u"bundle %@, declarations: %@"_ns, bundle->bundlePath(), reason);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRPlugInLoader, writerLibrary) {
    methods.classLevel<"initWithFolder:", &WRPlugInLoader::initWithFolder>();
    methods.classLevel<"nameOfBundle:", &WRPlugInLoader::nameOfBundle>();
    methods.instance<"loadPlugInsForMoment:", &WRPlugInLoader::loadPlugInsForMoment>();
    methods.instance<"failureCount", &WRPlugInLoader::failureCount>();
}

WRPlugInLoader::~WRPlugInLoader() = default;

Retained<WRPlugInLoader> WRPlugInLoader::initWithFolder(NSString* folder, Class* cls) {
    auto self = make<WRPlugInLoader>(cls);
    self->_waiting = NSMutableArray::init();
    if (folder) self->_waiting->addObjectsFromArray(NSBundle::bundlesInDirectory(folder));
    return self;
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
            logUnreadableDeclarations(bundle);
        } else {
            ++_failureCount;
        }
    }
    _waiting = std::move(waiting);
    return loaded;
}

NSString* WRPlugInLoader::nameOfBundle(NSBundle* bundle) {
    auto* name = cast<NSString>(bundle->objectForInfoDictionaryKey(u"CFBundleName"_ns));
    return name ? name : bundle->bundlePath()->lastPathComponent()->stringByDeletingPathExtension();
}

}  // namespace pelvor
