// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSURL.h"

#include <unistd.h>

#include <cstdlib>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/URLs/URLText.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSURL, foundationLibrary) {
    methods.creator<"URLWithString:", &NSURL::URLWithString>();
    methods.creator<"URLWithString:relativeToURL:", &NSURL::URLWithString_relativeToURL>();
    methods.creator<"fileURLWithPath:", &NSURL::fileURLWithPath>();
    methods.creator<"initWithString:", &NSURL::initWithString>();
    methods.creator<"initWithString:relativeToURL:", &NSURL::initWithString_relativeToURL>();
    methods.creator<"initFileURLWithPath:", &NSURL::initFileURLWithPath>();
    methods.instance<"absoluteString", &NSURL::absoluteString>();
    methods.instance<"relativeString", &NSURL::relativeString>();
    methods.instance<"baseURL", &NSURL::baseURL>();
    methods.instance<"absoluteURL", &NSURL::absoluteURL>();
    methods.instance<"scheme", &NSURL::scheme>();
    methods.instance<"user", &NSURL::user>();
    methods.instance<"password", &NSURL::password>();
    methods.instance<"host", &NSURL::host>();
    methods.instance<"port", &NSURL::port>();
    methods.instance<"path", &NSURL::path>();
    methods.instance<"query", &NSURL::query>();
    methods.instance<"fragment", &NSURL::fragment>();
    methods.instance<"resourceSpecifier", &NSURL::resourceSpecifier>();
    methods.instance<"isFileURL", &NSURL::isFileURL>();
}

NSURL::NSURL() = default;
NSURL::~NSURL() = default;

// MARK: Creation

Retained<NSURL> NSURL::initWithString_relativeToURL(NSString* text, NSURL* base, Class* cls) {
    requireArgument(text, "initWithString:relativeToURL:", "the text");
    std::string written = text->toUTF8();
    auto parts = parseURL(written);
    if (!parts) return nullptr;
    auto url = make<NSURL>(cls);
    url->_relative = text->copy();
    url->_base.set(base);
    url->_text = base ? resolveURL(*base->_parts, *parts) : written;
    url->_absolute.set(base ? NSString::ofUTF8(url->_text) : url->_relative.get());
    auto whole = parseURL(url->_text);
    if (!whole) return nullptr;
    url->_parts = std::make_unique<URLParts>(*whole);
    return url;
}

Retained<NSURL> NSURL::initWithString(NSString* text, Class* cls) {
    requireArgument(text, "initWithString:", "the text");
    return initWithString_relativeToURL(text, nullptr, cls);
}

Retained<NSURL> NSURL::initFileURLWithPath(NSString* path, Class* cls) {
    requireArgument(path, "initFileURLWithPath:", "the path");
    std::string text = path->toUTF8();
    if (!text.starts_with('/'))
        if (char* folder = ::getcwd(nullptr, 0)) {
            text = std::string(folder) + (std::string_view(folder) == "/" ? "" : "/") + text;
            std::free(folder);
        }
    return initWithString(NSString::ofUTF8("file://" + withEscapes(text, kPlainInPath)), cls);
}

NSURL* NSURL::URLWithString(NSString* text, Class* cls) {
    requireArgument(text, "URLWithString:", "the text");
    return initWithString(text, cls).autorelease();
}

NSURL* NSURL::URLWithString_relativeToURL(NSString* text, NSURL* base, Class* cls) {
    requireArgument(text, "URLWithString:relativeToURL:", "the text");
    return initWithString_relativeToURL(text, base, cls).autorelease();
}

NSURL* NSURL::fileURLWithPath(NSString* path, Class* cls) {
    requireArgument(path, "fileURLWithPath:", "the path");
    return initFileURLWithPath(path, cls).autorelease();
}

NSURL* NSURL::absoluteURL() { return _base ? URLWithString(_absolute) : this; }

// MARK: Components

namespace {

NSString* written(std::optional<std::string_view> component) {
    return component ? NSString::ofUTF8(*component) : nullptr;
}

NSString* meant(std::optional<std::string_view> component) {
    if (!component) return nullptr;
    std::string bytes = *withoutEscapes(*component);
    return NSString::initWithBytes_length_encoding(bytes.data(), static_cast<NSUInteger>(bytes.size()),
                                                   NSUTF8StringEncoding)
        .autorelease();
}

}  // namespace

NSString* NSURL::scheme() { return _parts->scheme ? written(_parts->scheme)->lowercaseString() : nullptr; }

NSString* NSURL::user() {
    return _parts->user ? meant(_parts->user->substr(0, _parts->user->find(':'))) : nullptr;
}

NSString* NSURL::password() {
    const std::size_t colon = _parts->user ? _parts->user->find(':') : std::string_view::npos;
    return colon == std::string_view::npos ? nullptr : meant(_parts->user->substr(colon + 1));
}

NSString* NSURL::host() { return meant(_parts->host); }

NSNumber* NSURL::port() {
    return _parts->port.value_or("").empty() ? nullptr
                                             : NSNumber::numberWithInt(written(_parts->port)->intValue());
}

NSString* NSURL::path() {
    std::string_view path = _parts->path;
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    return meant(path);
}

NSString* NSURL::query() { return written(_parts->query); }

NSString* NSURL::fragment() { return written(_parts->fragment); }

NSString* NSURL::resourceSpecifier() {
    return _parts->scheme ? NSString::ofUTF8(std::string_view(_text).substr(_parts->scheme->size() + 1))
                          : absoluteString();
}

bool NSURL::isFileURL() {
    NSString* own = scheme();
    return own && own->isEqualToString(u"file"_ns);
}

// MARK: As an object

bool NSURL::isEqual(id other) {
    auto* url = cast<NSURL>(other);
    return url && _text == url->_text;
}

std::uintptr_t NSURL::hash() { return std::hash<std::string>()(_text); }

NSString* NSURL::description() { return _absolute; }

Retained<Object> NSURL::copyWithZone(void*) { return Retained<Object>::retaining(this); }

}  // namespace pelvor
