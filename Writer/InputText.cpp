// SPDX-License-Identifier: Apache-2.0
#include "Writer/InputText.h"

#include "Foundation/NSData.h"
#include "Foundation/NSStringEncoding.h"

namespace pelvor {
namespace {

// How many bytes at the front are one character of UTF-8; 0 if they are none.
std::size_t lengthOfCharacter(std::string_view bytes) {
    for (std::size_t length = 1; length <= 4 && length <= bytes.size(); ++length)
        if (decodeBytes(bytes.substr(0, length), NSUTF8StringEncoding)) return length;
    return 0;
}

}  // namespace

id objectOfInput(std::string_view bytes) {
    if (auto units = decodeBytes(bytes, NSUTF8StringEncoding)) return NSString::of(*units);
    return NSData::dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
}

NSString* readableBytes(NSData* data) {
    std::string_view bytes(static_cast<const char*>(data->bytes()), data->length());
    std::string text;
    while (!bytes.empty()) {
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(bytes[0]);
        std::size_t length = lengthOfCharacter(bytes);
        if (length == 0) {
            text += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
            length = 1;
        } else {
            text += bytes.substr(0, length);
        }
        bytes.remove_prefix(length);
    }
    return NSString::ofUTF8(text);
}

}  // namespace pelvor
