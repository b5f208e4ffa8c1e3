// SPDX-License-Identifier: Apache-2.0
// Random edits of a laid-out text, for tests and the fuzz target.
#pragma once

#include <functional>

#include "Foundation/NSMutableString.h"
#include "LaidOutText.h"
#include "Text/NSTextAttachment.h"
#include "Text/NSTextTab.h"

namespace pelvor {

/// Edits a text at random and compares its layout with that of the same text from scratch.
class LayoutAuthor {
  public:
    using Sizes = std::vector<NSSize>;

    /// The function returns a number below the one that it is given.
    LayoutAuthor(std::function<unsigned(unsigned)> random, const Sizes& sizes, NSArray* exclusions)
        : text({}), _random(std::move(random)), _sizes(sizes) {
        _exclusions.set(exclusions);
        prepare(text);
        auto style = NSMutableParagraphStyle::init();
        style->setHeadIndent(10);
        style->setParagraphSpacing(5);
        style->setParagraphSpacingBefore(2);
        style->addTabStop(NSTextTab::initWithType_location(NSRightTabStopType, 70).get());
        style->setAlignment(NSJustifiedTextAlignment);
        const auto add = [this](NSString* name, id value) {
            _attributes.emplace_back(name, Retained<Object>::retaining(value));
        };
        add(NSFontAttributeName, NSFont::fontWithName_size(u"DejaVuSans"_ns, 20));
        add(NSParagraphStyleAttributeName, style);
        auto narrow = NSMutableParagraphStyle::init();
        narrow->setHyphenationFactor(1);
        narrow->setFirstLineHeadIndent(20);
        narrow->setTailIndent(-15);
        narrow->setLineHeightMultiple(1.5);
        add(NSParagraphStyleAttributeName, narrow);
        add(NSLanguageAttributeName, u"en"_ns);
        auto attachment = NSTextAttachment::init();
        add(NSAttachmentAttributeName, attachment);
        add(NSKernAttributeName, NSNumber::numberWithDouble(1.5));
        add(NSSuperscriptAttributeName, NSNumber::numberWithInt(1));
    }

    /// Edits, sometimes looks at the text, and sometimes compares.
    void step() {
        const std::string before = text.storage->string()->toUTF8();
        edit(text.storage);
        const NSUInteger length = text.storage->length();
        if (length && below(2)) text.lineRect(below(length));
        if (below(3)) return;
        LaidOutText fresh({});
        prepare(fresh);
        fresh.storage->setAttributedString(text.storage);
        text.layoutManager->ensureLayoutForCharacterRange({0, length});
        const std::string mine = text.account(), expected = fresh.account();
        if (mine != expected)
            fault = mine + "\nbut from scratch\n" + expected + "\nfrom " + before + "\nto " +
                    text.storage->string()->toUTF8();
    }

    LaidOutText text;
    std::string fault;  // empty: none so far

    /// Some words, line ends and strange characters; borrowed.
    NSString* words() {
        static const char16_t* const kPieces[] = {u"word ",        u"a ",      u"longerword",
                                                  u"\n",           u"\r",      u"\r\n",
                                                  u"\t",           u" ",       u"\u05D0\u05D1\u05D2 ",
                                                  u"\u4E2D\u6587", u"e\u0301", u"\f",
                                                  u"\u00AD",       u"\u2028",  u"\U0001F469\u200D\U0001F469 ",
                                                  u"\n\n",         u"\uFFFC",  u"hyphenation ",
                                                  u"\u0915\u093F "};
        auto text = NSMutableString::init();
        for (unsigned i = below(6); i < 6; ++i)
            text->appendString(NSString::of(kPieces[below(std::size(kPieces))]));
        return text->copy().autorelease();
    }
    void edit(NSTextStorage* storage) {
        constexpr NSUInteger kMost = 1000;  // or long rounds get slow
        const NSUInteger length = storage->length(), start = below(length + 1);
        if (length > kMost)
            return storage->replaceCharactersInRange_withString({kMost / 2, length - kMost / 2}, u""_ns);
        const NSRange range{start, below(std::min<NSUInteger>(length - start, 30) + 1)};
        switch (below(4)) {
            case 0:
                storage->replaceCharactersInRange_withString(range, u""_ns);
                break;
            case 1:
                if (range.length == 0) break;
                addAttribute(storage, range);
                break;
            default:
                storage->replaceCharactersInRange_withString({start, below(2) ? range.length / 4 : 0},
                                                             words());
        }
    }

  private:
    void addAttribute(NSTextStorage* storage, NSRange range) {
        const auto count = static_cast<unsigned>(_attributes.size()), which = below(count);
        // At times a value of a kind that the name does not go with.
        const unsigned other = below(8) ? which : below(count);
        storage->addAttribute_value_range(_attributes[which].first, _attributes[other].second, range);
    }
    unsigned below(unsigned limit) { return limit ? _random(limit) : 0; }
    void prepare(LaidOutText& other) {
        for (NSSize size : _sizes) other.addContainer(size);
        other.containers[0]->setExclusionRects(_exclusions);
    }

    std::function<unsigned(unsigned)> _random;
    Sizes _sizes;
    Retained<NSArray> _exclusions;
    std::vector<std::pair<NSString*, Retained<Object>>> _attributes;
};

}  // namespace pelvor
