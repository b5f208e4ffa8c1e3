// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNotificationCenter.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/Threads/ObserverTable.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"

namespace pelvor {

// A post by message is the delivery itself: this is the method that a subclass calls as its superclass's.
PELVOR_DEFINE_CLASS(NSNotificationCenter, foundationLibrary) {
    methods.classLevel<"defaultCenter", &NSNotificationCenter::defaultCenter>();
    methods.creator<"init", &NSNotificationCenter::init>();
    methods.instance<"addObserver:selector:name:object:",
                     &NSNotificationCenter::addObserver_selector_name_object>();
    methods.instance<"removeObserver:", &NSNotificationCenter::removeObserver>();
    methods.instance<"removeObserver:name:object:", &NSNotificationCenter::removeObserver_name_object>();
    methods.instanceAs<"postNotification:", &NSNotificationCenter::deliver>();
    methods.instanceAs<"postNotificationName:object:", &NSNotificationCenter::deliverName_object>();
    methods.instanceAs<"postNotificationName:object:userInfo:",
                       &NSNotificationCenter::deliverName_object_userInfo>();
}

NSNotificationCenter::NSNotificationCenter() : _observers(new ObserverTable) {}

NSNotificationCenter::~NSNotificationCenter() = default;

NSNotificationCenter* NSNotificationCenter::defaultCenter() {
    static NSNotificationCenter* const center = make<NSNotificationCenter>().leak();
    return center;
}

Retained<NSNotificationCenter> NSNotificationCenter::init(Class* cls) {
    return make<NSNotificationCenter>(cls);
}

void NSNotificationCenter::TableEnding::operator()(ObserverTable* table) { table->end(); }

void NSNotificationCenter::addObserver_selector_name_object(id observer, SEL selector, NSString* name,
                                                            id object) {
    if (!observer || !selector)
        raiseException(NSInvalidArgumentException, u"addObserver:selector:name:object: the %s is null"_ns,
                       observer ? "selector" : "observer");
    _observers->add(observer, selector, name, object);
}

void NSNotificationCenter::removeObserver(id observer) { _observers->remove(observer, nullptr, nullptr); }

void NSNotificationCenter::removeObserver_name_object(id observer, NSString* name, id object) {
    _observers->remove(observer, name, object);
}

// MARK: Posting

void NSNotificationCenter::postNotification(NSNotification* notification) {
    if (isa() != &classRecord) [[unlikely]]
        return send(this, "postNotification:"_sel, notification);
    deliver(notification);
}

void NSNotificationCenter::postNotificationName_object(NSString* name, id object) {
    if (isa() != &classRecord) [[unlikely]]
        return send(this, "postNotificationName:object:"_sel, name, object);
    deliverName_object_userInfo(name, object, nullptr);
}

void NSNotificationCenter::postNotificationName_object_userInfo(NSString* name, id object,
                                                                NSDictionary* userInfo) {
    if (isa() != &classRecord) [[unlikely]]
        return send(this, "postNotificationName:object:userInfo:"_sel, name, object, userInfo);
    deliverName_object_userInfo(name, object, userInfo);
}

void NSNotificationCenter::deliver(NSNotification* notification) {
    if (!notification || !notification->name())
        raiseException(NSInvalidArgumentException,
                       u"postNotification: the notification is null or has no name"_ns);
    ObserverTable::Audience(*_observers, notification->name(), notification->object()).send(notification);
}

void NSNotificationCenter::deliverName_object(NSString* name, id object) {
    postNotificationName_object_userInfo(name, object, nullptr);
}

void NSNotificationCenter::deliverName_object_userInfo(NSString* name, id object, NSDictionary* userInfo) {
    if (!name) [[unlikely]]
        raiseException(NSInvalidArgumentException, u"postNotificationName: the name is null"_ns);
    ObserverTable::Audience audience(*_observers, name, object);
    if (audience.isEmpty()) return;
    PostedNotification posted(name, object, userInfo);
    audience.send(posted.get());
}

}  // namespace pelvor
