// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSIndexSet.h"

#include <algorithm>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableIndexSet.h"
#include "Foundation/NSString.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSIndexSet, foundationLibrary) {
    methods.creator<"indexSet", &NSIndexSet::indexSet>();
    methods.creator<"indexSetWithIndex:", &NSIndexSet::indexSetWithIndex>();
    methods.creator<"indexSetWithIndexesInRange:", &NSIndexSet::indexSetWithIndexesInRange>();
    methods.creator<"init", &NSIndexSet::init>();
    methods.creator<"initWithIndex:", &NSIndexSet::initWithIndex>();
    methods.creator<"initWithIndexesInRange:", &NSIndexSet::initWithIndexesInRange>();
    methods.creator<"initWithIndexSet:", &NSIndexSet::initWithIndexSet>();
    methods.instance<"count", &NSIndexSet::count>();
    methods.instance<"firstIndex", &NSIndexSet::firstIndex>();
    methods.instance<"lastIndex", &NSIndexSet::lastIndex>();
    methods.instance<"indexGreaterThanIndex:", &NSIndexSet::indexGreaterThanIndex>();
    methods.instance<"indexGreaterThanOrEqualToIndex:", &NSIndexSet::indexGreaterThanOrEqualToIndex>();
    methods.instance<"indexLessThanIndex:", &NSIndexSet::indexLessThanIndex>();
    methods.instance<"indexLessThanOrEqualToIndex:", &NSIndexSet::indexLessThanOrEqualToIndex>();
    methods.instance<"containsIndex:", &NSIndexSet::containsIndex>();
    methods.instance<"containsIndexesInRange:", &NSIndexSet::containsIndexesInRange>();
    methods.instance<"containsIndexes:", &NSIndexSet::containsIndexes>();
    methods.instance<"intersectsIndexesInRange:", &NSIndexSet::intersectsIndexesInRange>();
    methods.instance<"isEqualToIndexSet:", &NSIndexSet::isEqualToIndexSet>();
}

// MARK: Creation

NSIndexSet* NSIndexSet::indexSet(Class* cls) { return init(cls).autorelease(); }

NSIndexSet* NSIndexSet::indexSetWithIndex(NSUInteger index, Class* cls) {
    requireIndex(index, NSNotFound, "indexSetWithIndex:");
    return initWithIndex(index, cls).autorelease();
}

NSIndexSet* NSIndexSet::indexSetWithIndexesInRange(NSRange range, Class* cls) {
    requireRange(range, NSNotFound, "indexSetWithIndexesInRange:");
    return initWithIndexesInRange(range, cls).autorelease();
}

Retained<NSIndexSet> NSIndexSet::init(Class* cls) { return make<NSIndexSet>(cls); }

Retained<NSIndexSet> NSIndexSet::initWithIndex(NSUInteger index, Class* cls) {
    requireIndex(index, NSNotFound, "initWithIndex:");
    return initWithIndexesInRange({index, 1}, cls);
}

Retained<NSIndexSet> NSIndexSet::initWithIndexesInRange(NSRange range, Class* cls) {
    requireRange(range, NSNotFound, "initWithIndexesInRange:");
    auto set = make<NSIndexSet>(cls);
    set->add(range);
    return set;
}

Retained<NSIndexSet> NSIndexSet::initWithIndexSet(NSIndexSet* other, Class* cls) {
    auto set = make<NSIndexSet>(cls);
    if (other) set->_runs = other->_runs;
    return set;
}

// MARK: Runs

std::size_t NSIndexSet::firstRunEndingAfter(NSUInteger index) {
    auto run = std::partition_point(_runs.begin(), _runs.end(),
                                    [index](NSRange r) { return NSMaxRange(r) <= index; });
    return static_cast<std::size_t>(run - _runs.begin());
}

// The range absorbs all runs that it overlaps or touches.
void NSIndexSet::add(NSRange range) {
    if (range.length == 0) return;
    if (_runs.empty() || NSMaxRange(_runs.back()) < range.location) return _runs.push_back(range);
    std::size_t first = range.location ? firstRunEndingAfter(range.location - 1) : 0;
    std::size_t end = first;
    NSUInteger limit = NSMaxRange(range);
    for (; end < _runs.size() && _runs[end].location <= limit; ++end) range = NSUnionRange(range, _runs[end]);
    auto place = _runs.begin() + static_cast<std::ptrdiff_t>(first);
    if (first == end) {
        _runs.insert(place, range);
    } else {
        *place = range;
        _runs.erase(place + 1, _runs.begin() + static_cast<std::ptrdiff_t>(end));
    }
}

