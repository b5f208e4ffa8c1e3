// SPDX-License-Identifier: Apache-2.0
// WRMainLoop: keeps the program running for as long as there is something to do.
#pragma once

#include <csignal>
#include <functional>
#include <string>

#include "Foundation/NSString.h"

namespace pelvor {

/// Runs the main thread's run loop. Main thread.
class WRMainLoop : public NSObject {
    PELVOR_CLASS(WRMainLoop, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRMainLoop> init(Class* cls = classObject());

    /// Keeps the loop running until `end` is called, standard input ends or a signal SIGHUP, SIGINT or
    /// SIGTERM comes, which then has no other effect. Each line of standard input is sent to the target with
    /// the selector, without its end, as `objectOfInput` makes it.
    void stayForTarget_selector(id target, SEL selector);
    /// Runs while there is work or the loop was told to stay.
    void runWhile(const std::function<bool()>& hasWork);
    /// Ends what `stayForTarget_selector` began.
    void end();

    /// The messages of the run loop.
    void readInput(int descriptor);
    void readWholeInput(id unused);
    void takeSignal(int descriptor);

  protected:
    WRMainLoop() = default;
    ~WRMainLoop() = default;

  private:
    void readSoon();
    void sendLines();

    id _target = nullptr;
    SEL _selector;
    std::string _input;  // bytes that are no whole line yet
    sigset_t _oldMask{};
    int _signals = -1;
    bool _isInputWatched = false;
    bool _isStaying = false;
    bool _isBrokenOff = false;
};

}  // namespace pelvor
