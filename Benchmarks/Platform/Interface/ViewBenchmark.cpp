// SPDX-License-Identifier: Apache-2.0
// Ten thousand views: which one is under a point, resizing, building and showing them. Neither library has a
// screen; both paint into memory.
#include <benchmark/benchmark.h>

#define QT_NO_KEYWORDS
#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>
#include <vector>

#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Backend/HeadlessBackend.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSApplication.h"
#include "Interface/NSWindow.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"
#include "Text/NSString-Drawing.h"

namespace pelvor {
namespace {

constexpr int kAcross = 100;

/// A short text in a place of its own.
class LabelView : public NSView {
    PELVOR_CLASS(LabelView, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    Retained<NSString> title;
    bool isFlipped() override { return true; }
    void drawRect(NSRect) override { drawAtPoint_withAttributes(title, {0, 0}, nullptr); }

  protected:
    LabelView() = default;
    ~LabelView() = default;
};

constexpr Library* kDependencies[] = {&interfaceLibrary};
constexpr Class* kClasses[] = {&LabelView::classRecord};

}  // namespace

constinit Library viewBenchmarkLibrary{"ViewBenchmark", kDependencies, kClasses, {}};

namespace {

PELVOR_DEFINE_CLASS(LabelView, viewBenchmarkLibrary) {}

void begin() {
    static bool isFirst = true;
    if (!std::exchange(isFirst, false)) return;
    DisplayConnection::open([](BackendSink& sink) { return std::make_unique<HeadlessBackend>(sink); });
}

QApplication& application() {
    static int count = 3;
    static char name[] = "benchmark", option[] = "-platform", value[] = "offscreen";
    static char* arguments[] = {name, option, value, nullptr};
    static auto* app = new QApplication(count, arguments);
    return *app;
}

NSRect cell(int index, NSSize size) {
    return {
        {static_cast<float>(index % kAcross) * size.width, static_cast<float>(index / kAcross) * size.height},
        size};
}

Retained<NSWindow> makeWindow() {
    begin();
    return NSWindow::initWithContentRect_styleMask_backing_defer({{0, 0}, {1000, 1000}}, NSTitledWindowMask,
                                                                 NSBackingStoreBuffered, true);
}

void fill(NSView* view, int count, NSSize size, NSUInteger mask = 0) {
    for (int i = 0; i < count; ++i) {
        auto inner = NSView::initWithFrame(cell(i, size));
        inner->setAutoresizingMask(mask);
        view->addSubview(inner);
    }
}

// A row of a hundred in each of a hundred rows.
void fillNested(NSView* view) {
    for (int i = 0; i < kAcross; ++i) {
        auto row = NSView::initWithFrame({{0, static_cast<float>(i) * 10}, {1000, 10}});
        row->setAutoresizingMask(NSViewWidthSizable | NSViewMinYMargin | NSViewHeightSizable);
        fill(row, kAcross, {10, 10}, NSViewWidthSizable | NSViewMinXMargin);
        view->addSubview(row);
    }
}

template <class Hit>
void hitEach(benchmark::State& state, const Hit& hit) {
    int index = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(hit((index * 37) % 1000, (index * 61) % 1000));
        ++index;
    }
}

void hitAmongSiblings(benchmark::State& state) {
    AutoreleasePool pool;
    auto window = makeWindow();
    fill(window->contentView(), kAcross * kAcross, {10, 10});
    hitEach(state, [&](int x, int y) {
        return window->contentView()->hitTest({static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F});
    });
}

void hitNested(benchmark::State& state) {
    AutoreleasePool pool;
    auto window = makeWindow();
    fillNested(window->contentView());
    hitEach(state, [&](int x, int y) {
        return window->contentView()->hitTest({static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F});
    });
}

void resizeNested(benchmark::State& state) {
    AutoreleasePool pool;
    auto window = makeWindow();
    fillNested(window->contentView());
    bool isWide = false;
    for (auto _ : state) {
        isWide = !isWide;
        window->setContentSize(isWide ? NSSize{1200, 1100} : NSSize{1000, 1000});
    }
}

void buildAndShow(benchmark::State& state) {
    begin();
    AutoreleasePool outer;
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    for (auto _ : state) {
        AutoreleasePool pool;
        auto window = makeWindow();
        for (int i = 0; i < kAcross * kAcross; ++i) {
            auto label = LabelView::initWithFrame(cell(i, {10, 10}));
            label->title.set(NSString::stringWithFormat(u"%d"_ns, i));
            window->contentView()->addSubview(label);
        }
        window->makeKeyAndOrderFront(nullptr);
        while (loop->performReadyWorkForMode(NSDefaultRunLoopMode)) {
        }
        window->close();
    }
}

void qtHitAmongSiblings(benchmark::State& state) {
    application();
    QWidget parent;
    for (int i = 0; i < kAcross * kAcross; ++i)
        (new QWidget(&parent))->setGeometry(i % kAcross * 10, i / kAcross * 10, 10, 10);
    parent.resize(1000, 1000);
    hitEach(state, [&](int x, int y) { return parent.childAt(x, y); });
}

void qtHitNested(benchmark::State& state) {
    application();
    QWidget parent;
    for (int i = 0; i < kAcross; ++i) {
        auto* row = new QWidget(&parent);
        row->setGeometry(0, i * 10, 1000, 10);
        for (int j = 0; j < kAcross; ++j) (new QWidget(row))->setGeometry(j * 10, 0, 10, 10);
    }
    parent.resize(1000, 1000);
    hitEach(state, [&](int x, int y) { return parent.childAt(x, y); });
}

void qtResizeNested(benchmark::State& state) {
    QApplication& app = application();
    QWidget parent;
    auto* column = new QVBoxLayout(&parent);
    column->setSpacing(0);
    column->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < kAcross; ++i) {
        auto* row = new QHBoxLayout;
        row->setSpacing(0);
        for (int j = 0; j < kAcross; ++j) row->addWidget(new QWidget);
        column->addLayout(row);
    }
    parent.resize(1000, 1000);
    parent.show();
    app.processEvents();
    bool isWide = false;
    for (auto _ : state) {
        isWide = !isWide;
        parent.resize(isWide ? 1200 : 1000, isWide ? 1100 : 1000);
        column->activate();
    }
}

void qtBuildAndShow(benchmark::State& state) {
    QApplication& app = application();
    for (auto _ : state) {
        QWidget parent;
        for (int i = 0; i < kAcross * kAcross; ++i) {
            auto* label = new QLabel(QString::number(i), &parent);
            label->setGeometry(i % kAcross * 10, i / kAcross * 10, 10, 10);
        }
        parent.resize(1000, 1000);
        parent.show();
        parent.repaint();
        app.processEvents();
    }
}

BENCHMARK(hitAmongSiblings);
BENCHMARK(qtHitAmongSiblings);
BENCHMARK(hitNested);
BENCHMARK(qtHitNested);
BENCHMARK(resizeNested)->Unit(benchmark::kMillisecond);
BENCHMARK(qtResizeNested)->Unit(benchmark::kMillisecond);
BENCHMARK(buildAndShow)->Unit(benchmark::kMillisecond);
BENCHMARK(qtBuildAndShow)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
