// SPDX-License-Identifier: Apache-2.0
// NSEnumerator: hands out the objects of a collection one after the other.
#pragma once

#include <cstdint>
#include <iterator>

#include "Foundation/NSRange.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSArray;

/// A walk over objects. An enumerator goes through its objects once; a second walk needs another enumerator.
///
///     NSEnumerator* enumerator = names->objectEnumerator();
///     while (id name = enumerator->nextObject()) NSLog(u"%@"_ns, name);
///     for (id name : names->reverseObjectEnumerator()) NSLog(u"%@"_ns, name);
///
/// The class is abstract: a subclass implements `nextObject`. The enumerator of a collection keeps the
/// collection alive until the walk has ended. It raises NSGenericException if objects of the collection came,
/// went or moved after the enumerator was made; putting an object in the place of another one is no such
/// change.
class PELVOR_EXPORT NSEnumerator : public NSObject {
    PELVOR_CLASS(NSEnumerator, NSObject);

  public:
    /// The next object, borrowed. Null when there are no more objects, and in every call after that.
    virtual id nextObject() = 0;
    /// The objects that are still to come.
    NSArray* allObjects();

  protected:
    NSEnumerator() = default;
    ~NSEnumerator() = default;
};

/// Raises NSGenericException: `collection` was changed in the middle of a walk over it.
[[noreturn]] PELVOR_EXPORT void raiseMutatedWhileEnumerated(Object* collection);

namespace detail {

// Watches the number that a collection changes together with its contents.
class MutationWatch {
  public:
    MutationWatch() = default;
    explicit MutationWatch(const std::uint32_t* counter) : _counter(counter), _expected(*counter) {}
    void check(Object* collection) const {
        if (*_counter != _expected) [[unlikely]]
            raiseMutatedWhileEnumerated(collection);
    }

  private:
    const std::uint32_t* _counter = nullptr;
    std::uint32_t _expected = 0;
};

// The counter of collections that never change.
inline constexpr std::uint32_t kNeverMutated = 0;

// A cursor is a place in a walk over a collection that somebody else keeps alive; this iterator is a cursor
// that keeps the collection alive itself.
template <class Cursor, class Collection>
class KeepingIterator {
  public:
    using value_type = typename Cursor::value_type;
    using difference_type = std::ptrdiff_t;

    explicit KeepingIterator(Collection* collection)
        : _kept(Retained<Collection>::retaining(collection)), _cursor(collection) {}
    value_type operator*() const { return *_cursor; }
    KeepingIterator& operator++() {
        ++_cursor;
        return *this;
    }
    void operator++(int) { ++_cursor; }
    bool operator==(std::default_sentinel_t sentinel) const { return _cursor == sentinel; }

  private:
    Retained<Collection> _kept;
    Cursor _cursor;
};

// For a collection's own loops over itself, which need not keep the collection alive.
template <class Cursor, class Collection>
struct BorrowedWalk {
    Collection* collection;
    Cursor begin() const { return Cursor(collection); }
    std::default_sentinel_t end() const { return {}; }
};

}  // namespace detail

/// The place of a range-for loop in an enumerator.
class NSEnumeratorIterator {
  public:
    using value_type = id;
    using difference_type = std::ptrdiff_t;

    explicit NSEnumeratorIterator(NSEnumerator* enumerator)
        : _enumerator(Retained<NSEnumerator>::retaining(enumerator)),
          _object(enumerator ? enumerator->nextObject() : nullptr) {}
    id operator*() const { return _object; }
    NSEnumeratorIterator& operator++() {
        _object = _enumerator->nextObject();
        return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(std::default_sentinel_t) const { return !_object; }

  private:
    Retained<NSEnumerator> _enumerator;
    Unretained<Object> _object;
};

inline NSEnumeratorIterator begin(NSEnumerator* enumerator) { return NSEnumeratorIterator(enumerator); }
inline std::default_sentinel_t end(NSEnumerator*) { return {}; }

}  // namespace pelvor
