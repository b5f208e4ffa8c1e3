// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSRunLoop.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <list>
#include <map>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Foundation/ClockScope.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSFormat.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNotificationQueue.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSTimer.h"
#include "Foundation/RunLoop/Deadline.h"
#include "Foundation/RunLoop/NSDelayedPerform.h"
#include "Foundation/RunLoop/TimerHeap.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"

namespace pelvor {
namespace {

constexpr NSTimeInterval kNever = std::numeric_limits<NSTimeInterval>::infinity();

bool isSameName(NSString* a, NSString* b) { return a == b || (a && b && a->isEqualToString(b)); }

struct Perform {
    SEL selector;
    Retained<Object> target;
    Retained<Object> argument;
    Retained<NSArray> modes;
    std::uint64_t number;
};

struct Watch {
    std::uint64_t number;
    std::uint32_t events;
    Retained<Object> target;
    SEL selector;
    Retained<NSString> mode;
};

struct Descriptor {
    std::vector<Watch> watches;
    std::uint32_t polled = 0;  // the events that the kernel is to report
};

struct TimerMode {
    Retained<NSString> name;
    TimerHeap timers;
};

struct ThreadPerform {
    std::function<void()> work;
    Retained<NSArray> modes;
};

std::uint32_t pollEvents(std::uint32_t events) {
    return (events & NSDescriptorReadable ? EPOLLIN | EPOLLRDHUP : 0u) |
           (events & NSDescriptorWritable ? EPOLLOUT : 0u);
}

// Sleeps at most so many seconds; with infinity, for as long as it takes.
int waitForEvents(int poll, epoll_event* events, int count, NSTimeInterval timeout) {
    if (timeout == kNever) return epoll_wait(poll, events, count, -1);
    if (timeout <= 0) return epoll_wait(poll, events, count, 0);
    constexpr NSTimeInterval kLongest = 1e6;  // a loop that wakes up early sleeps again
    NSTimeInterval seconds = std::min(timeout, kLongest);
    timespec span;
    span.tv_sec = static_cast<time_t>(seconds);
    span.tv_nsec = static_cast<long>((seconds - std::floor(seconds)) * 1e9);
    int ready = epoll_pwait2(poll, events, count, &span, nullptr);
    if (ready >= 0 || errno != ENOSYS) return ready;
    return epoll_wait(poll, events, count, static_cast<int>(std::ceil(seconds * 1000)));
}

}  // namespace

struct NSRunLoop::State {
    int poll = -1;
    int wake = -1;  // readable once `signal` was written to
    int signal = -1;
    std::vector<Retained<NSString>> commonModes;
    std::unordered_multimap<Unretained<Object>, Unretained<NSDelayedPerform>> delayedPerforms;  // by receiver
    std::list<TimerMode> timerModes;
    std::multimap<std::uint32_t, Perform> performs;
    std::unordered_map<int, Descriptor> descriptors;
    Retained<NSString> watchedMode;
    std::uint64_t numbers = 0;
    std::uint64_t turns = 0;
    bool wasWoken = false;                 // noted by the poll for the run that waits
    std::atomic<bool> isWoken{false};      // somebody wants the loop awake
    std::atomic<bool> isSignalled{false};  // the descriptor for waking has been written to

    std::mutex mutex;
    std::list<ThreadPerform> fromThreads;
    std::atomic<std::size_t> threadPerforms{0};
    Run* innermost = nullptr;

