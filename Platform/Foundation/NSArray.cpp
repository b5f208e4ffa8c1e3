// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSArray.h"

#include <algorithm>
#include <vector>

#include "Foundation/Collections/CollectionDescription.h"
#include "Foundation/Collections/CollectionEnumerators.h"
#include "Foundation/Collections/ConcreteArrays.h"
#include "Foundation/Collections/ObjectSorting.h"
#include "Foundation/Collections/ObjectTables.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSString.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSArray, foundationLibrary) {
    methods.creator<"array", &NSArray::array>();
    methods.creator<"arrayWithObject:", &NSArray::arrayWithObject>();
    methods.creator<"arrayWithObjects:count:", &NSArray::arrayWithObjects_count>();
    methods.creator<"arrayWithArray:", &NSArray::arrayWithArray>();
    methods.creator<"init", &NSArray::init>();
    methods.creatorAs<"new", &NSArray::init>();
    methods.creator<"initWithObjects:count:", &NSArray::initWithObjects_count>();
    methods.creator<"initWithArray:", &NSArray::initWithArray>();
    methods.instance<"count", &NSArray::count>();
    methods.instance<"objectAtIndex:", &NSArray::objectAtIndex>();
    methods.instance<"lastObject", &NSArray::lastObject>();
    methods.instance<"containsObject:", &NSArray::containsObject>();
    methods.instance<"indexOfObject:", &NSArray::indexOfObject>();
    methods.instance<"indexOfObject:inRange:", &NSArray::indexOfObject_inRange>();
    methods.instance<"indexOfObjectIdenticalTo:", &NSArray::indexOfObjectIdenticalTo>();
    methods.instance<"indexOfObjectIdenticalTo:inRange:", &NSArray::indexOfObjectIdenticalTo_inRange>();
    methods.instance<"firstObjectCommonWithArray:", &NSArray::firstObjectCommonWithArray>();
    methods.instance<"getObjects:", &NSArray::getObjects>();
    methods.instance<"getObjects:range:", &NSArray::getObjects_range>();
    methods.instance<"objectEnumerator", &NSArray::objectEnumerator>();
    methods.instance<"reverseObjectEnumerator", &NSArray::reverseObjectEnumerator>();
    methods.instance<"subarrayWithRange:", &NSArray::subarrayWithRange>();
    methods.instance<"arrayByAddingObject:", &NSArray::arrayByAddingObject>();
    methods.instance<"arrayByAddingObjectsFromArray:", &NSArray::arrayByAddingObjectsFromArray>();
    methods.instance<"sortedArrayUsingSelector:", &NSArray::sortedArrayUsingSelector>();
    methods.instance<"sortedArrayUsingFunction:context:", &NSArray::sortedArrayUsingFunction_context>();
    methods.instance<"componentsJoinedByString:", &NSArray::componentsJoinedByString>();
    methods.instance<"makeObjectsPerformSelector:", &NSArray::makeObjectsPerformSelector>();
    methods.instance<"makeObjectsPerformSelector:withObject:",
                     &NSArray::makeObjectsPerformSelector_withObject>();
    methods.instance<"isEqualToArray:", &NSArray::isEqualToArray>();
}

// MARK: Creation

namespace {

Retained<NSArray> checkedArray(Object* const* objects, NSUInteger count, const char* operation) {
    requireObjects(objects, count, operation);
    return NSInlineArray::create(objects, count);
}

}  // namespace

NSArray* NSArray::array() { return NSInlineArray::empty(); }

NSArray* NSArray::arrayWithObject(id object) {
    requireArgument(object, "arrayWithObject:", "the object");
    return NSInlineArray::create(&object, 1).autorelease();
}

NSArray* NSArray::of(std::initializer_list<Object*> objects) {
    return checkedArray(objects.begin(), static_cast<NSUInteger>(objects.size()), "NSArray::of")
        .autorelease();
}

NSArray* NSArray::arrayWithObjects(std::initializer_list<Object*> objects) {
    return checkedArray(objects.begin(), static_cast<NSUInteger>(objects.size()), "arrayWithObjects")
        .autorelease();
}

