// SPDX-License-Identifier: Apache-2.0
#include "PBProfileSet.h"

#include <algorithm>
#include <vector>

#include "BaseLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

std::uint32_t registryVersion() {
    PBRegistry* registry = PBRegistry::sharedRegistry();
    return registry ? registry->setVersion() : 0;
}

bool areEqual(id object, id other) { return object && object->isEqual(other); }

// Whether a profile's entry is the value or an array that holds it.
bool includes(id entry, id value) {
    auto* entries = cast<NSArray>(entry);
    return entries ? entries->containsObject(value) : areEqual(entry, value);
}

bool matchesValue(id entry, id value) {
    return includes(entry, u"*"_ns) || areEqual(value, u"*"_ns) || includes(entry, value);
}

bool matchesAnyValue(id entry, NSArray* values) {
    if (includes(entry, u"*"_ns)) return true;
    if (!values) return false;
    if (values->containsObject(u"*"_ns)) return true;
    auto* entries = cast<NSArray>(entry);
    return entries ? entries->firstObjectCommonWithArray(values) != nullptr : values->containsObject(entry);
}

}  // namespace

PELVOR_DEFINE_CLASS(PBProfileSet, baseLibrary) {
    methods.creator<"init", &PBProfileSet::init>();
    methods.creator<"initWithParent:value:key:any:version:profiles:",
                    &PBProfileSet::initWithParent_value_key_any_version_profiles>();
    methods.instance<"profiles", &PBProfileSet::profiles>();
    methods.instance<"identifiers", &PBProfileSet::identifiers>();
    methods.instance<"profileWithIdentifier:", &PBProfileSet::profileWithIdentifier>();
    methods.instance<"profileDictionaryWithKey:", &PBProfileSet::profileDictionaryWithKey>();
    methods
        .instance<"profileDictionaryWithValue:forKey:", &PBProfileSet::profileDictionaryWithValue_forKey>();
    methods.instance<"profileDictionaryWithAnyValue:forKey:",
                     &PBProfileSet::profileDictionaryWithAnyValue_forKey>();
    methods.instance<"profilesWithKey:", &PBProfileSet::profilesWithKey>();
    methods.instance<"profilesWithValue:forKey:", &PBProfileSet::profilesWithValue_forKey>();
    methods.instance<"profilesWithAnyValue:forKey:", &PBProfileSet::profilesWithAnyValue_forKey>();
    methods.instance<"profilesOfType:", &PBProfileSet::profilesOfType>();
    methods.instance<"setVersion", &PBProfileSet::setVersion>();
    methods.instance<"isUpToDate", &PBProfileSet::isUpToDate>();
    methods.instance<"update", &PBProfileSet::update>();
    methods.instance<"parent", &PBProfileSet::parent>();
    methods.instance<"key", &PBProfileSet::key>();
    methods.instance<"value", &PBProfileSet::value>();
    methods.instance<"matchAnyValue", &PBProfileSet::matchAnyValue>();
}

Retained<PBProfileSet> PBProfileSet::init(Class* cls) {
    return initWithParent_value_key_any_version_profiles(nullptr, nullptr, nullptr, false, 0, nullptr, cls);
}

Retained<PBProfileSet> PBProfileSet::initWithParent_value_key_any_version_profiles(PBProfileSet* parent,
                                                                                   id value, id key, bool any,
                                                                                   std::uint32_t version,
                                                                                   NSDictionary* profiles,
                                                                                   Class* cls) {
    auto self = make<PBProfileSet>(cls);
    self->_parent.set(parent);
    self->_value = send<Retained<Object>>(value, "copy"_sel);
    self->_key = send<Retained<Object>>(key, "copy"_sel);
    self->_any = any;
    self->_version = version;
    if (profiles) self->_profiles = profiles->copy();
    return self;
}

NSArray* PBProfileSet::profiles() {
    update();
    return _profiles ? _profiles->allValues() : NSArray::array();
}

NSArray* PBProfileSet::identifiers() {
    update();
    return _profiles ? _profiles->allKeys() : NSArray::array();
}

