// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/RichTextParser.h"

#include <algorithm>
#include <utility>

#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

// More than any word processor writes.
constexpr std::size_t kMaximumDepth = 2000;

constexpr bool isLetter(unichar unit) { return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z'; }
constexpr bool isDigit(unichar unit) { return unit >= u'0' && unit <= u'9'; }

constexpr int valueOfHexadecimal(unichar unit) {
    if (isDigit(unit)) return unit - u'0';
    const int letter = (unit | 0x20) - u'a';
    return letter >= 0 && letter < 6 ? letter + 10 : -1;
}

// Bytes that are text as they stand.
constexpr auto kIsPlain = [] {
    std::array<bool, 256> isPlain{};
    for (std::size_t byte = 0x20; byte < 0x80; ++byte)
        isPlain[byte] = byte != '\\' && byte != '{' && byte != '}';
    isPlain['\t'] = true;
    return isPlain;
}();

// Takes the units that come next as long as the condition holds, one part after the other.
template <class Condition, class Take>
void takeWhile(WRByteScanner* scanner, Condition condition, Take take) {
    std::u16string_view units, part;
    do {
        units = scanner->nextUnits();
        const auto end = std::find_if_not(units.begin(), units.end(), condition);
        part = units.substr(0, static_cast<std::size_t>(end - units.begin()));
        take(part);
        scanner->skipCharacters(static_cast<NSInteger>(part.size()));
    } while (!units.empty() && part.size() == units.size());
}

}  // namespace

RichTextParser::RichTextParser(const TextFileSource& source, const TextFileProgress& progress)
    : _source(source), _scanner(WRByteScanner::of(source, progress)) {
    _result.pageNumbers.fill(-1);
    _result.body = RichTextBuilder(static_cast<std::size_t>(source.length() / 2));
    _state.builder = &_result.body;
}

RichText RichTextParser::run() {
    AutoreleasePool pool;
    _result.isRichText = checkStart();
    if (_result.isRichText) {
        takeTokens();
        finish();
    }
    _result.isUnreadable = _scanner->hasFailed();
    return std::move(_result);
}

// MARK: Tokens

// White space before the start does no harm.
bool RichTextParser::checkStart() {
    unichar unit;
    while ((unit = _scanner->peekCharacter()) == u' ' || unit == u'\r' || unit == u'\n' || unit == u'\t')
        _scanner->skipPeekedCharacter();
    return _scanner->scanString_peek(u"{\\rtf"_ns, true);
}

void RichTextParser::takeTokens() {
    while (!_isDone) {
        const unichar unit = _scanner->peekCharacter();
        if (kIsPlain[unit] || unit >= 0x80) {
            takePlain();
            continue;
        }
        if (unit == 0 && _scanner->isAtEnd()) return;
        _scanner->skipPeekedCharacter();
        if (unit == u'{')
            openGroup();
        else if (unit == u'}')
            closeGroup();
        else if (unit == u'\\')
            takeControl();
    }
}

void RichTextParser::openGroup() {
    flushBytes();
    _skippedLeft = 0;
    _isStarred = false;
    if (_states.size() > kMaximumDepth) {
        if (_surplusDepth++ == 0) note(RichTextProblem::tooDeep);
        return;
    }
    _states.push_back(_state);
    _state.opensDestination = false;
}

void RichTextParser::closeGroup() {
    flushBytes();
    _skippedLeft = 0;
    _isStarred = false;
    if (_surplusDepth > 0) {
        --_surplusDepth;
        return;
    }
    const State inner = std::exchange(_state, std::move(_states.back()));
    _states.pop_back();
    _isFormatCurrent = false;
    _codePage = nullptr;
    if (inner.opensDestination) endDestination(inner);
    _isDone = _states.empty();
    if (_isDone) endTexts(inner);
}

void RichTextParser::takeControl() {
    if (isLetter(_scanner->peekCharacter()))
        takeControlWord();
    else
        takeSymbol();
}

void RichTextParser::takeControlWord() {
    flushBytes();
    const bool isStarred = std::exchange(_isStarred, false);
    takeName();
    _word = ControlWord::find(_name);
    takeParameter();
    const bool isSkipped = _state.destination == Destination::skipped;
    if (!isSkipped && (!_word || (isStarred && _word->action == &RichTextParser::ignore))) {
        if (!_word) leaveOut(0);
        if (isStarred) skipDestination(0);
    } else if (_word && (!isSkipped || _word->action == &RichTextParser::takeBinary ||
                         _word->action == &RichTextParser::beginUnicodeAlternative)) {
        if (_word->action != &RichTextParser::appendCharacter) _skippedLeft = 0;
        (this->*_word->action)(_word->value);
    }
}

