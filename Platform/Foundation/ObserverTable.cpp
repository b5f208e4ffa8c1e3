// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Foundation/ObserverTablePrivate.h"
#include "Runtime/Message.h"

namespace pelvor {

// MARK: Sequences

void ObserverSequence::replace(ObserverList* list) {
    ReadScope::retire(_list.exchange(list, std::memory_order_acq_rel));
}

// A new list with those that are left, or none.
void ObserverSequence::rebuild(std::uint32_t capacity) {
    ObserverList* old = _list.load(std::memory_order_relaxed);
    std::uint32_t oldCount = old ? old->count.load(std::memory_order_relaxed) : 0;
    auto list = capacity ? std::make_unique<ObserverList>(capacity) : nullptr;
    std::uint32_t count = 0;
    for (std::uint32_t i = 0; list && i < oldCount; ++i)
        if (old->entries[i]->observer.load(std::memory_order_relaxed))
            list->entries[count++] = old->entries[i];
    if (list) list->count.store(count, std::memory_order_relaxed);
    _removed = 0;
    replace(list.release());
}

void ObserverSequence::append(std::shared_ptr<Registration> registration) {
    ObserverList* list = _list.load(std::memory_order_relaxed);
    std::uint32_t count = list ? list->count.load(std::memory_order_relaxed) : 0;
    if (!list || count == list->capacity) {
        rebuild(std::max<std::uint32_t>(2, (count - _removed) * 2));
        list = _list.load(std::memory_order_relaxed);
        count = list->count.load(std::memory_order_relaxed);
    }
    list->entries[count] = std::move(registration);
    list->count.store(count + 1, std::memory_order_release);
}

void ObserverSequence::noteRemoval() {
    std::uint32_t count = _list.load(std::memory_order_relaxed)->count.load(std::memory_order_relaxed);
    if (++_removed * 2 >= count) rebuild(count - _removed);
}

// MARK: Names

void NameRecord::prune(Object* sender) {
    auto found = sender ? bySender.find(sender) : bySender.end();
    if (found != bySender.end() && found->second.isEmpty()) bySender.erase(found);
    hasSenders.store(!bySender.empty(), std::memory_order_release);
}

// MARK: The table

ObserverTable::ObserverTable() { ReadScope::prepare(); }

ObserverTable::~ObserverTable() = default;

NameRecord* ObserverTable::ensureRecord(NSString* name) {
    auto found = _records.find(name);
    if (found != _records.end()) return found->second.get();
    auto record = std::make_unique<NameRecord>();
    record->name = name->copy();
    NSString* key = record->name;
    return _records.emplace(key, std::move(record)).first->second.get();
}

// Literals get a record even if nobody asks for them, so that the next post finds it at once.
NameRecord* ObserverTable::recordForPost(NSString* name) {
    if (NameRecord* known = _literals.find(name)) return known;
    if (name->isa() != NSConstantString::classObject()) {
        auto found = _records.find(name);
        return found == _records.end() ? nullptr : found->second.get();
    }
    NameRecord* record = ensureRecord(name);
    record->isLiteral = true;
    _literals.add(name, record);
    return record;
}

void ObserverTable::add(Object* observer, SEL selector, NSString* name, Object* sender) {
    std::lock_guard guard(_mutex);
    NameRecord* record = name ? ensureRecord(name) : &_anyName;
    auto registration = std::make_shared<Registration>();
    registration->observer.store(observer, std::memory_order_relaxed);
    registration->selector = selector;
    registration->serial = ++_lastSerial;
    record->sequence(sender).append(registration);
    if (sender) record->hasSenders.store(true, std::memory_order_release);
    if (!name) _hasAnyName.store(true, std::memory_order_release);
    _places[observer].push_back({std::move(registration), record, sender});
}

void ObserverTable::remove(Object* observer, NSString* name, Object* sender) {
    std::lock_guard guard(_mutex);
    auto found = _places.find(observer);
    if (found == _places.end()) return;
    NameRecord* record = nullptr;
    if (name) {
        auto named = _records.find(name);
        if (named == _records.end()) return;
        record = named->second.get();
    }
    std::erase_if(found->second, [&](Place& place) {
        if ((record && place.record != record) || (sender && place.sender != sender)) return false;
        place.registration->observer.store(nullptr, std::memory_order_release);
        place.record->sequence(place.sender).noteRemoval();
        prune(place.record, place.sender);
        return true;
    });
    if (found->second.empty()) _places.erase(found);
}

void ObserverTable::prune(NameRecord* record, Object* sender) {
    record->prune(sender);
    if (!record->isEmpty() || record->isLiteral) return;
    if (record == &_anyName)
        _hasAnyName.store(false, std::memory_order_release);
    else
        _records.erase(record->name.get());
}

// MARK: Deliveries

ObserverTable::Audience::Audience(ObserverTable& table, NSString* name, Object* sender) {
    const NameRecord* record = table._literals.find(name);
    if (!record || record->hasSenders.load(std::memory_order_acquire) ||
        table._hasAnyName.load(std::memory_order_acquire)) [[unlikely]] {
        gather(table, name, sender);
    } else if (const ObserverList* list = _scope.protect(record->ofAnySender.list())) {
        _count = list->count.load(std::memory_order_acquire);
        _entries = list->entries.get();
    }
}

void ObserverTable::Audience::gather(ObserverTable& table, NSString* name, Object* sender) {
    {
        std::lock_guard guard(table._mutex);
        if (const NameRecord* record = table.recordForPost(name)) gather(*record, sender);
        gather(table._anyName, sender);
    }
    merge();
}

void ObserverTable::Audience::gather(const NameRecord& record, Object* sender) {
    take(record.ofAnySender.list().load(std::memory_order_relaxed));
    if (!sender || record.bySender.empty()) return;
    auto found = record.bySender.find(sender);
    if (found != record.bySender.end()) take(found->second.list().load(std::memory_order_relaxed));
}

void ObserverTable::Audience::take(const ObserverList* list) {
    if (!list) return;
    std::uint32_t count = list->count.load(std::memory_order_relaxed);
    if (_count == 0) {
        _scope.protect(list);
        _entries = list->entries.get();
        _count = count;
        return;
    }
    if (_merged.empty()) _merged.assign(_entries, _entries + _count);
    _merged.insert(_merged.end(), list->entries.get(), list->entries.get() + count);
}

void ObserverTable::Audience::merge() {
    if (_merged.empty()) return;
    std::sort(_merged.begin(), _merged.end(),
              [](const auto& a, const auto& b) { return a->serial < b->serial; });
    _entries = _merged.data();
    _count = static_cast<std::uint32_t>(_merged.size());
}

void ObserverTable::Audience::send(NSNotification* notification) {
    for (std::uint32_t i = 0; i < _count; ++i) {
        const Registration& registration = *_entries[i];
        if (Object* observer = registration.observer.load(std::memory_order_acquire))
            pelvor::send(observer, registration.selector, notification);
    }
}

}  // namespace pelvor
