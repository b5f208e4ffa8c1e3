// SPDX-License-Identifier: Apache-2.0
// Tests of finding out which encoding bytes are in.
#include "Foundation/EncodingDetection.h"

#include "Prelude.h"

namespace {

using namespace std::string_view_literals;

TEST(EncodingDetectionTest, TextIsGuessedWithItsLanguage) {
    constexpr std::u16string_view kRussian =
        u"Все люди рождаются свободными и равными в своём достоинстве и правах. Они наделены разумом и "
        u"совестью "
        u"и должны поступать в отношении друг друга в духе братства.";
    constexpr std::u16string_view kJapanese =
        u"すべての人間は、生れながらにして自由であり、かつ、尊厳と権利とについて平等である。人間は、理性と良"
        u"心とを"
        u"授けられており、互いに同胞の精神をもって行動しなければならない。";
    constexpr std::u16string_view kKorean =
        u"모든 인간은 태어날 때부터 자유로우며 그 존엄과 권리에 있어 동등하다. 인간은 천부적으로 이성과 "
        u"양심을 "
        u"부여받았으며 서로 형제애의 정신으로 행동하여야 한다.";
    constexpr std::u16string_view kHebrew =
        u"כל בני האדם נולדו בני חורין ושווים בערכם ובזכויותיהם. כולם חוננו בתבונה ובמצפון, לפיכך חובה עליהם "
        u"לנהוג "
        u"איש ברעהו ברוח של אחווה.";
    const struct {
        const char* name;
        std::u16string_view text;
        const char* language;
    } rows[] = {
        {"windows-1251", kRussian, "ru"}, {"koi8-r", kRussian, "ru"},      {"utf-8", kRussian, ""},
        {"utf-16le", kRussian, ""},       {"shift_jis", kJapanese, "ja"},  {"euc-jp", kJapanese, "ja"},
        {"euc-kr", kKorean, "ko"},        {"windows-1255", kHebrew, "he"},
    };
    for (const auto& row : rows) {
        const NSStringEncoding encoding = encodingForName(row.name);
        std::string bytes = *encodeUnits(row.text, encoding, EncodingLoss::allowed);
        if (row.name == "utf-16le"sv) bytes.insert(0, markOfEncoding(encoding));
        const std::vector<EncodingGuess> guesses = detectEncodings(bytes);
        ASSERT_FALSE(guesses.empty()) << row.name;
        EXPECT_EQ(ianaNameOfEncoding(guesses[0].encoding), row.name);
        EXPECT_EQ(guesses[0].language, row.language) << row.name;
        EXPECT_GT(guesses[0].confidence, 30) << row.name;
    }
}

// Alphabets and the units of wide text tell what the statistics alone do not.
TEST(EncodingDetectionTest, TextIsGuessedByItsLetters) {
    const struct {
        const char* name;
        std::u16string_view text;
    } rows[] = {
        {"windows-1257", u"Rytą virš upės tvyrojo rūkas, ir tolimas krantas atrodė arčiau"},
        {"ibm852", u"Rano nad rzeką stała mgła i drugi brzeg wydawał się bliższy"},
        {"x-mac-cyrillic", u"Утром над рекой стоял туман, и дальний берег казался ближе"},
        {"windows-874", u"ตอนเช้ามีหมอกปกคลุมแม่น้ำ และฝั่งตรงข้ามดูใกล้กว่าที่เป็นจริง"},
        {"utf-16le", u"朝、川の上には霧が立ちこめ、向こう岸は近く見えた。"},
        {"utf-16be", u"아침에 강 위에는 안개가 끼어 있었고"},
        {"utf-16le", u"早晨河面上起了雾，对岸看起来比实际上更近。\n"},
        {"utf-16be", u"ตอนเช้ามีหมอก\n"},
        {"utf-32le", u"h🐈"},
    };
    for (const auto& row : rows) {
        const auto guesses = detectEncodings(encodeUnits(row.text, encodingForName(row.name)).value());
        ASSERT_FALSE(guesses.empty()) << row.name;
        EXPECT_EQ(ianaNameOfEncoding(guesses[0].encoding), row.name);
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