NSArray* NSArray::arrayWithObjects_count(Object* const* objects, NSUInteger count) {
    return checkedArray(objects, count, "arrayWithObjects:count:").autorelease();
}

NSArray* NSArray::arrayWithArray(NSArray* array) { return initWithArray(array).autorelease(); }

Retained<NSArray> NSArray::init() { return Retained<NSArray>::retaining(NSInlineArray::empty()); }

Retained<NSArray> NSArray::initWithObjects(std::initializer_list<Object*> objects) {
    return checkedArray(objects.begin(), static_cast<NSUInteger>(objects.size()), "initWithObjects");
}

Retained<NSArray> NSArray::initWithObjects_count(Object* const* objects, NSUInteger count) {
    return checkedArray(objects, count, "initWithObjects:count:");
}

Retained<NSArray> NSArray::initWithArray(NSArray* array) {
    if (!array) return init();
    if (array->isa() == NSInlineArray::classObject()) return Retained<NSArray>::retaining(array);
    NSUInteger count = array->count();
    if (Object* const* objects = array->contiguousObjects()) return NSInlineArray::create(objects, count);
    std::vector<Object*> objects(count);
    array->getObjects(objects.data());
    return NSInlineArray::create(objects.data(), count);
}

// MARK: Objects and indexes

id NSArray::lastObject() {
    NSUInteger length = count();
    return length ? objectAtIndex(length - 1) : nullptr;
}

bool NSArray::containsObject(id object) { return indexOfObject(object) != NSNotFound; }

NSUInteger NSArray::indexOfObject(id object) {
    if (!object) return NSNotFound;
    NSUInteger index = 0;
    for (id entry : detail::walk(this)) {
        if (entry == object || entry->isEqual(object)) return index;
        ++index;
    }
    return NSNotFound;
}

NSUInteger NSArray::indexOfObject_inRange(id object, NSRange range) {
    requireRange(range, count(), "indexOfObject:inRange:");
    if (!object) return NSNotFound;
    for (NSUInteger i = range.location; i < range.location + range.length; ++i) {
        id entry = objectAtIndex(i);
        if (entry == object || entry->isEqual(object)) return i;
    }
    return NSNotFound;
}

NSUInteger NSArray::indexOfObjectIdenticalTo(id object) {
    return indexOfObjectIdenticalTo_inRange(object, {0, count()});
}

NSUInteger NSArray::indexOfObjectIdenticalTo_inRange(id object, NSRange range) {
    requireRange(range, count(), "indexOfObjectIdenticalTo:inRange:");
    Object* const* objects = contiguousObjects();
    for (NSUInteger i = range.location; i < range.location + range.length; ++i)
        if ((objects ? objects[i] : objectAtIndex(i)) == object) return i;
    return NSNotFound;
}

id NSArray::firstObjectCommonWithArray(NSArray* other) {
    if (!other) return nullptr;
    for (id object : detail::walk(this))
        if (other->containsObject(object)) return object;
    return nullptr;
}

namespace {

void copyObjects(NSArray* array, Object** buffer, NSRange range, const char* operation) {
    requireRange(range, array->count(), operation);
    requireMemory(buffer, range.length, operation, "the objects");
    if (Object* const* objects = array->contiguousObjects())
        std::copy_n(objects + range.location, range.length, buffer);
    else
        for (NSUInteger i = 0; i < range.length; ++i) buffer[i] = array->objectAtIndex(range.location + i);
}

}  // namespace

void NSArray::getObjects(Object** buffer) { copyObjects(this, buffer, {0, count()}, "getObjects:"); }

void NSArray::getObjects_range(Object** buffer, NSRange range) {
    copyObjects(this, buffer, range, "getObjects:range:");
}

NSEnumerator* NSArray::objectEnumerator() {
    return NSArrayEnumerator::create(this, NSArrayEnumerator::Direction::forward).autorelease();
}

NSEnumerator* NSArray::reverseObjectEnumerator() {
    return NSArrayEnumerator::create(this, NSArrayEnumerator::Direction::backward).autorelease();
}

// MARK: Other arrays

