// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/RichTextMarkup.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Foundation/TextBoundaries.h"
#include "Foundation/UserLanguages.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/NSParagraphStyle.h"
#include "Text/NSTextTab.h"
#include "Text/TextAttributes.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/RichText/FieldInstruction.h"
#include "Writer/PlugIns/RichText/FormatAttributes.h"
#include "Writer/PlugIns/RichText/LanguageNumbers.h"
#include "Writer/PlugIns/RichText/RichTextAnswer.h"

namespace pelvor {
namespace {

using C = CharacterProperty;
using A = ParagraphProperty;

// The control word that sets a property to any value.
template <class Property>
struct NumberWord {
    Property property;
    std::string_view word;
};

constexpr NumberWord<C> kCharacterNumbers[] = {
    {C::size, "fs"},       {C::kern, "expndtw"},        {C::width, "charscalex"},
    {C::foreground, "cf"}, {C::underlineColour, "ulc"},
};
constexpr NumberWord<A> kParagraphNumbers[] = {
    {A::leadingIndent, "li"},
    {A::firstLineIndent, "fi"},
    {A::trailingIndent, "ri"},
    {A::spaceBefore, "sb"},
    {A::spaceAfter, "sa"},
    {A::lineHeight, "sl"},
    {A::isLineHeightFactor, "slmult"},
    {A::hyphenates, "hyphpar"},
    {A::keepWithNext, "keepn"},
    {A::keepTogether, "keep"},
    {A::pageBreakBefore, "pagebb"},
};

// The control word for one value of a property.
template <class Property>
struct ValueWord {
    Property property;
    std::int32_t value;
    std::string_view word;
};

constexpr ValueWord<C> kCharacterValues[] = {
    {C::bold, 1, "b"},
    {C::italic, 1, "i"},
    {C::underline, NSUnderlineStyleSingle, "ul"},
    {C::underline, NSUnderlineStyleThick, "ulth"},
    {C::underline, NSUnderlineStyleDouble, "uldb"},
    {C::strikethrough, NSUnderlineStyleSingle, "strike"},
    {C::strikethrough, NSUnderlineStyleDouble, "striked1"},
    {C::superscript, 1, "super"},
    {C::superscript, -1, "sub"},
    {C::capitals, 1, "scaps"},
    {C::capitals, 2, "caps"},
};
constexpr ValueWord<A> kParagraphValues[] = {
    {A::alignment, NSLeftTextAlignment, "ql"},
    {A::alignment, NSRightTextAlignment, "qr"},
    {A::alignment, NSCenterTextAlignment, "qc"},
    {A::alignment, NSJustifiedTextAlignment, "qj"},
    {A::direction, NSWritingDirectionLeftToRight, "ltrpar"},
    {A::direction, NSWritingDirectionRightToLeft, "rtlpar"},
};

constexpr std::u16string_view kParagraphEnds = u"\n\r\u2029";

// By NSTextTabType.
constexpr std::string_view kTabWords[] = {"", "tqr", "tqc", "tqdec"};
constexpr std::string_view kFontKinds[] = {"fnil", "froman", "fswiss", "fmodern"};
constexpr std::string_view kPictureWords[] = {"pngblip", "jpegblip", "emfblip", "wmetafile8"};
constexpr std::string_view kPageWords[] = {"paperw", "paperh", "margl",   "margr",
                                           "margt",  "margb",  "headery", "footery"};
constexpr std::string_view kFieldWords[] = {"title", "author", "subject", "keywords", "doccomm"};

// One style sheet holds the styles of paragraphs and of characters, and no two of them have one number.
constexpr std::int32_t sheetNumber(std::int32_t style, bool isOfCharacters) {
    return 2 * style - !isOfCharacters;
}

// Bytes with control words. A space follows a word where the next byte could be taken for a part of it.
class MarkupBytes {
  public:
    void word(std::string_view name) {
        _bytes.push_back('\\');
        _bytes += name;
        _isAfterWord = true;
    }
    void word(std::string_view name, std::int64_t number) {
        word(name);
        char digits[24];
        _bytes.append(digits, std::to_chars(digits, std::end(digits), number).ptr);
    }
    /// Braces, escapes, line ends.
    void mark(std::string_view mark) {
        _bytes += mark;
        _isAfterWord = false;
    }
    void text(char byte) {
        if (_isAfterWord) _bytes.push_back(' ');
        _bytes.push_back(byte);
        _isAfterWord = false;
    }
    void unit(char16_t unit) {
        word("u", static_cast<std::int16_t>(unit));
        mark("?");
    }
    /// Text that is no text of the document; marks are escaped.
    void escaped(std::u16string_view units) {
        for (char16_t unit : units)
            if (unit >= 0x20 && unit < 0x7F &&
                std::u16string_view(u"\\{};").find(unit) == std::u16string_view::npos)
                text(static_cast<char>(unit));
            else
                this->unit(unit);
    }
    void add(const MarkupBytes& other) {
        _bytes += other._bytes;
        _isAfterWord = other._isAfterWord;
    }
    void reserve(std::size_t length) { _bytes.reserve(length); }
    std::string take() { return std::move(_bytes); }

