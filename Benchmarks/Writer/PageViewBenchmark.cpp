// SPDX-License-Identifier: Apache-2.0
// Writer's pages: from the press of a key to the painted line and the pages behind it, in texts of paragraphs
// of 550 letters. There is no screen; Writer paints into memory.
#include <benchmark/benchmark.h>

#include "Writer/PageWindow.h"

namespace pelvor {
namespace {

constexpr std::size_t kLength = 1 << 20;

// Until the key is handled and painted.
void press(unichar unit) {
    sendKey(unit);
    PageWindow::paint();
}

// The second argument is the place of the caret in hundredths of the text.
void type(benchmark::State& state, unichar key) {
    PageWindow window(paragraphsOf(static_cast<std::size_t>(state.range(0))),
                      static_cast<double>(state.range(1)) / 100);
    bool isTyped = false;
    for (auto _ : state) press((isTyped = !isTyped) ? key : unichar{NSDeleteCharacter});
}

void typeLetters(benchmark::State& state) { type(state, u'x'); }
// Moves a line to all further pages, or back.
void typeReturn(benchmark::State& state) { type(state, u'\r'); }

void findPagesBehind(benchmark::State& state) {
    PageWindow window(paragraphsOf(static_cast<std::size_t>(state.range(0))), 0);
    NSUInteger pages = 0;
    for (auto _ : state) {
        state.PauseTiming();
        press(u'\r');
        const NSUInteger before = window.view->pages()->rightPages();  // some were found meanwhile
        state.ResumeTiming();
        window.findAllPages();
        pages += window.view->pageCount() - before;
    }
    state.counters["pages"] = benchmark::Counter(static_cast<double>(pages), benchmark::Counter::kIsRate);
}

void turnPage(benchmark::State& state) {
    PageWindow window(paragraphsOf(kLength), 0);
    for (auto _ : state) {
        press(NSPageDownFunctionKey);
        if (window.view->selectedRange().location > kLength * 9 / 10) {
            state.PauseTiming();
            window.view->setSelectedRange({0, 0});
            window.view->scrollRangeToVisible({0, 0});
            turnScreenless();
            state.ResumeTiming();
        }
    }
}

void open(benchmark::State& state) {
    const std::string text = paragraphsOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) PageWindow window(text, 0);
}

// A place behind very many short paragraphs, of which no page was found before.
void goBehindEmptyParagraphs(benchmark::State& state) {
    AutoreleasePool pool;
    NSString* text = NSString::ofUTF8(std::string(static_cast<std::size_t>(state.range(0)), '\n'));
    for (auto _ : state) {
        auto view =
            WRPageView::create(NSTextStorage::initWithString_attributes(text, nullptr), PageWindow::a4());
        benchmark::DoNotOptimize(view->pageWithUnit(text->length()));
    }
}

BENCHMARK(goBehindEmptyParagraphs)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(typeLetters)->Args({1000, 50})->Args({kLength, 0})->Args({kLength, 50})->Args({10 * kLength, 0});
BENCHMARK(typeReturn)->Args({kLength, 0})->Args({kLength, 50})->Args({10 * kLength, 0});
BENCHMARK(findPagesBehind)->Arg(kLength)->Unit(benchmark::kMillisecond);
BENCHMARK(turnPage);
BENCHMARK(open)->Arg(kLength)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
