// SPDX-License-Identifier: Apache-2.0
// URLs as plain text, by RFC 3986; for Foundation's own sources.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pelvor {

/// The components of a URL or a relative reference, as they are written, with their escapes. A component that
/// is not there has no value; one that is there may be empty.
struct URLParts {
    std::optional<std::string_view> scheme;
    std::optional<std::string_view> user;  ///< with the password, if there is one: "anna:secret"
    std::optional<std::string_view> host;  ///< no value if there is no "//"; an IPv6 address in brackets
    std::optional<std::string_view> port;
    std::string_view path;
    std::optional<std::string_view> query;
    std::optional<std::string_view> fragment;
};

/// The components of the text, which has to outlive them; no value if the text is no URL and no reference.
std::optional<URLParts> parseURL(std::string_view text);

/// What the reference means where it stands in the document `base`.
std::string resolveURL(const URLParts& base, const URLParts& reference);

/// Which characters besides letters, digits and "-._~" stay as they are when a text is escaped.
inline constexpr std::string_view kPlainInPath = "!$&'()*+,;=:@/";
inline constexpr std::string_view kPlainInURL = "!$&'()*+,;=:@/?";

/// The bytes, with "%XX" for each byte that is neither plain nor one of `plain`.
std::string withEscapes(std::string_view bytes, std::string_view plain);
/// The bytes that the text stands for; no value if a "%" stands without two hexadecimal digits.
std::optional<std::string> withoutEscapes(std::string_view text);

}  // namespace pelvor
