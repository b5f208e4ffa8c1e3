// SPDX-License-Identifier: Apache-2.0
// Reads style sheets.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <map>
#include <set>
#include <vector>

#include "Foundation/NSArray.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSScanner.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "NSMutableString-PelvorAdditions.h"
#include "Text/NSColor.h"
#include "Text/NSTextTab.h"
#include "Text/TextAttributes.h"
#include "Writer/LocalizedText.h"
#include "Writer/Pages/PageLines.h"
#include "Writer/Pages/StyleSheet.h"
#include "Writer/PlugInProtocol.h"

namespace pelvor {
namespace {

constexpr float kLongest = 14400;  // points, as pages of PDF documents go
constexpr std::size_t kMostBases = 64;

struct Paper {
    NSString* name;
    NSSize size;
};
constexpr Paper kPapers[] = {{u"a3"_ns, {841.89F, 1190.55F}},
                             {u"a4"_ns, {595.28F, 841.89F}},
                             {u"a5"_ns, {419.53F, 595.28F}},
                             {u"legal"_ns, {612, 1008}},
                             {u"letter"_ns, {612, 792}}};

}  // namespace

NSArray* StyleSheet::paperNames() {
    auto* names = NSMutableArray::array();
    for (const Paper& paper : kPapers) names->addObject(paper.name);
    return names;
}

NSSize StyleSheet::paperSizeNamed(NSString* name) {
    for (const Paper& paper : kPapers)
        if (paper.name->isEqualToString(name->lowercaseString())) return paper.size;
    return {};
}

// Walks through a property list and knows where it is. What it returns after the first problem has no
// meaning.
class StyleSheetReader {
  public:
    StyleSheetReader(NSString* path, NSDictionary* list) : _path(path), _list(list) {}

    std::optional<StyleSheet> read();
    NSString* problem() { return _problem; }

    // The value of the key at work

    float number(id value, float least, float most);
    bool flag(id value);
    NSString* text(id value);
    /// The number of the word among the words.
    template <class Result>
    Result word(id value, std::initializer_list<NSString*> words) {
        return static_cast<Result>(indexOfWord(value, words));
    }
    NSColor* colour(id value);
    NSFont* family(id value);
    Retained<NSArray> tabs(id value);
    NSSize paper(id value);

  private:
    // A step deeper into the list, while it lives.
    class Step {
      public:
        Step(StyleSheetReader& reader, NSString* key) : _place(reader._place) {
            _place.push_back(key->toUTF16());
        }
        ~Step() { _place.pop_back(); }
        Step(const Step&) = delete;

      private:
        std::vector<std::u16string>& _place;
    };
    using Styles = StyleSheet::Styles;

    NSDictionary* dictionary(id value);
    int indexOfWord(id value, std::initializer_list<NSString*> words);
    Retained<NSTextTab> tab(NSDictionary* entry);
    void readStyles(NSString* kind, Styles& styles, bool areForParagraphs);
    void readStyle(NSString* name, Styles& styles, bool isForParagraphs);
    void takeBase(id base, Styles& styles, NamedStyle& style, bool isForParagraphs);
    void readPage(StyleSheet& sheet, NSDictionary* page);

    template <class... Arguments>
    void fail(NSString* key, const Arguments&... arguments) {
        if (_problem) return;
        NSString* what = NSString::stringWithFormat(localized(key), arguments...);
        NSString* place = u""_ns;
        for (const std::u16string& step : _place)
            place = NSString::stringWithFormat(place->length() ? u"%@ / %@"_ns : u"%@%@"_ns, place,
                                               NSString::of(step));
        _problem = NSString::stringWithFormat(localized(u"_The style sheet \"%@\" at \"%@\": %@"_ns), _path,
                                              place, what);
    }
    static std::u16string keyOf(NSString* name) { return name->lowercaseString()->toUTF16(); }