  private:
    std::string _bytes;
    bool _isAfterWord = false;
};

// What stands for the title in a header or footer: a field of the document's own title, or of its file's
// name.
struct TitleField {
    std::string_view instruction;
    std::u16string result;
};

// What the texts of a document share.
struct UsualFormats {
    ParagraphFormat paragraph;
    std::int32_t language = 0;  // the number of the language that other programs take unmarked text for; or 0
};

// Writes one text: the body, or, with a title, a header or a footer.
class TextMarkup {
  public:
    TextMarkup(AttributeFormats& formats, const UsualFormats& usual, const TitleField* title,
               MarkupBytes& out)
        : _formats(formats), _title(title), _out(out), _usualFormats(usual), _paragraph(usual.paragraph) {
        _usual[C::font] = 1;
        _character = _usual;
    }

    void add(NSAttributedString* text) {
        _out.word("pard");  // what the formats of a paragraph and of characters are counted from
        _out.word("plain");
        setLanguage(0);
        const StringUnits units(text->string());
        for (AttributeRun run : text->runs()) {
            const Formats& formats = formatsOf(run.attributes);
            addRun(units.view().substr(run.range.location), run.range.length, formats);
        }
        endLink();
    }

  private:
    struct Formats {
        CharacterFormat character;
        ParagraphFormat paragraph;
    };

    const Formats& formatsOf(NSDictionary* attributes) {
        const auto [place, isNew] = _known.try_emplace(attributes);
        if (isNew) place->second = {_formats.characterOf(attributes), _formats.paragraphOf(attributes)};
        return place->second;
    }

    // The run is the front of the text from there on.
    void addRun(std::u16string_view text, std::size_t length, const Formats& formats) {
        std::u16string_view units = text.substr(0, length);
        // A line end may be cut by the border of two runs.
        if (std::exchange(_isAfterReturn, false) && units.starts_with(u'\n')) units.remove_prefix(1);
        while (!units.empty()) {
            if (std::exchange(_isParagraphStart, false)) {
                const std::u16string_view rest =
                    text.substr(static_cast<std::size_t>(units.data() - text.data()));
                setParagraph(formats.paragraph, rest.substr(0, rest.find_first_of(kParagraphEnds)));
            }
            setCharacter(formats.character);
            const std::size_t end = std::min(units.find_first_of(kParagraphEnds), units.size());
            addUnits(units.substr(0, end), formats.character);
            if (end < units.size()) {
                const bool isPair = units.substr(end).starts_with(u"\r\n");
                _isAfterReturn = units.substr(end) == u"\r";
                endParagraph();
                units.remove_prefix(end + (isPair ? 2 : 1));
            } else {
                units = {};
            }
        }
    }
    void endParagraph() {
        _out.word("par");
        _out.mark("\n");
        _isParagraphStart = true;
    }

