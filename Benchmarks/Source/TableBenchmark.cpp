// SPDX-License-Identifier: Apache-2.0
// A table of 100,000 rows: from a key to the selection of the last row, and the drawing of the rows that are
// seen, on a display that nobody sees.
#include <benchmark/benchmark.h>

#include <vector>

#include "Foundation/NSString.h"
#include "Interface/Backend/HeadlessBackend.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"
#include "PBAutoscrollingTableView.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

extern Library tableBenchmarkLibrary;

/// Gives names such as "Name 00042", and "zebra" for the last row.
class Names final : public NSObject {
    PELVOR_CLASS(Names, NSObject);

  public:
    static constexpr int kCount = 100'000;

    NSInteger numberOfRowsInTableView(id) { return kCount; }
    id tableView_objectValueForTableColumn_row(id, id, NSInteger row) {
        return names[static_cast<std::size_t>(row)].get();
    }
    void fill() {
        for (int row = 0; row + 1 < kCount; ++row)
            names.push_back(NSString::stringWithFormat(u"Name %05d"_ns, row)->copy());
        names.push_back(u"zebra"_ns->copy());
    }
    std::vector<Retained<NSString>> names;
};

PELVOR_DEFINE_CLASS(Names, tableBenchmarkLibrary) {
    methods.instance<"numberOfRowsInTableView:", &Names::numberOfRowsInTableView>();
    methods.instance<"tableView:objectValueForTableColumn:row:",
                     &Names::tableView_objectValueForTableColumn_row>();
}
constexpr Library* kDependencies[] = {&interfaceLibrary};
constexpr Class* kClasses[] = {&Names::classRecord};
constinit Library tableBenchmarkLibrary{"TableBenchmark", kDependencies, kClasses, {}};

namespace {

// The application, a window with the table, and its user.
struct Stage {
    Stage() {
        names->fill();
        DisplayConnection::open([&](BackendSink& sink) {
            auto made = std::make_unique<HeadlessBackend>(sink);
            backend = made.get();
            return made;
        });
        app = NSApplication::sharedApplication();
        window = NSWindow::initWithContentRect_styleMask_backing_defer(
            {{100, 100}, {400, 600}}, NSTitledWindowMask, NSBackingStoreBuffered, true);
        table->addTableColumn(NSTableColumn::initWithIdentifier(nullptr).get());
        table->setDelegate(names);
        table->setDataSource(names);
        window->contentView()->addSubview(table);
        window->makeKeyAndOrderFront(nullptr);
        window->makeFirstResponder(table);
        turn();
    }
    void turn() {
        AutoreleasePool pool;
        while (Retained<NSEvent> event =
                   app->state().next(NSAnyEventMask, nullptr, NSDefaultRunLoopMode, true))
            app->state().handle(event);
    }
    void press(char16_t unit) {
        BackendKey key;
        key.characters = key.charactersIgnoringModifiers = key.shortcutCharacters = std::u16string(1, unit);
        key.symbol = unit;
        backend->key(key);
    }

    AutoreleasePool pool;
    HeadlessBackend* backend = nullptr;
    NSApplication* app = nullptr;
    Retained<Names> names = make<Names>();
    Retained<NSWindow> window;
    Retained<PBAutoscrollingTableView> table = PBAutoscrollingTableView::initWithFrame({{0, 0}, {400, 600}});
};

Stage& stage() {
    static auto* made = new Stage;
    return *made;
}

void typeToSelectTheLastRow(benchmark::State& state) {
    Stage& on = stage();
    for (auto _ : state) {
        state.PauseTiming();
        on.press(NSHomeFunctionKey);  // forgets the letters
        on.turn();
        state.ResumeTiming();
        on.press(u'z');
        on.turn();
        if (on.table->selectedRow() != Names::kCount - 1) return state.SkipWithError("not selected");
    }
}

void drawTheRowsThatAreSeen(benchmark::State& state) {
    Stage& on = stage();
    for (auto _ : state) {
        on.table->setNeedsDisplay(true);
        on.turn();
    }
}

BENCHMARK(typeToSelectTheLastRow)->Unit(benchmark::kMillisecond);
BENCHMARK(drawTheRowsThatAreSeen)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
