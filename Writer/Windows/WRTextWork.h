// SPDX-License-Identifier: Apache-2.0
// WRTextWork: something that is kept up with a text while it is written.
#pragma once

#include <chrono>

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSTextStorage;

/// Work on a text that is done when the main loop is idle, a few milliseconds at a time, and again after each
/// edit. The text keeps it until `stop` is called. Main thread.
class WRTextWork : public NSObject {
    PELVOR_CLASS(WRTextWork, NSObject);

  public:
    /// Ends the work for good.
    virtual void stop();
    NSTextStorage* textStorage() { return _storage; }
    /// Has the work go on when the main loop is idle, some milliseconds after an edit, since there is
    /// something to be done.
    void resume();

    /// The messages of the text storage and of the idle queue.
    void setTextStorage(NSTextStorage* storage);
    void textStorage_edited_range_changeInLength_invalidatedRange(NSTextStorage* storage, unsigned mask,
                                                                  NSRange range, NSInteger change,
                                                                  NSRange invalidated);
    void workAtIdle();

    // C++ only
    /// How long the work waits after an edit: the display's server has the processor in this time, to show
    /// what was typed.
    static inline std::chrono::milliseconds pauseAfterEdit{10};

  protected:
    WRTextWork() = default;
    ~WRTextWork();

    void start(NSTextStorage* storage);
    virtual void textDidChange(unsigned mask, NSRange range, NSInteger change) = 0;
    /// Does a part of the work that takes a fraction of a millisecond. Returns false if no work is left.
    virtual bool workABit() = 0;
    /// Called after some milliseconds of work, whose results may now be shown.
    virtual void didWork() {}

  private:
    using Clock = std::chrono::steady_clock;
    void resumeAfter(Clock::duration pause);

    Unretained<NSTextStorage> _storage = nullptr;
    Clock::time_point _lastEdit;
};

}  // namespace pelvor