    TimerHeap& timersFor(NSString* mode) {
        for (TimerMode& each : timerModes)
            if (isSameName(each.name, mode)) return each.timers;
        timerModes.emplace_back();
        timerModes.back().name = mode->copy();
        return timerModes.back().timers;
    }
};

PELVOR_DEFINE_CLASS(NSRunLoop, foundationLibrary) {
    methods.classLevel<"currentRunLoop", &NSRunLoop::currentRunLoop>();
    methods.classLevel<"mainRunLoop", &NSRunLoop::mainRunLoop>();
    methods.instance<"currentMode", &NSRunLoop::currentMode>();
    methods.instance<"addCommonMode:", &NSRunLoop::addCommonMode>();
    methods.instance<"isMode:amongModes:", &NSRunLoop::isMode_amongModes>();
    methods.instance<"runMode:beforeDate:", &NSRunLoop::runMode_beforeDate>();
    methods.instance<"runUntilDate:", &NSRunLoop::runUntilDate>();
    methods.instance<"run", &NSRunLoop::run>();
    methods.instance<"stop", &NSRunLoop::stop>();
    methods.instance<"wakeUp", &NSRunLoop::wakeUp>();
    methods.instance<"hasWorkForMode:", &NSRunLoop::hasWorkForMode>();
    methods.instance<"addTimer:forMode:", &NSRunLoop::addTimer_forMode>();
    methods.instance<"addDescriptor:events:target:selector:forMode:",
                     &NSRunLoop::addDescriptor_events_target_selector_forMode>();
    methods.instance<"removeDescriptor:forMode:", &NSRunLoop::removeDescriptor_forMode>();
    methods.instance<"performSelector:target:argument:order:modes:",
                     &NSRunLoop::performSelector_target_argument_order_modes>();
    methods.instance<"cancelPerformSelector:target:argument:",
                     &NSRunLoop::cancelPerformSelector_target_argument>();
    methods.instance<"cancelPerformSelectorsWithTarget:", &NSRunLoop::cancelPerformSelectorsWithTarget>();
    methods.instance<"descriptor", &NSRunLoop::descriptor>();
    methods.instance<"limitDateForMode:", &NSRunLoop::limitDateForMode>();
    methods.instance<"performReadyWorkForMode:", &NSRunLoop::performReadyWorkForMode>();
}

NSRunLoop::NSRunLoop() : _state(std::make_unique<State>()) {
    _state->poll = epoll_create1(EPOLL_CLOEXEC);
    // A pipe and not an event descriptor: the kernel assumes that the writer of a pipe is about to sleep, so
    // the loop's thread may run next on the same processor.
    int ends[2] = {-1, -1};
    bool isOpen = pipe2(ends, O_CLOEXEC) == 0;
    _state->wake = ends[0];
    _state->signal = ends[1];
    epoll_event event{EPOLLIN, {}};
    event.data.fd = _state->wake;
    if (_state->poll < 0 || !isOpen || epoll_ctl(_state->poll, EPOLL_CTL_ADD, _state->wake, &event) != 0)
        raiseException(NSGenericException, u"NSRunLoop: the system gives no descriptors to wait with: %s"_ns,
                       std::strerror(errno));
    _state->commonModes.push_back(Retained<NSString>::retaining(NSDefaultRunLoopMode));
}

NSRunLoop::~NSRunLoop() {
    if (_state->wake >= 0) close(_state->wake);
    if (_state->signal >= 0) close(_state->signal);
    if (_state->poll >= 0) close(_state->poll);
}

// A thread's loop ends with the thread. The main thread's loop stays, since other threads may use it at any
// time.
struct OwnRunLoop {
    OwnRunLoop() : loop(make<NSRunLoop>()) {}
    ~OwnRunLoop() { loop->abandon(); }
    Retained<NSRunLoop> loop;
};

NSRunLoop* NSRunLoop::currentRunLoop() {
    if (NSThread::isMainThread()) return mainRunLoop();
    static thread_local const OwnRunLoop own;
    return own.loop;
}

NSRunLoop* NSRunLoop::mainRunLoop() {
    static NSRunLoop* const loop = make<NSRunLoop>().leak();
    return loop;
}

// Releases all work while the loop can still be used: objects that end together with the work may cancel
// other work.
void NSRunLoop::abandon() {
    for (TimerMode& each : _state->timerModes)
        while (!each.timers.isEmpty()) {
            _state->delayedPerforms.clear();  // the list would outlive those whose timers end here
            each.timers.top()->invalidate();
        }
    for (auto performs = std::exchange(_state->performs, {}); !performs.empty();)
        performs.erase(performs.begin());
    auto descriptors = std::exchange(_state->descriptors, {});
    std::list<ThreadPerform> fromThreads;
    std::lock_guard guard(_state->mutex);
    fromThreads.swap(_state->fromThreads);
    _state->threadPerforms = 0;
}

// MARK: Modes

void NSRunLoop::addCommonMode(NSString* mode) {
    if (!mode) raiseException(NSInvalidArgumentException, u"addCommonMode: the mode is null"_ns);
    if (isModeNamed(mode, NSRunLoopCommonModes)) return;
    _state->commonModes.push_back(mode->copy());
    _state->watchedMode = nullptr;
}

// Returns whether work that was added under the name is for the mode.
bool NSRunLoop::isModeNamed(NSString* mode, NSString* name) {
    if (isSameName(mode, name)) return true;
    if (!isSameName(name, NSRunLoopCommonModes)) return false;
    return std::any_of(_state->commonModes.begin(), _state->commonModes.end(),
                       [&](const auto& common) { return isSameName(common, mode); });
}

bool NSRunLoop::isMode_amongModes(NSString* mode, NSArray* modes) {
    if (!modes || modes->count() == 0) return isSameName(mode, NSDefaultRunLoopMode);
    for (id name : modes)
        if (isModeNamed(mode, cast<NSString>(name))) return true;
    return false;
}

// MARK: Running

// The loop's mode for the time of a turn.
class NSRunLoop::Turn {
  public:
    Turn(NSRunLoop* loop, NSString* mode) : _loop(loop), _outer(loop->_currentMode) {
        loop->_currentMode = mode;
        ++loop->_state->turns;
    }
    ~Turn() { _loop->_currentMode = _outer; }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

