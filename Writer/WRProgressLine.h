// SPDX-License-Identifier: Apache-2.0
// WRProgressLine: the line of a terminal that tells how far the work has come.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// One line at the end of standard output, written over again and again. Where standard output is no terminal
/// nothing is written. Main thread.
class WRProgressLine : public NSObject {
    PELVOR_CLASS(WRProgressLine, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRProgressLine> init(Class* cls = classObject());

    /// "Counting: 42 %". Writes only what has changed.
    void showTask_done_of(NSString* task, unsigned long long done, unsigned long long total);
    /// Removes the line; to be called before anything else is printed.
    void clear();

  protected:
    WRProgressLine() = default;
    ~WRProgressLine() = default;

  private:
    bool _isTerminal = false;
    Retained<NSString> _text;  // what the line shows
};

}  // namespace pelvor
