// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSHTTPURLResponse.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <unordered_map>
#include <vector>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableDictionary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSHTTPURLResponse, foundationLibrary) {
    methods.instance<"statusCode", &NSHTTPURLResponse::statusCode>();
    methods.instance<"allHeaderFields", &NSHTTPURLResponse::allHeaderFields>();
    methods.instance<"valueForHTTPHeaderField:", &NSHTTPURLResponse::valueForHTTPHeaderField>();
}

NSHTTPURLResponse::NSHTTPURLResponse() = default;
NSHTTPURLResponse::~NSHTTPURLResponse() = default;

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// The text up to the separator, trimmed; `text` becomes what is behind it.
std::string_view take(std::string_view& text, char separator) {
    const std::size_t end = std::min(text.find(separator), text.size());
    std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return trimmed(part);
}

template <class Number>
Number numberIn(std::string_view text, Number otherwise) {
    Number number = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number >= 0 ? number : otherwise;
}

bool isSame(NSString* name, NSString* other) {
    return name->compare_options(other, NSCaseInsensitiveSearch | NSLiteralSearch) == NSOrderedSame;
}

// The lines of a head that begin with a blank go on with the line before them.
std::string unfolded(std::string_view head) {
    std::string lines;
    while (!head.empty()) {
        const bool goesOn = head.front() == ' ' || head.front() == '\t';
        lines.append(lines.empty() ? "" : goesOn ? " " : "\n").append(take(head, '\n'));
    }
    return lines;
}

// The fields of a head, each name once. Looked up by a table, since a hostile server sends many.
NSDictionary* fieldsIn(std::string_view head) {
    struct Field {
        std::string name, value;
    };
    std::vector<Field> fields;
    std::unordered_map<std::string, std::size_t> places;
    while (!head.empty()) {
        std::string_view line = take(head, '\n');
        if (line.find(':') == line.npos) continue;
        std::string_view name = take(line, ':'), value = trimmed(line);
        std::string key(name);
        for (char& c : key)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
        auto [place, isNew] = places.insert({key, fields.size()});
        if (isNew)
            fields.push_back({std::string(name), std::string(value)});
        else
            fields[place->second].value.append(",").append(value);
    }
    auto result = NSMutableDictionary::init();
    for (const auto& [name, value] : fields)
        result->setObject_forKey(NSString::ofUTF8(value), NSString::ofUTF8(name));
    return result->copy().autorelease();
}

// "charset=utf-8" among the parameters of a type, with or without quotes.
NSString* encodingIn(std::string_view parameters) {
    while (!parameters.empty()) {
        std::string_view value = take(parameters, ';');
        if (!isSame(NSString::ofUTF8(take(value, '=')), u"charset"_ns)) continue;
        value = trimmed(value);
        if (value.size() > 1 && value.front() == '"' && value.back() == '"')
            value = value.substr(1, value.size() - 2);
        return value.empty() ? nullptr : NSString::ofUTF8(value);
    }
    return nullptr;
}

}  // namespace

Retained<NSHTTPURLResponse> NSHTTPURLResponse::initWithURL_head(NSURL* url, std::string_view head) {
    auto response = make<NSHTTPURLResponse>();
    response->_url.set(url);
    std::string_view status = take(head, '\n');
    take(status, ' ');
    response->_statusCode = numberIn<int>(take(status, ' '), 0);
    response->_fields.set(fieldsIn(unfolded(head)));
    if (NSString* length = response->valueForHTTPHeaderField(u"Content-Length"_ns))
        response->_length = numberIn<long long>(length->toUTF8(), -1);
    if (NSString* field = response->valueForHTTPHeaderField(u"Content-Type"_ns)) {
        std::string text = field->toUTF8();
        std::string_view parameters = text, type = take(parameters, ';');
        if (!type.empty()) response->_type.set(NSString::ofUTF8(type)->lowercaseString());
        response->_encoding.set(encodingIn(parameters));
    }
    return response;
}

NSString* NSHTTPURLResponse::valueForHTTPHeaderField(NSString* name) {
    if (!name) return nullptr;
    for (auto [key, value] : _fields)
        if (isSame(cast<NSString>(key), name)) return cast<NSString>(value);
    return nullptr;
}

}  // namespace pelvor
