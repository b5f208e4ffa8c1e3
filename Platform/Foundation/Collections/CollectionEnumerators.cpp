// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Collections/CollectionEnumerators.h"
#include "Foundation/FoundationLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSArrayEnumerator, foundationLibrary) {}
PELVOR_DEFINE_CLASS(NSSetEnumerator, foundationLibrary) {}
PELVOR_DEFINE_CLASS(NSDictionaryEnumerator, foundationLibrary) {}

Retained<NSArrayEnumerator> NSArrayEnumerator::create(NSArray* array, Direction direction) {
    auto enumerator = make<NSArrayEnumerator>();
    enumerator->_array.set(array);
    enumerator->_watch = detail::MutationWatch(array->mutationCounter());
    enumerator->_count = array->count();
    enumerator->_index = direction == Direction::forward ? 0 : enumerator->_count;
    enumerator->_direction = direction;
    return enumerator;
}

id NSArrayEnumerator::nextObject() {
    if (!_array) return nullptr;
    _watch.check(_array);
    if (_direction == Direction::forward && _index < _count) return _array->objectAtIndex(_index++);
    if (_direction == Direction::backward && _index > 0) return _array->objectAtIndex(--_index);
    _array = nullptr;
    return nullptr;
}

Retained<NSSetEnumerator> NSSetEnumerator::create(NSSet* set) {
    auto enumerator = make<NSSetEnumerator>();
    enumerator->_set.set(set);
    enumerator->_watch = detail::MutationWatch(set->mutationCounter());
    return enumerator;
}

id NSSetEnumerator::nextObject() {
    if (!_set) return nullptr;
    _watch.check(_set);
    id object = _set->stepFrom(_position);
    if (!object) _set = nullptr;
    return object;
}

Retained<NSDictionaryEnumerator> NSDictionaryEnumerator::create(NSDictionary* dictionary, Part part) {
    auto enumerator = make<NSDictionaryEnumerator>();
    enumerator->_dictionary.set(dictionary);
    enumerator->_watch = detail::MutationWatch(dictionary->mutationCounter());
    enumerator->_part = part;
    return enumerator;
}

id NSDictionaryEnumerator::nextObject() {
    if (!_dictionary) return nullptr;
    _watch.check(_dictionary);
    NSDictionaryEntry entry = _dictionary->stepFrom(_position);
    if (!entry.key) {
        _dictionary = nullptr;
        return nullptr;
    }
    return _part == Part::key ? entry.key : entry.value;
}

}  // namespace pelvor
