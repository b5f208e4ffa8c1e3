// SPDX-License-Identifier: Apache-2.0
// NSDictionary: an immutable map from keys to objects.
#pragma once

#include <initializer_list>

#include "Foundation/NSEnumerator.h"

namespace pelvor {

class NSArray;
class NSMutableDictionary;
class NSString;

/// A key and its object, both borrowed.
struct NSDictionaryEntry {
    id key;
    id value;
};

/// Objects found by keys, which are told apart by `hash` and `isEqual`. Keys are copied, objects are
/// retained. A look-up asks `isEqual` of the key that is looked for, with the entry's. Walks go in the
/// order in which the keys came. Abstract over `count`, `objectForKey` and `stepFrom`; the creators
/// answer objects of concrete classes.
///
///     NSDictionary* ages = NSDictionary::of({{u"Anna"_ns, NSNumber::numberWithInt(7)}});
///     for (auto [name, age] : ages) …
///
/// Immutable dictionaries may be used on any thread as far as their objects may.
class PELVOR_EXPORT NSDictionary : public NSObject {
    PELVOR_CLASS(NSDictionary, NSObject);
    PELVOR_CREATORS(dictionary, dictionaryWithObject_forKey, dictionaryWithObjects_forKeys,
                    dictionaryWithObjects_forKeys_count, dictionaryWithDictionary, init,
                    initWithObjects_forKeys, initWithObjects_forKeys_count, initWithDictionary, of,
                    initWithEntries);

  public:
    // Creation. Operations whose names begin with "init" answer owned dictionaries, the others borrowed
    // ones. Of equal keys the last counts. They raise NSInvalidArgumentException for a key or object that
    // is none, for a key that cannot be copied, and for keys and objects of different number.

    static NSDictionary* dictionary();
    static NSDictionary* dictionaryWithObject_forKey(id object, id key);
    static NSDictionary* dictionaryWithObjects_forKeys(NSArray* objects, NSArray* keys);
    static NSDictionary* dictionaryWithObjects_forKeys_count(Object* const* objects, Object* const* keys,
                                                             NSUInteger count);
    static NSDictionary* dictionaryWithDictionary(NSDictionary* dictionary);

    static Retained<NSDictionary> init();
    static Retained<NSDictionary> initWithObjects_forKeys(NSArray* objects, NSArray* keys);
    static Retained<NSDictionary> initWithObjects_forKeys_count(Object* const* objects, Object* const* keys,
                                                                NSUInteger count);
    static Retained<NSDictionary> initWithDictionary(NSDictionary* dictionary);

    // C++ only
    static NSDictionary* of(std::initializer_list<NSDictionaryEntry> entries);
    static Retained<NSDictionary> initWithEntries(std::initializer_list<NSDictionaryEntry> entries);

    // Primitives

    virtual NSUInteger count() = 0;
    /// None where there is no entry, and for no key.
    virtual id objectForKey(id key) = 0;

    // C++ only
    /// The entry at or after `position`, which moves behind it; no key at the end. A walk begins at 0.
    virtual NSDictionaryEntry stepFrom(NSUInteger& position) = 0;
    /// A number that changes when keys come or go; by it, walks notice changes.
    virtual const std::uint32_t* mutationCounter() { return &detail::kNeverMutated; }

    /// The same as `objectForKey`.
    virtual id valueForKey(NSString* key);
    NSArray* allKeys();
    NSArray* allValues();
    NSArray* allKeysForObject(id object);
    /// One object a key; the marker where there is no entry.
    NSArray* objectsForKeys_notFoundMarker(NSArray* keys, id marker);
    NSEnumerator* keyEnumerator();
    NSEnumerator* objectEnumerator();
    /// The keys in ascending order of their objects. The message takes an object and answers an
    /// NSComparisonResult.
    NSArray* keysSortedByValueUsingSelector(SEL comparator);
    bool isEqualToDictionary(NSDictionary* other);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// The text of the dictionary as an old-style property list.
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;
    Retained<NSDictionary> copy() {
        return Retained<NSDictionary>::adopting(static_cast<NSDictionary*>(copyWithZone(nullptr).leak()));
    }
    Retained<NSMutableDictionary> mutableCopy();

  protected:
    NSDictionary() = default;
    ~NSDictionary() = default;
};

namespace detail {

class DictionaryCursor {
  public:
    using value_type = NSDictionaryEntry;

    explicit DictionaryCursor(NSDictionary* dictionary) : _dictionary(dictionary) {
        if (!dictionary) return;
        _watch = MutationWatch(dictionary->mutationCounter());
        _entry = dictionary->stepFrom(_position);
    }
    NSDictionaryEntry operator*() const { return _entry; }
    DictionaryCursor& operator++() {
        _watch.check(_dictionary);
        _entry = _dictionary->stepFrom(_position);
        return *this;
    }
    bool operator==(std::default_sentinel_t) const { return !_entry.key; }

  private:
    NSDictionary* _dictionary;
    MutationWatch _watch;
    NSUInteger _position = 0;
    NSDictionaryEntry _entry{nullptr, nullptr};
};

inline BorrowedWalk<DictionaryCursor, NSDictionary> walk(NSDictionary* dictionary) { return {dictionary}; }

}  // namespace detail

/// The place of a range-for loop in a dictionary. Raises NSGenericException when keys came or went.
using NSDictionaryIterator = detail::KeepingIterator<detail::DictionaryCursor, NSDictionary>;

inline NSDictionaryIterator begin(NSDictionary* dictionary) { return NSDictionaryIterator(dictionary); }
inline std::default_sentinel_t end(NSDictionary*) { return {}; }

}  // namespace pelvor
