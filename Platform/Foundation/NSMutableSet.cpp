// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableSet.h"

#include "Foundation/Collections/ConcreteSets.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSCountedSet.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTableMutableSet, foundationLibrary) {}

PELVOR_DEFINE_CLASS(NSMutableSet, foundationLibrary) {
    methods.creator<"set", &NSMutableSet::set>();
    methods.creator<"setWithCapacity:", &NSMutableSet::setWithCapacity>();
    methods.creator<"setWithObject:", &NSMutableSet::setWithObject>();
    methods.creator<"setWithObjects:count:", &NSMutableSet::setWithObjects_count>();
    methods.creator<"setWithArray:", &NSMutableSet::setWithArray>();
    methods.creator<"setWithSet:", &NSMutableSet::setWithSet>();
    methods.creator<"init", &NSMutableSet::init>();
    methods.creatorAs<"new", &NSMutableSet::init>();
    methods.creator<"initWithCapacity:", &NSMutableSet::initWithCapacity>();
    methods.creator<"initWithObjects:count:", &NSMutableSet::initWithObjects_count>();
    methods.creator<"initWithArray:", &NSMutableSet::initWithArray>();
    methods.creator<"initWithSet:", &NSMutableSet::initWithSet>();
    methods.instance<"addObject:", &NSMutableSet::addObject>();
    methods.instance<"removeObject:", &NSMutableSet::removeObject>();
    methods.instance<"removeAllObjects", &NSMutableSet::removeAllObjects>();
    methods.instance<"addObjectsFromArray:", &NSMutableSet::addObjectsFromArray>();
    methods.instance<"unionSet:", &NSMutableSet::unionSet>();
    methods.instance<"minusSet:", &NSMutableSet::minusSet>();
    methods.instance<"intersectSet:", &NSMutableSet::intersectSet>();
    methods.instance<"setSet:", &NSMutableSet::setSet>();
}

// MARK: Creation

NSMutableSet* NSMutableSet::set() { return init().autorelease(); }

NSMutableSet* NSMutableSet::setWithCapacity(NSUInteger capacity) {
    return initWithCapacity(capacity).autorelease();
}

NSMutableSet* NSMutableSet::setWithObject(id object) {
    requireArgument(object, "setWithObject:", "the object");
    return initWithObjects_count(&object, 1).autorelease();
}

NSMutableSet* NSMutableSet::of(std::initializer_list<Object*> objects) {
    requireObjects(objects.begin(), static_cast<NSUInteger>(objects.size()), "NSMutableSet::of");
    return setWithObjects(objects);
}

NSMutableSet* NSMutableSet::setWithObjects(std::initializer_list<Object*> objects) {
    requireObjects(objects.begin(), static_cast<NSUInteger>(objects.size()), "setWithObjects");
    return initWithObjects(objects).autorelease();
}

NSMutableSet* NSMutableSet::setWithObjects_count(Object* const* objects, NSUInteger count) {
    requireObjects(objects, count, "setWithObjects:count:");
    return initWithObjects_count(objects, count).autorelease();
}

NSMutableSet* NSMutableSet::setWithArray(NSArray* array) { return initWithArray(array).autorelease(); }

NSMutableSet* NSMutableSet::setWithSet(NSSet* set) { return initWithSet(set).autorelease(); }

Retained<NSMutableSet> NSMutableSet::init() { return make<NSTableMutableSet>(); }

Retained<NSMutableSet> NSMutableSet::initWithCapacity(NSUInteger capacity) {
    auto set = make<NSTableMutableSet>();
    set->table().reserve(capacity);
    return set;
}

Retained<NSMutableSet> NSMutableSet::initWithObjects(std::initializer_list<Object*> objects) {
    auto count = static_cast<NSUInteger>(objects.size());
    requireObjects(objects.begin(), count, "initWithObjects");
    return initWithObjects_count(objects.begin(), count);
}

Retained<NSMutableSet> NSMutableSet::initWithObjects_count(Object* const* objects, NSUInteger count) {
    requireObjects(objects, count, "initWithObjects:count:");
    auto set = make<NSTableMutableSet>();
    set->table().addAll(objects, count);
    return set;
}

Retained<NSMutableSet> NSMutableSet::initWithArray(NSArray* array) {
    Retained<NSArray> objects = NSArray::initWithArray(array);
    return initWithObjects_count(objects->contiguousObjects(), objects->count());
}

Retained<NSMutableSet> NSMutableSet::initWithSet(NSSet* set) {
    auto copy = make<NSTableMutableSet>();
    fillTable(copy->table(), set);
    return copy;
}

// MARK: Changing

void NSTableMutableSet::addObject(id object) {
    requireArgument(object, "addObject:", "the object");
    _table.add(object);
}

void NSMutableSet::addObjectsFromArray(NSArray* other) {
    for (id object : other) addObject(object);
}

void NSMutableSet::unionSet(NSSet* other) {
    if (other == this) return;
    for (id object : other) addObject(object);
}

void NSMutableSet::minusSet(NSSet* other) {
    if (other == this) return removeAllObjects();
    for (id object : other) removeObject(object);
}

void NSMutableSet::intersectSet(NSSet* other) {
    if (other == this) return;
    if (!other) return removeAllObjects();
    Retained<NSSet> members = NSSet::initWithSet(this);
    auto* counted = cast<NSCountedSet>(this);
    for (id object : members) {
        if (other->containsObject(object)) continue;
        for (NSUInteger left = counted ? counted->countForObject(object) : 1; left > 0; --left)
            removeObject(object);
    }
}

void NSMutableSet::setSet(NSSet* other) {
    if (other == this) return;
    Retained<NSSet> leaving = NSSet::initWithSet(this);
    removeAllObjects();
    unionSet(other);
}

}  // namespace pelvor
