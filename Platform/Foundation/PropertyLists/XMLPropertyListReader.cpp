// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/XMLPropertyListReader.h"

#include <expat.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <string>

#include "Foundation/PropertyLists/PropertyListBase64.h"
#include "Foundation/PropertyLists/PropertyListBuilder.h"
#include "Foundation/PropertyLists/PropertyListFault.h"

namespace pelvor {
namespace {

// Large enough to make the parser's work per piece small, small enough for a piece to stay in the cache.
constexpr std::size_t kPieceSize = 256 * 1024;

enum class Element : std::uint8_t {
    none,
    list,
    dictionary,
    array,
    key,
    string,
    integer,
    real,
    isTrue,
    isFalse,
    date,
    data,
    unknown
};

struct NamedElement {
    std::string_view name;
    Element element;
};

// In the order of how often they occur.
constexpr NamedElement kElements[] = {
    {"key", Element::key},         {"string", Element::string}, {"integer", Element::integer},
    {"dict", Element::dictionary}, {"array", Element::array},   {"true", Element::isTrue},
    {"false", Element::isFalse},   {"real", Element::real},     {"date", Element::date},
    {"data", Element::data},       {"plist", Element::list},
};

Element elementNamed(std::string_view name) {
    for (const NamedElement& entry : kElements)
        if (entry.name == name) return entry.element;
    return Element::unknown;
}

bool isSpace(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
}

// An element's name, or a value's text, as a message shows it.
std::string quoted(std::string_view text) {
    constexpr std::size_t kShown = 40;
    std::size_t end = std::min(text.size(), kShown);
    while (end > 0 && end < text.size() && (text[end] & 0xC0) == 0x80) --end;
    return "'" + std::string(text.substr(0, end)) + (end < text.size() ? "…'" : "'");
}

// Exceptions do not pass through the parser, which is C: they are kept while it stops and thrown when it has
// returned.
class Reader {
  public:
    Reader(NSPropertyListMutabilityOptions options, XMLEncoding encoding)
        : _parser(XML_ParserCreate(encoding == XMLEncoding::utf8 ? "UTF-8" : nullptr), &XML_ParserFree),
          _builder(options) {
        if (!_parser) throw std::bad_alloc();
        XML_SetUserData(_parser.get(), this);
        XML_SetElementHandler(_parser.get(), &guarded<&Reader::startElement, const char*, const char**>,
                              &guarded<&Reader::endElement, const char*>);
        XML_SetCharacterDataHandler(_parser.get(), &guarded<&Reader::characterData, const char*, int>);
        XML_SetStartDoctypeDeclHandler(
            _parser.get(), &guarded<&Reader::startDocumentType, const char*, const char*, const char*, int>);
        XML_SetSkippedEntityHandler(_parser.get(), &guarded<&Reader::skippedEntity, const char*, int>);
    }

    Retained<Object> read(std::string_view bytes) {
        std::size_t at = 0;
        do {
            std::size_t size = std::min(kPieceSize, bytes.size() - at);
            bool isLast = at + size == bytes.size();
            auto status = XML_Parse(_parser.get(), bytes.data() + at, static_cast<int>(size), isLast);
            if (_failure) std::rethrow_exception(_failure);
            if (status != XML_STATUS_OK) throwParserError();
            at += size;
        } while (at < bytes.size());
        return _builder.takeRoot();
    }

  private:
    template <auto Handler, class... A>
    static void guarded(void* self, A... arguments) noexcept {
        auto* reader = static_cast<Reader*>(self);
        if (reader->_failure) return;
        try {
            (reader->*Handler)(arguments...);
        } catch (const PropertyListFault& fault) {
            reader->stop(std::make_exception_ptr(reader->placed(fault.reason)));
        } catch (...) {
            reader->stop(std::current_exception());
        }
    }

    void stop(std::exception_ptr failure) {
        _failure = std::move(failure);
        XML_StopParser(_parser.get(), XML_FALSE);
    }

