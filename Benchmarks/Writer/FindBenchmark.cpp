// SPDX-License-Identifier: Apache-2.0
// Replacing all of 100,000 places in a text of 4.6 million letters that is shown, undoing that, and painting
// what is seen after each. There is no screen; both libraries paint into memory.
#include <benchmark/benchmark.h>

#define QT_NO_KEYWORDS
#include <QApplication>
#include <QTextDocument>
#include <QTextEdit>
#include <string>

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSUndoManager.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Backend/HeadlessBackend.h"
#include "Interface/NSApplication.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSWindow.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"
#include "Text/NSFont.h"
#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRTextFinder.h"
#include "Writer/Windows/WRZoomView.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr unsigned kPlaces = 100000;

std::string text() {
    std::string made;
    for (unsigned i = 1; i <= kPlaces; ++i) {
        made += "The quick brown fox jumps over a lazy dog and";
        made += i % 12 ? ' ' : '\n';
    }
    return made;
}

NSDictionary* a4() {
    auto* settings = NSMutableDictionary::dictionary();
    const auto set = [&](NSString* key, float value) {
        settings->setObject_forKey(NSNumber::numberWithFloat(value), key);
    };
    set(WRPageWidthKey, 595);
    set(WRPageHeightKey, 842);
    for (NSString* key : {WRLeftMarginKey, WRRightMarginKey, WRTopMarginKey, WRBottomMarginKey}) set(key, 72);
    return settings;
}

/// Pages in a window, all of them found.
struct PageWindow {
    explicit PageWindow(bool isAtEnd) {
        registerLibrary(windowsLibrary);
        if (!backend) {
            DisplayConnection::open([](BackendSink& sink) {
                auto made = std::make_unique<HeadlessBackend>(sink);
                backend = made.get();
                return made;
            });
            NSApplication::sharedApplication()->deliverEventsInRunLoop();
        }
        window = NSWindow::initWithContentRect_styleMask_backing_defer(
            {{0, 0}, {800, 900}}, NSTitledWindowMask, NSBackingStoreBuffered, true);
        auto scrollView = NSScrollView::initWithFrame({{0, 0}, {800, 900}});
        scrollView->setHasVerticalScroller(true);
        view = WRPageView::create(
            NSTextStorage::initWithString_attributes(
                NSString::ofUTF8(text()),
                NSDictionary::of({{NSFontAttributeName, NSFont::fontWithName_size(u"DejaVu Serif"_ns, 11)}})),
            a4());
        scrollView->setDocumentView(WRZoomView::create(view).get());
        window->setContentView(scrollView);
        window->makeFirstResponder(view);
        window->makeKeyAndOrderFront(nullptr);
        while (!view->isComplete()) view->findMorePages();
        if (isAtEnd) view->setSelectedRange({view->string()->length(), 0});
        if (isAtEnd) view->scrollRangeToVisible(view->selectedRange());
        do paint();
        while (NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode));
        backend->takePresented();
    }
    ~PageWindow() { window->close(); }
    /// Until something is painted. Pages that are not seen are found later.
    static void paint() {
        AutoreleasePool pool;
        for (int turn = 0; turn < 20 && backend->takePresented().empty(); ++turn)
            NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode);
    }

    static inline HeadlessBackend* backend = nullptr;
    AutoreleasePool pool;
    Retained<NSWindow> window;
    Retained<WRPageView> view;
};

void replace(benchmark::State& state, bool isUndone) {
    PageWindow pages(state.range(0) != 0);
    auto finder = WRTextFinder::init();
    finder->setQuery({u"quick"_ns->copy(), true, false});
    finder->setReplacement(u"slow"_ns);
    const auto step = [&](bool isTimed, const auto& change) {
        if (!isTimed) state.PauseTiming();
        change();
        PageWindow::paint();
        if (!isTimed) state.ResumeTiming();
    };
    const NSUInteger length = pages.view->string()->length();
    for (auto _ : state) {
        step(!isUndone, [&] {
            if (finder->replaceAll(pages.view).count != kPlaces) state.SkipWithError("not replaced");
        });
        step(isUndone, [&] { pages.view->undoManager()->undo(); });
        if (pages.view->string()->length() != length) state.SkipWithError("not undone");
    }
}

void Replace_PageView(benchmark::State& state) { replace(state, false); }
void Undo_PageView(benchmark::State& state) { replace(state, true); }
// At the beginning, and at the end of the text, where all pages before are found again.
BENCHMARK(Replace_PageView)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Undo_PageView)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void replaceInQt(benchmark::State& state, bool isUndone) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 1;
    char name[] = "benchmark", *arguments[] = {name, nullptr};
    QApplication application(count, arguments);
    QTextEdit edit;
    edit.setFont(QFont("DejaVu Serif", 11));
    edit.resize(800, 900);
    edit.setPlainText(QString::fromStdString(text()));
    edit.show();
    application.processEvents();
    const auto step = [&](bool isTimed, const auto& change) {
        if (!isTimed) state.PauseTiming();
        change();
        edit.repaint();
        if (!isTimed) state.ResumeTiming();
    };
    for (auto _ : state) {
        step(!isUndone, [&] {
            QTextCursor all(edit.document());
            all.beginEditBlock();
            for (QTextCursor place(edit.document());;) {
                place = edit.document()->find("quick", place, QTextDocument::FindCaseSensitively);
                if (place.isNull()) break;
                place.insertText("slow");
            }
            all.endEditBlock();
        });
        step(isUndone, [&] { edit.undo(); });
    }
}

void Replace_Peer_QTextEdit(benchmark::State& state) { replaceInQt(state, false); }
void Undo_Peer_QTextEdit(benchmark::State& state) { replaceInQt(state, true); }
BENCHMARK(Replace_Peer_QTextEdit)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(Undo_Peer_QTextEdit)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace pelvor
