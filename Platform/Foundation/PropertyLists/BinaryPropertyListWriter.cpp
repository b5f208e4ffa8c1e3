// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/BinaryPropertyListWriter.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSNumber.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Foundation/PropertyLists/PropertyListNumbers.h"
#include "Foundation/PropertyLists/PropertyListWalk.h"
#include "Foundation/Strings/NSInlineString.h"

namespace pelvor {
namespace {

// The high half of an object's first byte.
enum Marker : std::uint8_t {
    kFalse = 0x08,
    kTrue = 0x09,
    kInteger = 0x10,
    kReal32 = 0x22,
    kReal64 = 0x23,
    kDate = 0x33,
    kData = 0x40,
    kASCII = 0x50,
    kUTF16 = 0x60,
    kArray = 0xA0,
    kDictionary = 0xD0,
};

void appendNumber(GrowingBytes& bytes, std::uint64_t value, std::size_t size) {
    char* place = bytes.room(size);
    for (std::size_t i = size; i-- > 0; value >>= 8) place[i] = static_cast<char>(value);
    bytes.advance(size);
}

// 1, 2, 4 or 8: the bytes that a number takes.
std::size_t sizeOfNumber(std::uint64_t value) {
    return value < 1u << 8 ? 1 : value < 1u << 16 ? 2 : value < std::uint64_t{1} << 32 ? 4 : 8;
}

void appendUnsigned(GrowingBytes& bytes, std::uint64_t value) {
    std::size_t size = sizeOfNumber(value);
    bytes.append(static_cast<char>(kInteger | std::countr_zero(size)));
    appendNumber(bytes, value, size);
}

// Numbers of eight bytes are read as signed, so larger numbers take sixteen.
void appendInteger(GrowingBytes& bytes, PropertyListInteger value) {
    if (!value.isUnsigned) return appendUnsigned(bytes, value.bits);
    bytes.append(static_cast<char>(kInteger | 4));
    appendNumber(bytes, 0, 8);
    appendNumber(bytes, value.bits, 8);
}

void appendHead(GrowingBytes& bytes, Marker marker, std::size_t length) {
    bytes.append(static_cast<char>(marker | (length < 0xF ? length : 0xF)));
    if (length >= 0xF) appendUnsigned(bytes, length);
}

void appendUTF16(GrowingBytes& bytes, std::u16string_view units) {
    char* place = bytes.room(units.size() * 2);
    for (unichar unit : units) {
        *place++ = static_cast<char>(unit >> 8);
        *place++ = static_cast<char>(unit);
    }
    bytes.advance(units.size() * 2);
}

void appendString(GrowingBytes& bytes, std::u16string_view units) {
    unichar allBits = 0;
    for (unichar unit : units) allBits |= unit;
    appendHead(bytes, allBits < 0x80 ? kASCII : kUTF16, units.size());
    if (allBits >= 0x80) return appendUTF16(bytes, units);
    char* place = bytes.room(units.size());
    for (unichar unit : units) *place++ = static_cast<char>(unit);
    bytes.advance(units.size());
}

// Numbers and dates of one kind with equal bits are written as one object.
struct Scalar {
    Marker marker;
    std::uint64_t bits;
    bool isUnsigned = false;

    friend bool operator==(const Scalar&, const Scalar&) = default;
};

// Hashes as strings are hashed, with a secret: nobody can choose numbers or data that collide.
struct HashOfScalar {
    std::size_t operator()(const Scalar& scalar) const {
        unichar units[5] = {scalar.marker};
        std::memcpy(units + 1, &scalar.bits, sizeof scalar.bits);
        return hashUnits({units, 5});
    }
};

struct HashOfData {
    std::size_t operator()(std::string_view bytes) const {
        return hashUnits({reinterpret_cast<const unichar*>(bytes.data()), bytes.size() / 2});
    }
};

struct HashOfString {
    std::size_t operator()(NSString* string) const { return string->hash(); }
};

struct EqualStrings {
    bool operator()(NSString* a, NSString* b) const { return a->isEqualToString(b); }
};

Scalar scalarOf(NSNumber* number) {
    switch (number->objCType()[0]) {
        case 'B':
            return {number->boolValue() ? kTrue : kFalse, 0};
        case 'f':
            return {kReal32, std::bit_cast<std::uint32_t>(number->floatValue())};
        case 'd':
            return {kReal64, std::bit_cast<std::uint64_t>(number->doubleValue())};
        default:
            PropertyListInteger value = propertyListInteger(number);
            return {kInteger, value.bits, value.isUnsigned};
    }
}

// The walk numbers the objects, a container after its members, so that the root comes last. The objects are
// written afterwards, when the number of bytes that a reference takes is known.
class Writer final : public PropertyListVisitor {
  public:
    void visitLeaf(PropertyListKind kind, Object* object) override {
        switch (kind) {
            case PropertyListKind::string:
                return refer(_strings.try_emplace(static_cast<NSString*>(object), nextIndex()), object);
            case PropertyListKind::number:
                return referToScalar(scalarOf(static_cast<NSNumber*>(object)));
            case PropertyListKind::date:
                return referToDate(static_cast<NSDate*>(object));
            default:
                return referToData(static_cast<NSData*>(object));
        }
    }

    void visitKey(NSString* key) override { visitLeaf(PropertyListKind::string, key); }
    void beginArray(NSUInteger) override { _open.push_back({kArray, _pending.size()}); }
    void beginDictionary(NSUInteger) override { _open.push_back({kDictionary, _pending.size()}); }

