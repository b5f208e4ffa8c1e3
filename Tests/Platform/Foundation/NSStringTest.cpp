// SPDX-License-Identifier: Apache-2.0
// Tests of strings: making them, reading them, their parts and their identity.
#include "Foundation/NSString.h"

#include "Foundation/NSCharacterSet.h"
#include "Platform/Foundation/OwnCollections.h"

namespace {

TEST(NSStringTest, PrimitivesAndSubstringsReachEveryUnit) {
    for (NSString* string : everyKindOfString(u"aé😀")) {
        EXPECT_EQ(string->toUTF16(), u"aé😀");
        unichar buffer[4] = {};
        string->getCharacters_range(buffer, {4, 0});
        string->getCharacters_range(buffer, {1, 2});
        EXPECT_EQ(std::u16string_view(buffer, 3), std::u16string_view(u"é\xD83D\0", 3));
    }
    for (NSString* string : everyKindOfString(u"hello")) {
        EXPECT_EQ(shown(string->substringFromIndex(3), string->substringWithRange({1, 3}),
                        string->substringWithRange({0, 5})),
                  "lo ell hello");
        EXPECT_EQ(string->substringFromIndex(5)->length() + string->substringToIndex(0)->length(), 0u);
    }
}

TEST(NSStringTest, AllKindsOfStringsWithOneTextAreEqualAndHashAlike) {
    for (std::size_t length : {0u, 1u, 3u, 4u, 5u, 7u, 8u, 9u, 23u, 24u, 25u, 47u, 48u, 49u, 100u}) {
        std::u16string text(length, u'x'), other(length + 1, u'x');
        std::vector<NSString*> strings = everyKindOfString(text);
        for (NSString* string : strings) {
            EXPECT_TRUE(string->isEqual(strings[0]) && string->hash() == strings[0]->hash()) << length;
            EXPECT_FALSE(string->isEqualToString(NSString::of(other)));
            EXPECT_NE(string->hash(), NSString::of(other)->hash());
        }
        for (char16_t& unit : text) {
            unit = u'b';
            EXPECT_NE(NSString::of(text)->hash(), strings[0]->hash()) << length;
            unit = u'x';
        }
    }
    EXPECT_FALSE(u"a"_ns->isEqual(nullptr) || u"a"_ns->isEqual(make<NSObject>().get()));
    EXPECT_FALSE(u"é"_ns->isEqualToString(u"e\u0301"_ns));
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
    // Lone halves are replaced.
    NSString* halves = NSString::of(u"a\xD83Dz\xDE00");
    EXPECT_EQ(shown(halves->toUTF8(), halves->UTF8String(), halves->length()),
              "a\uFFFDz\uFFFD a\uFFFDz\uFFFD 4");
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

TEST(NSStringTest, JoiningPaddingAndReplacing) {
    NSString* text = u"ab"_ns;
    EXPECT_EQ(shown(text->stringByAppendingString(u"cd"_ns), text->stringByAppendingFormat(u"%d"_ns, 7)),
              "abcd ab7");
    auto padded = [=](NSUInteger length, NSUInteger index) {
        return text->stringByPaddingToLength_withString_startingAtIndex(length, u"123"_ns, index);
    };
    EXPECT_EQ(shown(padded(7, 1), padded(1, 0)), "ab23123 a");
    auto replaced = [](NSString* in, NSString* target, NSString* with) {
        return in->stringByReplacingOccurrencesOfString_withString(target, with);
    };
    EXPECT_EQ(shown(replaced(u"aXbXX"_ns, u"X"_ns, u"--"_ns), replaced(u"aaa"_ns, u"aa"_ns, u"b"_ns),
                    replaced(u"abc"_ns, u""_ns, u"-"_ns)),
              "a--b---- ba abc");
}

TEST(NSStringTest, SplittingKeepsEmptyPieces) {
    expectAll({"a,b,c/, -> a|b|c|", ",a,,/, -> |a|||", "/, -> |", "abc/ -> abc|", "a, b/,  -> a|b|",
               "aaa/aa -> |a|"},
              [](const std::string& row) {
                  auto [text, separator] = halves(row);
                  std::string pieces;
                  for (id piece : text->componentsSeparatedByString(separator)) pieces += shown(piece) + "|";
                  return pieces;
              });
}

TEST(NSStringTest, TrimmingKeepsWhatStandsInside) {
    NSCharacterSet* set = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    auto trimmed = [&](const std::string& text) {
        return NSString::ofUTF8(text)->stringByTrimmingCharactersInSet(set);
    };
    expectAll({" \t a b\u2029\n -> a b", "\n \n -> ", " -> "}, trimmed);
    set = NSCharacterSet::characterSetWithCharactersInString(u"😀"_ns);
    expectAll({"😀a😀😁😀 -> a😀😁"}, trimmed);
}

TEST(NSStringTest, CaseNeedsNoLanguageAndMayChangeTheLengthAsNormalFormsMay) {
    EXPECT_EQ(shown(u"Straße ﬁx iı 𐐨"_ns->uppercaseString()), "STRASSE FIX II 𐐀");
    EXPECT_EQ(shown(u"ÀÉ ΑΣ İ"_ns->lowercaseString()), "àé ας i̇");
    EXPECT_EQ(shown(u"the quick-brown FOX isn't ǆ"_ns->capitalizedString()), "The Quick-Brown Fox Isn't ǅ");
    std::u16string growing(1000, u'ß');
    EXPECT_EQ(NSString::of(growing)->uppercaseString()->length(), 2000u);
    EXPECT_EQ(u"é가"_ns->decomposedStringWithCanonicalMapping()->toUTF16(), u"e\u0301\u1100\u1161");
    EXPECT_EQ(u"e\u0301\u1100\u1161"_ns->precomposedStringWithCanonicalMapping()->toUTF16(), u"é가");
}

TEST(NSStringTest, NumbersAndTruthAreReadFromTheStart) {
    expectAll({"42 -> 42", " \t\n-17 apples -> -17", "+5 -> 5", " -> 0", "x1 -> 0", "- 1 -> 0", "1e3 -> 1",
               "1,000 -> 1", "٣ -> 0", "\u3000\u00857 -> 7", "2147483648 -> 2147483647",
               "-99999999999999999999 -> -2147483648"},
              [](const std::string& text) { return NSString::ofUTF8(text)->intValue(); });
    expectAll({"-9223372036854775808 -> -9223372036854775808", "9223372036854775807 -> 9223372036854775807"},
              [](const std::string& text) { return NSString::ofUTF8(text)->longLongValue(); });
    expectAll(
        {"1.5 -> 1.5", "  -.25x -> -0.25", "3. -> 3", "1e3 -> 1000", "1E-2 -> 0.01", "1e -> 1", "1e+ -> 1",
         "1,5 -> 1", ". -> 0", "inf -> 0", "0x10 -> 0", "1e400 -> inf", "-1e400 -> -inf", "1e-400 -> 0",
         "0e99999 -> 0", "1e99999999999999999999 -> inf", "1e-99999999999999999999 -> 0"},
        [](const std::string& text) { return NSString::ofUTF8(text)->doubleValue(); });
    EXPECT_EQ(u"0.1"_ns->doubleValue(), 0.1);
    EXPECT_EQ(u"0.1"_ns->floatValue(), 0.1f);
    EXPECT_EQ(u"1e39"_ns->floatValue(), std::numeric_limits<float>::infinity());
    expectAll({"YES -> 1", "y -> 1", " true -> 1", "T -> 1", "1 -> 1", "-007 -> 1", "99999999999 -> 1",
               "NO -> 0", " -> 0", "0 -> 0", "false -> 0", "000 -> 0", "x1 -> 0"},
              [](const std::string& text) { return NSString::ofUTF8(text)->boolValue(); });
}

TEST(NSStringTest, IsAtHomeInMessagesAndStreams) {
    auto* made = send<NSString*>(NSString::classObject(), "stringWithFormat:"_sel, u"%d%%"_ns);
    EXPECT_EQ(shown(made, u"é"_ns, static_cast<NSString*>(nullptr)), "(missing)% é (null)");
    EXPECT_EQ(shown(NSRange{3, 5}, NSRange{NSNotFound, 0}, "hasPrefix:"_sel, SEL()),
              "{3, 5} {NSNotFound, 0} hasPrefix: (null)");
    EXPECT_EQ(::testing::PrintToString(NSRange{3, 5}), "{3, 5}");
    EXPECT_EQ(u"abc"_ns->description(), u"abc"_ns);
}

}  // namespace