    PropertyListFault placed(std::string reason) {
        auto index = XML_GetCurrentByteIndex(_parser.get());
        return {std::move(reason), XML_GetCurrentLineNumber(_parser.get()),
                XML_GetCurrentColumnNumber(_parser.get()) + 1,
                index < 0 ? 0 : static_cast<std::size_t>(index)};
    }

    [[noreturn]] void throwParserError() {
        XML_Error error = XML_GetErrorCode(_parser.get());
        if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
        throw placed(XML_ErrorString(error));
    }

    void startDocumentType(const char*, const char*, const char*, int hasInternalSubset) {
        if (hasInternalSubset) throw PropertyListFault{"entities and other declarations are not allowed"};
    }

    void skippedEntity(const char* name, int) {
        throw PropertyListFault{"the entity " + quoted(name) + " is not declared"};
    }

    void startElement(const char* name, const char**) {
        if (_leaf != Element::none)
            throw PropertyListFault{"the element " + quoted(name) + " inside a value"};
        Element element = elementNamed(name);
        switch (element) {
            case Element::list:
                return startList();
            case Element::dictionary:
                return _builder.beginDictionary();
            case Element::array:
                return _builder.beginArray();
            case Element::unknown:
                throw PropertyListFault{"the element " + quoted(name) + " is not known"};
            default:
                if (element != Element::key) _builder.requireValuePlace();
                _leaf = element;
                _text.clear();
        }
    }

    void startList() {
        if (_isInList || _builder.depth() > 0) throw PropertyListFault{"a property list inside another"};
        _isInList = true;
    }

    // The parser has seen to it that start and end fit together.
    void endElement(const char*) {
        if (_leaf != Element::none) {
            endLeaf();
            _leaf = Element::none;
        } else if (_builder.depth() > 0) {
            _builder.end();
        } else if (!_builder.hasRoot()) {
            throw PropertyListFault{"a property list without a value"};
        }
    }

    void endLeaf() {
        switch (_leaf) {
            case Element::key:
                return _builder.addKey(std::string_view(_text));
            case Element::string:
                return _builder.addString(_text);
            case Element::integer:
                return add<&parsePropertyListInteger>(&PropertyListBuilder::makeInteger, "integer");
            case Element::real:
                return add<&parsePropertyListReal>(&PropertyListBuilder::makeReal, "real number");
            case Element::date:
                return add<&parsePropertyListDate>(&PropertyListBuilder::makeDate, "date");
            case Element::data:
                return addData();
            default:
                if (!isSpace(_text)) throw PropertyListFault{"text inside a boolean"};
                _builder.add(PropertyListBuilder::makeBoolean(_leaf == Element::isTrue));
        }
    }

    template <auto Parse, class Value>
    void add(Retained<Object> (*make)(Value), const char* what) {
        auto value = Parse(_text);
        if (!value) throw PropertyListFault{quoted(_text) + " is no " + what + " that a list can hold"};
        _builder.add(make(*value));
    }

    void addData() {
        if (!decodePropertyListBase64(_text)) throw PropertyListFault{"data that is not base64"};
        _builder.add(_builder.makeData(std::as_bytes(std::span(_text))));
    }

    void characterData(const char* text, int length) {
        std::string_view piece(text, static_cast<std::size_t>(length));
        if (_leaf != Element::none)
            _text.append(piece);
        else if (!isSpace(piece))
            throw PropertyListFault{"text outside of values"};
    }

    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> _parser;
    PropertyListBuilder _builder;
    std::string _text;
    Element _leaf = Element::none;
    bool _isInList = false;
    std::exception_ptr _failure;
};

}  // namespace

Retained<Object> readXMLPropertyList(std::string_view bytes, NSPropertyListMutabilityOptions options,
                                     XMLEncoding encoding) {
    return Reader(options, encoding).read(bytes);
}

}  // namespace pelvor
