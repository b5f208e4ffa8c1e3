// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRTextWork.h"

#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "PBIdleQueue.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/NSTextStorage.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr std::chrono::milliseconds kSlice{2};  // what a key that is pressed meanwhile waits at most

PBIdleQueue* worksToDo() {
    static PBIdleQueue* const queue = PBIdleQueue::initWithSelector("workAtIdle"_sel).leak();
    return queue;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRTextWork, windowsLibrary) {
    methods.instance<"stop", &WRTextWork::stop>();
    methods.instance<"textStorage", &WRTextWork::textStorage>();
    methods.instance<"resume", &WRTextWork::resume>();
    methods.instance<"setTextStorage:", &WRTextWork::setTextStorage>();
    methods.instance<"textStorage:edited:range:changeInLength:invalidatedRange:",
                     &WRTextWork::textStorage_edited_range_changeInLength_invalidatedRange>();
    methods.instance<"workAtIdle", &WRTextWork::workAtIdle>();
}

WRTextWork::~WRTextWork() { worksToDo()->removeObject(this); }

void WRTextWork::start(NSTextStorage* storage) {
    storage->addLayoutManager(this);
    resume();
}

void WRTextWork::stop() {
    worksToDo()->removeObject(this);
    if (_storage) _storage->removeLayoutManager(this);
}

void WRTextWork::resume() {
    if (_storage) worksToDo()->addObject(this);
}

void WRTextWork::setTextStorage(NSTextStorage* storage) { _storage = storage; }

void WRTextWork::textStorage_edited_range_changeInLength_invalidatedRange(NSTextStorage*, unsigned mask,
                                                                          NSRange range, NSInteger change,
                                                                          NSRange) {
    if (mask & NSTextStorageEditedCharacters) _lastEdit = Clock::now();
    textDidChange(mask, range, change);
}

void WRTextWork::resumeAfter(Clock::duration pause) {
    auto timer = NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(
        std::chrono::duration<double>(pause).count(), this, "resume"_sel, nullptr, false);
    NSRunLoop::mainRunLoop()->addTimer_forMode(timer, NSRunLoopCommonModes);
}

void WRTextWork::workAtIdle() {
    if (!_storage) return;
    if (const auto rest = _lastEdit + pauseAfterEdit - Clock::now(); rest > rest.zero())
        return resumeAfter(rest);
    const auto self = Retained<WRTextWork>::retaining(this);
    const Clock::time_point end = Clock::now() + kSlice;
    bool isMore = true;
    while (isMore && Clock::now() < end) {
        AutoreleasePool pool;
        isMore = workABit();
    }
    if (isMore) resume();
    didWork();
}

}  // namespace pelvor
