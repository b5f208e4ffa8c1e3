// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSEvent.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "Foundation/NSTimer.h"
#include "Foundation/RunLoop/Deadline.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Events/EventMaker.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSApplication.h"
#include "Interface/NSWindow.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

constinit std::atomic<KeyModifierSource> keyModifierSource{nullptr};

}  // namespace

PELVOR_DEFINE_CLASS(NSEvent, interfaceLibrary) {
    // One line a row, as scripts/check-tables reads them.
    // clang-format off
    methods.creator<"mouseEventWithType:location:modifierFlags:timestamp:windowNumber:context:eventNumber:clickCount:pressure:",
                    &NSEvent::mouseEventWithType_location_modifierFlags_timestamp_windowNumber_context_eventNumber_clickCount_pressure>();
    methods.creator<"keyEventWithType:location:modifierFlags:timestamp:windowNumber:context:characters:charactersIgnoringModifiers:isARepeat:keyCode:",
                    &NSEvent::keyEventWithType_location_modifierFlags_timestamp_windowNumber_context_characters_charactersIgnoringModifiers_isARepeat_keyCode>();
    methods.creator<"otherEventWithType:location:modifierFlags:timestamp:windowNumber:context:subtype:data1:data2:",
                    &NSEvent::otherEventWithType_location_modifierFlags_timestamp_windowNumber_context_subtype_data1_data2>();
    methods.creator<"enterExitEventWithType:location:modifierFlags:timestamp:windowNumber:context:eventNumber:trackingNumber:userData:",
                    &NSEvent::enterExitEventWithType_location_modifierFlags_timestamp_windowNumber_context_eventNumber_trackingNumber_userData>();
    // clang-format on
    methods.instance<"type", &NSEvent::type>();
    methods.instance<"window", &NSEvent::window>();
    methods.instance<"windowNumber", &NSEvent::windowNumber>();
    methods.instance<"locationInWindow", &NSEvent::locationInWindow>();
    methods.instance<"modifierFlags", &NSEvent::modifierFlags>();
    methods.instance<"timestamp", &NSEvent::timestamp>();
    methods.instance<"clickCount", &NSEvent::clickCount>();
    methods.instance<"buttonNumber", &NSEvent::buttonNumber>();
    methods.instance<"eventNumber", &NSEvent::eventNumber>();
    methods.instance<"pressure", &NSEvent::pressure>();
    methods.instance<"deltaX", &NSEvent::deltaX>();
    methods.instance<"deltaY", &NSEvent::deltaY>();
    methods.instance<"deltaZ", &NSEvent::deltaZ>();
    methods.instance<"trackingNumber", &NSEvent::trackingNumber>();
    methods.instance<"userData", &NSEvent::userData>();
    methods.instance<"characters", &NSEvent::characters>();
    methods.instance<"charactersIgnoringModifiers", &NSEvent::charactersIgnoringModifiers>();
    methods.instance<"shortcutCharacters", &NSEvent::shortcutCharacters>();
    methods.instance<"isARepeat", &NSEvent::isARepeat>();
    methods.instance<"keyCode", &NSEvent::keyCode>();
    methods.instance<"subtype", &NSEvent::subtype>();
    methods.instance<"data1", &NSEvent::data1>();
    methods.instance<"data2", &NSEvent::data2>();
    methods.classLevel<"mouseLocation", &NSEvent::mouseLocation>();
    methods.classLevel<"startPeriodicEventsAfterDelay:withPeriod:",
                       &NSEvent::startPeriodicEventsAfterDelay_withPeriod>();
    methods.classLevel<"stopPeriodicEvents", &NSEvent::stopPeriodicEvents>();
    methods.classLevel<"doubleClickInterval", &NSEvent::doubleClickInterval>();
}

NSEvent::NSEvent() = default;
NSEvent::~NSEvent() = default;

// MARK: Creation