void RichTextParser::takeName() {
    std::size_t count = 0;
    takeWhile(
        _scanner, [](unichar unit) { return isLetter(unit); },
        [&](std::u16string_view letters) {
            for (unichar letter : letters.substr(0, _letters.size() - count))
                _letters[count++] = static_cast<char>(letter);
        });
    _name = {_letters.data(), count};
}

// Numbers that are too large become the largest. One space ends the word and is no text.
void RichTextParser::takeParameter() {
    unichar unit = _scanner->peekCharacter();
    const bool isNegative = unit == u'-';
    if (isNegative) {
        _scanner->skipPeekedCharacter();
        unit = _scanner->peekCharacter();
    }
    _hasParameter = isDigit(unit);
    std::int64_t number = 0;
    for (; isDigit(unit); unit = _scanner->peekCharacter()) {
        number = std::min<std::int64_t>(number * 10 + (unit - u'0'), INT32_MAX);
        _scanner->skipPeekedCharacter();
    }
    _parameter = static_cast<int>(isNegative ? -number : number);
    if (unit == u' ') _scanner->skipPeekedCharacter();
}

void RichTextParser::takeSymbol() {
    const unichar symbol = _scanner->peekCharacter();
    if (symbol == 0 && _scanner->isAtEnd()) return;
    _scanner->skipPeekedCharacter();
    if (symbol == u'\'') return takeHexadecimal();
    flushBytes();
    switch (symbol) {
        case u'*':
            _isStarred = true;
            return;
        case u'\r':
        case u'\n':
            return endParagraph(0);
        case u'\t':
            return appendCharacter(u'\t');
        case u'~':
            return appendCharacter(u'\u00A0');
        case u'-':
            return appendCharacter(u'\u00AD');
        case u'_':
            return appendCharacter(u'\u2011');
        case u'\\':
        case u'{':
        case u'}':
            return takeByte(static_cast<std::uint8_t>(symbol));
        default:
            return;  // marks of formulas and of entries of an index
    }
}

void RichTextParser::takeHexadecimal() {
    int value = 0;
    for (int digits = 0; digits < 2; ++digits) {
        const int digit = valueOfHexadecimal(_scanner->peekCharacter());
        if (digit < 0) return note(RichTextProblem::badCharacter);
        _scanner->skipPeekedCharacter();
        value = value << 4 | digit;
    }
    takeByte(static_cast<std::uint8_t>(value));
}

// MARK: Text

void RichTextParser::takePlain() {
    _isStarred = false;
    if (_state.destination == Destination::picture) return takePlainDigits();
    if (_state.destination == Destination::skipped)
        return takeWhile(
            _scanner, [](unichar unit) { return kIsPlain[unit] || unit >= 0x80; },
            [](std::u16string_view) {});
    if (isText() && _skippedLeft == 0 && _bytes.empty() && _scanner->peekCharacter() < 0x80 &&
        !codePage().isSymbolic() && !_state.character[CharacterProperty::hidden])
        return takePlainText();
    takeByte(static_cast<std::uint8_t>(_scanner->readCharacter()));
}

void RichTextParser::takePlainText() {
    UnitBuffer& text = _state.builder->unitsOfFormat(formatNumber());
    takeWhile(
        _scanner, [](unichar unit) { return kIsPlain[unit]; },
        [&](std::u16string_view units) { text.append(units); });
}

void RichTextParser::takePlainDigits() {
    takeWhile(
        _scanner, [](unichar unit) { return kIsPlain[unit] || unit >= 0x80; },
        [&](std::u16string_view units) {
            if (_picture.isKnown)
                for (unichar unit : units) takeDigit(unit);
        });
}

void RichTextParser::takeDigit(unichar unit) {
    const int digit = valueOfHexadecimal(unit);
    if (digit < 0) return;
    if (_picture.hasHalfByte)
        _picture.entry.bytes.push_back(static_cast<char>(_picture.halfByte << 4 | digit));
    _picture.halfByte = static_cast<std::uint8_t>(digit);
    _picture.hasHalfByte = !_picture.hasHalfByte;
}

