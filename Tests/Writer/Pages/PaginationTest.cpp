// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/Pagination.h"

#include "Foundation/NSMutableAttributedString.h"
#include "NSTextStorage-PelvorAdditions.h"
#include "Prelude.h"
#include "Text/NSMutableParagraphStyle.h"

namespace {

constexpr float kLineHeight = 10;

// A text whose paragraphs are the words, with a line for each letter. Signs before a word are the paragraph's
// rules: "+" keeps it with the next one, "=" together, "!" begins a page; "/" is a page break.
Retained<NSTextStorage> textOf(const std::string& words) {
    auto text = NSTextStorage::initWithString(u""_ns);
    PageRules rules;
    std::u16string paragraph;
    const auto end = [&](char16_t mark) {
        if (paragraph.empty() && mark == u'\n') return;
        auto style = NSMutableParagraphStyle::init();
        style->setMinimumLineHeight(kLineHeight);
        style->setMaximumLineHeight(kLineHeight);
        auto ruled = WRSheetParagraphStyle::create(style, rules);
        auto* attributes = NSDictionary::of({{NSParagraphStyleAttributeName, ruled.get()}});
        paragraph.push_back(mark);
        text->appendAttributedString(
            NSAttributedString::initWithString_attributes(NSString::of(paragraph), attributes).get());
        rules = {};
        paragraph.clear();
    };
    for (char sign : words) {
        if (sign == '+')
            rules.isKeepWithNext = true;
        else if (sign == '=')
            rules.isKeepTogether = true;
        else if (sign == '!')
            rules.isPageBreakBefore = true;
        else if (sign == ' ' || sign == '/')
            end(sign == ' ' ? u'\n' : u'\f');
        else
            paragraph +=
                (paragraph.empty() ? u"" : u"\u2028") + std::u16string(1, static_cast<char16_t>(sign));
    }
    end(u'\n');
    return text;
}

// The letters of each page.
std::string pagesOf(const std::string& words, float room = 5 * kLineHeight, float width = 100) {
    auto storage = textOf(words);
    auto layoutManager = NSLayoutManager::init();
    storage->addLayoutManager(layoutManager);
    std::string pages;
    NSUInteger end = 0;
    Pagination pagination(storage, layoutManager, {width, room});
    for (std::size_t count = 1; !pagination.isComplete(); ++count) pagination.findPages(count);
    for (const PageText& page : pagination.pages()) {
        if (end > 0) pages += '|';
        EXPECT_EQ(page.range.location, end);
        end = NSMaxRange(page.range);
        for (NSUInteger i = page.range.location; i < end; ++i)
            if (const unichar unit = storage->string()->characterAtIndex(i); unit >= 'a' && unit <= 'z')
                pages += static_cast<char>(unit);
        EXPECT_TRUE(page.range.length == 0 || layoutManager->textContainerForGlyphAtIndex_effectiveRange(
                                                  page.range.location, nullptr) == page.container);
    }
    EXPECT_EQ(end, storage->length());
    return pages;
}

TEST(Pagination, DividesATextAmongPages) {
    const struct {
        const char *situation, *words, *pages;
    } cases[] = {
        {"Empty", "", ""},
        {"ExactlyFull", "a b c d e", "abcde"},
        {"OneLineMore", "a b c d e f", "abcde|f"},
        {"PageBreak", "a/b", "a|b"},
        {"PageBreakAtTheEnd", "a b/", "ab|"},
        {"PageBreakOfAFullPage", "a b c d e/f", "abcde|f"},
        {"OneLineAtTheEndOfAPage", "a b c d efg", "abcd|efg"},
        {"OneLineAtTheStartOfAPage", "a b cdef", "abcd|ef"},
        {"ThreeLinesStayTogether", "a b c def", "abc|def"},
        {"LongParagraph", "abcdefghijkl", "abcde|fghij|kl"},
        {"LongParagraphWithALineLeft", "abcdefghijk", "abcde|fghi|jk"},
        {"KeepTogether", "a b =cdef", "ab|cdef"},
        {"KeepTogetherLongerThanAPage", "a =bcdefgh", "a|bcdef|gh"},
        {"KeepWithNext", "a b c d +e f", "abcd|ef"},
        {"ChainOfThese", "a b +c +d +e f", "ab|cdef"},
        {"ChainThatFillsThePage", "+a +b +c +d +e f", "abcde|f"},
        {"KeepWithNextThatGivesUpItsLine", "a b c +d efg", "abc|defg"},
        {"KeepWithPageBreakBetween", "a +b/c", "ab|c"},
        {"BeginsAPage", "a !b c", "a|bc"},
        {"FirstBeginsAPage", "!a b", "ab"},
        {"AllBeginPages", "!a !b !c", "a|b|c"},
        {"BeginsAPageBehindAPageBreak", "a/!b", "a|b"},
        {"BeginsAPageBehindAFullOne", "a b c d +e !f", "abcde|f"},
        {"KeepWithOneThatBeginsAPage", "a +b !c", "ab|c"},
    };
    for (const auto& [situation, words, pages] : cases) EXPECT_EQ(pagesOf(words), pages) << situation;
    // However small the room is, each page gets a line.
    EXPECT_EQ(pagesOf("a bcd", 3), "a|b|c|d");
    EXPECT_EQ(pagesOf("+a =bc !d", 3), "a|b|c|d");
    EXPECT_EQ(pagesOf("a b", 5 * kLineHeight, 1), "ab");
}

TEST(Pagination, SetsHundredsOfPages) {
    std::string words;
    for (int i = 0; i < 3000; ++i) words += i % 5 ? "abc " : "+h ";
    const std::string pages = pagesOf(words, 45 * kLineHeight);
    const auto count = std::count(pages.begin(), pages.end(), '|') + 1;
    EXPECT_GE(count, 3000 * 13 / 5 / 45);
    EXPECT_LE(count, 3000 * 13 / 5 / 41);
    EXPECT_EQ(pages.find("h|"), pages.npos);
}

// However text is edited, and however far pages are found in between, the pages are those of the text as it
// is.
TEST(Pagination, FollowsEdits) {
    constexpr NSSize kRoom{100, 7 * kLineHeight};
    std::mt19937 random(7);
    const auto below = [&](NSUInteger count) {
        return count ? static_cast<NSUInteger>(random() % count) : 0;
    };
    const auto words = [&](NSUInteger count) {
        static const char* const kWords[] = {"a ",  "bc ", "+d ",        "efg ", "=hijk ",
                                             "!l ", "m/",  "nopqrstuv ", "w"};
        std::string text;
        for (NSUInteger i = 0; i < count; ++i) text += kWords[below(std::size(kWords))];
        return textOf(text);
    };
    const auto rangesOf = [](const Pagination& pagination) {
        std::vector<NSRange> ranges;
        for (const PageText& page : pagination.pages()) ranges.push_back(page.range);
        return ranges;
    };
    for (int round = 0; round < 30; ++round) {
        AutoreleasePool pool;
        auto storage = words(below(60));
        auto layoutManager = NSLayoutManager::init();
        storage->addLayoutManager(layoutManager);
        const auto purpose = round % 2 ? Pagination::Purpose::reading : Pagination::Purpose::writing;
        Pagination pagination(storage, layoutManager, kRoom, purpose);
        for (int edit = 0; edit < 40; ++edit) {
            pagination.findPages(below(8));
            const NSUInteger start = below(storage->length() + 1);
            const NSUInteger length = below(std::min(storage->length() - start + 1, edit % 8 ? 4u : 100u));
            auto added = words(below(edit % 8 ? 2 : 20));
            const auto delta = static_cast<NSInteger>(added->length()) - static_cast<NSInteger>(length);
            storage->replaceCharactersInRange_withAttributedString({start, length}, added);
            // The paragraph's style is made one over all of the paragraph.
            const NSUInteger end = start + added->length();
            const NSRange changed = paragraphRangeForRange(storage, {start, end - start});
            pagination.textDidChange(NSUnionRange(changed, {start, end - start}), delta);
            if (edit % 5) continue;
            pagination.findAllPages();
            auto copy = NSTextStorage::initWithAttributedString(storage);
            auto other = NSLayoutManager::init();
            copy->addLayoutManager(other);
            Pagination fresh(copy, other, kRoom, purpose);
            fresh.findAllPages();
            ASSERT_EQ(rangesOf(pagination), rangesOf(fresh)) << round << ", " << edit;
            ASSERT_EQ(layoutManager->textContainers()->count(), pagination.pages().size());
        }
    }
}

}  // namespace
