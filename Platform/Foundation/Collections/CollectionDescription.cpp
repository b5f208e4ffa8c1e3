// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "Foundation/Collections/CollectionDescription.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSCountedSet.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSString.h"

namespace pelvor {
namespace {

bool isPlain(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= u'0' && unit <= u'9') || unit == u'_' || unit == u'$' || unit == u'.' || unit == u':';
}

class CollectionWriter {
  public:
    NSString* text() { return NSString::of(_text); }

    void write(Object* object) {
        if (std::find(_enclosing.begin(), _enclosing.end(), object) != _enclosing.end())
            return writeQuoted(object->Object::description()->toUTF16());
        _enclosing.push_back(object);
        if (auto* array = cast<NSArray>(object))
            writeArray(array);
        else if (auto* dictionary = cast<NSDictionary>(object))
            writeDictionary(dictionary);
        else if (auto* set = cast<NSSet>(object))
            writeSet(set);
        else
            writeLeaf(object);
        _enclosing.pop_back();
    }

  private:
    void startLine() { _text.append(u"\n").append(_enclosing.size() * 4, u' '); }

    void endBlock(const char16_t* close) {
        _text.append(u"\n").append((_enclosing.size() - 1) * 4, u' ').append(close);
    }

    template <class Collection>
    void writeObjects(Collection* objects) {
        bool isFirst = true;
        for (id object : objects) {
            if (!std::exchange(isFirst, false)) _text += u',';
            startLine();
            write(object);
        }
    }

    void writeArray(NSArray* array) {
        _text += u"(";
        writeObjects(array);
        endBlock(u")");
    }

    void writeSet(NSSet* set) {
        auto* counted = cast<NSCountedSet>(set);
        _text += u"{(";
        bool isFirst = true;
        for (id object : set) {
            if (!std::exchange(isFirst, false)) _text += u',';
            startLine();
            write(object);
            if (counted) writeCount(counted->countForObject(object));
        }
        endBlock(u")}");
    }

    void writeCount(NSUInteger count) {
        std::string digits = std::to_string(count);
        _text.append(u" [").append(digits.begin(), digits.end()).append(u"]");
    }

    void writeDictionary(NSDictionary* dictionary) {
        _text += u"{";
        for (auto [key, value] : dictionary) {
            startLine();
            write(key);
            _text += u" = ";
            write(value);
            _text += u';';
        }
        endBlock(u"}");
    }

    void writeLeaf(Object* object) {
        NSString* description = object->description();
        std::u16string text = description ? description->toUTF16() : u"(null)";
        if (cast<NSData>(object) || (!text.empty() && std::all_of(text.begin(), text.end(), isPlain)))
            _text += text;
        else
            writeQuoted(text);
    }

    void writeQuoted(const std::u16string& text) {
        _text += u'"';
        for (char16_t unit : text) writeEscaped(unit);
        _text += u'"';
    }

    void writeEscaped(char16_t unit) {
        static constexpr std::u16string_view kEscaped = u"\"\\\n\t\r";
        static constexpr char16_t kEscapes[] = u"\"\\ntr";
        if (auto place = kEscaped.find(unit); place != std::u16string_view::npos) {
            _text.append(u"\\").append(1, kEscapes[place]);
        } else if (unit >= 0x20 && unit < 0x7F) {
            _text += unit;
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\U%04x", unsigned{unit});
            _text.append(escape, escape + 6);
        }
    }

    std::u16string _text;
    std::vector<Object*> _enclosing;
};

}  // namespace

NSString* describeCollection(Object* collection) {
    CollectionWriter writer;
    writer.write(collection);
    return writer.text();
}

}  // namespace pelvor
