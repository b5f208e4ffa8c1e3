// SPDX-License-Identifier: Apache-2.0
#include "PBNotificationCenter.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "BaseLibrary.h"
#include "Foundation/NSCountedSet.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSString.h"
#include "PBIdleQueue.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

bool hasPosed = false;
NSCountedSet* disabledNames = nullptr;
bool hasDisabledNames = false;
NSSet* delayedCoalescedNames = nullptr;
std::uint64_t delayedLengths = 0;  // one bit for the length of each delayed name
NSMutableSet* queuedDelayedNames = nullptr;
PBIdleQueue* delayedNotifications = nullptr;

// Called with every post. The length of most names tells that they are not among the delayed ones.
bool isDelayedCoalesced(NSString* name) {
    return (delayedLengths >> std::min(name->length(), 63u) & 1) &&
           delayedCoalescedNames->containsObject(name);
}

// Whether the notification goes no further now: it is dropped, or its name waits for an idle moment.
bool isHeldBack(NSNotificationCenter* center, NSString* name) {
    if (!name) return false;
    if (hasDisabledNames && disabledNames->containsObject(name)) return true;
    if (!isDelayedCoalesced(name)) return false;
    queuedDelayedNames->addObject(name);
    delayedNotifications->addObject(center);
    return true;
}

// The default centre was made as an object of the superclass, so these functions are no members.

void postName(NSNotificationCenter* center, NSString* name, id object, NSDictionary* userInfo) {
    if (!isHeldBack(center, name))
        sendSuper(PBNotificationCenter::classObject(), center, "postNotificationName:object:userInfo:"_sel,
                  name, object, userInfo);
}

void postNameAlone(NSNotificationCenter* center, NSString* name, id object) {
    postName(center, name, object, nullptr);
}

void post(NSNotificationCenter* center, NSNotification* notification) {
    if (!isHeldBack(center, notification ? notification->name() : nullptr))
        sendSuper(PBNotificationCenter::classObject(), center, "postNotification:"_sel, notification);
}

// A name is posted even if it was disabled after it was queued.
void postDelayedNotifications(NSNotificationCenter* center) {
    if (!queuedDelayedNames) return;
    Retained<NSSet> names = NSSet::initWithSet(queuedDelayedNames);
    queuedDelayedNames->removeAllObjects();
    for (id name : names)
        sendSuper(PBNotificationCenter::classObject(), center, "postNotificationName:object:userInfo:"_sel,
                  static_cast<NSString*>(name), id(), static_cast<NSDictionary*>(nullptr));
}

void defineAdditions(MethodTable<NSNotificationCenter>& methods) {
    using Additions = NSNotificationCenter_PelvorAdditions;
    methods.classLevel<"disableNotificationName:", &Additions::disableNotificationName>();
    methods.classLevel<"enableNotificationName:", &Additions::enableNotificationName>();
}

}  // namespace

constinit const Category NSNotificationCenter_PelvorAdditions_category =
    Category::of<NSNotificationCenter, defineAdditions>("PelvorAdditions");

PELVOR_DEFINE_CLASS(PBNotificationCenter, baseLibrary) {
    methods.classLevel<"doPosing", &PBNotificationCenter::doPosing>();
    methods.instanceAs<"postNotification:", &post>();
    methods.instanceAs<"postNotificationName:object:", &postNameAlone>();
    methods.instanceAs<"postNotificationName:object:userInfo:", &postName>();
    methods.instanceAs<"_pbPostDelayedNotifications", &postDelayedNotifications>();
}

void NSNotificationCenter_PelvorAdditions::disableNotificationName(NSString* name) {
    requireArgument(name, "disableNotificationName:", "the name");
    if (!disabledNames) {
        disabledNames = NSCountedSet::init().leak();
        PBNotificationCenter::doPosing();
    }
    auto copy = name->copy();
    disabledNames->addObject(copy);
    hasDisabledNames = true;
}

void NSNotificationCenter_PelvorAdditions::enableNotificationName(NSString* name) {
    if (!disabledNames || !name) return;
    disabledNames->removeObject(name);
    hasDisabledNames = disabledNames->count() > 0;
}

void PBNotificationCenter::doPosing() {
    if (std::exchange(hasPosed, true)) return;
    delayedCoalescedNames = NSSet::initWithObjects({u"NSFontSetChangedNotification"_ns,
                                                    u"NSAntialiasThresholdChangedNotification"_ns})
                                .leak();
    for (id name : delayedCoalescedNames)
        delayedLengths |= std::uint64_t{1} << static_cast<NSString*>(name)->length();
    queuedDelayedNames = NSMutableSet::init().leak();
    delayedNotifications = PBIdleQueue::initWithSelector("_pbPostDelayedNotifications"_sel).leak();
    Instances::setClass(NSNotificationCenter::defaultCenter(), classObject());
}

}  // namespace pelvor
