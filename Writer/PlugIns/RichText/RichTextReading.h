// SPDX-License-Identifier: Apache-2.0
// Reads rich text files (RTF 1.9).
#pragma once

#include <string>
#include <vector>

#include "Writer/PlugIns/RichText/RichTextBuilder.h"
#include "Writer/PlugIns/RichText/RichTextFormats.h"
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"

namespace pelvor {

/// What is wrong with a file, although it could be read on or up to there.
enum class RichTextProblem {
    cutOff,         ///< the file ends inside a group
    trailingBytes,  ///< something follows the end of the document
    tooDeep,        ///< groups are nested too deeply; the inner ones count as part of the outer
    badCharacter,   ///< bytes that are no character of the code page, or no number of one
    count
};

/// A place, in bytes from the start, and how often.
struct RichTextProblems {
    std::uint64_t firstPlace = 0;
    std::size_t count = 0;
};

/// The numbers that a file says of its pages; lengths in twips.
enum class PageNumber { paperWidth, paperHeight, left, right, top, bottom, headerPlace, footerPlace, count };

enum class DocumentField { title, author, subject, keywords, comment, count };

/// What a file holds. Character formats and paragraph formats of the three texts are numbers of `characters`
/// and `paragraphs`.
struct RichText {
    bool isRichText = false;    ///< else the rest means nothing
    bool isUnreadable = false;  ///< the bytes could not be read to the end
    RichTextTables tables;
    FormatNumbers<CharacterFormat> characters;
    FormatNumbers<ParagraphFormat> paragraphs;
    RichTextBuilder body{0}, header{0}, footer{0};
    /// -1 where the file does not tell.
    std::array<std::int32_t, static_cast<std::size_t>(PageNumber::count)> pageNumbers;
    std::array<std::u16string, static_cast<std::size_t>(DocumentField::count)> fields;
    std::array<RichTextProblems, static_cast<std::size_t>(RichTextProblem::count)> problems{};
    /// Control words that say more than was read, in alphabetical order; some of them if there are many.
    std::vector<std::string> leftOut;
};

/// Reads the whole file, in time in proportion to its length. Never throws for what is in the file.
RichText readRichText(const TextFileSource& source, const TextFileProgress& progress = {});

/// The usual distance of tab stops in twips, and the usual line height as a factor.
inline constexpr std::int32_t kUsualTabInterval = 720, kUsualLineHeight = 240;
inline constexpr std::size_t kMaximumTabs = 64;

}  // namespace pelvor