NSArray* NSArray::subarrayWithRange(NSRange range) {
    requireRange(range, count(), "subarrayWithRange:");
    if (Object* const* objects = contiguousObjects())
        return NSInlineArray::create(objects + range.location, range.length).autorelease();
    std::vector<Object*> objects(range.length);
    getObjects_range(objects.data(), range);
    return NSInlineArray::create(objects.data(), range.length).autorelease();
}

namespace {

// The array itself if it has its objects in one piece, else a copy that does.
Retained<NSArray> inOnePiece(NSArray* array) {
    if (array && array->contiguousObjects()) return Retained<NSArray>::retaining(array);
    return NSArray::initWithArray(array);
}

}  // namespace

NSArray* NSArray::arrayByAddingObject(id object) {
    requireArgument(object, "arrayByAddingObject:", "the object");
    Retained<NSArray> own = inOnePiece(this);
    return NSInlineArray::createJoined(own, {&object, 1}).autorelease();
}

NSArray* NSArray::arrayByAddingObjectsFromArray(NSArray* other) {
    Retained<NSArray> own = inOnePiece(this), more = inOnePiece(other);
    return NSInlineArray::createJoined(own, {more->contiguousObjects(), more->count()}).autorelease();
}

namespace {

// The comparison may change the array, so a copy is sorted, which also keeps the objects alive.
template <class Compare>
NSArray* sortedArray(NSArray* array, Compare&& compare) {
    Retained<NSArray> kept = NSArray::initWithArray(array);
    std::vector<Object*> objects(kept->count());
    kept->getObjects(objects.data());
    sortStably(objects, compare);
    return NSInlineArray::create(objects.data(), static_cast<NSUInteger>(objects.size())).autorelease();
}

}  // namespace

NSArray* NSArray::sortedArrayUsingSelector(SEL comparator) {
    return sortedArray(this, [comparator](id a, id b) { return send<int>(a, comparator, b); });
}

NSArray* NSArray::sortedArrayUsingFunction_context(NSCompareFunction comparator, void* context) {
    if (!comparator) raiseNullArgument("sortedArrayUsingFunction:context:", "the function");
    return sortedArray(this, [comparator, context](id a, id b) { return comparator(a, b, context); });
}

// MARK: Everything else

NSString* NSArray::componentsJoinedByString(NSString* separator) {
    std::u16string between = separator ? separator->toUTF16() : std::u16string();
    std::u16string joined;
    bool isFirst = true;
    for (id object : detail::walk(this)) {
        if (!std::exchange(isFirst, false)) joined += between;
        if (NSString* text = object->description()) joined += text->toUTF16();
    }
    return NSString::of(joined);
}

void NSArray::makeObjectsPerformSelector(SEL selector) {
    Retained<NSArray> objects = initWithArray(this);
    for (id object : objects) object->performSelector(selector);
}

void NSArray::makeObjectsPerformSelector_withObject(SEL selector, id argument) {
    Retained<NSArray> objects = initWithArray(this);
    for (id object : objects) object->performSelector_withObject(selector, argument);
}

bool NSArray::isEqualToArray(NSArray* other) {
    if (this == other) return true;
    if (!other || count() != other->count()) return false;
    detail::ArrayCursor theirs(other);
    for (id object : detail::walk(this)) {
        if (theirs == std::default_sentinel) return false;
        if (object != *theirs && !object->isEqual(*theirs)) return false;
        ++theirs;
    }
    return true;
}

bool NSArray::isEqual(id other) {
    auto* array = cast<NSArray>(other);
    return array && isEqualToArray(array);
}

std::uintptr_t NSArray::hash() {
    NSUInteger length = count();
    if (length == 0) return 0;
    return (length * 31 + hashOfElement(objectAtIndex(0))) * 31 + hashOfElement(lastObject());
}

NSString* NSArray::description() { return describeCollection(this); }

Retained<Object> NSArray::copyWithZone(void*) { return initWithArray(this); }

Retained<Object> NSArray::mutableCopyWithZone(void*) { return NSMutableArray::initWithArray(this); }

Retained<NSMutableArray> NSArray::mutableCopy() { return cast<NSMutableArray>(mutableCopyWithZone(nullptr)); }

}  // namespace pelvor
