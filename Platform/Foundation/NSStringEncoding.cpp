// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSStringEncoding.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

namespace pelvor {

std::optional<std::u16string> decodeBytes(std::string_view bytes, NSStringEncoding encoding) {
    if (encoding != NSUTF8StringEncoding) return std::nullopt;
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    std::u16string units(bytes.size(), u'\0');
    u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &length, bytes.data(),
                  static_cast<int32_t>(bytes.size()), &error);
    if (U_FAILURE(error)) return std::nullopt;
    units.resize(static_cast<std::size_t>(length));
    return units;
}

}  // namespace pelvor
