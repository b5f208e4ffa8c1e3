// SPDX-License-Identifier: Apache-2.0
// WRAboutLine: a line of what the program says about itself.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDate;

/// A label and a value, for the interface file About.nib. Main thread.
class WRAboutLine : public NSObject {
    PELVOR_CLASS(WRAboutLine, NSObject);

  public:
    void setLabel(NSString* label) { _label = label->copy(); }
    void setValue(NSString* value) { _value = value->copy(); }
    /// The calendar format of `setDate`.
    void setDateFormat(NSString* format) { _dateFormat = format->copy(); }
    /// Makes the date, by universal time, the value.
    void setDate(NSDate* date);
    /// "label: value", or the label alone while there is no value.
    NSString* description() override;

  protected:
    WRAboutLine() = default;
    ~WRAboutLine() = default;

  private:
    Retained<NSString> _label;
    Retained<NSString> _value;
    Retained<NSString> _dateFormat;
};

}  // namespace pelvor
