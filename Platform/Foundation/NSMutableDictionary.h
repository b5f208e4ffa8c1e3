// SPDX-License-Identifier: Apache-2.0
// NSMutableDictionary: a dictionary that can be changed.
#pragma once

#include "Foundation/NSDictionary.h"

namespace pelvor {

/// A dictionary that can be changed.
///
///     auto ages = NSMutableDictionary::init();
///     ages->setObject_forKey(NSNumber::numberWithInt(7), u"Anna"_ns);
///     ages->removeObjectForKey(u"Berta"_ns);
///
/// The class is abstract: a subclass implements NSDictionary's primitives and the three operations under
/// "Primitives" below. An operation that raises changes nothing. Keys and objects that an operation removes
/// are released only when they are out of the dictionary, so their destructors may use and change the
/// dictionary. One thread at a time.
class PELVOR_EXPORT NSMutableDictionary : public NSDictionary {
    PELVOR_CLASS(NSMutableDictionary, NSDictionary);
    PELVOR_CREATORS(dictionary, dictionaryWithCapacity, dictionaryWithObject_forKey,
                    dictionaryWithObjects_forKeys, dictionaryWithObjects_forKeys_count,
                    dictionaryWithDictionary, init, initWithCapacity, initWithObjects_forKeys,
                    initWithObjects_forKeys_count, initWithDictionary, of, initWithEntries);

  public:
    // Creation, as in NSDictionary. The results can be changed.

    static NSMutableDictionary* dictionary();
    static NSMutableDictionary* dictionaryWithCapacity(NSUInteger capacity);
    static NSMutableDictionary* dictionaryWithObject_forKey(id object, id key);
    static NSMutableDictionary* dictionaryWithObjects_forKeys(NSArray* objects, NSArray* keys);
    static NSMutableDictionary* dictionaryWithObjects_forKeys_count(Object* const* objects,
                                                                    Object* const* keys, NSUInteger count);
    static NSMutableDictionary* dictionaryWithDictionary(NSDictionary* dictionary);

    static Retained<NSMutableDictionary> init();
    static Retained<NSMutableDictionary> initWithCapacity(NSUInteger capacity);
    static Retained<NSMutableDictionary> initWithObjects_forKeys(NSArray* objects, NSArray* keys);
    static Retained<NSMutableDictionary> initWithObjects_forKeys_count(Object* const* objects,
                                                                       Object* const* keys, NSUInteger count);
    static Retained<NSMutableDictionary> initWithDictionary(NSDictionary* dictionary);

    // C++ only
    static NSMutableDictionary* of(std::initializer_list<NSDictionaryEntry> entries);
    static Retained<NSMutableDictionary> initWithEntries(std::initializer_list<NSDictionaryEntry> entries);

    // Primitives

    /// Adds an entry with a copy of the key, and retains the object. If the key has an entry already, this
    /// entry gets the new object and keeps its key and its place in the order of the entries. Raises
    /// NSInvalidArgumentException for a null object or key, and for a key that cannot be copied.
    virtual void setObject_forKey(id object, id key) = 0;
    /// Does nothing if the key has no entry, and for a null key.
    virtual void removeObjectForKey(id key) = 0;
    virtual void removeAllObjects() = 0;

    /// Like `setObject_forKey`, but a null value removes the key's entry.
    virtual void setValue_forKey(id value, NSString* key);
    void removeObjectsForKeys(NSArray* keys);
    /// Adds the entries of `other`, as by `setObject_forKey`; null counts as empty.
    void addEntriesFromDictionary(NSDictionary* other);
    /// Replaces all entries by those of `other`.
    void setDictionary(NSDictionary* other);

  protected:
    NSMutableDictionary() = default;
    ~NSMutableDictionary() = default;
};

}  // namespace pelvor
