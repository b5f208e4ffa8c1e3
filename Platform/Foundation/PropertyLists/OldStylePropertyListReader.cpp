// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/OldStylePropertyListReader.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <vector>

#include "Foundation/PropertyLists/PropertyListBuilder.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Shared/UTF8.h"

namespace pelvor {
namespace {

constexpr unichar kLineSeparator = 0x2028;
constexpr unichar kParagraphSeparator = 0x2029;

// What octal escapes from \200 to \377 stand for: the format has an 8-bit character set of its own.
constexpr std::u16string_view kUpperCharacters =
    u"\u00A0ÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖÙÚÛÜÝÞµ×÷"
    u"©¡¢£⁄¥ƒ§¤’“«‹›ﬁﬂ®–†‡·¦¶•‚„”»…‰¬¿"
    u"¹ˋ´ˆ˜¯˘˙¨²˚¸³˝˛ˇ—±¼½¾àáâãäåçèéêë"
    u"ìÆíªîïðñŁØŒºòóôõöæùúûıüýłøœßþÿ\uFFFD\uFFFD";
static_assert(kUpperCharacters.size() == 128);

bool isLineEnd(unichar unit) {
    return unit == '\n' || unit == '\r' || unit == kLineSeparator || unit == kParagraphSeparator;
}

bool isSpace(unichar unit) { return unit == ' ' || (unit >= '\t' && unit <= '\r') || isLineEnd(unit); }

// Whether the character may stand in a string without quotes.
bool isUnquoted(unichar unit) {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') || (unit >= '0' && unit <= '9') ||
           unit == '_' || unit == '$' || unit == '/' || unit == ':' || unit == '.' || unit == '-';
}

// The value of a hexadecimal digit; -1 for any other character.
int hexValue(unichar unit) {
    if (unit >= '0' && unit <= '9') return unit - '0';
    unit |= 0x20;
    return unit >= 'a' && unit <= 'f' ? unit - 'a' + 10 : -1;
}

// Where the place lies in the text; CR LF is one line end.
PropertyListFault placedFault(std::string reason, std::u16string_view text, std::size_t offset) {
    std::size_t line = 1, lineStart = 0;
    for (std::size_t i = 0; i < offset; ++i) {
        if (!isLineEnd(text[i]) || (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')) continue;
        ++line;
        lineStart = i + 1;
    }
    return {std::move(reason), line, offset - lineStart + 1, offset};
}

class Reader {
  public:
    Reader(std::u16string_view text, NSPropertyListMutabilityOptions options)
        : _text(text), _builder(options) {}

    Retained<Object> read() {
        try {
            readRoot();
        } catch (const PropertyListFault& fault) {
            throw placedFault(fault.reason, _text, _next);
        }
        return _builder.takeRoot();
    }

  private:
    [[noreturn]] void fail(std::string reason) { throw PropertyListFault{std::move(reason)}; }

    [[noreturn]] void failExpecting(const char* expected) {
        if (isAtEnd()) fail(std::string("the text ends where there should be ") + expected);
        char shown[16];
        if (peek() > 0x20 && peek() < 0x7F)
            std::snprintf(shown, sizeof shown, "'%c'", static_cast<char>(peek()));
        else
            std::snprintf(shown, sizeof shown, "U+%04X", static_cast<unsigned>(peek()));
        fail(std::string(shown) + " where there should be " + expected);
    }

    bool isAtEnd() const { return _next == _text.size(); }
    unichar peek() const { return _text[_next]; }
    bool isNext(unichar unit) const { return !isAtEnd() && peek() == unit; }
    bool isStringNext() const {
        return !isAtEnd() && (peek() == '"' || peek() == '\'' || isUnquoted(peek()));
    }

    // Takes the mark if it comes next.
    bool take(unichar unit) {
        if (!isNext(unit)) return false;
        ++_next;
        return true;
    }

    // Moves over white space and comments.
    void skipSpace() {
        for (;;) {
            while (!isAtEnd() && isSpace(peek())) ++_next;
            std::u16string_view mark = _text.substr(_next, 2);
            if (mark == u"//")
                while (!isAtEnd() && !isLineEnd(peek())) ++_next;
            else if (mark == u"/*")
                skipComment();
            else
                return;
        }
    }

    void skipComment() {
        std::size_t end = _text.find(u"*/", _next + 2);
        if (end == _text.npos) fail("a comment without an end");
        _next = end + 2;
    }

    void readRoot() {
        skipSpace();
        if (isStringNext()) return readTableOrString();
        if (isAtEnd()) {
            _builder.beginDictionary();
            _builder.end();
            return;
        }
        readValue();
        readContainers();
        requireEnd();
    }

    void requireEnd() {
        skipSpace();
        if (!isAtEnd()) failExpecting("the end of the text");
    }

    // A string alone is the value; a string that is a key begins a string table.
    void readTableOrString() {
        std::u16string first(readString());
        skipSpace();
        if (isAtEnd()) return _builder.add(_builder.makeString(first));
        if (!isNext('=') && !isNext(';')) failExpecting("the end of the text, '=' or ';'");
        _isTable = true;
        _builder.beginDictionary();
        readEntry(first);
        readContainers();
    }

    // Reads on until all open arrays and dictionaries have ended.
    void readContainers() {
        while (_builder.depth() > 0) {
            skipSpace();
            if (_builder.isInDictionary())
                readNextEntry();
            else
                readNextElement();
        }
    }

    void readNextEntry() {
        bool isBareTable = _isTable && _builder.depth() == 1;
        if (isBareTable ? isAtEnd() : take('}')) return endContainer();
        if (!isStringNext()) failExpecting(isBareTable ? "a key" : "a key or '}'");
        readEntry(readString());
    }

    // Reads what follows a key: its value, or the end of the entry, which makes the key its own value.
    void readEntry(std::u16string_view key) {
        _builder.addKey(key);
        skipSpace();
        if (take('=')) {
            skipSpace();
            return readValue();
        }
        if (!isNext(';')) failExpecting("'=' or ';'");
        _builder.add(_builder.makeString(key));
        endValue();
    }

    void readNextElement() {
        if (take(')')) return endContainer();
        readValue();
    }

    void endContainer() {
        _builder.end();
        if (_builder.depth() > 0) endValue();
    }

    // A leaf, or the beginning of an array or dictionary.
    void readValue() {
        if (take('{')) return _builder.beginDictionary();
        if (take('(')) return _builder.beginArray();
        if (take('<'))
            readData();
        else if (isStringNext())
            _builder.add(_builder.makeString(readString()));
        else
            failExpecting("a value");
        if (_builder.depth() > 0) endValue();
    }

    // The mark after a value.
    void endValue() {
        skipSpace();
        if (_builder.isInDictionary()) {
            if (!take(';')) failExpecting("';'");
        } else if (!take(',') && !isNext(')')) {
            failExpecting("',' or ')'");
        }
    }

    void readData() {
        _data.clear();
        int high = -1;
        for (; !isNext('>'); ++_next) {
            if (isAtEnd()) failExpecting("'>'");
            if (isSpace(peek())) continue;
            int digit = hexValue(peek());
            if (digit < 0) failExpecting("a hexadecimal digit or '>'");
            if (high >= 0) _data.push_back(static_cast<std::byte>(high << 4 | digit));
            high = high >= 0 ? -1 : digit;
        }
        if (high >= 0) fail("data with half a byte");
        ++_next;
        _builder.add(_builder.makeData(_data));
    }

    // Valid until the next string is read.
    std::u16string_view readString() {
        unichar quote = peek();
        if (quote == '"' || quote == '\'') {
            ++_next;
            return readQuoted(quote);
        }
        std::size_t start = _next;
        while (!isAtEnd() && isUnquoted(peek())) ++_next;
        return _text.substr(start, _next - start);
    }

    // The text itself where nothing is escaped.
    std::u16string_view readQuoted(unichar quote) {
        const unichar marks[] = {quote, '\\'};
        std::u16string_view stops(marks, 2);
        std::size_t stop = _text.find_first_of(stops, _next);
        if (stop != _text.npos && _text[stop] == quote) {
            std::u16string_view content = _text.substr(_next, stop - _next);
            _next = stop + 1;
            return content;
        }
        _unescaped.clear();
        for (; stop != _text.npos; stop = _text.find_first_of(stops, _next)) {
            _unescaped.append(_text.substr(_next, stop - _next));
            _next = stop + 1;
            if (_text[stop] == quote) return _unescaped;
            readEscape();
        }
        fail("a string without an end");
    }

    void readEscape() {
        if (isAtEnd()) fail("a string without an end");
        unichar unit = _text[_next++];
        constexpr std::u16string_view kNames = u"abfnrtv";
        constexpr std::u16string_view kControls = u"\a\b\f\n\r\t\v";
        if (std::size_t index = kNames.find(unit); index != kNames.npos)
            _unescaped += kControls[index];
        else if ((unit == 'U' || unit == 'u') && !isAtEnd() && hexValue(peek()) >= 0)
            _unescaped += readHexEscape();
        else if (unit >= '0' && unit <= '7')
            _unescaped += readOctalEscape(unit);
        else
            _unescaped += unit;
    }

    // One to four digits.
    unichar readHexEscape() {
        unsigned value = 0;
        for (int digits = 0; digits < 4 && !isAtEnd() && hexValue(peek()) >= 0; ++digits, ++_next)
            value = value << 4 | static_cast<unsigned>(hexValue(peek()));
        return static_cast<unichar>(value);
    }

    // Up to three digits, of which the first has been read.
    unichar readOctalEscape(unichar first) {
        unsigned value = first - u'0';
        for (int digits = 1; digits < 3 && !isAtEnd() && peek() >= '0' && peek() <= '7'; ++digits, ++_next)
            value = value << 3 | (peek() - u'0');
        value &= 0xFF;
        return value < 0x80 ? static_cast<unichar>(value) : kUpperCharacters[value - 0x80];
    }

    const std::u16string_view _text;
    std::size_t _next = 0;
    bool _isTable = false;
    PropertyListBuilder _builder;
    std::u16string _unescaped;
    std::vector<std::byte> _data;
};

std::u16string decodeUTF16(std::string_view bytes, std::endian order) {
    if (bytes.size() % 2 != 0) throw PropertyListFault{"UTF-16 with half a unit", 0, 0, bytes.size() + 1};
    std::u16string units(bytes.size() / 2, u'\0');
    std::size_t high = order == std::endian::big ? 0 : 1;
    for (std::size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<unichar>(static_cast<std::uint8_t>(bytes[2 * i + high]) << 8 |
                                        static_cast<std::uint8_t>(bytes[2 * i + 1 - high]));
    return units;
}

}  // namespace

std::u16string decodeOldStyleText(std::string_view bytes) {
    if (bytes.starts_with("\xFE\xFF")) return decodeUTF16(bytes.substr(2), std::endian::big);
    if (bytes.starts_with("\xFF\xFE")) return decodeUTF16(bytes.substr(2), std::endian::little);
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    std::u16string units(bytes.size(), u'\0');
    DecodedUTF8 decoded = decodeUTF8(bytes, units);
    units.resize(decoded.unitCount);
    if (!decoded.isValid) throw placedFault("bytes that are not UTF-8", units, units.size());
    return units;
}

Retained<Object> readOldStylePropertyList(std::u16string_view text, NSPropertyListMutabilityOptions options) {
    return Reader(text, options).read();
}

}  // namespace pelvor
