// SPDX-License-Identifier: Apache-2.0
#include "Interface/Backend/DisplayConnection.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Foundation/NSArray.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSTimer.h"
#include "Foundation/RunLoop/Deadline.h"
#include "Interface/Backend/BackendLoader.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/Input/InputReply.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/KeyboardLayouts.h"
#include "Interface/NSApplication.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/WindowState.h"

namespace pelvor {
namespace {

// Never destroyed, as the application is not.
std::unique_ptr<DisplayConnection>& sharedConnection() {
    static auto* connection = new std::unique_ptr<DisplayConnection>;
    return *connection;
}

constexpr std::uint32_t kTurnOrdering = 600'000;  // behind what programs order

std::uint32_t modifiersNow() {
    DisplayConnection* display = DisplayConnection::existing();
    if (!display) return 0;
    const std::uint32_t down = display->backend().modifiersDown();
    std::uint32_t modifiers = 0;
    if (down & kBackendCommand) modifiers |= kKeyModifierCommand;
    if (down & kBackendShift) modifiers |= kKeyModifierShift;
    if (down & kBackendOption) modifiers |= kKeyModifierOption;
    return modifiers;
}

ApplicationState& application() { return NSApplication::sharedApplication()->state(); }

}  // namespace

PELVOR_DEFINE_CLASS(DisplayWatcher, interfaceLibrary) {
    methods.instance<"displayIsReadable:", &DisplayWatcher::displayIsReadable>();
    methods.instance<"finishTurn", &DisplayWatcher::finishTurn>();
    methods.instance<"timeIsOver:", &DisplayWatcher::timeIsOver>();
    methods.instance<"needsTurn:", &DisplayWatcher::needsTurn>();
    methods.instance<"postPeriodicEvent:", &DisplayWatcher::postPeriodicEvent>();
}

// MARK: The connection

DisplayConnection::DisplayConnection() : _watcher(make<DisplayWatcher>()) {}

DisplayConnection::~DisplayConnection() {
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    if (_descriptor >= 0) loop->removeDescriptor_forMode(_descriptor, NSRunLoopCommonModes);
    loop->cancelPerformSelectorsWithTarget(_watcher.get());
    if (auto timer = cast<NSTimer>(_timeout.get())) timer->invalidate();
    setKeyModifierSource(nullptr);
}

void DisplayConnection::connect(const Opener& opener) {
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    loop->addCommonMode(NSModalPanelRunLoopMode);
    loop->addCommonMode(NSEventTrackingRunLoopMode);
    _backend = opener(*this);
    _screens = _backend->screens();
    _descriptor = _backend->descriptor();
    if (_descriptor >= 0)
        loop->addDescriptor_events_target_selector_forMode(_descriptor, NSDescriptorReadable, _watcher.get(),
                                                           "displayIsReadable:"_sel, NSRunLoopCommonModes);
    setKeyModifierSource(&modifiersNow);
}

DisplayConnection* DisplayConnection::existing() { return sharedConnection().get(); }

DisplayConnection& DisplayConnection::shared() {
    if (!sharedConnection()) open(&openBackend);
    return *sharedConnection();
}

void DisplayConnection::open(const Opener& opener) {
    sharedConnection().reset(new DisplayConnection);
    sharedConnection()->connect(opener);
}

void DisplayConnection::close() { sharedConnection().reset(); }

// MARK: Keyboard layouts

std::vector<BackendLayout> DisplayConnection::layouts() {
    std::vector<BackendLayout> layouts;
    for (BackendLayout& layout : _backend->layouts()) {
        const auto same = std::ranges::find(layouts, layout.name, &BackendLayout::name);
        if (same == layouts.end())
            layouts.push_back(std::move(layout));
        else if (layout.isCurrent)
            *same = std::move(layout);
    }
    if (!_toldLayouts) _toldLayouts = layouts;
    return layouts;
}

void DisplayConnection::tellLayoutChanges() {
    if (!_toldLayouts) return;  // nobody knows of any
    const auto former = std::exchange(_toldLayouts, std::nullopt);
    const auto now = layouts();
    const auto isCurrent = [](const BackendLayout& layout) { return layout.isCurrent; };
    const auto current = [&](const std::vector<BackendLayout>& list) {
        const auto found = std::ranges::find_if(list, isCurrent);
        return found == list.end() ? std::string() : found->name;
    };
    const bool isOtherList =
        !std::ranges::equal(*former, now, {}, &BackendLayout::name, &BackendLayout::name);
    const bool isOtherCurrent = current(*former) != current(now);
    NSNotificationCenter* centre = NSNotificationCenter::defaultCenter();
    if (isOtherList) centre->postNotificationName_object(NSKeyboardLayoutsDidChangeNotification, nullptr);
    if (isOtherCurrent)
        centre->postNotificationName_object(NSCurrentKeyboardLayoutDidChangeNotification, nullptr);
}

// MARK: Points and pixels

const std::vector<BackendScreen>& DisplayConnection::screens() { return _screens; }

float DisplayConnection::scale() {
    return _screens.empty() || !(_screens[0].scale > 0) ? 1 : _screens[0].scale;
}

NSPoint DisplayConnection::pointOnScreen(PixelPoint place) {
    const PixelRect main = _screens.empty() ? PixelRect{} : _screens[0].frame;
    return {static_cast<float>(place.x - main.x) / scale(),
            static_cast<float>(main.y + main.height - place.y) / scale()};
}

PixelPoint DisplayConnection::pixelOnScreen(NSPoint point) {
    const PixelRect main = _screens.empty() ? PixelRect{} : _screens[0].frame;
    auto pixels = [&](float points) {
        return static_cast<int>(std::lround(std::clamp(points * scale(), -1e6F, 1e6F)));
    };
    return {main.x + pixels(point.x), main.y + main.height - pixels(point.y)};
}

NSRect DisplayConnection::rectOnScreen(const PixelRect& rect) {
    const NSPoint corner = pointOnScreen({rect.x, rect.y + rect.height});
    return {corner, {static_cast<float>(rect.width) / scale(), static_cast<float>(rect.height) / scale()}};
}

PixelRect DisplayConnection::pixelsOnScreen(NSRect rect) {
    const PixelPoint corner = pixelOnScreen({rect.origin.x, NSMaxY(rect)});
    auto extent = [&](float points) {
        return static_cast<int>(std::lround(std::clamp(points * scale(), 0.0F, 32767.0F)));
    };
    return {corner.x, corner.y, extent(rect.size.width), extent(rect.size.height)};
}

NSWindow* DisplayConnection::window(BackendWindow number) {
    auto found = _windows.find(number);
    return found == _windows.end() ? nullptr : found->second;
}

// MARK: The loop

bool DisplayConnection::poll() {
    const bool hasMore = _backend->prepare();
    if (hasMore) _backend->dispatch();
    setTimeout(_backend->timeout());
    return hasMore;
}

void DisplayConnection::setTimeout(double seconds) {
    auto old = std::exchange(_timeout, nullptr);
    if (auto timer = cast<NSTimer>(old.get())) timer->invalidate();
    if (!std::isfinite(seconds)) return;
    auto timer = NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats(
        NSDate::dateWithTimeIntervalSinceNow(std::max(seconds, 0.0)), 0, _watcher.get(), "timeIsOver:"_sel,
        nullptr, false);
    NSRunLoop::mainRunLoop()->addTimer_forMode(timer, NSRunLoopCommonModes);
    _timeout = timer;
}

void DisplayConnection::needsTurn() {
    if (std::exchange(_needsTurn, true)) return;
    NSRunLoop::mainRunLoop()->performSelector_target_argument_order_modes(
        "finishTurn"_sel, _watcher.get(), nullptr, kTurnOrdering,
        NSArray::arrayWithObject(NSRunLoopCommonModes));
}

void DisplayConnection::needsTurnAfter(double seconds) {
    auto timer = NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats(
        NSDate::dateWithTimeIntervalSinceNow(seconds), 0, _watcher.get(), "needsTurn:"_sel, nullptr, false);
    NSRunLoop::mainRunLoop()->addTimer_forMode(timer, NSRunLoopCommonModes);
}

void DisplayConnection::finishTurn() {
    _needsTurn = false;
    if (NSApplication* app = NSApp()) app->state().finishTurn();
    poll();
}

void DisplayWatcher::displayIsReadable(int) {
    DisplayConnection* display = DisplayConnection::existing();
    if (!display) return;
    display->backend().dispatch();
    display->poll();
}

void DisplayWatcher::finishTurn() {
    if (DisplayConnection* display = DisplayConnection::existing()) display->finishTurn();
}

void DisplayWatcher::needsTurn(id) {
    if (DisplayConnection* display = DisplayConnection::existing()) display->needsTurn();
}

void DisplayWatcher::timeIsOver(id) { displayIsReadable(-1); }

void DisplayWatcher::postPeriodicEvent(id) {
    if (NSApplication* app = NSApp())
        app->postEvent_atStart(
            EventMaker::simple(NSPeriodic, 0, NSEvent::mouseLocation(), 0, steadyTime()).get(), false);
}

// MARK: What the back end tells

NSPoint DisplayConnection::placeInWindow(NSWindow* window, PixelPoint place) {
    return {static_cast<float>(place.x) / scale(),
            window->state().content.size.height - static_cast<float>(place.y) / scale()};
}

void DisplayConnection::postSystem(SystemEvent what, NSWindow* window, NSInteger data) {
    application().post(
        NSEvent::otherEventWithType_location_modifierFlags_timestamp_windowNumber_context_subtype_data1_data2(
            NSSystemDefined, {}, 0, steadyTime(), window ? window->windowNumber() : 0, nullptr,
            static_cast<std::int16_t>(what), data, 0));
}

void DisplayConnection::key(BackendWindow number, const BackendKey& key) {
    NSWindow* target = window(number);
    if (!target) return;
    const NSPoint place = target->mouseLocationOutsideOfEventStream();
    application().post(EventMaker::key(target->windowNumber(), place, key).get());
}

void DisplayConnection::text(BackendWindow number, std::u16string_view text) {
    if (NSInputManager::take(window(number), {InputReply::Kind::text, std::u16string(text), 0, {}, {}}))
        postSystem(SystemEvent::input, nullptr);
}

void DisplayConnection::preedit(BackendWindow number, std::u16string_view text, std::size_t caret,
                                std::span<const PreeditSpan> spans) {
    if (NSInputManager::take(
            window(number),
            {InputReply::Kind::preedit, std::u16string(text), caret, {spans.begin(), spans.end()}, {}}))
        postSystem(SystemEvent::input, nullptr);
}

void DisplayConnection::command(BackendWindow number, const BackendKey& key) {
    if (NSInputManager::take(window(number), {InputReply::Kind::command, {}, 0, {}, key}))
        postSystem(SystemEvent::input, nullptr);
}

void DisplayConnection::pointer(BackendWindow number, const BackendPointer& pointer) {
    NSWindow* target = window(number);
    if (!target) return;
    const NSPoint place = placeInWindow(target, pointer.place);
    Retained<NSEvent> event = _maker.pointer(target->windowNumber(), place, pointer, scale());
    if (!event)
        event = EventMaker::enterExit(pointer.kind == BackendPointer::Kind::entered, target->windowNumber(),
                                      place, modifierFlags(pointer.modifiers), pointer.seconds, 0, nullptr);
    application().postPointer(event);
}

void DisplayConnection::expose(BackendWindow number, const PixelRect& damage) {
    if (NSWindow* target = window(number)) target->state().painter.addPixels(damage);
}

void DisplayConnection::paintReady(BackendWindow number) {
    if (window(number)) needsTurn();
}

void DisplayConnection::configured(BackendWindow number, const PixelRect& frame, bool isMinimized,
                                   bool isZoomed) {
    NSWindow* target = window(number);
    if (!target) return;
    WindowState& state = target->state();
    const bool wasPending = state.reported.has_value();
    state.reported = ReportedFrame{frame, isMinimized, isZoomed};
    if (!state.differsFromReport())
        state.reported.reset();
    else if (!wasPending)
        postSystem(SystemEvent::configured, target);
}

void DisplayConnection::focus(BackendWindow number, bool isFocused) {
    if (NSWindow* target = window(number)) postSystem(SystemEvent::focus, target, isFocused);
}

void DisplayConnection::keysTaken() { postSystem(SystemEvent::keysTaken, nullptr); }

void DisplayConnection::close(BackendWindow number) {
    if (NSWindow* target = window(number)) postSystem(SystemEvent::closeWindow, target);
}

void DisplayConnection::trackingLost() {
    if (whenTrackingIsLost) whenTrackingIsLost();
}

void DisplayConnection::layoutChanged() { postSystem(SystemEvent::layoutsChanged, nullptr); }

void DisplayConnection::screensChanged() {
    _screens = _backend->screens();
    postSystem(SystemEvent::screensChanged, nullptr);
}

void DisplayConnection::selectionLost(BackendSelection selection) {
    if (whenSelectionIsLost) whenSelectionIsLost(selection);
}

bool DisplayConnection::drag(BackendWindow number, const BackendDrag& drag) {
    NSWindow* target = window(number);
    return target && whenDragged && whenDragged(target, drag);
}

void DisplayConnection::lost(const std::string& reason) {
    if (_descriptor >= 0)
        NSRunLoop::mainRunLoop()->removeDescriptor_forMode(std::exchange(_descriptor, -1),
                                                           NSRunLoopCommonModes);
    NSLog(u"The display is lost: %@"_ns, NSString::ofUTF8(reason));
    // Whoever follows the mouse waits for its release, which will not come.
    for (const auto& [number, window] : _windows)
        if (window->state().mouseTargets[0].object())
            application().post(
                EventMaker::simple(NSLeftMouseUp, window->windowNumber(), {}, 0, steadyTime()).get());
    trackingLost();
    postSystem(SystemEvent::displayLost, nullptr);
}

}  // namespace pelvor
