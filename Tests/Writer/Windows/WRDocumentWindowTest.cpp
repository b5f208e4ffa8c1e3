// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRDocumentWindow.h"

#include "EnvironmentScope.h"
#include "FormatScope.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Interface/NSButton.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSPopUpButton.h"
#include "ProgramOutput.h"
#include "Writer/Pages/PageLines.h"
#include "Writer/Pages/StyleSheet.h"
#include "Writer/Windows/WRFindPanel.h"
#include "Writer/Windows/WRPageSetupPanel.h"
#include "Writer/Windows/WRPrintPanel.h"

namespace {

struct DocumentWindowTest : ::testing::Test, FormatScope {
    DocumentWindowTest() : FormatScope(numberedLines(150).get()) {}

    /// The scrollers that are shown, and whether the page is as wide as the room for it.
    std::string look() {
        NSScrollView* scrollView = view->enclosingScrollView();
        const float width = NSWidth(view->convertRect_toView(view->bounds(), nullptr));
        std::string text = scrollView->verticalScroller()->isHidden() ? "" : "v";
        if (!scrollView->horizontalScroller()->isHidden()) text += "h";
        return std::abs(width - scrollView->contentSize().width) < 1 ? text + " filled" : text;
    }
    template <class Control>
    static Control* controlIn(NSWindow* panel, int tag) {
        return cast<Control>(panel->contentView()->viewWithTag(tag));
    }
    Retained<WRPageSetupPanel> pageSetup() {
        const auto apply = [this](NSDictionary* settings) { return window->changeSettings(settings); };
        return WRPageSetupPanel::create(view->pages()->settings(), {}, apply);
    }
};

TEST_F(DocumentWindowTest, ShowsScrollersWhereThereIsSomethingToScroll) {
    EXPECT_EQ(look(), "v filled");
    window->zoomIn(nullptr);
    EXPECT_EQ(look(), "vh");
    findAllPages();
    for (int i = 0; i < 10; ++i) window->zoomOut(nullptr);
    EXPECT_EQ(look(), "");
    window->showWholeWidth(nullptr);
    EXPECT_EQ(look(), "v filled");
}

TEST_F(DocumentWindowTest, KeepsTheCaretInSight) {
    window->window()->setContentSize({700, 500});
    screen.turn();
    const NSRect seen = view->visibleRect();
    const NSPoint lowest{NSMidX(seen), NSMaxY(seen) - 30};
    const auto isSeen = [&] {
        const NSRect caret = view->caretRectForCharacterAtIndex(view->selectedRange().location);
        return NSPointInRect({NSMinX(caret), NSMidY(caret)}, view->visibleRect());
    };
    select(view->characterIndexForInsertionAtPoint(lowest));
    window->showNotice(u"News"_ns, {});
    EXPECT_TRUE(isSeen()) << "above a notice";
    window->hideNotice();
    select(0);
    view->scrollRangeToVisible({0, 0});
    for (int i = 0; i < 4; ++i) {
        window->zoomIn(nullptr);
        EXPECT_TRUE(isSeen()) << i;
    }
}

TEST_F(DocumentWindowTest, KeepsTheKeysInThePageBesideNotices) {
    const auto hasKeys = [&] { return window->window()->firstResponder() == view; };
    window->showNotice(u"News"_ns, {});
    screen.click(window->notice(), {20, NSMidY(window->notice()->bounds())});
    EXPECT_TRUE(hasKeys()) << "after a click on the text";
    window->window()->makeFirstResponder(static_cast<NSView*>(window->notice()->buttons()->objectAtIndex(0)));
    EXPECT_FALSE(hasKeys());
    screen.press(u' ');
    EXPECT_TRUE(hasKeys() && !window->notice()) << "after the button is gone";
}

TEST_F(DocumentWindowTest, ZoomsByTheWheelAroundThePointer) {
    findAllPages();
    window->showNextPage(nullptr);
    const NSPoint place{200, NSMinY(view->visibleRect()) + 300};
    for (const auto& [lines, zoom] : {std::pair{-3, 1.25}, {-3, 1.5}, {3, 1.25}, {3, 1.0}}) {
        const NSPoint pointer = view->convertPoint_toView(place, nullptr);
        screen.backend->setModifiers(kBackendCommand);
        screen.scroll(view, place, 0, static_cast<float>(lines));
        screen.backend->setModifiers(0);
        EXPECT_EQ(zoomFactor(view), zoom);
        const NSPoint now = view->convertPoint_fromView(pointer, nullptr);
        EXPECT_NEAR(now.y, place.y, 2) << zoom;
        EXPECT_TRUE(zoom == 1 || std::abs(now.x - place.x) < 2) << zoom;
    }
    const float before = NSMinY(view->visibleRect());
    screen.scroll(view, place, 0, 3);
    EXPECT_GT(NSMinY(view->visibleRect()), before);
    EXPECT_EQ(zoomFactor(view), 1.0);
}

// What is typed into the panel is looked for in the main window.
TEST_F(DocumentWindowTest, FindsByThePanel) {
    auto panel = WRFindPanel::init();
    const auto find = [&](std::u16string_view text) {
        panel->orderFront(nullptr);
        screen.turn();
        screen.type(text);
        screen.press(u'\r');
    };
    NSPasteboard* board = NSPasteboard::pasteboardWithName(NSFindPboard);
    find(u"149");
    EXPECT_EQ(shown(panel->message()), "_1 of 1");
    EXPECT_EQ(shown(view->string()->substringWithRange(view->selectedRange())), "149");
    EXPECT_TRUE(NSContainsRect(view->visibleRect(), view->rectForCharacterRange(view->selectedRange())));
    // The panel goes where it does not hide what was found.
    const NSRect found =
        view->convertRect_toView(view->rectForCharacterRange(view->selectedRange()), nullptr);
    const NSPoint place = window->window()->convertBaseToScreen(found.origin);
    panel->window()->setFrameOrigin({place.x - 20, place.y - 20});
    screen.press(u'\r');
    EXPECT_FALSE(NSPointInRect(place, panel->window()->frame()));
    EXPECT_EQ(shown(board->stringForType(NSStringPboardType)), "149");
    // All places are marked while the panel is open and they are there.
    const auto isMarked = [&](NSUInteger unit) {
        view->scrollRangeToVisible({unit, 1});
        screen.turn();
        const NSRect rect = view->rectForCharacterRange({unit, 1});
        return screen.pixel(view, {NSMinX(rect) + 0.5F, NSMinY(rect) + 1}) != 0xFFFFFF;
    };
    const auto find3 = [&] {
        find(u"3");
        screen.press(u'\r');  // "3" and "13" are at 6 and 27
        return std::to_string(isMarked(6)) + std::to_string(isMarked(4));
    };
    view->setSelectedRange({0, 0});
    EXPECT_EQ(find3(), "10");
    find(u"nowhere");
    EXPECT_FALSE(isMarked(6));
    EXPECT_EQ(find3(), "10");
    screen.press(NSEscapeCharacter);
    EXPECT_FALSE(isMarked(6));
    view->setSelectedRange({0, 0});
    EXPECT_EQ(find3(), "10");
    view->insertText(u"3"_ns);
    screen.turn();
    EXPECT_FALSE(isMarked(6));
    undo();
    board->declareTypes_owner(NSArray::of({NSStringPboardType}), nullptr);
    board->setString_forType(u"149"_ns, NSStringPboardType);
    panel->findNext(nullptr);
    screen.press(u'\t');
    screen.type(u"x");
    panel->replaceAndFind(nullptr);
    EXPECT_EQ(shown(panel->message()), "_Not found") << "there is no other";
    EXPECT_TRUE(view->string()->hasSuffix(u"148\nx\n"_ns));
    screen.press(NSEscapeCharacter);
    // Without the panel, and with a line end.
    const NSRange end = view->string()->rangeOfString(u"148\nx"_ns);
    view->setSelectedRange(end);
    panel->useSelectionForFind(nullptr);
    panel->findNext(nullptr);
    EXPECT_EQ(shown(panel->message()), "_1 of 1, from the other end of the text");
    EXPECT_EQ(screen.backend->beeps(), 1);
    EXPECT_FALSE(panel->window()->isVisible());
    EXPECT_EQ(view->selectedRange(), end);
    view->insertText(u""_ns);
    panel->findPrevious(nullptr);
    EXPECT_TRUE(panel->window()->isVisible()) << "says that it was not found";
}

// MARK: Paper and printing

TEST_F(DocumentWindowTest, ChangesPaperAndMargins) {
    const auto look = [&] {
        findAllPages();
        return shown(view->pages()->frame().paper, view->pageCount());
    };
    const std::string before = look();
    const NSSize paper = view->pages()->frame().paper;
    const EnvironmentScope locale("LC_ALL", "de_DE.UTF-8"), languages("LANGUAGE", nullptr);
    auto panel = pageSetup();
    panel->window()->makeKeyAndOrderFront(nullptr);
    screen.turn();
    EXPECT_NE(shown(cast<NSText>(static_cast<id>(panel->window()->firstResponder()))->string()).find(','),
              std::string::npos);
    for (const char16_t* margin : {u"x", u"-1", u"5000"}) {  // the first field
        enter(panel->window(), margin);
        EXPECT_TRUE(panel->window()->isVisible()) << "says why not";
        EXPECT_EQ(look(), before);
    }
    EXPECT_FALSE(document->settings());
    controlIn<NSPopUpButton>(panel->window(), WRPageSetupPanel::kOrientationTag)->selectItemAtIndex(1);
    enter(panel->window(), u"12,7");
    EXPECT_FALSE(panel->window()->isVisible());
    EXPECT_NEAR(PageFrame::of(document->settings()).left, 36, 0.01);
    EXPECT_FLOAT_EQ(NSWidth(view->frameOfPage(0)), paper.height);
    const std::string sideways = look();
    EXPECT_GT(view->pageCount(), 3u);
    undo();
    EXPECT_EQ(look(), before);
    EXPECT_FALSE(document->settings());
    redo();
    EXPECT_EQ(look(), sideways);
}

TEST_F(DocumentWindowTest, HasTheHeaderAndThePageNumbersThatTheUserAsksFor) {
    Retained<WRPageSetupPanel> panel;
    const auto setUp = [&](bool hasHeader, NSString* text, bool hasNumber) {
        screen.turn();
        panel = pageSetup();
        if (panel->headerBox()->state() != hasHeader) panel->headerBox()->performClick(nullptr);
        panel->headerField()->setStringValue(text);
        panel->pageNumberBox()->setState(hasNumber);
        panel->accept(nullptr);
    };
    const auto lines = [&] {
        std::string text;
        for (NSString* key : {WRHeaderKey, WRFooterKey}) {
            NSDictionary *settings = view->pages()->settings(), *own = document->settings();
            auto* line = cast<NSAttributedString>(settings->objectForKey(key));
            EXPECT_TRUE((own ? own->objectForKey(key) : nullptr) == line) << key;
            text += textOfLine(line)->toUTF8() + "|";
        }
        return text;
    };
    setUp(false, u""_ns, false);
    EXPECT_FALSE(document->settings() || window->window()->isDocumentEdited()) << "no change";
    setUp(true, u""_ns, true);
    EXPECT_EQ(lines(), "{title}|{page}|");
    EXPECT_TRUE(window->window()->isDocumentEdited());
    EXPECT_EQ(shown(view->pages()->settings()->objectForKey(WRTitleKey)), "b.txt");
    setUp(true, u"Anna, {page}"_ns, false);
    EXPECT_EQ(lines(), "Anna, {page}||");
    undo();
    EXPECT_EQ(lines(), "{title}|{page}|");
    undo();
    EXPECT_EQ(lines() + shown(window->window()->isDocumentEdited()), "||0");
    redo();
    EXPECT_EQ(lines(), "{title}|{page}|");
    // What another program has put there
    auto header = NSMutableAttributedString::initWithString(u"Old\nname \uFFFC"_ns);
    header->addAttribute_value_range(NSKernAttributeName, NSNumber::numberWithInt(2), {0, 10});
    auto footer = NSAttributedString::initWithString(u"Street\n\uE010 / \uE011\n"_ns);
    window->changeSettings(NSDictionary::of({{WRHeaderKey, header.get()}, {WRFooterKey, footer.get()}}));
    setUp(true, textOfLine(header), false);
    EXPECT_TRUE(view->pages()->settings()->objectForKey(WRHeaderKey) == header.get()) << "left alone";
    EXPECT_EQ(lines(), "Old name \uFFFC|Street|");
    setUp(true, u"Old nice name \uFFFC"_ns, true);
    EXPECT_EQ(lines(), "Old nice name \uFFFC|Street {page}|");
    NSRange run;
    cast<NSAttributedString>(view->pages()->settings()->objectForKey(WRHeaderKey))
        ->attribute_atIndex_effectiveRange(NSKernAttributeName, 0, &run);
    EXPECT_EQ(run.length, 15u) << "in the formats that it had";
}

TEST(PagesOfText, UnderstandsWhatPeopleWrite) {
    expectAll({" -> {0, 9}", "3 -> {2, 1}", "2-5 -> {1, 4}", " 7- -> {6, 3}", "-3 -> {0, 3}", "0 -> none",
               "10 -> none", "5-2 -> none", "1-2-3 -> none", "two -> none", "2-12 -> none", "-0 -> none",
               "1,2 -> none"},
              [](const std::string& text) {
                  const NSRange pages = pagesOfText(NSString::ofUTF8(text), 9);
                  return pages.length ? shown(pages) : "none";
              });
}

// A service with three printers. The first two share a title, which is the name of the second one; the last
// one alone takes what is printed. The service replies when the test wants.
struct ThreePrinters : PrintService {
    PrintProblem findPrinters(std::vector<Printer>& printers, const Flag& gaveUp) override {
        if (!mayAnswer(gaveUp)) return {PrintProblem::Kind::noAnswer, nullptr};
        printers = {{u"b"_ns->copy(), u"Attic"_ns->copy(), false, false, false},
                    {u"Attic"_ns->copy(), u"Attic"_ns->copy(), false, false, false},
                    {u"a"_ns->copy(), u"Office"_ns->copy(), true, true, true}};
        return {};
    }
    PrintProblem print(const PrintJob& job, int& number, const Flag& gaveUp) override {
        if (!mayAnswer(gaveUp)) return {PrintProblem::Kind::noAnswer, nullptr};
        printed = job;
        if (!job.printer->isEqualToString(u"a"_ns))
            return {PrintProblem::Kind::refused, u"it is off."_ns->copy()};
        number = 12;
        return {};
    }
    bool mayAnswer(const Flag& gaveUp) {
        while (!answers && !gaveUp) std::this_thread::yield();
        return !gaveUp;
    }
    std::atomic<bool> answers{true};
    PrintJob printed;
};

TEST_F(DocumentWindowTest, PrintsTheTextAsItIs) {
    if (outputOf("pdftotext -v 2>&1").status) GTEST_SKIP() << "needs pdftotext";
    const auto textOf = [&](const char* name) {
        return outputOf("pdftotext -raw " + folder.path(name) + " -").text;
    };
    const auto service = std::make_shared<ThreePrinters>();
    PrintService::setShared(service);
    service->answers = false;
    view->setSelectedRange({0, 0});
    view->insertText(u"Edited "_ns);
    PageDocument pages(view->textStorage(), view->pages()->settings());
    Retained<WRPrintPanel> panel;
    NSPopUpButton* printers = nullptr;
    const auto open = [&] {
        panel = WRPrintPanel::create(&pages, u"b.txt"_ns);
        printers = controlIn<NSPopUpButton>(panel->window(), WRPrintPanel::kPrinterTag);
    };
    const auto titles = [&] { return shown(printers->itemTitles()->componentsJoinedByString(u"|"_ns)); };
    const auto press = [&](std::u16string_view range) {
        panel->window()->makeKeyAndOrderFront(nullptr);
        screen.turn();
        enter(panel->window(), range);
    };
    const auto waitForOutcome = [&] {
        while (!panel->outcome()) screen.turn();
        return shown(panel->outcome());
    };
    open();
    press(u"1-1");
    EXPECT_EQ(titles(), "_Looking for printers…|_PDF file…");
    EXPECT_EQ(shown(panel->message()), "_Printers are still being looked for.");
    service->answers = true;
    while (printers->numberOfItems() < 3) screen.turn();
    EXPECT_EQ(titles(), "Attic|Attic|Office|_PDF file…");
    EXPECT_EQ(shown(printers->titleOfSelectedItem()), "Office");
    press(u"7-9");
    EXPECT_FALSE(panel->outcome()) << "there are no such pages";
    service->answers = false;
    press(u"1-1");
    EXPECT_EQ(shown(panel->message()), "_Sending to the printer \"Office\"…");
    press(u"1-1");  // once is enough
    service->answers = true;
    EXPECT_EQ(waitForOutcome(), "_Sent to the printer \"Office\" as job 12; pages: 1");
    const PrintJob& job = service->printed;
    EXPECT_EQ(job.copies, 1u);
    EXPECT_EQ(job.paper, pages.frame().paper);
    EXPECT_TRUE(job.isTwoSided) << "as the printer does by itself";
    EXPECT_TRUE(job.pdf->writeToFile_atomically(NSString::ofUTF8(folder.path("job.pdf")), true));
    const std::string text = textOf("job.pdf");
    EXPECT_THAT(text, StartsWith("Edited 0\n")) << "no header that nobody asked for";
    EXPECT_EQ(text.find('\f'), text.size() - 1) << "one page";

    open();
    while (printers->numberOfItems() < 3) screen.turn();
    const auto choose = [&](NSInteger printer) {
        printers->selectItemAtIndex(printer);
        panel->printerDidChange(printers);
        return shown(controlIn<NSControl>(panel->window(), WRPrintPanel::kTwoSidedTag)->isEnabled(),
                     controlIn<NSControl>(panel->window(), WRPrintPanel::kCopiesTag)->isEnabled());
    };
    EXPECT_EQ(choose(2), "1 1");
    EXPECT_EQ(choose(3), "0 0") << "the file";
    EXPECT_EQ(choose(0), "0 1");
    press(u"");
    EXPECT_EQ(waitForOutcome(), "_Nothing was printed: the printer \"Attic\" took no document: it is off.");
    // Closing the panel gives up.
    service->answers = false;
    open();
    panel->cancel(nullptr);
    while (service.use_count() > 2) screen.turn();
    open();
    auto ending = NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(
        0, screen.app, "abortModal"_sel, nullptr, false);
    NSRunLoop::mainRunLoop()->addTimer_forMode(ending, NSModalPanelRunLoopMode);
    EXPECT_FALSE(panel->runModal());
    while (service.use_count() > 2) screen.turn();
    PrintService::setShared(nullptr);

    const auto write = [&](NSUInteger count, const char* name) {
        return shown(panel->writePages({0, count}, NSString::ofUTF8(folder.path(name))));
    };
    EXPECT_THAT(write(pages.pageCount(), "all.pdf"), HasSubstr("_Written to"));
    EXPECT_THAT(textOf("all.pdf"), HasSubstr("149"));
    EXPECT_THAT(write(1, "no/all.pdf"), HasSubstr("could not be written"));
}

}  // namespace
