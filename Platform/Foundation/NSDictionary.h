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
    Unretained<Object> key;
    Unretained<Object> value;
};

/// An immutable map from keys to objects. Keys are copied, objects are retained.
///
///     NSDictionary* ages = NSDictionary::of({{u"Anna"_ns, NSNumber::numberWithInt(7)}});
///     id age = ages->objectForKey(u"Anna"_ns);                        // 7
///     for (auto [name, age] : ages) NSLog(u"%@ is %@"_ns, name, age);
///
/// Keys are told apart by `hash` and `isEqual`: a look-up sends `isEqual` to the key that is looked up, with
/// the key of an entry as the argument. Walks go in the order in which the keys were added. Immutable
/// dictionaries may be used on any thread as far as their keys and objects may. The class is abstract: a
/// subclass implements `count`, `objectForKey` and `stepFrom` and hides the creators, which return objects of
/// private classes; NSArray.h has an example.
class PELVOR_EXPORT NSDictionary : public NSObject {
    PELVOR_CLASS(NSDictionary, NSObject);
    PELVOR_CREATORS(dictionary, dictionaryWithObject_forKey, dictionaryWithObjects_forKeys,
                    dictionaryWithObjects_forKeys_count, dictionaryWithDictionary, init,
                    initWithObjects_forKeys, initWithObjects_forKeys_count, initWithDictionary, of,
                    initWithEntries);

  public:
    // Creation. Operations whose names begin with "init" return owned dictionaries, the others borrowed ones.
    // If keys are equal, the last one and its object count. The operations raise NSInvalidArgumentException
    // for a null key or object, for a key that cannot be copied, and if there are more keys than objects or
    // more objects than keys.

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
    /// Null if the key has no entry, and for a null key.
    virtual id objectForKey(id key) = 0;

    // C++ only
    /// Returns the entry at or after `position`, and moves `position` behind this entry. At the end of the
    /// walk, key and value of the entry are null. A walk begins at position 0.
    virtual NSDictionaryEntry stepFrom(NSUInteger& position) = 0;
    /// The address of a number that changes when keys come or go; by this number walks notice changes.
    virtual const std::uint32_t* mutationCounter() { return &detail::kNeverMutated; }

    /// Returns what `objectForKey` returns.
    virtual id valueForKey(NSString* key);
    NSArray* allKeys();
    NSArray* allValues();
    NSArray* allKeysForObject(id object);
    /// For each key the object of its entry, or `marker` if the key has no entry. Raises
    /// NSInvalidArgumentException if a key has no entry and the marker is null.
    NSArray* objectsForKeys_notFoundMarker(NSArray* keys, id marker);
    NSEnumerator* keyEnumerator();
    NSEnumerator* objectEnumerator();
    /// The keys in ascending order of their objects. The message is sent to an object with another object as
    /// the argument, and returns an NSComparisonResult.
    NSArray* keysSortedByValueUsingSelector(SEL comparator);
    bool isEqualToDictionary(NSDictionary* other);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// The text of the dictionary as an old-style property list.
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;
    Retained<NSDictionary> copy() { return cast<NSDictionary>(copyWithZone(nullptr)); }
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
    Unretained<NSDictionary> _dictionary;
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
