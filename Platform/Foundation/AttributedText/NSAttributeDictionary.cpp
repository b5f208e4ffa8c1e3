// SPDX-License-Identifier: Apache-2.0
#include "Foundation/AttributedText/NSAttributeDictionary.h"

#include <mutex>
#include <unordered_map>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSAttributeDictionary, foundationLibrary) {}

/// All dictionaries, by their hash. Handles tell those that end, on whatever thread, from living ones.
struct NSAttributeDictionary::Interned {
    struct Entry {
        Unretained<NSAttributeDictionary> dictionary;
        WeakHandle handle;
    };

    // Never destroyed: dictionaries end at any time.
    static Interned& all() {
        static Interned& interned = *new Interned;
        return interned;
    }

    std::mutex mutex;  // no foreign code runs under it
    std::unordered_multimap<std::uintptr_t, Entry> byHash;
    std::uint64_t additions = 0;
};

Retained<NSAttributeDictionary> NSAttributeDictionary::intern(Retained<NSAttributeDictionary> candidate) {
    Interned& all = Interned::all();
    candidate->_hash = candidate->NSDictionary::hash();
    for (;;) {
        std::vector<Retained<Object>> similar;
        std::uint64_t additions;
        {
            std::lock_guard guard(all.mutex);
            additions = all.additions;
            auto [first, end] = all.byHash.equal_range(candidate->_hash);
            for (; first != end; ++first)
                if (auto object = first->second.handle.object()) similar.push_back(std::move(object));
        }
        for (const Retained<Object>& object : similar)
            if (candidate->isEqualToDictionary(cast<NSDictionary>(object.get())))
                return Retained<NSAttributeDictionary>::retaining(static_cast<NSAttributeDictionary*>(object.get()));
        std::lock_guard guard(all.mutex);
        if (additions != all.additions) continue;  // another thread may have added the same content
        ++all.additions;
        all.byHash.emplace(candidate->_hash, Interned::Entry{candidate.get(), WeakHandle(candidate.get())});
        candidate->_isInterned = true;
        return candidate;
    }
}

NSAttributeDictionary::~NSAttributeDictionary() {
    if (!_isInterned) return;
    Interned& all = Interned::all();
    std::lock_guard guard(all.mutex);
    auto [first, end] = all.byHash.equal_range(_hash);
    while (first != end && first->second.dictionary != this) ++first;
    if (first != end) all.byHash.erase(first);
}

Retained<NSAttributeDictionary> NSAttributeDictionary::with(NSDictionary* content) {
    static Unretained<NSAttributeDictionary> empty = intern(make<NSAttributeDictionary>()).leak();
    if (!content || content->count() == 0) return Retained<NSAttributeDictionary>::retaining(empty);
    if (content->isa() == classObject())
        return Retained<NSAttributeDictionary>::retaining(static_cast<NSAttributeDictionary*>(content));
    return empty->withEntries(content);
}

Retained<NSAttributeDictionary> NSAttributeDictionary::withValue(NSString* key, id value) {
    id old = objectForKey(key);
    if (old == value || (old && value && value->isEqual(old))) return Retained<NSAttributeDictionary>::retaining(this);
    auto changed = make<NSAttributeDictionary>();
    changed->_table.copyFrom(_table);
    if (value)
        changed->_table.set(value, key, "addAttribute:value:range:");
    else
        changed->_table.remove(key);
    return intern(std::move(changed));
}

Retained<NSAttributeDictionary> NSAttributeDictionary::withEntries(NSDictionary* other) {
    auto changed = make<NSAttributeDictionary>();
    changed->_table.copyFrom(_table);
    for (auto [key, value] : other) changed->_table.set(value, key, "addAttributes:range:");
    return intern(std::move(changed));
}

}  // namespace pelvor