PBProfile* PBProfileSet::profileWithIdentifier(id identifier) {
    update();
    return _profiles ? cast<PBProfile>(_profiles->objectForKey(identifier)) : nullptr;
}

// Raises if a profile changes the set while its entry is looked up.
template <class Filter>
NSDictionary* PBProfileSet::filtered(id key, Filter passes) {
    update();
    auto members = _profiles;
    std::vector<Object*> identifiers, profiles;
    for (auto [identifier, profile] : members.get()) {
        if (!passes(_PBValueForKeyInProfile(cast<PBProfile>(profile), key))) continue;
        identifiers.push_back(identifier);
        profiles.push_back(profile);
    }
    std::reverse(identifiers.begin(), identifiers.end());
    std::reverse(profiles.begin(), profiles.end());
    return NSDictionary::dictionaryWithObjects_forKeys_count(profiles.data(), identifiers.data(),
                                                             static_cast<NSUInteger>(profiles.size()));
}

NSDictionary* PBProfileSet::profileDictionaryWithKey(id key) {
    return filtered(key, [](id entry) { return entry != nullptr; });
}

NSDictionary* PBProfileSet::profileDictionaryWithValue_forKey(id value, id key) {
    return filtered(key, [value](id entry) { return matchesValue(entry, value); });
}

NSDictionary* PBProfileSet::profileDictionaryWithAnyValue_forKey(NSArray* values, id key) {
    return filtered(key, [values](id entry) { return matchesAnyValue(entry, values); });
}

PBProfileSet* PBProfileSet::derivedSet(id value, id key, bool any, NSDictionary* profiles) {
    return PBProfileSet::initWithParent_value_key_any_version_profiles(this, value, key, any, setVersion(),
                                                                       profiles)
        .autorelease();
}

PBProfileSet* PBProfileSet::profilesWithKey(id key) {
    return derivedSet(nullptr, key, true, profileDictionaryWithKey(key));
}

PBProfileSet* PBProfileSet::profilesWithValue_forKey(id value, id key) {
    return derivedSet(value, key, false, profileDictionaryWithValue_forKey(value, key));
}

PBProfileSet* PBProfileSet::profilesWithAnyValue_forKey(NSArray* values, id key) {
    return derivedSet(values, key, true, profileDictionaryWithAnyValue_forKey(values, key));
}

PBProfileSet* PBProfileSet::profilesOfType(id type) {
    return profilesWithValue_forKey(type, PBProfileTypeKey);
}

bool PBProfileSet::isUpToDate() {
    return isKindOfClass(PBRegistry::classObject()) || setVersion() == registryVersion();
}

// The version stays, so that `isUpToDate` tells that profiles came after the set was made.
void PBProfileSet::update() {
    std::uint32_t version = registryVersion();
    if (isKindOfClass(PBRegistry::classObject()) || setVersion() == version) return;
    NSDictionary* profiles = nullptr;
    if (_parent && !_value)
        profiles = _parent->profileDictionaryWithKey(_key);
    else if (_parent && !_any)
        profiles = _parent->profileDictionaryWithValue_forKey(_value, _key);
    else if (_parent)
        profiles = send<NSDictionary*>(_parent, "profileDictionaryWithAnyValue:forKey:"_sel, _value, _key);
    _profiles = profiles ? profiles->copy() : nullptr;
}

NSString* PBProfileSet::description() {
    return NSString::stringWithFormat(u"<%@ %p> = %@ version=%i parent=%@"_ns, class_(),
                                      static_cast<void*>(this), _profiles, _version, _parent);
}

id _PBValueForKeyInProfile(PBProfile* profile, id key) {
    if (!profile) return nullptr;
    auto* path = cast<NSArray>(key);
    if (!path) return profile->valueForKey(key);
    if (path->count() == 0) return nullptr;
    id value = profile->valueForKey(path->objectAtIndex(0));
    for (NSUInteger i = 1; i < path->count(); ++i) {
        auto* dictionary = cast<NSDictionary>(value);
        if (!dictionary) return nullptr;
        value = dictionary->objectForKey(path->objectAtIndex(i));
    }
    return value;
}

}  // namespace pelvor
