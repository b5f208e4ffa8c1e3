// SPDX-License-Identifier: Apache-2.0
// Tests of a word processor's attributed strings, with a language of letters and paragraphs.
#include "NSAttributedString-PelvorAdditions.h"

#include "BaseTextLibrary.h"
#include "PBRangeUtil.h"
#include "Prelude.h"
#include "Text/NSMutableParagraphStyle.h"

namespace pelvor {

namespace {

bool isLetter(unichar unit) { return (unit >= u'a' && unit <= u'z') || unit == u'\''; }

// A language in which a word is letters. It is its own boundary scanner.
class TestLanguage : public NSObject {
    PELVOR_CLASS(TestLanguage, NSObject);

  public:
    NSRange rangeWithGranularity(int granularity, NSAttributedString* text, NSRange range) {
        EXPECT_EQ(shown(granularity, range.length), "1 1");
        std::u16string units = text->string()->toUTF16();
        auto isHere = [&](std::size_t place) {
            return isLetter(units[place]) == isLetter(units[range.location]);
        };
        NSUInteger start = range.location, end = start + 1;
        while (start > 0 && isHere(start - 1)) --start;
        while (end < units.size() && isHere(end)) ++end;
        return {start, end - start};
    }
    id acquireBoundaryScanner() {
        ++lent;
        return this;
    }
    void relinquishBoundaryScanner(id scanner) {
        EXPECT_EQ(shown(scanner == this, string), "1 (null)");
        --lent;
    }
    void setString(NSString* text) { string = text; }
    NSUInteger offsetOfWordBoundary(NSUInteger from, bool isForward) {
        NSUInteger length = string->length();
        for (NSUInteger place = from; isForward ? place < length : place > 0;) {
            place = isForward ? place + 1 : place - 1;
            bool isEdge = place == 0 || place == length;
            if (isEdge ||
                isLetter(string->characterAtIndex(place)) != isLetter(string->characterAtIndex(place - 1)))
                return place;
        }
        return NSNotFound;
    }
    NSRange paragraphRange(NSString* text, NSRange range, NSUInteger* words, NSUInteger* characters) {
        std::u16string units = text->substringWithRange(range)->toUTF16();
        std::size_t end = units.find(u'\n');
        std::u16string passed = units.substr(0, end == units.npos ? end : end + 1);
        for (std::size_t i = 0; i < passed.size(); ++i)
            *words += isLetter(passed[i]) && (i + 1 == passed.size() || !isLetter(passed[i + 1]));
        *characters += static_cast<NSUInteger>(passed.size());
        if (end == units.npos) return PBNotFoundRange;
        return {range.location, static_cast<NSUInteger>(end) + 1};
    }

    bool isRightToLeft = false;
    int lent = 0;
    Unretained<NSString> string = nullptr;
};
bool runsRightToLeft(TestLanguage* language) { return language->isRightToLeft; }
constexpr Library* kDependencies[] = {&baseTextLibrary};
constinit Library languageLibrary{"TestLanguage", kDependencies, kClassesOf<TestLanguage>, {}};
PELVOR_DEFINE_CLASS(TestLanguage, languageLibrary) {
    methods.instanceAs<"rangeWithGranularity:forString:range:", &TestLanguage::rangeWithGranularity>();
    methods.instance<"acquireBoundaryScanner", &TestLanguage::acquireBoundaryScanner>();
    methods.instance<"relinquishBoundaryScanner:", &TestLanguage::relinquishBoundaryScanner>();
    methods.instance<"setString:", &TestLanguage::setString>();
    methods.instanceAs<"offsetOfWordBoundaryFrom:isForwardSearch:", &TestLanguage::offsetOfWordBoundary>();
    methods.instanceAs<"paragraphRangeForString:range:wordCount:charCount:", &TestLanguage::paragraphRange>();
    methods.instanceAs<"isRightToLeft", &runsRightToLeft>();
}

class AttributedAdditionsTest : public ::testing::Test {
  protected:
    AttributedAdditionsTest() { PBSystemLanguage = system; }
    ~AttributedAdditionsTest() {
        EXPECT_EQ(system->lent + other->lent, 0);
        PBSystemLanguage = nullptr;
    }
    NSMutableAttributedString* textOf(const std::string& text) {
        return NSMutableAttributedString::initWithString(NSString::ofUTF8(text)).autorelease();
    }
    NSMutableAttributedString* textOf(const std::string& text, NSRange inOther) {
        NSMutableAttributedString* made = textOf(text);
        made->addAttribute_value_range(PBLanguageAttributeName, other, inOther);
        return made;
    }
    static NSUInteger runCount(NSAttributedString* text) {
        NSUInteger count = 0;
        for (AttributeRun run : text->runs()) count += run.range.length > 0;
        return count;
    }