void NSIndexSet::remove(NSRange range) {
    if (range.location >= NSNotFound || range.length == 0) return;
    range.length = std::min(range.length, NSNotFound - range.location);
    std::size_t first = firstRunEndingAfter(range.location), end = first;
    NSUInteger limit = NSMaxRange(range);
    std::vector<NSRange> left;
    for (; end < _runs.size() && _runs[end].location < limit; ++end) {
        NSRange run = _runs[end];
        if (run.location < range.location) left.push_back({run.location, range.location - run.location});
        if (NSMaxRange(run) > limit) left.push_back({limit, NSMaxRange(run) - limit});
    }
    auto place = _runs.begin() + static_cast<std::ptrdiff_t>(first);
    place = _runs.erase(place, _runs.begin() + static_cast<std::ptrdiff_t>(end));
    _runs.insert(place, left.begin(), left.end());
}

// MARK: Members

NSUInteger NSIndexSet::count() {
    NSUInteger count = 0;
    for (NSRange run : _runs) count += run.length;
    return count;
}

NSUInteger NSIndexSet::firstIndex() { return _runs.empty() ? NSNotFound : _runs.front().location; }

NSUInteger NSIndexSet::lastIndex() { return _runs.empty() ? NSNotFound : NSMaxRange(_runs.back()) - 1; }

NSUInteger NSIndexSet::indexGreaterThanIndex(NSUInteger index) {
    return index >= NSNotFound ? NSNotFound : indexGreaterThanOrEqualToIndex(index + 1);
}

NSUInteger NSIndexSet::indexGreaterThanOrEqualToIndex(NSUInteger index) {
    std::size_t run = firstRunEndingAfter(index);
    return run == _runs.size() ? NSNotFound : std::max(index, _runs[run].location);
}

NSUInteger NSIndexSet::indexLessThanIndex(NSUInteger index) {
    return index == 0 ? NSNotFound : indexLessThanOrEqualToIndex(index - 1);
}

NSUInteger NSIndexSet::indexLessThanOrEqualToIndex(NSUInteger index) {
    std::size_t run = firstRunEndingAfter(index);
    if (run < _runs.size() && _runs[run].location <= index) return index;
    return run == 0 ? NSNotFound : NSMaxRange(_runs[run - 1]) - 1;
}

bool NSIndexSet::containsIndex(NSUInteger index) { return containsIndexesInRange({index, 1}); }

bool NSIndexSet::containsIndexesInRange(NSRange range) {
    std::size_t run = firstRunEndingAfter(range.location);
    if (range.length == 0 || run == _runs.size() || _runs[run].location > range.location) return false;
    return range.length <= NSMaxRange(_runs[run]) - range.location;
}

bool NSIndexSet::containsIndexes(NSIndexSet* other) {
    return !other || std::all_of(other->_runs.begin(), other->_runs.end(),
                                 [this](NSRange run) { return containsIndexesInRange(run); });
}

bool NSIndexSet::intersectsIndexesInRange(NSRange range) {
    std::size_t run = firstRunEndingAfter(range.location);
    if (range.length == 0 || run == _runs.size()) return false;
    return _runs[run].location <= range.location || _runs[run].location - range.location < range.length;
}

bool NSIndexSet::isEqualToIndexSet(NSIndexSet* other) { return other && _runs == other->_runs; }

// MARK: Everything else

bool NSIndexSet::isEqual(id other) { return isEqualToIndexSet(cast<NSIndexSet>(other)); }

std::uintptr_t NSIndexSet::hash() {
    return _runs.empty() ? 0 : (_runs.size() * 31 + firstIndex()) * 31 + lastIndex();
}

NSString* NSIndexSet::description() {
    std::string members;
    for (NSRange run : _runs) {
        members += (members.empty() ? "" : " ") + std::to_string(run.location);
        if (run.length > 1) members += "-" + std::to_string(NSMaxRange(run) - 1);
    }
    return NSString::stringWithFormat(u"%@(%s)"_ns, Object::description(), members.c_str());
}

Retained<Object> NSIndexSet::copyWithZone(void*) {
    if (!cast<NSMutableIndexSet>(this)) return Retained<Object>::retaining(this);
    return initWithIndexSet(this);
}

Retained<Object> NSIndexSet::mutableCopyWithZone(void*) {
    return initWithIndexSet(this, NSMutableIndexSet::classObject());
}

Retained<NSIndexSet> NSIndexSet::copy() { return cast<NSIndexSet>(copyWithZone(nullptr)); }

Retained<NSMutableIndexSet> NSIndexSet::mutableCopy() {
    return cast<NSMutableIndexSet>(mutableCopyWithZone(nullptr));
}

}  // namespace pelvor
