// SPDX-License-Identifier: Apache-2.0
#include "PBUnichar32String.h"

#include "BaseLibrary.h"
#include "Foundation/NSCharacterSet.h"
#include "NSString-PelvorAdditions.h"
#include "Prelude.h"
#include "Source/TextInPieces.h"

namespace {

using Additions = NSString_PelvorAdditions;

TEST(Codepoints, AreWrittenAsUnitsAndPairs) {
    EXPECT_EQ(Additions::stringWithCodepoint(0x1F600)->toUTF16(), u"\xD83D\xDE00");
    EXPECT_EQ(Additions::stringWithCodepoint(0x41)->toUTF16(), u"A");
    EXPECT_EQ(Additions::stringWithCodepoint(0x110000)->toUTF16(), (std::u16string{0xD800, 0xDC00}));
    EXPECT_EQ(Additions::stringWithCodepoints_count(nullptr, 0)->length(), 0u);
    registerLibrary(baseLibrary);
    const std::uint32_t face = 0x1F600;
    for (Class* cls : {NSMutableString::classObject(), PBUnichar32String::classObject()}) {
        auto* made = send<NSString*>(cls, "initWithCodepoints:count:"_sel, &face, NSUInteger{1});
        EXPECT_EQ(made->toUTF16(), u"\U0001F600");
        EXPECT_TRUE(made->isKindOfClass(cls));
    }
}

TEST(Codepoints, AreReadFromAnyRange) {
    NSString* text = inPieces(std::u16string{u'a', 0xD83D, 0xDE00, u'b', 0xD83D});
    std::uint32_t read[4] = {};
    EXPECT_EQ(getCodepoints_range(text, read, {0, 5}), 4u);
    EXPECT_THAT(read, ElementsAre(0x61u, 0x1F600u, 0x62u, 0xD83Du));
    EXPECT_EQ(getCodepoints_range(text, read, {2, 2}), 2u);
    EXPECT_EQ(read[0], 0xDE00u);
    EXPECT_EQ(countCodepointsInRange(text, {1, 1}), 1u);
    EXPECT_EQ(countCodepointsInRange(text, {5, 0}), 0u);
    EXPECT_EQ(countCodepointsInRange(NSString::of(u"\xD83Dx"), {0, 2}), 1u) << "any unit ends the pair";
}

TEST(PBUnichar32String, MapsBetweenUnitsAndCodepoints) {
    auto text = PBUnichar32String::initWithString(inPieces(u"a\U0001F600b"));
    EXPECT_EQ(shown(text.get(), text->length(), text->codepointCount()), "a\U0001F600b 4 3");
    EXPECT_EQ(text->characterAtIndex(2), 0xD83D) << "the first half at both places";
    bool isLow[] = {true, false, true};
    EXPECT_EQ(text->codepointRangeForUnicharsWithRange_isFirstUnicharLowSurrogate({2, 2}, &isLow[0]),
              NSMakeRange(1, 2));
    EXPECT_EQ(text->_surrogateCountForUnicharsWithRange_isFirstUnicharLowSurrogate({1, 1}, &isLow[1]), 1u);
    EXPECT_EQ(text->_surrogateCountForUnicharsWithRange_isFirstUnicharLowSurrogate({2, 2}, &isLow[2]), 0u);
    EXPECT_THAT(isLow, ElementsAre(false, true, false));
    EXPECT_EQ(text->unicharRangeForCodepointsWithRange({2, 1}), NSMakeRange(3, 1));
    EXPECT_EQ(text->substringForCodepointsWithRange({1, 2})->toUTF16(), u"\U0001F600b");
    unichar units[2] = {};
    text->getCharacters_range(units, {2, 2});
    EXPECT_EQ(std::u16string(units, 2), u"\U0001F600") << "shifted to the start of the pair";
    units[1] = u'-';
    text->getCharacters_range(units, {2, 1});
    EXPECT_EQ(std::u16string(units, 2), u"\xD83D-");
    std::uint32_t codepoint = 0;
    EXPECT_EQ(shown(countCodepointsInRange(text, {1, 1}), getCodepoints_range(text, &codepoint, {2, 1})),
              "0 1");
    EXPECT_EQ(codepoint, 0x1F600u);
}

TEST(PBRepeatString, ReadsItsSourceRoundAndRound) {
    auto text = PBRepeatString::initWithString_length(u"ab"_ns, 5);
    EXPECT_EQ(text->toUTF16(), u"ababa");
    EXPECT_EQ(text->characterAtIndex(5), u'b');
    EXPECT_EQ(text->characterAtIndex(7), u'a');
    std::u16string units(3, u'-');
    text->getCharacters_range(units.data(), {3, 10});
    EXPECT_EQ(units, u"ba-");
    text->getCharacters_range(units.data(), {0xFFFFFFFF, 0xFFFFFFFF});
    EXPECT_EQ(units, u"ba-");
}

TEST(PBRepeatString, HasLengthsUpToTheLimit) {
    EXPECT_FALSE(PBRepeatString::initWithString_repeatCount(u"ab"_ns, 0x80000000));
    auto longest = PBRepeatString::initWithString_length(u"abc"_ns, 0xFFFFFFFF);
    EXPECT_EQ(longest->characterAtIndex(0xFFFFFFFE), u'c');
    NSCharacterSet* letters = NSCharacterSet::letterCharacterSet();
    EXPECT_EQ(locationOfCharacterFromSet_options_location(longest, letters, NSBackwardsSearch, 0xFFFFFFFF),
              0xFFFFFFFE);
    auto halves = PBRepeatString::initWithString_length(u"\U0001F600"_ns, 0xFFFFFFFF);
    EXPECT_EQ(rangeOfCharacterAtIndex(halves, 0xFFFFFFFE), NSMakeRange(0xFFFFFFFE, 1)) << "half of a pair";
    auto text = NSMutableString::of(u"a");
    EXPECT_EQ(reasonOf(NSMallocException, [&] { text->appendString(longest); }),
              "appendString: a string cannot have 4294967296 units");
    EXPECT_EQ(reasonOf(NSMallocException, [&] { text->stringByAppendingString(longest); }),
              "stringByAppendingString: a string cannot have 4294967296 units");
    auto empty = PBRepeatString::initWithString_length(u""_ns, 2);
    EXPECT_EQ(empty->toUTF16() + empty->characterAtIndex(0), std::u16string(3, u'\0'));
    EXPECT_EQ(PBRepeatString::initWithString_repeatCount(u"-"_ns, 3)->toUTF16(), u"---");
}

}  // namespace
