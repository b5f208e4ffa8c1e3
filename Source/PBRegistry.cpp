// SPDX-License-Identifier: Apache-2.0
#include "PBRegistry.h"

#include "BaseLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "PBPostLoader.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

constinit PBRegistry* theSharedRegistry = nullptr;

// What the file declares; null, with a line in the log, if it declares nothing that can be read.
NSDictionary* readDeclarations(NSString* path, NSBundle* bundle) {
    if (!path) return nullptr;
    NSPropertyListError* error = nullptr;
    id list = NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error(
        path, NSPropertyListImmutable, nullptr, &error);
    auto* declarations = cast<NSDictionary>(list);
    if (declarations) return declarations;
    NSString* owner = bundle ? NSString::stringWithFormat(u"bundle %@: "_ns, bundle->bundlePath()) : u""_ns;
    NSLog(u"%@the declarations in %@ cannot be read: %@"_ns, owner, path,
          error ? error->description() : u"they are a list, but no dictionary"_ns);
    return nullptr;
}

void defineProfileAccess(MethodTable<NSObject>& methods) {
    methods.classLevel<"identifier", &NSObject_PBProfileAccess::identifier>();
}

}  // namespace

constinit NSString* const PBProfilesDidChangeNotification = u"PBProfilesDidChangeNotification"_ns;
constinit NSString* const PBProfilesKey = u"Profiles"_ns;
constinit NSString* const PBDisabledProfilesKey = u"DisabledProfiles"_ns;

constinit const Category NSObject_PBProfileAccess_category =
    Category::of<NSObject, defineProfileAccess>("PBProfileAccess");

id NSObject_PBProfileAccess::identifier() { return nullptr; }

PELVOR_DEFINE_CLASS(PBRegistry, baseLibrary) {
    methods.classLevel<"initialize", &PBRegistry::initialize>();
    methods.classLevel<"sharedRegistry", &PBRegistry::sharedRegistry>();
    methods.classLevel<"setSharedRegistry:", &PBRegistry::setSharedRegistry>();
    methods.creator<"init", &PBRegistry::init>();
    methods.instance<"startRegistry", &PBRegistry::startRegistry>();
    methods.instance<"addProfilesFromBundle:", &PBRegistry::addProfilesFromBundle>();
    methods.instance<"addProfilesFromPath:bundle:", &PBRegistry::addProfilesFromPath_bundle>();
    methods.instance<"addProfile:", &PBRegistry::addProfile>();
    methods.instance<"_postProfilesDidChange", &PBRegistry::_postProfilesDidChange>();
    methods.instance<"localize:usingProfileNamed:", &PBRegistry::localize_usingProfileNamed>();
}

// Holds back the notification of changes while it exists.
class PBRegistry::Suspension {
  public:
    explicit Suspension(PBRegistry* registry) : _registry(registry) {
        ++_registry->_suspendProfilesDidChange;
    }
    ~Suspension() { --_registry->_suspendProfilesDidChange; }
    Suspension(const Suspension&) = delete;
    Suspension& operator=(const Suspension&) = delete;

  private:
    Unretained<PBRegistry> _registry;
};

// Subclasses inherit this, but the shared registry is made once.
void PBRegistry::initialize(Class* cls) {
    if (cls != classObject() || theSharedRegistry) return;
    theSharedRegistry = init().leak();
    theSharedRegistry->_awaitsStart = true;
}

PBRegistry* PBRegistry::sharedRegistry() {
    classRecord.initializeIfNeeded();
    return theSharedRegistry;
}

void PBRegistry::setSharedRegistry(PBRegistry* registry) {
    classRecord.initializeIfNeeded();
    auto previous = Retained<PBRegistry>::adopting(theSharedRegistry);
    theSharedRegistry = Retained<PBRegistry>::retaining(registry).leak();
}

Retained<PBRegistry> PBRegistry::init(Class* cls) {
    auto self = cast<PBRegistry>(PBProfileSet::init(cls));
    self->_profiles = NSMutableDictionary::init();
    return self;
}

