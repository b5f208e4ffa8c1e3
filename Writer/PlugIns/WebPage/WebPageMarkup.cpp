// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/WebPage/WebPageMarkup.h"

#include "Writer/TextEscapes.h"
#include "Writer/TextParagraphs.h"

namespace pelvor {
namespace {

constexpr UnitEscape kEscapes[] = {{u'&', u"&amp;"}, {u'<', u"&lt;"}, {u'>', u"&gt;"}, {u'"', u"&quot;"}};

// Controls other than tabs are not allowed in pages.
void appendEscaped(std::u16string& page, std::u16string_view text) {
    for (char16_t unit : text) {
        if (const std::u16string_view escape = escapeOfUnit(unit, kEscapes); !escape.empty())
            page += escape;
        else if (unit >= 0x20 || unit == u'\t')
            page.push_back(unit);
    }
}

void appendNumber(std::u16string& page, char32_t codePoint) {
    page += u"&#";
    for (char digit : std::to_string(static_cast<unsigned long>(codePoint)))
        page.push_back(static_cast<char16_t>(digit));
    page.push_back(u';');
}

constexpr bool isHighHalf(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool isLowHalf(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

}  // namespace

std::u16string webPageOfText(std::u16string_view text, std::u16string_view encodingName) {
    std::u16string page = u"<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"";
    appendEscaped(page, encodingName);
    page += u"\">\n<title>";
    std::u16string_view rest = text;
    if (!rest.empty()) appendEscaped(page, takeParagraph(rest));
    page += u"</title>\n</head>\n<body>\n";
    for (rest = text; !rest.empty();) {
        page += u"<p>";
        appendEscaped(page, takeParagraph(rest));
        page += u"</p>\n";
    }
    return page += u"</body>\n</html>\n";
}

std::u16string withCharacterNumbers(std::u16string_view page) {
    std::u16string numbered;
    for (std::size_t i = 0; i < page.size(); ++i) {
        const char16_t unit = page[i];
        const char16_t next = i + 1 < page.size() ? page[i + 1] : u'\0';
        if (unit < 0x80) {
            numbered.push_back(unit);
        } else if (isHighHalf(unit) && isLowHalf(next)) {
            appendNumber(numbered, 0x10000 + ((unit - 0xD800u) << 10) + (next - 0xDC00u));
            ++i;
        } else {
            appendNumber(numbered, isHighHalf(unit) || isLowHalf(unit) ? 0xFFFD : unit);
        }
    }
    return numbered;
}

}  // namespace pelvor
