// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/BinaryPropertyListReader.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

#include "Foundation/NSNumber.h"
#include "Foundation/PropertyListLimits.h"
#include "Foundation/PropertyLists/PropertyListBuilder.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Shared/UTF8.h"

namespace pelvor {
namespace {

constexpr std::string_view kMagic = "bplist";
constexpr std::string_view kHeader = "bplist00";
constexpr std::size_t kTrailerSize = 32;
// When strings and data are made again for another reference, so many bytes of them count as one object.
constexpr std::size_t kBytesAnObject = 64;

// The high half of an object's first byte.
enum Marker : std::uint8_t {
    kSimple = 0x0,
    kInteger = 0x1,
    kReal = 0x2,
    kDate = 0x3,
    kData = 0x4,
    kASCII = 0x5,
    kUTF16 = 0x6,
    kIdentifier = 0x8,
    kArray = 0xA,
    kDictionary = 0xD,
};

// An object's first byte, its length, and where its content begins. The length counts bytes, units or
// entries; a number's length is the low half of the first byte.
struct Head {
    std::size_t offset;
    Marker marker;
    std::uint64_t length;
    std::size_t content;
};

// What is known of one object.
struct Node {
    enum class State : std::uint8_t { unread, open, read };

    Retained<Object> object;       // once read, unless each reference makes its own; of a string, as a key
    std::uint32_t totalCount = 1;  // with all objects below, shared objects as often as they are referred to
    std::uint32_t height = 0;      // how deep arrays and dictionaries are nested in it, itself included
    State state = State::unread;
};

// An array or dictionary that is being read.
struct Frame {
    std::size_t reference;
    std::size_t references;  // where they stand: of a dictionary the keys', then the values'
    std::size_t count;
    std::size_t next = 0;
    std::uint64_t totalCount = 1;
    std::uint32_t height = 1;
    bool isDictionary;
    bool isAgain;  // made anew for another reference
};

class Reader {
  public:
    Reader(std::string_view bytes, NSPropertyListMutabilityOptions options)
        : _bytes(bytes),
          _makesContainersAgain(options >= NSPropertyListMutableContainers),
          _makesLeavesAgain(options >= NSPropertyListMutableContainersAndLeaves),
          _limits(propertyListLimits()),
          _builder(options) {}

    Retained<Object> read() {
        readTrailer();
        readValue(_top);
        while (!_frames.empty()) step();
        return _builder.takeRoot();
    }

  private:
    [[noreturn]] static void fail(std::string reason, std::size_t offset) {
        throw PropertyListFault{std::move(reason), 0, 0, offset};
    }

    // Faults that the builder finds have no position.
    template <class Work>
    static auto placed(std::size_t offset, Work work) {
        try {
            return work();
        } catch (const PropertyListFault& fault) {
            fail(fault.reason, offset);
        }
    }

    std::uint64_t number(std::size_t at, std::size_t size) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i) value = value << 8 | static_cast<std::uint8_t>(_bytes[at + i]);
        return value;
    }

    void readTrailer() {
        if (_bytes.substr(0, kHeader.size()) != kHeader) fail("a binary list of an unknown version", 0);
        if (_bytes.size() < kHeader.size() + kTrailerSize)
            fail("a binary list that is cut off", _bytes.size());
        std::size_t trailer = _bytes.size() - kTrailerSize;
        _offsetSize = static_cast<std::uint8_t>(_bytes[trailer + 6]);
        _referenceSize = static_cast<std::uint8_t>(_bytes[trailer + 7]);
        std::uint64_t count = number(trailer + 8, 8);
        std::uint64_t top = number(trailer + 16, 8);
        std::uint64_t table = number(trailer + 24, 8);
        if (_offsetSize < 1 || _offsetSize > 8) fail("offsets of an impossible size", trailer + 6);
        if (_referenceSize < 1 || _referenceSize > 8) fail("references of an impossible size", trailer + 7);
        if (table < kHeader.size() || table > trailer)
            fail("a table of offsets outside the list", trailer + 24);
        if (count > (trailer - table) / _offsetSize) fail("more objects than the list can hold", trailer + 8);
        if (top >= count) fail("a root object that does not exist", trailer + 16);
        _table = static_cast<std::size_t>(table);
        _top = static_cast<std::size_t>(top);
        _nodes.resize(static_cast<std::size_t>(count));
    }

    // Reads the first byte of an object and makes sure that all of it lies before the table of offsets.
    Head headOf(std::size_t reference) {
        std::size_t entry = _table + reference * _offsetSize;
        std::uint64_t offset = number(entry, _offsetSize);
        if (offset < kHeader.size() || offset >= _table) fail("an object outside the list", entry);
        auto at = static_cast<std::size_t>(offset);
        auto first = static_cast<std::uint8_t>(_bytes[at]);
        Head head{at, static_cast<Marker>(first >> 4), first & 0xFu, at + 1};
        if (head.marker >= kData && head.marker != kIdentifier && head.length == 0xF) readLength(head);
        std::size_t size = sizeOfContent(head);
        std::uint64_t available = _table - head.content;
        if (size > 0 && head.length > available / size)
            fail("an object that reaches past the list's end", at);
        if (_nodes[reference].state == Node::State::unread) claim(head, size);
        return head;
    }