    NSString* _path;
    NSDictionary* _list;
    NSString* _problem = nullptr;
    std::vector<std::u16string> _place;
    std::map<std::u16string, NSDictionaryEntry> _all;  // the list's styles of one kind, by lower-case name
    std::set<std::u16string> _open;                    // the styles that are being read
};

// MARK: Keys

namespace {

using R = StyleSheetReader;

struct StyleKey {
    NSString* name;
    bool isForParagraphs;
    void (*take)(R& reader, NamedStyle& style, id value);
};

template <auto Set>
void takeLength(R& reader, NamedStyle& style, id value) {
    (style.paragraph.get()->*Set)(reader.number(value, 0, kLongest));
}
template <auto Set>
void takeIndent(R& reader, NamedStyle& style, id value) {
    (style.paragraph.get()->*Set)(reader.number(value, -kLongest, kLongest));
}
void setNumber(NamedStyle& style, NSString* name, float value) {
    style.attributes->setObject_forKey(NSNumber::numberWithFloat(value), name);
}
void setColour(NamedStyle& style, NSString* name, NSColor* colour) {
    if (colour) style.attributes->setObject_forKey(colour, name);
}
// The styles of lines are the numbers of NSUnderlineStyle.
void setLines(NamedStyle& style, NSString* name, int number) {
    style.attributes->setObject_forKey(NSNumber::numberWithInt(number == 3 ? NSUnderlineStyleDouble : number),
                                       name);
}

using P = NSMutableParagraphStyle;

constexpr StyleKey kStyleKeys[] = {
    {u"font family"_ns, false, [](R& r, NamedStyle& s, id v) { s.family = r.family(v); }},
    {u"size"_ns, false, [](R& r, NamedStyle& s, id v) { s.size = r.number(v, 1, 1000); }},
    {u"bold"_ns, false, [](R& r, NamedStyle& s, id v) { s.isBold = r.flag(v); }},
    {u"italic"_ns, false, [](R& r, NamedStyle& s, id v) { s.isItalic = r.flag(v); }},
    {u"colour"_ns, false,
     [](R& r, NamedStyle& s, id v) { setColour(s, NSForegroundColorAttributeName, r.colour(v)); }},
    {u"background"_ns, false,
     [](R& r, NamedStyle& s, id v) { setColour(s, NSBackgroundColorAttributeName, r.colour(v)); }},
    {u"underline"_ns, false,
     [](R& r, NamedStyle& s, id v) {
         setLines(s, NSUnderlineStyleAttributeName,
                  r.word<int>(v, {u"none"_ns, u"single"_ns, u"thick"_ns, u"double"_ns}));
     }},
    {u"strikethrough"_ns, false,
     [](R& r, NamedStyle& s, id v) { setLines(s, NSStrikethroughStyleAttributeName, r.flag(v)); }},
    {u"baseline offset"_ns, false,
     [](R& r, NamedStyle& s, id v) { setNumber(s, NSBaselineOffsetAttributeName, r.number(v, -500, 500)); }},
    {u"kern"_ns, false,
     [](R& r, NamedStyle& s, id v) { setNumber(s, NSKernAttributeName, r.number(v, -100, 100)); }},
    {u"language"_ns, false,
     [](R& r, NamedStyle& s, id v) {
         if (NSString* name = r.text(v)) s.attributes->setObject_forKey(name, NSLanguageAttributeName);
     }},
    {u"alignment"_ns, true,
     [](R& r, NamedStyle& s, id v) {
         s.paragraph->setAlignment(r.word<NSTextAlignment>(
             v, {u"left"_ns, u"right"_ns, u"center"_ns, u"justified"_ns, u"natural"_ns}));
     }},
    {u"direction"_ns, true,
     [](R& r, NamedStyle& s, id v) {
         s.paragraph->setBaseWritingDirection(static_cast<NSWritingDirection>(
             r.word<int>(v, {u"natural"_ns, u"left to right"_ns, u"right to left"_ns}) - 1));
     }},
    {u"first line indent"_ns, true, takeIndent<&P::setFirstLineHeadIndent>},
    {u"indent"_ns, true, takeIndent<&P::setHeadIndent>},
    {u"end indent"_ns, true,
     [](R& r, NamedStyle& s, id v) { s.paragraph->setTailIndent(-r.number(v, 0, kLongest)); }},
    {u"space before"_ns, true, takeLength<&P::setParagraphSpacingBefore>},
    {u"space after"_ns, true, takeLength<&P::setParagraphSpacing>},
    {u"line spacing"_ns, true, takeLength<&P::setLineSpacing>},
    {u"line height"_ns, true,
     [](R& r, NamedStyle& s, id v) { s.paragraph->setLineHeightMultiple(r.number(v, 0.1F, 100)); }},
    {u"minimum line height"_ns, true, takeLength<&P::setMinimumLineHeight>},
    {u"maximum line height"_ns, true, takeLength<&P::setMaximumLineHeight>},
    {u"default tab interval"_ns, true, takeLength<&P::setDefaultTabInterval>},
    {u"tabs"_ns, true, [](R& r, NamedStyle& s, id v) { s.paragraph->setTabStops(r.tabs(v).get()); }},
    {u"hyphenation"_ns, true,
     [](R& r, NamedStyle& s, id v) { s.paragraph->setHyphenationFactor(r.number(v, 0, 1)); }},
    {u"keep with next"_ns, true, [](R& r, NamedStyle& s, id v) { s.rules.isKeepWithNext = r.flag(v); }},
    {u"keep together"_ns, true, [](R& r, NamedStyle& s, id v) { s.rules.isKeepTogether = r.flag(v); }},
    {u"page break before"_ns, true, [](R& r, NamedStyle& s, id v) { s.rules.isPageBreakBefore = r.flag(v); }},
};

struct PageKey {
    NSString* name;
    NSString* setting;
};
constexpr PageKey kPageLengths[] = {
    {u"width"_ns, WRPageWidthKey},          {u"height"_ns, WRPageHeightKey},
    {u"left margin"_ns, WRLeftMarginKey},   {u"right margin"_ns, WRRightMarginKey},
    {u"top margin"_ns, WRTopMarginKey},     {u"bottom margin"_ns, WRBottomMarginKey},
    {u"header place"_ns, WRHeaderPlaceKey}, {u"footer place"_ns, WRFooterPlaceKey}};

int hexDigit(unichar unit) {
    if (unit >= '0' && unit <= '9') return unit - '0';
    unit |= 0x20;
    return unit >= 'a' && unit <= 'f' ? unit - 'a' + 10 : -1;
}

}  // namespace

// MARK: Values

float StyleSheetReader::number(id value, float least, float most) {
    double number = NAN;
    if (auto* object = cast<NSNumber>(value)) number = object->doubleValue();
    if (auto* string = cast<NSString>(value)) {  // as the old style of property lists has numbers
        NSScanner* scanner = NSScanner::scannerWithString(string);
        if (!scanner->scanDouble(&number) || !scanner->isAtEnd()) number = NAN;
    }
    // As a float, for the least may be a fraction that is a little more than the same number as a double.
    const auto rounded = static_cast<float>(std::clamp(number, -1e6, 1e6));
    if (rounded >= least && rounded <= most) return rounded;
    fail(u"_a number from %@ to %@ is needed, not \"%@\"."_ns, NSNumber::numberWithFloat(least),
         NSNumber::numberWithFloat(most), value);
    return least;
}

bool StyleSheetReader::flag(id value) {
    if (auto* number = cast<NSNumber>(value)) return number->boolValue();
    return word<int>(value, {u"no"_ns, u"yes"_ns}) == 1;
}

NSString* StyleSheetReader::text(id value) {
    auto* string = cast<NSString>(value);
    if (!string || string->length() == 0) fail(u"_a text is needed."_ns);
    return string;
}

int StyleSheetReader::indexOfWord(id value, std::initializer_list<NSString*> words) {
    int index = 0;
    for (NSString* word : words) {
        if (value->isEqual(word)) return index;
        ++index;
    }
    auto list = NSMutableArray::init();
    for (NSString* word : words) list->addObject(word);
    fail(u"_one of %@ is needed, not \"%@\"."_ns, list->componentsJoinedByString(u", "_ns), value);
    return 0;
}

// "#1A2B3C".
NSColor* StyleSheetReader::colour(id value) {
    auto* string = cast<NSString>(value);
    float parts[3] = {};
    bool isGood = string && string->length() == 7 && string->characterAtIndex(0) == '#';
    for (NSUInteger i = 0; i < 6 && isGood; ++i) {
        const int digit = hexDigit(string->characterAtIndex(i + 1));
        isGood = digit >= 0;
        parts[i / 2] = parts[i / 2] * 16 + static_cast<float>(digit);
    }
    if (isGood)
        return NSColor::colorWithCalibratedRed_green_blue_alpha(parts[0] / 255, parts[1] / 255,
                                                                parts[2] / 255, 1);
    fail(u"_a colour like \"#1A2B3C\" is needed, not \"%@\"."_ns, value);
    return nullptr;
}

// The first of the families that there is; without any of them, that of the user's font.
NSFont* StyleSheetReader::family(id value) {
    auto* names = cast<NSArray>(value);
    for (NSUInteger i = 0; i < (names ? names->count() : 1); ++i)
        if (NSString* name = text(names ? names->objectAtIndex(i) : value))
            if (NSFont* font = NSFont::fontWithName_size(name, 12)) return font;
    return NSFont::userFontOfSize(12);
}

Retained<NSArray> StyleSheetReader::tabs(id value) {
    auto tabs = NSMutableArray::init();
    auto* entries = cast<NSArray>(value);
    if (!entries) fail(u"_a list is needed."_ns);
    for (NSUInteger i = 0; entries && i < entries->count() && !_problem; ++i) {
        Step step(*this, NSString::stringWithFormat(u"%u"_ns, i + 1));
        if (NSDictionary* entry = dictionary(entries->objectAtIndex(i))) tabs->addObject(tab(entry).get());
    }
    return tabs;
}

Retained<NSTextTab> StyleSheetReader::tab(NSDictionary* entry) {
    float place = 0;
    auto type = NSLeftTabStopType;
    NSString* terminators = nullptr;
    for (NSDictionaryEntry each : entry) {
        auto* key = static_cast<NSString*>(each.key);
        Step step(*this, key);
        if (key->isEqualToString(u"place"_ns))
            place = number(each.value, 0, kLongest);
        else if (key->isEqualToString(u"kind"_ns))
            type = word<NSTextTabType>(each.value, {u"left"_ns, u"right"_ns, u"center"_ns, u"decimal"_ns});
        else if (key->isEqualToString(u"decimal mark"_ns))
            terminators = text(each.value);
        else
            fail(u"_this key is not known."_ns);
    }
    if (type != NSDecimalTabStopType || !terminators) return NSTextTab::initWithType_location(type, place);
    return NSTextTab::initWithTextAlignment_location_options(
        NSRightTextAlignment, place, NSDictionary::of({{NSTabColumnTerminatorsAttributeName, terminators}}));
}

NSDictionary* StyleSheetReader::dictionary(id value) {
    auto* found = cast<NSDictionary>(value);
    if (!found) fail(u"_a dictionary is needed."_ns);
    return found;
}

NSSize StyleSheetReader::paper(id value) {
    NSString* name = text(value);
    const NSSize size = name ? StyleSheet::paperSizeNamed(name) : NSSize{};
    if (size.width == 0) word<int>(value, {u"a3"_ns, u"a4"_ns, u"a5"_ns, u"legal"_ns, u"letter"_ns});
    return size;
}

// MARK: Styles

std::optional<StyleSheet> StyleSheetReader::read() {
    StyleSheet sheet;
    sheet._settings = NSMutableDictionary::init();
    for (NSDictionaryEntry entry : _list) {
        Step step(*this, static_cast<NSString*>(entry.key));
        if (!entry.key->isEqual(u"page"_ns) && !entry.key->isEqual(u"paragraph styles"_ns) &&
            !entry.key->isEqual(u"character styles"_ns))
            fail(u"_this key is not known."_ns);
    }
    readStyles(u"paragraph styles"_ns, sheet._paragraphStyles, true);
    readStyles(u"character styles"_ns, sheet._characterStyles, false);
    if (id page = _list->objectForKey(u"page"_ns)) {
        Step step(*this, u"page"_ns);
        if (NSDictionary* list = dictionary(page)) readPage(sheet, list);
    }
    if (_problem) return {};
    return sheet;
}

void StyleSheetReader::readStyles(NSString* kind, Styles& styles, bool areForParagraphs) {
    id value = _list->objectForKey(kind);
    if (!value) return;
    Step step(*this, kind);
    NSDictionary* all = dictionary(value);
    if (!all) return;
    _all.clear();
    for (NSDictionaryEntry entry : all) {
        auto* name = static_cast<NSString*>(entry.key);
        Step inner(*this, name);
        if (!_all.emplace(keyOf(name), entry).second) fail(u"_another style has this name."_ns);
    }
    for (NSDictionaryEntry entry : all)
        readStyle(static_cast<NSString*>(entry.key), styles, areForParagraphs);
}

void StyleSheetReader::readStyle(NSString* name, Styles& styles, bool isForParagraphs) {
    const std::u16string key = keyOf(name);
    if (_problem || styles.count(key)) return;
    Step step(*this, name);
    NSDictionary* list = dictionary(_all.at(key).value);
    if (!list) return;
    if (!_open.insert(key).second) return fail(u"_the style is based on itself."_ns);
    if (_open.size() > kMostBases) return fail(u"_the style is based on too many others."_ns);
    NamedStyle style;
    style.attributes = NSMutableDictionary::init();
    if (isForParagraphs) style.paragraph = NSMutableParagraphStyle::init();
    if (id base = list->objectForKey(u"based on"_ns)) takeBase(base, styles, style, isForParagraphs);
    for (NSDictionaryEntry entry : list) {
        auto* property = static_cast<NSString*>(entry.key);
        if (_problem || property->isEqualToString(u"based on"_ns)) continue;
        Step inner(*this, property);
        const StyleKey* known = nullptr;
        for (const StyleKey& each : kStyleKeys)
            if (each.name->isEqualToString(property) && (isForParagraphs || !each.isForParagraphs))
                known = &each;
        known ? known->take(*this, style, entry.value) : fail(u"_this key is not known."_ns);
    }
    _open.erase(key);
    styles.emplace(key, std::move(style));
}

void StyleSheetReader::takeBase(id base, Styles& styles, NamedStyle& style, bool isForParagraphs) {
    Step step(*this, u"based on"_ns);
    NSString* name = text(base);
    if (!name) return;
    if (!_all.count(keyOf(name))) return fail(u"_there is no style \"%@\"."_ns, name);
    readStyle(name, styles, isForParagraphs);
    const NamedStyle* found = StyleSheet::find(styles, name);
    if (_problem || !found) return;
    style = *found;
    style.attributes = found->attributes->mutableCopy();
    if (isForParagraphs) style.paragraph = found->paragraph->mutableCopy();
}

// MARK: Pages

void StyleSheetReader::readPage(StyleSheet& sheet, NSDictionary* page) {
    NSMutableDictionary* settings = sheet._settings;
    const auto setLength = [settings](NSString* setting, float length) {
        settings->setObject_forKey(NSNumber::numberWithFloat(length), setting);
    };
    for (NSDictionaryEntry entry : page) {
        auto* key = static_cast<NSString*>(entry.key);
        Step step(*this, key);
        const PageKey* length = nullptr;
        for (const PageKey& each : kPageLengths)
            if (each.name->isEqualToString(key)) length = &each;
        if (length) {
            setLength(length->setting, number(entry.value, 0, kLongest));
        } else if (key->isEqualToString(u"size"_ns)) {
            const NSSize size = paper(entry.value);
            setLength(WRPageWidthKey, size.width);
            setLength(WRPageHeightKey, size.height);
        } else if (key->isEqualToString(u"header"_ns) || key->isEqualToString(u"footer"_ns)) {
            const bool isHeader = key->isEqualToString(u"header"_ns);
            if (NSString* line = text(entry.value))
                settings->setObject_forKey(lineWithText(line, attributesOfLine(sheet, key)).get(),
                                           isHeader ? WRHeaderKey : WRFooterKey);
        } else {
            fail(u"_this key is not known."_ns);
        }
    }
}

std::optional<StyleSheet> StyleSheet::read(NSString* path, NSString** problem) {
    NSPropertyListError* error = nullptr;
    id list = NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error(
        path, NSPropertyListImmutable, nullptr, &error);
    const bool isUnreadable = !list && errno != EBADMSG;
    NSString* fault = isUnreadable ? NSFileError::lastReadErrorAtPath(path)->localizedReason() : nullptr;
    if (!fault && error) fault = error->description();
    auto* dictionary = cast<NSDictionary>(list);
    if (!dictionary) {
        *problem =
            NSString::stringWithFormat(localized(u"_The style sheet \"%@\" could not be read: %@"_ns), path,
                                       fault ? fault : localized(u"_a dictionary is needed."_ns));
        return {};
    }
    return of(dictionary, path, problem);
}

std::optional<StyleSheet> StyleSheet::of(NSDictionary* list, NSString* path, NSString** problem) {
    StyleSheetReader reader(path, list);
    auto sheet = reader.read();
    *problem = reader.problem();
    return sheet;
}

}  // namespace pelvor