void PBRegistry::startRegistry() {
    AutoreleasePool pool;
    _awaitsStart = false;
    addProfilesFromBundles(NSBundle::allFrameworks());
    addProfilesFromBundles(NSBundle::allBundles());
}

// A profile replaces an earlier one with the same identifier. The list is therefore read in reverse, so that
// the first bundle wins.
void PBRegistry::addProfilesFromBundles(NSArray* bundles) {
    for (NSUInteger i = bundles->count(); i-- > 0;)
        addProfilesFromBundle(static_cast<NSBundle*>(bundles->objectAtIndex(i)));
}

void PBRegistry::addProfilesFromBundle(NSBundle* bundle) {
    NSString* path = bundle ? bundle->pathForResource_ofType(PBProfilesKey, u"plist"_ns) : nullptr;
    addProfilesFromPath_bundle(path, bundle);
}

void PBRegistry::addProfilesFromPath_bundle(NSString* path, NSBundle* bundle) {
    {
        AutoreleasePool pool;
        Suspension suspension(this);
        if (NSDictionary* declarations = readDeclarations(path, bundle))
            addDeclarations_bundle(declarations, bundle);
    }
    _postProfilesDidChange();
}

void PBRegistry::addDeclarations_bundle(NSDictionary* declarations, NSBundle* bundle) {
    id declared = declarations->objectForKey(PBProfilesKey);
    if (!declared) return;
    auto* profiles = cast<NSDictionary>(declared);
    if (!profiles) return NSLog(u"Profiles Wrong kind of class! got: %@"_ns, declared->class_());
    id disabledEntry = declarations->objectForKey(PBDisabledProfilesKey);
    auto* disabled = cast<NSArray>(disabledEntry);
    if (disabledEntry && !disabled)
        NSLog(u"'%@' should be an array! got: %s"_ns, PBDisabledProfilesKey,
              disabledEntry->class_()->publicName());
    NSArray* identifiers = profiles->allKeys();
    for (NSUInteger i = identifiers->count(); i-- > 0;) {
        id identifier = identifiers->objectAtIndex(i);
        if (disabled && disabled->containsObject(identifier)) continue;
        id entry = profiles->objectForKey(identifier);
        if (auto* dictionary = cast<NSDictionary>(entry))
            addProfile(PBProfile::profileWithIdentifier_dictionary_bundle(identifier, dictionary, bundle));
        else
            NSLog(u"profile '%@' should be a dictionary! got: %s"_ns, identifier,
                  entry->class_()->publicName());
    }
}

// A registry that was made by an inherited initialiser may have no dictionary or an immutable one.
NSMutableDictionary* PBRegistry::mutableProfiles() {
    if (!_profiles) _profiles = NSMutableDictionary::init();
    if (!cast<NSMutableDictionary>(_profiles)) _profiles = _profiles->mutableCopy();
    return static_cast<NSMutableDictionary*>(_profiles.get());
}

void PBRegistry::addProfile(PBProfile* profile) {
    requireArgument(profile, "addProfile:", "the profile");
    id identifier = profile->identifier();
    requireArgument(identifier, "addProfile:", "the identifier of the profile");
    mutableProfiles()->setObject_forKey(profile, identifier);
    ++_version;
    _postProfilesDidChange();
}

// Every query begins here.
void PBRegistry::update() {
    if (std::exchange(_awaitsStart, false) && !PBPostLoader::hasProcessedClasses())
        NSLog(
            u"Profiles are looked up, but PBPostLoader::processClasses() was not called: "
            "the declarations of bundles have not been read"_ns);
    PBProfileSet::update();
}

void PBRegistry::_postProfilesDidChange() {
    if (_suspendProfilesDidChange) return;
    auto* centre = send<NSNotificationCenter*>(this, "notificationCenter"_sel);
    if (centre) centre->postNotificationName_object(PBProfilesDidChangeNotification, this);
}

NSString* PBRegistry::localize_usingProfileNamed(NSString* string, id identifier) {
    if (identifier)
        if (PBProfile* profile = profileWithIdentifier(identifier)) return profile->localize(string);
    return NSBundle::mainBundle()->localizedStringForKey_value_table(string, u""_ns, nullptr);
}

}  // namespace pelvor
