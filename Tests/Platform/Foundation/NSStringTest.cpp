// SPDX-License-Identifier: Apache-2.0
// Tests of strings: making them, reading them, their parts and their identity.
#include "Foundation/NSString.h"

#include <cstdlib>
#include <sstream>

#include "Foundation/NSCharacterSet.h"
#include "FoundationTestSupport.h"
#include "Prelude.h"

namespace pelvor {
namespace {

TEST(NSStringTest, PrimitivesReachEveryUnitAndNoFurther) {
    for (NSString* string : everyKindOfString(u"aé😀")) {
        EXPECT_EQ(string->length(), 4u);
        EXPECT_EQ(string->characterAtIndex(0), u'a');
        EXPECT_EQ(string->characterAtIndex(3), u"😀"[1]);
        expectRaises(NSRangeException, "index (4) beyond bounds (4)", [&] { string->characterAtIndex(4); });

        unichar buffer[4] = {};
        string->getCharacters_range(buffer, {4, 0});
        string->getCharacters_range(buffer, {1, 2});
        EXPECT_EQ(std::u16string_view(buffer, 3), std::u16string_view(u"é\xD83D\0", 3));
        expectRaises(NSRangeException, [&] { string->getCharacters_range(buffer, {3, 2}); });
        expectRaises(NSRangeException, [&] { string->getCharacters_range(buffer, {0xFFFFFFFF, 2}); });
    }
}

TEST(NSStringTest, AllKindsOfStringsWithOneTextAreEqualAndHashAlike) {
    for (std::size_t length : {0u, 1u, 3u, 4u, 7u, 8u, 9u, 23u, 24u, 25u, 47u, 100u}) {
        std::u16string text(length, u'x'), other(length + 1, u'x');
        std::vector<NSString*> strings = everyKindOfString(text);
        for (NSString* string : strings) {
            EXPECT_TRUE(string->isEqual(strings[0])) << length;
            EXPECT_EQ(string->hash(), strings[0]->hash()) << length;
            EXPECT_FALSE(string->isEqualToString(NSString::of(other)));
            EXPECT_NE(string->hash(), NSString::of(other)->hash());
        }
    }
    EXPECT_FALSE(u"a"_ns->isEqual(nullptr));
    EXPECT_FALSE(u"a"_ns->isEqual(NSObject::init().get()));
    EXPECT_FALSE(u"é"_ns->isEqualToString(u"e\u0301"_ns));
}

TEST(NSStringTest, EveryUnitCountsInTheHash) {
    for (std::size_t length : {1u, 5u, 8u, 12u, 24u, 30u, 100u}) {
        std::u16string text(length, u'a');
        auto hash = NSString::of(text)->hash();
        for (std::size_t i = 0; i < length; ++i) {
            std::u16string changed = text;
            changed[i] = u'b';
            EXPECT_NE(NSString::of(changed)->hash(), hash) << length << " units, at " << i;
        }
    }
}

TEST(NSStringTest, CopiesAreImmutableAndImmutableStringsTheirOwnCopies) {
    auto mutableString = NSMutableString::initWithString(u"text"_ns);
    auto copy = mutableString->copy();
    mutableString->appendString(u"!"_ns);
    EXPECT_EQ(copy->toUTF8(), "text");
    EXPECT_EQ(copy->copy().get(), copy.get());
    EXPECT_EQ(u"literal"_ns->copy().get(), u"literal"_ns);
    auto second = copy->mutableCopy();
    second->setString(u"other"_ns);
    EXPECT_EQ(copy->toUTF8(), "text");
}

TEST(NSStringTest, UTF8IsReadStrictlyOrMended) {
    EXPECT_EQ(NSString::stringWithUTF8String("aé€😀")->toUTF16(), u"aé€😀");
    for (const char* invalid : {"\xC3", "a\x80", "\xC0\x80", "\xED\xA0\x80", "\xF5\x80\x80\x80", "\xE2\x82"})
        EXPECT_EQ(NSString::stringWithUTF8String(invalid), nullptr);
    EXPECT_EQ(NSString::ofUTF8("a\x80z\xE2\x82")->toUTF16(), u"a\uFFFDz\uFFFD");
    EXPECT_EQ(NSString::ofUTF8(std::string_view("a\0b", 3))->length(), 3u);
    expectRaises(NSInvalidArgumentException, [] { NSString::stringWithUTF8String(nullptr); });
}

TEST(NSStringTest, LoneHalvesAreReplacedOnTheWayToUTF8) {
    NSString* string = NSString::of(std::u16string(u"a\xD83Dz\xDE00"));
    EXPECT_EQ(string->toUTF8(), "a\uFFFDz\uFFFD");
    EXPECT_STREQ(string->UTF8String(), "a\uFFFDz\uFFFD");
    EXPECT_EQ(string->length(), 4u);
}

TEST(NSStringTest, UnitsThatTheCallerKeepsAreNotCopied) {
    unichar units[] = {u'a', u'b', u'c'};
    auto borrowed = NSString::initWithCharactersNoCopy_length_freeWhenDone(units, 3, false);
    EXPECT_EQ(borrowed->contiguousCharacters(), units);
    EXPECT_EQ(borrowed->copy()->toUTF8(), "abc");
    EXPECT_NE(borrowed->copy()->contiguousCharacters(), units);

    auto* made = static_cast<unichar*>(std::malloc(sizeof units));
    std::copy_n(units, 3, made);
    EXPECT_EQ(NSString::initWithCharactersNoCopy_length_freeWhenDone(made, 3, true)->toUTF8(), "abc");
}

TEST(NSStringTest, Substrings) {
    for (NSString* string : everyKindOfString(u"hello")) {
        EXPECT_EQ(string->substringFromIndex(3)->toUTF8(), "lo");
        EXPECT_EQ(string->substringWithRange({1, 3})->toUTF8(), "ell");
        EXPECT_EQ(string->substringWithRange({0, 5})->toUTF8(), "hello");
        for (NSString* empty : {string->substringFromIndex(5), string->substringToIndex(0)})
            EXPECT_EQ(empty->length(), 0u);
        expectRaises(NSRangeException, [&] { string->substringFromIndex(6); });
        expectRaises(NSRangeException, [&] { string->substringToIndex(6); });
        expectRaises(NSRangeException, [&] { string->substringWithRange({3, 0xFFFFFFFF}); });
    }
}

TEST(NSStringTest, JoiningPaddingAndReplacing) {
    EXPECT_EQ(u"ab"_ns->stringByAppendingString(u"cd"_ns)->toUTF8(), "abcd");
    EXPECT_EQ(u"ab"_ns->stringByAppendingFormat(u"%d"_ns, 7)->toUTF8(), "ab7");
    expectRaises(NSInvalidArgumentException, [] { u"ab"_ns->stringByAppendingString(nullptr); });
    auto padded = [](NSUInteger length, NSUInteger index) {
        return u"ab"_ns->stringByPaddingToLength_withString_startingAtIndex(length, u"123"_ns, index)
            ->toUTF8();
    };
    EXPECT_EQ(padded(7, 1), "ab23123");
    EXPECT_EQ(padded(1, 0), "a");
    expectRaises(NSRangeException, [&] { padded(3, 3); });

    auto replaced = [](NSString* in, NSString* target, NSString* with) {
        return in->stringByReplacingOccurrencesOfString_withString(target, with)->toUTF8();
    };
    EXPECT_EQ(replaced(u"aXbXX"_ns, u"X"_ns, u"--"_ns), "a--b----");
    EXPECT_EQ(replaced(u"aaa"_ns, u"aa"_ns, u"b"_ns), "ba");
    EXPECT_EQ(replaced(u"abc"_ns, u""_ns, u"-"_ns), "abc");
}

TEST(NSStringTest, SplittingKeepsEmptyPieces) {
    struct {
        NSString *text, *separator;
        const char* pieces;
    } cases[] = {{u"a,b,c"_ns, u","_ns, "a|b|c|"}, {u",a,,"_ns, u","_ns, "|a|||"},
                 {u""_ns, u","_ns, "|"},           {u"abc"_ns, u""_ns, "abc|"},
                 {u"a, b"_ns, u", "_ns, "a|b|"},   {u"aaa"_ns, u"aa"_ns, "|a|"}};
    for (auto& c : cases) {
        std::string pieces;
        for (id piece : c.text->componentsSeparatedByString(c.separator))
            pieces += cast<NSString>(piece)->toUTF8() + "|";
        EXPECT_EQ(pieces, c.pieces) << c.text;
    }
    expectRaises(NSInvalidArgumentException, [] { u"a"_ns->componentsSeparatedByString(nullptr); });
}

TEST(NSStringTest, TrimmingKeepsWhatStandsInside) {
    NSCharacterSet* space = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    auto trimmed = [](NSString* string, NSCharacterSet* set) {
        return string->stringByTrimmingCharactersInSet(set)->toUTF8();
    };
    EXPECT_EQ(trimmed(u" \t a b\u2029\n"_ns, space), "a b");
    EXPECT_EQ(trimmed(u"\n \n"_ns, space), "");
    EXPECT_EQ(trimmed(u""_ns, space), "");
    NSCharacterSet* faces = NSCharacterSet::characterSetWithCharactersInString(u"😀"_ns);
    EXPECT_EQ(trimmed(u"😀a😀😁😀"_ns, faces), "a😀😁");
}

TEST(NSStringTest, CaseNeedsNoLanguageAndMayChangeTheLength) {
    EXPECT_EQ(u"Straße ﬁx iı"_ns->uppercaseString()->toUTF8(), "STRASSE FIX II");
    EXPECT_EQ(u"ÀÉ ΑΣ İ"_ns->lowercaseString()->toUTF8(), "àé ας i̇");
    EXPECT_EQ(u"the quick-brown FOX isn't ǆ"_ns->capitalizedString()->toUTF8(),
              "The Quick-Brown Fox Isn't ǅ");
    EXPECT_EQ(u"𐐨"_ns->uppercaseString()->toUTF8(), "𐐀");
    std::u16string growing(1000, u'ß');
    EXPECT_EQ(NSString::of(growing)->uppercaseString()->length(), 2000u);
}

TEST(NSStringTest, NormalForms) {
    EXPECT_EQ(u"é가"_ns->decomposedStringWithCanonicalMapping()->toUTF16(), u"e\u0301\u1100\u1161");
    EXPECT_EQ(u"e\u0301\u1100\u1161"_ns->precomposedStringWithCanonicalMapping()->toUTF16(), u"é가");
}

TEST(NSStringTest, IntegersAreReadFromTheStart) {
    constexpr int kLeast = std::numeric_limits<int>::min(), kMost = std::numeric_limits<int>::max();
    const std::pair<NSString*, int> cases[] = {
        // clang-format off
        {u"42"_ns, 42}, {u" \t\n-17 apples"_ns, -17}, {u"+5"_ns, 5}, {u""_ns, 0}, {u"x1"_ns, 0}, {u"- 1"_ns, 0},
        {u"2147483648"_ns, kMost}, {u"-99999999999999999999"_ns, kLeast}, {u"1e3"_ns, 1}, {u"1,000"_ns, 1},
        {u"٣"_ns, 0},
        // clang-format on
    };
    for (auto [text, value] : cases) EXPECT_EQ(text->intValue(), value) << text;
    EXPECT_EQ(u"-9223372036854775808"_ns->longLongValue(), std::numeric_limits<long long>::min());
    EXPECT_EQ(u"9223372036854775808"_ns->longLongValue(), std::numeric_limits<long long>::max());
}

TEST(NSStringTest, FloatingNumbersAreReadFromTheStart) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const std::pair<NSString*, double> cases[] = {
        // clang-format off
        {u"1.5"_ns, 1.5}, {u"  -.25x"_ns, -0.25}, {u"3."_ns, 3}, {u"1e3"_ns, 1000}, {u"1E-2"_ns, 0.01},
        {u"1e"_ns, 1}, {u"1e+"_ns, 1}, {u"1,5"_ns, 1}, {u"."_ns, 0}, {u"inf"_ns, 0}, {u"0x10"_ns, 0},
        {u"1e400"_ns, kInfinity}, {u"-1e400"_ns, -kInfinity}, {u"1e-400"_ns, 0}, {u"0.1"_ns, 0.1},
        {u"0e99999"_ns, 0}, {u"1e99999999999999999999"_ns, kInfinity}, {u"1e-99999999999999999999"_ns, 0},
        // clang-format on
    };
    for (auto [text, value] : cases) EXPECT_EQ(text->doubleValue(), value) << text;
    EXPECT_EQ(u"0.1"_ns->floatValue(), 0.1f);
    EXPECT_EQ(u"1e39"_ns->floatValue(), std::numeric_limits<float>::infinity());
}

TEST(NSStringTest, TruthIsAYesOrANumber) {
    for (NSString* string :
         {u"YES"_ns, u"y"_ns, u" true"_ns, u"T"_ns, u"1"_ns, u"-007"_ns, u"99999999999"_ns})
        EXPECT_TRUE(string->boolValue()) << string;
    for (NSString* string : {u"NO"_ns, u""_ns, u"0"_ns, u"false"_ns, u"000"_ns, u"x1"_ns})
        EXPECT_FALSE(string->boolValue()) << string;
}

TEST(NSStringTest, IsAtHomeInMessagesAndStreams) {
    EXPECT_EQ(send<NSUInteger>(u"abc"_ns, "length"_sel), 3u);
    auto* made = send<NSString*>(NSString::classObject(), "stringWithFormat:"_sel, u"%d%%"_ns);
    EXPECT_EQ(made->toUTF8(), "(missing)%");
    auto* changing = send<NSString*>(NSMutableString::classObject(), "stringWithString:"_sel, made);
    EXPECT_TRUE(changing->isKindOfClass(NSMutableString::classObject()));
    std::ostringstream stream;
    stream << u"é"_ns << static_cast<NSString*>(nullptr);
    EXPECT_EQ(stream.str(), "é(null)");
    EXPECT_EQ(u"abc"_ns->description(), u"abc"_ns);
}

}  // namespace
}  // namespace pelvor
