// SPDX-License-Identifier: Apache-2.0
// Benchmarks of Qt that stand beside ours in more than one program: direct signals, posted events.
#pragma once

#include <benchmark/benchmark.h>

#define QT_NO_KEYWORDS
#include <QCoreApplication>
#include <QEvent>
#include <QSignalMapper>
#include <cstdint>
#include <vector>

namespace pelvor {

/// A signal with one argument, to as many receivers as the benchmark's first argument says.
inline void peerQtSignal(benchmark::State& state) {
    struct Receiver : QObject {
        void hear(QObject* object) { heard += object != nullptr; }
        std::uint64_t heard = 0;
    };
    QSignalMapper sender;
    std::vector<Receiver> receivers(static_cast<std::size_t>(state.range(0)));
    for (Receiver& receiver : receivers)
        QObject::connect(&sender, &QSignalMapper::mappedObject, &receiver, &Receiver::hear,
                         Qt::DirectConnection);
    for (auto _ : state) Q_EMIT sender.mappedObject(&sender);
    for (Receiver& receiver : receivers) benchmark::DoNotOptimize(receiver.heard);
}

/// As many receivers as the benchmark's first argument says are posted an event each, and get it.
inline void peerQtPostedEvent(benchmark::State& state) {
    struct Receiver : QObject {
        bool event(QEvent*) override {
            ++worked;
            return true;
        }
        int worked = 0;
    };
    int argumentCount = 1;
    char name[] = "benchmark", *arguments[] = {name, nullptr};
    QCoreApplication application(argumentCount, arguments);
    std::vector<Receiver> receivers(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        for (Receiver& receiver : receivers) QCoreApplication::postEvent(&receiver, new QEvent(QEvent::User));
        QCoreApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace pelvor
