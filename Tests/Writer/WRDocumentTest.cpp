// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocument.h"

#include <gtest/gtest.h>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBPostLoader.h"
#include "PBProfile.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/TextMeasure.h"

namespace pelvor {
namespace {

class Document : public testing::Test {
  protected:
    // The shared character sets are made by a load-time hook.
    static void SetUpTestSuite() { PBPostLoader::processClassesStartingRegistry(false); }
    Retained<WRDocument> documentWith(std::u16string_view text) {
        return WRDocument::initWithPath_reader_answer(u"/a/b.txt"_ns, nullptr,
                                                      NSDictionary::of({{WRTextKey, NSString::of(text)}}));
    }
    AutoreleasePool pool;
};

TEST_F(Document, KeepsWhatTheReaderAnswered) {
    NSDictionary* answer = NSDictionary::of({{WRTextKey, u"ab"_ns},
                                             {WREncodingKey, u"UTF-16LE"_ns},
                                             {WRByteOrderMarkKey, NSNumber::numberWithBool(true)},
                                             {WRByteCountKey, NSNumber::numberWithInt(6)}});
    auto document = WRDocument::initWithPath_reader_answer(u"/a/b.txt"_ns, nullptr, answer);
    EXPECT_EQ(document->text()->toUTF8(), "ab");
    EXPECT_EQ(document->encodingName()->toUTF8(), "UTF-16LE");
    EXPECT_TRUE(document->hasByteOrderMark());
    EXPECT_EQ(document->byteCount(), 6u);
}

TEST_F(Document, IsNotMadeOfAnAnswerWithoutTextAndBearsOddEntries) {
    EXPECT_FALSE(WRDocument::initWithPath_reader_answer(u"a"_ns, nullptr, NSDictionary::dictionary()));
    NSDictionary* odd = NSDictionary::of(
        {{WRTextKey, u""_ns}, {WREncodingKey, NSNumber::numberWithInt(4)}, {WRByteCountKey, u"many"_ns}});
    auto document = WRDocument::initWithPath_reader_answer(u"a"_ns, nullptr, odd);
    EXPECT_EQ(document->encodingName(), nullptr);
    EXPECT_EQ(document->byteCount(), 0u);
}

TEST_F(Document, EndsParagraphsAtEveryKindOfLineEnd) {
    auto document = documentWith(u"one\ntwo\r\n\rfour\u2029five\u2028");
    ASSERT_EQ(document->paragraphCount(), 5u);
    EXPECT_EQ(document->paragraphAtIndex(1)->toUTF8(), "two");
    EXPECT_EQ(document->paragraphAtIndex(2)->length(), 0u);
    EXPECT_EQ(document->rangeOfParagraphAtIndex(3), NSMakeRange(10, 4));
    EXPECT_THROW(document->paragraphAtIndex(5), NSException);
}

TEST_F(Document, OfNothingHasNoParagraphs) {
    EXPECT_EQ(documentWith(u"")->paragraphCount(), 0u);
    EXPECT_EQ(documentWith(u"\n")->paragraphCount(), 1u);
    EXPECT_EQ(documentWith(u"a")->paragraphCount(), 1u);
}

TEST_F(Document, IsMeasuredInWordsAndCharacters) {
    const struct {
        const char16_t* text;
        NSUInteger words;
        NSUInteger codePoints;
    } cases[] = {
        {u"", 0, 0},
        {u"one two", 2, 7},
        {u"don’t l'homme ’tis’", 3, 19},
        {u"1,250.50 £ at 6:42.", 4, 19},
        {u"end. 3 . 4, five", 4, 16},
        {u"naïve Straße, 日本", 3, 16},
        {u"🐈 𝐀𝐁 x", 2, 6},
    };
    for (const auto& expected : cases) {
        const TextMeasure measure = measureDocument(documentWith(expected.text).get());
        EXPECT_EQ(measure.words, expected.words) << NSString::of(expected.text);
        EXPECT_EQ(measure.codePoints, expected.codePoints) << NSString::of(expected.text);
    }
}

TEST_F(Document, HasAFirstLongestParagraphAndAFirstLine) {
    auto document = documentWith(u" \n  the 🐈 sat \nlonger than that\nwithin the hour\n");
    const TextMeasure measure = measureDocument(document);
    EXPECT_EQ(measure.longestParagraph, 2u);
    EXPECT_EQ(measure.longestLength, 16u);
    EXPECT_EQ(firstLineOfDocument(document, 72)->toUTF8(), "the 🐈 sat");
    EXPECT_EQ(firstLineOfDocument(document, 5)->toUTF8(), "the …");
    EXPECT_EQ(firstLineOfDocument(documentWith(u"\n \n").get(), 9)->length(), 0u);
}

}  // namespace
}  // namespace pelvor
