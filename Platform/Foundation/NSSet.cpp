// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSSet.h"

#include <vector>

#include "Foundation/Collections/CollectionDescription.h"
#include "Foundation/Collections/CollectionEnumerators.h"
#include "Foundation/Collections/ConcreteSets.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSCountedSet.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTableSet, foundationLibrary) {}

PELVOR_DEFINE_CLASS(NSSet, foundationLibrary) {
    methods.creator<"set", &NSSet::set>();
    methods.creator<"setWithObject:", &NSSet::setWithObject>();
    methods.creator<"setWithObjects:count:", &NSSet::setWithObjects_count>();
    methods.creator<"setWithArray:", &NSSet::setWithArray>();
    methods.creator<"setWithSet:", &NSSet::setWithSet>();
    methods.creator<"init", &NSSet::init>();
    methods.creatorAs<"new", &NSSet::init>();
    methods.creator<"initWithObjects:count:", &NSSet::initWithObjects_count>();
    methods.creator<"initWithArray:", &NSSet::initWithArray>();
    methods.creator<"initWithSet:", &NSSet::initWithSet>();
    methods.instance<"count", &NSSet::count>();
    methods.instance<"member:", &NSSet::member>();
    methods.instance<"containsObject:", &NSSet::containsObject>();
    methods.instance<"anyObject", &NSSet::anyObject>();
    methods.instance<"allObjects", &NSSet::allObjects>();
    methods.instance<"objectEnumerator", &NSSet::objectEnumerator>();
    methods.instance<"isSubsetOfSet:", &NSSet::isSubsetOfSet>();
    methods.instance<"intersectsSet:", &NSSet::intersectsSet>();
    methods.instance<"isEqualToSet:", &NSSet::isEqualToSet>();
    methods.instance<"setByAddingObject:", &NSSet::setByAddingObject>();
    methods.instance<"setByAddingObjectsFromSet:", &NSSet::setByAddingObjectsFromSet>();
    methods.instance<"setByAddingObjectsFromArray:", &NSSet::setByAddingObjectsFromArray>();
    methods.instance<"makeObjectsPerformSelector:", &NSSet::makeObjectsPerformSelector>();
    methods
        .instance<"makeObjectsPerformSelector:withObject:", &NSSet::makeObjectsPerformSelector_withObject>();
}

// MARK: Creation

NSSet* NSSet::set() { return init().autorelease(); }

NSSet* NSSet::setWithObject(id object) {
    requireArgument(object, "setWithObject:", "the object");
    return initWithObjects_count(&object, 1).autorelease();
}

NSSet* NSSet::of(std::initializer_list<Object*> objects) {
    requireObjects(objects.begin(), static_cast<NSUInteger>(objects.size()), "NSSet::of");
    return setWithObjects(objects);
}

NSSet* NSSet::setWithObjects(std::initializer_list<Object*> objects) {
    requireObjects(objects.begin(), static_cast<NSUInteger>(objects.size()), "setWithObjects");
    return initWithObjects(objects).autorelease();
}

NSSet* NSSet::setWithObjects_count(Object* const* objects, NSUInteger count) {
    requireObjects(objects, count, "setWithObjects:count:");
    return initWithObjects_count(objects, count).autorelease();
}

NSSet* NSSet::setWithArray(NSArray* array) { return initWithArray(array).autorelease(); }

NSSet* NSSet::setWithSet(NSSet* set) { return initWithSet(set).autorelease(); }

Retained<NSSet> NSSet::init() { return make<NSTableSet>(); }

Retained<NSSet> NSSet::initWithObjects(std::initializer_list<Object*> objects) {
    auto count = static_cast<NSUInteger>(objects.size());
    requireObjects(objects.begin(), count, "initWithObjects");
    return initWithObjects_count(objects.begin(), count);
}

Retained<NSSet> NSSet::initWithObjects_count(Object* const* objects, NSUInteger count) {
    requireObjects(objects, count, "initWithObjects:count:");
    auto set = make<NSTableSet>();
    set->table().addAll(objects, count);
    return set;
}

Retained<NSSet> NSSet::initWithArray(NSArray* array) {
    Retained<NSArray> objects = NSArray::initWithArray(array);
    return initWithObjects_count(objects->contiguousObjects(), objects->count());
}