    void addUnits(std::u16string_view units, const CharacterFormat& format) {
        const bool isSymbolic = _formats.tables().fonts[format[C::font]].name == u"Symbol";
        for (char16_t unit : units) addUnit(unit, format, isSymbolic);
    }
    void addUnit(char16_t unit, const CharacterFormat& format, bool isSymbolic) {
        switch (unit) {
            case u'\\':
                return _out.mark("\\\\");
            case u'{':
                return _out.mark("\\{");
            case u'}':
                return _out.mark("\\}");
            case u'\t':
                return _out.word("tab");
            case u'\f':
                return _out.word("page");
            case u'\u2028':
                return _out.word("line");
            case u'\u00A0':
                return _out.mark("\\~");
            case u'\u00AD':
                return _out.mark("\\-");
            case u'\u2011':
                return _out.mark("\\_");
            case NSAttachmentCharacter:
                if (format[C::picture])
                    return addPicture(
                        _formats.tables().pictures[static_cast<std::size_t>(format[C::picture])]);
                break;
            case WRPageNumberCharacter:
                if (_title) return _out.word("chpgn");
                break;
            case WRPageCountCharacter:
                if (_title) return addField("NUMPAGES", u"1");
                break;
            case WRTitleCharacter:
                if (_title) return addField(_title->instruction, _title->result);
                break;
            default:
                break;
        }
        if (unit >= 0x20 && unit < 0x7F && !isSymbolic)
            _out.text(static_cast<char>(unit));
        else
            _out.unit(unit);
    }

    void addField(std::string_view instruction, std::u16string_view result) {
        _out.mark("{\\field{\\*");
        _out.word("fldinst");
        for (char byte : instruction) _out.text(byte);
        _out.mark("}{");
        _out.word("fldrslt");
        _out.escaped(result);
        _out.mark("}}");
    }

    void addPicture(const PictureEntry& picture) {
        constexpr std::size_t kLine = 64;
        _out.mark("{");
        _out.word("pict");
        _out.word(kPictureWords[picture.type]);
        if (picture.size.width > 0) _out.word("picwgoal", std::lround(picture.size.width * 20));
        if (picture.size.height > 0) _out.word("pichgoal", std::lround(picture.size.height * 20));
        std::string digits;
        for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
            if (i % kLine == 0) digits.push_back('\n');
            const auto byte = static_cast<std::uint8_t>(picture.bytes[i]);
            digits.push_back("0123456789abcdef"[byte >> 4]);
            digits.push_back("0123456789abcdef"[byte & 0xF]);
        }
        _out.mark(digits);
        _out.mark("}");
    }

    void setParagraph(const ParagraphFormat& format, std::u16string_view text) {
        const ParagraphFormat natural;
        const bool isNatural = format[A::direction] == natural[A::direction];
        const bool isRightToLeft = isNatural ? isParagraphReadRightToLeft(text)
                                             : format[A::direction] == NSWritingDirectionRightToLeft;
        if (format == _paragraph && isRightToLeft == _isRightToLeft) return;
        endLink();
        _paragraph = format;
        _isRightToLeft = isRightToLeft;
        _out.word("pard");
        if (format[A::style]) _out.word("s", sheetNumber(format[A::style], false));
        // Other programs do not look at the text to find the direction or the alignment.
        if (isRightToLeft && (isNatural || format[A::alignment] == natural[A::alignment]))
            _out.mark("\\rtlpar\\qr{\\*\\pelvornatural}");
        for (const auto& [property, word] : kParagraphNumbers)
            if (format[property] != _usualFormats.paragraph[property]) _out.word(word, format[property]);
        for (const auto& [property, value, word] : kParagraphValues)
            if (format[property] == value) _out.word(word);
        if (isRightToLeft && (format[A::leadingIndent] || format[A::trailingIndent])) {
            // The indents above are those on the left and on the right for some programs.
            _out.word("lin", format[A::leadingIndent]);
            _out.word("rin", format[A::trailingIndent]);
        }
        for (const TabFormat& tab : format.tabs) {
            if (tab.type) _out.word(kTabWords[tab.type]);
            _out.word("tx", tab.location);
        }
    }