  private:
    Unretained<NSRunLoop> _loop;
    Unretained<NSString> _outer;
};

bool NSRunLoop::turn(NSString* mode, Wait wait, NSTimeInterval limit) {
    AutoreleasePool pool;
    // The usual mode is compared by its address from here on, and need not be kept.
    Retained<NSString> kept;
    if (isSameName(mode, NSDefaultRunLoopMode))
        mode = NSDefaultRunLoopMode;
    else
        kept.set(mode);
    Turn turn(this, mode);
    return doReadyWork(mode, wait, limit);
}

bool NSRunLoop::doReadyWork(NSString* mode, Wait wait, NSTimeInterval limit) {
    bool hasWorked = firePerforms(mode);
    hasWorked |= fireTimers(mode);
    if (hasWorked || wait == Wait::no || NSNotificationQueue::hasReady(this, mode)) {
        hasWorked |= pollDescriptors(mode, 0);
        hasWorked |= NSNotificationQueue::postAllASAP(this, mode);
        if (hasWorked || NSNotificationQueue::postOneIdle(this, mode)) return true;
        if (wait == Wait::no || _state->wasWoken) return false;
    }
    NSTimeInterval moment = std::min(limit, nextMoment(mode));
    if (moment == kNever && this != mainRunLoop() && !hasWorkForMode(mode)) return false;
    hasWorked = pollDescriptors(mode, moment == kNever ? kNever : std::max(0.0, moment - steadyTime()));
    hasWorked |= fireTimers(mode);
    hasWorked |= firePerforms(mode);
    return NSNotificationQueue::postAllASAP(this, mode) || hasWorked;
}

bool NSRunLoop::runMode_beforeDate(NSString* mode, NSDate* limit) {
    if (!mode) raiseException(NSInvalidArgumentException, u"runMode:beforeDate: the mode is null"_ns);
    return runMode(mode, limit ? steadyMoment(limit) : kNever);
}

bool NSRunLoop::runMode(NSString* mode, NSTimeInterval limit) {
    _state->wasWoken = false;
    while (this == mainRunLoop() || hasWorkForMode(mode)) {
        if (turn(mode, Wait::yes, limit)) return true;
        if (std::exchange(_state->wasWoken, false)) return true;
        if (!(steadyTime() < limit)) return false;
    }
    return false;
}

// A run under way, which `stop` finds.
class NSRunLoop::Run {
  public:
    explicit Run(State& state) : _state(state) {
        std::lock_guard guard(_state.mutex);
        _outer = std::exchange(_state.innermost, this);
    }
    ~Run() {
        std::lock_guard guard(_state.mutex);
        _state.innermost = _outer;
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    bool isStopped() {
        std::lock_guard guard(_state.mutex);
        return _isStopped;
    }
    void stop() { _isStopped = true; }

  private:
    State& _state;
    Run* _outer;
    bool _isStopped = false;
};

void NSRunLoop::runUntilDate(NSDate* limit) {
    NSTimeInterval moment = limit ? steadyMoment(limit) : kNever;
    Run run(*_state);
    while (runMode(NSDefaultRunLoopMode, moment) && !run.isStopped())
        if (!(steadyTime() < moment)) break;
}

void NSRunLoop::run() { runUntilDate(nullptr); }

void NSRunLoop::stop() {
    {
        std::lock_guard guard(_state->mutex);
        if (!_state->innermost) return;
        _state->innermost->stop();
    }
    wakeUp();
}

void NSRunLoop::wakeUp() {
    _state->isWoken.store(true);
    signal();
}

void NSRunLoop::signal() {
    if (_state->isSignalled.exchange(true)) return;
    while (write(_state->signal, "", 1) < 0 && errno == EINTR) {
    }
}

bool NSRunLoop::hasWorkForMode(NSString* mode) {
    if (nextMoment(mode) != kNever) return true;
    for (auto& [number, descriptor] : _state->descriptors)
        for (Watch& watch : descriptor.watches)
            if (isModeNamed(mode, watch.mode)) return true;
    return false;
}

// MARK: Timers

void NSRunLoop::addTimer_forMode(NSTimer* timer, NSString* mode) {
    if (!timer || !mode)
        raiseException(NSInvalidArgumentException, u"addTimer:forMode: the %s is null"_ns,
                       timer ? "mode" : "timer");
    timer->addTo(_state->timersFor(mode));
}

// Fires the timers that are there when this part of the turn begins: a timer that another timer adds waits
// for the next turn.
bool NSRunLoop::fireTimers(NSString* mode) {
    bool hasFired = false;
    NSTimeInterval now = 0;
    for (TimerMode& each : _state->timerModes) {
        if (each.timers.isEmpty() || !isModeNamed(mode, each.name)) continue;
        if (now == 0) now = steadyTime();
        std::uint64_t limit = each.timers.nextArrival();
        while (!each.timers.isEmpty() && each.timers.topMoment() <= now && each.timers.topArrival() < limit) {
            each.timers.top()->fireOnTime(now);
            hasFired = true;
        }
    }
    return hasFired;
}

NSTimeInterval NSRunLoop::nextMoment(NSString* mode) {
    if (hasPerforms(mode) || hasThreadPerforms(mode) || NSNotificationQueue::hasReady(this, mode))
        return -kNever;
    NSTimeInterval moment = kNever;
    for (TimerMode& each : _state->timerModes)
        if (!each.timers.isEmpty() && isModeNamed(mode, each.name))
            moment = std::min(moment, each.timers.topMoment());
    return moment;
}

void NSRunLoop::listDelayed(NSDelayedPerform* perform) {
    _state->delayedPerforms.emplace(perform->receiver(), perform);
}

void NSRunLoop::unlistDelayed(NSDelayedPerform* perform) {
    auto [at, end] = _state->delayedPerforms.equal_range(perform->receiver());
    at = std::find_if(at, end, [&](const auto& each) { return each.second == perform; });
    if (at != end) _state->delayedPerforms.erase(at);
}

void NSRunLoop::cancelDelayed(id receiver, const std::function<bool(NSDelayedPerform*)>& isMeant) {
    std::vector<Retained<NSDelayedPerform>> listed;
    auto [at, end] = _state->delayedPerforms.equal_range(receiver);
    for (; at != end; ++at) listed.push_back(Retained<NSDelayedPerform>::retaining(at->second));
    for (auto& perform : listed) {
        if (!isMeant(perform)) continue;
        unlistDelayed(perform);
        perform->cancel();
    }
}

// MARK: Performs

void NSRunLoop::performSelector_target_argument_order_modes(SEL selector, id target, id argument,
                                                            std::uint32_t order, NSArray* modes) {
    if (!target || !selector)
        raiseException(NSInvalidArgumentException,
                       u"performSelector:target:argument:order:modes: the %s is null"_ns,
                       target ? "selector" : "target");
    _state->performs.emplace(
        order, Perform{selector, Retained<Object>::retaining(target), Retained<Object>::retaining(argument),
                       Retained<NSArray>::retaining(modes), _state->numbers++});
}

void NSRunLoop::cancelPerformSelector_target_argument(SEL selector, id target, id argument) {
    std::vector<Perform> gone;  // let go at the end, since a release may come back here
    auto& performs = _state->performs;
    for (auto at = performs.begin(); at != performs.end();) {
        const Perform& perform = at->second;
        bool isSame =
            perform.target == target && perform.selector == selector &&
            (perform.argument == argument || (perform.argument && perform.argument->isEqual(argument)));
        if (isSame) gone.push_back(std::move(at->second));
        at = isSame ? performs.erase(at) : std::next(at);
    }
}

void NSRunLoop::cancelPerformSelectorsWithTarget(id target) {
    std::vector<Perform> gone;
    auto& performs = _state->performs;
    for (auto at = performs.begin(); at != performs.end();) {
        bool isSame = at->second.target == target;
        if (isSame) gone.push_back(std::move(at->second));
        at = isSame ? performs.erase(at) : std::next(at);
    }
}

bool NSRunLoop::hasPerforms(NSString* mode) {
    return std::any_of(_state->performs.begin(), _state->performs.end(),
                       [&](const auto& each) { return isMode_amongModes(mode, each.second.modes.get()); });
}

// Sends the messages that were there at the beginning. Each message is searched anew, since any of them may
// cancel others.
bool NSRunLoop::firePerforms(NSString* mode) {
    auto& performs = _state->performs;
    if (performs.empty()) return false;
    std::uint64_t limit = _state->numbers;
    for (bool hasFired = false;; hasFired = true) {
        auto at = std::find_if(performs.begin(), performs.end(), [&](const auto& each) {
            return each.second.number < limit && isMode_amongModes(mode, each.second.modes.get());
        });
        if (at == performs.end()) return hasFired;
        Perform perform = std::move(at->second);
        performs.erase(at);
        perform.target->performSelector_withObject(perform.selector, perform.argument);
    }
}

void NSRunLoop::perform(std::function<void()> work, NSArray* modes) {
    if (!work) raiseException(NSInvalidArgumentException, u"perform: the function is empty"_ns);
    {
        std::lock_guard guard(_state->mutex);
        _state->fromThreads.push_back({std::move(work), Retained<NSArray>::retaining(modes)});
        ++_state->threadPerforms;
    }
    signal();
}

bool NSRunLoop::hasThreadPerforms(NSString* mode) {
    if (_state->threadPerforms.load() == 0) return false;
    std::lock_guard guard(_state->mutex);
    return std::any_of(_state->fromThreads.begin(), _state->fromThreads.end(),
                       [&](const ThreadPerform& each) { return isMode_amongModes(mode, each.modes.get()); });
}

// Makes the calls that were there at the beginning. Calls for other modes stay, and if one call raises, the
// calls behind it stay, too.
bool NSRunLoop::serveThreads(NSString* mode) {
    if (_state->threadPerforms.load() == 0) return false;
    std::unique_lock lock(_state->mutex);
    auto& waiting = _state->fromThreads;
    bool hasServed = false;
    for (std::size_t count = waiting.size(); count > 0; --count) {
        auto at = std::find_if(waiting.begin(), waiting.end(), [&](const ThreadPerform& each) {
            return isMode_amongModes(mode, each.modes.get());
        });
        if (at == waiting.end()) break;
        std::list<ThreadPerform> taken;
        taken.splice(taken.end(), waiting, at);
        --_state->threadPerforms;
        lock.unlock();
        taken.front().work();
        taken.clear();
        hasServed = true;
        lock.lock();
    }
    return hasServed;
}

// MARK: Descriptors

void NSRunLoop::addDescriptor_events_target_selector_forMode(int descriptor, std::uint32_t events, id target,
                                                             SEL selector, NSString* mode) {
    epoll_event event{0, {}};
    event.data.fd = descriptor;
    auto isWatchable = [&] {
        if (epoll_ctl(_state->poll, EPOLL_CTL_ADD, descriptor, &event) == 0)
            return epoll_ctl(_state->poll, EPOLL_CTL_DEL, descriptor, &event) == 0;
        return errno == EEXIST;
    };
    const char* fault = !target                   ? "the target is null"
                        : !selector               ? "the selector is null"
                        : !mode                   ? "the mode is null"
                        : pollEvents(events) == 0 ? "there are no events to watch for"
                        : !isWatchable()          ? std::strerror(errno)
                                                  : nullptr;
    if (fault)
        raiseException(
            NSInvalidArgumentException,
            u"addDescriptor:events:target:selector:forMode: descriptor %d cannot be watched: %s"_ns,
            descriptor, fault);
    _state->descriptors[descriptor].watches.push_back({_state->numbers++, events,
                                                       Retained<Object>::retaining(target), selector,
                                                       Retained<NSString>::retaining(mode)});
    _state->watchedMode = nullptr;
}

void NSRunLoop::removeDescriptor_forMode(int descriptor, NSString* mode) {
    auto found = _state->descriptors.find(descriptor);
    if (found == _state->descriptors.end()) return;
    std::vector<Watch> gone;
    auto& watches = found->second.watches;
    for (auto at = watches.begin(); at != watches.end();) {
        bool isGone = isSameName(at->mode, mode);
        if (isGone) gone.push_back(std::move(*at));
        at = isGone ? watches.erase(at) : std::next(at);
    }
    if (watches.empty()) {
        if (found->second.polled) epoll_ctl(_state->poll, EPOLL_CTL_DEL, descriptor, nullptr);
        _state->descriptors.erase(found);
    }
    _state->watchedMode = nullptr;
}

// Asks the kernel for the events that the mode wants, so that no others wake the thread.
void NSRunLoop::watchForMode(NSString* mode) {
    if (isSameName(_state->watchedMode, mode)) return;
    for (auto& [number, descriptor] : _state->descriptors) {
        std::uint32_t wanted = 0;
        for (Watch& watch : descriptor.watches)
            if (isModeNamed(mode, watch.mode)) wanted |= pollEvents(watch.events);
        if (wanted == descriptor.polled) continue;
        epoll_event event{wanted, {}};
        event.data.fd = number;
        int step = !wanted ? EPOLL_CTL_DEL : descriptor.polled ? EPOLL_CTL_MOD : EPOLL_CTL_ADD;
        if (epoll_ctl(_state->poll, step, number, &event) != 0 && step == EPOLL_CTL_MOD)
            epoll_ctl(_state->poll, EPOLL_CTL_ADD, number, &event);  // closed and opened again
        descriptor.polled = wanted;
    }
    _state->watchedMode = mode->copy();
}

bool NSRunLoop::pollDescriptors(NSString* mode, NSTimeInterval timeout) {
    // Without descriptors only a signal can come; whether one has come is known without asking the kernel.
    if (_state->descriptors.empty()) {
        bool awaitsSignal = timeout == kNever || _state->isSignalled.load();
        if (awaitsSignal) acknowledgeSignal(_state->wake);
        if (awaitsSignal || timeout == 0) return serveThreads(mode);
    }
    watchForMode(mode);
    ClockScope* clock = timeout > 0 && timeout != kNever ? ClockScope::current() : nullptr;
    epoll_event events[16];
    int count = waitForEvents(_state->poll, events, 16, clock ? 0 : timeout);
    if (clock && count <= 0) clock->advance(timeout);
    for (int i = 0; i < count; ++i) acknowledgeSignal(events[i].data.fd);
    bool hasServed = false;
    std::uint64_t limit = _state->numbers, turns = _state->turns;
    // A turn inside a call may have served the rest; the kernel reports again what is still ready.
    for (int i = 0; i < count && turns == _state->turns; ++i)
        if (events[i].data.fd != _state->wake)
            hasServed |= serve(mode, events[i].data.fd, events[i].events, limit);
    return (turns == _state->turns && serveThreads(mode)) || hasServed;
}

// Takes note of the signal before the loop calls anything, which may raise. Waits for the signal if need be.
void NSRunLoop::acknowledgeSignal(int ready) {
    if (ready != _state->wake) return;
    char signals[16];
    [[maybe_unused]] ssize_t length = read(_state->wake, signals, sizeof signals);
    _state->isSignalled.exchange(false);
    if (_state->isWoken.exchange(false)) _state->wasWoken = true;
}

bool NSRunLoop::serve(NSString* mode, int descriptor, std::uint32_t events, std::uint64_t limit) {
    std::uint32_t ready = (events & ~EPOLLOUT ? NSDescriptorReadable : 0u) |
                          (events & (EPOLLOUT | EPOLLERR | EPOLLHUP) ? NSDescriptorWritable : 0u);
    bool hasServed = false;
    for (std::uint64_t from = 0;; hasServed = true) {
        auto found = _state->descriptors.find(descriptor);
        if (found == _state->descriptors.end()) return hasServed;
        auto& watches = found->second.watches;
        auto at = std::find_if(watches.begin(), watches.end(), [&](const Watch& each) {
            return each.number >= from && each.number < limit && (each.events & ready) &&
                   isModeNamed(mode, each.mode);
        });
        if (at == watches.end()) return hasServed;
        from = at->number + 1;
        auto target = at->target;
        send<void>(target, at->selector, descriptor);
    }
}

// MARK: Description

namespace {

// Class and address of the object. Its own description may be long, and may call code of the host.
NSString* named(id object) {
    return NSString::stringWithFormat(u"<%s %p>"_ns, object->isa()->name(), static_cast<void*>(object));
}

NSString* joined(NSArray* modes) {
    return modes && modes->count() > 0 ? modes->componentsJoinedByString(u", "_ns) : NSDefaultRunLoopMode;
}

}  // namespace

NSString* NSRunLoop::description() {
    auto text = NSMutableString::init();
    NSString* mode = _currentMode ? _currentMode : u"no mode"_ns;
    text->appendFormat(u"<%s %p: runs in %@, common modes"_ns, isa()->name(), static_cast<void*>(this), mode);
    for (NSString* common : _state->commonModes) text->appendFormat(u" %@"_ns, common);
    for (TimerMode& each : _state->timerModes)
        for (NSTimer* timer : each.timers.timers()) text->appendFormat(u"\n  %@ in %@"_ns, timer, each.name);
    for (auto& [number, descriptor] : _state->descriptors)
        for (Watch& watch : descriptor.watches)
            text->appendFormat(u"\n  descriptor %d%s%s: sends %s to %@ in %@"_ns, number,
                               watch.events & NSDescriptorReadable ? " readable" : "",
                               watch.events & NSDescriptorWritable ? " writable" : "", watch.selector.name(),
                               named(watch.target), watch.mode);
    for (auto& [order, perform] : _state->performs)
        text->appendFormat(u"\n  perform of order %u: sends %s to %@ in %@"_ns, order,
                           perform.selector.name(), named(perform.target), joined(perform.modes));
    if (std::size_t count = _state->threadPerforms.load())
        text->appendFormat(u"\n  %u performs from other threads"_ns, static_cast<unsigned>(count));
    text->appendString(u">"_ns);
    return std::move(text).autorelease();
}

// MARK: In another loop

int NSRunLoop::descriptor() {
    if (!_state->watchedMode) watchForMode(NSDefaultRunLoopMode);
    return _state->poll;
}

NSDate* NSRunLoop::limitDateForMode(NSString* mode) {
    if (!mode) raiseException(NSInvalidArgumentException, u"limitDateForMode: the mode is null"_ns);
    watchForMode(mode);
    NSTimeInterval moment = nextMoment(mode);
    if (moment == kNever) return nullptr;
    return moment == -kNever ? NSDate::distantPast()
                             : NSDate::dateWithTimeIntervalSinceNow(moment - steadyTime());
}

bool NSRunLoop::performReadyWorkForMode(NSString* mode) {
    if (!mode) raiseException(NSInvalidArgumentException, u"performReadyWorkForMode: the mode is null"_ns);
    return turn(mode, Wait::no, kNever);
}

}  // namespace pelvor
