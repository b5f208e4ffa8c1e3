// SPDX-License-Identifier: Apache-2.0
// ObserverTable: who is to be told what by a notification centre; for the centre's own source.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "Foundation/NSNotification.h"
#include "Foundation/Strings/LiteralTable.h"
#include "Foundation/Threads/ReadScope.h"

namespace pelvor {

/// One registration. `observer` becomes none when it is removed; lists that still hold it skip it.
struct Registration {
    std::atomic<Object*> observer;
    SEL selector;
    std::uint64_t serial;  ///< the order of registration in the centre
};

/// A registration in a list, with what a delivery needs at hand. The observer is stale once the registration
/// has lost its own.
struct ObserverEntry {
    Object* observer = nullptr;
    SEL selector;
    std::shared_ptr<Registration> registration;
};

/// Registrations in their order. Grows at its end while others read it; is replaced for everything else.
struct ObserverList {
    ObserverList(Object* newSender, std::uint32_t newCapacity)
        : sender(newSender), capacity(newCapacity), entries(std::make_unique<ObserverEntry[]>(newCapacity)) {}

    Object* const sender;  // none: any
    const std::uint32_t capacity;
    std::atomic<std::uint32_t> count{0};
    std::atomic<bool> hasGaps{false};  // registrations without an observer are among them
    const std::unique_ptr<ObserverEntry[]> entries;
};

/// The registrations of one name and one sender, either of which may be "any". Changed under the table's
/// lock.
class ObserverSequence {
  public:
    explicit ObserverSequence(Object* sender) : _sender(sender) {}
    ~ObserverSequence() { replace(nullptr); }
    ObserverSequence(const ObserverSequence&) = delete;
    ObserverSequence& operator=(const ObserverSequence&) = delete;

    /// None when there is no registration.
    const std::atomic<ObserverList*>& list() const { return _list; }
    bool isEmpty() const { return !_list.load(std::memory_order_relaxed); }

    void append(std::shared_ptr<Registration> registration);
    /// One of the registrations has lost its observer.
    void noteRemoval();

  private:
    void replace(ObserverList* list);
    void rebuild(std::uint32_t capacity);

    std::atomic<ObserverList*> _list{nullptr};
    Object* const _sender;
    std::uint32_t _removed = 0;
};

/// The sequences of one name, or of any name.
struct NameRecord {
    Retained<NSString> name;
    bool isLiteral = false;  ///< posts of it find the record without the lock, so it stays
    ObserverSequence ofAnySender{nullptr};
    std::unordered_map<Object*, ObserverSequence> bySender;
    std::atomic<bool> hasSenders{false};
    /// The list of the sender that posted last, for the next post to find without the lock. Forgotten
    /// before any list of the name is replaced.
    std::atomic<ObserverList*> recent{nullptr};

    /// The sequence, made if need be, to be changed.
    ObserverSequence& sequence(Object* sender) {
        recent.store(nullptr, std::memory_order_relaxed);
        return sender ? bySender.try_emplace(sender, sender).first->second : ofAnySender;
    }
    void prune(Object* sender);
    bool isEmpty() const { return ofAnySender.isEmpty() && bySender.empty(); }
};

/// What a centre knows. Any thread; must not be destroyed during a delivery.
class ObserverTable {
  public:
    class Audience;

    ObserverTable();
    ~ObserverTable();

    void add(Object* observer, SEL selector, NSString* name, Object* sender);
    /// None as name or sender stands for any, also for none as the observer asked.
    void remove(Object* observer, NSString* name, Object* sender);

  private:
    struct Hash {
        std::size_t operator()(NSString* name) const { return name->hash(); }
    };
    struct Equal {
        bool operator()(NSString* a, NSString* b) const { return a->isEqualToString(b); }
    };
    // What was registered for an observer.
    struct Place {
        std::shared_ptr<Registration> registration;
        NameRecord* record;
        Object* sender;
    };

    NameRecord* ensureRecord(NSString* name);
    NameRecord* recordForPost(NSString* name);
    void prune(NameRecord* record, Object* sender);

    std::mutex _mutex;
    LiteralTable<NameRecord> _literals;
    std::unordered_map<NSString*, std::unique_ptr<NameRecord>, Hash, Equal> _records;
    NameRecord _anyName;
    std::atomic<bool> _hasAnyName{false};
    std::unordered_map<Object*, std::vector<Place>> _places;
    std::uint64_t _lastSerial = 0;

    // Of all tables together: an audience may outlive its table.
    static constinit std::atomic<std::uint64_t> _removals;
};

/// The registrations that one notification is for, as they were when this was made.
class ObserverTable::Audience {
  public:
    Audience(ObserverTable& table, NSString* name, Object* sender)
        : _seenRemovals(_removals.load(std::memory_order_acquire)) {
        NameRecord* record = table._literals.find(name);
        if (!record || table._hasAnyName.load(std::memory_order_acquire)) [[unlikely]]
            gather(table, name, sender);
        else if (!record->hasSenders.load(std::memory_order_acquire))
            look(_scope.protect(record->ofAnySender.list()));
        else if (!lookAtRecent(*record, sender))
            gather(table, name, sender);
    }

    bool isEmpty() const { return _count == 0; }
    /// Sends the notification to those that have not been removed since.
    void send(NSNotification* notification);

  private:
    // No number of removals: every registration has to be looked at.
    static constexpr std::uint64_t kUnknown = UINT64_MAX;

    void look(const ObserverList* list) {
        if (!list) return;
        _count = list->count.load(std::memory_order_acquire);
        _entries = list->entries.get();
        if (list->hasGaps.load(std::memory_order_acquire)) _seenRemovals = kUnknown;
    }
    bool lookAtRecent(NameRecord& record, Object* sender) {
        const ObserverList* list = _scope.protect(record.recent);
        if (!list || list->sender != sender || !record.ofAnySender.isEmpty()) return false;
        look(list);
        return true;
    }
    void gather(ObserverTable& table, NSString* name, Object* sender);
    void gather(NameRecord& record, Object* sender);
    void take(ObserverList* list);
    void merge();

    std::uint64_t _seenRemovals;
    ReadScope _scope;
    std::uint32_t _count = 0;
    const ObserverEntry* _entries = nullptr;
    // Of more than one list, merged.
    std::vector<ObserverEntry> _merged;
};

}  // namespace pelvor
