// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRDocumentWindow.h"

#include <filesystem>

#include "Foundation/NSMutableString.h"
#include "Interface/NSScrollView.h"
#include "InterfaceScope.h"
#include "NSView-PelvorAdditions.h"
#include "PBPostLoader.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WRDocument.h"
#include "Writer/Windows/WRPageView.h"
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

}  // namespace
