// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Markdown/WRMarkdownReader.h"

#include <algorithm>

#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSString.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/Markdown/MarkdownPlugIn.h"
#include "Writer/PlugIns/Markdown/MarkdownText.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

namespace pelvor {

namespace {

// The names that style sheets have for what the markup said.

NSString* paragraphStyleOf(std::uint8_t style) {
    static constexpr NSString* kHeadings[] = {u"heading 1"_ns, u"heading 2"_ns, u"heading 3"_ns,
                                              u"heading 4"_ns, u"heading 5"_ns, u"heading 6"_ns};
    if (style & kMarkdownHeading) return kHeadings[style / kMarkdownLevel - 1];
    switch (style & ~(kMarkdownEmphasis | kMarkdownStrong | kMarkdownCode)) {
        case kMarkdownListItem:
            return u"list item"_ns;
        case kMarkdownCodeLine:
            return u"code"_ns;
        case kMarkdownQuote:
            return u"quote"_ns;
        default:
            return u"text"_ns;
    }
}

NSString* characterStyleOf(std::uint8_t style) {
    if (style & kMarkdownCode) return u"code"_ns;
    const bool isStrong = style & kMarkdownStrong;
    if (style & kMarkdownEmphasis) return isStrong ? u"strong emphasis"_ns : u"emphasis"_ns;
    return isStrong ? u"strong"_ns : nullptr;
}

Retained<NSAttributedString> richTextOf(const MarkdownText& read, NSString* text) {
    auto rich = NSMutableAttributedString::initWithString(text);
    for (std::size_t start = 0, end; start < read.styles.size(); start = end) {
        const std::uint8_t style = read.styles[start];
        end = std::min(read.styles.find_first_not_of(style, start), read.styles.size());
        auto attributes = NSMutableDictionary::init();
        attributes->setObject_forKey(paragraphStyleOf(style), WRParagraphStyleNameKey);
        if (NSString* name = characterStyleOf(style))
            attributes->setObject_forKey(name, WRCharacterStyleNameKey);
        rich->setAttributes_range(attributes,
                                  {static_cast<NSUInteger>(start), static_cast<NSUInteger>(end - start)});
    }
    return rich;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRMarkdownReader, markdownPlugIn) {
    methods.instance<"readDocumentAtPath:options:", &WRMarkdownReader::readDocumentAtPath_options>();
}

NSDictionary* WRMarkdownReader::readDocumentAtPath_options(NSString* path, NSDictionary* options) {
    NSDictionary* answer = readTextFile(path, options);
    NSString* source = stringEntry(answer, WRTextKey);
    if (!source) return answer;
    auto* changed = NSMutableDictionary::dictionaryWithDictionary(answer);
    StringUnits units(source);
    const MarkdownText read = textOfMarkdown(units);
    NSString* text = NSString::of(read.text);
    changed->setObject_forKey(text, WRTextKey);
    changed->setObject_forKey(richTextOf(read, text).get(), WRRichTextKey);
    return changed;
}

}  // namespace pelvor
