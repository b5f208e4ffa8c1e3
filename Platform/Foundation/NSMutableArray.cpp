// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableArray.h"

#include <algorithm>
#include <vector>

#include "Foundation/Collections/ConcreteArrays.h"
#include "Foundation/Collections/ObjectTables.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSSet.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMutableArray, foundationLibrary) {
    methods.creator<"array", &NSMutableArray::array>();
    methods.creator<"arrayWithCapacity:", &NSMutableArray::arrayWithCapacity>();
    methods.creator<"arrayWithObject:", &NSMutableArray::arrayWithObject>();
    methods.creator<"arrayWithObjects:count:", &NSMutableArray::arrayWithObjects_count>();
    methods.creator<"arrayWithArray:", &NSMutableArray::arrayWithArray>();
    methods.creator<"init", &NSMutableArray::init>();
    methods.creatorAs<"new", &NSMutableArray::init>();
    methods.creator<"initWithCapacity:", &NSMutableArray::initWithCapacity>();
    methods.creator<"initWithObjects:count:", &NSMutableArray::initWithObjects_count>();
    methods.creator<"initWithArray:", &NSMutableArray::initWithArray>();
    methods.instance<"addObject:", &NSMutableArray::addObject>();
    methods.instance<"insertObject:atIndex:", &NSMutableArray::insertObject_atIndex>();
    methods.instance<"replaceObjectAtIndex:withObject:", &NSMutableArray::replaceObjectAtIndex_withObject>();
    methods.instance<"removeObjectAtIndex:", &NSMutableArray::removeObjectAtIndex>();
    methods.instance<"removeObjectsInRange:", &NSMutableArray::removeObjectsInRange>();
    methods.instance<"addObjectsFromArray:", &NSMutableArray::addObjectsFromArray>();
    methods.instance<"replaceObjectsInRange:withObjectsFromArray:",
                     &NSMutableArray::replaceObjectsInRange_withObjectsFromArray>();
    methods.instance<"exchangeObjectAtIndex:withObjectAtIndex:",
                     &NSMutableArray::exchangeObjectAtIndex_withObjectAtIndex>();
    methods.instance<"setArray:", &NSMutableArray::setArray>();
    methods.instance<"removeLastObject", &NSMutableArray::removeLastObject>();
    methods.instance<"removeAllObjects", &NSMutableArray::removeAllObjects>();
    methods.instance<"removeObject:", &NSMutableArray::removeObject>();
    methods.instance<"removeObject:inRange:", &NSMutableArray::removeObject_inRange>();
    methods.instance<"removeObjectIdenticalTo:", &NSMutableArray::removeObjectIdenticalTo>();
    methods.instance<"removeObjectsInArray:", &NSMutableArray::removeObjectsInArray>();
    methods.instance<"sortUsingSelector:", &NSMutableArray::sortUsingSelector>();
    methods.instance<"sortUsingFunction:context:", &NSMutableArray::sortUsingFunction_context>();
}

// MARK: Creation

NSMutableArray* NSMutableArray::array() { return init().autorelease(); }

NSMutableArray* NSMutableArray::arrayWithCapacity(NSUInteger capacity) {
    return initWithCapacity(capacity).autorelease();
}

NSMutableArray* NSMutableArray::arrayWithObject(id object) {
    requireArgument(object, "arrayWithObject:", "the object");
    return initWithObjects_count(&object, 1).autorelease();
}

NSMutableArray* NSMutableArray::of(std::initializer_list<Object*> objects) {
    requireObjects(objects.begin(), static_cast<NSUInteger>(objects.size()), "NSMutableArray::of");
    return arrayWithObjects(objects);
}

NSMutableArray* NSMutableArray::arrayWithObjects(std::initializer_list<Object*> objects) {
    requireObjects(objects.begin(), static_cast<NSUInteger>(objects.size()), "arrayWithObjects");
    return initWithObjects(objects).autorelease();
}

NSMutableArray* NSMutableArray::arrayWithObjects_count(Object* const* objects, NSUInteger count) {
    requireObjects(objects, count, "arrayWithObjects:count:");
    return initWithObjects_count(objects, count).autorelease();
}

NSMutableArray* NSMutableArray::arrayWithArray(NSArray* array) { return initWithArray(array).autorelease(); }

Retained<NSMutableArray> NSMutableArray::init() { return make<NSBufferArray>(); }

Retained<NSMutableArray> NSMutableArray::initWithCapacity(NSUInteger capacity) {
    auto array = make<NSBufferArray>();
    array->reserve(std::min(capacity, kLargestReserve));
    return array;
}

