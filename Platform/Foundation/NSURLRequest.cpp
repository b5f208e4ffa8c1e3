// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSURLRequest.h"

#include <cmath>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSData.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableURLRequest.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSURLRequest, foundationLibrary) {
    methods.creator<"requestWithURL:", &NSURLRequest::requestWithURL>();
    methods.creator<"requestWithURL:cachePolicy:timeoutInterval:",
                    &NSURLRequest::requestWithURL_cachePolicy_timeoutInterval>();
    methods.creator<"initWithURL:", &NSURLRequest::initWithURL>();
    methods.creator<"initWithURL:cachePolicy:timeoutInterval:",
                    &NSURLRequest::initWithURL_cachePolicy_timeoutInterval>();
    methods.instance<"URL", &NSURLRequest::URL>();
    methods.instance<"cachePolicy", &NSURLRequest::cachePolicy>();
    methods.instance<"timeoutInterval", &NSURLRequest::timeoutInterval>();
    methods.instance<"maximumResponseLength", &NSURLRequest::maximumResponseLength>();
    methods.instance<"HTTPMethod", &NSURLRequest::HTTPMethod>();
    methods.instance<"HTTPBody", &NSURLRequest::HTTPBody>();
    methods.instance<"allHTTPHeaderFields", &NSURLRequest::allHTTPHeaderFields>();
    methods.instance<"valueForHTTPHeaderField:", &NSURLRequest::valueForHTTPHeaderField>();
}

NSURLRequest::NSURLRequest() : _method(Retained<NSString>::retaining(u"GET"_ns)) {}
NSURLRequest::~NSURLRequest() = default;

// MARK: Creation

Retained<NSURLRequest> NSURLRequest::initWithURL_cachePolicy_timeoutInterval(NSURL* url,
                                                                             NSURLRequestCachePolicy policy,
                                                                             NSTimeInterval timeout,
                                                                             Class* cls) {
    if (std::isnan(timeout))
        raiseBadArgument("initWithURL:cachePolicy:timeoutInterval:", "the time-out is not a number");
    auto request = make<NSURLRequest>(cls);
    request->_url.set(url);
    request->_cachePolicy = policy;
    request->_timeout = timeout;
    return request;
}

Retained<NSURLRequest> NSURLRequest::initWithURL(NSURL* url, Class* cls) {
    return initWithURL_cachePolicy_timeoutInterval(url, NSURLRequestUseProtocolCachePolicy, 60, cls);
}

NSURLRequest* NSURLRequest::requestWithURL_cachePolicy_timeoutInterval(NSURL* url,
                                                                       NSURLRequestCachePolicy policy,
                                                                       NSTimeInterval timeout, Class* cls) {
    if (std::isnan(timeout))
        raiseBadArgument("requestWithURL:cachePolicy:timeoutInterval:", "the time-out is not a number");
    return initWithURL_cachePolicy_timeoutInterval(url, policy, timeout, cls).autorelease();
}

NSURLRequest* NSURLRequest::requestWithURL(NSURL* url, Class* cls) {
    return initWithURL(url, cls).autorelease();
}

void NSURLRequest::copyFrom(NSURLRequest* other) {
    _url = other->_url;
    _cachePolicy = other->_cachePolicy;
    _timeout = other->_timeout;
    _maximumResponseLength = other->_maximumResponseLength;
    _method = other->_method;
    _body = other->_body;
    _fields = other->_fields;
}

// MARK: Header fields

NSURLRequest::Field* NSURLRequest::fieldNamed(NSString* name) {
    for (Field& field : _fields)
        if (field.name->compare_options(name, NSCaseInsensitiveSearch | NSLiteralSearch) == NSOrderedSame)
            return &field;
    return nullptr;
}

NSString* NSURLRequest::valueForHTTPHeaderField(NSString* name) {
    Field* field = name ? fieldNamed(name) : nullptr;
    return field ? field->value.get() : nullptr;
}

NSDictionary* NSURLRequest::allHTTPHeaderFields() {
    auto fields = NSMutableDictionary::init();
    for (Field& field : _fields) fields->setObject_forKey(field.value, field.name);
    return fields->copy().autorelease();
}

// MARK: As an object

NSString* NSURLRequest::description() {
    return NSString::stringWithFormat(u"<%s %@ %@>"_ns, class_()->name(), _method, _url);
}

Retained<Object> NSURLRequest::copyWithZone(void*) {
    if (!isKindOfClass(NSMutableURLRequest::classObject())) return Retained<Object>::retaining(this);
    auto request = make<NSURLRequest>();
    request->copyFrom(this);
    return request;
}

Retained<Object> NSURLRequest::mutableCopyWithZone(void*) {
    Retained<NSURLRequest> request = NSMutableURLRequest::initWithURL(_url);
    request->copyFrom(this);
    return request;
}

Retained<NSMutableURLRequest> NSURLRequest::mutableCopy() {
    return cast<NSMutableURLRequest>(mutableCopyWithZone(nullptr));
}

}  // namespace pelvor
