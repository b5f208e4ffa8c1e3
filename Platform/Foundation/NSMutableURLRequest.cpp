// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableURLRequest.h"

#include <cctype>
#include <cmath>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMutableURLRequest, foundationLibrary) {
    methods.instance<"setURL:", &NSMutableURLRequest::setURL>();
    methods.instance<"setCachePolicy:", &NSMutableURLRequest::setCachePolicy>();
    methods.instance<"setTimeoutInterval:", &NSMutableURLRequest::setTimeoutInterval>();
    methods.instance<"setMaximumResponseLength:", &NSMutableURLRequest::setMaximumResponseLength>();
    methods.instance<"setHTTPMethod:", &NSMutableURLRequest::setHTTPMethod>();
    methods.instance<"setHTTPBody:", &NSMutableURLRequest::setHTTPBody>();
    methods.instance<"setValue:forHTTPHeaderField:", &NSMutableURLRequest::setValue_forHTTPHeaderField>();
    methods.instance<"addValue:forHTTPHeaderField:", &NSMutableURLRequest::addValue_forHTTPHeaderField>();
    methods.instance<"setAllHTTPHeaderFields:", &NSMutableURLRequest::setAllHTTPHeaderFields>();
}

NSMutableURLRequest::NSMutableURLRequest() = default;
NSMutableURLRequest::~NSMutableURLRequest() = default;

namespace {

bool isWord(NSString* text) {
    StringUnits units(text);
    for (unichar unit : units.view())
        if (!(unit < 0x80 && std::isalnum(static_cast<int>(unit))) &&
            std::u16string_view(u"!#$%&'*+-.^_`|~").find(unit) == std::u16string_view::npos)
            return false;
    return units.size() > 0;
}

void requireWord(NSString* text, const char* operation, const char* name) {
    requireArgument(text, operation, name);
    if (!isWord(text))
        raiseBadArgument(operation, std::string(name) + " \"" + text->toUTF8() + "\" is no word of HTTP");
}

void requireValue(NSString* value, const char* operation) {
    StringUnits units(value);
    if (units.view().find_first_of(std::u16string_view(u"\r\n\0", 3)) != std::u16string_view::npos)
        raiseBadArgument(operation, "the value has a line end or a NUL");
}

}  // namespace

void NSMutableURLRequest::setURL(NSURL* url) { _url.set(url); }

void NSMutableURLRequest::setCachePolicy(NSURLRequestCachePolicy policy) { _cachePolicy = policy; }

void NSMutableURLRequest::setTimeoutInterval(NSTimeInterval timeout) {
    if (std::isnan(timeout)) raiseBadArgument("setTimeoutInterval:", "the time-out is not a number");
    _timeout = timeout;
}

void NSMutableURLRequest::setMaximumResponseLength(NSUInteger length) { _maximumResponseLength = length; }

void NSMutableURLRequest::setHTTPMethod(NSString* method) {
    requireWord(method, "setHTTPMethod:", "the method");
    _method = method->copy();
}

void NSMutableURLRequest::setHTTPBody(NSData* body) { _body = body ? body->copy() : Retained<NSData>(); }

void NSMutableURLRequest::setValue_forHTTPHeaderField(NSString* value, NSString* name) {
    requireWord(name, "setValue:forHTTPHeaderField:", "the name");
    if (value) requireValue(value, "setValue:forHTTPHeaderField:");
    Field* field = fieldNamed(name);
    if (!value && field)
        _fields.erase(_fields.begin() + (field - _fields.data()));
    else if (field)
        field->value = value->copy();
    else if (value)
        _fields.push_back({name->copy(), value->copy()});
}

void NSMutableURLRequest::addValue_forHTTPHeaderField(NSString* value, NSString* name) {
    requireWord(name, "addValue:forHTTPHeaderField:", "the name");
    requireArgument(value, "addValue:forHTTPHeaderField:", "the value");
    requireValue(value, "addValue:forHTTPHeaderField:");
    NSString* old = valueForHTTPHeaderField(name);
    setValue_forHTTPHeaderField(old ? NSString::stringWithFormat(u"%@,%@"_ns, old, value) : value, name);
}

void NSMutableURLRequest::setAllHTTPHeaderFields(NSDictionary* fields) {
    for (auto [name, value] : fields) {
        requireWord(cast<NSString>(name), "setAllHTTPHeaderFields:", "the name");
        requireArgument(cast<NSString>(value), "setAllHTTPHeaderFields:", "the value");
        requireValue(cast<NSString>(value), "setAllHTTPHeaderFields:");
    }
    _fields.clear();
    for (auto [name, value] : fields)
        setValue_forHTTPHeaderField(cast<NSString>(value), cast<NSString>(name));
}

}  // namespace pelvor
