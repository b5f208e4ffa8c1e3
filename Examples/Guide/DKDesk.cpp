// SPDX-License-Identifier: Apache-2.0
#include "DKDesk.h"

#include "DKTask.h"
#include "DeskLibrary.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSThread.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "PBUtil.h"
#include "Runtime/Message.h"

namespace desk {
namespace {

int order(id profile) {
    return send<int>(static_cast<PBProfile*>(profile)->valueForKey(PBProfilePaletteOrderKey), "intValue"_sel);
}

int compareOrder(id first, id second, void*) { return order(first) - order(second); }

// The profiles of a type, as a menu shows them. Borrowed.
NSArray* profilesInOrder(NSString* type) {
    return PBRegistry::sharedRegistry()->profilesOfType(type)->profiles()->sortedArrayUsingFunction_context(
        compareOrder, nullptr);
}

}  // namespace

PELVOR_DEFINE_CLASS(DKDesk, deskLibrary) {
    methods.creator<"init", &DKDesk::init>();
    methods.instance<"loadPlugIns", &DKDesk::loadPlugIns>();
    methods.instance<"menu", &DKDesk::menu>();
    methods.instance<"openFile:", &DKDesk::openFile>();
    methods.instance<"examineText:", &DKDesk::examineText>();
    methods.instance<"run", &DKDesk::run>();
    methods.instance<"report", &DKDesk::report>();
    methods.instance<"hasFailed", &DKDesk::hasFailed>();
}

Retained<DKDesk> DKDesk::init(Class* cls) {
    auto desk = make<DKDesk>(cls);
    desk->_tasks = NSMutableArray::init();
    desk->_waiting = PBIdleQueue::initWithSelector("run"_sel);
    return desk;
}

void DKDesk::loadPlugIns() {
    NSString* folder = NSBundle::mainBundle()->builtInPlugInsPath();
    for (id bundle : NSBundle::bundlesInDirectory(folder)) static_cast<NSBundle*>(bundle)->load();
}

NSString* DKDesk::menu() {
    auto* lines = NSMutableArray::of({_PBDoLocalize(u"_Services"_ns, nullptr)});
    for (id service : profilesInOrder(PBProfileDocumentServiceType))
        lines->addObject(
            NSString::stringWithFormat(u"  %@"_ns, DKTask::nameOfProfile(static_cast<PBProfile*>(service))));
    lines->addObject(_PBDoLocalize(u"_Units"_ns, nullptr));
    for (id object : profilesInOrder(PBProfileUnitType)) {
        auto* unit = static_cast<PBProfile*>(object);
        lines->addObject(NSString::stringWithFormat(u"  %@ (%@ mm)"_ns, DKTask::nameOfProfile(unit),
                                                    unit->valueForKey(u"millimetres"_ns)));
    }
    return lines->componentsJoinedByString(u"\n"_ns);
}

void DKDesk::openFile(NSString* path) {
    _isReading = true;
    NSThread::detach([desk = Retained<DKDesk>::retaining(this), path = path->copy()] {
        auto text = NSString::initWithContentsOfFile(path);
        NSRunLoop::mainRunLoop()->perform([desk, path, text] { desk->finishReading(text, path); }, nullptr);
    });
}

void DKDesk::finishReading(NSString* text, NSString* path) {
    _isReading = false;
    if (text) return examineText(text);
    _failure.set(
        NSString::stringWithFormat(_PBDoLocalize(u"_The file %@ cannot be read."_ns, nullptr), path));
}

void DKDesk::examineText(NSString* text) {
    for (id service : profilesInOrder(PBProfileDocumentServiceType)) {
        auto task = DKTask::initWithProfile_text(static_cast<PBProfile*>(service), text);
        _tasks->addObject(task);
        _waiting->addObject(task);
    }
}

bool DKDesk::hasWork() { return _isReading || _waiting->count() > 0; }

void DKDesk::run() {
    while (hasWork()) NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
}

NSString* DKDesk::report() {
    if (_failure) return _failure;
    auto* lines = NSMutableArray::array();
    for (id task : _tasks.get()) lines->addObject(static_cast<DKTask*>(task)->result());
    return lines->componentsJoinedByString(u"\n"_ns);
}

bool DKDesk::hasFailed() {
    for (id task : _tasks.get())
        if (static_cast<DKTask*>(task)->hasFailed()) return true;
    return _failure.get();
}

}  // namespace desk
