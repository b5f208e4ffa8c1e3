// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <string>

#include "Foundation/Collections/ObjectTables.h"
#include "Foundation/NSArray.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

std::uintptr_t hashOfElement(id object) {
    if (cast<NSArray>(object) || cast<NSSet>(object) || cast<NSDictionary>(object)) return 0;
    return object->hash();
}

// MARK: Members

id MemberTable::member(id object) {
    if (!object) return nullptr;
    NSUInteger position = _table.find(object, _table.fold(object->hash()));
    return position == _table.kNone ? nullptr : _table.entry(position).key;
}

id MemberTable::stepFrom(NSUInteger& position) {
    position = _table.next(position);
    return position == _table.kNone ? nullptr : _table.entry(position++).key;
}

void MemberTable::add(id object) {
    std::uint32_t hash = _table.fold(object->hash());
    if (_table.find(object, hash) == _table.kNone) _table.add(object->retain(), hash, {});
}

void MemberTable::addAll(Object* const* objects, NSUInteger count) {
    reserve(count);
    for (NSUInteger i = 0; i < count; ++i) add(objects[i]);
}

void MemberTable::remove(id object) {
    if (!object) return;
    NSUInteger position = _table.find(object, _table.fold(object->hash()));
    if (position != _table.kNone) _table.remove(position).key->release();
}

void MemberTable::removeAll() {
    for (auto& entry : _table.removeAll())
        if (entry.key) entry.key->release();
}

void MemberTable::reserve(NSUInteger capacity) { _table.reserve(std::min(capacity, kLargestReserve)); }

void MemberTable::copyFrom(const MemberTable& other) {
    _table.copyFrom(other._table);
    for (NSUInteger i = 0; i < _table.count(); ++i) _table.entry(i).key->retain();
}

// MARK: Entries

namespace {

// Classes are their own copies; an object of the other class tree is sent the message.
Retained<Object> copyOf(id key) {
    if (asClass(key)) return Retained<Object>::retaining(key);
    if (auto* object = cast<NSObject>(key)) return object->copyWithZone(nullptr);
    return send<Retained<Object>>(key, "copyWithZone:"_sel, static_cast<void*>(nullptr));
}

[[noreturn]] void raiseNoCopy(id key, const char* operation, const std::string& reason) {
    raiseBadArgument(operation, std::string("a key of class ") + key->isa()->publicName() +
                                    " cannot be copied: " + reason);
}

Retained<Object> copyOfKey(id key, const char* operation) {
    try {
        Retained<Object> copy = copyOf(key);
        if (copy) [[likely]]
            return copy;
    } catch (const NSException& exception) {
        if (exception.name() != NSInvalidArgumentException) throw;
        raiseNoCopy(key, operation, exception.reason());
    }
    raiseNoCopy(key, operation, "its copy is null");
}

}  // namespace

id EntryTable::objectForKey(id key) {
    if (!key) return nullptr;
    NSUInteger position = _table.find(key, _table.fold(key->hash()));
    return position == _table.kNone ? nullptr : _table.entry(position).payload;
}

NSDictionaryEntry EntryTable::stepFrom(NSUInteger& position) {
    position = _table.next(position);
    if (position == _table.kNone) return {nullptr, nullptr};
    auto& entry = _table.entry(position++);
    return {entry.key, entry.payload};
}

void EntryTable::set(id object, id key, const char* operation) {
    std::uint32_t hash = _table.fold(key->hash());
    NSUInteger position = _table.find(key, hash);
    if (position != _table.kNone) return replaceObject(position, object);
    std::uint32_t before = *_table.mutationCounter();
    auto kept = Retained<Object>::retaining(object);
    Retained<Object> copy = copyOfKey(key, operation);
    // Copying the key runs other code, which may have added an entry for this key.
    if (*_table.mutationCounter() != before) position = _table.find(key, hash);
    if (position != _table.kNone) return replaceObject(position, object);
    _table.add(copy, hash, kept);
    (void)copy.leak();
    (void)kept.leak();
}

void EntryTable::replaceObject(NSUInteger position, id object) {
    std::exchange(_table.entry(position).payload, object->retain())->release();
}

void EntryTable::remove(id key) {
    if (!key) return;
    NSUInteger position = _table.find(key, _table.fold(key->hash()));
    if (position == _table.kNone) return;
    auto entry = _table.remove(position);
    entry.payload->release();
    entry.key->release();
}

void EntryTable::removeAll() {
    for (auto& entry : _table.removeAll()) {
        if (!entry.key) continue;
        entry.payload->release();
        entry.key->release();
    }
}

void EntryTable::reserve(NSUInteger capacity) { _table.reserve(std::min(capacity, kLargestReserve)); }

void EntryTable::copyFrom(const EntryTable& other) {
    _table.copyFrom(other._table);
    for (NSUInteger i = 0; i < _table.count(); ++i) {
        _table.entry(i).key->retain();
        _table.entry(i).payload->retain();
    }
}

}  // namespace pelvor
