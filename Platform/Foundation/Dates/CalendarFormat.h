// SPDX-License-Identifier: Apache-2.0
// Calendar formats, written and read; for Foundation's own sources. NSCalendarDate.h lists the conversions.
#pragma once

#include <optional>

#include "Foundation/Dates/CalendarFields.h"
#include "Runtime/Retained.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// The text of a moment, borrowed. The locale may be null.
NSString* formattedMoment(NSTimeInterval moment, NSTimeZone* zone, NSString* format, NSDictionary* locale);

/// A moment that was read, and the zone that the text named, else the one that was given.
struct ReadMoment {
    NSTimeInterval moment;
    Retained<NSTimeZone> zone;
};

/// Reads a text as a format says. Nothing if the text has another form or names a time that does not exist.
std::optional<ReadMoment> readMoment(NSString* text, NSString* format, NSDictionary* locale,
                                     NSTimeZone* zone);

}  // namespace pelvor
