// SPDX-License-Identifier: Apache-2.0
#include "Foundation/URLs/URLText.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>

namespace pelvor {
namespace {

constexpr std::string_view kSubDelimiters = "!$&'()*+,;=";
constexpr auto npos = std::string_view::npos;

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isUnreserved(char c) {
    return isLetter(c) || isDigit(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

// The value of a hexadecimal digit, 16 for anything else.
unsigned hexValue(char c) {
    if (isDigit(c)) return static_cast<unsigned>(c - '0');
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? static_cast<unsigned>(lower - 'a') + 10 : 16;
}

bool isEscape(std::string_view text) {
    return text.size() >= 3 && text[0] == '%' && hexValue(text[1]) < 16 && hexValue(text[2]) < 16;
}

// Whether the text consists of unreserved characters, escapes and `others`.
bool consistsOf(std::string_view text, std::string_view others) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isUnreserved(text[i]) || others.find(text[i]) != npos) continue;
        if (!isEscape(text.substr(i))) return false;
        i += 2;
    }
    return true;
}

bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text[0]) && std::all_of(text.begin(), text.end(), [](char c) {
        return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
    });
}

bool isPort(std::string_view text) {
    unsigned number = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return text.empty() || (error == std::errc() && end == text.data() + text.size() && number <= 0xFFFF);
}

// An IPv6 address, or one of a later version: "v7.x".
bool isAddressInBrackets(std::string_view host) {
    std::string address(host.substr(1, host.size() - 2));
    in6_addr ignored;
    if (::inet_pton(AF_INET6, address.c_str(), &ignored) == 1 && address.find('\0') == npos) return true;
    const std::size_t stop = address.find('.');
    return stop != npos && stop > 1 && stop + 1 < address.size() && (address[0] | 0x20) == 'v' &&
           std::all_of(address.begin() + 1, address.begin() + static_cast<std::ptrdiff_t>(stop),
                       [](char c) { return hexValue(c) < 16; }) &&
           address.find('%') == npos &&
           consistsOf(std::string_view(address).substr(stop + 1), "!$&'()*+,;=:");
}

// Cuts the text behind the first `length` characters off and returns it without its first character, which
// separates the two; no value if the text is not longer.
std::optional<std::string_view> cut(std::string_view& text, std::size_t length) {
    if (length >= text.size()) return std::nullopt;
    std::string_view rest = text.substr(length + 1);
    text = text.substr(0, length);
    return rest;
}

bool parseAuthority(std::string_view text, URLParts& parts) {
    if (const std::size_t at = text.rfind('@'); at != npos) {
        parts.user = text.substr(0, at);
        text.remove_prefix(at + 1);
        if (!consistsOf(*parts.user, "!$&'()*+,;=:")) return false;
    }
    if (text.starts_with('[')) {
        const std::size_t end = text.find(']');
        if (end == npos) return false;
        parts.host = text.substr(0, end + 1);
        text.remove_prefix(end + 1);
        if (!text.empty() && text[0] != ':') return false;
        if (!text.empty()) parts.port = text.substr(1);
        return isAddressInBrackets(*parts.host) && isPort(parts.port.value_or(""));
    }
    parts.port = cut(text, text.find(':'));
    parts.host = text;
    return consistsOf(text, kSubDelimiters) && isPort(parts.port.value_or(""));
}

// The path of a reference that stands in the folder of the base's last component.
std::string mergedPath(const URLParts& base, std::string_view path) {
    if (base.host && base.path.empty()) return "/" + std::string(path);
    return std::string(base.path.substr(0, base.path.rfind('/') + 1)).append(path);
}

// The path without "." and "..", each of which takes the component before it away.
std::string withoutDots(std::string_view path) {
    std::string result;
    const bool isAbsolute = path.starts_with('/');
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/', path[0] == '/'), path.size());
        std::string_view component = path.substr(0, end), name = component;
        path.remove_prefix(end);
        if (name.starts_with('/')) name.remove_prefix(1);
        if (name != "." && name != "..") {
            result += component;
            continue;
        }
        if (name == "..") result.resize(result.rfind('/') == npos ? 0 : result.rfind('/'));
        if (path.empty()) result += '/';  // "a/." and "a/b/.." are folders
    }
    if (!isAbsolute && result.starts_with('/')) result.erase(0, 1);
    return result;
}

std::string joined(const URLParts& parts) {
    std::string text;
    if (parts.scheme) text.append(*parts.scheme).append(":");
    if (parts.host) {
        text += "//";
        if (parts.user) text.append(*parts.user).append("@");
        text += *parts.host;
        if (parts.port) text.append(":").append(*parts.port);
    } else if (parts.path.starts_with("//")) {
        text += "/.";  // or the path would read as a host
    }
    text += parts.path;
    if (parts.query) text.append("?").append(*parts.query);
    if (parts.fragment) text.append("#").append(*parts.fragment);
    return text;
}

}  // namespace

std::optional<URLParts> parseURL(std::string_view text) {
    URLParts parts;
    parts.fragment = cut(text, text.find('#'));
    parts.query = cut(text, text.find('?'));
    const std::size_t colon = text.find(':');
    if (colon != npos && isScheme(text.substr(0, colon))) {
        parts.scheme = text.substr(0, colon);
        text.remove_prefix(colon + 1);
    } else if (colon < text.find('/')) {
        return std::nullopt;  // "1:2" is no scheme, and a component that could be mistaken for one
    }
    if (text.starts_with("//")) {
        text.remove_prefix(2);
        const std::size_t end = std::min(text.find('/'), text.size());
        if (!parseAuthority(text.substr(0, end), parts)) return std::nullopt;
        text.remove_prefix(end);
    }
    parts.path = text;
    if (!consistsOf(parts.path, kPlainInPath) || !consistsOf(parts.query.value_or(""), kPlainInURL) ||
        !consistsOf(parts.fragment.value_or(""), kPlainInURL))
        return std::nullopt;
    return parts;
}

std::string resolveURL(const URLParts& base, const URLParts& reference) {
    URLParts result = reference;
    std::string path;
    if (reference.scheme || reference.host || reference.path.starts_with('/')) {
        path = withoutDots(reference.path);
    } else if (reference.path.empty()) {
        path = base.path;
        if (!reference.query) result.query = base.query;
    } else {
        path = withoutDots(mergedPath(base, reference.path));
    }
    if (!reference.scheme) {
        result.scheme = base.scheme;
        if (!reference.host) {
            result.user = base.user;
            result.host = base.host;
            result.port = base.port;
        }
    }
    result.path = path;
    return joined(result);
}

std::string withEscapes(std::string_view bytes, std::string_view plain) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (char c : bytes) {
        if (isUnreserved(c) || plain.find(c) != npos) {
            text += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        text.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
    }
    return text;
}

std::optional<std::string> withoutEscapes(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        if (!isEscape(text.substr(i))) return std::nullopt;
        bytes += static_cast<char>(hexValue(text[i + 1]) << 4 | hexValue(text[i + 2]));
        i += 2;
    }
    return bytes;
}

}  // namespace pelvor
