// SPDX-License-Identifier: Apache-2.0
// A menu of 1,000 items without a screen: enabling its items, and opening it until its lines are painted.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "BaseInterfaceLibrary.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSString.h"
#include "Interface/NSApplication.h"
#include "Interface/NSWindow.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "Runtime/AutoreleasePool.h"

#include <QApplication>
#include <QMenu>

namespace pelvor {
namespace {

extern Library benchmarkLibrary;

// Takes the actions, validates the items, and closes a menu as soon as it is painted.
class BMEditor : public NSObject {
    PELVOR_CLASS(BMEditor, NSObject);

  public:
    void edit(id) {}
    bool validateEdit(NSMenuItem*) { return true; }
    bool validateMenuItem(NSMenuItem* item) {
        bool isEnabled = true;
        dispatchValidationTo_result(item, this, &isEnabled);
        return isEnabled;
    }
    void menuWillOpen(NSMenu* menu) {
        performSelector_withObject_afterDelay_inModes(this, "close:"_sel, menu, 0,
                                                      NSArray::of({NSEventTrackingRunLoopMode}));
    }
    void close(NSMenu* menu) {
        static_cast<NSWindow*>(NSApp()->orderedWindows()->objectAtIndex(0))->displayIfNeeded();
        menu->cancelTracking();
    }
};

PELVOR_DEFINE_CLASS(BMEditor, benchmarkLibrary) {
    methods.instance<"edit:", &BMEditor::edit>();
    methods.instance<"validateEdit:", &BMEditor::validateEdit>();
    methods.instance<"validateMenuItem:", &BMEditor::validateMenuItem>();
    methods.instance<"menuWillOpen:", &BMEditor::menuWillOpen>();
    methods.instance<"close:", &BMEditor::close>();
}

constexpr Class* kClasses[] = {&BMEditor::classRecord};
constinit Library benchmarkLibrary{"BenchmarkMenus", {}, kClasses, {}};

constexpr int kCount = 1000;

Retained<NSMenu> menuFor(BMEditor* editor) {
    setenv("PELVOR_DISPLAY", "none", 1);
    registerLibrary(baseInterfaceLibrary);
    static const bool hasPosed = (PBMenuItem::performPosing(), true);
    benchmark::DoNotOptimize(hasPosed);
    auto menu = NSMenu::init();
    for (int i = 0; i < kCount; ++i)
        menu->addItemWithTitle_action_keyEquivalent(NSString::ofUTF8("Paragraph style " + std::to_string(i)),
                                                    "edit:"_sel, i % 10 ? u""_ns : u"k"_ns)
            ->setTarget(editor);
    menu->setDelegate(editor);
    return menu;
}

void Validate(benchmark::State& state) {
    AutoreleasePool pool;
    auto editor = make<BMEditor>();
    auto menu = menuFor(editor);
    for (auto _ : state) {
        AutoreleasePool each;
        menu->update();
    }
}
BENCHMARK(Validate)->Unit(benchmark::kMillisecond);

void OpenFirst(benchmark::State& state) {
    AutoreleasePool pool;
    auto editor = make<BMEditor>();
    for (auto _ : state) {
        state.PauseTiming();
        AutoreleasePool each;
        auto menu = menuFor(editor);
        state.ResumeTiming();
        menu->popUpMenuPositioningItem_atLocation_inView(nullptr, {100, 900}, nullptr);
    }
}
BENCHMARK(OpenFirst)->Unit(benchmark::kMillisecond);

void OpenAgain(benchmark::State& state) {
    AutoreleasePool pool;
    auto editor = make<BMEditor>();
    auto menu = menuFor(editor);
    for (auto _ : state) {
        AutoreleasePool each;
        menu->popUpMenuPositioningItem_atLocation_inView(nullptr, {100, 900}, nullptr);
    }
}
BENCHMARK(OpenAgain)->Unit(benchmark::kMillisecond);

void addItems(QMenu& menu) {
    for (int i = 0; i < kCount; ++i) {
        QAction* action = menu.addAction(QString("Paragraph style %1").arg(i));
        if (i % 10 == 0) action->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_K));
    }
}

void open(QMenu& menu) {
    menu.popup({100, 100});
    QCoreApplication::processEvents();
    menu.hide();
    QCoreApplication::processEvents();
}

void startQt() {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    static int count = 1;
    static char name[] = "benchmark", *arguments[] = {name, nullptr};
    static QApplication application(count, arguments);
}

void QtOpenFirst(benchmark::State& state) {
    startQt();
    for (auto _ : state) {
        state.PauseTiming();
        QMenu menu;
        addItems(menu);
        state.ResumeTiming();
        open(menu);
    }
}
BENCHMARK(QtOpenFirst)->Unit(benchmark::kMillisecond);

void QtOpenAgain(benchmark::State& state) {
    startQt();
    QMenu menu;
    addItems(menu);
    for (auto _ : state) open(menu);
}
BENCHMARK(QtOpenAgain)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor

BENCHMARK_MAIN();
