// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Foundation/Threads/ObserverTable.h"
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
    auto list = capacity ? std::make_unique<ObserverList>(_sender, capacity) : nullptr;
    std::uint32_t count = 0;
    for (std::uint32_t i = 0; list && i < oldCount; ++i)
        if (old->entries[i].registration->observer.load(std::memory_order_relaxed))
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
    ObserverEntry& entry = list->entries[count];
    entry.observer = registration->observer.load(std::memory_order_relaxed);
    entry.selector = registration->selector;
    entry.registration = std::move(registration);
    list->count.store(count + 1, std::memory_order_release);
}

void ObserverSequence::noteRemoval() {
    ObserverList* list = _list.load(std::memory_order_relaxed);
    list->hasGaps.store(true, std::memory_order_release);
    std::uint32_t count = list->count.load(std::memory_order_relaxed);
    if (++_removed * 2 >= count) rebuild(count - _removed);
}

// MARK: Names

void NameRecord::prune(Object* sender) {
    recent.store(nullptr, std::memory_order_relaxed);
    auto found = sender ? bySender.find(sender) : bySender.end();
    if (found != bySender.end() && found->second.isEmpty()) bySender.erase(found);
    hasSenders.store(!bySender.empty(), std::memory_order_release);
}

// MARK: The table

constinit std::atomic<std::uint64_t> ObserverTable::_removals{0};

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
        _removals.fetch_add(1, std::memory_order_release);
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

void ObserverTable::Audience::gather(ObserverTable& table, NSString* name, Object* sender) {
    {
        std::lock_guard guard(table._mutex);
        if (NameRecord* record = table.recordForPost(name)) gather(*record, sender);
        gather(table._anyName, sender);
    }
    merge();
}

void ObserverTable::Audience::gather(NameRecord& record, Object* sender) {
    take(record.ofAnySender.list().load(std::memory_order_relaxed));
    if (!sender || record.bySender.empty()) return;
    auto found = record.bySender.find(sender);
    if (found == record.bySender.end()) return;
    ObserverList* list = found->second.list().load(std::memory_order_relaxed);
    record.recent.store(list, std::memory_order_release);
    take(list);
}

void ObserverTable::Audience::take(ObserverList* list) {
    if (!list) return;
    if (_count == 0) {
        _scope.protect(list);
        return look(list);
    }
    if (_merged.empty()) _merged.assign(_entries, _entries + _count);
    std::uint32_t count = list->count.load(std::memory_order_relaxed);
    _merged.insert(_merged.end(), list->entries.get(), list->entries.get() + count);
    _seenRemovals = kUnknown;
}

void ObserverTable::Audience::merge() {
    if (_merged.empty()) return;
    std::sort(_merged.begin(), _merged.end(),
              [](const auto& a, const auto& b) { return a.registration->serial < b.registration->serial; });
    _entries = _merged.data();
    _count = static_cast<std::uint32_t>(_merged.size());
}

namespace {

// The implementation of the message for the class of the observer before: mostly that of the next, too.
class Implementation {
  public:
    using Function = void (*)(Object*, SEL, Wire<NSNotification*>);

    /// None where the message has to be sent.
    Function find(Class* cls, SEL selector) {
        if (cls == _class && selector == _selector && cls->cached(selector) == _entry) [[likely]]
            return _function;
        return findAnew(cls, selector);
    }

  private:
    static constexpr std::uint64_t kKey = SignatureFor<void, NSNotification*>::kKey;

    Function findAnew(Class* cls, SEL selector) {
        const CacheEntry* entry = cls->cached(selector);
        if (entry->selector != selector || entry->signatureKey != kKey) return nullptr;
        _class = cls;
        _selector = selector;
        _entry = entry;
        return _function = reinterpret_cast<Function>(entry->function);
    }

    Class* _class = nullptr;
    SEL _selector;
    const CacheEntry* _entry = nullptr;
    Function _function = nullptr;
};

}  // namespace

void ObserverTable::Audience::send(NSNotification* notification) {
    Implementation implementation;
    for (const ObserverEntry *entry = _entries, *end = entry + _count; entry != end; ++entry) {
        if (_removals.load(std::memory_order_acquire) != _seenRemovals &&
            !entry->registration->observer.load(std::memory_order_acquire)) [[unlikely]]
            continue;
        auto function = implementation.find(entry->observer->isa(), entry->selector);
        if (function) [[likely]]
            function(entry->observer, entry->selector, notification);
        else
            pelvor::send(entry->observer, entry->selector, notification);
    }
}

}  // namespace pelvor
