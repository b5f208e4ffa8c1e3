// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/FieldInstruction.h"

#include <algorithm>

namespace pelvor {
namespace {

constexpr std::u16string_view kAnchor = u"pelvor-anchor:";

// The word at the front, or the text between quotation marks, in which a backslash makes the next unit a
// letter.
std::u16string takeWord(std::u16string_view& rest, bool* isQuoted = nullptr) {
    rest.remove_prefix(std::min(rest.find_first_not_of(u" \n\t"), rest.size()));
    std::u16string word;
    if (isQuoted) *isQuoted = rest.starts_with(u'"');
    if (!rest.starts_with(u'"')) {
        word = rest.substr(0, rest.find_first_of(u" \n\t"));
        rest.remove_prefix(word.size());
        return word;
    }
    std::size_t place = 1;
    for (; place < rest.size() && rest[place] != u'"'; ++place) {
        if (rest[place] == u'\\' && place + 1 < rest.size() &&
            (rest[place + 1] == u'"' || rest[place + 1] == u'\\'))
            ++place;
        word.push_back(rest[place]);
    }
    rest.remove_prefix(std::min(place + 1, rest.size()));
    return word;
}

}  // namespace

FieldInstruction::FieldInstruction(std::u16string_view text) {
    const std::u16string name = takeWord(text);
    if (name == u"HYPERLINK") {
        _kind = Kind::link;
        readLink(text);
    } else if (name == u"PAGE") {
        _kind = Kind::pageNumber;
    } else if (name == u"NUMPAGES") {
        _kind = Kind::pageCount;
    } else if (name == u"TITLE") {
        _kind = Kind::title;
    } else if (name == u"FILENAME" && text.find(u"\\p") == text.npos) {  // without the folder
        _kind = Kind::fileName;
    }
}

void FieldInstruction::readLink(std::u16string_view rest) {
    std::u16string anchor;
    while (!rest.empty()) {
        bool isQuoted = false;
        const std::u16string word = takeWord(rest, &isQuoted);
        const bool isSwitch = !isQuoted && word.starts_with(u'\\');
        if (!isSwitch && _link.empty())
            _link = word;
        else if (isSwitch && word == u"\\l")
            anchor = takeWord(rest);
        else if (isSwitch && (word == u"\\o" || word == u"\\t"))
            takeWord(rest);
    }
    if (anchor.empty()) return;
    _link += _link.empty() ? kAnchor : std::u16string_view(u"#");
    _link += anchor;
}

std::u16string FieldInstruction::ofLink(std::u16string_view link) {
    std::u16string text = u"HYPERLINK ";
    if (link.starts_with(kAnchor) && link.size() > kAnchor.size()) {
        text += u"\\l ";
        link.remove_prefix(kAnchor.size());
    }
    text.push_back(u'"');
    for (char16_t unit : link) {
        if (unit == u'"' || unit == u'\\') text.push_back(u'\\');
        text.push_back(unit);
    }
    text.push_back(u'"');
    return text;
}

}  // namespace pelvor
