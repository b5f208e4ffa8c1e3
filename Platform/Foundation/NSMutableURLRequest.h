// SPDX-License-Identifier: Apache-2.0
// NSMutableURLRequest: a request that can be changed.
#pragma once

#include "Foundation/NSURLRequest.h"

namespace pelvor {

/// A request that can be changed:
///
///     auto request = NSMutableURLRequest::initWithURL(url);
///     request->setHTTPMethod(u"PUT"_ns);
///     request->setValue_forHTTPHeaderField(u"text/plain"_ns, u"Content-Type"_ns);
///     request->setHTTPBody(text->dataUsingEncoding(NSUTF8StringEncoding));
///
/// Nothing that is sent to the server can carry a line of its own into the request: a method or a field's
/// name that is not a word of HTTP (letters, digits and !#$%&'*+-.^_`|~), and a value with CR, LF or NUL,
/// raise NSInvalidArgumentException. One thread at a time.
class PELVOR_EXPORT NSMutableURLRequest : public NSURLRequest {
    PELVOR_CLASS(NSMutableURLRequest, NSURLRequest);
    PELVOR_INHERITED_CREATORS(requestWithURL, requestWithURL_cachePolicy_timeoutInterval, initWithURL,
                              initWithURL_cachePolicy_timeoutInterval);

  public:
    void setURL(NSURL* url);
    void setCachePolicy(NSURLRequestCachePolicy policy);
    /// Raises NSInvalidArgumentException if the time-out is not a number.
    void setTimeoutInterval(NSTimeInterval timeout);
    void setMaximumResponseLength(NSUInteger length);
    void setHTTPMethod(NSString* method);
    /// Sets a copy of the data; immutable data is shared. Null stands for no body.
    void setHTTPBody(NSData* body);
    /// Sets the field, or with a null value removes it.
    void setValue_forHTTPHeaderField(NSString* value, NSString* name);
    /// Sets the field or, if there is a field of that name in either case, appends a comma and the value.
    void addValue_forHTTPHeaderField(NSString* value, NSString* name);
    /// Sets these fields in place of all fields. Null stands for none.
    void setAllHTTPHeaderFields(NSDictionary* fields);

  protected:
    NSMutableURLRequest();
    ~NSMutableURLRequest();
};

}  // namespace pelvor