Retained<NSMutableArray> NSMutableArray::initWithObjects(std::initializer_list<Object*> objects) {
    auto count = static_cast<NSUInteger>(objects.size());
    requireObjects(objects.begin(), count, "initWithObjects");
    return initWithObjects_count(objects.begin(), count);
}

Retained<NSMutableArray> NSMutableArray::initWithObjects_count(Object* const* objects, NSUInteger count) {
    requireObjects(objects, count, "initWithObjects:count:");
    auto array = init();
    array->replaceObjects({0, 0}, objects, count);
    return array;
}

Retained<NSMutableArray> NSMutableArray::initWithArray(NSArray* array) {
    auto copy = init();
    copy->addObjectsFromArray(array);
    return copy;
}

// MARK: Adding and replacing

void NSMutableArray::replaceObjects(NSRange range, Object* const* objects, NSUInteger count) {
    Retained<NSArray> arriving = NSArray::initWithObjects_count(objects, count);
    Retained<NSArray> leaving = Retained<NSArray>::retaining(subarrayWithRange(range));
    removeObjectsInRange(range);
    NSUInteger index = range.location;
    for (id object : arriving) insertObject_atIndex(object, index++);
}

void NSMutableArray::addObjectsFromArray(NSArray* other) {
    replaceObjectsInRange_withObjectsFromArray({count(), 0}, other);
}

void NSMutableArray::replaceObjectsInRange_withObjectsFromArray(NSRange range, NSArray* other) {
    requireRange(range, count(), "replaceObjectsInRange:withObjectsFromArray:");
    if (!other) return removeObjectsInRange(range);
    if (Object* const* objects = other != this ? other->contiguousObjects() : nullptr)
        return replaceObjects(range, objects, other->count());
    Retained<NSArray> objects = NSArray::initWithArray(other);
    replaceObjects(range, objects->contiguousObjects(), objects->count());
}

void NSMutableArray::exchangeObjectAtIndex_withObjectAtIndex(NSUInteger first, NSUInteger second) {
    for (NSUInteger index : {first, second})
        requireIndex(index, count(), "exchangeObjectAtIndex:withObjectAtIndex:");
    auto one = Retained<Object>::retaining(objectAtIndex(first));
    auto two = Retained<Object>::retaining(objectAtIndex(second));
    replaceObjectAtIndex_withObject(first, two);
    replaceObjectAtIndex_withObject(second, one);
}

void NSMutableArray::setArray(NSArray* other) {
    replaceObjectsInRange_withObjectsFromArray({0, count()}, other);
}

// MARK: Removing

void NSMutableArray::removeLastObject() {
    NSUInteger length = count();
    requireIndex(0, length, "removeLastObject");
    removeObjectAtIndex(length - 1);
}

void NSMutableArray::removeAllObjects() { removeObjectsInRange({0, count()}); }

void NSMutableArray::removeObject(id object) { removeObject_inRange(object, {0, count()}); }

void NSMutableArray::removeObject_inRange(id object, NSRange range) {
    requireRange(range, count(), "removeObject:inRange:");
    auto kept = Retained<Object>::retaining(object);
    // A comparison or a release may run code that shortens the array.
    for (NSUInteger i = range.location + range.length; object && i > range.location;) {
        i = std::min(i, count());
        if (i <= range.location) return;
        id entry = objectAtIndex(--i);
        bool isSame = entry == object || entry->isEqual(object);
        if (isSame && i < count() && objectAtIndex(i) == entry) removeObjectAtIndex(i);
    }
}

void NSMutableArray::removeObjectIdenticalTo(id object) {
    auto kept = Retained<Object>::retaining(object);
    for (NSUInteger i = count(); i > 0; i = std::min(i, count()))
        if (objectAtIndex(--i) == object) removeObjectAtIndex(i);
}

void NSMutableArray::removeObjectsInArray(NSArray* other) {
    if (!other || other->count() == 0) return;
    Retained<NSSet> leaving = NSSet::initWithArray(other);
    Retained<NSArray> all = NSArray::initWithArray(this);
    std::vector<Object*> staying;
    for (id object : all)
        if (!leaving->containsObject(object)) staying.push_back(object);
    if (staying.size() != all->count())
        replaceObjects({0, count()}, staying.data(), static_cast<NSUInteger>(staying.size()));
}

// MARK: Sorting

void NSMutableArray::sortUsingSelector(SEL comparator) { setArray(sortedArrayUsingSelector(comparator)); }

void NSMutableArray::sortUsingFunction_context(NSCompareFunction comparator, void* context) {
    if (!comparator) raiseNullArgument("sortUsingFunction:context:", "the function");
    setArray(sortedArrayUsingFunction_context(comparator, context));
}

}  // namespace pelvor
