// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/PropertyListReading.h"

#include <algorithm>
#include <string>

#include "Foundation/PropertyLists/BinaryPropertyListReader.h"
#include "Foundation/PropertyLists/OldStylePropertyListReader.h"
#include "Foundation/PropertyLists/PlainXMLPropertyListReader.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Foundation/PropertyLists/XMLPropertyListReader.h"

namespace pelvor {
namespace {

// The beginning of the text without byte-order mark and white space, in whatever form of Unicode: all that
// tells formats apart is ASCII.
std::string beginningOf(std::string_view bytes) {
    constexpr std::size_t kEnough = 16;
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    if (bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE")) bytes.remove_prefix(2);
    std::string beginning;
    for (std::size_t i = 0; i < bytes.size() && beginning.size() < kEnough; ++i) {
        char c = bytes[i];
        bool isSpace = c == ' ' || (c >= '\t' && c <= '\r');
        if (c != '\0' && !(isSpace && beginning.empty())) beginning += c;
    }
    return beginning;
}

// With its mark, or without by the zeros around the first character, which is ASCII in every list.
bool isUTF32(std::string_view bytes) {
    constexpr std::string_view kZeros("\0\0\0", 3);
    if (bytes.size() < 4 || bytes.size() % 4 != 0) return false;
    std::string_view first = bytes.substr(0, 4);
    return first == std::string_view("\xFF\xFE\0\0", 4) || first == std::string_view("\0\0\xFE\xFF", 4) ||
           (first.starts_with(kZeros) != first.ends_with(kZeros));
}

bool isHexDigit(char c) { return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f'); }

// "<" begins data in the old style, too; but a tag's name is no hexadecimal number.
bool beginsAsXML(std::string_view text) {
    if (text.size() < 2 || text[0] != '<') return false;
    if (text[1] == '?' || text[1] == '!') return true;
    auto isLetter = [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; };
    auto nameEnd = std::find_if_not(text.begin() + 1, text.end(), isLetter);
    return !std::all_of(text.begin() + 1, nameEnd, isHexDigit);
}

}  // namespace

NSPropertyListFormat propertyListFormatOf(std::string_view bytes) {
    if (hasBinaryPropertyListMagic(bytes)) return NSPropertyListBinaryFormat_v1_0;
    return beginsAsXML(beginningOf(bytes)) ? NSPropertyListXMLFormat_v1_0 : NSPropertyListOldStyleFormat;
}

Retained<Object> readPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options) {
    if (bytes.empty()) throw PropertyListFault{"there are no bytes"};
    if (isUTF32(bytes)) throw PropertyListFault{"the text is in UTF-32; only UTF-8 and UTF-16 are read"};
    switch (propertyListFormatOf(bytes)) {
        case NSPropertyListBinaryFormat_v1_0:
            return readBinaryPropertyList(bytes, options);
        case NSPropertyListXMLFormat_v1_0:
            if (auto list = readPlainXMLPropertyList(bytes, options)) return list;
            return readXMLPropertyList(bytes, options);
        default:
            return readOldStylePropertyList(decodeOldStyleText(bytes), options);
    }
}

}  // namespace pelvor