    void setCharacter(CharacterFormat format) {
        if (format[C::link] != _character[C::link]) {
            endLink();
            if (format[C::link]) beginLink(format[C::link]);
        }
        format[C::picture] = 0;
        if (format == _character) return;
        _character = format;
        CharacterFormat usual = _usual;
        _out.word("plain");
        if (format[C::font] != usual[C::font]) _out.word("f", format[C::font] - 1);
        for (const auto& [property, value, word] : kCharacterValues)
            if (format[property] == value) _out.word(word);
        for (const auto& [property, word] : kCharacterNumbers)
            if (format[property] != usual[property]) _out.word(word, format[property]);
        if (format[C::style]) _out.word("cs", sheetNumber(format[C::style], true));
        setLanguage(format[C::language]);
        if (const std::int32_t offset = format[C::baselineOffset])
            _out.word(offset > 0 ? "up" : "dn", std::abs(offset));
        if (const std::int32_t colour = format[C::background]) {
            _out.word("chshdng0");
            _out.word("chcbpat", colour);
            _out.word("cb", colour);
        }
    }

    // Other programs know numbers: that of "fr-FR" for "fr". The name follows where a number alone would be
    // read as another one, or as that of unmarked text.
    void setLanguage(std::int32_t language) {
        const std::int32_t usual = _usualFormats.language;
        if (!language && usual) _out.word("lang", usual);
        if (!language) return;
        const std::u16string& name = _formats.tables().languages[language];
        const std::int32_t number = numberOfLanguage(name);
        _out.word("lang", number ? number : kUnknownLanguage);
        if (number != usual && languageOfNumber(number) == name) return;
        _out.mark("{\\*");
        _out.word("pelvorlang");
        _out.escaped(name);
        _out.mark("}");
    }

    void beginLink(std::int32_t link) {
        _outside = _character;
        _character[C::link] = link;
        _out.mark("{");
        _out.word("field");
        _out.mark("{\\*");
        _out.word("fldinst");
        _out.escaped(FieldInstruction::ofLink(_formats.tables().links[link]));
        _out.mark("}{");
        _out.word("fldrslt");
    }
    void endLink() {
        if (!_character[C::link]) return;
        _out.mark("}}");
        _character = _outside;
    }

    AttributeFormats& _formats;
    const TitleField* _title;  // null for the body
    MarkupBytes& _out;
    std::unordered_map<NSDictionary*, Formats> _known;
    CharacterFormat _usual, _character, _outside;  // the last is that around a link
    const UsualFormats& _usualFormats;
    ParagraphFormat _paragraph;
    bool _isParagraphStart = true, _isAfterReturn = false, _isRightToLeft = false;
};

void addFonts(const RichTextTables& tables, MarkupBytes& out) {
    out.mark("{");
    out.word("fonttbl");
    for (std::int32_t number = 1; number < tables.fonts.size(); ++number) {
        const FontEntry& entry = tables.fonts[number];
        out.mark("{");
        out.word("f", number - 1);
        out.word(kFontKinds[entry.kind]);
        out.word("fcharset", 0);
        out.escaped(entry.name);
        if (!entry.alternative.empty()) {
            out.mark("{\\*");
            out.word("falt");
            out.escaped(entry.alternative);
            out.mark("}");
        }
        out.text(';');
        out.mark("}");
    }
    out.mark("}\n");
}

void addColours(const RichTextTables& tables, MarkupBytes& out) {
    if (tables.colours.size() == 1) return;
    out.mark("{");
    out.word("colortbl");
    out.mark(";");
    for (std::int32_t number = 1; number < tables.colours.size(); ++number) {
        const ColourEntry& colour = tables.colours[number];
        out.word("red", colour.red);
        out.word("green", colour.green);
        out.word("blue", colour.blue);
        out.mark(";");
    }
    out.mark("}\n");
}

void addStyles(const RichTextTables& tables, MarkupBytes& out) {
    const auto addNames = [&](const EntryTable<std::u16string>& names, bool isOfCharacters) {
        for (std::int32_t style = 1; style < names.size(); ++style) {
            out.mark(isOfCharacters ? "{\\*" : "{");
            out.word(isOfCharacters ? "cs" : "s", sheetNumber(style, isOfCharacters));
            out.escaped(names[style]);
            out.text(';');
            out.mark("}");
        }
    };
    if (tables.paragraphStyles.size() + tables.characterStyles.size() == 2) return;
    out.mark("{");
    out.word("stylesheet");
    addNames(tables.paragraphStyles, false);
    addNames(tables.characterStyles, true);
    out.mark("}\n");
}

void addFields(NSDictionary* settings, MarkupBytes& out) {
    MarkupBytes fields;
    for (std::size_t i = 0; i < std::size(kFieldWords); ++i) {
        auto* field = cast<NSString>(settings->objectForKey(kDocumentFieldKeys[i]));
        if (!field) continue;
        fields.mark("{");
        fields.word(kFieldWords[i]);
        fields.escaped(field->toUTF16());
        fields.mark("}");
    }
    const std::string bytes = fields.take();
    if (!bytes.empty()) out.mark("{\\info" + bytes + "}\n");
}

void addPageNumbers(NSDictionary* settings, MarkupBytes& out) {
    const auto number = [settings](NSString* key) { return cast<NSNumber>(settings->objectForKey(key)); };
    auto *width = number(WRPageWidthKey), *height = number(WRPageHeightKey);
    if (width && height && width->doubleValue() > height->doubleValue()) out.word("landscape");
    for (std::size_t i = 0; i < std::size(kPageWords); ++i)
        if (auto* length = number(kPageNumberKeys[i]))
            out.word(kPageWords[i], std::lround(std::clamp(length->doubleValue() * 20, 0.0, 1e6)));
}

bool isHyphenated(NSAttributedString* text) {
    if (!text) return false;
    for (AttributeRun run : text->runs())
        if (auto* style = cast<NSParagraphStyle>(run.attributes->objectForKey(NSParagraphStyleAttributeName));
            style && style->hyphenationFactor() > 0)
            return true;
    return false;
}

// What other programs take text for that names no language: the user's own.
std::int32_t usualLanguage() {
    NSArray* names = userLanguages();
    return names->count() ? numberOfLanguage(static_cast<NSString*>(names->objectAtIndex(0))->toUTF16()) : 0;
}

}  // namespace

