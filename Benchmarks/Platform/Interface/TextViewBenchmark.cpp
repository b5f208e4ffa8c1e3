// SPDX-License-Identifier: Apache-2.0
// Text views: from the press of a key to the painted line, and from Page Down to the painted page, in 1 MiB
// of text in paragraphs of 550 letters. Neither library has a screen; both paint into memory.
#include <benchmark/benchmark.h>

#define QT_NO_KEYWORDS
#include <QApplication>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <string>

#include "Foundation/NSDictionary.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTextView.h"
#include "Interface/NSWindow.h"
#include "Platform/Interface/Screenless.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Text/NSFont.h"
#include "Text/TextAttributes.h"

namespace pelvor {
namespace {

constexpr std::size_t kLength = 1 << 20;

/// A text view in a window that has the keys, with the caret in the middle.
struct TextWindow {
    explicit TextWindow(std::size_t length) {
        registerLibrary(interfaceLibrary);
        screenlessBackend();
        window = NSWindow::initWithContentRect_styleMask_backing_defer(
            {{0, 0}, {800, 600}}, NSTitledWindowMask, NSBackingStoreBuffered, true);
        auto scrollView = NSScrollView::initWithFrame({{0, 0}, {800, 600}});
        scrollView->setHasVerticalScroller(true);
        view = NSTextView::initWithFrame({{0, 0}, {788, 600}});
        view->setTypingAttributes(
            NSDictionary::of({{NSFontAttributeName, NSFont::fontWithName_size(u"DejaVuSans"_ns, 12)}}));
        view->setString(NSString::ofUTF8(paragraphsOf(length)));
        view->setAllowsUndo(true);
        scrollView->setDocumentView(view);
        window->contentView()->addSubview(scrollView);
        window->makeKeyAndOrderFront(nullptr);
        window->makeFirstResponder(view);
        view->setSelectedRange({static_cast<NSUInteger>(length / 2), 0});
        view->scrollRangeToVisible(view->selectedRange());
        turnScreenless();
    }
    ~TextWindow() {
        window->close();
        turnScreenless();
    }
    static void press(unichar unit) {
        sendKey(unit);
        turnScreenless();
    }

    AutoreleasePool pool;
    Retained<NSWindow> window;
    Retained<NSTextView> view;
};

void type(benchmark::State& state) {
    TextWindow window(static_cast<std::size_t>(state.range(0)));
    std::size_t pixels = 0;
    bool isTyped = false;
    screenlessBackend().takePresented();
    for (auto _ : state) TextWindow::press((isTyped = !isTyped) ? u'x' : unichar{NSDeleteCharacter});
    for (const PixelRect& rect : screenlessBackend().takePresented())
        pixels += static_cast<std::size_t>(rect.width) * static_cast<std::size_t>(rect.height);
    state.counters["pixels"] = static_cast<double>(pixels) / static_cast<double>(state.iterations());
}

void turnPage(benchmark::State& state) {
    TextWindow window(kLength);
    for (auto _ : state) {
        TextWindow::press(NSPageDownFunctionKey);
        if (window.view->selectedRange().location > kLength * 9 / 10) {
            state.PauseTiming();
            window.view->setSelectedRange({0, 0});
            window.view->scrollRangeToVisible({0, 0});
            turnScreenless();
            state.ResumeTiming();
        }
    }
}

void blink(benchmark::State& state) {
    TextWindow window(kLength);
    for (auto _ : state) {
        send(window.view.get(), "blinkCaret:"_sel, nullptr);
        turnScreenless();
    }
}

QApplication& application() {
    static int count = 3;
    static char name[] = "benchmark", option[] = "-platform", value[] = "offscreen";
    static char* arguments[] = {name, option, value, nullptr};
    static auto* app = new QApplication(count, arguments);
    return *app;
}

template <class Edit>
struct QtWindow {
    explicit QtWindow(std::size_t length) {
        edit.setFont(QFont("DejaVu Sans", 9));
        edit.resize(800, 600);
        edit.setPlainText(QString::fromStdString(paragraphsOf(length)));
        edit.show();
        edit.setFocus();
        auto cursor = edit.textCursor();
        cursor.setPosition(static_cast<int>(length / 2));
        edit.setTextCursor(cursor);
        app.processEvents();
    }
    void press(int key, const QString& typed = {}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, typed);
        QApplication::sendEvent(&edit, &event);
        app.processEvents();
    }
    QApplication& app = application();  // before the first widget
    Edit edit;
};

template <class Edit>
void qtType(benchmark::State& state) {
    QtWindow<Edit> window(static_cast<std::size_t>(state.range(0)));
    bool isTyped = false;
    for (auto _ : state)
        (isTyped = !isTyped) ? window.press(Qt::Key_X, "x") : window.press(Qt::Key_Backspace);
}

template <class Edit>
void qtTurnPage(benchmark::State& state) {
    QtWindow<Edit> window(kLength);
    for (auto _ : state) {
        window.press(Qt::Key_PageDown);
        if (window.edit.textCursor().position() > static_cast<int>(kLength * 9 / 10)) {
            state.PauseTiming();
            window.edit.moveCursor(QTextCursor::Start);
            application().processEvents();
            state.ResumeTiming();
        }
    }
}

BENCHMARK(type)->Arg(1000)->Arg(kLength)->Unit(benchmark::kMicrosecond);
BENCHMARK(qtType<QTextEdit>)->Arg(1000)->Arg(kLength)->Unit(benchmark::kMicrosecond);
BENCHMARK(qtType<QPlainTextEdit>)->Arg(1000)->Arg(kLength)->Unit(benchmark::kMicrosecond);
BENCHMARK(turnPage)->Unit(benchmark::kMicrosecond);
BENCHMARK(qtTurnPage<QTextEdit>)->Unit(benchmark::kMicrosecond);
BENCHMARK(qtTurnPage<QPlainTextEdit>)->Unit(benchmark::kMicrosecond);
BENCHMARK(blink)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace pelvor

BENCHMARK_MAIN();
