// SPDX-License-Identifier: Apache-2.0
// The enumerators of arrays, sets and dictionaries; for Foundation's own sources.
#pragma once

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSSet.h"

namespace pelvor {

class NSArrayEnumerator final : public NSEnumerator {
    PELVOR_CLASS(NSArrayEnumerator, NSEnumerator);

  public:
    enum class Direction : bool { forward, backward };
    /// An owned enumerator.
    static Retained<NSArrayEnumerator> create(NSArray* array, Direction direction);
    id nextObject() override;

  private:
    Retained<NSArray> _array;  // null when the walk has ended
    detail::MutationWatch _watch;
    NSUInteger _index = 0;  // of the next object going forward, after it going backward
    NSUInteger _count = 0;
    Direction _direction = Direction::forward;
};

class NSSetEnumerator final : public NSEnumerator {
    PELVOR_CLASS(NSSetEnumerator, NSEnumerator);

  public:
    static Retained<NSSetEnumerator> create(NSSet* set);
    id nextObject() override;

  private:
    Retained<NSSet> _set;  // null when the walk has ended
    detail::MutationWatch _watch;
    NSUInteger _position = 0;
};

class NSDictionaryEnumerator final : public NSEnumerator {
    PELVOR_CLASS(NSDictionaryEnumerator, NSEnumerator);

  public:
    enum class Part : bool { key, value };
    static Retained<NSDictionaryEnumerator> create(NSDictionary* dictionary, Part part);
    id nextObject() override;

  private:
    Retained<NSDictionary> _dictionary;  // null when the walk has ended
    detail::MutationWatch _watch;
    NSUInteger _position = 0;
    Part _part = Part::key;
};

}  // namespace pelvor
