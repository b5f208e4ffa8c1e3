// SPDX-License-Identifier: Apache-2.0
#include "NSMutableString-PelvorAdditions.h"

#include "BaseLibrary.h"
#include "Foundation/NSCharacterSet.h"
#include "Prelude.h"
#include "Source/TextInPieces.h"

namespace {

// A text that counts its changes, and whose units are not in one piece for others.
class CountingText : public NSMutableString, NSMutableString::HiddenCreators {
    PELVOR_CLASS(CountingText, NSMutableString);

  public:
    NSUInteger length() override { return static_cast<NSUInteger>(text.size()); }
    unichar characterAtIndex(NSUInteger index) override { return text.at(index); }
    void replaceCharactersInRange_withString(NSRange range, NSString* string) override {
        ++changes;
        text.replace(range.location, range.length, string->toUTF16());
    }

    std::u16string text;
    int changes = 0;
};

PELVOR_DEFINE_CLASS(CountingText, baseLibrary) {}

using Change = std::function<void(NSMutableString*)>;

// What a change does to a platform string, which it must also do to any other.
std::u16string changed(std::u16string_view text, const Change& change, int changes) {
    auto plain = NSMutableString::of(text);
    change(plain);
    registerLibrary(baseLibrary);
    auto counting = make<CountingText>();
    counting->text = text;
    change(counting);
    EXPECT_EQ(counting->text, plain->toUTF16());
    EXPECT_EQ(counting->changes, changes) << NSString::of(text);
    return plain->toUTF16();
}

// The fuzz target StringAdditions compares changes of platform strings with models; here others change too,
// and no more often than need be.

TEST(LineEndings, AreAllReplaced) {
    const struct {
        std::u16string_view text, ending, result;
        int changes;
    } rows[] = {{u"a\r\nb\rc\nd", u"\n", u"a\nb\nc\nd", 2},
                {u"a\r\nb\rc\nd", u"\r\n", u"a\r\nb\r\nc\r\nd", 3},
                {u"a\nb\n", u"\n", u"a\nb\n", 0},
                {u"a\n\u0301b", u"\r", u"a\r\u0301b", 1},
                {u"0123456789012345678901234567890123456789\r\n012345\r", u"\n",
                 u"0123456789012345678901234567890123456789\n012345\n", 2}};
    for (auto& row : rows) {
        Change change = [&](NSMutableString* text) {
            replaceAllLineEndingsWithString(text, inPieces(row.ending));
        };
        EXPECT_EQ(changed(row.text, change, row.changes), row.result);
    }
}

TEST(Members, AreRemovedAndReplacedByCodePoints) {
    NSCharacterSet* set = NSCharacterSet::characterSetWithCharactersInString(u"ab\U0001F600"_ns);
    NSCharacterSet* vowels = NSCharacterSet::characterSetWithCharactersInString(u"aeiou"_ns);
    auto remove = [](NSCharacterSet* members) {
        return [=](NSMutableString* text) { removeCharactersInSet(text, members); };
    };
    auto replace = [&](NSMutableString* text) {
        replaceAllOccurrencesOfCharactersInSet_withString(text, set, inPieces(u"aba"));
    };
    EXPECT_EQ(changed(u"xaby\U0001F600z\U0001F601", remove(set), 3), u"xyz\U0001F601");
    EXPECT_EQ(changed(std::u16string{u'\xD83D', u'a', u'\xDE00'}, remove(set), 1), u"\U0001F600");
    EXPECT_EQ(changed(u"educational pneumonoultramicroscopic \u0434\U0001F600", remove(vowels), 16),
              u"dctnl pnmnltrmcrscpc \u0434\U0001F600");
    EXPECT_EQ(changed(u"xa\U0001F600", replace, 2), u"xabaaba");
    EXPECT_EQ(changed(u"xyz", replace, 0), u"xyz");
}

TEST(Occurrences, AreReplacedLiterallyInOneChange) {
    const struct {
        std::u16string_view text, target, replacement, result;
    } rows[] = {{u"aXbXc", u"X", u"--", u"a--b--c"},
                {u"abc", u"", u"-", u"abc"},
                {u"e\u0301", u"e", u"E", u"E\u0301"},
                {u"\u00E9", u"e\u0301", u"", u"\u00E9"}};
    for (auto& row : rows) {
        bool isAny = row.text != row.result;
        Change change = [&](NSMutableString* text) {
            EXPECT_EQ(replaceAllOccurrencesOfString_withString(text, inPieces(row.target),
                                                               inPieces(row.replacement)),
                      isAny);
        };
        EXPECT_EQ(changed(row.text, change, isAny), row.result);
    }
    auto append = [](NSMutableString* text) { appendCharacter(text, 0xD83D); };
    EXPECT_EQ(changed(u"a", append, 1), u"a\xD83D");
}

}  // namespace
