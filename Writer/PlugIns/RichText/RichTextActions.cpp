// SPDX-License-Identifier: Apache-2.0
// What control words do.
#include <algorithm>
#include <utility>

#include "Text/TextAttributes.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/RichText/FieldInstruction.h"
#include "Writer/PlugIns/RichText/LanguageNumbers.h"
#include "Writer/PlugIns/RichText/RichTextParser.h"

namespace pelvor {
namespace {

constexpr int kMaximumLength = 1'000'000;  // in twips
constexpr std::size_t kMaximumLeftOut = 64;

std::u16string trimmed(std::u16string_view text) {
    while (!text.empty() && text.front() == u' ') text.remove_prefix(1);
    while (!text.empty() && (text.back() == u' ' || text.back() == u';')) text.remove_suffix(1);
    return std::u16string(text);
}

}  // namespace

using P = RichTextParser;

int P::parameterBetween(int least, int most) const { return std::clamp(_parameter, least, most); }

// Formats inside the style sheet are those of the styles, of which the names are kept.
CharacterFormat& P::character() {
    if (_state.destination == Destination::styleSheet) _leftOut.insert("stylesheet");
    _isFormatCurrent = false;
    return _state.character;
}

ParagraphFormat& P::paragraph() {
    if (_state.destination == Destination::styleSheet) _leftOut.insert("stylesheet");
    return _state.paragraph;
}

// MARK: Destinations

void P::leaveOut(int) {
    if (_leftOut.size() < kMaximumLeftOut) _leftOut.emplace(_word ? _word->name : _name);
}

void P::skipDestination(int) { begin(Destination::skipped); }

void P::leaveOutDestination(int) {
    leaveOut(0);
    begin(Destination::skipped);
}

void P::begin(Destination destination) {
    _state.destination = destination;
    _state.opensDestination = true;
    _state.captureStart = _captured.size();
    _codePage = nullptr;
}

void P::beginDestination(int value) {
    const auto destination = static_cast<Destination>(value);
    if (destination == Destination::picture) _picture = {};
    begin(destination);
}

void P::beginDocumentField(int field) {
    begin(Destination::documentField);
    _state.documentField = field;
}

void P::beginPart(RichTextBuilder& builder) {
    begin(Destination::text);
    _state.builder = &builder;
    _state.character = _usualCharacter;
    _state.paragraph = _usualParagraph;
    _state.isInTable = false;
    _isFormatCurrent = false;
}

void P::beginFootnote(int) {
    if (!isText()) return skipDestination(0);
    leaveOut(0);
    ++_noteCount;
    beginPart(_notes);
}

void P::beginHeader(int isOfRightPages) {
    if (!isText() || _result.header.length() > 0) return leaveOutDestination(0);
    _hasLineOfRightPages |= isOfRightPages != 0;
    beginPart(_result.header);
}

void P::beginFooter(int isOfRightPages) {
    if (!isText() || _result.footer.length() > 0) return leaveOutDestination(0);
    _hasLineOfRightPages |= isOfRightPages != 0;
    beginPart(_result.footer);
}

void P::takePageRule(int rule) {
    if (isSet() && (rule != laterStart || _parameter > 1)) _hasPageRule[rule] = true;
}

void P::leaveOutPageRules() {
    if (_result.header.length() + _result.footer.length() == 0) return;
    if (_hasPageRule[otherFirstPage]) _leftOut.insert("titlepg");
    if (_hasPageRule[facingPages] && _hasLineOfRightPages) _leftOut.insert("facingp");
    if (_hasPageRule[laterStart]) _leftOut.insert("pgnstart");
}

void P::beginAlternatives(int) {
    _state.outerDestination = std::exchange(_state.destination, Destination::skipped);
    _state.isAlternative = true;
}

void P::beginUnicodeAlternative(int) {
    if (!_state.isAlternative) return;
    _state.destination = _state.outerDestination;
    _state.isAlternative = false;
    _codePage = nullptr;
}

void P::endDestination(const State& inner) {
    if (inner.destination == Destination::text) {
        if (inner.builder != _state.builder) endPart(inner);
        return;
    }
    const State outer = std::exchange(_state, inner);
    std::u16string language;
    switch (inner.destination) {
        case Destination::fontTable:
            if (_captured.size() > inner.captureStart) commitFont();
            break;
        case Destination::fontAlternative:
            _font.entry.alternative = trimmed(takeCaptured());
            break;
        case Destination::styleSheet:
            if (_captured.size() > inner.captureStart) commitStyle();
            break;
        case Destination::documentField:
            if (inner.documentField >= 0)
                _result.fields[static_cast<std::size_t>(inner.documentField)] = takeCaptured();
            break;
        case Destination::fieldInstruction:
            if (inner.field > 0) _fields[static_cast<std::size_t>(inner.field) - 1] += takeCaptured();
            break;
        case Destination::language:
            language = takeCaptured();
            break;
        default:
            break;
    }
    _state = outer;
    if (inner.destination != Destination::skipped)
        _captured.resize(std::min(_captured.size(), inner.captureStart));
    if (inner.destination == Destination::fontTable) setUsualFont();
    if (inner.destination == Destination::picture) endPicture();
    if (inner.destination == Destination::language) takeLanguageName(language);
}

void P::endPart(const State& part) {
    RichTextBuilder& builder = *part.builder;
    if (part.builder == &_notes && !builder.endsWithLineFeed())
        builder.unitsOfFormat(_result.characters.numberOf(part.character)).append(u'\n');
    builder.endParagraph(paragraphNumber(part.paragraph));
}

std::u16string P::takeCaptured() {
    std::u16string text = _captured.substr(_state.captureStart);
    _captured.resize(_state.captureStart);
    return text;
}

// MARK: Fonts, colours and styles

void P::setFontNumber(int) {
    if (_state.destination == Destination::fontTable) {
        _font = {};
        _font.number = _parameter;
    } else if (const auto found = _fonts.find(_parameter); found != _fonts.end()) {
        character()[CharacterProperty::font] = found->second;
    }
    _codePage = nullptr;
}

void P::setFontKind(int kind) { _font.entry.kind = static_cast<FontEntry::Kind>(kind); }

void P::setFontCharacterSet(int) {
    _font.entry.codePage = codePageOfCharacterSet(_parameter);
    _codePage = nullptr;
}

void P::setFontCodePage(int) {
    _font.entry.codePage = parameterBetween(0, 0xFFFF);
    _codePage = nullptr;
}

void P::commitFont() {
    _font.entry.name = trimmed(takeCaptured());
    if (_font.entry.name == u"Symbol") _font.entry.codePage = CodePage::greekSymbols;
    _fonts[_font.number] = _result.tables.fonts.numberOf(_font.entry);
    _font = {};
}

// The table of fonts comes after the number of the one that text has from the start.
void P::setUsualFont() {
    const auto found = _fonts.find(_defaultFont);
    if (found == _fonts.end()) return;
    _usualCharacter[CharacterProperty::font] = found->second;
    _state.character[CharacterProperty::font] = found->second;
    _isFormatCurrent = false;
    _codePage = nullptr;
}

void P::setDefaultFont(int) {
    _defaultFont = _parameter;
    setUsualFont();
}

void P::setColour(int component) {
    std::int32_t* const components[] = {&_colour.red, &_colour.green, &_colour.blue};
    *components[component] = parameterBetween(0, 255);
    _hasColour = true;
}

// An entry without components stands for the usual colour.
void P::commitColour() {
    _fileColours.push_back(_hasColour ? _result.tables.colours.numberOf(_colour) : 0);
    _colour = {};
    _hasColour = false;
}

void P::setColourOf(int property) {
    const auto index = static_cast<std::size_t>(std::max(_parameter, 0));
    character()[static_cast<CharacterProperty>(property)] =
        _hasParameter && index < _fileColours.size() ? _fileColours[index] : 0;
}

void P::commitStyle() {
    const std::u16string name = trimmed(takeCaptured());
    auto& styles = _isCharacterStyle ? _result.tables.characterStyles : _result.tables.paragraphStyles;
    _styles[{_isCharacterStyle, _styleNumber}] = name.empty() ? 0 : styles.numberOf(name);
    _styleNumber = 0;
    _isCharacterStyle = false;
}

void P::setStyle(int isCharacterStyle) {
    if (_state.destination == Destination::styleSheet) {
        _styleNumber = _parameter;
        _isCharacterStyle = isCharacterStyle != 0;
        return;
    }
    const auto found = _styles.find({isCharacterStyle != 0, _parameter});
    const std::int32_t number = found == _styles.end() ? 0 : found->second;
    if (isCharacterStyle)
        character()[CharacterProperty::style] = number;
    else
        paragraph()[ParagraphProperty::style] = number;
}

// MARK: Fields and pictures

void P::beginField(int) {
    _fields.emplace_back();
    _state.field = static_cast<int>(_fields.size());
}

void P::beginFieldResult(int) {
    if (!isText() || _state.field == 0) return;
    const FieldInstruction instruction(_fields[static_cast<std::size_t>(_state.field) - 1]);
    switch (instruction.kind()) {
        case FieldInstruction::Kind::link:
            if (!instruction.link().empty())
                character()[CharacterProperty::link] = _result.tables.links.numberOf(instruction.link());
            return;
        case FieldInstruction::Kind::pageNumber:
            if (isInLine()) return replaceFieldResult(WRPageNumberCharacter);
            break;
        case FieldInstruction::Kind::pageCount:
            if (isInLine()) return replaceFieldResult(WRPageCountCharacter);
            break;
        // The title is the file's name where the document has no title.
        case FieldInstruction::Kind::title:
            if (isInLine() && hasTitle()) return replaceFieldResult(WRTitleCharacter);
            break;
        case FieldInstruction::Kind::fileName:
            if (isInLine() && !hasTitle()) return replaceFieldResult(WRTitleCharacter);
            break;
        default:
            break;
    }
    _leftOut.insert("fldinst");
}

void P::replaceFieldResult(char16_t sign) {
    appendCharacter(sign);
    skipDestination(0);
}

void P::setPictureType(int type) {
    _picture.entry.type = static_cast<PictureEntry::Type>(type);
    _picture.isKnown = true;
}

void P::setPictureNumber(int member) {
    std::int32_t* const members[] = {&_picture.width, &_picture.height, &_picture.scaleX, &_picture.scaleY};
    *members[member] = parameterBetween(0, kMaximumLength);
}

void P::endPicture() {
    FilePicture picture = std::exchange(_picture, {});
    if (!isText()) return;
    if (!picture.isKnown || picture.entry.bytes.empty()) {
        _leftOut.insert("pict");
        return;
    }
    const auto points = [](std::int64_t twips, std::int32_t scale) {
        return static_cast<float>(std::min<std::int64_t>(twips * scale / 100, kMaximumLength)) / 20;
    };
    picture.entry.size = {points(picture.width, picture.scaleX), points(picture.height, picture.scaleY)};
    CharacterFormat format = _state.character;
    format[CharacterProperty::picture] = static_cast<std::int32_t>(_result.tables.pictures.size());
    _result.tables.pictures.push_back(std::move(picture.entry));
    _state.builder->unitsOfFormat(_result.characters.numberOf(format)).append(NSAttachmentCharacter);
}

void P::takeBinary(int) {
    const NSUInteger start = _scanner->scanLocation();
    const std::uint64_t left = _source.length() - std::min<std::uint64_t>(start, _source.length());
    const auto count = static_cast<NSUInteger>(
        std::min<std::uint64_t>(left, static_cast<std::uint64_t>(std::max(_parameter, 0))));
    if (_state.destination == Destination::picture && _picture.isKnown)
        _picture.entry.bytes += _scanner->readBytes(count);
    else
        _scanner->setScanLocation(start + count);
}

// MARK: Characters and paragraphs

void P::setSkippedPerUnicode(int) { _state.skippedPerUnicode = parameterBetween(0, 1000); }

// The private area holds the characters of symbol fonts.
void P::takeUnicode(int) {
    const auto unit = static_cast<char16_t>(_parameter);
    std::u16string units(1, unit);
    if (codePage().number() == CodePage::greekSymbols && unit >> 8 == 0xF0) {
        const char byte = static_cast<char>(unit);
        units.clear();
        codePage().append({&byte, 1}, units);
    }
    appendUnits(units);
    _skippedLeft = static_cast<std::size_t>(_state.skippedPerUnicode);
}

void P::appendCharacter(int unit) {
    if (_skippedLeft > 0) {
        --_skippedLeft;
        return;
    }
    const auto character = static_cast<char16_t>(unit);
    appendUnits({&character, 1});
}

void P::appendPageNumber(int unit) {
    if (isInLine())
        appendCharacter(unit);
    else
        _leftOut.insert("chpgn");
}

// The note's number comes in the text before the note, and once more in the note.
void P::appendNoteNumber(int) {
    std::u16string digits;
    for (char digit : std::to_string(_state.builder == &_notes ? _noteCount : _noteCount + 1))
        digits.push_back(static_cast<char16_t>(digit));
    appendUnits(digits);
}

void P::endTextParagraph() {
    if (isText()) _state.builder->endParagraph(paragraphNumber(_state.paragraph));
}

// Formats that mean the same have one number.
std::uint32_t P::paragraphNumber(ParagraphFormat format) {
    std::int32_t& height = format[ParagraphProperty::lineHeight];
    std::int32_t& isFactor = format[ParagraphProperty::isLineHeightFactor];
    if (isFactor && (height = std::abs(height)) == kUsualLineHeight) height = 0;
    if (height == 0) isFactor = 0;
    return _result.paragraphs.numberOf(format);
}

// A row of a table is one paragraph.
void P::endParagraph(int) {
    if (!isText()) return;
    _state.builder->unitsOfFormat(formatNumber()).append(_state.isInTable ? u'\u2028' : u'\n');
    if (!_state.isInTable) endTextParagraph();
}

void P::endCell(int) {
    leaveOut(0);
    if (isText()) _state.builder->endCell();
}

void P::endRow(int) {
    if (!isText()) return;
    _state.builder->endRow();
    _state.builder->unitsOfFormat(formatNumber()).append(u'\n');
    endTextParagraph();
}

void P::setInTable(int) { _state.isInTable = isSet(); }

void P::endSection(int) {
    if (!isText()) return;
    leaveOut(0);
    _hasSectionEnded = true;
    if (!_state.builder->isAtParagraphStart()) {
        _state.builder->unitsOfFormat(formatNumber()).append(u'\n');
        endTextParagraph();
    }
    _state.builder->setOpenBreak(true);
}

void P::setSectionBreak(int breaks) {
    if (isText() && _hasSectionEnded && !breaks) _state.builder->setOpenBreak(false);
}

// MARK: Formats

void P::resetCharacter(int) {
    const std::int32_t link = _state.character[CharacterProperty::link];
    _state.character = _usualCharacter;
    _state.character[CharacterProperty::link] = link;
    _isFormatCurrent = false;
    _codePage = nullptr;
}

void P::setFlag(int packed) {
    character()[static_cast<CharacterProperty>(packed >> 8)] = isSet() ? packed & 0xFF : 0;
}

void P::setValue(int packed) {
    character()[static_cast<CharacterProperty>(packed >> 8)] = static_cast<std::int8_t>(packed);
}

// Without a number a word stands for the usual value.
void P::setNumber(int value) {
    const auto property = static_cast<CharacterProperty>(value);
    std::int32_t number = CharacterFormat()[property];
    if (_hasParameter) {
        switch (property) {
            case CharacterProperty::size:
                number = parameterBetween(2, 0x7FFE);
                break;
            case CharacterProperty::width:
                number = parameterBetween(1, 600);
                break;
            default:
                number = parameterBetween(-31680, 31680);
        }
    }
    character()[property] = number;
}

void P::setLanguage(int) {
    const int number = _hasParameter && _parameter != _unmarkedLanguage ? _parameter : 0;
    const std::u16string_view name = languageOfNumber(number);
    if (name.empty() && number != 0 && number != kUnknownLanguage) leaveOut(0);
    character()[CharacterProperty::language] =
        name.empty() ? 0 : _result.tables.languages.numberOf(std::u16string(name));
}

void P::setUsualLanguage(int) { _usualLanguage = _parameter; }

void P::leaveUsualLanguageUnmarked(int) {
    _unmarkedLanguage = _usualLanguage;
    skipDestination(0);
}

// Programs that do not know the name keep to the number before.
void P::takeLanguageName(const std::u16string& name) {
    if (isLanguageName(name))
        character()[CharacterProperty::language] = _result.tables.languages.numberOf(name);
}

void P::setOffset(int sign) {
    character()[CharacterProperty::baselineOffset] = sign * (_hasParameter ? parameterBetween(0, 3276) : 6);
}

void P::setKernQuarters(int) { character()[CharacterProperty::kern] = 5 * parameterBetween(-6336, 6336); }

void P::resetParagraph(int) {
    _state.paragraph = _usualParagraph;
    _state.isInTable = false;
    _tabType = 0;
}

void P::setHyphenation(int) {
    if (!isText()) return;
    _usualParagraph[ParagraphProperty::hyphenates] = isSet();
    _state.paragraph[ParagraphProperty::hyphenates] = isSet();
}

// The word is alone in a group, which other programs pass over. Direction and alignment before the group are
// what the text of the paragraph has by itself.
void P::setNatural(int) {
    const ParagraphFormat usual;
    for (const ParagraphProperty property : {ParagraphProperty::alignment, ParagraphProperty::direction})
        _states.back().paragraph[property] = usual[property];
    skipDestination(0);
}

void P::setParagraphFlag(int property) { paragraph()[static_cast<ParagraphProperty>(property)] = isSet(); }

void P::setParagraphValue(int packed) {
    paragraph()[static_cast<ParagraphProperty>(packed >> 8)] = static_cast<std::int8_t>(packed);
}

void P::setParagraphNumber(int property) {
    paragraph()[static_cast<ParagraphProperty>(property)] =
        _hasParameter ? parameterBetween(-kMaximumLength, kMaximumLength) : 0;
}

void P::setTabType(int type) { _tabType = type; }

void P::addTab(int) {
    const TabFormat tab{parameterBetween(-kMaximumLength, kMaximumLength), std::exchange(_tabType, 0)};
    std::vector<TabFormat>& tabs = paragraph().tabs;
    if (tabs.size() == kMaximumTabs) return leaveOut(0);
    tabs.insert(
        std::upper_bound(tabs.begin(), tabs.end(), tab,
                         [](const TabFormat& a, const TabFormat& b) { return a.location < b.location; }),
        tab);
}

void P::setDefaultTabs(int) {
    const int interval = parameterBetween(0, kMaximumLength);
    _result.tables.tabInterval = interval == kUsualTabInterval ? 0 : interval;
}

// MARK: The document

void P::setDocumentCodePage(int page) {
    _documentCodePage = page ? page : parameterBetween(0, 0xFFFF);
    _codePage = nullptr;
}

void P::setPageNumber(int number) {
    _result.pageNumbers[static_cast<std::size_t>(number)] = parameterBetween(0, kMaximumLength);
}

void P::setSectionPageNumber(int number) {
    if (_hasSectionEnded)
        leaveOut(0);
    else
        setPageNumber(number);
}

}  // namespace pelvor
