// SPDX-License-Identifier: Apache-2.0
// NSURLRequest: what is asked of a server.
#pragma once

#include <vector>

#include "Foundation/NSDate.h"
#include "Foundation/NSURL.h"

namespace pelvor {

class NSData;
class NSDictionary;
class NSMutableURLRequest;

/// Whether an answer from a cache will do. This platform keeps no cache: all policies load from the server,
/// except the last one, with which every load fails.
enum NSURLRequestCachePolicy : std::int32_t {
    NSURLRequestUseProtocolCachePolicy = 0,
    NSURLRequestReloadIgnoringCacheData = 1,  ///< asks caches on the way for a fresh answer, too
    NSURLRequestReturnCacheDataElseLoad = 2,
    NSURLRequestReturnCacheDataDontLoad = 3,
};

/// What is asked of a server: URL, method, header fields and body, and how long to wait. NSURLConnection
/// sends it; NSMutableURLRequest builds it. Immutable. Any thread.
class PELVOR_EXPORT NSURLRequest : public NSObject {
    PELVOR_CLASS(NSURLRequest, NSObject);
    PELVOR_CREATORS(requestWithURL, requestWithURL_cachePolicy_timeoutInterval, initWithURL,
                    initWithURL_cachePolicy_timeoutInterval);

  public:
    /// Returns a GET request with the protocol's cache policy and a time-out of 60 seconds. The URL may be
    /// null; a request without a URL cannot be sent.
    static NSURLRequest* requestWithURL(NSURL* url, Class* cls = classObject());
    /// Returns a GET request. The time-out is in seconds; see `timeoutInterval`. Raises
    /// NSInvalidArgumentException for a time-out that is not a number.
    static NSURLRequest* requestWithURL_cachePolicy_timeoutInterval(NSURL* url,
                                                                    NSURLRequestCachePolicy policy,
                                                                    NSTimeInterval timeout,
                                                                    Class* cls = classObject());
    static Retained<NSURLRequest> initWithURL(NSURL* url, Class* cls = classObject());
    static Retained<NSURLRequest> initWithURL_cachePolicy_timeoutInterval(NSURL* url,
                                                                          NSURLRequestCachePolicy policy,
                                                                          NSTimeInterval timeout,
                                                                          Class* cls = classObject());

    NSURL* URL() { return _url; }
    NSURLRequestCachePolicy cachePolicy() { return _cachePolicy; }
    /// Returns the time-out in seconds: a load fails when nothing was sent or received for this long, and
    /// when it has lasted longer than the time-out and a second for each 1,024 bytes that it has moved.
    NSTimeInterval timeoutInterval() { return _timeout; }
    /// Returns the most bytes that the body of the answer may have; a load of more fails. 256 MiB at first.
    NSUInteger maximumResponseLength() { return _maximumResponseLength; }
    /// "GET" at first.
    NSString* HTTPMethod() { return _method; }
    /// Returns the body; null if there is none.
    NSData* HTTPBody() { return _body; }
    /// Returns the header fields by name, as the names were first written; an empty dictionary if there are
    /// none.
    NSDictionary* allHTTPHeaderFields();
    /// Returns the value of the field, whose name is found in either case; null if there is no such field.
    NSString* valueForHTTPHeaderField(NSString* name);

    /// "<NSURLRequest GET https://example.com/>".
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;
    Retained<NSURLRequest> copy() { return cast<NSURLRequest>(copyWithZone(nullptr)); }
    Retained<NSMutableURLRequest> mutableCopy();

  protected:
    NSURLRequest();
    ~NSURLRequest();

  private:
    friend class NSMutableURLRequest;
    struct Field {
        Retained<NSString> name;
        Retained<NSString> value;
    };

    Field* fieldNamed(NSString* name);
    void copyFrom(NSURLRequest* other);

    Retained<NSURL> _url;
    NSURLRequestCachePolicy _cachePolicy = NSURLRequestUseProtocolCachePolicy;
    NSTimeInterval _timeout = 60;
    NSUInteger _maximumResponseLength = 256u << 20;
    Retained<NSString> _method;
    Retained<NSData> _body;
    std::vector<Field> _fields;
};

}  // namespace pelvor
