// SPDX-License-Identifier: Apache-2.0
// Objects from the contents of URLs.
//
//     NSDictionary* list = NSDictionary_URLContents::dictionaryWithContentsOfURL(url);
//
// The content of an http or https URL is loaded as `sendSynchronousRequest_returningResponse_error` of
// NSURLConnection does, which waits; that of a file URL is read. The operations return null for a null URL,
// for a URL of another scheme or of a file on another host, if the content cannot be loaded or read, and if
// the server's status is none of 200 to 299. To learn the reason of other content than a dictionary, use
// NSURLConnection. Operations whose names begin with "init" return owned objects, the others borrowed ones.
// Any thread.
#pragma once

#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSString.h"
#include "Foundation/NSURL.h"

namespace pelvor {

struct Category;

struct PELVOR_EXPORT NSData_URLContents {
    static NSData* dataWithContentsOfURL(NSURL* url);
    static Retained<NSData> initWithContentsOfURL(NSURL* url);
};

/// The content has to be an array, in a property list of any format.
struct PELVOR_EXPORT NSArray_URLContents {
    static NSArray* arrayWithContentsOfURL(NSURL* url);
    static Retained<NSArray> initWithContentsOfURL(NSURL* url);
};

/// The content has to be a dictionary, in a property list of any format.
struct PELVOR_EXPORT NSDictionary_URLContents {
    static NSDictionary* dictionaryWithContentsOfURL(NSURL* url);
    static Retained<NSDictionary> initWithContentsOfURL(NSURL* url);

    // C++ only
    /// `reason`, unless null, receives why there is no dictionary, borrowed, as a clause in the user's
    /// language without a full stop ("the server cannot be reached"); null after a success.
    static NSDictionary* dictionaryWithContentsOfURL_reason(NSURL* url, NSString** reason);
};

/// The content has to be text in the encoding.
struct PELVOR_EXPORT NSString_URLContents {
    static NSString* stringWithContentsOfURL_encoding(NSURL* url, NSStringEncoding encoding);
    static Retained<NSString> initWithContentsOfURL_encoding(NSURL* url, NSStringEncoding encoding);
};

extern const Category NSData_URLContents_category;
extern const Category NSArray_URLContents_category;
extern const Category NSDictionary_URLContents_category;
extern const Category NSString_URLContents_category;

}  // namespace pelvor
