// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Files/SystemPath.h"

#include "Foundation/NSPathStore2.h"
#include "Foundation/NSString.h"
#include "Shared/UTF8.h"

namespace pelvor {
namespace {

// The lone halves for the bytes 80 to FF begin here, less 0x80.
constexpr char16_t kFirstByteUnit = 0xDC00;

bool isHighHalf(char16_t unit) { return (unit & 0xFC00) == 0xD800; }

bool isByteUnit(std::u16string_view units, std::size_t place) {
    return units[place] >= 0xDC80 && units[place] <= 0xDCFF && (place == 0 || !isHighHalf(units[place - 1]));
}

// How many bytes at the front are a character in UTF-8; 0 if they are none.
std::size_t lengthOfCharacter(std::string_view bytes) {
    const auto first = static_cast<unsigned char>(bytes[0]);
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    return unitsFromUTF8(bytes.substr(0, length)) ? length : 0;
}

}  // namespace

std::string systemPath(NSString* path) {
    if (!path) return {};
    StringUnits units(path);
    return systemPath(units.view());
}

std::string systemPath(std::u16string_view units) {
    std::string bytes;
    for (std::size_t start = 0, place = 0; place <= units.size(); ++place) {
        if (place < units.size() && !isByteUnit(units, place)) continue;
        bytes += utf8FromUnitsMending(units.substr(start, place - start));
        if (place < units.size()) bytes += static_cast<char>(units[place] - kFirstByteUnit);
        start = place + 1;
    }
    return bytes;
}

NSString* stringOfSystemPath(std::string_view bytes) { return NSPathStore2::of(unitsOfSystemPath(bytes)); }

std::u16string unitsOfSystemPath(std::string_view bytes) {
    if (auto units = unitsFromUTF8(bytes)) return *units;
    std::u16string units;
    while (!bytes.empty()) {
        const std::size_t length = lengthOfCharacter(bytes);
        if (length > 0)
            units += *unitsFromUTF8(bytes.substr(0, length));
        else
            units += static_cast<char16_t>(kFirstByteUnit + static_cast<unsigned char>(bytes[0]));
        bytes.remove_prefix(length > 0 ? length : 1);
    }
    return units;
}

bool isSystemPath(const std::string& path) {
    if (path.empty()) return failWith(ENOENT);
    return path.find('\0') == path.npos || failWith(EINVAL);
}

SystemPlace::SystemPlace(const std::string& path) {
    if (!isSystemPath(path)) return;
    const std::size_t end = path.find_last_not_of('/') + 1;
    const std::size_t start = path.substr(0, end).rfind('/') + 1;
    name = path.substr(start, end - start);
    if (name.empty() || name == "." || name == "..") {
        errno = EINVAL;
        return;
    }
    const std::string parent = start ? path.substr(0, start) : ".";
    folder.set(openedAt(AT_FDCWD, parent.c_str(), O_PATH | O_DIRECTORY).release());
}

}  // namespace pelvor
