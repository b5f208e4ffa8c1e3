// SPDX-License-Identifier: Apache-2.0
// Tests of the boundaries of words, characters, sentences and lines.
#include "Foundation/TextBoundaries.h"

#include "Prelude.h"

namespace {

using Kind = TextBoundaries::Kind;

// The text with a bar at each boundary inside, and "*" behind each word.
std::string marked(Kind kind, NSString* language, NSString* text) {
    TextBoundaries boundaries(kind, language);
    boundaries.setString(text);
    std::string result;
    NSUInteger last = 0;
    for (NSUInteger place = boundaries.following(0); place != NSNotFound;
         place = boundaries.following(place)) {
        EXPECT_EQ(boundaries.preceding(place), last);
        EXPECT_TRUE(boundaries.isBoundary(place));
        EXPECT_TRUE(place == last + 1 || !boundaries.isBoundary(last + 1));
        result += text->substringWithRange({last, place - last})->UTF8String();
        if (boundaries.isWordBefore(place)) result += "*";
        if (place < text->length()) result += "|";
        last = place;
    }
    return result;
}

TEST(TextBoundaries, FollowTheRulesOfTheLanguage) {
    EXPECT_EQ(marked(Kind::Word, u"en"_ns, u"Don't stop, 3.5 times."_ns),
              "Don't*| |stop*|,| |3.5*| |times*|.");
    EXPECT_EQ(marked(Kind::Word, nullptr, u"สวัสดีชาวโลก"_ns), "สวัสดี*|ชาว*|โลก*");
    EXPECT_EQ(marked(Kind::Character, nullptr, u"e\u0301👩‍👩x"_ns), "e\u0301|👩‍👩|x");
    EXPECT_EQ(marked(Kind::Line, u"en"_ns, u"so-called (old) rules"_ns), "so-|called |(old) |rules");
    EXPECT_EQ(marked(Kind::Sentence, u"en"_ns, u"One. Two? Three"_ns), "One. |Two? |Three");
    EXPECT_EQ(marked(Kind::Word, u"no such language"_ns, u"a b"_ns), "a*| |b*");
}

TEST(TextBoundaries, StandAtTheEndsOfTheText) {
    TextBoundaries words(Kind::Word, u"en"_ns);
    EXPECT_EQ(words.following(0), NSNotFound);
    EXPECT_EQ(words.preceding(7), NSNotFound);
    EXPECT_TRUE(words.isBoundary(0));
    EXPECT_FALSE(words.isBoundary(1));
    words.setString(u"one two"_ns);
    EXPECT_EQ(words.following(7), NSNotFound);
    EXPECT_EQ(words.preceding(1000), 4u);
    EXPECT_TRUE(words.isBoundary(7));
    EXPECT_FALSE(words.isBoundary(8) || words.isWordBefore(8) || words.isWordBefore(0));
}

// Windows of the text that ICU is shown must not be seen in the answers, wherever their edges fall.
TEST(TextBoundaries, AreTheSameInLongTexts) {
    NSMutableString* text = NSMutableString::string();
    while (text->length() < 3000) text->appendString(u"emoji 🙂🙃 d'été, "_ns);
    TextBoundaries words(Kind::Word, u"fr"_ns);
    words.setString(text);
    std::vector<NSUInteger> forward, backward;
    for (NSUInteger place = 0; place != NSNotFound; place = words.following(place)) forward.push_back(place);
    for (NSUInteger place = text->length(); place != NSNotFound; place = words.preceding(place))
        backward.insert(backward.begin(), place);
    EXPECT_EQ(forward, backward);
    for (NSUInteger i = 1; i < forward.size(); ++i) {
        const NSUInteger inside = (forward[i - 1] + forward[i]) / 2;
        EXPECT_EQ(words.following(inside), forward[i]);
    }
    EXPECT_EQ(forward.size() - 1, text->length() / 18 * 8);
}

TEST(TextBoundaries, DirectionsComeFromLanguagesAndTheirScripts) {
    for (NSString* language : {u"ar"_ns, u"he_IL"_ns, u"fa"_ns, u"az_Arab"_ns})
        EXPECT_TRUE(isLanguageWrittenRightToLeft(language)) << language;
    for (NSString* language : {u"en"_ns, u"az"_ns, u""_ns, u"none such"_ns})
        EXPECT_FALSE(isLanguageWrittenRightToLeft(language)) << language;
    EXPECT_FALSE(isLanguageWrittenRightToLeft(nullptr));
}

}  // namespace
