// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSCountedSet.h"

#include <algorithm>

#include "Foundation/Collections/ObjectTables.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSCountedSet, foundationLibrary) {
    methods.creator<"set", &NSCountedSet::set>();
    methods.creator<"setWithCapacity:", &NSCountedSet::setWithCapacity>();
    methods.creator<"setWithObject:", &NSCountedSet::setWithObject>();
    methods.creator<"setWithObjects:count:", &NSCountedSet::setWithObjects_count>();
    methods.creator<"setWithArray:", &NSCountedSet::setWithArray>();
    methods.creator<"setWithSet:", &NSCountedSet::setWithSet>();
    methods.creator<"init", &NSCountedSet::init>();
    methods.creatorAs<"new", &NSCountedSet::init>();
    methods.creator<"initWithCapacity:", &NSCountedSet::initWithCapacity>();
    methods.creator<"initWithObjects:count:", &NSCountedSet::initWithObjects_count>();
    methods.creator<"initWithArray:", &NSCountedSet::initWithArray>();
    methods.creator<"initWithSet:", &NSCountedSet::initWithSet>();
    methods.instance<"countForObject:", &NSCountedSet::countForObject>();
}

struct NSCountedSet::Table : OrderedTable<NSUInteger> {
    NSUInteger find(id object) { return object ? OrderedTable::find(object, fold(object->hash())) : kNone; }
};

NSCountedSet::NSCountedSet() : _table(std::make_unique<Table>()) {}

NSCountedSet::~NSCountedSet() {
    while (_table->count() > 0) NSCountedSet::removeAllObjects();  // what a release does may add
}

NSCountedSet* NSCountedSet::set() { return init().autorelease(); }

NSCountedSet* NSCountedSet::setWithCapacity(NSUInteger capacity) {
    return initWithCapacity(capacity).autorelease();
}

NSCountedSet* NSCountedSet::setWithObject(id object) {
    requireArgument(object, "setWithObject:", "the object");
    return initWithObjects_count(&object, 1).autorelease();
}

NSCountedSet* NSCountedSet::of(std::initializer_list<Object*> objects) {
    requireObjects(objects.begin(), static_cast<NSUInteger>(objects.size()), "NSCountedSet::of");
    return setWithObjects(objects);
}

NSCountedSet* NSCountedSet::setWithObjects(std::initializer_list<Object*> objects) {
    requireObjects(objects.begin(), static_cast<NSUInteger>(objects.size()), "setWithObjects");
    return initWithObjects(objects).autorelease();
}

NSCountedSet* NSCountedSet::setWithObjects_count(Object* const* objects, NSUInteger count) {
    requireObjects(objects, count, "setWithObjects:count:");
    return initWithObjects_count(objects, count).autorelease();
}

NSCountedSet* NSCountedSet::setWithArray(NSArray* array) { return initWithArray(array).autorelease(); }

NSCountedSet* NSCountedSet::setWithSet(NSSet* set) { return initWithSet(set).autorelease(); }

Retained<NSCountedSet> NSCountedSet::init(Class* cls) { return make<NSCountedSet>(cls); }

Retained<NSCountedSet> NSCountedSet::initWithCapacity(NSUInteger capacity, Class* cls) {
    auto set = make<NSCountedSet>(cls);
    set->_table->reserve(std::min(capacity, kLargestReserve));
    return set;
}

Retained<NSCountedSet> NSCountedSet::initWithObjects(std::initializer_list<Object*> objects) {
    auto count = static_cast<NSUInteger>(objects.size());
    requireObjects(objects.begin(), count, "initWithObjects");
    return initWithObjects_count(objects.begin(), count);
}

Retained<NSCountedSet> NSCountedSet::initWithObjects_count(Object* const* objects, NSUInteger count,
                                                           Class* cls) {
    requireObjects(objects, count, "initWithObjects:count:");
    auto set = make<NSCountedSet>(cls);
    for (NSUInteger i = 0; i < count; ++i) set->addObject(objects[i]);
    return set;
}

Retained<NSCountedSet> NSCountedSet::initWithArray(NSArray* array, Class* cls) {
    auto set = make<NSCountedSet>(cls);
    set->addObjectsFromArray(array);
    return set;
}

Retained<NSCountedSet> NSCountedSet::initWithSet(NSSet* set, Class* cls) {
    auto copy = make<NSCountedSet>(cls);
    auto* counted = cast<NSCountedSet>(set);
    for (id object : set)
        for (NSUInteger i = counted ? counted->countForObject(object) : 1; i > 0; --i)
            copy->addObject(object);
    return copy;
}

NSUInteger NSCountedSet::countForObject(id object) {
    NSUInteger position = _table->find(object);
    return position == Table::kNone ? 0 : _table->entry(position).payload;
}

NSUInteger NSCountedSet::count() { return _table->count(); }

id NSCountedSet::member(id object) {
    NSUInteger position = _table->find(object);
    return position == Table::kNone ? nullptr : _table->entry(position).key;
}

id NSCountedSet::stepFrom(NSUInteger& position) {
    position = _table->next(position);
    return position == Table::kNone ? nullptr : _table->entry(position++).key;
}

const std::uint32_t* NSCountedSet::mutationCounter() { return _table->mutationCounter(); }

void NSCountedSet::addObject(id object) {
    requireArgument(object, "addObject:", "the object");
    std::uint32_t hash = Table::fold(object->hash());
    NSUInteger position = _table->OrderedTable::find(object, hash);
    if (position == Table::kNone)
        _table->add(object->retain(), hash, 1);
    else
        ++_table->entry(position).payload;
}

void NSCountedSet::removeObject(id object) {
    NSUInteger position = _table->find(object);
    if (position == Table::kNone) return;
    if (--_table->entry(position).payload == 0) _table->remove(position).key->release();
}

void NSCountedSet::removeAllObjects() {
    for (auto& entry : _table->removeAll())
        if (entry.key) entry.key->release();
}

Retained<NSCountedSet> NSCountedSet::copy() { return cast<NSCountedSet>(copyWithZone(nullptr)); }

Retained<NSCountedSet> NSCountedSet::mutableCopy() {
    return cast<NSCountedSet>(mutableCopyWithZone(nullptr));
}

Retained<Object> NSCountedSet::copyWithZone(void*) { return initWithSet(this, isa()); }

Retained<Object> NSCountedSet::mutableCopyWithZone(void*) { return initWithSet(this, isa()); }

}  // namespace pelvor
