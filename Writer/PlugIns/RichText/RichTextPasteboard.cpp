// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/RichTextPasteboard.h"

#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Writer/PlugIns/RichText/RichTextAnswer.h"
#include "Writer/PlugIns/RichText/RichTextMarkup.h"
#include "Writer/PlugIns/RichText/RichTextReading.h"

namespace pelvor {
namespace {

void defineRichText(MethodTable<NSAttributedString>& methods) {
    methods
        .classLevel<"initWithRTF:documentAttributes:", &RichTextPasteboard::initWithRTF_documentAttributes>();
    methods.instance<"RTFFromRange:documentAttributes:", &RTFFromRange_documentAttributes>();
}

// Whether the markup ends the last paragraph before it ends all groups.
bool endsLastParagraph(std::string_view bytes) {
    const std::size_t last = bytes.find_last_not_of(std::string_view("} \r\n\t\0", 6));
    return bytes.substr(0, last + 1).ends_with("\\par");
}

}  // namespace

constinit const Category NSAttributedString_RichText_category =
    Category::of<NSAttributedString, defineRichText>("RichText");

NSData* RTFFromRange_documentAttributes(NSAttributedString* text, NSRange range, NSDictionary* settings) {
    if (!text) return nullptr;
    const RichTextMarkup markup = markupOfRichText(text->attributedSubstringFromRange(range), settings);
    return NSData::dataWithBytes_length(markup.bytes.data(), static_cast<NSUInteger>(markup.bytes.size()));
}

NSAttributedString* RichTextPasteboard::initWithRTF_documentAttributes(NSData* data, id) {
    if (!data) return nullptr;
    const std::string_view bytes(static_cast<const char*>(data->bytes()), data->length());
    RichText read = readRichText(TextFileSource(bytes));
    if (!read.isRichText) return nullptr;
    auto text = std::move(objectsOf(read).text);
    const NSUInteger length = text->length();
    const bool hasEnd = length > 0 && text->string()->characterAtIndex(length - 1) == u'\n';
    if (!hasEnd || endsLastParagraph(bytes)) return std::move(text).autorelease();
    return text->attributedSubstringFromRange({0, length - 1});
}

}  // namespace pelvor
