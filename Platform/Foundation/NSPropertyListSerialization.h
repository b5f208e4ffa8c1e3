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

/// Reads and writes property lists: strings, numbers, booleans, dates, data, and arrays and dictionaries of
/// them with strings for keys. Lists are read and written as XML and as binary lists; lists in the old style
/// are only read.
///
///     NSPropertyListError* error;
///     id list = NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error(
///         path, NSPropertyListImmutable, nullptr, &error);
///     if (!list) NSLog(u"%@: %@"_ns, path, error);  // "styles.plist: line 3, column 14: …"
///
/// Nothing that is read raises an exception: for a list that is damaged, nested too deeply or otherwise
/// beyond `propertyListLimits()` the operations return null and an error. Any thread.
class PELVOR_EXPORT NSPropertyListSerialization : public NSObject {
    PELVOR_CLASS(NSPropertyListSerialization, NSObject);

  public:
    /// Returns the list that the bytes hold, whichever format they are in; borrowed. `format`, unless null,
    /// receives that format. For bytes that are no list returns null, and `error`, unless null, receives the
    /// reason and its place, borrowed; after a success `error` receives null. If a dictionary has two equal
    /// keys, the last one counts. Text is read in UTF-8 and UTF-16, XML also in what its declaration names.
    /// Entity declarations in XML are refused.
    static id propertyListWithData_options_format_error(NSData* data, NSPropertyListMutabilityOptions options,
                                                        NSPropertyListFormat* format,
                                                        NSPropertyListError** error);

    /// Reads the list in the file as `propertyListWithData_options_format_error` reads one in data. A file
    /// that cannot be read gives an error, too. After a failure `errno` has the reason for an NSFileError,
    /// which says it in the user's language; EBADMSG stands for a file that holds no list. An empty file
    /// whose name ends in ".strings" is a table without entries.
    static id propertyListWithContentsOfFile_options_format_error(NSString* path,
                                                                  NSPropertyListMutabilityOptions options,
                                                                  NSPropertyListFormat* format,
                                                                  NSPropertyListError** error);

    /// Returns the list as bytes, borrowed; equal lists give equal bytes, since dictionaries are written in
    /// the order of their keys. Returns null, with an error, for an object that has no place in a list of
    /// that format, for dates outside the years of nine digits, and for strings with characters that XML does
    /// not know. In XML, dates are cut to the second, and real numbers keep their value. `options` has no
    /// meaning yet.
    static NSData* dataWithPropertyList_format_options_error(id propertyList, NSPropertyListFormat format,
                                                             NSUInteger options, NSPropertyListError** error);

    /// Returns whether `dataWithPropertyList…` would write the list.
    static bool propertyList_isValidForFormat(id propertyList, NSPropertyListFormat format);
};

}  // namespace pelvor
