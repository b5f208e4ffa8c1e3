// SPDX-License-Identifier: Apache-2.0
// ObserverTable: who is to be told what by a notification centre; for the centre's own source.
#pragma once

#include <atomic>
#include <memory>
#include <thread>
#include <unordered_map>
#include <vector>

#include "Foundation/NSNotification.h"
#include "Foundation/Strings/LiteralTable.h"

namespace pelvor {

/// A lock that is held for moments only: a thread that waits for it yields instead of sleeping.
class BriefLock {
  public:
    void lock() {
        while (_isHeld.exchange(true, std::memory_order_acquire)) std::this_thread::yield();
    }
    void unlock() { _isHeld.store(false, std::memory_order_release); }

  private:
    std::atomic<bool> _isHeld{false};
};

/// A registration. Its observer becomes null if the registration is removed while a delivery reads the list.
struct ObserverEntry {
    Unretained<Object> observer;
    SEL selector;
    std::uint64_t serial;  ///< the order of registration in the centre
};

/// Registrations in their order. While deliveries read a list, it does not change, except that observers
/// become null: a changed list takes its place, and the last of these deliveries frees the old list.
struct ObserverList {
    std::vector<ObserverEntry> entries;
    std::uint32_t deliveries = 0;  ///< that read the list now
    bool isOutdated = false;       ///< another list has taken its place
};

/// What a centre knows. Any thread. Observers and senders are not retained.
class ObserverTable {
  public:
    class Audience;

    /// Frees the table as soon as no delivery reads it: an observer may end the centre.
    void end();

    void add(Object* observer, SEL selector, NSString* name, Object* sender);
    /// A null name or sender stands for every name or sender, including registrations for any name or any
    /// sender.
    void remove(Object* observer, NSString* name, Object* sender);

  private:
    /// The lists of one name, or of any name.
    struct NameRecord {
        Retained<NSString> name;
        bool isLiteral = false;  ///< posts find the record by the literal's address, so it stays
        std::unique_ptr<ObserverList> ofAnySender;
        std::unordered_map<Unretained<Object>, std::unique_ptr<ObserverList>> bySender;

        bool isEmpty() const { return !ofAnySender && bySender.empty(); }
    };
    struct Hash {
        std::size_t operator()(NSString* name) const { return name->hash(); }
    };
    struct Equal {
        bool operator()(NSString* a, NSString* b) const { return a->isEqualToString(b); }
    };
    // What was registered for an observer.
    struct Place {
        std::uint64_t serial;
        NameRecord* record;
        Unretained<Object> sender;
    };

    ~ObserverTable() = default;

    NameRecord* ensureRecord(NSString* name);
    NameRecord* recordForPost(NSString* name);
    ObserverList* beginDelivery(NSString* name, Object* sender);
    void endDelivery(ObserverList* list);
    ObserverList* merged(ObserverList* const* lists, std::size_t count);
    ObserverList& listToChange(std::unique_ptr<ObserverList>& list);
    void removeFrom(std::unique_ptr<ObserverList>& list, std::uint64_t serial);
    std::unique_ptr<NameRecord> removePlace(const Place& place);

    BriefLock _lock;
    LiteralTable<NameRecord> _literals;
    std::unordered_map<NSString*, std::unique_ptr<NameRecord>, Hash, Equal> _records;
    NameRecord _anyName;
    std::unordered_map<Unretained<Object>, std::vector<Place>> _places;
    std::vector<std::unique_ptr<ObserverList>> _outdated;  // that deliveries still read
    std::uint64_t _lastSerial = 0;
    std::uint32_t _deliveries = 0;
    bool _hasEnded = false;
};

/// The registrations that one notification is for, as they were when this was made.
class ObserverTable::Audience {
  public:
    Audience(ObserverTable& table, NSString* name, Object* sender)
        : _table(table), _list(table.beginDelivery(name, sender)) {}
    ~Audience() {
        if (_list) _table.endDelivery(_list);
    }
    Audience(const Audience&) = delete;
    Audience& operator=(const Audience&) = delete;

    bool isEmpty() const { return !_list; }
    /// Sends the notification to the observers whose registrations have not been removed since.
    void send(NSNotification* notification);

  private:
    ObserverTable& _table;
    ObserverList* const _list;
};

}  // namespace pelvor
