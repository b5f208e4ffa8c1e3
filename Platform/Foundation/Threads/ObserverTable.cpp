// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Threads/ObserverTable.h"

#include <algorithm>
#include <mutex>

#include "Runtime/Message.h"

namespace pelvor {
namespace {

using Guard = std::lock_guard<BriefLock>;

std::vector<ObserverEntry>::iterator entryOf(std::uint64_t serial, ObserverList& list) {
    auto entry = std::lower_bound(list.entries.begin(), list.entries.end(), serial,
                                  [](const ObserverEntry& each, std::uint64_t s) { return each.serial < s; });
    return entry != list.entries.end() && entry->serial == serial ? entry : list.entries.end();
}

}  // namespace

// MARK: Names

ObserverTable::NameRecord* ObserverTable::ensureRecord(NSString* name) {
    auto found = _records.find(name);
    if (found != _records.end()) return found->second.get();
    auto record = std::make_unique<NameRecord>();
    record->name = name->copy();
    NSString* key = record->name;
    return _records.emplace(key, std::move(record)).first->second.get();
}

// A literal gets a record even if nothing is registered for it, so that the next post finds the record at
// once.
ObserverTable::NameRecord* ObserverTable::recordForPost(NSString* name) {
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

// MARK: Registrations

void ObserverTable::add(Object* observer, SEL selector, NSString* name, Object* sender) {
    Guard guard(_lock);
    NameRecord* record = name ? ensureRecord(name) : &_anyName;
    std::uint64_t serial = ++_lastSerial;
    ObserverList& list = listToChange(sender ? record->bySender[sender] : record->ofAnySender);
    list.entries.push_back({observer, selector, serial});
    _places[observer].push_back({serial, record, sender});
}

void ObserverTable::remove(Object* observer, NSString* name, Object* sender) {
    std::vector<std::unique_ptr<NameRecord>> gone;  // freed without the lock: their names may be anyone's
    Guard guard(_lock);
    auto found = _places.find(observer);
    if (found == _places.end()) return;
    NameRecord* record = nullptr;
    if (name) {
        auto named = _records.find(name);
        if (named == _records.end()) return;
        record = named->second.get();
    }
    std::erase_if(found->second, [&](const Place& place) {
        if ((record && place.record != record) || (sender && place.sender != sender)) return false;
        gone.push_back(removePlace(place));
        return true;
    });
    if (found->second.empty()) _places.erase(found);
}

// Returns the record of the name if nothing is registered for it any more.
std::unique_ptr<ObserverTable::NameRecord> ObserverTable::removePlace(const Place& place) {
    NameRecord* record = place.record;
    if (place.sender) {
        auto list = record->bySender.find(place.sender);
        removeFrom(list->second, place.serial);
        if (!list->second) record->bySender.erase(list);
    } else {
        removeFrom(record->ofAnySender, place.serial);
    }
    if (!record->isEmpty() || record->isLiteral || record == &_anyName) return nullptr;
    return std::move(_records.extract(record->name.get()).mapped());
}

void ObserverTable::removeFrom(std::unique_ptr<ObserverList>& list, std::uint64_t serial) {
    ObserverList& changed = listToChange(list);
    changed.entries.erase(entryOf(serial, changed));
    if (changed.entries.empty()) list = nullptr;
    for (auto& outdated : _outdated)
        if (auto entry = entryOf(serial, *outdated); entry != outdated->entries.end())
            std::atomic_ref(entry->observer).store(nullptr, std::memory_order_release);
}

// The list itself, or its copy if deliveries read it.
ObserverList& ObserverTable::listToChange(std::unique_ptr<ObserverList>& list) {
    if (!list) list = std::make_unique<ObserverList>();
    if (list->deliveries > 0) {
        auto copy = std::make_unique<ObserverList>();
        copy->entries = list->entries;
        list->isOutdated = true;
        _outdated.push_back(std::exchange(list, std::move(copy)));
    }
    return *list;
}

// MARK: Deliveries

ObserverList* ObserverTable::beginDelivery(NSString* name, Object* sender) {
    Guard guard(_lock);
    ObserverList* lists[4];
    std::size_t count = 0;
    for (NameRecord* record : {recordForPost(name), &_anyName}) {
        if (!record) continue;
        if (record->ofAnySender) lists[count++] = record->ofAnySender.get();
        if (!sender || record->bySender.empty()) continue;
        auto found = record->bySender.find(sender);
        if (found != record->bySender.end()) lists[count++] = found->second.get();
    }
    if (count == 0) return nullptr;
    ObserverList* list = count == 1 ? lists[0] : merged(lists, count);
    ++list->deliveries;
    ++_deliveries;
    return list;
}

ObserverList* ObserverTable::merged(ObserverList* const* lists, std::size_t count) {
    auto all = std::make_unique<ObserverList>();
    for (std::size_t i = 0; i < count; ++i)
        all->entries.insert(all->entries.end(), lists[i]->entries.begin(), lists[i]->entries.end());
    std::sort(all->entries.begin(), all->entries.end(),
              [](const auto& a, const auto& b) { return a.serial < b.serial; });
    all->isOutdated = true;
    return _outdated.emplace_back(std::move(all)).get();
}

void ObserverTable::endDelivery(ObserverList* list) {
    std::unique_lock guard(_lock);
    --_deliveries;
    if (--list->deliveries == 0 && list->isOutdated)
        std::erase_if(_outdated, [&](const auto& each) { return each.get() == list; });
    if (_deliveries > 0 || !_hasEnded) return;
    guard.unlock();
    delete this;
}

void ObserverTable::end() {
    {
        Guard guard(_lock);
        _hasEnded = true;
        if (_deliveries > 0) return;
    }
    delete this;
}

namespace {

// The implementation of the message for the class of the previous observer, which mostly is the class of the
// next one, too.
class Implementation {
  public:
    using Function = void (*)(Object*, SEL, Wire<NSNotification*>);

    /// Returns null if the message has to be sent.
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
    if (!_list) return;
    Implementation implementation;
    ObserverEntry* entry = _list->entries.data();
    for (ObserverEntry* end = entry + _list->entries.size(); entry != end; ++entry) {
        Object* observer = std::atomic_ref(entry->observer).load(std::memory_order_acquire);
        if (!observer) [[unlikely]]
            continue;
        auto function = implementation.find(observer->isa(), entry->selector);
        if (function) [[likely]]
            function(observer, entry->selector, notification);
        else
            pelvor::send(observer, entry->selector, notification);
    }
}

}  // namespace pelvor
