// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/PlainXMLPropertyListReader.h"

#include <bit>
#include <cstring>
#include <string>

#include "Foundation/PropertyLists/PropertyListBase64.h"
#include "Foundation/PropertyLists/PropertyListBuilder.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Shared/Vectors.h"

namespace pelvor {
namespace {

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
constexpr std::string_view kDocumentType =
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">";

struct Reference {
    std::string_view name;
    char character;
};

constexpr Reference kReferences[] = {{"&lt;", '<'},   {"&gt;", '>'},    {"&amp;", '&'},
                                     {"&quot;", '"'}, {"&apos;", '\''}, {"&#13;", '\r'}};

// Whether the character ends plain text: it begins a tag or a reference, or XML does not allow it or reads it
// as another character.
bool endsText(char c) {
    auto byte = static_cast<std::uint8_t>(c);
    return byte == '<' || byte == '&' || byte == '>' || (byte < 0x20 && byte != '\t' && byte != '\n');
}

std::size_t lengthOfText(std::string_view bytes) {
    std::size_t at = 0;
    for (; at + 16 <= bytes.size(); at += 16) {
        const Bytes16 block = loadBytes(bytes.data() + at);
        auto is = [block](char c) { return block == vectorOf(static_cast<std::uint8_t>(c)); };
        const auto ends =
            is('<') | is('&') | is('>') | ((block < vectorOf(std::uint8_t{0x20})) & ~is('\t') & ~is('\n'));
        if (const unsigned bits = bitsOf(ends)) return at + static_cast<std::size_t>(std::countr_zero(bits));
    }
    while (at < bytes.size() && !endsText(bytes[at])) ++at;
    return at;
}

// U+FFFE and U+FFFF are the only characters of more than one byte that XML does not allow.
bool holdsNoncharacters(std::string_view utf8) {
    for (std::size_t at = utf8.find('\xEF'); at != utf8.npos; at = utf8.find('\xEF', at + 1))
        if (utf8.substr(at + 1, 2) == "\xBF\xBE" || utf8.substr(at + 1, 2) == "\xBF\xBF") return true;
    return false;
}

// Thrown for a document that is not in the plain form.
struct NotPlain {};

class Reader {
  public:
    Reader(std::string_view bytes, NSPropertyListMutabilityOptions options)
        : _next(bytes.data()), _end(bytes.data() + bytes.size()), _builder(options) {}

    Retained<Object> read() {
        take(kDeclaration);
        skipSpace();
        take(kDocumentType);
        skipSpace();
        require("<plist version=\"1.0\">");
        do {
            skipSpace();
            require("<");
            readTag();
        } while (_builder.depth() > 0);
        skipSpace();
        require("</plist>");
        skipSpace();
        if (_next != _end) throw NotPlain();
        return _builder.takeRoot();
    }

  private:
    std::string_view rest() const { return {_next, static_cast<std::size_t>(_end - _next)}; }

    bool take(std::string_view text) {
        if (static_cast<std::size_t>(_end - _next) < text.size() ||
            std::memcmp(_next, text.data(), text.size()) != 0)
            return false;
        _next += text.size();
        return true;
    }

    void require(std::string_view text) {
        if (!take(text)) throw NotPlain();
    }

    void skipSpace() {
        while (_next < _end && (*_next == '\t' || *_next == '\n' || *_next == ' ' || *_next == '\r')) ++_next;
    }

    // A tag whose "<" has been read.
    void readTag() {
        switch (_next < _end ? *_next : '\0') {
            case 'k':
                require("key>");
                _builder.addKey(readText("</key>"));
                return;
            case 's':
                return readString();
            case 'i':
                require("integer>");
                return add<&parsePropertyListInteger>(&PropertyListBuilder::makeInteger, "</integer>");
            case 'r':
                require("real>");
                return add<&parsePropertyListReal>(&PropertyListBuilder::makeReal, "</real>");
            case 'd':
                return readTagOfD();
            case 'a':
                return readTagOfA();
            case 't':
                require("true/>");
                return _builder.add(PropertyListBuilder::makeBoolean(true));
            case 'f':
                require("false/>");
                return _builder.add(PropertyListBuilder::makeBoolean(false));
            default:
                return readEndTag();
        }
    }

    void readTagOfD() {
        bool isEmpty = take("dict/>");
        if (isEmpty || take("dict>")) {
            _builder.beginDictionary();
            if (isEmpty) _builder.end();
            return;
        }
        if (take("date>")) return add<&parsePropertyListDate>(&PropertyListBuilder::makeDate, "</date>");
        require("data>");
        _text = readText("</data>");
        if (!decodePropertyListBase64(_text)) throw NotPlain();
        _builder.add(_builder.makeData(std::as_bytes(std::span(_text))));
    }

    void readTagOfA() {
        bool isEmpty = take("array/>");
        if (!isEmpty) require("array>");
        _builder.beginArray();
        if (isEmpty) _builder.end();
    }

    void readString() {
        if (take("string/>")) return _builder.addString({});
        require("string>");
        _builder.addString(readText("</string>"));
    }

    void readEndTag() {
        if (_builder.depth() == 0) throw NotPlain();
        require(_builder.isInDictionary() ? "/dict>" : "/array>");
        _builder.end();
    }

    template <auto Parse, class Value>
    void add(Retained<Object> (*make)(Value), std::string_view endTag) {
        auto value = Parse(readText(endTag));
        if (!value) throw NotPlain();
        _builder.add(make(*value));
    }

    // Returns the text up to the end tag, which is read too. The text stands in the document or, if there are
    // references in it, in `_text`.
    std::string_view readText(std::string_view endTag) {
        std::string_view text = rest().substr(0, lengthOfText(rest()));
        _next += text.size();
        if (!take(endTag)) text = readTextWithReferences(text, endTag);
        if (holdsNoncharacters(text)) throw NotPlain();
        return text;
    }

    std::string_view readTextWithReferences(std::string_view beginning, std::string_view endTag) {
        _text = beginning;
        do {
            _text += readReference();
            std::string_view text = rest().substr(0, lengthOfText(rest()));
            _text += text;
            _next += text.size();
        } while (!take(endTag));
        return _text;
    }

    char readReference() {
        for (const Reference& reference : kReferences)
            if (take(reference.name)) return reference.character;
        throw NotPlain();
    }

    const char* _next;
    const char* const _end;
    PropertyListBuilder _builder;
    std::string _text;
};

}  // namespace

Retained<Object> readPlainXMLPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options) {
    try {
        return Reader(bytes, options).read();
    } catch (const NotPlain&) {
        return nullptr;
    } catch (const PropertyListFault&) {
        return nullptr;
    }
}

}  // namespace pelvor