RichTextMarkup markupOfRichText(NSAttributedString* text, NSDictionary* settings, NSString* fileName) {
    AutoreleasePool pool;
    AttributeFormats formats;
    MarkupBytes body, parts, out;
    const auto line = [settings](NSString* key) {
        return settings ? cast<NSAttributedString>(settings->objectForKey(key)) : nullptr;
    };
    const std::pair<NSAttributedString*, std::string_view> lines[] = {{line(WRHeaderKey), "header"},
                                                                      {line(WRFooterKey), "footer"}};
    UsualFormats usual;
    usual.language = usualLanguage();
    usual.paragraph[A::hyphenates] =
        isHyphenated(text) || isHyphenated(lines[0].first) || isHyphenated(lines[1].first);
    if (text->length() == 0) formats.characterOf(NSDictionary::dictionary());  // every file has a font
    body.reserve(text->length() + text->length() / 4);
    TextMarkup(formats, usual, nullptr, body).add(text);
    TitleField title{"TITLE", u""};
    if (auto* own = settings ? cast<NSString>(settings->objectForKey(WRTitleKey)) : nullptr)
        title.result = own->toUTF16();
    else
        title = {"FILENAME", fileName ? fileName->toUTF16() : u""};
    for (const auto& [part, word] : lines) {
        if (!part || part->length() == 0) continue;
        parts.mark("{");
        parts.word(word);
        TextMarkup(formats, usual, &title, parts).add(part);
        parts.mark("}\n");
    }
    out.mark("{\\rtf1\\ansi\\ansicpg1252\\uc1\\deff0");
    if (usual.language) out.word("deflang", usual.language);
    if (usual.language) out.mark("{\\*\\pelvorunmarked}");
    out.mark("\n");
    addFonts(formats.tables(), out);
    addColours(formats.tables(), out);
    addStyles(formats.tables(), out);
    if (settings) addFields(settings, out);
    out.word("widowctrl");
    if (const std::int32_t interval = formats.tables().tabInterval) out.word("deftab", interval);
    if (usual.paragraph[A::hyphenates]) out.word("hyphauto");
    if (settings) addPageNumbers(settings, out);
    out.mark("\n");
    out.add(parts);
    out.add(body);
    out.mark("}\n");
    return {out.take(), formats.leftOut()};
}

}  // namespace pelvor
