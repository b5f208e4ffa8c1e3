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

Retained<NSAttributeDictionary> NSAttributeDictionary::intern(NSDictionary* content,
                                                              Retained<NSAttributeDictionary> made) {
    Interned& all = Interned::all();
    std::uintptr_t hash = content->NSDictionary::hash();
    for (;;) {
        std::vector<Retained<Object>> similar;
        std::uint64_t additions;
        {
            std::lock_guard guard(all.mutex);
            additions = all.additions;
            auto [first, end] = all.byHash.equal_range(hash);
            for (; first != end; ++first)
                if (auto object = first->second.handle.object()) similar.push_back(std::move(object));
        }
        for (const Retained<Object>& object : similar) {
            auto* dictionary = static_cast<NSAttributeDictionary*>(object.get());
            if (content->isEqualToDictionary(dictionary))
                return Retained<NSAttributeDictionary>::retaining(dictionary);
        }
        if (!made) {
            made = make<NSAttributeDictionary>();
            for (auto [key, value] : content) made->_table.set(value, key, "setAttributes:range:");
        }
        std::lock_guard guard(all.mutex);
        if (additions != all.additions) continue;  // another thread may have added the same content
        ++all.additions;
        all.byHash.emplace(hash, Interned::Entry{made.get(), WeakHandle(made.get())});
        made->_hash = hash;
        made->_isInterned = true;
        return made;
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
    static Unretained<NSAttributeDictionary> empty = intern(NSDictionary::dictionary()).leak();
    if (!content || content->count() == 0) return Retained<NSAttributeDictionary>::retaining(empty);
    if (content->isa() == classObject())
        return Retained<NSAttributeDictionary>::retaining(static_cast<NSAttributeDictionary*>(content));
    return intern(content);
}

Retained<NSAttributeDictionary> NSAttributeDictionary::withValue(NSString* key, id value) {
    id old = objectForKey(key);
    if (old == value || (old && value && value->isEqual(old)))
        return Retained<NSAttributeDictionary>::retaining(this);
    auto changed = make<NSAttributeDictionary>();
    changed->_table.copyFrom(_table);
    if (value)
        changed->_table.set(value, key, "addAttribute:value:range:");
    else
        changed->_table.remove(key);
    return intern(changed, changed);
}

Retained<NSAttributeDictionary> NSAttributeDictionary::withEntries(NSDictionary* other) {
    auto changed = make<NSAttributeDictionary>();
    changed->_table.copyFrom(_table);
    for (auto [key, value] : other) changed->_table.set(value, key, "addAttributes:range:");
    return intern(changed, changed);
}

}  // namespace pelvor
