// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/ZWFNSubscribeFileWatcher.h"

#include <cerrno>

#include "BaseLibrary.h"
#include "FileWatcher/Private/ZWFolderEvents.h"
#include "FileWatcher/ZWKQueue.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSWorkspace.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(ZWFNSubscribeFileWatcher, baseLibrary) {
    using Self = ZWFNSubscribeFileWatcher;
    methods.classLevel<"sharedFileWatcher", &Self::sharedFileWatcher>();
    methods.creator<"init", &Self::init>();
    methods.instance<"setDelegate:", &Self::setDelegate>();
    methods.instance<"delegate", &Self::delegate>();
    methods.instance<"addPath:", &Self::addPath>();
    methods.instance<"removePath:", &Self::removePath>();
    methods.instance<"sendDelegateMessage:forSubscription:", &Self::sendDelegateMessage_forSubscription>();
}

void ZWFileSubscriptionProc(std::uint32_t message, ZWFNSubscribeFileWatcher* watcher,
                            ZWFolderSubscription subscription) {
    if (message != ZWFolderWasModified)
        NSLog(u"ZWFileSubscriptionProc: Unknown message %d"_ns, message);
    else if (watcher)
        watcher->sendDelegateMessage_forSubscription(message, subscription);
}

ZWFNSubscribeFileWatcher::ZWFNSubscribeFileWatcher() : _subscriptions(NSMutableDictionary::init()) {}

ZWFNSubscribeFileWatcher::~ZWFNSubscribeFileWatcher() {
    if (_events) _events->end();
}

ZWFNSubscribeFileWatcher* ZWFNSubscribeFileWatcher::sharedFileWatcher() {
    static ZWFNSubscribeFileWatcher* const watcher = ZWFNSubscribeFileWatcher::init().leak();
    return watcher;
}

Retained<ZWFNSubscribeFileWatcher> ZWFNSubscribeFileWatcher::init(Class* cls) {
    return make<ZWFNSubscribeFileWatcher>(cls);
}

void ZWFNSubscribeFileWatcher::addPath(NSString* path) {
    if (!path) return;
    if (!_events) _events = ZWFolderEvents::startFor(this);
    const ZWFolderSubscription subscription =
        _events ? _events->queue().add(path->copy().get(), ZWFileWritten, FileEventQueue::Kind::folder) : 0;
    if (!subscription) {
        NSLog(u"ZWFNSubscribeFileWatcher addPath: %@ failed due to error ID=%ld."_ns, path, long{errno});
        return;
    }
    _subscriptions->setObject_forKey(NSNumber::numberWithUnsignedLongLong(subscription), path);
}

void ZWFNSubscribeFileWatcher::removePath(NSString* path) {
    auto subscription =
        Retained<NSNumber>::retaining(path ? cast<NSNumber>(_subscriptions->objectForKey(path)) : nullptr);
    if (!subscription) return;
    _subscriptions->removeObjectForKey(path);
    _events->queue().remove(subscription->unsignedLongLongValue());
}

void ZWFNSubscribeFileWatcher::sendDelegateMessage_forSubscription(std::uint32_t,
                                                                   ZWFolderSubscription subscription) {
    auto self = Retained<ZWFNSubscribeFileWatcher>::retaining(this);
    NSArray* paths = _subscriptions->allKeysForObject(NSNumber::numberWithUnsignedLongLong(subscription));
    if (paths->count() == 0) return;
    auto path = Retained<Object>::retaining(paths->objectAtIndex(0));
    NSWorkspace::sharedWorkspace()->notificationCenter()->postNotificationName_object_userInfo(
        ZWFileWatcherWriteNotification, this, NSDictionary::dictionaryWithObject_forKey(path, u"path"_ns));
    if (auto delegate = _delegate.object())
        send(delegate, "watcher:receivedNotification:forPath:"_sel, this, ZWFileWatcherWriteNotification,
             path);
}

}  // namespace pelvor
