// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRMainLoop.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "Foundation/NSRunLoop.h"
#include "NSRunLoop-PelvorAdditions.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Writer/InputText.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRMainLoop, writerLibrary) {
    methods.creator<"init", &WRMainLoop::init>();
    methods.instance<"stayForTarget:selector:", &WRMainLoop::stayForTarget_selector>();
    methods.instance<"end", &WRMainLoop::end>();
    methods.instance<"readInput:", &WRMainLoop::readInput>();
    methods.instance<"readWholeInput:", &WRMainLoop::readWholeInput>();
    methods.instance<"takeSignal:", &WRMainLoop::takeSignal>();
}

Retained<WRMainLoop> WRMainLoop::init(Class* cls) { return make<WRMainLoop>(cls); }

void WRMainLoop::stayForTarget_selector(id target, SEL selector) {
    _target = target;
    _selector = selector;
    _isStaying = true;
    sigset_t mask;
    sigemptyset(&mask);
    for (int signal : {SIGHUP, SIGINT, SIGTERM}) sigaddset(&mask, signal);
    pthread_sigmask(SIG_BLOCK, &mask, &_oldMask);
    _signals = signalfd(-1, &mask, SFD_CLOEXEC | SFD_NONBLOCK);
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    loop->addDescriptor_events_target_selector_forMode(_signals, NSDescriptorReadable, this,
                                                       "takeSignal:"_sel, NSDefaultRunLoopMode);
    try {
        loop->addDescriptor_events_target_selector_forMode(STDIN_FILENO, NSDescriptorReadable, this,
                                                           "readInput:"_sel, NSDefaultRunLoopMode);
        _isInputWatched = true;
    } catch (const NSException&) {  // a plain file, which is always readable, or nothing
        readSoon();
    }
}

void WRMainLoop::runWhile(const std::function<bool()>& hasWork) {
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    while (_isStaying || (!_isBrokenOff && hasWork()))
        loop->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
}

void WRMainLoop::end() {
    if (!std::exchange(_isStaying, false)) return;
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    if (_isInputWatched) loop->removeDescriptor_forMode(STDIN_FILENO, NSDefaultRunLoopMode);
    loop->removeDescriptor_forMode(_signals, NSDefaultRunLoopMode);
    close(_signals);
    pthread_sigmask(SIG_SETMASK, &_oldMask, nullptr);
}

// What stands after the last line end when the input ends is a line, too.
void WRMainLoop::readInput(int descriptor) {
    char bytes[16 * 1024];
    const ssize_t count = read(descriptor, bytes, sizeof bytes);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (count > 0) _input.append(bytes, static_cast<std::size_t>(count));
    if (count <= 0) {
        if (!_input.empty()) _input += '\n';
        if (std::exchange(_isInputWatched, false))
            NSRunLoop::mainRunLoop()->removeDescriptor_forMode(descriptor, NSDefaultRunLoopMode);
    }
    sendLines();
    if (count <= 0) return end();
    if (!_isInputWatched) readSoon();
}

void WRMainLoop::readSoon() {
    NSRunLoop_PelvorAdditions::performSelector_target_argument_order("readWholeInput:"_sel, this, nullptr, 0);
}

void WRMainLoop::readWholeInput(id) { readInput(STDIN_FILENO); }

void WRMainLoop::sendLines() {
    std::size_t start = 0;
    for (std::size_t end; _isStaying && (end = _input.find('\n', start)) != _input.npos; start = end + 1) {
        const std::size_t length = end - start - (end > start && _input[end - 1] == '\r');
        send(_target, _selector, objectOfInput(std::string_view(_input).substr(start, length)));
    }
    _input.erase(0, start);
}

void WRMainLoop::takeSignal(int descriptor) {
    signalfd_siginfo signal;
    if (read(descriptor, &signal, sizeof signal) != sizeof signal) return;
    _isBrokenOff = true;
    end();
}

}  // namespace pelvor
