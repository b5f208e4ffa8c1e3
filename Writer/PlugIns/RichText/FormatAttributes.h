// SPDX-License-Identifier: Apache-2.0
// FormatAttributes: the formats of rich text files as attributes of text, and back.
#pragma once

#include <set>
#include <string>

#include "Runtime/Object.h"
#include "Writer/PlugIns/RichText/FontChoice.h"

namespace pelvor {

class NSDictionary;
class NSFont;
class NSMutableDictionary;
class NSParagraphStyle;

/// Makes the attributes of formats whose numbers are those of the tables, which outlive it.
class FormatAttributes {
  public:
    explicit FormatAttributes(const RichTextTables& tables) : _tables(tables) {}

    Retained<NSDictionary> attributesOf(const CharacterFormat& character, const ParagraphFormat& paragraph);

  private:
    void addFont(const CharacterFormat& format, NSMutableDictionary* attributes);
    void addPicture(std::int32_t number, NSMutableDictionary* attributes);

    const RichTextTables& _tables;
    FontChoice _fonts;
};

/// Finds the formats of attributes, and puts what they name into tables of its own.
class AttributeFormats {
  public:
    CharacterFormat characterOf(NSDictionary* attributes);
    ParagraphFormat paragraphOf(NSDictionary* attributes);

    const RichTextTables& tables() const { return _tables; }
    /// The names of attributes, and of properties of paragraphs, that the format has no room for.
    const std::set<std::u16string>& leftOut() const { return _leftOut; }
    void leaveOut(NSString* name);

  private:
    void takeFont(NSFont* font, NSDictionary* attributes, CharacterFormat& format);
    void takePicture(Object* attachment, CharacterFormat& format);
    void takeStyle(NSParagraphStyle* style, ParagraphFormat& format);
    void takeTabInterval(std::int32_t interval);
    std::int32_t colourNumber(Object* colour);

    RichTextTables _tables;
    FontChoice _fonts;
    std::set<std::u16string> _leftOut;
    bool _hasTabInterval = false;
};

}  // namespace pelvor
