// SPDX-License-Identifier: Apache-2.0
// A Qt program that has Pelvor's run loop served inside Qt's: its menu comes from the registry, and it counts
// words when nothing else is to be done. With "--once" it ends when the words are counted.
#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Foundation/NSRunLoop.h"
#include "Runtime/AutoreleasePool.h"
#include "TKDesk.h"

namespace {

using namespace pelvor;

// Serves the run loop when its descriptor becomes readable, and when its next deadline comes.
class RunLoopServer {
  public:
    RunLoopServer() : _notifier(NSRunLoop::currentRunLoop()->descriptor(), QSocketNotifier::Read) {
        _timer.setSingleShot(true);
        QObject::connect(&_notifier, &QSocketNotifier::activated, [this] { serve(); });
        QObject::connect(&_timer, &QTimer::timeout, [this] { serve(); });
        setTimer();
    }

  private:
    void serve() {
        NSRunLoop::currentRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode);
        setTimer();
    }
    void setTimer() {
        AutoreleasePool pool;
        NSDate* limit = NSRunLoop::currentRunLoop()->limitDateForMode(NSDefaultRunLoopMode);
        if (!limit) return _timer.stop();
        const double milliseconds = std::ceil(limit->timeIntervalSinceNow() * 1000);
        _timer.start(static_cast<int>(std::clamp(milliseconds, 0.0, 1e9)));
    }

    QSocketNotifier _notifier;
    QTimer _timer;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const bool isOnce = application.arguments().contains("--once");
    AutoreleasePool pool;

    QMainWindow window;
    QMenu* palettes = window.menuBar()->addMenu("Palettes");
    auto* count = new QLabel(&window);
    window.setCentralWidget(count);

    auto desk = TKDesk::create();
    desk->showTitles = [palettes](const std::vector<std::string>& titles) {
        palettes->clear();
        for (const std::string& title : titles) {
            palettes->addAction(QString::fromStdString(title));
            std::printf("menu item %s\n", title.c_str());
        }
    };
    desk->showCount = [&](unsigned words, bool isDone) {
        const std::string text = std::to_string(words) + " words";
        count->setText(QString::fromStdString(text));
        std::puts(text.c_str());
        if (isDone && isOnce) QApplication::quit();
    };
    desk->start();
    RunLoopServer server;
    window.show();
    return QApplication::exec();
}