    // Each object has bytes of its own: were they shared, a small list could stand for any number of objects.
    void claim(const Head& head, std::size_t size) {
        _claimedBytes += head.content - head.offset + head.length * size;
        if (_claimedBytes > _table) fail("objects that overlap", head.offset);
    }

    // A length that does not fit the first byte follows as a number.
    void readLength(Head& head) {
        std::size_t at = head.content;
        auto first = at < _table ? static_cast<std::uint8_t>(_bytes[at]) : 0;
        std::size_t size = std::size_t{1} << (first & 0xF);
        if (first >> 4 != kInteger || size > 8 || size > _table - at - 1)
            fail("an object without a length", at);
        head.length = number(at + 1, size);
        head.content = at + 1 + size;
    }

    // The bytes that one unit of the object's length takes.
    std::size_t sizeOfContent(const Head& head) const {
        switch (head.marker) {
            case kData:
            case kASCII:
                return 1;
            case kUTF16:
                return 2;
            case kArray:
                return _referenceSize;
            case kDictionary:
                return 2 * _referenceSize;
            default:
                return 0;
        }
    }

    // The bytes of a number, a date or an identifier.
    std::size_t requireBytes(const Head& head, std::size_t size) const {
        if (size > _table - head.content) fail("an object that reaches past the list's end", head.offset);
        return head.content;
    }

    void step() {
        Frame& frame = _frames.back();
        if (frame.next == frame.count) return endContainer();
        std::size_t at = frame.references + frame.next * _referenceSize;
        std::size_t valueAt = at + (frame.isDictionary ? frame.count * _referenceSize : 0);
        ++frame.next;
        if (frame.isDictionary) readKey(referenceAt(at));
        readValue(referenceAt(valueAt));
    }

    std::size_t referenceAt(std::size_t at) const {
        std::uint64_t reference = number(at, _referenceSize);
        if (reference >= _nodes.size()) fail("a reference to an object that does not exist", at);
        return static_cast<std::size_t>(reference);
    }

    void readKey(std::size_t reference) {
        Node& node = _nodes[reference];
        if (node.object && cast<NSString>(node.object)) return _builder.addKey(node.object);
        Head head = headOf(reference);
        if (head.marker != kASCII && head.marker != kUTF16) fail("a key that is no string", head.offset);
        node.state = Node::State::read;
        node.object = makeString(head);
        _builder.addKey(node.object);
    }

    void readValue(std::size_t reference) {
        Node& node = _nodes[reference];
        if (node.object && !(_makesLeavesAgain && cast<NSString>(node.object))) return reuse(node);
        Head head = headOf(reference);
        if (head.marker == kArray || head.marker == kDictionary) return beginContainer(reference, head);
        bool isAgain = node.state == Node::State::read;
        node.state = Node::State::read;
        bool isMutable = _makesLeavesAgain && head.marker >= kData && head.marker <= kUTF16;
        if (isMutable && isAgain) charge(head.length / kBytesAnObject, head.offset);
        auto leaf = isMutable ? makeMutableLeaf(head) : makeLeaf(head);
        if (!isMutable) node.object = leaf;
        placed(head.offset, [&] { _builder.add(std::move(leaf)); });
        count(1, 0);
    }

    // Another reference to a shared object.
    void reuse(Node& node) {
        std::size_t entry = _frames.empty() ? 0 : _frames.back().references;
        if (_builder.depth() + node.height > _limits.maximumDepth) failDepth(entry);
        charge(node.totalCount - 1, entry);
        _builder.add(node.object);
        count(node.totalCount, node.height);
    }

    [[noreturn]] void failDepth(std::size_t offset) {
        fail("arrays and dictionaries are nested more than " + std::to_string(_limits.maximumDepth) + " deep",
             offset);
    }

    // Counts objects that stand in the list more often than they are stored.
    void charge(std::uint64_t objects, std::size_t offset) {
        _sharedObjects += objects;
        if (_sharedObjects > _limits.maximumSharedObjects)
            fail("references that repeat too many objects", offset);
    }

    // Adds to the size and height of the container around a value.
    void count(std::uint64_t objects, std::uint32_t height) {
        if (_frames.empty()) return;
        Frame& frame = _frames.back();
        frame.totalCount += objects;
        if (height + 1 > frame.height) frame.height = height + 1;
    }

    void beginContainer(std::size_t reference, const Head& head) {
        Node& node = _nodes[reference];
        if (node.state == Node::State::open) fail("an array or dictionary that contains itself", head.offset);
        bool isWithinAgain = !_frames.empty() && _frames.back().isAgain;
        bool isAgain = isWithinAgain || node.state == Node::State::read;
        if (isAgain && !isWithinAgain) charge(node.totalCount - 1, head.offset);
        bool isDictionary = head.marker == kDictionary;
        placed(head.offset, [&] { isDictionary ? _builder.beginDictionary() : _builder.beginArray(); });
        node.state = Node::State::open;
        _frames.push_back({.reference = reference,
                           .references = head.content,
                           .count = static_cast<std::size_t>(head.length),
                           .isDictionary = isDictionary,
                           .isAgain = isAgain});
    }

