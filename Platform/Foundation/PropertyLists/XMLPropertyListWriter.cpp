// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/XMLPropertyListWriter.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSNumber.h"
#include "Foundation/PropertyLists/PropertyListBase64.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Foundation/PropertyLists/PropertyListNumbers.h"
#include "Foundation/PropertyLists/PropertyListWalk.h"
#include "Shared/Codepoints.h"
#include "Shared/UTF8.h"
#include "Shared/Vectors.h"

namespace pelvor {
namespace {

constexpr std::string_view kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFooter = "</plist>\n";

// Lines of base64 are 76 columns wide with tabs of 8, but never narrower than this.
constexpr std::size_t kDataWidth = 76;
constexpr std::size_t kNarrowestData = 20;

// Writes eight units as eight bytes. Returns false if one of the units does not stand for itself in XML.
bool copyPlain(const unichar* units, char* out) {
    const Units8 eight = loadUnits(units);
    auto is = [eight](unichar unit) { return eight == vectorOf(unit); };
    const auto marked =
        (eight < vectorOf(u' ')) | (eight > vectorOf(u'\x7F')) | is(u'<') | is(u'>') | is(u'&');
    if (bitsOf(reinterpret_cast<Bytes16>(marked))) return false;
    narrowEight(eight, out);
    return true;
}

char* copyLiteral(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

[[noreturn]] void refuseCharacter(std::uint32_t character) {
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(character));
    throw PropertyListFault{std::string("the character ") + name + " cannot be written as XML"};
}

// Writes one unit below U+0080, which takes six bytes at most.
char* writeASCII(unichar unit, char* out) {
    switch (unit) {
        case '<':
            return copyLiteral(out, "&lt;");
        case '>':
            return copyLiteral(out, "&gt;");
        case '&':
            return copyLiteral(out, "&amp;");
        case '\r':  // a reader takes a bare carriage return for a line feed
            return copyLiteral(out, "&#13;");
        default:
            if (unit < 0x20 && unit != '\t' && unit != '\n') refuseCharacter(unit);
            *out++ = static_cast<char>(unit);
            return out;
    }
}

// A character from U+0080 on; `units` moves behind it.
char* writeWide(const unichar*& units, const unichar* end, char* out) {
    char32_t value = *units++;
    if (isHighSurrogate(value) && units < end && isLowSurrogate(*units)) {
        value = codepointOfPair(units[-1], units[0]);
        ++units;
    } else if (isSurrogate(value) || value >= 0xFFFE) {
        refuseCharacter(value);
    }
    return writeUTF8(value, out);
}

// The next eight units or, near the end of the piece, what is left of it; a pair may reach past the piece.
char* writeUpToEight(const unichar*& next, const unichar* pieceEnd, const unichar* end, char* out) {
    if (pieceEnd - next >= 8 && copyPlain(next, out)) {
        next += 8;
        return out + 8;
    }
    const unichar* last = next + std::min<std::ptrdiff_t>(8, pieceEnd - next);
    while (next < last) out = *next < 0x80 ? writeASCII(*next++, out) : writeWide(next, end, out);
    return out;
}

class Writer final : public PropertyListVisitor {
  public:
    explicit Writer(GrowingBytes& bytes) : _bytes(bytes) {}

    void visitLeaf(PropertyListKind kind, Object* object) override {
        switch (kind) {
            case PropertyListKind::string:
                return writeText("<string>", static_cast<NSString*>(object), "</string>\n");
            case PropertyListKind::number:
                return writeNumber(static_cast<NSNumber*>(object));
            case PropertyListKind::date:
                return writeDate(static_cast<NSDate*>(object));
            default:
                return writeData(static_cast<NSData*>(object));
        }
    }

    void visitKey(NSString* key) override { writeText("<key>", key, "</key>\n"); }
    void beginArray(NSUInteger count) override { begin(count, "<array>\n", "<array/>\n", "</array>\n"); }
    void beginDictionary(NSUInteger count) override { begin(count, "<dict>\n", "<dict/>\n", "</dict>\n"); }

    void end() override {
        std::string_view tag = _endTags.back();
        _endTags.pop_back();
        if (tag.empty()) return;
        indent();
        _bytes.append(tag);
    }

  private:
    void begin(NSUInteger count, std::string_view start, std::string_view empty, std::string_view end) {
        indent();
        _bytes.append(count ? start : empty);
        _endTags.push_back(count ? end : std::string_view());
    }

    void indent() { _bytes.append(_endTags.size(), '\t'); }

    void writeText(std::string_view start, NSString* string, std::string_view end) {
        indent();
        _bytes.append(start);
        StringUnits units(string);
        writeUnits(units.view());
        _bytes.append(end);
    }

    // In pieces, so that the room for the longest possible form of each stays small.
    void writeUnits(std::u16string_view units) {
        constexpr std::size_t kPiece = 4096;
        const unichar* next = units.data();
        const unichar* end = next + units.size();
        while (next < end) {
            const unichar* pieceEnd =
                next + std::min<std::size_t>(kPiece, static_cast<std::size_t>(end - next));
            char* start = _bytes.room(static_cast<std::size_t>(pieceEnd - next) * 6 + 6);
            char* out = start;
            while (next < pieceEnd) out = writeUpToEight(next, pieceEnd, end, out);
            _bytes.advance(static_cast<std::size_t>(out - start));
        }
    }

    void writeNumber(NSNumber* number) {
        indent();
        switch (number->objCType()[0]) {
            case 'B':
                return _bytes.append(number->boolValue() ? "<true/>\n" : "<false/>\n");
            case 'f':
            case 'd':
                _bytes.append("<real>");
                appendPropertyListReal(_bytes, number->doubleValue());
                return _bytes.append("</real>\n");
            default:
                _bytes.append("<integer>");
                appendPropertyListInteger(_bytes, propertyListInteger(number));
                return _bytes.append("</integer>\n");
        }
    }

    void writeDate(NSDate* date) {
        indent();
        _bytes.append("<date>");
        if (!appendPropertyListDate(_bytes, date->timeIntervalSinceReferenceDate()))
            throw PropertyListFault{"the date lies too far away"};
        _bytes.append("</date>\n");
    }

    void writeData(NSData* data) {
        indent();
        _bytes.append("<data>\n");
        std::size_t tabs = _endTags.size() * 8;
        std::size_t width = tabs + kNarrowestData > kDataWidth ? kNarrowestData : kDataWidth - tabs;
        auto bytes = data->span();
        appendPropertyListBase64(_bytes, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                                 width / 4 * 4, _endTags.size());
        indent();
        _bytes.append("</data>\n");
    }

    GrowingBytes& _bytes;
    std::vector<std::string_view> _endTags;  // of the open elements; "" for an empty element
};

}  // namespace

void writeXMLPropertyList(Object* root, GrowingBytes& bytes) {
    bytes.append(kHeader);
    Writer writer(bytes);
    walkPropertyList(root, writer);
    bytes.append(kFooter);
}

}  // namespace pelvor
