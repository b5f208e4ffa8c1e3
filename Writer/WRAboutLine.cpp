// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRAboutLine.h"

#include "Foundation/NSDate-CalendarDate.h"
#include "Foundation/NSTimeZone.h"
#include "Writer/LocalizedText.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRAboutLine, writerLibrary) {
    methods.instance<"setLabel:", &WRAboutLine::setLabel>();
    methods.instance<"setValue:", &WRAboutLine::setValue>();
    methods.instance<"setDateFormat:", &WRAboutLine::setDateFormat>();
    methods.instance<"setDate:", &WRAboutLine::setDate>();
}

void WRAboutLine::setDate(NSDate* date) {
    _value.set(descriptionWithCalendarFormat_timeZone_locale(
        date, _dateFormat, NSTimeZone::timeZoneForSecondsFromGMT(0), nullptr));
}

NSString* WRAboutLine::description() {
    return _value ? localizedFormat(u"_%@: %@"_ns, _label, _value) : _label.get();
}

}  // namespace pelvor
