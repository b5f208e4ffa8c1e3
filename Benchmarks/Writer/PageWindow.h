// SPDX-License-Identifier: Apache-2.0
// Writer's pages in a window that is painted into memory.
#pragma once

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSWindow.h"
#include "Platform/Interface/Screenless.h"
#include "Runtime/Registry.h"
#include "Text/NSFont.h"
#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRZoomView.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

/// Pages of A4 in a window that has the keys, all of them found, with the caret so far into the text: 0 for
/// the beginning, 1 for the end.
struct PageWindow {
    PageWindow(const std::string& text, double place) {
        registerLibrary(windowsLibrary);
        screenlessBackend();
        window = NSWindow::initWithContentRect_styleMask_backing_defer(
            {{0, 0}, {800, 900}}, NSTitledWindowMask, NSBackingStoreBuffered, true);
        auto scrollView = NSScrollView::initWithFrame({{0, 0}, {800, 900}});
        scrollView->setHasVerticalScroller(true);
        NSFont* font = NSFont::fontWithName_size(u"DejaVu Serif"_ns, 11);
        view =
            WRPageView::create(NSTextStorage::initWithString_attributes(
                                   NSString::ofUTF8(text), NSDictionary::of({{NSFontAttributeName, font}})),
                               a4());
        scrollView->setDocumentView(WRZoomView::create(view).get());
        window->setContentView(scrollView);
        window->makeFirstResponder(view);
        window->makeKeyAndOrderFront(nullptr);
        findAllPages();
        const NSRange caret{static_cast<NSUInteger>(place * view->string()->length()), 0};
        view->setSelectedRange(caret);
        view->scrollRangeToVisible(caret);
        turnScreenless();
        screenlessBackend().takePresented();
    }
    ~PageWindow() {
        window->close();
        turnScreenless();
    }

    void findAllPages() {
        while (!view->isComplete()) view->findMorePages();
    }
    /// Until something is painted. Most pages that are not seen are found later.
    static void paint() {
        AutoreleasePool pool;
        for (int turn = 0; turn < 20 && screenlessBackend().takePresented().empty(); ++turn)
            NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode);
    }

    static NSDictionary* a4() {
        auto* settings = NSMutableDictionary::dictionary();
        const auto set = [&](NSString* key, float value) {
            settings->setObject_forKey(NSNumber::numberWithFloat(value), key);
        };
        set(WRPageWidthKey, 595);
        set(WRPageHeightKey, 842);
        for (NSString* key : {WRLeftMarginKey, WRRightMarginKey, WRTopMarginKey, WRBottomMarginKey})
            set(key, 72);
        return settings;
    }

    AutoreleasePool pool;
    Retained<NSWindow> window;
    Retained<WRPageView> view;
};

}  // namespace pelvor
