// SPDX-License-Identifier: Apache-2.0
// NSURLResponse: what is known of a resource before its content.
#pragma once

#include "Foundation/NSURL.h"

namespace pelvor {

/// What is known of a resource before its content. Immutable. Any thread.
class PELVOR_EXPORT NSURLResponse : public NSObject {
    PELVOR_CLASS(NSURLResponse, NSObject);
    PELVOR_CREATORS(initWithURL_MIMEType_expectedContentLength_textEncodingName);

  public:
    static Retained<NSURLResponse> initWithURL_MIMEType_expectedContentLength_textEncodingName(
        NSURL* url, NSString* type, long long length, NSString* encoding, Class* cls = classObject());

    /// Returns the URL that the content comes from, which after redirections is another than was asked for.
    NSURL* URL() { return _url; }
    /// Returns the content's type, "text/html"; null if it is unknown.
    NSString* MIMEType() { return _type; }
    /// Returns the length of the content in bytes; -1 if it is unknown. The content may have another length.
    long long expectedContentLength() { return _length; }
    /// Returns the name of the content's encoding, "utf-8"; null if it is unknown.
    NSString* textEncodingName() { return _encoding; }

  protected:
    NSURLResponse();
    ~NSURLResponse();

  private:
    friend class NSHTTPURLResponse;

    Retained<NSURL> _url;
    Retained<NSString> _type;
    long long _length = -1;
    Retained<NSString> _encoding;
};

}  // namespace pelvor
