// SPDX-License-Identifier: Apache-2.0
// NSPropertyListSerialization: property lists to and from bytes.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSData;
class NSPropertyListError;
class NSString;

/// The forms in which a property list is kept.
enum NSPropertyListFormat : NSUInteger {
    NSPropertyListOldStyleFormat = 1,  ///< { key = value; } and `"key" = "value";`; read only
    NSPropertyListXMLFormat_v1_0 = 100,
    NSPropertyListBinaryFormat_v1_0 = 200,
};

/// Which objects of a list that is read can be changed.
enum NSPropertyListMutabilityOptions : NSUInteger {
    NSPropertyListImmutable = 0,
    NSPropertyListMutableContainers = 1,           ///< arrays and dictionaries
    NSPropertyListMutableContainersAndLeaves = 2,  ///< strings and data too, but not keys
};

/// Property lists are strings, numbers, booleans, dates, data, and arrays and dictionaries of them with
/// strings for keys. They are read and written as XML, as binary lists, and read in the old style. Nothing
/// here raises on account of what is read: a list that is damaged, nested too deeply or otherwise beyond
/// `propertyListLimits()` gives none and an error. Any thread.
class PELVOR_EXPORT NSPropertyListSerialization : public NSObject {
    PELVOR_CLASS(NSPropertyListSerialization, NSObject);

  public:
    /// The list that the bytes hold, whichever format they are in; borrowed. `format`, unless none, receives
    /// that format. None for bytes that are no list; `error`, unless none, then receives the reason and its
    /// place, borrowed, and otherwise none. Of equal keys the last counts. Entity declarations are refused.
    static id propertyListWithData_options_format_error(NSData* data, NSPropertyListMutabilityOptions options,
                                                        NSPropertyListFormat* format,
                                                        NSPropertyListError** error);

    /// The list as bytes, the same for equal lists: dictionaries are written in the order of their keys.
    /// None, with an error, for an object that has no place in a list of that format, dates that lie outside
    /// the years of nine digits, and strings with characters that XML does not know. Written as XML, dates
    /// are cut to the second, and real numbers keep their value.
    static NSData* dataWithPropertyList_format_options_error(id propertyList, NSPropertyListFormat format,
                                                             NSUInteger options, NSPropertyListError** error);

    /// Whether `dataWithPropertyList…` would write the list.
    static bool propertyList_isValidForFormat(id propertyList, NSPropertyListFormat format);
};

}  // namespace pelvor
