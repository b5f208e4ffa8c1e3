// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRDocumentWindow.h"

#include <cstdlib>
#include <filesystem>

#include "Foundation/NSData.h"
#include "Foundation/NSMutableString.h"
#include "Interface/NSPanel.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSScrollView.h"
#include "InterfaceScope.h"
#include "NSView-PelvorAdditions.h"
#include "PBPostLoader.h"
#include "TemporaryFolder.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WRDocument.h"
#include "Writer/Windows/WRFindPanel.h"
#include "Writer/Windows/WRPageSetupPanel.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRPrintPanel.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace {

class DocumentWindowTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        registerLibrary(windowsLibrary);
        PBPostLoader::processClassesStartingRegistry(false);
        std::filesystem::current_path(WRITER_PAGES);  // where the style sheet of all documents is
    }
    DocumentWindowTest() {
        auto text = NSMutableString::init();
        for (int i = 0; i < 150; ++i) text->appendFormat(u"%d\n"_ns, i);
        auto document = WRDocument::initWithPath_reader_answer(u"/a/b.txt"_ns, nullptr,
                                                               NSDictionary::of({{WRTextKey, text.get()}}));
        NSString* problem = nullptr;
        window = WRDocumentWindow::create(document, NSDictionary::dictionary(), &problem);
        if (!window) throw std::runtime_error(shown(problem));
        window->show();
        view = window->pageView();
        scrollView = view->enclosingScrollView();
        screen.turn();
    }
    /// The scrollers that are shown, and whether the page is as wide as the room for it.
    std::string look() {
        const float width = NSWidth(view->convertRect_toView(view->bounds(), nullptr));
        std::string text = scrollView->verticalScroller()->isHidden() ? "" : "v";
        if (!scrollView->horizontalScroller()->isHidden()) text += "h";
        return std::abs(width - scrollView->contentSize().width) < 1 ? text + " filled" : text;
    }
    void turnWheelWithControl(NSPoint place, float lines) {
        screen.backend->setModifiers(kBackendCommand);
        screen.scroll(view, place, 0, lines);
        screen.backend->setModifiers(0);
    }

    InterfaceScope screen;
    Retained<WRDocumentWindow> window;
    WRPageView* view = nullptr;
    NSScrollView* scrollView = nullptr;
};

TEST_F(DocumentWindowTest, ShowsScrollersWhereThereIsSomethingToScroll) {
    EXPECT_EQ(look(), "v filled");
    window->zoomIn(nullptr);
    EXPECT_EQ(look(), "vh");
    window->showWholeWidth(nullptr);
    EXPECT_EQ(look(), "v filled");
    while (!view->isComplete()) screen.turn();
    for (int i = 0; i < 9; ++i) window->zoomOut(nullptr);
    EXPECT_EQ(look(), "");
    window->showWholeWidth(nullptr);
    EXPECT_EQ(look(), "v filled");
}

TEST_F(DocumentWindowTest, KeepsTheCaretInSightWhenItZooms) {
    view->setSelectedRange({0, 0});
    view->scrollRangeToVisible({0, 0});
    for (int i = 0; i < 4; ++i) {
        window->zoomIn(nullptr);
        const NSRect caret = view->caretRectForCharacterAtIndex(0);
        EXPECT_TRUE(NSPointInRect({NSMinX(caret), NSMidY(caret)}, view->visibleRect())) << i;
    }
}

TEST_F(DocumentWindowTest, ZoomsByTheWheelAroundThePointer) {
    while (!view->isComplete()) screen.turn();
    window->showNextPage(nullptr);
    const NSPoint place{200, NSMinY(view->visibleRect()) + 300};
    for (const auto& [lines, zoom] : {std::pair{-3, 1.25}, {-3, 1.5}, {3, 1.25}, {3, 1.0}}) {
        const NSPoint pointer = view->convertPoint_toView(place, nullptr);
        turnWheelWithControl(place, static_cast<float>(lines));
        EXPECT_EQ(zoomFactor(view), zoom);
        const NSPoint now = view->convertPoint_fromView(pointer, nullptr);
        EXPECT_NEAR(now.y, place.y, 2) << zoom;
        if (zoom > 1) {
            EXPECT_NEAR(now.x, place.x, 2) << zoom;
        }
    }
    const float before = NSMinY(view->visibleRect());
    screen.scroll(view, place, 0, 3);
    EXPECT_GT(NSMinY(view->visibleRect()), before);
    EXPECT_EQ(zoomFactor(view), 1.0);
}

