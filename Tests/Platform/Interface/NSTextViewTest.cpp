// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSTextView.h"

#include <random>

#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSUndoManager.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSScrollView.h"
#include "InterfaceScope.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"

namespace {

extern Library textDelegateLibrary;

/// Notes what it is told, and allows what it is to allow.
class TextDelegate : public NSObject {
    PELVOR_CLASS(TextDelegate, NSObject);

  public:
    bool textShouldBeginEditing(NSText*) { return allowsEditing; }
    bool textShouldEndEditing(NSText*) { return allowsEnd; }
    void textDidBeginEditing(id) { told += "begin "; }
    void textDidChange(id) {
        told += "change ";
        if (whenChanged) whenChanged();
    }
    void textDidEndEditing(NSNotification* notification) {
        auto movement = cast<NSNumber>(notification->userInfo()->objectForKey(u"NSTextMovement"_ns));
        told += "end" + std::to_string(movement->intValue()) + " ";
    }
    bool textView_shouldChangeTextInRange_replacementString(NSTextView*, NSRange, NSString* string) {
        return !string || string->rangeOfString(u"!"_ns).location == NSNotFound;
    }
    bool textView_doCommandBySelector(NSTextView*, SEL command) { return command == refused; }

    std::string told;
    std::function<void()> whenChanged;
    SEL refused;
    bool allowsEditing = true, allowsEnd = true;
};

PELVOR_DEFINE_CLASS(TextDelegate, textDelegateLibrary) {
    methods.instance<"textShouldBeginEditing:", &TextDelegate::textShouldBeginEditing>();
    methods.instance<"textShouldEndEditing:", &TextDelegate::textShouldEndEditing>();
    methods.instance<"textDidBeginEditing:", &TextDelegate::textDidBeginEditing>();
    methods.instance<"textDidChange:", &TextDelegate::textDidChange>();
    methods.instance<"textDidEndEditing:", &TextDelegate::textDidEndEditing>();
    methods.instance<"textView:shouldChangeTextInRange:replacementString:",
                     &TextDelegate::textView_shouldChangeTextInRange_replacementString>();
    methods.instance<"textView:doCommandBySelector:", &TextDelegate::textView_doCommandBySelector>();
}
constexpr Library* kDependencies[] = {&interfaceLibrary};
constinit Library textDelegateLibrary{"TestTextDelegate", kDependencies, kClassesOf<TextDelegate>, {}};

constexpr std::uint32_t kShift = NSShiftKeyMask, kCommand = NSCommandKeyMask;

/// A window of 300 by 200 with a scroll view and a text view in it, which takes the keys.
struct NSTextViewTest : ::testing::Test {
    NSTextViewTest() {
        scrollView->setHasVerticalScroller(true);
        scrollView->setDocumentView(view);
        view->setTypingAttributes(
            NSDictionary::of({{NSFontAttributeName, NSFont::fontWithName_size(u"DejaVuSans"_ns, 12)}}));
        window->contentView()->addSubview(scrollView);
        window->makeFirstResponder(view);
        screen.turn();
    }
    void set(NSString* text, NSRange selection = {}) {
        view->setString(text);
        view->setSelectedRange(selection);
        screen.turn();
        screen.backend->takePresented();
    }
    /// The text with "|" at the caret, or around the selection.
    std::string state() {
        std::u16string text = view->string()->toUTF16();
        const NSRange selection = view->selectedRange();
        if (selection.length) text.insert(NSMaxRange(selection), u"|");
        text.insert(selection.location, u"|");
        return NSString::of(text)->toUTF8();
    }
    void command(const char* name) { view->doCommandBySelector(registerSelector(name)); }
    NSRect caret() { return view->caretRectForCharacterAtIndex(view->selectedRange().location); }
    NSPoint placeOf(NSUInteger index) {
        const NSRect rect = view->caretRectForCharacterAtIndex(index);
        return {rect.origin.x + 0.5F, NSMidY(rect)};
    }
    /// How many rows of pixels were drawn since the last call.
    int rowsDrawn() {
        int rows = 0;
        for (const PixelRect& rect : screen.backend->takePresented()) rows += rect.height;
        return rows;
    }