    void endContainer() {
        const Frame frame = _frames.back();
        _frames.pop_back();
        Object* container = _builder.end();
        Node& node = _nodes[frame.reference];
        node.state = Node::State::read;
        node.totalCount = static_cast<std::uint32_t>(std::min<std::uint64_t>(frame.totalCount, UINT32_MAX));
        node.height = frame.height;
        if (!_makesContainersAgain) node.object.set(container);
        count(frame.totalCount, frame.height);
    }

    Retained<Object> makeLeaf(const Head& head) {
        switch (head.marker) {
            case kSimple:
                if (head.length != 0x8 && head.length != 0x9) break;
                return PropertyListBuilder::makeBoolean(head.length == 0x9);
            case kInteger:
                return makeInteger(head);
            case kReal:
                return makeReal(head);
            case kDate:
                return makeDate(head);
            case kData:
                return _builder.makeData(std::as_bytes(std::span(content(head))));
            case kASCII:
            case kUTF16:
                return makeString(head);
            case kIdentifier:
                return makeIdentifier(head);
            default:
                break;
        }
        fail("an object of an unknown kind", head.offset);
    }

    Retained<Object> makeMutableLeaf(const Head& head) {
        if (head.marker == kData) return makeLeaf(head);
        auto string = makeString(head);
        return _builder.makeString({string->characters(), string->length()});
    }

    std::string_view content(const Head& head) const {
        return _bytes.substr(head.content, static_cast<std::size_t>(head.length) * sizeOfContent(head));
    }

    Retained<NSInlineString> makeString(const Head& head) {
        std::string_view bytes = content(head);
        auto string = NSInlineString::create(static_cast<NSUInteger>(head.length));
        unichar* units = string->characters();
        if (head.marker == kUTF16) {
            for (std::size_t i = 0; i < head.length; ++i)
                units[i] = static_cast<unichar>(number(head.content + 2 * i, 2));
        } else {
            std::size_t ascii = asciiPrefix(bytes);
            if (ascii < bytes.size()) fail("a character that is not ASCII", head.content + ascii);
            widen(bytes, units);
        }
        return string;
    }

    // Numbers of up to four bytes are unsigned, those of eight are signed; sixteen bytes hold larger ones.
    Retained<Object> makeInteger(const Head& head) {
        if (head.length > 4) fail("a number of an impossible size", head.offset);
        std::size_t size = std::size_t{1} << head.length;
        std::size_t at = requireBytes(head, size);
        if (size < 16) return PropertyListBuilder::makeInteger({number(at, size), false});
        std::uint64_t high = number(at, 8), low = number(at + 8, 8);
        bool isNegative = high == UINT64_MAX && low >> 63;
        if (high != 0 && !isNegative) fail("a number that does not fit 64 bits", head.offset);
        return PropertyListBuilder::makeInteger({low, !isNegative && low >> 63});
    }

    Retained<Object> makeReal(const Head& head) {
        if (head.length == 2)
            return NSNumber::initWithFloat(
                std::bit_cast<float>(static_cast<std::uint32_t>(number(requireBytes(head, 4), 4))));
        if (head.length != 3) fail("a real number of an impossible size", head.offset);
        return PropertyListBuilder::makeReal(std::bit_cast<double>(number(requireBytes(head, 8), 8)));
    }

    Retained<Object> makeDate(const Head& head) {
        if (head.length != 3) fail("a date of an impossible size", head.offset);
        auto seconds = std::bit_cast<double>(number(requireBytes(head, 8), 8));
        if (!std::isfinite(seconds)) fail("a date that is no moment", head.offset);
        return PropertyListBuilder::makeDate(seconds);
    }

    Retained<Object> makeIdentifier(const Head& head) {
        std::size_t size = static_cast<std::size_t>(head.length) + 1;
        if (size > 8) fail("an identifier of an impossible size", head.offset);
        std::uint64_t value = number(requireBytes(head, size), size);
        return PropertyListBuilder::makeInteger({value, value >> 63 != 0});
    }

    const std::string_view _bytes;
    const bool _makesContainersAgain;
    const bool _makesLeavesAgain;
    const PropertyListLimits _limits;
    std::size_t _offsetSize = 0;
    std::size_t _referenceSize = 0;
    std::size_t _table = 0;
    std::size_t _top = 0;
    std::uint64_t _claimedBytes = 0;
    std::uint64_t _sharedObjects = 0;
    std::vector<Node> _nodes;
    std::vector<Frame> _frames;
    PropertyListBuilder _builder;
};

}  // namespace

bool hasBinaryPropertyListMagic(std::string_view bytes) { return bytes.substr(0, kMagic.size()) == kMagic; }

Retained<Object> readBinaryPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options) {
    return Reader(bytes, options).read();
}

}  // namespace pelvor
