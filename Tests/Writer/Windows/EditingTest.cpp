// SPDX-License-Identifier: Apache-2.0
// Somebody who types, selects, formats, undoes and redoes at random, beside what must come out of it.
#include <filesystem>
#include <random>

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSUndoManager.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSScrollView.h"
#include "InterfaceScope.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSTextStorage.h"
#include "Writer/Pages/StyledDocument.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WRDocument.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRZoomView.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace {

class EditingTest : public ::testing::Test {
  protected:
    void SetUp() override {
        registerLibrary(windowsLibrary);
        window = screen.window({{100, 100}, {300, 200}});
        auto settings = NSMutableDictionary::init();
        for (NSString* key : {WRPageWidthKey, WRPageHeightKey})
            settings->setObject_forKey(NSNumber::numberWithFloat(200), key);
        for (NSString* key : {WRLeftMarginKey, WRRightMarginKey, WRTopMarginKey, WRBottomMarginKey})
            settings->setObject_forKey(NSNumber::numberWithFloat(20), key);
        view = WRPageView::create(NSTextStorage::initWithString(u"Dear Anna,\nhow are you?\n"_ns), settings);
        std::filesystem::current_path(WRITER_PAGES);  // where the style sheet of all documents is
        formats = WRFormatCommands::create(
            WRDocument::initWithPath_reader_answer(u"/a"_ns, nullptr, NSDictionary::of({{WRTextKey, u""_ns}}))
                .get(),
            view, StyledDocument::of(u""_ns, NSDictionary::dictionary()).sheet);
        auto scrollView = NSScrollView::initWithFrame({{0, 0}, {300, 200}});
        scrollView->setDocumentView(WRZoomView::create(view).get());
        window->setContentView(scrollView);
        window->makeFirstResponder(view);
        screen.turn();
    }
    NSUInteger below(NSUInteger count) { return static_cast<NSUInteger>(random() % count); }
    void command(SEL selector) { send(view.get(), selector, static_cast<id>(nullptr)); }
    Retained<NSAttributedString> text() {
        return NSAttributedString::initWithAttributedString(view->textStorage());
    }

    void formatSomething() {
        static const SEL kFormats[] = {"toggleBold:"_sel,
                                       "toggleUnderline:"_sel,
                                       "makeTextBigger:"_sel,
                                       "increaseIndent:"_sel,
                                       "decreaseIndent:"_sel,
                                       "takeParagraphStyleFrom:"_sel,
                                       "takeCharacterStyleFrom:"_sel,
                                       "clearFormats:"_sel};
        static NSString* const kNames[] = {u"heading 1"_ns, u"quote"_ns, u"code"_ns, u"strong"_ns};
        auto item = NSMenuItem::initWithTitle_action_keyEquivalent(u"Change"_ns, SEL(), u""_ns);
        item->setRepresentedObject(kNames[below(std::size(kNames))]);
        send(formats.get(), kFormats[below(std::size(kFormats))], item.get());
    }
    void doSomething() {
        static const char16_t* const kTexts[] = {u"a",  u"word ",   u"é",  u"שלום",        u"\U0001F600",
                                                 u"fi", u"e\u0301", u"\n", u"Two words. ", u"\t"};
        static const unichar kKeys[] = {NSDeleteCharacter,      NSDeleteCharacter,       NSDeleteFunctionKey,
                                        NSLeftArrowFunctionKey, NSRightArrowFunctionKey, NSUpArrowFunctionKey,
                                        NSDownArrowFunctionKey, NSHomeFunctionKey,       NSEndFunctionKey,
                                        NSPageUpFunctionKey,    NSPageDownFunctionKey};
        static const SEL kCommands[] = {"alignCenter:"_sel,
                                        "alignLeft:"_sel,
                                        "alignJustified:"_sel,
                                        "selectWord:"_sel,
                                        "transpose:"_sel,
                                        "uppercaseWord:"_sel,
                                        "cut:"_sel,
                                        "paste:"_sel,
                                        "copy:"_sel,
                                        "paste:"_sel,
                                        "deleteToEndOfLine:"_sel,
                                        "yank:"_sel};
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

    InterfaceScope screen;
    Retained<NSWindow> window;
    Retained<WRPageView> view;
    Retained<WRFormatCommands> formats;
    std::mt19937 random{11};
};

// PELVOR_EDITING_STEPS asks for more of them.
TEST_F(EditingTest, UndoesEverythingAndDoesItAgain) {
    const char* wish = std::getenv("PELVOR_EDITING_STEPS");
    const int steps = wish ? std::atoi(wish) : 1500;
    NSUndoManager* manager = view->undoManager();
    ASSERT_TRUE(manager);
    const auto first = text();
    for (int step = 0; step < steps;) {
        AutoreleasePool pool;
        for (const int end = step + 250; step < end; ++step) {
            doSomething();
            if (below(12) == 0) screen.turn();
            for (NSUInteger undone = below(20) ? 0 : below(6); undone > 0; --undone) command("undo:"_sel);
            for (NSUInteger redone = below(20) ? 0 : below(4); redone > 0; --redone) command("redo:"_sel);
        }
        screen.turn();
        expectRightPages();
        while (manager->canRedo()) command("redo:"_sel);
        const auto last = text();
        while (manager->canUndo()) command("undo:"_sel);
        ASSERT_TRUE(text()->isEqualToAttributedString(first)) << step << "\n" << text()->string()->toUTF8();
        expectRightPages();
        while (manager->canRedo()) command("redo:"_sel);
        ASSERT_TRUE(text()->isEqualToAttributedString(last)) << step;
        expectRightPages();
        if (view->string()->length() > 20000) {  // pages of it are found again and again
            while (manager->canUndo()) command("undo:"_sel);
        }
    }
}

}  // namespace