// What is typed into the panel is looked for in the main window.
TEST_F(DocumentWindowTest, FindsByThePanel) {
    auto panel = WRFindPanel::init();
    panel->orderFront(nullptr);
    screen.turn();
    screen.type(u"149");
    screen.press(u'\r');
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
    EXPECT_EQ(shown(NSPasteboard::pasteboardWithName(NSFindPboard)->stringForType(NSStringPboardType)),
              "149");
    screen.press(u'\t');
    screen.type(u"x");
    panel->replaceAndFind(nullptr);
    EXPECT_EQ(shown(panel->message()), "_Not found") << "there is no other";
    EXPECT_TRUE(view->string()->hasSuffix(u"148\nx\n"_ns));
    screen.press(NSEscapeCharacter);
    EXPECT_FALSE(panel->window()->isVisible());
    // Without the panel, and with a line end.
    const NSRange end = view->string()->rangeOfString(u"148\nx"_ns);
    view->setSelectedRange(end);
    panel->useSelectionForFind(nullptr);
    panel->findNext(nullptr);
    EXPECT_EQ(shown(panel->message()), "_1 of 1, from the other end of the text");
    EXPECT_FALSE(panel->window()->isVisible());
    EXPECT_EQ(view->selectedRange(), end);
    view->insertText(u""_ns);
    panel->findPrevious(nullptr);
    EXPECT_TRUE(panel->window()->isVisible()) << "says that it was not found";
}

// MARK: Paper and printing

TEST_F(DocumentWindowTest, ChangesPaperAndMargins) {
    const NSSize paper = view->pages()->frame().paper;
    const auto look = [&] {
        while (!view->isComplete()) screen.turn();
        const NSSize now = view->pages()->frame().paper;
        const std::string size = now == paper ? "as before" : now.width > now.height ? "sideways" : "upright";
        return size + ", " +
               (view->pageCount() > 3 ? "more pages" : std::to_string(view->pageCount()) + " pages");
    };
    const std::string before = look();
    auto panel = WRPageSetupPanel::create(
        view->pages()->settings(), [&](NSDictionary* settings) { return window->changeSettings(settings); });
    panel->window()->makeKeyAndOrderFront(nullptr);
    screen.turn();
    for (const char16_t* margin : {u"x", u"-1", u"5000"}) {  // the first field, all of it selected
        send(panel->window()->firstResponder(), "selectAll:"_sel, id(nullptr));
        screen.type(margin);
        screen.press(u'\r');
        EXPECT_TRUE(panel->window()->isVisible()) << "says why not";
        EXPECT_EQ(look(), before);
    }
    EXPECT_FALSE(window->document()->settings());
    send(panel->window()->firstResponder(), "selectAll:"_sel, id(nullptr));
    screen.type(u"12,7");
    auto* popUp =
        cast<NSPopUpButton>(panel->window()->contentView()->viewWithTag(WRPageSetupPanel::kOrientationTag));
    popUp->selectItemAtIndex(1);
    screen.press(u'\r');
    EXPECT_FALSE(panel->window()->isVisible());
    EXPECT_EQ(look(), "sideways, more pages");
    EXPECT_NEAR(PageFrame::of(window->document()->settings()).left, 36, 0.01);
    EXPECT_FLOAT_EQ(NSWidth(view->frameOfPage(0)), paper.height);
    send(view, "undo:"_sel, id(nullptr));
    EXPECT_EQ(look(), before);
    EXPECT_FALSE(window->document()->settings());
    screen.turn();
    send(view, "redo:"_sel, id(nullptr));
    EXPECT_EQ(look(), "sideways, more pages");
}