namespace {

[[noreturn]] void raiseBadType(const char* operation, NSEventType type) {
    raiseBadArgument(operation,
                     "the type (" + std::to_string(static_cast<int>(type)) + ") is of another kind");
}

constexpr const char* kMouseOperation =
    "mouseEventWithType:location:modifierFlags:timestamp:windowNumber:context:eventNumber:clickCount:"
    "pressure:";
constexpr const char* kKeyOperation =
    "keyEventWithType:location:modifierFlags:timestamp:windowNumber:context:characters:"
    "charactersIgnoringModifiers:isARepeat:keyCode:";
constexpr const char* kOtherOperation =
    "otherEventWithType:location:modifierFlags:timestamp:windowNumber:context:subtype:data1:data2:";
constexpr const char* kCrossingOperation =
    "enterExitEventWithType:location:modifierFlags:timestamp:windowNumber:context:eventNumber:"
    "trackingNumber:userData:";

constexpr std::uint32_t kMouseTypes = NSLeftMouseDownMask | NSLeftMouseUpMask | NSRightMouseDownMask |
                                      NSRightMouseUpMask | NSMouseMovedMask | NSLeftMouseDraggedMask |
                                      NSRightMouseDraggedMask | NSOtherMouseDownMask | NSOtherMouseUpMask |
                                      NSOtherMouseDraggedMask;
constexpr std::uint32_t kKeyTypes = NSKeyDownMask | NSKeyUpMask | NSFlagsChangedMask;
constexpr std::uint32_t kOtherTypes = NSSystemDefinedMask | NSApplicationDefinedMask | NSPeriodicMask;
constexpr std::uint32_t kCrossingTypes = NSMouseEnteredMask | NSMouseExitedMask | NSCursorUpdateMask;

void requireType(NSEventType type, std::uint32_t allowed, const char* operation) {
    const int number = type;
    if (number < 1 || number > 31 || !(NSEventMaskFromType(type) & allowed)) raiseBadType(operation, type);
}

int buttonOfType(NSEventType type) {
    switch (type) {
        case NSRightMouseDown:
        case NSRightMouseUp:
        case NSRightMouseDragged:
            return 1;
        case NSOtherMouseDown:
        case NSOtherMouseUp:
        case NSOtherMouseDragged:
            return 2;
        default:
            return 0;
    }
}

}  // namespace

NSEvent* NSEvent::
    mouseEventWithType_location_modifierFlags_timestamp_windowNumber_context_eventNumber_clickCount_pressure(
        NSEventType type, NSPoint place, std::uint32_t modifiers, NSTimeInterval seconds,
        NSInteger windowNumber, id, NSInteger eventNumber, NSInteger clickCount, float pressure, Class* cls) {
    requireType(type, kMouseTypes, kMouseOperation);
    auto event = make<NSEvent>(cls);
    event->setCommon(type, place, modifiers, seconds, windowNumber);
    event->_eventNumber = eventNumber;
    event->_clickCount = clickCount;
    event->_pressure = pressure;
    event->_buttonNumber = buttonOfType(type);
    return std::move(event).autorelease();
}

NSEvent* NSEvent::
    keyEventWithType_location_modifierFlags_timestamp_windowNumber_context_characters_charactersIgnoringModifiers_isARepeat_keyCode(
        NSEventType type, NSPoint place, std::uint32_t modifiers, NSTimeInterval seconds,
        NSInteger windowNumber, id, NSString* characters, NSString* plainCharacters, bool isARepeat,
        std::uint16_t keyCode, Class* cls) {
    requireType(type, kKeyTypes, kKeyOperation);
    auto event = make<NSEvent>(cls);
    event->setCommon(type, place, modifiers, seconds, windowNumber);
    event->_isRepeat = isARepeat;
    event->_keyCode = keyCode;
    if (type == NSFlagsChanged) return std::move(event).autorelease();
    event->_key = std::make_unique<BackendKey>();
    BackendKey& key = *event->_key;
    key.isDown = type == NSKeyDown;
    key.isRepeat = isARepeat;
    key.code = keyCode;
    key.modifiers = backendModifiers(modifiers);
    key.seconds = seconds;
    if (characters) key.characters = characters->toUTF16();
    key.charactersIgnoringModifiers = plainCharacters ? plainCharacters->toUTF16() : key.characters;
    key.shortcutCharacters = key.charactersIgnoringModifiers;
    if (key.characters.size() == 1 && key.characters[0] < 0x100) key.symbol = key.characters[0];
    return std::move(event).autorelease();
}

NSEvent*
NSEvent::otherEventWithType_location_modifierFlags_timestamp_windowNumber_context_subtype_data1_data2(
    NSEventType type, NSPoint place, std::uint32_t modifiers, NSTimeInterval seconds, NSInteger windowNumber,
    id, std::int16_t subtype, NSInteger data1, NSInteger data2, Class* cls) {
    requireType(type, kOtherTypes, kOtherOperation);
    auto event = make<NSEvent>(cls);
    event->setCommon(type, place, modifiers, seconds, windowNumber);
    event->_subtype = subtype;
    event->_data1 = data1;
    event->_data2 = data2;
    return std::move(event).autorelease();
}

NSEvent* NSEvent::
    enterExitEventWithType_location_modifierFlags_timestamp_windowNumber_context_eventNumber_trackingNumber_userData(
        NSEventType type, NSPoint place, std::uint32_t modifiers, NSTimeInterval seconds,
        NSInteger windowNumber, id, NSInteger eventNumber, NSInteger trackingNumber, void* userData,
        Class* cls) {
    requireType(type, kCrossingTypes, kCrossingOperation);
    auto event = make<NSEvent>(cls);
    event->setCommon(type, place, modifiers, seconds, windowNumber);
    event->_eventNumber = eventNumber;
    event->_data1 = trackingNumber;
    event->_userData = userData;
    return std::move(event).autorelease();
}

