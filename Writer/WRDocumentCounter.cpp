// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocumentCounter.h"

#include "Foundation/NSNotificationCenter.h"
#include "PBDelayedActionTimer.h"
#include "PBIdleQueue.h"
#include "PBObserverSet.h"
#include "Writer/WRDocument.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

constexpr double kSecondsAfterChanges = 0.2;
// A few milliseconds' work: a key that is pressed meanwhile does not wait longer than that.
constexpr NSUInteger kSliceLength = 128 * 1024;

}  // namespace

PELVOR_DEFINE_CLASS(WRDocumentCounter, writerLibrary) {
    methods.creator<"initWithDocument:", &WRDocumentCounter::initWithDocument>();
    methods.instance<"start", &WRDocumentCounter::start>();
    methods.instance<"isCounting", &WRDocumentCounter::isCounting>();
    methods.instance<"position", &WRDocumentCounter::position>();
    methods.instance<"document", &WRDocumentCounter::document>();
    methods.instance<"observers", &WRDocumentCounter::observers>();
    methods.instance<"invalidate", &WRDocumentCounter::invalidate>();
    methods.instance<"documentDidChange:", &WRDocumentCounter::documentDidChange>();
    methods.instance<"changesAreOver:", &WRDocumentCounter::changesAreOver>();
    methods.instance<"countSlice", &WRDocumentCounter::countSlice>();
}

WRDocumentCounter::~WRDocumentCounter() { invalidate(); }

Retained<WRDocumentCounter> WRDocumentCounter::initWithDocument(WRDocument* document, Class* cls) {
    auto self = make<WRDocumentCounter>(cls);
    self->_document.set(document);
    self->_observers = PBObserverSet::init();
    self->_queue = PBIdleQueue::initWithSelector("countSlice"_sel);
    self->_timer = PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector(
        kSecondsAfterChanges, false, self, "changesAreOver:"_sel);
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self, "documentDidChange:"_sel, WRDocumentDidChangeNotification, document);
    return self;
}

void WRDocumentCounter::start() {
    _timer->unschedule();
    _text.emplace(_document->text());
    _count = {};
    _queue->addObject(this);
}

bool WRDocumentCounter::isCounting() { return _text || _timer->isScheduled(); }

void WRDocumentCounter::invalidate() {
    NSNotificationCenter::defaultCenter()->removeObserver(this);
    _timer->invalidate();
    _queue->invalidate();
    _observers->invalidate();
    _text.reset();
}

// What was counted is of no use any more.
void WRDocumentCounter::documentDidChange(NSNotification*) {
    _queue->removeObject(this);
    _text.reset();
    _timer->schedule();
}

void WRDocumentCounter::changesAreOver(PBDelayedActionTimer*) { start(); }

void WRDocumentCounter::countSlice() {
    if (!_text->isDone()) _text->advance(kSliceLength);
    _count = _text->count();
    if (_text->isDone()) return finish();
    _queue->addObject(this);
    _observers->makeObserversPerformSelector_withObject("counterDidAdvance:"_sel, this);
}

void WRDocumentCounter::finish() {
    _text.reset();
    _observers->makeObserversPerformSelector_withObject("counterDidFinish:"_sel, this);
    NSNotificationCenter::defaultCenter()->postNotificationName_object(WRDocumentDidCountNotification, this);
}

}  // namespace pelvor