TEST(PagesOfText, UnderstandsWhatPeopleWrite) {
    for (const auto& [text, pages] : std::initializer_list<std::pair<NSString*, NSRange>>{{u""_ns, {0, 9}},
                                                                                          {u"3"_ns, {2, 1}},
                                                                                          {u"2-5"_ns, {1, 4}},
                                                                                          {u" 7-"_ns, {6, 3}},
                                                                                          {u"-3"_ns, {0, 3}}})
        EXPECT_EQ(pagesOfText(text, 9), pages) << text;
    for (NSString* text :
         {u"0"_ns, u"10"_ns, u"5-2"_ns, u"1-2-3"_ns, u"two"_ns, u"2-12"_ns, u"-0"_ns, u"1,2"_ns})
        EXPECT_EQ(pagesOfText(text, 9).length, 0u) << text;
}

// A service with two printers, of which the second one takes nothing.
struct TwoPrinters : PrintService {
    std::vector<Printer> printers() override {
        return {{u"a"_ns->copy(), u"Office"_ns->copy(), true}, {u"b"_ns->copy(), u"Attic"_ns->copy(), false}};
    }
    int print(NSString* printer, NSData* pdf, NSString*, unsigned copies, NSString** reason) override {
        told = printer->toUTF8() + " " + std::to_string(copies);
        printed.set(pdf);
        *reason = u"it is off"_ns;
        return printer->isEqualToString(u"a"_ns) ? 12 : 0;
    }
    static inline std::string told;
    static inline Retained<NSData> printed;
};

TEST_F(DocumentWindowTest, PrintsTheTextAsItIs) {
    if (std::system("pdftotext -v 2>/dev/null")) GTEST_SKIP() << "needs pdftotext";
    TemporaryFolder folder;
    const auto textOf = [&](const char* name) {
        const std::string path = folder.path(name), text = path + ".txt";
        EXPECT_EQ(std::system(("pdftotext -raw " + path + " " + text).c_str()), 0);
        return folder.read(std::string(name) + ".txt");
    };
    PrintService::setShared(std::make_unique<TwoPrinters>());
    view->setSelectedRange({0, 0});
    view->insertText(u"Edited "_ns);
    PageDocument pages(view->textStorage(), view->pages()->settings());
    auto panel = WRPrintPanel::create(&pages, u"b.txt"_ns);
    const auto press = [&](std::u16string_view range) {
        panel->window()->makeKeyAndOrderFront(nullptr);
        screen.turn();
        send(panel->window()->firstResponder(), "selectAll:"_sel, id(nullptr));
        screen.type(range);
        screen.press(u'\r');
    };
    press(u"7-9");
    EXPECT_FALSE(panel->outcome()) << "there are no such pages";
    press(u"1-1");
    EXPECT_EQ(TwoPrinters::told, "a 1");
    EXPECT_EQ(shown(panel->outcome()), "_Sent to the printer \"Office\" as job 12; pages: 1");
    EXPECT_TRUE(TwoPrinters::printed->writeToFile_atomically(NSString::ofUTF8(folder.path("job.pdf")), true));
    const std::string job = textOf("job.pdf");
    EXPECT_EQ(job.substr(0, 15), "b.txt\nEdited 0\n") << "behind the header";
    EXPECT_EQ(job.find('\f'), job.size() - 1) << "one page";
    auto* popUp = cast<NSPopUpButton>(panel->window()->contentView()->viewWithTag(WRPrintPanel::kPrinterTag));
    popUp->selectItemAtIndex(1);
    press(u"");
    EXPECT_EQ(shown(panel->outcome()),
              "_Nothing was printed: the printer \"Attic\" took no document: it is off.");
    PrintService::setShared(nullptr);

    NSString* path = NSString::ofUTF8(folder.path("all.pdf"));
    EXPECT_NE(shown(panel->writePages({0, pages.pageCount()}, path)).find("_Written to"), std::string::npos);
    EXPECT_NE(textOf("all.pdf").find("149"), std::string::npos);
    path = NSString::ofUTF8(folder.path("no/all.pdf"));
    EXPECT_NE(shown(panel->writePages({0, 1}, path)).find("could not be written"), std::string::npos);
}

}  // namespace
