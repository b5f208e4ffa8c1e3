// SPDX-License-Identifier: Apache-2.0
// Tests of strings that change.
#include "Foundation/NSMutableString.h"

#include "FoundationTestSupport.h"
#include "Prelude.h"

namespace pelvor {
namespace {

TEST(NSMutableStringTest, ReplacingInsertingAndDeleting) {
    auto string = NSMutableString::initWithString(u"hello"_ns);
    string->replaceCharactersInRange_withString({1, 3}, u"u"_ns);
    string->insertString_atIndex(u"ll"_ns, 2);
    string->insertString_atIndex(u"!"_ns, 5);
    EXPECT_EQ(string->toUTF8(), "hullo!");
    string->deleteCharactersInRange({0, 1});
    string->appendFormat(u" %d"_ns, 42);
    string->appendCharacters_length(u"xyz", 2);
    EXPECT_EQ(string->toUTF8(), "ullo! 42xy");
    string->setString(u""_ns);
    EXPECT_EQ(string->length(), 0u);
}

TEST(NSMutableStringTest, ARangeOutsideOrNoStringChangesNothing) {
    auto string = NSMutableString::initWithString(u"abc"_ns);
    expectRaises(NSRangeException, [&] { string->replaceCharactersInRange_withString({2, 2}, u"x"_ns); });
    expectRaises(NSRangeException, [&] { string->deleteCharactersInRange({1, 0xFFFFFFFF}); });
    expectRaises(NSRangeException, [&] { string->insertString_atIndex(u"x"_ns, 4); });
    expectRaises(NSInvalidArgumentException, [&] { string->appendString(nullptr); });
    expectRaises(NSInvalidArgumentException, [&] { string->setString(nullptr); });
    expectRaises(NSInvalidArgumentException, [&] { string->insertString_atIndex(nullptr, 0); });
    EXPECT_EQ(string->toUTF8(), "abc");
}

TEST(NSMutableStringTest, MayBeItsOwnArgument) {
    auto string = NSMutableString::initWithString(u"abc"_ns);
    string->appendString(string);
    string->insertString_atIndex(string, 1);
    EXPECT_EQ(string->toUTF8(), "aabcabcbcabc");
    string->setString(string);
    string->replaceCharactersInRange_withString({0, 12}, string);
    EXPECT_EQ(string->length(), 12u);
    EXPECT_EQ(string->replaceOccurrencesOfString_withString_options_range(string, string, 0, {0, 12}), 1u);
}

TEST(NSMutableStringTest, ReplacingOccurrences) {
    struct {
        const char16_t *text, *target, *replacement;
        NSStringCompareOptions options;
        NSRange range;
        NSUInteger count;
        const char* expected;
    } cases[] = {
        {u"a.b.c", u".", u"--", 0, {0, 5}, 2, "a--b--c"},
        {u"aaaaa", u"aa", u"b", 0, {0, 5}, 2, "bba"},
        {u"aaaaa", u"aa", u"b", NSBackwardsSearch, {0, 5}, 2, "abb"},
        {u"aaa", u"a", u"aa", 0, {1, 1}, 1, "aaaa"},
        {u"aaa", u"a", u"b", NSAnchoredSearch, {0, 3}, 1, "baa"},
        {u"aaa", u"a", u"b", NSAnchoredSearch | NSBackwardsSearch, {0, 3}, 1, "aab"},
        {u"AbA", u"a", u"", NSCaseInsensitiveSearch, {0, 3}, 2, "b"},
        {u"ée\u0301", u"é", u"e", 0, {0, 3}, 2, "ee"},
        {u"abc", u"x", u"y", 0, {0, 3}, 0, "abc"},
        {u"abc", u"", u"y", 0, {0, 3}, 0, "abc"},
    };
    for (auto& c : cases) {
        NSMutableString* string = NSMutableString::of(c.text);
        NSUInteger count = string->replaceOccurrencesOfString_withString_options_range(
            NSString::of(c.target), NSString::of(c.replacement), c.options, c.range);
        EXPECT_EQ(count, c.count) << c.expected;
        EXPECT_EQ(string->toUTF8(), c.expected);
    }
}

// A subclass of one's own has only the primitives.
class LoggedString : public NSMutableString {
    PELVOR_CLASS(LoggedString, NSMutableString);

  public:
    NSUInteger length() override { return static_cast<NSUInteger>(text.size()); }
    unichar characterAtIndex(NSUInteger index) override { return text.at(index); }
    void replaceCharactersInRange_withString(NSRange range, NSString* string) override {
        text.replace(range.location, range.length, string->toUTF16());
        ++changes;
    }

    std::u16string text = u"abc";
    int changes = 0;
};
PELVOR_DEFINE_CLASS(LoggedString, foundationLibrary) {}

TEST(NSMutableStringTest, EveryChangeStandsOnTheOnePrimitive) {
    auto string = make<LoggedString>();
    string->appendString(u"de"_ns);
    string->append(u"f");
    string->insertString_atIndex(u"-"_ns, 3);
    string->deleteCharactersInRange({0, 1});
    string->replaceOccurrencesOfString_withString_options_range(u"e"_ns, u"E"_ns, 0, {0, 6});
    EXPECT_EQ(string->toUTF8(), "bc-dEf");
    EXPECT_EQ(string->changes, 5);
    EXPECT_EQ(string->hash(), u"bc-dEf"_ns->hash());
    EXPECT_EQ(string->copy()->toUTF8(), "bc-dEf");
}

}  // namespace
}  // namespace pelvor
