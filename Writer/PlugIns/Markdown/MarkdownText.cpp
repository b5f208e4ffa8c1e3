// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Markdown/MarkdownText.h"

#include <utility>

namespace pelvor {
namespace {

using View = std::u16string_view;

constexpr bool isSpace(char16_t unit) { return unit == u' ' || unit == u'\t'; }
constexpr bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

View trimmed(View line) {
    while (!line.empty() && isSpace(line.front())) line.remove_prefix(1);
    while (!line.empty() && (isSpace(line.back()) || line.back() == u'\r')) line.remove_suffix(1);
    return line;
}

std::size_t countOf(View line, char16_t mark) {
    const std::size_t end = line.find_first_not_of(mark);
    return end == View::npos ? line.size() : end;
}

// The level of "## Heading ##", which becomes the text; 0 for a line that is no heading.
std::size_t takeHeading(View& line) {
    const std::size_t level = countOf(line, u'#');
    if (level == 0 || level > 6 || (level < line.size() && !isSpace(line[level]))) return 0;
    line = trimmed(line.substr(level));
    const std::size_t last = line.find_last_not_of(u'#');
    if (last == View::npos || isSpace(line[last])) line = trimmed(line.substr(0, last + 1));
    return level;
}

bool isFence(View line) { return countOf(line, u'`') >= 3 || countOf(line, u'~') >= 3; }

// "* * *", "---", "___".
bool isRule(View line) {
    if (line.empty() || (line[0] != u'-' && line[0] != u'*' && line[0] != u'_')) return false;
    std::size_t marks = 0;
    for (char16_t unit : line) {
        if (unit == line[0])
            ++marks;
        else if (!isSpace(unit))
            return false;
    }
    return marks >= 3;
}

// What makes the paragraph above a heading.
bool isUnderline(View line) {
    return !line.empty() && (countOf(line, u'=') == line.size() || countOf(line, u'-') == line.size());
}

// "[name]: target".
bool isLinkDefinition(View line) {
    if (line.empty() || line[0] != u'[') return false;
    const std::size_t close = line.find(u"]:");
    return close != View::npos && close > 1 && line.substr(0, close).find(u']') == View::npos;
}

// The length of "- " or "12. "; 0 where there is no such mark.
std::size_t listMarkLength(View line) {
    std::size_t length = 0;
    if (!line.empty() && (line[0] == u'-' || line[0] == u'*' || line[0] == u'+')) {
        length = 1;
    } else {
        while (length < line.size() && length < 9 && isDigit(line[length])) ++length;
        if (length == 0 || length == line.size() || (line[length] != u'.' && line[length] != u')')) return 0;
        ++length;
    }
    return length < line.size() && isSpace(line[length]) ? length + 1 : 0;
}

class MarkdownBlocks {
  public:
    void takeLine(View line) {
        if (_isInFence || isFence(trimmed(line))) return takeFenced(line);
        line = trimmed(line);
        const bool isQuoted = !line.empty() && line[0] == u'>';
        while (!line.empty() && line[0] == u'>') line = trimmed(line.substr(1));
        if (!_paragraph.empty() && isUnderline(line)) _style = headingStyle(line[0] == u'=' ? 1 : 2);
        if (line.empty() || (!_paragraph.empty() && isUnderline(line)) || isRule(line)) return endParagraph();
        if (isLinkDefinition(line) && _paragraph.empty()) return;
        if (const std::size_t level = takeHeading(line)) return takeHeadingText(line, level);
        if (const std::size_t length = listMarkLength(line)) return startItem(line, length);
        if (isQuoted && _paragraph.empty()) _style = kMarkdownQuote;
        continueParagraph(line);
    }
    MarkdownText finish() {
        endParagraph();
        return std::move(_text);
    }

  private:
    void takeFenced(View line) {
        if (!_isInFence || isFence(trimmed(line))) {
            endParagraph();
            _isInFence = !_isInFence;
        } else {
            if (!line.empty() && line.back() == u'\r') line.remove_suffix(1);
            _text.text.append(line).push_back(u'\n');
            _text.styles.resize(_text.text.size(), kMarkdownCodeLine);
        }
    }
    static std::uint8_t headingStyle(std::size_t level) {
        return static_cast<std::uint8_t>(kMarkdownHeading + level * kMarkdownLevel);
    }
    void takeHeadingText(View line, std::size_t level) {
        endParagraph();
        _paragraph = line;
        _style = headingStyle(level);
        endParagraph();
    }
    void startItem(View line, std::size_t markLength) {
        endParagraph();
        _paragraph = isDigit(line[0]) ? line.substr(0, markLength - 1) : View(u"•");
        _paragraph.push_back(u'\t');
        _style = kMarkdownListItem;
        _paragraph += trimmed(line.substr(markLength));
    }
    void continueParagraph(View line) {
        if (!_paragraph.empty()) _paragraph.push_back(u' ');
        _paragraph += line;
    }
    void endParagraph() {
        const std::uint8_t style = std::exchange(_style, kMarkdownPlain);
        if (_paragraph.empty()) return;
        const MarkdownText paragraph = textOfMarkdownParagraph(_paragraph);
        _text.text.append(paragraph.text).push_back(u'\n');
        for (std::uint8_t marks : paragraph.styles) _text.styles.push_back(marks | style);
        _text.styles.push_back(style);
        _paragraph.clear();
    }

    MarkdownText _text;
    std::u16string _paragraph;
    std::uint8_t _style = kMarkdownPlain;  // of the paragraph
    bool _isInFence = false;
};

}  // namespace

MarkdownText textOfMarkdown(View source) {
    MarkdownBlocks blocks;
    while (!source.empty()) {
        const std::size_t end = source.find(u'\n');
        blocks.takeLine(source.substr(0, end));
        if (end == View::npos) break;
        source.remove_prefix(end + 1);
    }
    return blocks.finish();
}

}  // namespace pelvor
