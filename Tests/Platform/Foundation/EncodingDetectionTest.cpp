// SPDX-License-Identifier: Apache-2.0
// Tests of finding out which encoding bytes are in.
#include "Foundation/EncodingDetection.h"

#include "Prelude.h"

namespace {

using namespace std::string_view_literals;

// By the statistics of languages, by alphabets, and by the units of wide text.
TEST(EncodingDetectionTest, TextIsGuessedWithItsLanguage) {
    constexpr std::u16string_view
        kRussian =
            u"Все люди рождаются свободными и равными в своём достоинстве и правах. Они наделены "
            u"разумом и совестью и должны поступать в отношении друг друга в духе братства.",
        kJapanese =
            u"すべての人間は、生れながらにして自由であり、かつ、尊厳と権利とについて平等である。人間は"
            u"、理性と良心とを授けられており、互いに同胞の精神をもって行動しなければならない。",
        kHebrew =
            u"כל בני האדם נולדו בני חורין ושווים בערכם ובזכויותיהם. כולם חוננו בתבונה ובמצפון, לפיכך "
            u"חובה עליהם לנהוג איש ברעהו ברוח של אחווה.";
    const struct {
        const char* name;
        std::u16string_view text;
        const char* language;
    } rows[] = {
        {"windows-1251", kRussian, "ru"},
        {"koi8-r", kRussian, "ru"},
        {"utf-8", kRussian, ""},
        {"utf-16le", u"\uFEFFВсе люди", ""},
        {"shift_jis", kJapanese, "ja"},
        {"euc-jp", kJapanese, "ja"},
        {"windows-1255", kHebrew, "he"},
        {"windows-1257", u"Rytą virš upės tvyrojo rūkas, ir tolimas krantas atrodė arčiau", nullptr},
        {"ibm852", u"Rano nad rzeką stała mgła i drugi brzeg wydawał się bliższy", nullptr},
        {"x-mac-cyrillic", u"Утром над рекой стоял туман, и дальний берег казался ближе", nullptr},
        {"windows-874", u"ตอนเช้ามีหมอกปกคลุมแม่น้ำ และฝั่งตรงข้ามดูใกล้กว่าที่เป็นจริง", nullptr},
        {"utf-16le", u"朝、川の上には霧が立ちこめ、向こう岸は近く見えた。", nullptr},
        {"utf-16be", u"아침에 강 위에는 안개가 끼어 있었고", nullptr},
        {"utf-16le", u"早晨河面上起了雾，对岸看起来比实际上更近。\n", nullptr},
        {"utf-16be", u"ตอนเช้ามีหมอก\n", nullptr},
        {"utf-32le", u"h🐈", nullptr},
    };
    for (const auto& row : rows) {
        const auto guesses =
            detectEncodings(*encodeUnits(row.text, encodingForName(row.name), EncodingLoss::allowed));
        ASSERT_FALSE(guesses.empty()) << row.name;
        EXPECT_EQ(ianaNameOfEncoding(guesses[0].encoding), row.name);
        if (!row.language) continue;
        EXPECT_EQ(guesses[0].language, row.language) << row.name;
        EXPECT_GT(guesses[0].confidence, 30) << row.name;
    }
    for (std::string_view bytes : {"hello\0world\n"sv, "na\xC3\xAFve\0text"sv, "\1\0\2\0\3\0\4\0"sv})
        for (const EncodingGuess& guess : detectEncodings(bytes))
            EXPECT_FALSE(ianaNameOfEncoding(guess.encoding).starts_with("utf-16")) << bytes;
}

TEST(EncodingDetectionTest, GuessesAreEncodingsInWhichTheBytesAreValid) {
    EXPECT_TRUE(detectEncodings("").empty());
    for (std::string_view bytes : {"a\x81\xFF"sv, "\xC3\xA9\xC3"sv, "\xFF\xFE\0\xD8"sv})
        for (const EncodingGuess& guess : detectEncodings(bytes)) {
            std::u16string units;
            EXPECT_TRUE(TextDecoder(guess.encoding).decode(bytes, units))
                << ianaNameOfEncoding(guess.encoding);
        }
    const auto guesses = detectEncodings("caf\xC3\xA9 au lait, cr\xC3\xA8me br\xC3\xBBl\xC3"sv);
    ASSERT_FALSE(guesses.empty());
    EXPECT_EQ(guesses[0].encoding, NSUTF8StringEncoding);
}

TEST(EncodingDetectionTest, MarksAreRecognisedAndGivenBack) {
    const std::pair<NSStringEncoding, std::string_view> rows[] = {
        {NSUTF8StringEncoding, "\xEF\xBB\xBF"sv},
        {NSUTF16LittleEndianStringEncoding, "\xFF\xFE"sv},
        {NSUTF16BigEndianStringEncoding, "\xFE\xFF"sv},
        {NSUTF32LittleEndianStringEncoding, "\xFF\xFE\0\0"sv},
        {NSUTF32BigEndianStringEncoding, "\0\0\xFE\xFF"sv},
    };
    for (auto [encoding, mark] : rows) {
        const auto found = encodingMarkOf(std::string(mark) + "text");
        ASSERT_TRUE(found) << encoding;
        EXPECT_EQ(found->encoding, encoding);
        EXPECT_EQ(found->bytes, mark);
        EXPECT_EQ(markOfEncoding(encoding), mark);
    }
    EXPECT_FALSE(encodingMarkOf("\xFF text"));
    EXPECT_EQ(markOfEncoding(NSUnicodeStringEncoding), "\xFF\xFE"sv);
    EXPECT_EQ(markOfEncoding(NSISOLatin1StringEncoding), "");
}

}  // namespace
