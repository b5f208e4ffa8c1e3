// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocument.h"

#include "Foundation/NSMutableAttributedString.h"
#include "PBPostLoader.h"
#include "PBProfile.h"
#include "Prelude.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/TextMeasure.h"

namespace {

struct Document : ::testing::Test {
    // The shared character sets are made by a load-time hook.
    static void SetUpTestSuite() { PBPostLoader::processClassesStartingRegistry(false); }
    Retained<WRDocument> documentOf(std::initializer_list<NSDictionaryEntry> answer) {
        return WRDocument::initWithPath_reader_answer(u"/a/b.txt"_ns, nullptr, NSDictionary::of(answer));
    }
};

TEST_F(Document, KeepsWhatTheReaderAnsweredAndBearsOddEntries) {
    auto document = documentOf({{WRTextKey, u"ab"_ns},
                                {WREncodingKey, u"UTF-16LE"_ns},
                                {WRByteOrderMarkKey, NSNumber::numberWithBool(true)},
                                {WRByteCountKey, NSNumber::numberWithInt(6)}});
    EXPECT_EQ(shown(document->text(), document->encodingName(), document->byteCount()), "ab UTF-16LE 6");
    EXPECT_TRUE(document->hasByteOrderMark());
    auto odd = documentOf(
        {{WRTextKey, u""_ns}, {WREncodingKey, NSNumber::numberWithInt(4)}, {WRByteCountKey, u"many"_ns}});
    EXPECT_EQ(shown(odd->encodingName(), odd->byteCount()), "(null) 0");
    EXPECT_FALSE(documentOf({})) << "there is no text";
}

TEST_F(Document, EndsParagraphsAtEveryKindOfLineEndAndTellsThatItsTextHasChanged) {
    auto document = documentOf({{WRTextKey, u"one\ntwo\r\n\rfour\u2029five\f"_ns}});
    ASSERT_EQ(document->paragraphCount(), 5u);
    EXPECT_EQ(shown(document->paragraphAtIndex(1)), "two");
    EXPECT_EQ(document->paragraphAtIndex(2)->length(), 0u);
    EXPECT_EQ(document->rangeOfParagraphAtIndex(3), NSMakeRange(10, 4));
    EXPECT_THROW(document->paragraphAtIndex(5), NSException);
    document->replaceCharactersInRange_withString({3, 1}, u"\n\n"_ns);
    EXPECT_EQ(shown(document->text()), "one\n\ntwo\r\n\rfour\u2029five\f");
    EXPECT_EQ(document->paragraphCount(), 6u);
    EXPECT_THROW(document->replaceCharactersInRange_withString({21, 1}, u""_ns), NSException);
}

TEST_F(Document, KeepsFormatsThroughChangesOfItsText) {
    const auto setText = [](NSString* text) {
        return [text](WRDocument* document) { document->setText(text); };
    };
    const struct {
        const char* situation;
        NSRange marked;
        std::function<void(WRDocument*)> change;
        const char* text;  // what is marked stands in brackets
    } rows[] = {
        {"Nothing", {4, 3}, [](WRDocument*) {}, "one [two]\tthree"},
        {"Edit",
         {4, 3},
         [](auto* document) {
             document->replaceCharactersInRange_withString({5, 1}, u"WW"_ns);
         },
         "one [tWWo]\tthree"},
        {"EditOfTheString",
         {4, 3},
         [](auto* document) {
             document->changeText([](NSMutableString* text) { text->insertString_atIndex(u"!"_ns, 7); });
         },
         "one [two!]\tthree"},
        {"Letters", {4, 3}, setText(u"ONE TWO\tTHREE"_ns), "ONE [TWO]\tTHREE"},
        {"LettersOfPartOfAWord", {5, 4}, setText(u"ONE TWO\tTHREE"_ns), "ONE T[WO\tT]HREE"},
        {"LongerWord", {4, 3}, setText(u"one twooo\tthree"_ns), "one [twooo]\tthree"},
        {"WrappedLines", {4, 3}, setText(u"one\ntwo\r\nthree"_ns), "one\n[two]\r\nthree"},
        {"WrappedWords", {4, 3}, setText(u"on\ne tw\no th\nree"_ns), "on\ne [tw\no] th\nree"},
        {"FewerWords", {4, 3}, setText(u"one two"_ns), "one [two]"},
        {"MoreWords", {4, 3}, setText(u"one two three four"_ns), "one [two] three four"},
        {"NoWords", {4, 3}, setText(u""_ns), ""},
    };
    for (const auto& [situation, marked, change, expected] : rows) {
        auto rich = NSMutableAttributedString::initWithString(u"one two\tthree"_ns);
        rich->addAttribute_value_range(u"mark"_ns, u"x"_ns, marked);
        auto document = documentOf({{WRTextKey, rich->string()}, {WRRichTextKey, rich}});
        change(document);
        std::string text;
        for (AttributeRun run : document->richText()->runs()) {
            const std::string part = document->text()->substringWithRange(run.range)->toUTF8();
            text += run.attributes->count() ? "[" + part + "]" : part;
        }
        EXPECT_EQ(text, expected) << situation;
    }
}

TEST_F(Document, IsCountedTheSameInPiecesOfAnyLength) {
    const std::pair<const char16_t*, TextCount> cases[] = {
        // code points, words, paragraphs, the longest one's index and length
        {u"", {0, 0, 0, 0, 0}},
        {u"\n", {1, 0, 1, 0, 0}},
        {u"one two", {7, 2, 1, 0, 7}},
        {u"don’t l'homme ’tis’", {19, 3, 1, 0, 19}},
        {u"1,250.50 £ at 6:42.", {19, 4, 1, 0, 19}},
        {u"end. 3 . 4, five", {16, 4, 1, 0, 16}},
        {u"naïve Straße, 日本", {16, 3, 1, 0, 16}},
        {u"\xD83D\141 \xD83D\xD83D\xDC08 b\xDC08", {7, 2, 1, 0, 9}},
        {u" \n  the 🐈 sat \r\nlonger than that\nwithin the hour\n\n", {50, 8, 5, 2, 16}},
    };
    for (const auto& [text, expected] : cases)
        for (NSUInteger step : {1u, 2u, 3u, 7u, 100u}) {
            TextCounter counter(NSString::of(text));
            while (!counter.isDone()) counter.advance(step);
            EXPECT_TRUE(counter.count() == expected) << NSString::of(text) << step;
        }
}

TEST_F(Document, HasAFirstLine) {
    NSString* text = u" \n  the 🐈 sat \nlonger"_ns;
    EXPECT_EQ(shown(firstLineOfText(text, 72)), "the 🐈 sat");
    EXPECT_EQ(shown(firstLineOfText(text, 5)), "the …");
    EXPECT_EQ(firstLineOfText(u"\n \n"_ns, 9)->length(), 0u);
}

}  // namespace
