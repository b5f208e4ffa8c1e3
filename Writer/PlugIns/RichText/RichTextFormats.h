// SPDX-License-Identifier: Apache-2.0
// The formats of characters and paragraphs as rich text files have them: numbers, some of which are numbers
// in tables of fonts, colours, styles, links and pictures.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include "Foundation/NSGeometry.h"

namespace pelvor {

/// What a character has. Lengths are in twips, a twentieth of a point, unless another unit is named.
enum class CharacterProperty {
    font,             ///< an index in the table of fonts
    size,             ///< in half points
    bold,             ///< 0 or 1
    italic,           ///< 0 or 1
    underline,        ///< an NSUnderlineStyle
    strikethrough,    ///< an NSUnderlineStyle
    superscript,      ///< 1, -1 for text below the line, or 0
    baselineOffset,   ///< in half points
    kern,             ///< the space behind each character
    width,            ///< in percent
    capitals,         ///< 1 for small capitals, 2 for capitals
    language,         ///< an index in the table of languages; 0 for no language
    foreground,       ///< an index in the table of colours; 0 is none
    background,       ///< an index in the table of colours; 0 is none
    underlineColour,  ///< an index in the table of colours; 0 is none
    style,            ///< an index in the table of styles of characters; 0 for no style
    hidden,           ///< 0 or 1
    link,             ///< an index in the table of links; 0 is none
    picture,          ///< an index in the table of pictures; 0 is none
    count
};

/// What a paragraph has.
enum class ParagraphProperty {
    alignment,           ///< an NSTextAlignment
    direction,           ///< an NSWritingDirection
    leadingIndent,       ///< of all lines
    firstLineIndent,     ///< added to the above
    trailingIndent,      ///< inwards
    spaceBefore,         ///< above the paragraph
    spaceAfter,          ///< below the paragraph
    lineHeight,          ///< 0 natural, above 0 the least, below 0 the exact height
    isLineHeightFactor,  ///< 1: the height is a factor in 1/240
    hyphenates,          ///< 0 or 1
    keepWithNext,        ///< 0 or 1
    keepTogether,        ///< 0 or 1
    pageBreakBefore,     ///< 0 or 1
    style,               ///< an index in the table of styles of paragraphs; 0 for no style
    count
};

/// Values by property.
template <class Property>
struct FormatValues {
    std::array<std::int32_t, static_cast<std::size_t>(Property::count)> values{};

    std::int32_t& operator[](Property property) { return values[static_cast<std::size_t>(property)]; }
    std::int32_t operator[](Property property) const { return values[static_cast<std::size_t>(property)]; }
    bool operator==(const FormatValues&) const = default;
};

struct CharacterFormat : FormatValues<CharacterProperty> {
    CharacterFormat() {
        (*this)[CharacterProperty::size] = 24;
        (*this)[CharacterProperty::width] = 100;
    }
    bool operator==(const CharacterFormat&) const = default;
};

/// A tab stop; the type is an NSTextTabType.
struct TabFormat {
    std::int32_t location = 0, type = 0;
    bool operator==(const TabFormat&) const = default;
};

struct ParagraphFormat : FormatValues<ParagraphProperty> {
    std::vector<TabFormat> tabs;

    ParagraphFormat() {
        (*this)[ParagraphProperty::alignment] = 4;   // natural
        (*this)[ParagraphProperty::direction] = -1;  // natural
    }
    bool operator==(const ParagraphFormat&) const = default;
};

struct FormatHash {
    std::size_t operator()(const CharacterFormat& format) const { return hashOf(format.values); }
    std::size_t operator()(const ParagraphFormat& format) const {
        return hashOf(format.values) * 31 + hashOf(format.tabs);
    }

  private:
    template <class Values>
    static std::size_t hashOf(const Values& values) {
        static_assert(std::has_unique_object_representations_v<typename Values::value_type>, "no padding");
        return std::hash<std::string_view>()(
            {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(values[0])});
    }
};

/// A family of fonts as files name it, and what stands in where it is missing.
struct FontEntry {
    enum Kind : std::int32_t { any, serif, sansSerif, fixedPitch };
    std::u16string name, alternative;
    Kind kind = any;
    std::int32_t codePage = 0;  ///< of its bytes; 0 is that of the document

    auto operator<=>(const FontEntry&) const = default;
};

struct ColourEntry {
    std::int32_t red = 0, green = 0, blue = 0;
    auto operator<=>(const ColourEntry&) const = default;
};

struct PictureEntry {
    enum Type : std::int32_t { png, jpeg, enhancedMetafile, metafile };
    Type type = png;
    NSSize size{0, 0};  ///< in points; zeros where the file does not tell
    std::string bytes;
};

/// A table without equal entries. Entry 0 stands for none.
template <class Entry>
class EntryTable {
  public:
    /// The number of the entry, which is appended if it is new.
    std::int32_t numberOf(const Entry& entry) {
        const auto [place, isNew] = _numbers.try_emplace(entry, static_cast<std::int32_t>(_entries.size()));
        if (isNew) _entries.push_back(&place->first);
        return place->second;
    }
    const Entry& operator[](std::int32_t number) const {
        return number ? *_entries[static_cast<std::size_t>(number)] : _none;
    }
    /// With entry 0.
    std::int32_t size() const { return static_cast<std::int32_t>(_entries.size()); }

  private:
    Entry _none{};
    std::map<Entry, std::int32_t> _numbers;
    std::vector<const Entry*> _entries{nullptr};  // nodes of the map stay where they are
};

/// The tables of a document.
struct RichTextTables {
    EntryTable<FontEntry> fonts;
    EntryTable<ColourEntry> colours;
    EntryTable<std::u16string> characterStyles, paragraphStyles, links, languages;
    std::vector<PictureEntry> pictures{1};  ///< entry 0 stands for none
    /// The distance of the tab stops behind the last one that is set; 0 is the usual one.
    std::int32_t tabInterval = 0;
};

/// Numbers the entries of a table, so that equal ones have one number.
template <class Format>
class FormatNumbers {
  public:
    std::uint32_t numberOf(const Format& format) {
        if (!_formats.empty() && *_formats[_last] == format) return _last;
        const auto [entry, isNew] = _numbers.try_emplace(format, static_cast<std::uint32_t>(_formats.size()));
        if (isNew) _formats.push_back(&entry->first);
        return _last = entry->second;
    }
    const Format& operator[](std::uint32_t number) const { return *_formats[number]; }
    std::size_t size() const { return _formats.size(); }

  private:
    std::unordered_map<Format, std::uint32_t, FormatHash> _numbers;
    std::vector<const Format*> _formats;  // nodes of the map stay where they are
    std::uint32_t _last = 0;
};

}  // namespace pelvor
