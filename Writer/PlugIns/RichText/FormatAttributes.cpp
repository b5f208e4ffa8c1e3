// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/FormatAttributes.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextTab.h"
#include "Writer/Pages/TextLanguage.h"
#include "Writer/Pages/WRSheetParagraphStyle.h"
#include "Writer/PlugIns/RichText/LanguageNumbers.h"
#include "Writer/PlugIns/RichText/Pictures.h"
#include "Writer/PlugIns/RichText/RichTextReading.h"

namespace pelvor {
namespace {

using C = CharacterProperty;
using A = ParagraphProperty;

float points(std::int32_t twips) { return static_cast<float>(twips) / 20; }

// Lengths beyond these are nothing that a page has room for.
std::int32_t rounded(double value) {
    return std::isnan(value) ? 0 : static_cast<std::int32_t>(std::lround(std::clamp(value, -4e6, 4e6)));
}
std::int32_t twips(float points) { return rounded(static_cast<double>(points) * 20); }

NSColor* colourOf(const ColourEntry& entry) {
    return NSColor::colorWithCalibratedRed_green_blue_alpha(static_cast<float>(entry.red) / 255,
                                                            static_cast<float>(entry.green) / 255,
                                                            static_cast<float>(entry.blue) / 255, 1);
}

void setLineHeights(const ParagraphFormat& format, NSMutableParagraphStyle* style) {
    const std::int32_t height = format[A::lineHeight];
    if (format[A::isLineHeightFactor])
        return style->setLineHeightMultiple(static_cast<float>(height) / kUsualLineHeight);
    style->setMinimumLineHeight(points(std::abs(height)));
    if (height < 0) style->setMaximumLineHeight(points(-height));
}

Retained<NSParagraphStyle> styleOf(const ParagraphFormat& format, std::int32_t tabInterval) {
    auto style = NSMutableParagraphStyle::init();
    style->setAlignment(static_cast<NSTextAlignment>(format[A::alignment]));
    style->setBaseWritingDirection(static_cast<NSWritingDirection>(format[A::direction]));
    style->setHeadIndent(points(format[A::leadingIndent]));
    style->setFirstLineHeadIndent(points(format[A::leadingIndent] + format[A::firstLineIndent]));
    style->setTailIndent(-points(format[A::trailingIndent]));
    style->setParagraphSpacingBefore(points(format[A::spaceBefore]));
    style->setParagraphSpacing(points(format[A::spaceAfter]));
    style->setHyphenationFactor(static_cast<float>(format[A::hyphenates]));
    style->setDefaultTabInterval(points(tabInterval));
    setLineHeights(format, style);
    auto tabs = NSMutableArray::init();
    for (const TabFormat& tab : format.tabs)
        tabs->addObject(
            NSTextTab::initWithType_location(static_cast<NSTextTabType>(tab.type), points(tab.location))
                .get());
    style->setTabStops(tabs);
    return WRSheetParagraphStyle::create(
        style, {format[A::keepWithNext] != 0, format[A::keepTogether] != 0, format[A::pageBreakBefore] != 0});
}

bool isUsual(ParagraphFormat format) {
    format[A::style] = 0;
    return format == ParagraphFormat();
}

std::int32_t integer(Object* value) {
    auto* number = cast<NSNumber>(value);
    return number ? number->intValue() : 0;
}
double real(Object* value) {
    auto* number = cast<NSNumber>(value);
    return number ? number->doubleValue() : 0;
}

}  // namespace

// MARK: Attributes of formats

Retained<NSDictionary> FormatAttributes::attributesOf(const CharacterFormat& character,
                                                      const ParagraphFormat& paragraph) {
    auto attributes = NSMutableDictionary::init();
    const auto set = [&](NSString* name, Object* value) { attributes->setObject_forKey(value, name); };
    const auto setInteger = [&](NSString* name, std::int32_t value) {
        if (value) set(name, NSNumber::numberWithInt(value));
    };
    const auto setColour = [&](NSString* name, std::int32_t number) {
        if (number) set(name, colourOf(_tables.colours[number]));
    };
    addFont(character, attributes);
    setInteger(NSUnderlineStyleAttributeName, character[C::underline]);
    setInteger(NSStrikethroughStyleAttributeName, character[C::strikethrough]);
    setInteger(NSSuperscriptAttributeName, character[C::superscript]);
    setInteger(PBFontCaseChangeAttributeName, character[C::capitals]);
    if (const std::int32_t offset = character[C::baselineOffset])
        set(NSBaselineOffsetAttributeName, NSNumber::numberWithFloat(static_cast<float>(offset) / 2));
    if (const std::int32_t kern = character[C::kern])
        set(NSKernAttributeName, NSNumber::numberWithFloat(points(kern)));
    if (const std::int32_t width = character[C::width]; width != 100)
        set(NSExpansionAttributeName, NSNumber::numberWithFloat(std::log(static_cast<float>(width) / 100)));
    setColour(NSForegroundColorAttributeName, character[C::foreground]);
    setColour(NSBackgroundColorAttributeName, character[C::background]);
    setColour(NSUnderlineColorAttributeName, character[C::underlineColour]);
    if (const std::int32_t language = character[C::language])
        attributes->addEntriesFromDictionary(attributesOfLanguage(NSString::of(_tables.languages[language])));
    if (const std::int32_t style = character[C::style])
        set(PBStyleCharacterAttributeName, NSString::of(_tables.characterStyles[style]));
    if (const std::int32_t link = character[C::link])
        set(NSLinkAttributeName, NSString::of(_tables.links[link]));
    if (const std::int32_t picture = character[C::picture])
        set(NSAttachmentAttributeName,
            attachmentOfPicture(_tables.pictures[static_cast<std::size_t>(picture)]).get());
    if (_tables.tabInterval || !isUsual(paragraph))
        set(NSParagraphStyleAttributeName, styleOf(paragraph, _tables.tabInterval).get());
    if (const std::int32_t style = paragraph[A::style])
        set(PBStyleParagraphAttributeName, NSString::of(_tables.paragraphStyles[style]));
    return attributes;
}

void FormatAttributes::addFont(const CharacterFormat& format, NSMutableDictionary* attributes) {
    const FontEntry& entry = _tables.fonts[format[C::font]];
    const ChosenFont chosen =
        _fonts.fontFor({entry, format[C::bold] != 0, format[C::italic] != 0, format[C::size]});
    attributes->setObject_forKey(chosen.font, NSFontAttributeName);
    if (chosen.isSubstitute)
        attributes->setObject_forKey(NSString::of(entry.name), PBFontSubstitutedAttributeName);
}

// MARK: Formats of attributes

void AttributeFormats::leaveOut(NSString* name) { _leftOut.insert(name->toUTF16()); }

CharacterFormat AttributeFormats::characterOf(NSDictionary* attributes) {
    CharacterFormat format;
    NSFont* font = nullptr;
    const auto takeLines = [&](NSString* name, C property, std::int32_t style) {
        format[property] = style;
        const bool isKnown = style == NSUnderlineStyleSingle || style == NSUnderlineStyleDouble ||
                             (style == NSUnderlineStyleThick && property == C::underline);
        if (style == 0 || isKnown) return;
        format[property] = NSUnderlineStyleSingle;
        leaveOut(name);
    };
    const auto take = [&](NSString* name, Object* value) {
        const auto is = [name](NSString* other) { return name->isEqualToString(other); };
        if (is(NSFontAttributeName)) return void(font = cast<NSFont>(value));
        if (is(NSUnderlineStyleAttributeName)) return takeLines(name, C::underline, integer(value));
        if (is(NSStrikethroughStyleAttributeName)) return takeLines(name, C::strikethrough, integer(value));
        if (is(NSSuperscriptAttributeName)) {
            format[C::superscript] = std::clamp(integer(value), -1, 1);
            if (format[C::superscript] != integer(value)) leaveOut(name);
        } else if (is(PBFontCaseChangeAttributeName)) {
            format[C::capitals] = std::clamp(integer(value), 0, 2);
        } else if (is(NSBaselineOffsetAttributeName)) {
            format[C::baselineOffset] = std::clamp(rounded(real(value) * 2), -3276, 3276);
        } else if (is(NSKernAttributeName)) {
            format[C::kern] = std::clamp(rounded(real(value) * 20), -31680, 31680);
        } else if (is(NSExpansionAttributeName)) {
            format[C::width] = std::clamp(rounded(std::exp(std::min(real(value), 3.0)) * 100), 1, 600);
        } else if (is(NSForegroundColorAttributeName)) {
            format[C::foreground] = colourNumber(value);
        } else if (is(NSBackgroundColorAttributeName)) {
            format[C::background] = colourNumber(value);
        } else if (is(NSUnderlineColorAttributeName)) {
            format[C::underlineColour] = colourNumber(value);
        } else if (is(NSLanguageAttributeName)) {
            const std::u16string language = value->description()->toUTF16();
            if (!isLanguageName(language)) return leaveOut(name);
            format[C::language] = _tables.languages.numberOf(language);
        } else if (is(PBStyleCharacterAttributeName) && cast<NSString>(value)) {
            format[C::style] = _tables.characterStyles.numberOf(cast<NSString>(value)->toUTF16());
        } else if (is(NSLinkAttributeName)) {
            format[C::link] = _tables.links.numberOf(value->description()->toUTF16());
        } else if (is(NSAttachmentAttributeName)) {
            takePicture(value, format);
        } else if (!is(NSParagraphStyleAttributeName) && !is(PBStyleParagraphAttributeName) &&
                   !is(PBFontSubstitutedAttributeName) && !is(PBLanguageAttributeName)) {
            leaveOut(name);
        }
    };
    for (NSDictionaryEntry entry : attributes) take(static_cast<NSString*>(entry.key), entry.value);
    takeFont(font ? font : NSFont::userFontOfSize(12), attributes, format);
    return format;
}

void AttributeFormats::takeFont(NSFont* font, NSDictionary* attributes, CharacterFormat& format) {
    auto* wanted = cast<NSString>(attributes->objectForKey(PBFontSubstitutedAttributeName));
    const FontRequest request = _fonts.requestFor(font, wanted ? wanted->toUTF16() : std::u16string());
    format[C::font] = _tables.fonts.numberOf(request.entry);
    format[C::bold] = request.isBold;
    format[C::italic] = request.isItalic;
    format[C::size] = request.halfPoints;
}

void AttributeFormats::takePicture(Object* attachment, CharacterFormat& format) {
    PictureEntry picture;
    if (!getPicture(attachment, picture)) return leaveOut(NSAttachmentAttributeName);
    format[C::picture] = static_cast<std::int32_t>(_tables.pictures.size());
    _tables.pictures.push_back(std::move(picture));
}

std::int32_t AttributeFormats::colourNumber(Object* value) {
    auto* colour = cast<NSColor>(value);
    if (!colour) return 0;
    if (colour->alphaComponent() < 1) leaveOut(u"alpha"_ns);
    const auto component = [](float share) { return static_cast<std::int32_t>(std::lround(share * 255)); };
    return _tables.colours.numberOf(ColourEntry{component(colour->redComponent()),
                                                component(colour->greenComponent()),
                                                component(colour->blueComponent())});
}

ParagraphFormat AttributeFormats::paragraphOf(NSDictionary* attributes) {
    ParagraphFormat format;
    auto* style = cast<NSParagraphStyle>(attributes->objectForKey(NSParagraphStyleAttributeName));
    if (style) takeStyle(style, format);
    takeTabInterval(style ? twips(style->defaultTabInterval()) : 0);
    if (auto* name = cast<NSString>(attributes->objectForKey(PBStyleParagraphAttributeName));
        name && name->length())
        format[A::style] = _tables.paragraphStyles.numberOf(name->toUTF16());
    return format;
}

// A document has one for all.
void AttributeFormats::takeTabInterval(std::int32_t interval) {
    if (!_hasTabInterval) _tables.tabInterval = interval;
    _hasTabInterval = true;
    if (_tables.tabInterval != interval) leaveOut(u"defaultTabInterval"_ns);
}

void AttributeFormats::takeStyle(NSParagraphStyle* style, ParagraphFormat& format) {
    format[A::alignment] = style->alignment();
    format[A::direction] = style->baseWritingDirection();
    format[A::leadingIndent] = twips(style->headIndent());
    format[A::firstLineIndent] = twips(style->firstLineHeadIndent()) - format[A::leadingIndent];
    format[A::trailingIndent] = -twips(style->tailIndent());
    format[A::spaceBefore] = twips(style->paragraphSpacingBefore());
    format[A::spaceAfter] = twips(style->paragraphSpacing());
    format[A::hyphenates] = style->hyphenationFactor() > 0;
    if (style->lineHeightMultiple() > 0) {
        format[A::lineHeight] = rounded(static_cast<double>(style->lineHeightMultiple()) * kUsualLineHeight);
        format[A::isLineHeightFactor] = 1;
    } else {
        const bool isExact =
            style->maximumLineHeight() > 0 && style->maximumLineHeight() == style->minimumLineHeight();
        format[A::lineHeight] = twips(style->minimumLineHeight()) * (isExact ? -1 : 1);
    }
    for (id object : style->tabStops()) {
        auto* tab = static_cast<NSTextTab*>(object);
        if (format.tabs.size() < kMaximumTabs)
            format.tabs.push_back({twips(tab->location()), tab->tabStopType()});
        else
            leaveOut(u"tabStops"_ns);
    }
    const PageRules rules = pageRulesOf(style);
    format[A::keepWithNext] = rules.isKeepWithNext;
    format[A::keepTogether] = rules.isKeepTogether;
    format[A::pageBreakBefore] = rules.isPageBreakBefore;

    if (style->lineSpacing() != 0) leaveOut(u"lineSpacing"_ns);
    if (style->lineBreakMode() != NSLineBreakByWordWrapping) leaveOut(u"lineBreakMode"_ns);
    if (style->tailIndent() > 0) leaveOut(u"tailIndent"_ns);
    const bool hasLimits = style->minimumLineHeight() > 0 || style->maximumLineHeight() > 0;
    if ((style->lineHeightMultiple() > 0 && hasLimits) ||
        (style->maximumLineHeight() > 0 && style->maximumLineHeight() != style->minimumLineHeight()))
        leaveOut(u"maximumLineHeight"_ns);
}

}  // namespace pelvor
