// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableCharacterSet.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMutableCharacterSet, foundationLibrary) {
    methods.creator<"init", &NSMutableCharacterSet::init>();
    methods.instance<"addCharactersInRange:", &NSMutableCharacterSet::addCharactersInRange>();
    methods.instance<"removeCharactersInRange:", &NSMutableCharacterSet::removeCharactersInRange>();
    methods.instance<"addCharactersInString:", &NSMutableCharacterSet::addCharactersInString>();
    methods.instance<"removeCharactersInString:", &NSMutableCharacterSet::removeCharactersInString>();
    methods.instance<"formUnionWithCharacterSet:", &NSMutableCharacterSet::formUnionWithCharacterSet>();
    methods.instance<"formIntersectionWithCharacterSet:",
                     &NSMutableCharacterSet::formIntersectionWithCharacterSet>();
    methods.instance<"invert", &NSMutableCharacterSet::invert>();
}

Retained<NSMutableCharacterSet> NSMutableCharacterSet::init(Class* cls) {
    return make<NSMutableCharacterSet>(cls);
}

void NSMutableCharacterSet::addCharactersInRange(NSRange range) {
    changeRange(range, Change::add, "addCharactersInRange:");
}

void NSMutableCharacterSet::removeCharactersInRange(NSRange range) {
    changeRange(range, Change::remove, "removeCharactersInRange:");
}

void NSMutableCharacterSet::addCharactersInString(NSString* string) {
    changeCharacters(string, Change::add, "addCharactersInString:");
}

void NSMutableCharacterSet::removeCharactersInString(NSString* string) {
    changeCharacters(string, Change::remove, "removeCharactersInString:");
}

void NSMutableCharacterSet::formUnionWithCharacterSet(NSCharacterSet* other) {
    requireArgument(other, "formUnionWithCharacterSet:", "the other set");
    for (std::size_t i = 0; i < kPlaneCount; ++i) {
        const SharedPlane theirs = other->_planes[i];
        if (theirs == emptyPlane() || theirs == _planes[i]) continue;
        Plane& mine = writablePlane(i);
        for (std::size_t k = 0; k < mine.size(); ++k) mine[k] |= (*theirs)[k];
    }
}

void NSMutableCharacterSet::formIntersectionWithCharacterSet(NSCharacterSet* other) {
    requireArgument(other, "formIntersectionWithCharacterSet:", "the other set");
    for (std::size_t i = 0; i < kPlaneCount; ++i) {
        const SharedPlane theirs = other->_planes[i];
        if (theirs == fullPlane() || theirs == _planes[i]) continue;
        Plane& mine = writablePlane(i);
        for (std::size_t k = 0; k < mine.size(); ++k) mine[k] &= (*theirs)[k];
    }
}

void NSMutableCharacterSet::invert() { invertPlanes(); }

Retained<Object> NSMutableCharacterSet::copyWithZone(void*) {
    auto set = make<NSCharacterSet>();
    set->_planes = _planes;
    return set;
}

}  // namespace pelvor
