// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSURLResponse.h"

#include "Foundation/FoundationLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSURLResponse, foundationLibrary) {
    methods.creator<"initWithURL:MIMEType:expectedContentLength:textEncodingName:",
                    &NSURLResponse::initWithURL_MIMEType_expectedContentLength_textEncodingName>();
    methods.instance<"URL", &NSURLResponse::URL>();
    methods.instance<"MIMEType", &NSURLResponse::MIMEType>();
    methods.instance<"expectedContentLength", &NSURLResponse::expectedContentLength>();
    methods.instance<"textEncodingName", &NSURLResponse::textEncodingName>();
}

NSURLResponse::NSURLResponse() = default;
NSURLResponse::~NSURLResponse() = default;

Retained<NSURLResponse> NSURLResponse::initWithURL_MIMEType_expectedContentLength_textEncodingName(
    NSURL* url, NSString* type, long long length, NSString* encoding, Class* cls) {
    auto response = make<NSURLResponse>(cls);
    response->_url.set(url);
    response->_type = type ? type->copy() : Retained<NSString>();
    response->_length = length;
    response->_encoding = encoding ? encoding->copy() : Retained<NSString>();
    return response;
}

}  // namespace pelvor
