// SPDX-License-Identifier: Apache-2.0
// Shows what was read from rich text.
#pragma once

#include <string>

#include "Writer/PlugIns/RichText/RichTextReading.h"

namespace pelvor {

/// The text in UTF-8. A character format stands in brackets before its first character, a paragraph format in
/// braces behind its last one: properties that are not the usual ones, without "=1". Uses up the builder's
/// text.
inline std::string shownText(const RichText& read, RichTextBuilder& builder) {
    static constexpr const char* kCharacter[] = {
        "font",          "size",        "bold",           "italic",     "underline",
        "strikethrough", "superscript", "baselineOffset", "kern",       "width",
        "capitals",      "language",    "foreground",     "background", "underlineColour",
        "style",         "hidden",      "link",           "picture"};
    static constexpr const char* kParagraph[] = {"alignment",       "direction",      "leadingIndent",
                                                 "firstLineIndent", "trailingIndent", "spaceBefore",
                                                 "spaceAfter",      "lineHeight",     "isLineHeightFactor",
                                                 "hyphenates",      "keepWithNext",   "keepTogether",
                                                 "pageBreakBefore", "style"};
    const auto listed = [](auto& names, const auto& format, const auto& usual) {
        std::string list;
        for (std::size_t i = 0; i < std::size(names); ++i) {
            const std::int32_t value = format.values[i];
            if (value == usual.values[i]) continue;
            list += (list.empty() ? "" : " ") + std::string(names[i]);
            if (value != 1) list += "=" + std::to_string(value);
        }
        return list;
    };
    const auto character = [&](CharacterFormat format) {
        const std::int32_t link = std::exchange(format[CharacterProperty::link], 0);
        const std::int32_t picture = std::exchange(format[CharacterProperty::picture], 0);
        const std::int32_t language = std::exchange(format[CharacterProperty::language], 0);
        std::string list = listed(kCharacter, format, CharacterFormat());
        if (language)
            list += (list.empty() ? "language=" : " language=") +
                    NSString::of(read.tables.languages[language])->toUTF8();
        if (link)
            list +=
                (list.empty() ? "link(" : " link(") + NSString::of(read.tables.links[link])->toUTF8() + ")";
        if (!picture) return list;
        const PictureEntry& entry = read.tables.pictures[static_cast<std::size_t>(picture)];
        static constexpr const char* kTypes[] = {"png", "jpeg", "emf", "wmf"};
        std::ostringstream out;
        out << "picture(" << kTypes[entry.type] << " " << entry.size.width << "x" << entry.size.height << " "
            << std::hex;
        for (char byte : entry.bytes)
            out << static_cast<int>(static_cast<std::uint8_t>(byte) >> 4) << (byte & 0xF);
        return list + out.str() + ")";
    };
    const auto paragraph = [&](const ParagraphFormat& format) {
        std::string list = listed(kParagraph, format, ParagraphFormat());
        for (std::size_t i = 0; i < format.tabs.size(); ++i)
            list += (i              ? " "
                     : list.empty() ? "tabs "
                                    : " tabs ") +
                    std::to_string(format.tabs[i].location) +
                    std::string(1, "LRCD"[format.tabs[i].type]).substr(format.tabs[i].type == 0);
        return list;
    };
    const auto runs = builder.runs();
    const std::u16string units = builder.takeString()->toUTF16();
    std::string text, format, lastParagraph;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::size_t end = i + 1 < runs.size() ? runs[i + 1].start : units.size();
        if (const std::string next = character(read.characters[runs[i].character]); next != format)
            text += "[" + (format = next) + "]";
        text += NSString::of(std::u16string_view(units).substr(runs[i].start, end - runs[i].start))->toUTF8();
        const bool isEnd = end == units.size() || units[end - 1] == u'\n';
        std::string list = isEnd ? paragraph(read.paragraphs[runs[i].paragraph]) : "";
        if (!list.empty()) text += list == lastParagraph ? "{the same}" : "{" + list + "}";
        if (isEnd) lastParagraph = list;
    }
    return text;
}

}  // namespace pelvor
