// SPDX-License-Identifier: Apache-2.0
// The date that creators return; for Foundation's own sources.
#pragma once

#include "Foundation/NSDate.h"

namespace pelvor {

class NSPlainDate final : public NSDate {
    PELVOR_CLASS(NSPlainDate, NSDate);

  public:
    static Retained<NSPlainDate> create(NSTimeInterval seconds) {
        return Retained<NSPlainDate>::adopting(
            Instances::createWithExtra<NSPlainDate>(0, &classRecord, seconds));
    }
    NSTimeInterval timeIntervalSinceReferenceDate() override { return _seconds; }

  protected:
    explicit NSPlainDate(NSTimeInterval seconds) : _seconds(seconds) {}
    ~NSPlainDate() = default;

  private:
    NSTimeInterval _seconds;
};

}  // namespace pelvor
