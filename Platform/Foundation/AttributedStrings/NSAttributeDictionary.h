// SPDX-License-Identifier: Apache-2.0
// NSAttributeDictionary: the attributes of text; dictionaries with equal content are one object. For
// Foundation's own sources.
#pragma once

#include "Foundation/Collections/ObjectTables.h"
#include "Foundation/NSDictionary.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

/// An immutable dictionary that runs of attributed strings own. A table of all such dictionaries finds the
/// one with a given content; the table does not keep them, and a dictionary that ends leaves it. Any thread.
/// The values must not change in what they are equal to while they are attributes.
class NSAttributeDictionary final : public NSDictionary {
    PELVOR_CLASS(NSAttributeDictionary, NSDictionary);

  public:
    /// The one dictionary with that content; null stands for an empty one.
    static Retained<NSAttributeDictionary> with(NSDictionary* content);
    /// With another value for the key; null removes the key.
    Retained<NSAttributeDictionary> withValue(NSString* key, id value);
    /// With all entries of the other dictionary, whose values win.
    Retained<NSAttributeDictionary> withEntries(NSDictionary* other);

    NSUInteger count() override { return _table.count(); }
    id objectForKey(id key) override { return _table.objectForKey(key); }
    NSDictionaryEntry stepFrom(NSUInteger& position) override { return _table.stepFrom(position); }
    std::uintptr_t hash() override { return _hash; }
    Retained<Object> copyWithZone(void*) override { return Retained<Object>::retaining(this); }

  protected:
    NSAttributeDictionary() = default;
    ~NSAttributeDictionary();

  private:
    struct Interned;
    template <class Matches, class Make>
    static Retained<NSAttributeDictionary> intern(std::uintptr_t hash, Matches matches, Make make);
    static Retained<NSAttributeDictionary> like(NSDictionary* content);
    bool isWithValue(NSAttributeDictionary* other, NSString* key, id value);
    Retained<NSAttributeDictionary> derived(NSString* key, id value);
    void rememberDerived(NSString* key, id value, NSAttributeDictionary* made);

    // What `withValue` returned last. As long as that lives, it holds the key and the value.
    struct Derived {
        Unretained<NSString> key = nullptr;
        Unretained<Object> value = nullptr;
        WeakHandle made;
    };

    EntryTable _table;
    Derived _derived;
    std::uintptr_t _hash = 0;
    bool _isInterned = false;
};

/// What an operation makes of the dictionaries that it meets, for as long as it runs: neighbouring runs have
/// few different ones.
class AttributeMemo {
  public:
    /// The dictionary that `make` returned, or now returns, for the source. The source must not end before
    /// the memo.
    template <class Make>
    const Retained<NSAttributeDictionary>& made(NSDictionary* source, Make make) {
        std::size_t home = (reinterpret_cast<std::uintptr_t>(source) >> 4) * 0x9E3779B97F4A7C15u >> 58;
        for (std::size_t i = 0; i < kWays; ++i) {
            Entry& entry = _entries[(home + i) % kSize];
            if (entry.made && entry.source == source) return entry.made;
            if (!entry.made) return (entry = {source, make()}).made;
        }
        return (_entries[home] = {source, make()}).made;
    }

  private:
    struct Entry {
        Unretained<NSDictionary> source = nullptr;
        Retained<NSAttributeDictionary> made;
    };
    static constexpr std::size_t kSize = 64, kWays = 4;
    Entry _entries[kSize];
};

}  // namespace pelvor
