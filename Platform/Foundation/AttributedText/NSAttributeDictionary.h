// SPDX-License-Identifier: Apache-2.0
// NSAttributeDictionary: the attributes of text; dictionaries with equal content are one object. For
// Foundation's own sources.
#pragma once

#include "Foundation/Collections/ObjectTables.h"
#include "Foundation/NSDictionary.h"

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
    // The dictionary with that content; if there is none yet, `made`, or for null a copy of the content.
    static Retained<NSAttributeDictionary> intern(NSDictionary* content,
                                                  Retained<NSAttributeDictionary> made = nullptr);

    EntryTable _table;
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
        auto address = reinterpret_cast<std::uintptr_t>(source);
        Entry& entry = _entries[(address >> 4) * 0x9E3779B97F4A7C15u >> 59];
        if (entry.source != source || !entry.made) entry = {source, make()};
        return entry.made;
    }

  private:
    struct Entry {
        Unretained<NSDictionary> source = nullptr;
        Retained<NSAttributeDictionary> made;
    };
    Entry _entries[32];
};

}  // namespace pelvor
