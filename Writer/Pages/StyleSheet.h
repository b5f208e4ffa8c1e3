// SPDX-License-Identifier: Apache-2.0
// Style sheets: named styles and settings of pages, read from property lists.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Text/NSFont.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Writer/Pages/WRSheetParagraphStyle.h"

namespace pelvor {

/// A style of a sheet, with what it takes over from the style that it is based on. What is not set stays as
/// it is in the text.
struct PELVOR_EXPORT NamedStyle {
    NSFont* family = nullptr;  ///< a font of the family, kept by the font manager
    std::optional<float> size;
    std::optional<bool> isBold, isItalic;
    Retained<NSMutableDictionary> attributes;     ///< besides the font and the paragraph style; never null
    Retained<NSMutableParagraphStyle> paragraph;  ///< of a paragraph style
    PageRules rules;

    /// The font as the style has it. Without a size of its own the style takes that of `font`.
    NSFont* fontFor(NSFont* font) const;
};

/// Named styles and the settings of pages.
///
///     NSString* problem = nullptr;
///     auto sheet = StyleSheet::read(path, &problem);
///     if (!sheet) return complain(problem);
///     const NamedStyle* heading = sheet->paragraphStyle(u"heading 1"_ns);
class PELVOR_EXPORT StyleSheet {
  public:
    /// Reads the property list at the path. No value, and a sentence for the user with the file, the place in
    /// the list and what is wrong there, if the list is no style sheet.
    static std::optional<StyleSheet> read(NSString* path, NSString** problem);
    /// The same of the list that was read from the path.
    static std::optional<StyleSheet> of(NSDictionary* list, NSString* path, NSString** problem);

    // Null for an unknown name, and for null. Names are told apart without regard to case.

    const NamedStyle* paragraphStyle(NSString* name) const { return find(_paragraphStyles, name); }
    const NamedStyle* characterStyle(NSString* name) const { return find(_characterStyles, name); }
    /// In alphabetical order, in lower case. Borrowed.
    NSArray* paragraphStyleNames() const { return namesOf(_paragraphStyles); }
    NSArray* characterStyleNames() const { return namesOf(_characterStyles); }
    /// Takes over the styles of the other sheet whose names this one lacks.
    void addMissingStyles(const StyleSheet& other);
    /// Those of the settings of PlugInProtocol.h that the sheet has; headers and footers are in its styles
    /// "header" and "footer".
    NSDictionary* settings() const { return _settings; }

    /// The paper sizes that style sheets and options name; zeros for an unknown name.
    static NSSize paperSizeNamed(NSString* name);
    static NSArray* paperNames();

  private:
    friend class StyleSheetReader;
    using Styles = std::map<std::u16string, NamedStyle>;

    static const NamedStyle* find(const Styles& styles, NSString* name);
    static NSArray* namesOf(const Styles& styles);

    Styles _paragraphStyles, _characterStyles;
    Retained<NSMutableDictionary> _settings;
};

/// The name of the paragraph style of text without one.
inline constexpr NSString* kPlainStyleName = u"text"_ns;

/// The attributes of a text in the style.
PELVOR_EXPORT NSDictionary* attributesOfStyle(const NamedStyle& style);

/// The text in the styles of the sheets. Text that has no font of its own is set in the paragraph styles that
/// it names, first those of `sheet`, which may be null, then those of `defaults`; or in the style "text".
/// Text with a font is set in the styles of `sheet` that it names; what differs inside a paragraph from most
/// of it, such as bold words, still does.
PELVOR_EXPORT Retained<NSAttributedString> textInStyles(NSAttributedString* text, const StyleSheet& defaults,
                                                        const StyleSheet* sheet);

}  // namespace pelvor