    void end() override {
        const Open open = _open.back();
        _open.pop_back();
        std::size_t first = _references.size();
        std::size_t count = _pending.size() - open.firstPending;
        std::size_t step = open.marker == kArray ? 1 : 2;  // keys and values have come by turns
        for (std::size_t start = 0; start < step; ++start)
            for (std::size_t i = start; i < count; i += step)
                _references.push_back(_pending[open.firstPending + i]);
        _pending.resize(open.firstPending);
        std::uint32_t index = nextIndex();
        _objects.push_back({.marker = open.marker, .first = first, .count = count / step});
        _pending.push_back(index);
    }

    void write(GrowingBytes& bytes) const {
        bytes.append("bplist00");
        std::size_t referenceSize = sizeOfNumber(_objects.size() - 1);
        std::vector<std::size_t> offsets;
        offsets.reserve(_objects.size());
        for (const Entry& entry : _objects) {
            offsets.push_back(bytes.size());
            writeEntry(bytes, entry, referenceSize);
        }
        writeTable(bytes, offsets, referenceSize);
    }

  private:
    // One object: a string or data, a scalar, or a container with its references.
    struct Entry {
        Marker marker;
        bool isUnsigned = false;
        Object* object = nullptr;
        std::uint64_t bits = 0;
        std::size_t first = 0;
        std::size_t count = 0;
    };
    struct Open {
        Marker marker;
        std::size_t firstPending;
    };

    std::uint32_t nextIndex() const {
        if (_objects.size() >= UINT32_MAX) throw PropertyListFault{"too many objects for a binary list"};
        return static_cast<std::uint32_t>(_objects.size());
    }

    // A reference to the leaf. A leaf that was not found is entered.
    template <class Found>
    void refer(const Found& found, Object* object) {
        auto [place, isNew] = found;
        if (isNew) _objects.push_back({.marker = cast<NSString>(object) ? kASCII : kData, .object = object});
        _pending.push_back(place->second);
    }

    void referToScalar(const Scalar& scalar) {
        auto [place, isNew] = _scalars.try_emplace(scalar, nextIndex());
        if (isNew)
            _objects.push_back(
                {.marker = scalar.marker, .isUnsigned = scalar.isUnsigned, .bits = scalar.bits});
        _pending.push_back(place->second);
    }

    void referToDate(NSDate* date) {
        double seconds = date->timeIntervalSinceReferenceDate();
        if (!std::isfinite(seconds)) throw PropertyListFault{"the date is no moment"};
        referToScalar({kDate, std::bit_cast<std::uint64_t>(seconds)});
    }

    void referToData(NSData* data) {
        auto span = data->span();
        std::string_view content(reinterpret_cast<const char*>(span.data()), span.size());
        refer(_data.try_emplace(content, nextIndex()), data);
    }

    void writeEntry(GrowingBytes& bytes, const Entry& entry, std::size_t referenceSize) const {
        switch (entry.marker) {
            case kFalse:
            case kTrue:
                return bytes.append(static_cast<char>(entry.marker));
            case kInteger:
                return appendInteger(bytes, {entry.bits, entry.isUnsigned});
            case kReal32:
            case kReal64:
            case kDate:
                bytes.append(static_cast<char>(entry.marker));
                return appendNumber(bytes, entry.bits, entry.marker == kReal32 ? 4 : 8);
            case kASCII: {
                StringUnits units(static_cast<NSString*>(entry.object));
                return appendString(bytes, units);
            }
            case kData:
                return writeData(bytes, static_cast<NSData*>(entry.object));
            default:
                return writeContainer(bytes, entry, referenceSize);
        }
    }

    static void writeData(GrowingBytes& bytes, NSData* data) {
        auto span = data->span();
        appendHead(bytes, kData, span.size());
        bytes.append(std::string_view(reinterpret_cast<const char*>(span.data()), span.size()));
    }

    void writeContainer(GrowingBytes& bytes, const Entry& entry, std::size_t referenceSize) const {
        appendHead(bytes, entry.marker, entry.count);
        std::size_t references = entry.marker == kArray ? entry.count : entry.count * 2;
        for (std::size_t i = 0; i < references; ++i)
            appendNumber(bytes, _references[entry.first + i], referenceSize);
    }

    static void writeTable(GrowingBytes& bytes, const std::vector<std::size_t>& offsets,
                           std::size_t referenceSize) {
        std::size_t table = bytes.size();
        std::size_t offsetSize = sizeOfNumber(table);
        for (std::size_t offset : offsets) appendNumber(bytes, offset, offsetSize);
        appendNumber(bytes, 0, 6);
        appendNumber(bytes, offsetSize, 1);
        appendNumber(bytes, referenceSize, 1);
        appendNumber(bytes, offsets.size(), 8);
        appendNumber(bytes, offsets.size() - 1, 8);
        appendNumber(bytes, table, 8);
    }

    std::vector<Entry> _objects;
    std::vector<std::uint32_t> _references;  // of all finished containers
    std::vector<std::uint32_t> _pending;     // what open containers hold so far
    std::vector<Open> _open;
    std::unordered_map<NSString*, std::uint32_t, HashOfString, EqualStrings> _strings;
    std::unordered_map<Scalar, std::uint32_t, HashOfScalar> _scalars;
    std::unordered_map<std::string_view, std::uint32_t, HashOfData> _data;
};

}  // namespace

void writeBinaryPropertyList(Object* root, GrowingBytes& bytes) {
    Writer writer;
    walkPropertyList(root, writer);
    writer.write(bytes);
}

}  // namespace pelvor
