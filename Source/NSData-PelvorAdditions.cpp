// SPDX-License-Identifier: Apache-2.0
#include "NSData-PelvorAdditions.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

#include "Foundation/NSMutableData.h"
#include "Private/Base64Lines.h"
#include "Private/HexText.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Base64.h"
#include "Shared/SequenceSearch.h"

namespace pelvor {
namespace {

using Byte = std::uint8_t;

void defineAdditions(MethodTable<NSData>& methods) {
    using Additions = NSData_PelvorAdditions;
    methods.classLevel<"initWithBase64String:", &Additions::initWithBase64String>();
    methods.classLevel<"dataWithBase64String:", &Additions::dataWithBase64String>();
    methods.classLevel<"initWithHexString:", &Additions::initWithHexString>();
    methods.classLevel<"dataWithHexString:", &Additions::dataWithHexString>();
    methods.instance<"base64DataWithLineLength:", &base64DataWithLineLength>();
    methods.instance<"base64String", &base64String>();
    methods.instance<"lowercaseHexString", &lowercaseHexString>();
    methods.instance<"unadornedLowercaseHexString", &unadornedLowercaseHexString>();
    methods.instance<"_lowercaseHexStringWithPrefix:length:", &_lowercaseHexStringWithPrefix_length>();
    methods.instance<"rangeOfBytes:length:range:", &rangeOfBytes_length_range>();
    methods.instance<"rangeOfBytes:length:", &rangeOfBytes_length>();
    methods.instance<"rangeOfData:range:", &rangeOfData_range>();
    methods.instance<"rangeOfData:", &rangeOfData>();
}

std::span<const Byte> bytesOf(NSData* data) {
    return {static_cast<const Byte*>(data->bytes()), data->length()};
}

NSUInteger requireLength(std::uint64_t length) {
    if (length > std::numeric_limits<NSUInteger>::max())
        throw NSException(NSMallocException, "the text of the data would be too long");
    return static_cast<NSUInteger>(length);
}

// Memory from `malloc` that an object takes over. Raises NSMallocException if memory has run out.
template <class Unit>
struct Block {
    explicit Block(std::size_t count)
        : size(count), units(static_cast<Unit*>(std::malloc(count * sizeof(Unit) + 1)), &std::free) {
        if (!units) throw NSException(NSMallocException, "no memory for the text or the data");
    }
    std::size_t size;
    std::unique_ptr<Unit, decltype(&std::free)> units;
};

// Data of the bytes at the block's front, which keep no memory worth mentioning behind them.
Retained<NSData> dataOf(Block<Byte>& block, const Byte* end, Class* cls = NSData::classObject()) {
    auto length = static_cast<std::size_t>(end - block.units.get());
    if (cls->isSubclassOfClass(NSMutableData::classObject()))
        return NSMutableData::initWithBytesNoCopy_length(block.units.release(),
                                                         static_cast<NSUInteger>(length));
    if (length + length / 8 + 64 < block.size)
        if (void* smaller = std::realloc(block.units.get(), length + 1)) {
            (void)block.units.release();
            block.units.reset(static_cast<Byte*>(smaller));
        }
    return NSData::initWithBytesNoCopy_length(block.units.release(), static_cast<NSUInteger>(length));
}

// A string of `length` units, which `write` writes.
template <class Write>
NSString* writtenString(NSUInteger length, Write write) {
    Block<unichar> block(length);
    write(block.units.get());
    return NSString::initWithCharactersNoCopy_length_freeWhenDone(block.units.release(), length, true)
        .autorelease();
}

bool isSpace(char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r'); }

std::u16string_view withoutHexPrefix(std::u16string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    if (text.starts_with(u"0x") || text.starts_with(u"0X")) text.remove_prefix(2);
    return text;
}

}  // namespace

constinit const Category NSData_PelvorAdditions_category =
    Category::of<NSData, defineAdditions>("PelvorAdditions");

// MARK: Base64

NSData* base64DataWithLineLength(NSData* data, NSUInteger lineLength) {
    requireArgument(data, "base64DataWithLineLength:", "the data");
    auto bytes = bytesOf(data);
    Block<Byte> text(requireLength(base64LengthInLines(bytes.size(), lineLength)));
    Byte* end = writeBase64Lines(bytes, lineLength, text.units.get());
    return dataOf(text, end).autorelease();
}

NSString* base64String(NSData* data) {
    requireArgument(data, "base64String", "the data");
    auto bytes = bytesOf(data);
    return writtenString(requireLength(base64LengthOf(bytes.size())),
                         [bytes](unichar* units) { writeBase64(bytes, units); });
}

Retained<NSData> NSData_PelvorAdditions::initWithBase64String(NSString* string, Class* cls) {
    requireArgument(string, "initWithBase64String:", "the string");
    requireArgument(cls, "initWithBase64String:", "the class");
    StringUnits units(string);
    std::u16string_view text = units;
    Block<Byte> bytes(Base64Reader::roomFor(text.size()));
    Base64Reader reader(bytes.units.get());
    if (!reader.read(text)) return dataOf(bytes, bytes.units.get(), cls);
    if (reader.isInsideGroup()) throw NSException(Base64Error, "Premature end of Base64 string");
    return dataOf(bytes, reader.end(), cls);
}

NSData* NSData_PelvorAdditions::dataWithBase64String(NSString* string, Class* cls) {
    requireArgument(string, "dataWithBase64String:", "the string");
    requireArgument(cls, "dataWithBase64String:", "the class");
    return initWithBase64String(string, cls).autorelease();
}

// MARK: Hexadecimal

NSString* _lowercaseHexStringWithPrefix_length(NSData* data, const unichar* prefix, NSUInteger prefixLength) {
    requireArgument(data, "_lowercaseHexStringWithPrefix:length:", "the data");
    requireMemory(prefix, prefixLength, "_lowercaseHexStringWithPrefix:length:", "the prefix");
    auto bytes = bytesOf(data);
    return writtenString(requireLength(bytes.size() * 2 + prefixLength),
                         [=](unichar* units) { writeHex(bytes, std::copy_n(prefix, prefixLength, units)); });
}

NSString* lowercaseHexString(NSData* data) {
    requireArgument(data, "lowercaseHexString", "the data");
    return _lowercaseHexStringWithPrefix_length(data, u"0x", 2);
}

NSString* unadornedLowercaseHexString(NSData* data) {
    requireArgument(data, "unadornedLowercaseHexString", "the data");
    return _lowercaseHexStringWithPrefix_length(data, nullptr, 0);
}

Retained<NSData> NSData_PelvorAdditions::initWithHexString(NSString* string, Class* cls) {
    requireArgument(string, "initWithHexString:", "the string");
    requireArgument(cls, "initWithHexString:", "the class");
    StringUnits units(string);
    std::u16string_view text = withoutHexPrefix(units);
    std::size_t size = (text.size() + 1) / 2, lone = text.size() % 2;
    Block<Byte> block(size);
    Byte* bytes = block.units.get();
    if (lone && (bytes[0] = valueOfHexDigit(text[0])) > 15) return nullptr;
    if (!readHex(text.substr(lone), bytes + lone)) return nullptr;
    return dataOf(block, bytes + size, cls);
}

NSData* NSData_PelvorAdditions::dataWithHexString(NSString* string, Class* cls) {
    requireArgument(string, "dataWithHexString:", "the string");
    requireArgument(cls, "dataWithHexString:", "the class");
    return initWithHexString(string, cls).autorelease();
}

// MARK: Search

NSRange rangeOfBytes_length_range(NSData* data, const void* bytes, NSUInteger length, NSRange range) {
    requireArgument(data, "rangeOfBytes:length:range:", "the data");
    requireRange(range, data->length(), "rangeOfBytes:length:range:");
    requireMemory(bytes, length, "rangeOfBytes:length:range:", "the bytes");
    std::size_t place = findSequence<Byte>(bytesOf(data).subspan(range.location, range.length),
                                           {static_cast<const Byte*>(bytes), length});
    if (place == kNoPlace) return {NSNotFound, 0};
    return {range.location + static_cast<NSUInteger>(place), length};
}

NSRange rangeOfBytes_length(NSData* data, const void* bytes, NSUInteger length) {
    requireArgument(data, "rangeOfBytes:length:", "the data");
    requireMemory(bytes, length, "rangeOfBytes:length:", "the bytes");
    return rangeOfBytes_length_range(data, bytes, length, {0, data->length()});
}

NSRange rangeOfData_range(NSData* data, NSData* pattern, NSRange range) {
    requireArgument(data, "rangeOfData:range:", "the data");
    requireRange(range, data->length(), "rangeOfData:range:");
    return pattern ? rangeOfBytes_length_range(data, pattern->bytes(), pattern->length(), range)
                   : NSRange{NSNotFound, 0};
}

NSRange rangeOfData(NSData* data, NSData* pattern) {
    requireArgument(data, "rangeOfData:", "the data");
    return rangeOfData_range(data, pattern, {0, data->length()});
}

}  // namespace pelvor
