// SPDX-License-Identifier: Apache-2.0
// Somebody who types, selects, formats, undoes and redoes at random, beside what must come out of it.
#include "FormatScope.h"
#include "RandomSteps.h"
#include "Text/NSLayoutManager.h"

namespace {

struct EditingTest : ::testing::Test, FormatScope {
    EditingTest() : FormatScope(u"Dear Anna,\nhow are you?\n"_ns) {
        window->changeSettings(smallPages(20));
        view->undoManager()->removeAllActions();
        screen.turn();
    }
    NSUInteger below(NSUInteger count) { return static_cast<NSUInteger>(random() % count); }
    void command(const char* name) { send(view, registerSelector(name), id(nullptr)); }
    Retained<NSAttributedString> text() { return view->textStorage()->copy(); }

    void formatSomething() {
        static const char* const kFormats[] = {
            "toggleBold:",     "toggleUnderline:",        "makeTextBigger:",         "increaseIndent:",
            "decreaseIndent:", "takeParagraphStyleFrom:", "takeCharacterStyleFrom:", "clearFormats:"};
        static NSString* const kNames[] = {u"heading 1"_ns, u"quote"_ns, u"code"_ns, u"strong"_ns};
        NSString* name = kNames[below(std::size(kNames))];
        choose(registerSelector(kFormats[below(std::size(kFormats))]), 0, name);
    }
    void doSomething() {
        static const char16_t* const kTexts[] = {u"a",  u"word ",   u"é",  u"שלום",        u"\U0001F600",
                                                 u"fi", u"e\u0301", u"\n", u"Two words. ", u"\t"};
        static const unichar kKeys[] = {NSDeleteCharacter,      NSDeleteCharacter,       NSDeleteFunctionKey,
                                        NSLeftArrowFunctionKey, NSRightArrowFunctionKey, NSUpArrowFunctionKey,
                                        NSDownArrowFunctionKey, NSHomeFunctionKey,       NSEndFunctionKey,
                                        NSPageUpFunctionKey,    NSPageDownFunctionKey};
        static const char* const kCommands[] = {
            "alignCenter:",   "alignLeft:", "alignJustified:", "selectWord:", "transpose:",         "cut:",
            "uppercaseWord:", "paste:",     "copy:",           "paste:",      "deleteToEndOfLine:", "yank:"};
        const NSUInteger what = below(20);
        if (what < 10) return screen.type(kTexts[below(std::size(kTexts))]);
        if (what < 16) {
            const NSUInteger modifiers = below(3)   ? 0
                                         : below(2) ? NSShiftKeyMask
                                                    : NSShiftKeyMask | NSCommandKeyMask;
            return screen.press(kKeys[below(std::size(kKeys))], modifiers);
        }
        if (what == 16 && below(2)) return formatSomething();
        if (what < 18) return command(kCommands[below(std::size(kCommands))]);
        const NSUInteger length = view->string()->length();
        const NSUInteger start = below(length + 1);
        view->setSelectedRange({start, below(std::min(length - start, 40U) + 1)});
    }
    void expectRightPages() {
        while (!view->isComplete()) view->findMorePages();
        auto copy = NSTextStorage::initWithAttributedString(view->textStorage());
        auto layoutManager = NSLayoutManager::init();
        copy->addLayoutManager(layoutManager);
        Pagination fresh(copy, layoutManager, {160, 160}, Pagination::Purpose::writing);
        fresh.findAllPages();
        ASSERT_EQ(fresh.pages().size(), view->pageCount());
        for (std::size_t i = 0; i < fresh.pages().size(); ++i)
            ASSERT_EQ(fresh.pages()[i].range, view->pages()->pages()[i].range) << i;
    }

    std::mt19937 random{11};
};

TEST_F(EditingTest, UndoesEverythingAndDoesItAgain) {
    const int steps = randomSteps(1500);
    NSUndoManager* manager = view->undoManager();
    const auto first = text();
    for (int step = 0; step < steps;) {
        AutoreleasePool pool;
        for (const int end = step + 250; step < end; ++step) {
            doSomething();
            if (below(12) == 0) screen.turn();
            for (NSUInteger undone = below(20) ? 0 : below(6); undone > 0; --undone) command("undo:");
            for (NSUInteger redone = below(20) ? 0 : below(4); redone > 0; --redone) command("redo:");
        }
        screen.turn();
        expectRightPages();
        while (manager->canRedo()) command("redo:");
        const auto last = text();
        while (manager->canUndo()) command("undo:");
        ASSERT_TRUE(text()->isEqualToAttributedString(first)) << step << "\n" << text()->string()->toUTF8();
        expectRightPages();
        while (manager->canRedo()) command("redo:");
        ASSERT_TRUE(text()->isEqualToAttributedString(last)) << step;
        expectRightPages();
        if (view->string()->length() > 20000) {  // pages of it are found again and again
            while (manager->canUndo()) command("undo:");
        }
    }
}

TEST_F(EditingTest, CountsTheWordsThatAreSelected) {
    const auto shows = [&](NSString* end) {
        for (int i = 0; i < 100; ++i, screen.turn())
            if (partOf<NSTextField>(window)->stringValue()->hasSuffix(end)) return true;
        return false;
    };
    select(2, 9);
    EXPECT_TRUE(shows(u"2 of 5 words"_ns));
    select(2);
    EXPECT_TRUE(shows(u"  ·  5 words"_ns) || shows(u"_5 words"_ns));
}

TEST_F(EditingTest, KeepsOneBlankBetweenWordsThatAreDragged) {
    struct Row {
        NSString* text;
        NSRange dragged;
        NSUInteger place;
        const char* result;
    };
    for (const Row& row : {Row{u"one two three four"_ns, {4, 3}, 14, "one three two four"},
                           {u"one two three four"_ns, {4, 3}, 13, "one three two four"},
                           {u"one two three four"_ns, {4, 9}, 0, "two three one four"},
                           {u"one two."_ns, {0, 3}, 7, "two one."},
                           {u"“one two” (three)"_ns, {5, 3}, 11, "“one” (two three)"},
                           {u"(one two) three"_ns, {1, 3}, 9, "(two) one three"},
                           {u"part of it"_ns, {0, 3}, 7, "t ofpar it"},
                           {u"你好 世界"_ns, {3, 2}, 0, "世界你好 "}}) {
        view->setString(row.text);
        view->setSelectedRange(row.dragged);
        screen.wait(1);
        const auto point = [&](NSUInteger place) {
            const NSRect caret = view->caretRectForCharacterAtIndex(place);
            return NSPoint{NSMinX(caret) + 1, NSMidY(caret)};
        };
        screen.moveTo(view, point(row.dragged.location + 1));
        screen.down();
        screen.moveTo(view, point(row.dragged.location));
        screen.moveTo(view, point(row.place));
        screen.up();
        screen.turn();
        EXPECT_EQ(shown(view->string()), row.result);
        undo();
        EXPECT_EQ(shown(view->string()), shown(row.text));
    }
    screen.backend->setForeignSelection(BackendSelection::drag, {});  // other tests find no words of this one
    screen.turn();
}

}  // namespace
