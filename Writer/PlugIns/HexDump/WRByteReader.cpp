// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/HexDump/WRByteReader.h"

#include <algorithm>
#include <span>
#include <vector>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBUtil.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/HexDump/HexDumpPlugIn.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"
#include "Writer/PlugIns/TextFiles/TextFileSource.h"

namespace pelvor {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t kLineLength = 16;
constexpr std::size_t kShownLength = 64 * 1024;

void appendHexadecimal(std::u16string& text, std::size_t number, int digits) {
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text.push_back(u"0123456789abcdef"[(number >> shift) & 0xF]);
}

// "00000010  48 65 6c 6c 6f                                    Hello".
void appendLine(std::u16string& text, std::size_t offset, Bytes line) {
    appendHexadecimal(text, offset, 8);
    text.push_back(u' ');
    for (std::byte byte : line) {
        text.push_back(u' ');
        appendHexadecimal(text, std::to_integer<std::size_t>(byte), 2);
    }
    text.append(3 * (kLineLength - line.size()) + 2, u' ');
    for (std::byte byte : line) {
        const auto unit = std::to_integer<char16_t>(byte);
        text.push_back(unit >= 0x20 && unit < 0x7F ? unit : u'.');
    }
    text.push_back(u'\n');
}

std::u16string hexadecimalText(Bytes bytes) {
    std::u16string text;
    for (std::size_t offset = 0; offset < bytes.size(); offset += kLineLength)
        appendLine(text, offset, bytes.subspan(offset, std::min(kLineLength, bytes.size() - offset)));
    return text;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRByteReader, hexDumpPlugIn) {
    methods.instance<"readDocumentAtPath:options:", &WRByteReader::readDocumentAtPath_options>();
}

NSDictionary* WRByteReader::readDocumentAtPath_options(NSString* path, NSDictionary* options) {
    const TextFileSource source(path->fileSystemRepresentation());
    std::vector<char> shown(kShownLength);
    const std::ptrdiff_t length = source.isOpen() ? source.readAt(0, shown) : -1;
    if (length < 0) return unreadableAnswer(path, source);
    const Bytes bytes = std::as_bytes(std::span(shown)).first(static_cast<std::size_t>(length));
    NSString* text = NSString::of(hexadecimalText(bytes));
    NSNumber* count =
        NSNumber::numberWithUnsignedLongLong(std::max<std::uint64_t>(source.length(), bytes.size()));
    if (source.length() > bytes.size()) {
        NSNumber* more = NSNumber::numberWithUnsignedLongLong(source.length() - bytes.size());
        text = text->stringByAppendingFormat(_PBDoLocalize(u"_and %@ more bytes"_ns, this), more);
    }
    return NSDictionary::of({{WRTextKey, text}, {WRByteCountKey, count}});
}

}  // namespace pelvor
