// SPDX-License-Identifier: Apache-2.0
#include "Writer/TextEdit.h"

#include "Scanning/OFStringScanner.h"
#include "Writer/TextEscapes.h"

namespace pelvor {
namespace {

// A number with nothing but a space or the end behind it.
std::optional<NSUInteger> readNumber(OFStringScanner* scanner) {
    const NSUInteger start = scanner->scanLocation();
    const NSUInteger number = scanner->scanUnsignedIntegerMaximumDigits(9);
    const unichar next = scanner->peekCharacter();
    if (scanner->scanLocation() == start || (next != u' ' && next != 0)) return std::nullopt;
    return number;
}

std::optional<NSUInteger> readNumberAfterSpace(OFStringScanner* scanner) {
    return scanner->readCharacter() == u' ' ? readNumber(scanner) : std::nullopt;
}

NSString* readText(OFStringScanner* scanner, NSString* line) {
    if (scanner->readCharacter() != u' ') return nullptr;
    return textFromEscapes(line->substringFromIndex(scanner->scanLocation()));
}

}  // namespace

std::optional<NSUInteger> textPositionOf(NSString* text) {
    auto scanner = OFStringScanner::initWithString(text);
    const auto number = readNumber(scanner);
    return scanner->scanLocation() == text->length() ? number : std::nullopt;
}

std::optional<TextEdit> textEditOf(NSString* line) {
    auto scanner = OFStringScanner::initWithString(line);
    const bool inserts = scanner->scanString_peek(u"insert"_ns, false);
    const bool deletes = !inserts && scanner->scanString_peek(u"delete"_ns, false);
    if (!inserts && !deletes && !scanner->scanString_peek(u"replace"_ns, false)) return std::nullopt;
    const auto position = readNumberAfterSpace(scanner);
    const auto length = inserts ? 0 : position ? readNumberAfterSpace(scanner) : std::nullopt;
    NSString* text = !length ? nullptr : !deletes ? readText(scanner, line) : u""_ns;
    if (!position || !text || (deletes && scanner->scanLocation() < line->length())) return std::nullopt;
    return TextEdit{{*position, *length}, Retained<NSString>::retaining(text)};
}

}  // namespace pelvor
