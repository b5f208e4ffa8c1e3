// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocument.h"

#include "PBPostLoader.h"
#include "PBProfile.h"
#include "Prelude.h"
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
    auto document = documentWith(u"one\ntwo\r\n\rfour\u2029five\f");
    ASSERT_EQ(document->paragraphCount(), 5u);
    EXPECT_EQ(document->paragraphAtIndex(1)->toUTF8(), "two");
    EXPECT_EQ(document->paragraphAtIndex(2)->length(), 0u);
    EXPECT_EQ(document->rangeOfParagraphAtIndex(3), NSMakeRange(10, 4));
    EXPECT_THROW(document->paragraphAtIndex(5), NSException);
}

TEST_F(Document, TellsThatItsTextHasChanged) {
    auto document = documentWith(u"one\ntwo");
    EXPECT_EQ(document->paragraphCount(), 2u);
    document->replaceCharactersInRange_withString({3, 1}, u"\n\n"_ns);
    EXPECT_EQ(document->text()->toUTF8(), "one\n\ntwo");
    EXPECT_EQ(document->paragraphCount(), 3u);
    EXPECT_THROW(document->replaceCharactersInRange_withString({8, 1}, u""_ns), NSException);
}

struct CountCase {
    const char16_t* text;
    TextCount count;  // code points, words, paragraphs, the longest one's index and length
};

const CountCase kCounts[] = {
    {u"", {0, 0, 0, 0, 0}},
    {u"\n", {1, 0, 1, 0, 0}},
    {u"one two", {7, 2, 1, 0, 7}},
    {u"don’t l'homme ’tis’", {19, 3, 1, 0, 19}},
    {u"1,250.50 £ at 6:42.", {19, 4, 1, 0, 19}},
    {u"end. 3 . 4, five", {16, 4, 1, 0, 16}},
    {u"naïve Straße, 日本", {16, 3, 1, 0, 16}},
    {u"\xD83D"
     u"a \xD83D\xD83D\xDC08 b\xDC08",
     {7, 2, 1, 0, 9}},
    {u" \n  the 🐈 sat \r\nlonger than that\nwithin the hour\n\n", {50, 8, 5, 2, 16}},
};

TEST_F(Document, IsCountedTheSameInPiecesOfAnyLength) {
    for (const auto& [text, expected] : kCounts) {
        for (NSUInteger step : {1u, 2u, 3u, 7u, 100u}) {
            TextCounter counter(NSString::of(text));
            while (!counter.isDone()) counter.advance(step);
            EXPECT_TRUE(counter.count() == expected) << NSString::of(text) << step;
        }
    }
}

TEST_F(Document, HasAFirstLine) {
    NSString* text = u" \n  the 🐈 sat \nlonger"_ns;
    EXPECT_EQ(firstLineOfText(text, 72)->toUTF8(), "the 🐈 sat");
    EXPECT_EQ(firstLineOfText(text, 5)->toUTF8(), "the …");
    EXPECT_EQ(firstLineOfText(u"\n \n"_ns, 9)->length(), 0u);
}

}  // namespace
}  // namespace pelvor
