// SPDX-License-Identifier: Apache-2.0
#include "Foundation/AttributedStrings/NSAttributeDictionary.h"

#include <mutex>
#include <unordered_map>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSString.h"

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

    // The dictionary of that hash that has so many living ones before it, or null.
    Retained<Object> living(std::uintptr_t hash, std::size_t before) {
        for (auto [first, end] = byHash.equal_range(hash); first != end; ++first)
            if (auto object = first->second.handle.object())
                if (before-- == 0) return object;
        return nullptr;
    }

    std::mutex mutex;  // no foreign code runs under it
    std::unordered_multimap<std::uintptr_t, Entry> byHash;
    std::uint64_t additions = 0;
};

/// The dictionary of that hash that matches; what `make` returns if there is none.
template <class Matches, class Make>
Retained<NSAttributeDictionary> NSAttributeDictionary::intern(std::uintptr_t hash, Matches matches,
                                                              Make make) {
    Interned& all = Interned::all();
    Retained<NSAttributeDictionary> made;
    std::uint64_t additions = 0;
    for (std::size_t next = 0;;) {
        Retained<Object> candidate;
        {
            std::lock_guard guard(all.mutex);
            if (additions != all.additions) next = 0;  // another thread may have added the same content
            additions = all.additions;
            candidate = all.living(hash, next++);
            if (!candidate && made) {
                made->_hash = hash;
                made->_isInterned = true;
                all.byHash.emplace(hash, Interned::Entry{made.get(), WeakHandle(made.get())});
                ++all.additions;
                return made;
            }
        }
        auto* dictionary = static_cast<NSAttributeDictionary*>(candidate.get());
        if (dictionary && matches(dictionary)) return Retained<NSAttributeDictionary>::retaining(dictionary);
        if (dictionary) continue;
        made = make();
        next = 0;
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

namespace {

bool areEqual(id first, id second) { return first == second || (first && second && first->isEqual(second)); }

}  // namespace

Retained<NSAttributeDictionary> NSAttributeDictionary::like(NSDictionary* content) {
    return intern(
        content->NSDictionary::hash(),
        [content](NSAttributeDictionary* other) { return content->isEqualToDictionary(other); },
        [content] {
            auto made = make<NSAttributeDictionary>();
            for (auto [key, value] : content) made->_table.set(value, key, "setAttributes:range:");
            return made;
        });
}

Retained<NSAttributeDictionary> NSAttributeDictionary::with(NSDictionary* content) {
    static Unretained<NSAttributeDictionary> empty = like(NSDictionary::dictionary()).leak();
    if (!content || content->count() == 0) return Retained<NSAttributeDictionary>::retaining(empty);
    if (content->isa() == classObject())
        return Retained<NSAttributeDictionary>::retaining(static_cast<NSAttributeDictionary*>(content));
    return like(content);
}

// Whether the other dictionary differs from this one in having that value, or none, for the key.
bool NSAttributeDictionary::isWithValue(NSAttributeDictionary* other, NSString* key, id value) {
    NSUInteger others = count() - (objectForKey(key) ? 1 : 0);
    if (other->count() != others + (value ? 1 : 0) || !areEqual(other->objectForKey(key), value))
        return false;
    for (auto [name, own] : detail::walk(this))
        if (!key->isEqual(name) && !areEqual(other->objectForKey(name), own)) return false;
    return true;
}

Retained<NSAttributeDictionary> NSAttributeDictionary::derived(NSString* key, id value) {
    std::lock_guard guard(Interned::all().mutex);
    if (!value || _derived.key != key || _derived.value != value) return nullptr;
    return cast<NSAttributeDictionary>(_derived.made.object());
}

void NSAttributeDictionary::rememberDerived(NSString* key, id value, NSAttributeDictionary* made) {
    for (auto [name, own] : detail::walk(made))
        if (name == key && own == value) {
            Derived derived{key, value, WeakHandle(made)};
            std::lock_guard guard(Interned::all().mutex);
            std::swap(_derived, derived);
            return;
        }
}

Retained<NSAttributeDictionary> NSAttributeDictionary::withValue(NSString* key, id value) {
    if (auto made = derived(key, value)) return made;
    id old = objectForKey(key);
    if (areEqual(old, value)) return Retained<NSAttributeDictionary>::retaining(this);
    std::uintptr_t hash = _hash;
    if (old) hash -= 1 + hashOfEntry(key, old);
    if (value) hash += 1 + hashOfEntry(key, value);
    auto made = intern(
        hash, [=, this](NSAttributeDictionary* other) { return isWithValue(other, key, value); },
        [=, this] {
            auto changed = make<NSAttributeDictionary>();
            changed->_table.copyFrom(_table);
            if (value)
                changed->_table.set(value, key, "addAttribute:value:range:");
            else
                changed->_table.remove(key);
            return changed;
        });
    rememberDerived(key, value, made);
    return made;
}

Retained<NSAttributeDictionary> NSAttributeDictionary::withEntries(NSDictionary* other) {
    auto changed = mutableCopy();
    changed->addEntriesFromDictionary(other);
    return with(changed);
}

}  // namespace pelvor