void NSEvent::setCommon(NSEventType type, NSPoint place, std::uint32_t modifiers, NSTimeInterval seconds,
                        NSInteger windowNumber) {
    _type = type;
    _place = place;
    _modifiers = modifiers;
    _seconds = seconds;
    _windowNumber = windowNumber;
}

// MARK: What it says

NSWindow* NSEvent::window() {
    NSApplication* app = NSApp();
    return app ? app->windowWithWindowNumber(_windowNumber) : nullptr;
}

const BackendKey& NSEvent::requireKey(const char* operation) {
    if (!_key)
        throw NSException(NSInternalInconsistencyException,
                          std::string(operation) + ": the event is no press or release of a key");
    return *_key;
}

NSString* NSEvent::characters() { return NSString::of(requireKey("characters").characters); }
NSString* NSEvent::charactersIgnoringModifiers() {
    return NSString::of(requireKey("charactersIgnoringModifiers").charactersIgnoringModifiers);
}
NSString* NSEvent::shortcutCharacters() {
    return NSString::of(requireKey("shortcutCharacters").shortcutCharacters);
}

NSString* NSEvent::description() {
    static constexpr const char* kNames[] = {"?",
                                             "LeftMouseDown",
                                             "LeftMouseUp",
                                             "RightMouseDown",
                                             "RightMouseUp",
                                             "MouseMoved",
                                             "LeftMouseDragged",
                                             "RightMouseDragged",
                                             "MouseEntered",
                                             "MouseExited",
                                             "KeyDown",
                                             "KeyUp",
                                             "FlagsChanged",
                                             "?",
                                             "SystemDefined",
                                             "Application",
                                             "Periodic",
                                             "CursorUpdate",
                                             "?",
                                             "?",
                                             "?",
                                             "?",
                                             "ScrollWheel",
                                             "?",
                                             "?",
                                             "OtherMouseDown",
                                             "OtherMouseUp",
                                             "OtherMouseDragged"};
    char text[160];
    std::snprintf(text, sizeof text, "NSEvent: type=%s loc=(%g, %g) flags=0x%x win=%d",
                  kNames[_type < static_cast<int>(std::size(kNames)) ? _type : 0],
                  static_cast<double>(_place.x), static_cast<double>(_place.y), _modifiers, _windowNumber);
    std::string whole = text;
    if (_key) whole += " chars=\"" + NSString::of(_key->characters)->toUTF8() + "\"";
    return NSString::ofUTF8(whole);
}

// MARK: The state of the moment

NSPoint NSEvent::mouseLocation() {
    NSApplication::sharedApplication();
    DisplayConnection& display = DisplayConnection::shared();
    return display.pointOnScreen(display.backend().pointerPlace());
}

NSTimeInterval NSEvent::doubleClickInterval() { return 0.4; }

namespace {

Retained<NSTimer>& periodicTimer() {
    static auto* timer = new Retained<NSTimer>;  // never destroyed, as the application is not
    return *timer;
}

}  // namespace

void NSEvent::startPeriodicEventsAfterDelay_withPeriod(NSTimeInterval delay, NSTimeInterval period) {
    Retained<NSTimer>& timer = periodicTimer();
    if (timer && timer->isValid())
        throw NSException(NSInternalInconsistencyException,
                          "startPeriodicEventsAfterDelay:withPeriod: periodic events come already");
    if (!(delay >= 0 && std::isfinite(delay) && period > 0 && std::isfinite(period)))
        raiseBadArgument("startPeriodicEventsAfterDelay:withPeriod:",
                         "the delay must not be below 0, and the period must be above 0");
    timer = NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats(
        NSDate::dateWithTimeIntervalSinceNow(delay), period, make<DisplayWatcher>().get(),
        "postPeriodicEvent:"_sel, nullptr, true);
    NSRunLoop::currentRunLoop()->addTimer_forMode(timer, NSRunLoopCommonModes);
}

void NSEvent::stopPeriodicEvents() {
    if (Retained<NSTimer> timer = std::exchange(periodicTimer(), nullptr)) timer->invalidate();
    if (NSApplication* app = NSApp()) app->discardEventsMatchingMask_beforeEvent(NSPeriodicMask, nullptr);
}

void setKeyModifierSource(KeyModifierSource source) { keyModifierSource = source; }

std::uint32_t GetCurrentKeyModifiers() {
    KeyModifierSource source = keyModifierSource;
    return source ? source() : 0;
}

std::int32_t TickCount() {
    const double ticks = std::floor(steadyTime() * 60);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::int64_t>(ticks)));
}

}  // namespace pelvor
