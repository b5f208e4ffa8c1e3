// SPDX-License-Identifier: Apache-2.0
// NSHTTPURLResponse: what a server says before the body of its answer.
#pragma once

#include <string_view>

#include "Foundation/NSURLResponse.h"

namespace pelvor {

class NSDictionary;

/// The status and the header fields of a server's answer. Immutable. Any thread.
class PELVOR_EXPORT NSHTTPURLResponse final : public NSURLResponse, NSURLResponse::HiddenCreators {
    PELVOR_CLASS(NSHTTPURLResponse, NSURLResponse);

  public:
    // C++ only
    /// Reads the head of an answer: a line "HTTP/1.1 200 OK", and lines "Name: value". The values of fields
    /// of one name are joined by commas. Lines that are no fields are passed over; a status that is not a
    /// number is 0. Bytes that are not UTF-8 become U+FFFD.
    static Retained<NSHTTPURLResponse> initWithURL_head(NSURL* url, std::string_view head);

    NSInteger statusCode() { return _statusCode; }
    /// Returns the fields by name, as the names were first written.
    NSDictionary* allHeaderFields() { return _fields; }
    /// Returns the value of the field, whose name is found in either case; null if there is no such field.
    NSString* valueForHTTPHeaderField(NSString* name);

  protected:
    NSHTTPURLResponse();
    ~NSHTTPURLResponse();

  private:
    NSInteger _statusCode = 0;
    Retained<NSDictionary> _fields;
};

}  // namespace pelvor
