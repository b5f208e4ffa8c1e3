// SPDX-License-Identifier: Apache-2.0
// Replacing all of 100,000 places in a text of 4.6 million letters that is shown, undoing that, and painting
// what is seen after each. There is no screen; both libraries paint into memory.
#include <benchmark/benchmark.h>

#define QT_NO_KEYWORDS
#include <QApplication>
#include <QTextDocument>
#include <QTextEdit>
#include <string>

#include "Foundation/NSUndoManager.h"
#include "Writer/PageWindow.h"
#include "Writer/Windows/WRTextFinder.h"

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

void replace(benchmark::State& state, bool isUndone) {
    PageWindow pages(text(), static_cast<double>(state.range(0)));
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
