// SPDX-License-Identifier: Apache-2.0
// NSParagraphStyle: how the lines of a paragraph are set.
#pragma once

#include "Foundation/NSArray.h"
#include "Text/TextAttributes.h"

namespace pelvor {

class NSCoder;
class NSMutableParagraphStyle;
class NSTextTab;

/// An immutable set of the properties of a paragraph. Lengths are in points. The leading edge of a line is
/// the left one in paragraphs from left to right and the right one in the others. Edges are those of the
/// container, inside its padding; where exclusions split a line they are those of its fragments, and only the
/// first fragment has a head indent.
///
///     auto style = NSParagraphStyle::defaultParagraphStyle()->mutableCopy();
///     style->setAlignment(NSJustifiedTextAlignment);
///     style->setFirstLineHeadIndent(18);
///     text->addAttribute_value_range(NSParagraphStyleAttributeName, style->copy().get(), paragraph);
///
/// Immutable styles may be used on any thread, mutable ones on one thread at a time.
class PELVOR_EXPORT NSParagraphStyle : public NSObject {
    PELVOR_CLASS(NSParagraphStyle, NSObject);
    PELVOR_CREATORS(init, initWithCoder);

  public:
    /// Natural alignment and direction, no indents and spacings, no tab stops.
    static NSParagraphStyle* defaultParagraphStyle();
    /// The direction of paragraphs in the language, "he" or "ar-EG"; for null the user's first language.
    static NSWritingDirection defaultWritingDirectionForLanguage(NSString* language);
    static Retained<NSParagraphStyle> init(Class* cls = classObject());
    static Retained<NSParagraphStyle> initWithCoder(NSCoder* coder, Class* cls = classObject());

    NSTextAlignment alignment() { return _values.alignment; }
    NSWritingDirection baseWritingDirection() { return _values.baseWritingDirection; }
    NSLineBreakMode lineBreakMode() { return _values.lineBreakMode; }
    /// The distance of the tab stops behind the last explicit one; 0 or less stands for 36.
    float defaultTabInterval() { return _values.defaultTabInterval; }
    /// From the leading edge to the first line.
    float firstLineHeadIndent() { return _values.firstLineHeadIndent; }
    /// From the leading edge to the other lines.
    float headIndent() { return _values.headIndent; }
    /// From the leading edge to the lines' ends; 0 or less counts from the trailing edge.
    float tailIndent() { return _values.tailIndent; }
    /// A factor for the natural line height, before the limits below; 0 stands for 1.
    float lineHeightMultiple() { return _values.lineHeightMultiple; }
    float minimumLineHeight() { return _values.minimumLineHeight; }
    /// 0 sets no limit. Letters that are higher reach into the line above.
    float maximumLineHeight() { return _values.maximumLineHeight; }
    /// Below each line of the paragraph but the last one.
    float lineSpacing() { return _values.lineSpacing; }
    /// Below the paragraph.
    float paragraphSpacing() { return _values.paragraphSpacing; }
    /// Above the paragraph, unless it is the first one in its container.
    float paragraphSpacingBefore() { return _values.paragraphSpacingBefore; }
    /// From 0, which leaves the choice to the layout manager, to 1. Words are hyphenated where a line would
    /// fill less than this share of its width without; 1 hyphenates wherever a line is not full. Only words
    /// whose language (NSLanguageAttributeName) has hyphenation patterns on the machine are hyphenated.
    float hyphenationFactor() { return _values.hyphenationFactor; }
    /// NSTextTab objects in their order; never null.
    NSArray* tabStops() { return _tabStops; }

    void encodeWithCoder(NSCoder* coder);
    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;
    Retained<NSParagraphStyle> copy() { return cast<NSParagraphStyle>(copyWithZone(nullptr)); }
    Retained<NSMutableParagraphStyle> mutableCopy();

  protected:
    struct Values {
        NSTextAlignment alignment = NSNaturalTextAlignment;
        NSWritingDirection baseWritingDirection = NSWritingDirectionNatural;
        NSLineBreakMode lineBreakMode = NSLineBreakByWordWrapping;
        float defaultTabInterval = 0, firstLineHeadIndent = 0, headIndent = 0, tailIndent = 0;
        float lineHeightMultiple = 0, minimumLineHeight = 0, maximumLineHeight = 0, lineSpacing = 0;
        float paragraphSpacing = 0, paragraphSpacingBefore = 0, hyphenationFactor = 0;

        friend bool operator==(const Values&, const Values&) = default;
    };

    NSParagraphStyle();
    ~NSParagraphStyle() = default;

    /// Takes over the properties of the other style.
    void take(NSParagraphStyle* style);

    Values _values;
    Retained<NSArray> _tabStops;

  private:
    template <class Visit>
    static void visitFloats(Visit visit);
};

}  // namespace pelvor
