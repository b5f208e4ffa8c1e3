// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRLanguage.h"

#include "Foundation/NSAttributedString.h"
#include "PBPostLoader.h"
#include "Prelude.h"
#include "Writer/WRBoundaryScanner.h"

namespace {

struct Language : ::testing::Test {
    // The shared character sets are made by a load-time hook.
    static void SetUpTestSuite() { PBPostLoader::processClassesStartingRegistry(false); }
};

// The text with a bar at each boundary inside and a star behind each word, found in both directions.
std::string words(NSString* identifier, NSString* text) {
    WRLanguage* language = WRLanguage::languageWithIdentifier(identifier);
    auto string = NSAttributedString::initWithString(text);
    WRBoundaryScanner* scanner = language->acquireBoundaryScanner();
    scanner->setString(text);
    std::string result;
    for (NSUInteger start = 0, end; start < text->length(); start = end) {
        end = scanner->offsetOfWordBoundaryFrom_isForwardSearch(start, true);
        EXPECT_EQ(scanner->offsetOfWordBoundaryFrom_isForwardSearch(end, false), start);
        for (NSUInteger place = start; place < end; ++place)
            EXPECT_EQ(language->rangeWithGranularity_forString_range(1, string, {place, 1}),
                      (NSRange{start, end - start}));
        result += text->substringWithRange({start, end - start})->UTF8String();
        if (scanner->isWordBefore(end)) result += "*";
        if (end < text->length()) result += "|";
    }
    scanner->setString(nullptr);
    language->relinquishBoundaryScanner(scanner);
    EXPECT_EQ(language->acquireBoundaryScanner(), scanner) << "a scanner is used again";
    return result;
}

TEST_F(Language, HasWordsByItsOwnRules) {
    EXPECT_EQ(words(u"en"_ns, u"'Twas a dog's 'life'"_ns), "'Twas*| |a*| |dog's*| |'|life*|'");
    EXPECT_EQ(words(u"en_GB"_ns, u"rock ’n’ roll"_ns), "rock*| |’n*|’| |roll*");
    EXPECT_EQ(words(u"fr"_ns, u"L'eau qu’il boit aujourd'hui"_ns),
              "L'*|eau*| |qu’*|il*| |boit*| |aujourd'hui*");
    EXPECT_EQ(words(u"fr"_ns, u"d' a"_ns), "d*|'| |a*");
    EXPECT_EQ(words(u"de"_ns, u"'Twas l'eau"_ns), "'|Twas*| |l'eau*");
    EXPECT_EQ(words(u"th"_ns, u"สวัสดีชาวโลก"_ns), "สวัสดี*|ชาว*|โลก*");
}

TEST_F(Language, IsOneObjectWithADirection) {
    EXPECT_EQ(WRLanguage::languageWithIdentifier(u"ar"_ns), WRLanguage::languageWithIdentifier(u"ar"_ns));
    EXPECT_TRUE(WRLanguage::languageWithIdentifier(u"ar"_ns)->isRightToLeft());
    EXPECT_FALSE(WRLanguage::languageWithIdentifier(u"en"_ns)->isRightToLeft());
    auto one = NSAttributedString::initWithString(u"one"_ns);
    EXPECT_EQ(
        WRLanguage::languageWithIdentifier(u"en"_ns)->rangeWithGranularity_forString_range(1, one, {3, 1}),
        (NSRange{3, 0}));
}

TEST_F(Language, CountsUpToTheFirstParagraphEnd) {
    NSString* text = u"Two words 🙂\r\nL'eau"_ns;
    const struct {
        NSRange range, paragraph;
        NSUInteger words, characters;
    } rows[] = {
        {{0, 19}, {0, 14}, 2, 11},
        {{4, 15}, {4, 10}, 1, 7},
        {{0, 9}, {NSNotFound, 0}, 2, 9},
        {{14, 5}, {NSNotFound, 0}, 2, 5},
    };
    for (const auto& row : rows) {
        NSUInteger wordCount = 0, charCount = 0;
        EXPECT_EQ(
            WRLanguage::languageWithIdentifier(u"fr"_ns)->paragraphRangeForString_range_wordCount_charCount(
                text, row.range, &wordCount, &charCount),
            row.paragraph);
        EXPECT_EQ(wordCount, row.words) << row.range;
        EXPECT_EQ(charCount, row.characters) << row.range;
    }
}

}  // namespace