void RichTextParser::takeByte(std::uint8_t byte) {
    if (_skippedLeft > 0) {
        --_skippedLeft;
        return;
    }
    switch (_state.destination) {
        case Destination::skipped:
        case Destination::picture:
            return;
        case Destination::fontTable:
            if (byte == ';' && _bytes.empty()) return commitFont();
            break;
        case Destination::colourTable:
            if (byte == ';') commitColour();
            return;
        case Destination::styleSheet:
            if (byte == ';' && _bytes.empty()) return commitStyle();
            break;
        default:
            break;
    }
    _bytes.push_back(static_cast<char>(byte));
    if (_bytes.size() >= codePage().lengthAfterLead(static_cast<std::uint8_t>(_bytes[0]))) flushBytes();
}

void RichTextParser::flushBytes() {
    if (_bytes.empty()) return;
    std::u16string units;
    CodePage& page = codePage();
    const bool isCut = _bytes.size() < page.lengthAfterLead(static_cast<std::uint8_t>(_bytes[0]));
    if (isCut) units.push_back(u'\uFFFD');
    if (isCut || !page.append(_bytes, units)) note(RichTextProblem::badCharacter);
    _bytes.clear();
    appendUnits(units);
}

void RichTextParser::appendUnits(std::u16string_view units) {
    switch (_state.destination) {
        case Destination::text:
            if (_state.character[CharacterProperty::hidden])
                _leftOut.insert("v");
            else
                _state.builder->unitsOfFormat(formatNumber()).append(units);
            return;
        case Destination::skipped:
        case Destination::colourTable:
        case Destination::picture:
            return;
        default:
            _captured += units;
    }
}

CodePage& RichTextParser::codePage() {
    if (_codePage) return *_codePage;
    const bool isFontTable =
        _state.destination == Destination::fontTable || _state.destination == Destination::fontAlternative;
    int number = _documentCodePage;
    if (isFontTable && _font.entry.codePage > 0 && _font.entry.codePage != CodePage::symbol)
        number = _font.entry.codePage;
    else if (const int own =
                 isText() ? _result.tables.fonts[_state.character[CharacterProperty::font]].codePage : 0)
        number = own;
    _codePage = &codePageNumbered(number);
    return *_codePage;
}

// Unknown numbers share the page that stands in for them.
CodePage& RichTextParser::codePageNumbered(int number) {
    auto& page = _codePages[number];
    if (!page) {
        auto made = std::make_shared<CodePage>(number);
        auto& shared = _codePages[made->number()];
        if (!shared) shared = made;
        _codePages[number] = shared;
        return *shared;
    }
    return *page;
}

std::uint32_t RichTextParser::formatNumber() {
    if (!_isFormatCurrent) _formatNumber = _result.characters.numberOf(_state.character);
    _isFormatCurrent = true;
    return _formatNumber;
}

// MARK: The end

void RichTextParser::finish() {
    flushBytes();
    if (!_isDone) {
        note(RichTextProblem::cutOff);
        while (!_states.empty()) closeGroup();
    } else {
        unichar unit;
        while ((unit = _scanner->peekCharacter()) == u' ' || unit == u'\r' || unit == u'\n' ||
               (unit == 0 && !_scanner->isAtEnd()))
            _scanner->skipPeekedCharacter();
        if (!_scanner->isAtEnd()) note(RichTextProblem::trailingBytes);
    }
    leaveOutPageRules();
    _result.body.append(_notes);
    _result.leftOut.assign(_leftOut.begin(), _leftOut.end());
}

// The last paragraphs, when the outermost group has ended. Notes stand behind the body.
void RichTextParser::endTexts(const State& outermost) {
    const bool endsInText = outermost.destination == Destination::text;
    const ParagraphFormat& paragraph = endsInText ? outermost.paragraph : _usualParagraph;
    const CharacterFormat& character = endsInText ? outermost.character : _usualCharacter;
    RichTextBuilder& body = _result.body;
    if (_notes.length() > 0 && !body.endsWithLineFeed())
        body.unitsOfFormat(_result.characters.numberOf(character)).append(u'\n');
    for (RichTextBuilder* text : {&body, &_result.header, &_result.footer, &_notes})
        text->endParagraph(paragraphNumber(paragraph));
}

void RichTextParser::note(RichTextProblem problem) {
    RichTextProblems& noted = _result.problems[static_cast<std::size_t>(problem)];
    if (noted.count++ == 0) noted.firstPlace = place();
}

RichText readRichText(const TextFileSource& source, const TextFileProgress& progress) {
    if (source.length() >= NSNotFound) {
        RichText unreadable;
        unreadable.isUnreadable = true;
        return unreadable;
    }
    return RichTextParser(source, progress).run();
}

}  // namespace pelvor