    InterfaceScope screen;
    Retained<NSWindow> window = screen.window({{50, 50}, {300, 200}});
    Retained<NSScrollView> scrollView = NSScrollView::initWithFrame({{0, 0}, {300, 200}});
    Retained<NSTextView> view = NSTextView::initWithFrame({{0, 0}, {288, 200}});
    Retained<TextDelegate> delegate = make<TextDelegate>();
    const float line = NSFont::fontWithName_size(u"DejaVuSans"_ns, 12)->defaultLineHeightForFont();
};

NSString* words(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "word" + std::to_string(i) + (i % 40 == 39 ? "\n" : " ");
    return NSString::ofUTF8(text);
}

// MARK: Keys

TEST_F(NSTextViewTest, TypesMovesSelectsAndDeletesByKeys) {
    struct Row {
        const char* before;
        unichar key;
        std::uint32_t modifiers;
        const char* after;
    };
    const Row rows[] = {
        {"ab|cd", 'x', 0, "abx|cd"},
        {"a|bc|d", 'x', 0, "ax|d"},
        {"ab|cd", NSLeftArrowFunctionKey, 0, "a|bcd"},
        {"|ab", NSLeftArrowFunctionKey, 0, "|ab"},
        {"a|bc|d", NSLeftArrowFunctionKey, 0, "a|bcd"},
        {"a|bc|d", NSRightArrowFunctionKey, 0, "abc|d"},
        {"ab|cd", NSRightArrowFunctionKey, kShift, "ab|c|d"},
        {"one t|wo three", NSRightArrowFunctionKey, kCommand, "one two| three"},
        {"one t|wo three", NSLeftArrowFunctionKey, kCommand, "one |two three"},
        {"one t|wo three", NSLeftArrowFunctionKey, kCommand | kShift, "one |t|wo three"},
        {"one t|wo\nthree", NSHomeFunctionKey, 0, "|one two\nthree"},
        {"one t|wo\nthree", NSEndFunctionKey, 0, "one two|\nthree"},
        {"one t|wo\nthree", NSEndFunctionKey, kCommand, "one two\nthree|"},
        {"one\ntw|o", NSHomeFunctionKey, kCommand, "|one\ntwo"},
        {"one\ntw|o", NSUpArrowFunctionKey, 0, "on|e\ntwo"},
        {"on|e\ntwo", NSUpArrowFunctionKey, 0, "|one\ntwo"},
        {"on|e\ntwo", NSDownArrowFunctionKey, 0, "one\ntw|o"},
        {"one\ntw|o", NSDownArrowFunctionKey, 0, "one\ntwo|"},
        {"one\n|", NSUpArrowFunctionKey, 0, "|one\n"},
        {"|one\n", NSDownArrowFunctionKey, 0, "one\n|"},
        {"one|\ntwo", NSDownArrowFunctionKey, kShift, "one|\ntwo|"},
        {"on|e two", 'a', kCommand, "|one two|"},
        {"ab|cd", NSDeleteCharacter, 0, "a|cd"},
        {"a|bc|d", NSDeleteCharacter, 0, "a|d"},
        {"|ab", NSDeleteCharacter, 0, "|ab"},
        {"ab|cd", NSDeleteFunctionKey, 0, "ab|d"},
        {"ab|", NSDeleteFunctionKey, 0, "ab|"},
        {"one two|", NSDeleteCharacter, kCommand, "one |"},
        {"|one two", NSDeleteFunctionKey, kCommand, "| two"},
        {"ab|cd", NSCarriageReturnCharacter, 0, "ab\n|cd"},
        {"ab|cd", NSTabCharacter, 0, "ab\t|cd"},
        {"e\u0301|x", NSDeleteCharacter, 0, "|x"},
        {"\U0001F600|x", NSLeftArrowFunctionKey, 0, "|\U0001F600x"},
        {"a\r\n|b", NSDeleteCharacter, 0, "a|b"},
    };
    for (const Row& row : rows) {
        std::u16string text = NSString::ofUTF8(row.before)->toUTF16();
        const std::size_t start = text.find(u'|');
        text.erase(start, 1);
        const std::size_t end = std::min(text.find(u'|', start), text.size());
        const bool isRange = end < text.size() && text[end] == u'|';
        if (isRange) text.erase(end, 1);
        set(NSString::of(text),
            {static_cast<NSUInteger>(start), static_cast<NSUInteger>(isRange ? end - start : 0)});
        screen.press(row.key, row.modifiers);
        EXPECT_EQ(state(), row.after)
            << row.before << " " << static_cast<int>(row.key) << " " << row.modifiers;
    }
}

TEST_F(NSTextViewTest, GoesOnFromTheFixedEndOfASelection) {
    set(u"one two three"_ns, {5, 0});
    screen.press(NSLeftArrowFunctionKey, kShift);
    screen.press(NSLeftArrowFunctionKey, kShift | kCommand);
    EXPECT_EQ(state(), "|one t|wo three");
    screen.press(NSRightArrowFunctionKey, kShift | kCommand);
    screen.press(NSRightArrowFunctionKey, kShift | kCommand);
    EXPECT_EQ(state(), "one t|wo| three");
}

TEST_F(NSTextViewTest, KeepsItsColumnOnItsWayUpAndDown) {
    set(u"abcdefgh\nab\nabcdefgh"_ns, {6, 0});
    screen.press(NSDownArrowFunctionKey);
    EXPECT_EQ(view->selectedRange(), (NSRange{11, 0}));
    screen.press(NSDownArrowFunctionKey);
    EXPECT_EQ(view->selectedRange(), (NSRange{18, 0}));
    screen.press(NSUpArrowFunctionKey);
    screen.press(NSUpArrowFunctionKey);
    EXPECT_EQ(view->selectedRange(), (NSRange{6, 0}));
}

TEST_F(NSTextViewTest, StandsAtTheEndOfABrokenLine) {
    set(words(40));
    screen.press(NSEndFunctionKey);
    const NSUInteger end = view->selectedRange().location;
    EXPECT_EQ(view->selectionAffinity(), NSSelectionAffinityUpstream);
    EXPECT_GT(end, 20u);
    screen.press(NSDownArrowFunctionKey);
    EXPECT_GT(view->selectedRange().location, end);
    screen.press(NSUpArrowFunctionKey);
    EXPECT_EQ(view->selectedRange().location, end);
    screen.press(NSHomeFunctionKey);
    EXPECT_EQ(view->selectedRange().location, 0u);
}

TEST_F(NSTextViewTest, GoesToTheSideThatIsSeenInTextFromRightToLeft) {
    set(u"\u05D0\u05D1\u05D2"_ns, {1, 0});
    screen.press(NSLeftArrowFunctionKey);
    EXPECT_EQ(view->selectedRange().location, 2u);
    screen.press(NSHomeFunctionKey);
    EXPECT_EQ(view->selectedRange().location, 0u);
}

TEST_F(NSTextViewTest, TurnsPages) {
    set(words(4000));
    const float before = NSMinY(caret());
    screen.press(NSPageDownFunctionKey);
    const float page = NSMinY(caret()) - before;
    EXPECT_NEAR(page, 200 - line, line);
    EXPECT_NEAR(NSMinY(view->visibleRect()), page, 1);
    const NSUInteger place = view->selectedRange().location;
    screen.press(NSPageDownFunctionKey);
    screen.press(NSPageUpFunctionKey);
    EXPECT_EQ(view->selectedRange().location, place);
    screen.press(NSEndFunctionKey, kCommand);
    EXPECT_NEAR(NSMaxY(view->visibleRect()), NSMaxY(view->bounds()), 1);
    EXPECT_GE(NSMaxY(view->visibleRect()) + 1, NSMaxY(caret()));
}

// MARK: What is drawn

TEST_F(NSTextViewTest, DrawsAgainOnlyTheLineThatChanged) {
    set(words(400), {1500, 0});
    view->scrollRangeToVisible({1500, 0});
    screen.turn();
    screen.type(u"x");  // breaks the line elsewhere
    rowsDrawn();
    screen.type(u"x");
    EXPECT_LE(rowsDrawn(), line + 2);
    screen.press(NSLeftArrowFunctionKey, kShift);
    EXPECT_LE(rowsDrawn(), line + 2);
    screen.press(NSRightArrowFunctionKey);
    EXPECT_LE(rowsDrawn(), line + 2);
    screen.wait(0.6);
    EXPECT_LE(rowsDrawn(), line + 2) << "the caret blinks";
    view->textStorage()->replaceCharactersInRange_withString({10, 0}, u"elsewhere"_ns);
    EXPECT_EQ(view->selectedRange().location, 1511u) << "the caret stays with its text";
}

TEST_F(NSTextViewTest, LooksTheSameHoweverItCameToBe) {
    std::mt19937 random(7);
    const auto below = [&](NSUInteger limit) { return static_cast<NSUInteger>(random() % (limit + 1)); };
    set(words(200));
    const auto picture = [&] {
        const BackendImage* image = screen.backend->picture(screen.number(window));
        return std::string(
            reinterpret_cast<const char*>(image->pixels),
            static_cast<std::size_t>(image->bytesPerRow) * static_cast<std::size_t>(image->height));
    };
    for (int step = 0; step < 60; ++step) {
        const NSUInteger length = view->string()->length(), place = below(length);
        switch (random() % 5) {
            case 0:
                view->textStorage()->replaceCharactersInRange_withString({place, 0}, u"in\nserted "_ns);
                break;
            case 1:
                view->textStorage()->replaceCharactersInRange_withString({place, below(length - place) % 90},
                                                                         u""_ns);
                break;
            case 2:
                view->setSelectedRange({place, below(length - place)});
                break;
            case 3:
                view->textStorage()->addAttribute_value_range(
                    NSFontAttributeName, NSFont::fontWithName_size(u"DejaVuSans"_ns, 9 + random() % 9),
                    {place, below(length - place) % 50});
                break;
            default:
                view->scrollPoint({0, static_cast<float>(random() % 400)});
        }
        screen.turn();
        const std::string seen = picture();
        window->display();
        ASSERT_TRUE(seen == picture()) << step;
    }
}

TEST_F(NSTextViewTest, LeavesNoSeamsInTheSelection) {
    view->setTypingAttributes(
        NSDictionary::of({{NSFontAttributeName, NSFont::fontWithName_size(u"DejaVuSans"_ns, 12.3F)}}));
    NSTextStorage* storage = view->textStorage();
    set(u"\n\n\n\n\n\n"_ns, {0, 6});
    storage->addAttributes_range(view->typingAttributes(), {0, storage->length()});
    view->setSelectionColor(NSColor::redColor());
    screen.turn();
    const float bottom = view->caretRectForCharacterAtIndex(5).origin.y;
    ASSERT_NE(bottom, std::round(bottom));
    for (float y = 2; y < bottom; ++y) EXPECT_EQ(screen.pixel(view, {100, y + 0.5F}), 0xFF0000u) << y;
}

TEST_F(NSTextViewTest, BlinksWhereTheKeysGoForAWhile) {
    set(u"ab"_ns, {1, 0});
    const NSPoint place{caret().origin.x + 0.5F, NSMidY(caret())};
    const auto isShown = [&] { return screen.pixel(view, place) < 0x808080; };
    EXPECT_TRUE(isShown());
    screen.wait(0.55);
    EXPECT_FALSE(isShown());
    screen.wait(0.53);
    EXPECT_TRUE(isShown());
    screen.wait(20);
    EXPECT_TRUE(isShown());
    screen.backend->takePresented();
    screen.wait(5);
    EXPECT_EQ(rowsDrawn(), 0);
    window->makeFirstResponder(nullptr);
    screen.turn();
    EXPECT_FALSE(isShown());
}

// MARK: Mouse

TEST_F(NSTextViewTest, SelectsByMouse) {
    set(u"one two three\nfour five"_ns);
    screen.click(view, placeOf(5));
    EXPECT_EQ(state(), "one t|wo three\nfour five");
    screen.click(view, placeOf(5), 2);
    EXPECT_EQ(state(), "one |two| three\nfour five");
    screen.click(view, placeOf(5), 3);
    EXPECT_EQ(state(), "|one two three\n|four five");
    screen.click(view, placeOf(9));
    screen.click(view, placeOf(5), 1, kShift);
    EXPECT_EQ(state(), "one t|wo t|hree\nfour five");
    screen.press(NSLeftArrowFunctionKey, kShift);
    EXPECT_EQ(state(), "one |two t|hree\nfour five");
    screen.wait(1);
    screen.drag(view, placeOf(2), placeOf(16));
    EXPECT_EQ(state(), "on|e two three\nfo|ur five");
    screen.wait(1);
    screen.click(view, {5, 190});
    EXPECT_EQ(state(), "one two three\n|four five") << "below the text, in its last line";
}

TEST_F(NSTextViewTest, APressInAllOfALongTextLaysOutNoMoreOfIt) {
    set(words(20000));
    view->setSelectedRange({0, view->string()->length()});
    screen.turn();
    const NSUInteger before = view->layoutManager()->firstUnlaidCharacterIndex();
    ASSERT_LT(before, view->string()->length() / 2);
    screen.moveTo(view, placeOf(3));
    screen.down();
    EXPECT_EQ(view->layoutManager()->firstUnlaidCharacterIndex(), before);
    EXPECT_EQ(view->selectedRange().length, view->string()->length()) << "it may become a drag";
    screen.up();
    EXPECT_EQ(view->selectedRange(), (NSRange{3, 0}));
}

TEST_F(NSTextViewTest, ScrollsWhileADragIsOutside) {
    set(words(400));
    screen.moveTo(view, placeOf(3));
    screen.down();
    screen.moveTo(scrollView, {50, 230});
    screen.wait(2);
    EXPECT_GT(NSMinY(view->visibleRect()), 3 * line);
    EXPECT_GT(view->selectedRange().length, 100u);
    screen.up();
    screen.turn();
    const NSRange selection = view->selectedRange();
    screen.wait(1);
    EXPECT_EQ(view->selectedRange(), selection);
}

// MARK: Editing

TEST_F(NSTextViewTest, AsksAndTellsItsDelegate) {
    view->setDelegate(delegate);
    set(u"ab"_ns, {2, 0});
    screen.type(u"c!d");
    EXPECT_EQ(state(), "abcd|");
    EXPECT_EQ(delegate->told, "begin change change ");
    delegate->refused = "moveLeft:"_sel;
    screen.press(NSLeftArrowFunctionKey);
    EXPECT_EQ(state(), "abcd|");
    delegate->allowsEnd = false;
    EXPECT_FALSE(window->makeFirstResponder(nullptr));
    delegate->allowsEnd = true;
    EXPECT_TRUE(window->makeFirstResponder(nullptr));
    EXPECT_EQ(delegate->told, "begin change change end0 ");
    delegate->allowsEditing = false;
    window->makeFirstResponder(view);
    screen.type(u"x");
    EXPECT_EQ(state(), "abcd|");
}

TEST_F(NSTextViewTest, OutlivesWhatItsDelegateDoes) {
    view->setDelegate(delegate);
    delegate->whenChanged = [&] {
        scrollView->removeFromSuperview();
        scrollView = nullptr;
        window->close();
        auto last = std::move(view);
    };
    screen.type(u"x");
    EXPECT_EQ(delegate->told, "begin change end0 ");
}

TEST_F(NSTextViewTest, UndoesTypingAsAWhole) {
    set(u"ab"_ns, {1, 0});
    screen.type(u"xyz");
    screen.press(NSDeleteCharacter);
    screen.press(NSLeftArrowFunctionKey);
    screen.type(u"1");
    EXPECT_EQ(state(), "ax1|yb");
    screen.press('z', kCommand);
    EXPECT_EQ(view->string()->toUTF8(), "axyb");
    screen.press('z', kCommand);
    screen.press('z', kCommand);
    EXPECT_EQ(view->string()->toUTF8(), "ab");
    EXPECT_FALSE(view->undoManager()->canUndo());
    for (int i = 0; i < 3; ++i) screen.press('y', kCommand);
    EXPECT_EQ(view->string()->toUTF8(), "ax1yb");
    set(u""_ns);
    EXPECT_FALSE(view->undoManager()->canUndo()) << "steps of another text";
    screen.type(u"one\rtwo\r\rthree");
    for (const char* left : {"one\ntwo\n\n|", "one\ntwo\n|", "one\n|", "|"}) {
        screen.press('z', kCommand);
        EXPECT_EQ(state(), left);
    }
}

TEST_F(NSTextViewTest, SelectsWhatWasSelectedBeforeAndAfterAStep) {
    const auto pressing = [&](unichar key, int times) {
        return [=, this] {
            for (int i = 0; i < times; ++i) screen.press(key);
        };
    };
    const auto putting = [&](NSRange range, NSString* text) {  // as a program does
        return [=, this] {
            ASSERT_TRUE(view->shouldChangeTextInRange_replacementString(range, text));
            view->textStorage()->replaceCharactersInRange_withString(range, text);
            view->didChangeText();
        };
    };
    const struct {
        const char* name;
        NSRange selection;
        std::function<void()> step;
        const char *undone, *redone;
    } rows[] = {{"typing", {7, 0}, [&] { screen.type(u" x"); }, "one two|", "one two x|"},
                {"typing over", {0, 3}, [&] { screen.type(u"xy"); }, "|one| two", "xy| two"},
                {"backward", {7, 0}, pressing(NSDeleteCharacter, 3), "one two|", "one |"},
                {"forward", {3, 0}, pressing(NSDeleteFunctionKey, 2), "one| two", "one|wo"},
                {"others' text", {5, 0}, putting({0, 7}, u"three four"_ns), "one t|wo", "three| four"},
                {"others' end", {0, 3}, putting({7, 0}, u"!"_ns), "|one| two", "|one| two!"}};
    for (const auto& row : rows) {
        set(u"one two"_ns, row.selection);
        view->undoManager()->removeAllActions();
        row.step();
        for (int i = 0; i < 2; ++i) {
            view->setSelectedRange({1, 0});
            screen.press('z', kCommand);
            EXPECT_EQ(state(), row.undone) << row.name;
            view->setSelectedRange({1, 0});
            screen.press('z', kCommand | kShift);
            EXPECT_EQ(state(), row.redone) << row.name;
        }
    }
}

TEST_F(NSTextViewTest, UndoesAnyEditsInTheirOrder) {
    std::mt19937 random(3);
    set(u"The quick brown fox"_ns);
    const char* const commands[] = {"deleteBackward:",
                                    "deleteForward:",
                                    "deleteWordBackward:",
                                    "moveLeft:",
                                    "moveWordRight:",
                                    "insertNewline:",
                                    "transpose:",
                                    "uppercaseWord:",
                                    "moveRightAndModifySelection:",
                                    "deleteToEndOfParagraph:",
                                    "yank:",
                                    "cut:",
                                    "paste:",
                                    "alignRight:"};
    std::vector<std::string> texts{view->string()->toUTF8()};
    for (int step = 0; step < 120; ++step) {
        if (random() % 3 == 0)
            view->insertText(NSString::of(std::u16string(1, static_cast<char16_t>(u'a' + random() % 26))));
        else
            command(commands[random() % std::size(commands)]);
        screen.turn();
        texts.push_back(view->string()->toUTF8());
    }
    while (view->undoManager()->canUndo()) {
        command("undo:");
        screen.turn();
    }
    EXPECT_EQ(view->string()->toUTF8(), texts.front());
    while (view->undoManager()->canRedo()) {
        command("redo:");
        screen.turn();
    }
    EXPECT_EQ(view->string()->toUTF8(), texts.back());
}

TEST_F(NSTextViewTest, ShowsWhatIsBeingComposed) {
    set(u"ab"_ns, {1, 0});
    view->setMarkedText_selectedRange(u"ni"_ns, {2, 0});
    EXPECT_EQ(state(), "ani|b");
    EXPECT_EQ(view->markedRange(), (NSRange{1, 2}));
    EXPECT_TRUE(
        view->textStorage()->attribute_atIndex_effectiveRange(NSUnderlineStyleAttributeName, 1, nullptr));
    view->setMarkedText_selectedRange(u"niho"_ns, {4, 0});
    EXPECT_EQ(state(), "aniho|b");
    view->insertText(u"\u65E5"_ns);
    EXPECT_EQ(state(), "a\u65E5|b");
    EXPECT_FALSE(view->hasMarkedText());
    EXPECT_FALSE(
        view->textStorage()->attribute_atIndex_effectiveRange(NSUnderlineStyleAttributeName, 1, nullptr));
    view->setMarkedText_selectedRange(u"x"_ns, {1, 0});
    view->setMarkedText_selectedRange(u""_ns, {});
    EXPECT_EQ(state(), "a\u65E5|b");
    view->setMarkedText_selectedRange(u"kept"_ns, {0, 4});
    screen.press(NSLeftArrowFunctionKey);
    EXPECT_EQ(view->string()->toUTF8(), "a\u65E5keptb");
    command("undo:");
    command("undo:");
    EXPECT_EQ(view->string()->toUTF8(), "ab");
}

TEST_F(NSTextViewTest, EndsEditingAsAFieldEditor) {
    view->setFieldEditor(true);
    view->setDelegate(delegate);
    screen.type(u"a\t");
    screen.press(NSCarriageReturnCharacter);
    screen.press(NSEscapeCharacter);
    EXPECT_EQ(view->string()->toUTF8(), "a");
    EXPECT_EQ(delegate->told, "begin change end17 end16 end23 ");
}

// MARK: Copying

TEST_F(NSTextViewTest, CopiesCutsAndPastes) {
    set(u"one two"_ns, {0, 3});
    screen.press('c', kCommand);
    EXPECT_EQ(NSPasteboard::generalPasteboard()->stringForType(NSStringPboardType)->toUTF8(), "one");
    screen.press(NSEndFunctionKey);
    screen.press('v', kCommand);
    EXPECT_EQ(state(), "one twoone|");
    view->setSelectedRange({0, 4});
    screen.press('x', kCommand);
    EXPECT_EQ(state(), "|twoone");
    screen.press('z', kCommand);
    EXPECT_EQ(view->string()->toUTF8(), "one twoone");
    view->setEditable(false);
    screen.press('v', kCommand);
    screen.press('x', kCommand);
    EXPECT_EQ(view->string()->toUTF8(), "one twoone");
}

TEST_F(NSTextViewTest, OffersWhatIsSelectedToTheMiddleButton) {
    set(u"one two"_ns);
    screen.click(view, placeOf(1), 2);
    screen.wait(1);
    screen.click(view, placeOf(7), 1, 0, 3);
    EXPECT_EQ(state(), "one twoone|");
    screen.backend->setForeignSelection(BackendSelection::primary, {{"UTF8_STRING", "\u00e4"}});
    screen.wait(1);
    screen.click(view, placeOf(0), 1, 0, 3);
    EXPECT_EQ(state(), "\u00e4|one twoone");
}

TEST_F(NSTextViewTest, MovesAndTakesWhatIsDragged) {
    set(u"one two three"_ns, {4, 4});
    screen.moveTo(view, placeOf(5));
    screen.down();
    screen.moveTo(view, placeOf(10));
    screen.moveTo(view, placeOf(13));
    EXPECT_EQ(state(), "one |two |three");
    screen.up();
    screen.turn();
    EXPECT_EQ(state(), "one three|two |");
    command("undo:");
    EXPECT_EQ(view->string()->toUTF8(), "one two three");
    set(u"one"_ns, {0, 3});
    screen.click(view, placeOf(1));
    EXPECT_EQ(state(), "o|ne") << "a press in the selection that dragged nothing";
    screen.backend->setForeignSelection(BackendSelection::drag, {{"UTF8_STRING", "new"}});
    EXPECT_TRUE(screen.backend->dragTo(screen.placeOf(view, placeOf(3))));
    screen.turn();
    EXPECT_TRUE(screen.backend->drop());
    screen.turn();
    EXPECT_EQ(state(), "one|new|");
    view->setEditable(false);
    screen.backend->dragTo(screen.placeOf(view, placeOf(0)));
    screen.backend->drop();
    screen.turn();
    EXPECT_EQ(view->string()->toUTF8(), "onenew");
}

TEST_F(NSTextViewTest, MovesWhatIsDraggedIntoAnotherText) {
    struct Row {
        const char* name;
        bool hasCtrl, isReadOnly, isField;
        const char* left;
    };
    auto other = screen.window({{700, 100}, {200, 200}});
    auto taker = NSTextView::initWithFrame({{0, 0}, {200, 200}});
    other->contentView()->addSubview(taker);
    for (const Row& row : {Row{"moved", false, false, false, "one three"},
                           {"copied", true, false, false, "one two three"},
                           {"read only", false, true, false, "one two three"},
                           {"into a field", false, false, true, "one two three"}}) {
        taker->setString(u""_ns);
        taker->setFieldEditor(row.isField);
        view->setEditable(true);
        set(u"one two three"_ns, {4, 4});
        view->setEditable(!row.isReadOnly);
        window->makeKeyAndOrderFront(nullptr);
        screen.wait(1);
        screen.moveTo(view, placeOf(5));
        screen.down();
        screen.moveTo(view, placeOf(10));
        screen.moveTo(taker, {20, 10});
        screen.backend->setModifiers(row.hasCtrl ? +kBackendCommand : 0U);
        screen.up();
        screen.turn();
        screen.backend->setModifiers(0);
        EXPECT_EQ(taker->string()->toUTF8(), "two ") << row.name;
        EXPECT_EQ(view->string()->toUTF8(), row.left) << row.name;
    }
}

// MARK: Between edits

TEST_F(NSTextViewTest, SurvivesEditsBetweenBrackets) {
    set(words(100));
    NSTextStorage* storage = view->textStorage();
    storage->beginEditing();
    storage->deleteCharactersInRange({0, 300});
    screen.turn();
    window->display();
    screen.press(NSPageDownFunctionKey);
    screen.click(view, {10, 10});
    storage->endEditing();
    screen.backend->takePresented();
    screen.turn();
    EXPECT_GT(rowsDrawn(), 5 * line) << "what the edit changed";
    screen.press(NSDownArrowFunctionKey);
    EXPECT_LE(view->selectedRange().location, storage->length());
}

}  // namespace
