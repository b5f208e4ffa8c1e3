// SPDX-License-Identifier: Apache-2.0
// Writer's pages: from the press of a key to the painted line and the pages behind it, in texts of paragraphs
// of 550 letters. There is no screen; Writer paints into memory.
#include <benchmark/benchmark.h>

#include <string>

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSRunLoop.h"
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
#include "Writer/Windows/WRZoomView.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr std::size_t kLength = 1 << 20;

std::string text(std::size_t length) {
    static const char* const words[] = {"The",  "quick", "brown", "fox", "jumps",
                                        "over", "a",     "lazy",  "dog", "and"};
    std::string made;
    for (std::size_t i = 0, paragraph = 0; made.size() < length; ++i) {
        made += words[(i * 7 + i / 9) % 10];
        made += made.size() - paragraph > 550 ? '\n' : ' ';
        if (made.back() == '\n') paragraph = made.size();
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

/// Pages in a window that has the keys, with the caret so far into the text.
struct PageWindow {
    PageWindow(std::size_t length, double place) {
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
                NSString::ofUTF8(text(length)),
                NSDictionary::of({{NSFontAttributeName, NSFont::fontWithName_size(u"DejaVu Serif"_ns, 11)}})),
            a4());
        scrollView->setDocumentView(WRZoomView::create(view).get());
        window->setContentView(scrollView);
        window->makeFirstResponder(view);
        window->makeKeyAndOrderFront(nullptr);
        findAllPages();
        const NSRange caret{static_cast<NSUInteger>(place * view->string()->length()), 0};
        view->setSelectedRange(caret);
        view->scrollRangeToVisible(caret);
        turn();
    }

    ~PageWindow() {
        window->close();
        turn();
    }
    static void turn() {
        AutoreleasePool pool;
        while (NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode)) {
        }
    }
    void findAllPages() {
        while (!view->isComplete()) view->findMorePages();
        turn();
    }
    /// Until the key is handled and painted. Pages that are not seen are found later.
    static void press(unichar unit) {
        BackendKey key;
        key.characters = key.charactersIgnoringModifiers = key.shortcutCharacters = std::u16string(1, unit);
        if (unit < 0x100) key.symbol = unit;
        backend->key(key);
        AutoreleasePool pool;
        while (backend->takePresented().empty())
            NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode);
    }

    static inline HeadlessBackend* backend = nullptr;
    AutoreleasePool pool;
    Retained<NSWindow> window;
    Retained<WRPageView> view;
};

// The second argument is the place of the caret in hundredths of the text.
void type(benchmark::State& state, unichar key) {
    PageWindow window(static_cast<std::size_t>(state.range(0)), static_cast<double>(state.range(1)) / 100);
    bool isTyped = false;
    PageWindow::backend->takePresented();
    for (auto _ : state) PageWindow::press((isTyped = !isTyped) ? key : unichar{NSDeleteCharacter});
}

void typeLetters(benchmark::State& state) { type(state, u'x'); }
// Moves a line to all further pages, or back.
void typeReturn(benchmark::State& state) { type(state, u'\r'); }

void findPagesBehind(benchmark::State& state) {
    PageWindow window(static_cast<std::size_t>(state.range(0)), 0);
    NSUInteger pages = 0;
    for (auto _ : state) {
        state.PauseTiming();
        PageWindow::press(u'\r');
        state.ResumeTiming();
        window.findAllPages();
        pages += window.view->pageCount();
    }
    state.counters["pages"] = benchmark::Counter(static_cast<double>(pages), benchmark::Counter::kIsRate);
}

void turnPage(benchmark::State& state) {
    PageWindow window(kLength, 0);
    for (auto _ : state) {
        PageWindow::press(NSPageDownFunctionKey);
        if (window.view->selectedRange().location > kLength * 9 / 10) {
            state.PauseTiming();
            window.view->setSelectedRange({0, 0});
            window.view->scrollRangeToVisible({0, 0});
            PageWindow::turn();
            state.ResumeTiming();
        }
    }
}

void open(benchmark::State& state) {
    for (auto _ : state) PageWindow window(static_cast<std::size_t>(state.range(0)), 0);
}

BENCHMARK(typeLetters)->Args({1000, 50})->Args({kLength, 0})->Args({kLength, 50})->Args({10 * kLength, 0});
BENCHMARK(typeReturn)->Args({kLength, 0})->Args({kLength, 50})->Args({10 * kLength, 0});
BENCHMARK(findPagesBehind)->Arg(kLength)->Unit(benchmark::kMillisecond);
BENCHMARK(turnPage);
BENCHMARK(open)->Arg(kLength)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
