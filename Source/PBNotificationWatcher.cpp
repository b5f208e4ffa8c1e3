// SPDX-License-Identifier: Apache-2.0
#include "PBNotificationWatcher.h"

#include "BaseLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSString.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBNotificationWatcher, baseLibrary) {
    methods.creator<"initWithNotificationCenter:", &PBNotificationWatcher::initWithNotificationCenter>();
    methods.instance<"watchObject:notifications:", &PBNotificationWatcher::watchObject_notifications>();
    methods.instance<"watchNone", &PBNotificationWatcher::watchNone>();
    methods.instance<"invalidate", &PBNotificationWatcher::invalidate>();
    methods.instance<"didPostNotification:", &PBNotificationWatcher::didPostNotification>();
}

Retained<PBNotificationWatcher> PBNotificationWatcher::initWithNotificationCenter(
    NSNotificationCenter* center, Class* cls) {
    auto watcher = make<PBNotificationWatcher>(cls);
    watcher->_center.set(center);
    return watcher;
}

void PBNotificationWatcher::watchObject_notifications(id object, NSArray* names) {
    watchNone();
    if (!_center) return;
    SEL selector = "didPostNotification:"_sel;
    if (!names) return _center->addObserver_selector_name_object(this, selector, nullptr, object);
    for (id name : names)
        _center->addObserver_selector_name_object(this, selector, cast<NSString>(name), object);
}

void PBNotificationWatcher::watchNone() {
    if (_center) _center->removeObserver(this);
}

void PBNotificationWatcher::invalidate() {
    watchNone();
    _center = nullptr;
}

}  // namespace pelvor
