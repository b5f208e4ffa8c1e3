// SPDX-License-Identifier: Apache-2.0
// Tests of strings that change.
#include "Foundation/NSMutableString.h"
#include "Platform/Foundation/Messages.h"

namespace {

TEST(NSMutableStringTest, ReplacesInsertsAndDeletesAlsoByItself) {
    auto string = NSMutableString::initWithString(u"hello"_ns);
    expectSteps(string.get(),
                {"replaceCharactersInRange:withString: 1,3 'u -> huo", "insertString:atIndex: 'll 2 -> hullo",
                 "insertString:atIndex: '! 5 -> hullo!", "deleteCharactersInRange: 0,1 -> ullo!",
                 "setString: ' -> ", "appendString: 'abc -> abc", "appendString: . -> abcabc",
                 "insertString:atIndex: . 1 -> aabcabcbcabc", "setString: . -> aabcabcbcabc",
                 "replaceCharactersInRange:withString: 0,12 . -> aabcabcbcabc",
                 "replaceOccurrencesOfString:withString:options:range: . . 0 0,12 -> aabcabcbcabc"},
                [](NSString* each) { return each->toUTF8(); });
    string->appendFormat(u" %d"_ns, 42);
    string->appendCharacters_length(u"xyz", 2);
    EXPECT_EQ(string->toUTF8(), "aabcabcbcabc 42xy");
}

TEST(NSMutableStringTest, ReplacingOccurrences) {
    auto replaced = [](NSStringCompareOptions options, NSRange range, const std::string& row) {
        NSArray* parts = NSString::ofUTF8(row)->componentsSeparatedByString(u"/"_ns);
        auto part = [&](NSUInteger index) { return cast<NSString>(parts->objectAtIndex(index)); };
        auto string = NSMutableString::initWithString(part(0));
        if (range.location == NSNotFound) range = {0, string->length()};
        NSUInteger count =
            string->replaceOccurrencesOfString_withString_options_range(part(1), part(2), options, range);
        return shown(count, string);
    };
    auto expectReplaced = [=](NSStringCompareOptions options, std::initializer_list<std::string_view> rows) {
        expectAll(rows, [=](const std::string& row) { return replaced(options, {NSNotFound, 0}, row); });
    };
    // The text, what is replaced and by what, how often, and what becomes of it.
    expectReplaced(0, {"a.b.c/./-- -> 2 a--b--c", "aaaaa/aa/b -> 2 bba", "ée\u0301/é/e -> 2 ee",
                       "abc/x/y -> 0 abc", "abc//y -> 0 abc"});
    expectReplaced(NSBackwardsSearch, {"aaaaa/aa/b -> 2 abb"});
    expectReplaced(NSAnchoredSearch, {"aaa/a/b -> 1 baa"});
    expectReplaced(NSAnchoredSearch | NSBackwardsSearch, {"aaa/a/b -> 1 aab"});
    expectReplaced(NSCaseInsensitiveSearch, {"AbA/a/ -> 2 b"});
    EXPECT_EQ(replaced(0, {1, 1}, "aaa/a/aa"), "1 aaaa");
}

// A subclass of one's own has only the primitives.
class LoggedString : public NSMutableString, NSMutableString::HiddenCreators {
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
    EXPECT_EQ(shown(string, string->copy(), string->changes), "bc-dEf bc-dEf 5");
    EXPECT_EQ(string->hash(), u"bc-dEf"_ns->hash());
}

}  // namespace
