// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Markdown/MarkdownInline.h"

#include <algorithm>
#include <array>
#include <vector>

namespace pelvor {
namespace {

using View = std::u16string_view;
constexpr std::size_t kNone = View::npos;

constexpr bool isPunctuation(char16_t unit) {
    return (unit >= u'!' && unit <= u'/') || (unit >= u':' && unit <= u'@') ||
           (unit >= u'[' && unit <= u'`') || (unit >= u'{' && unit <= u'~');
}
constexpr bool isSpace(char16_t unit) { return unit == u' ' || unit == u'\t' || unit == u'\0'; }
// Beyond ASCII everything counts as a letter here.
constexpr bool isWord(char16_t unit) { return !isSpace(unit) && !isPunctuation(unit); }

struct Entity {
    View name;
    char16_t unit;
};
constexpr std::array<Entity, 6> kEntities{{{u"&amp;", u'&'},
                                           {u"&lt;", u'<'},
                                           {u"&gt;", u'>'},
                                           {u"&quot;", u'"'},
                                           {u"&#39;", u'\''},
                                           {u"&nbsp;", u'\u00A0'}}};

// Walks the source once. Marks are copied like text; when their partners turn up, both are noted as dropped.
class InlineText {
  public:
    explicit InlineText(View source) : _source(source) {}

    MarkdownText text() {
        while (_place < _source.size()) step();
        return withoutDropped();
    }

  private:
    void step() {
        switch (_source[_place]) {
            case u'\\':
                return takeEscape();
            case u'`':
                return takeCode();
            case u'*':
            case u'_':
                return takeEmphasis();
            case u'[':
                return takeOpenBracket();
            case u']':
                return takeCloseBracket();
            case u'<':
                return takeAutomaticLink();
            case u'&':
                return takeEntity();
            default:
                copy(1);
        }
    }

    void copy(std::size_t count) {
        _text += _source.substr(_place, count);
        _place += count;
    }
    char16_t unitAt(std::size_t place) const { return place < _source.size() ? _source[place] : u'\0'; }
    char16_t unitBefore() const { return _place > 0 ? _source[_place - 1] : u'\0'; }
    std::size_t runLength() const {
        const std::size_t end = _source.find_first_not_of(_source[_place], _place);
        return (end == kNone ? _source.size() : end) - _place;
    }
    void drop(std::size_t place, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) _dropped.push_back(place + i);
    }
    // The next place of the unit. Once no place is left, the unit is not looked for again.
    std::size_t find(char16_t unit, std::size_t from, bool& isAbsent) {
        const std::size_t place = isAbsent ? kNone : _source.find(unit, from);
        isAbsent = place == kNone;
        return place;
    }

    void takeEscape() {
        if (isPunctuation(unitAt(_place + 1))) ++_place;
        copy(1);
    }

    // Each unit gets a mark of each kind and length at most once.
    void setStyle(std::size_t from, std::uint8_t style) {
        _styles.resize(_text.size());
        for (std::size_t i = from; i < _styles.size(); ++i) _styles[i] |= style;
    }

    // A run of n marks ends at the next run of n.
    void takeCode() {
        const std::size_t length = runLength();
        const std::size_t start = _place + length;
        const std::size_t end = codeEnd(start, length);
        if (end == kNone) return copy(length);
        const std::size_t first = _text.size();
        _text += _source.substr(start, end - start);
        setStyle(first, kMarkdownCode);
        _place = end + length;
    }
    std::size_t codeEnd(std::size_t from, std::size_t length) {
        if (length >= _hasNoCodeEnd.size() || _hasNoCodeEnd[length]) return kNone;
        while ((from = _source.find(u'`', from)) != kNone) {
            const std::size_t end = std::min(_source.find_first_not_of(u'`', from), _source.size());
            if (end - from == length) return from;
            from = end;
        }
        _hasNoCodeEnd[length] = true;
        return kNone;
    }