Retained<NSSet> NSSet::initWithSet(NSSet* set) {
    if (set && set->isa() == NSTableSet::classObject()) return Retained<NSSet>::retaining(set);
    auto copy = make<NSTableSet>();
    fillTable(copy->table(), set);
    return copy;
}

void fillTable(MemberTable& table, NSSet* set) {
    if (!set) return;
    if (set->isa() == NSTableSet::classObject())
        return table.copyFrom(static_cast<NSTableSet*>(set)->table());
    if (set->isa() == NSTableMutableSet::classObject())
        return table.copyFrom(static_cast<NSTableMutableSet*>(set)->table());
    table.reserve(set->count());
    for (id object : detail::walk(set)) table.add(object);
}

Retained<Object> NSTableSet::copyWithZone(void*) { return Retained<Object>::retaining(this); }

// MARK: Members

id NSSet::anyObject() {
    NSUInteger position = 0;
    return stepFrom(position);
}

NSArray* NSSet::allObjects() {
    std::vector<Object*> objects;
    objects.reserve(count());
    for (id object : detail::walk(this)) objects.push_back(object);
    return NSArray::arrayWithObjects_count(objects.data(), static_cast<NSUInteger>(objects.size()));
}

NSEnumerator* NSSet::objectEnumerator() { return NSSetEnumerator::create(this).autorelease(); }

bool NSSet::isSubsetOfSet(NSSet* other) {
    if (this == other) return true;
    if (count() > (other ? other->count() : 0)) return false;
    for (id object : detail::walk(this))
        if (!other->containsObject(object)) return false;
    return true;
}

bool NSSet::intersectsSet(NSSet* other) {
    if (!other) return false;
    for (id object : detail::walk(this))
        if (other->containsObject(object)) return true;
    return false;
}

bool NSSet::isEqualToSet(NSSet* other) {
    if (this == other) return true;
    if (!other || count() != other->count() || !isSubsetOfSet(other)) return false;
    auto* counted = cast<NSCountedSet>(this);
    auto* otherCounted = cast<NSCountedSet>(other);
    if (!counted && !otherCounted) return true;
    for (id object : detail::walk(this))
        if ((counted ? counted->countForObject(object) : 1) !=
            (otherCounted ? otherCounted->countForObject(object) : 1))
            return false;
    return true;
}

NSSet* NSSet::setByAddingObject(id object) {
    requireArgument(object, "setByAddingObject:", "the object");
    auto set = make<NSTableSet>();
    fillTable(set->table(), this);
    set->table().add(object);
    return std::move(set).autorelease();
}

NSSet* NSSet::setByAddingObjectsFromSet(NSSet* other) {
    auto set = make<NSTableSet>();
    fillTable(set->table(), this);
    for (id object : other) set->table().add(object);
    return std::move(set).autorelease();
}

NSSet* NSSet::setByAddingObjectsFromArray(NSArray* other) {
    auto set = make<NSTableSet>();
    fillTable(set->table(), this);
    for (id object : other) set->table().add(object);
    return std::move(set).autorelease();
}

void NSSet::makeObjectsPerformSelector(SEL selector) { allObjects()->makeObjectsPerformSelector(selector); }

void NSSet::makeObjectsPerformSelector_withObject(SEL selector, id argument) {
    allObjects()->makeObjectsPerformSelector_withObject(selector, argument);
}

// MARK: As an object

bool NSSet::isEqual(id other) {
    auto* set = cast<NSSet>(other);
    return set && isEqualToSet(set);
}

// Neither the order of the members nor how often they were added changes the hash.
std::uintptr_t NSSet::hash() {
    std::uintptr_t sum = count();
    for (id object : detail::walk(this)) sum += spreadHash(hashOfElement(object));
    return sum;
}

NSString* NSSet::description() { return describeCollection(this); }

Retained<Object> NSSet::copyWithZone(void*) { return initWithSet(this); }

Retained<Object> NSSet::mutableCopyWithZone(void*) { return NSMutableSet::initWithSet(this); }

Retained<NSMutableSet> NSSet::mutableCopy() { return cast<NSMutableSet>(mutableCopyWithZone(nullptr)); }

}  // namespace pelvor