    AutoreleasePool pool;
    Retained<TestLanguage> system = make<TestLanguage>(), other = make<TestLanguage>();
};

TEST_F(AttributedAdditionsTest, LanguagesAndDirections) {
    auto* text = textOf("abcd", {2, 2});
    NSRange run;
    EXPECT_EQ(languageAttributeAtIndex_effectiveRange(text, 0, &run), system);
    EXPECT_EQ(run, NSMakeRange(0, 2));
    EXPECT_EQ(languageAttributeAtIndex_longestEffectiveRange_inRange(text, 2, &run, {0, 3}), other);
    EXPECT_EQ(run, NSMakeRange(2, 1));
    other->isRightToLeft = true;
    auto style = NSParagraphStyle::defaultParagraphStyle()->mutableCopy();
    text->addAttribute_value_range(NSParagraphStyleAttributeName, style->copy().get(), {1, 2});
    style->setBaseWritingDirection(NSWritingDirectionLeftToRight);
    text->addAttribute_value_range(NSParagraphStyleAttributeName, style->copy().get(), {3, 1});
    std::string directions;
    for (NSUInteger i = 0; i < 4; ++i)
        directions += std::to_string(PBEffectiveWritingDirectionForAttributes(attributesAtIndex(text, i)));
    EXPECT_EQ(directions, "0010");
    EXPECT_EQ(PBEffectiveWritingDirectionForAttributes(nullptr), NSWritingDirectionLeftToRight);
}

TEST_F(AttributedAdditionsTest, WordsAreThoseOfTheLanguage) {
    auto* text = textOf("one, two'three", {8, 6});
    bool isWord;
    EXPECT_EQ(rangeOfWordAtIndex_isWord(text, 3, &isWord), NSMakeRange(3, 2));
    EXPECT_FALSE(isWord);
    EXPECT_EQ(rangeOfWordAtIndex_isWord(text, 6, &isWord), NSMakeRange(5, 9));
    EXPECT_TRUE(isWord);
    auto walk = [&](NSUInteger from, bool isForward) {
        std::string places;
        for (NSUInteger place = from, next;; place = next) {
            next = nextWordFromIndex_forward(text, place, isForward);
            if (next == place) return places;
            places += std::to_string(next) + " ";
        }
    };
    EXPECT_EQ(walk(0, true), "3 8 ");  // the word at 8 belongs to both languages and begins in the first
    EXPECT_EQ(walk(14, false), "5 0 ");
    EXPECT_EQ(nextWordFromIndex_forward(textOf("..."), 1, true), 3u);
    PBSystemLanguage = nullptr;
    EXPECT_EQ(nextWordFromIndex_forward(text, 0, true), 1u);
    PBSystemLanguage = system;
}

TEST_F(AttributedAdditionsTest, CleanRangesEndWithWholeWords) {
    const struct {
        const char* text;
        NSRange inOther, clean;
    } rows[] = {
        {"", {0, 0}, {0, 0}},           {"one two", {0, 0}, {0, 5}},  // a boundary at 4, before a letter
        {"one two ", {0, 0}, {0, 7}},                                 // a boundary at 7, before a blank
        {"onetwo", {0, 0}, {0, 6}},                                   // no boundary inside
        {"oneTWO two", {3, 7}, {0, 3}},                               // the other language
        {"e\u0301", {1, 1}, {0, 2}},                                  // a composed character
    };
    for (const auto& row : rows) {
        auto* text = textOf(row.text, row.inOther);
        NSRange clean{9, 9}, all{0, text->length()};
        id language = languageAttributeAtIndex_cleanEffectiveRange_suggestedRange(text, 0, &clean, all);
        EXPECT_EQ(language, system);
        EXPECT_EQ(clean, row.clean) << row.text;
    }
}

TEST_F(AttributedAdditionsTest, ParagraphsAreCountedThroughAllLanguages) {
    auto* text = textOf("one two\nthree four\nfive", {9, 6});
    NSUInteger words = 0, characters = 0;
    EXPECT_EQ(paragraphRangeForRange_wordCount_charCount(text, {2, 20}, &words, nullptr), NSMakeRange(2, 6));
    EXPECT_EQ(words, 2u);
    EXPECT_EQ(paragraphRangeForRange_wordCount_charCount(text, {19, 4}, nullptr, &characters),
              PBNotFoundRange);
    EXPECT_EQ(characters, 4u);
    EXPECT_EQ(paragraphsInRange_wordCount_charCount(text, {0, 23}, nullptr, &characters), 2u);
    EXPECT_EQ(characters, 23u);
    EXPECT_EQ(paragraphsInRange_wordCount_charCount(text, {0, 0}, &words, nullptr), 0u);
    EXPECT_EQ(words, 0u);
}

TEST_F(AttributedAdditionsTest, AttachmentsArePutAndFound) {
    auto* text = textOf("ab\uFFFCcd\uFFFC");
    text->addAttribute_value_range(NSAttachmentAttributeName, u"one"_ns, {3, 3});
    EXPECT_EQ(shown(attachmentAtIndex(text, 2), attachmentAtIndex(text, 3), attachmentAtIndex(text, 5)),
              "(null) (null) one");
    NSUInteger offset = 0;
    EXPECT_EQ(nextAttachmentFromOffset(text, &offset), u"one"_ns);
    EXPECT_EQ(offset, 5u);
    offset = 6;
    EXPECT_EQ(nextAttachmentFromOffset(text, &offset), nullptr);
    EXPECT_EQ(offset, 6u);

    text->addAttribute_value_range(u"n"_ns, u"x"_ns, {0, 6});
    replaceCharactersInRange_withTextAttachment(text, {2, 1}, u"two"_ns);
    replaceCharactersInRange_withTextAttachment_attributes(text, {3, 2}, u"three"_ns,
                                                           NSDictionary::dictionary());
    EXPECT_EQ(text->string()->toUTF8(), "ab\uFFFC\uFFFC\uFFFC");
    EXPECT_EQ(attributesAtIndex(text, 2)->count(), 2u);
    EXPECT_EQ(attributesAtIndex(text, 3)->count(), 1u);
    setAttributesPreservingAttachments_inRange(
        text, NSDictionary::of({{u"m"_ns, u"y"_ns}, {NSAttachmentAttributeName, u"other"_ns}}), {1, 2});
    EXPECT_TRUE(attributesAtIndex(text, 2)->isEqual(
        NSDictionary::of({{NSAttachmentAttributeName, u"two"_ns}, {u"m"_ns, u"y"_ns}})));
    EXPECT_EQ(attributesAtIndex(text, 1)->count(), 1u);
}

TEST_F(AttributedAdditionsTest, RangesAreConstrainedToOneValue) {
    auto* text = textOf("0123456789", {4, 3});
    const struct {
        NSRange range, mask;
        NSRange atLocation, aroundMask;
    } rows[] = {
        {{5, 2}, {5, 1}, {5, 2}, {5, 2}},  {{0, 10}, {5, 1}, {4, 3}, {4, 3}},
        {{0, 10}, {0, 1}, {0, 4}, {0, 4}}, {{2, 6}, {3, 5}, {2, 2}, {2, 6}},
        {{2, 6}, {3, 2}, {2, 2}, {2, 5}},  {{2, 6}, {7, 1}, {7, 1}, {7, 1}},
        {{8, 2}, {8, 0}, {8, 2}, {8, 2}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(constrainRange_toSingleAttribute_location(text, row.range, PBLanguageAttributeName,
                                                            row.mask.location),
                  row.atLocation);
        EXPECT_EQ(constrainRange_toSingleAttribute_mask(text, row.range, PBLanguageAttributeName, row.mask),
                  row.aroundMask);
    }
    EXPECT_EQ(constrainRange_toSingleAttribute_location(text, {0, 2}, PBLanguageAttributeName, 8),
              NSMakeRange(8, 0));
    NSRange run{};
    EXPECT_EQ(nextAttribute_effectiveRange_inRange(text, PBLanguageAttributeName, &run, {0, 5}), other);
    EXPECT_EQ(run, NSMakeRange(4, 3));
    EXPECT_EQ(nextAttribute_effectiveRange_inRange(text, PBLanguageAttributeName, nullptr, {7, 3}), nullptr);
}

TEST_F(AttributedAdditionsTest, TextAndAttributesAreAdded) {
    auto* text = NSMutableAttributedString_PelvorAdditions::attributedString();
    EXPECT_EQ(firstAttributes(text)->count(), 0u);
    appendString_extendAttributes(text, u"a"_ns, true);
    appendString_withAttributes(text, u"b"_ns, NSDictionary::of({{u"n"_ns, u"x"_ns}}));
    appendString_extendAttributes(text, u"c"_ns, true);
    appendString_extendAttributes(text, u"d"_ns, false);
    EXPECT_EQ(shown(text), "a{\n}bc{\n    n = x;\n}d{\n}");
    NSDictionary* more = NSDictionary::of({{u"n"_ns, u"y"_ns}, {u"m"_ns, u"z"_ns}});
    NSAttributedString* more1 = attributedStringByAddingUndefinedAttributes(text, more);
    EXPECT_EQ(shown(more1),
              "a{\n    n = y;\n    m = z;\n}bc{\n    n = x;\n    m = z;\n}d{\n    n = y;\n    m = z;\n}");
    EXPECT_EQ(attributedStringByAddingUndefinedAttributes(more1, more), more1);
    EXPECT_EQ(attributedStringByAddingUndefinedAttributes(text, nullptr), text);
    setAttributesFromAttributedString_range(text, more1, {1, 2});
    EXPECT_EQ(shown(text), "a{\n}b{\n    n = y;\n    m = z;\n}c{\n    n = x;\n    m = z;\n}d{\n}");
    EXPECT_EQ(NSAttributedString_PelvorAdditions::attributedString(),
              send<id>(NSAttributedString::classObject(), "attributedString"_sel));
    EXPECT_EQ(stylesheet(text), nullptr);
}

TEST_F(AttributedAdditionsTest, PluralAttributesAreSets) {
    NSString* key = PBHighlightAttributeName;
    auto* text = textOf("0123456789");
    addPluralAttribute_value_range(text, key, u"a"_ns, {2, 4});
    addPluralAttribute_value_range(text, key, u"b"_ns, {4, 4});
    addPluralAttribute_value_range(text, key, u"a"_ns, {3, 1});
    EXPECT_EQ(runCount(text), 5u);
    auto rangeOf = [&](NSString* value, NSUInteger index, NSRange limit) {
        return rangeOfPluralAttribute_withValue_atIndex_inRange(text, key, value, index, limit);
    };
    EXPECT_EQ(shown(rangeOf(u"a"_ns, 3, {0, 10}), rangeOf(u"b"_ns, 6, {6, 1}), rangeOf(u"a"_ns, 5, {5, 5})),
              "{2, 4} {6, 2} {5, 1}");
    EXPECT_EQ(rangeOf(u"b"_ns, 7, {6, 1}), PBNotFoundRange);
    EXPECT_EQ(rangeOf(u"a"_ns, 6, {0, 10}), PBNotFoundRange);
    EXPECT_EQ(unionPluralAttribute_inRange(text, key, {0, 2}), nullptr);
    EXPECT_EQ(unionPluralAttribute_inRange(text, key, {0, 4}),
              text->attribute_atIndex_effectiveRange(key, 2, nullptr));
    EXPECT_EQ(unionPluralAttribute_inRange(text, key, {0, 10})->count(), 2u);
    removePluralAttribute_value_range(text, key, u"b"_ns, {0, 10});
    EXPECT_EQ(runCount(text), 3u);
    EXPECT_EQ(attributesAtIndex(text, 7)->count(), 0u);
    EXPECT_EQ(RAISED(addPluralAttribute_value_range(text, key, nullptr, {0, 1})),
              "NSInvalidArgumentException: addPluralAttribute:value:range: the value is null");
}

}  // namespace
}  // namespace pelvor