    // A run that follows text closes the last one of its kind that precedes text. Inside words underscores
    // are letters.
    void takeEmphasis() {
        const char16_t mark = _source[_place];
        const std::size_t length = runLength();
        const char16_t before = unitBefore();
        const char16_t after = unitAt(_place + length);
        const bool isInWord = mark == u'_' && isWord(before) && isWord(after);
        if (length < kEmphasisLengths && !isInWord) {
            std::size_t& opener = _openers[mark == u'_'][length];
            if (opener != kNone && !isSpace(before)) {
                drop(opener, length);
                drop(_text.size(), length);
                setStyle(opener, kEmphasisStyles[length]);
                opener = kNone;
            } else if (!isSpace(after)) {
                opener = _text.size();
            }
        }
        copy(length);
    }

    void takeOpenBracket() {
        _brackets.push_back(_text.size());
        copy(1);
    }
    // "[text](target)" and "[text][name]", images with "!" before.
    void takeCloseBracket() {
        const std::size_t end = _brackets.empty() ? kNone : targetEnd(_place + 1);
        if (end != kNone) {
            const std::size_t open = _brackets.back();
            drop(open, 1);
            if (open > 0 && _text[open - 1] == u'!') drop(open - 1, 1);
            _place = end + 1;
        } else {
            copy(1);
        }
        if (!_brackets.empty()) _brackets.pop_back();
    }
    std::size_t targetEnd(std::size_t place) {
        if (unitAt(place) == u'(') return find(u')', place, _hasNoRoundBracket);
        if (unitAt(place) == u'[') return find(u']', place, _hasNoSquareBracket);
        return kNone;
    }

    void takeAutomaticLink() {
        const View rest = _source.substr(_place + 1);
        const bool isLink =
            rest.starts_with(u"http://") || rest.starts_with(u"https://") || rest.starts_with(u"mailto:");
        const std::size_t end = isLink ? find(u'>', _place, _hasNoAngleBracket) : kNone;
        if (end == kNone) return copy(1);
        ++_place;
        copy(end - _place);
        ++_place;
    }

    void takeEntity() {
        for (const Entity& entity : kEntities) {
            if (!_source.substr(_place).starts_with(entity.name)) continue;
            _text.push_back(entity.unit);
            _place += entity.name.size();
            return;
        }
        copy(1);
    }

    MarkdownText withoutDropped() {
        std::sort(_dropped.begin(), _dropped.end());
        _styles.resize(_text.size());
        MarkdownText kept;
        std::size_t from = 0;
        const auto keepUpTo = [&](std::size_t place) {
            if (place < from) return;
            kept.text.append(_text, from, place - from);
            kept.styles.append(_styles, from, place - from);
            from = place + 1;
        };
        for (std::size_t place : _dropped) keepUpTo(place);
        keepUpTo(_text.size());
        return kept;
    }

    static constexpr std::size_t kEmphasisLengths = 4;
    static constexpr std::uint8_t kEmphasisStyles[kEmphasisLengths] = {
        kMarkdownPlain, kMarkdownEmphasis, kMarkdownStrong, kMarkdownEmphasis | kMarkdownStrong};
    using Openers = std::array<std::size_t, kEmphasisLengths>;

    View _source;
    std::size_t _place = 0;
    std::u16string _text;
    std::basic_string<std::uint8_t> _styles;  // as far as the last mark reaches
    std::vector<std::size_t> _dropped;        // places in _text
    std::vector<std::size_t> _brackets;       // those of "[" in _text
    std::array<Openers, 2> _openers{{{kNone, kNone, kNone, kNone}, {kNone, kNone, kNone, kNone}}};
    std::array<bool, 32> _hasNoCodeEnd{};
    bool _hasNoRoundBracket = false;
    bool _hasNoSquareBracket = false;
    bool _hasNoAngleBracket = false;
};

}  // namespace

MarkdownText textOfMarkdownParagraph(View source) { return InlineText(source).text(); }

}  // namespace pelvor
