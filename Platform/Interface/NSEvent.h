// SPDX-License-Identifier: Apache-2.0
// NSEvent: what the user does, and which modifier keys are held down.
#pragma once

#include <memory>

#include "Foundation/NSDate.h"
#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"

namespace pelvor {

class NSWindow;
struct BackendKey;

/// Modifier keys as `GetCurrentKeyModifiers` tells them, joined by "|".
enum : std::uint32_t {
    kKeyModifierCommand = 1u << 8,
    kKeyModifierShift = 1u << 9,
    kKeyModifierOption = 1u << 11,
};

/// Returns which modifier keys are down at this moment; what shows windows implements it.
using KeyModifierSource = std::uint32_t (*)();

/// Sets who is asked from now on for the state of the keys; null for nobody. Any thread.
PELVOR_EXPORT void setKeyModifierSource(KeyModifierSource source);

/// The modifier keys that are down, not only while an event is handled. 0 in a program without a screen.
PELVOR_EXPORT std::uint32_t GetCurrentKeyModifiers();

/// The time in 1/60 seconds since some moment, by the clock of events and timers, which tests can move. It
/// starts again from the least number after the greatest one.
PELVOR_EXPORT std::int32_t TickCount();

/// What happened.
enum NSEventType : int {
    NSLeftMouseDown = 1,
    NSLeftMouseUp = 2,
    NSRightMouseDown = 3,
    NSRightMouseUp = 4,
    NSMouseMoved = 5,
    NSLeftMouseDragged = 6,
    NSRightMouseDragged = 7,
    NSMouseEntered = 8,
    NSMouseExited = 9,
    NSKeyDown = 10,
    NSKeyUp = 11,
    NSFlagsChanged = 12,
    NSSystemDefined = 14,
    NSApplicationDefined = 15,
    NSPeriodic = 16,
    NSCursorUpdate = 17,
    NSScrollWheel = 22,
    NSOtherMouseDown = 25,
    NSOtherMouseUp = 26,
    NSOtherMouseDragged = 27,
};

/// Kinds of events that somebody waits for, joined by "|".
enum : std::uint32_t {
    NSLeftMouseDownMask = 1u << NSLeftMouseDown,
    NSLeftMouseUpMask = 1u << NSLeftMouseUp,
    NSRightMouseDownMask = 1u << NSRightMouseDown,
    NSRightMouseUpMask = 1u << NSRightMouseUp,
    NSMouseMovedMask = 1u << NSMouseMoved,
    NSLeftMouseDraggedMask = 1u << NSLeftMouseDragged,
    NSRightMouseDraggedMask = 1u << NSRightMouseDragged,
    NSMouseEnteredMask = 1u << NSMouseEntered,
    NSMouseExitedMask = 1u << NSMouseExited,
    NSKeyDownMask = 1u << NSKeyDown,
    NSKeyUpMask = 1u << NSKeyUp,
    NSFlagsChangedMask = 1u << NSFlagsChanged,
    NSSystemDefinedMask = 1u << NSSystemDefined,
    NSApplicationDefinedMask = 1u << NSApplicationDefined,
    NSPeriodicMask = 1u << NSPeriodic,
    NSCursorUpdateMask = 1u << NSCursorUpdate,
    NSScrollWheelMask = 1u << NSScrollWheel,
    NSOtherMouseDownMask = 1u << NSOtherMouseDown,
    NSOtherMouseUpMask = 1u << NSOtherMouseUp,
    NSOtherMouseDraggedMask = 1u << NSOtherMouseDragged,
    NSAnyEventMask = 0xFFFFFFFF,
};

/// The mask of one type.
constexpr std::uint32_t NSEventMaskFromType(NSEventType type) { return 1u << (type & 31); }

/// Modifier keys of an event, joined by "|". The command key is the one that shortcuts are typed with, "Ctrl"
/// on the keyboards of this system; the alternate key is "Alt"; the control key is the one that is labelled
/// with a logo, "Super".
enum : std::uint32_t {
    NSAlphaShiftKeyMask = 1u << 16,  ///< Caps Lock is on
    NSShiftKeyMask = 1u << 17,
    NSControlKeyMask = 1u << 18,
    NSAlternateKeyMask = 1u << 19,
    NSCommandKeyMask = 1u << 20,
    NSNumericPadKeyMask = 1u << 21,  ///< a key of the numeric pad, or an arrow key
    NSHelpKeyMask = 1u << 22,
    NSFunctionKeyMask = 1u << 23,  ///< a key that types no character
    NSDeviceIndependentModifierFlagsMask = 0xFFFF0000u,
};

/// The units by which the characters of an event, key equivalents and key bindings name keys that type
/// nothing.
enum : unichar {
    NSEnterCharacter = 0x0003,
    NSBackspaceCharacter = 0x0008,
    NSTabCharacter = 0x0009,
    NSNewlineCharacter = 0x000A,
    NSFormFeedCharacter = 0x000C,
    NSCarriageReturnCharacter = 0x000D,
    NSBackTabCharacter = 0x0019,
    NSEscapeCharacter = 0x001B,
    NSDeleteCharacter = 0x007F,  ///< what the key that deletes backwards types
    NSUpArrowFunctionKey = 0xF700,
    NSDownArrowFunctionKey = 0xF701,
    NSLeftArrowFunctionKey = 0xF702,
    NSRightArrowFunctionKey = 0xF703,
    NSF1FunctionKey = 0xF704,
    NSF2FunctionKey = 0xF705,
    NSF3FunctionKey = 0xF706,
    NSF4FunctionKey = 0xF707,
    NSF5FunctionKey = 0xF708,
    NSF6FunctionKey = 0xF709,
    NSF7FunctionKey = 0xF70A,
    NSF8FunctionKey = 0xF70B,
    NSF9FunctionKey = 0xF70C,
    NSF10FunctionKey = 0xF70D,
    NSF11FunctionKey = 0xF70E,
    NSF12FunctionKey = 0xF70F,
    NSF13FunctionKey = 0xF710,
    NSF24FunctionKey = 0xF71B,
    NSF35FunctionKey = 0xF726,
    NSInsertFunctionKey = 0xF727,
    NSDeleteFunctionKey = 0xF728,  ///< what the key that deletes forwards types
    NSHomeFunctionKey = 0xF729,
    NSBeginFunctionKey = 0xF72A,
    NSEndFunctionKey = 0xF72B,
    NSPageUpFunctionKey = 0xF72C,
    NSPageDownFunctionKey = 0xF72D,
    NSPrintScreenFunctionKey = 0xF72E,
    NSScrollLockFunctionKey = 0xF72F,
    NSPauseFunctionKey = 0xF730,
    NSMenuFunctionKey = 0xF735,
    NSUndoFunctionKey = 0xF743,
    NSFindFunctionKey = 0xF745,
    NSHelpFunctionKey = 0xF746,
};

/// Something that happened and that the application hands on: what the user did with keyboard or mouse, or an
/// event of the program's own. Events do not change.
///
///     void Canvas::mouseDown(NSEvent* event) {
///         NSPoint place = convertPoint_fromView(event->locationInWindow(), nullptr);
///         if (event->modifierFlags() & NSShiftKeyMask) extendTo(place);
///         …
///
/// Operations that concern other kinds of events return 0, "" or null. Main thread.
class PELVOR_EXPORT NSEvent : public NSObject {
    PELVOR_CLASS(NSEvent, NSObject);
    PELVOR_CREATORS(
        mouseEventWithType_location_modifierFlags_timestamp_windowNumber_context_eventNumber_clickCount_pressure,
        keyEventWithType_location_modifierFlags_timestamp_windowNumber_context_characters_charactersIgnoringModifiers_isARepeat_keyCode,
        otherEventWithType_location_modifierFlags_timestamp_windowNumber_context_subtype_data1_data2,
        enterExitEventWithType_location_modifierFlags_timestamp_windowNumber_context_eventNumber_trackingNumber_userData);

  public:
    // Creation: borrowed events, as somebody would make them who plays the user. Places are in base
    // coordinates of the window with that number; without a window (0), on the screen. The context is not
    // used. Raise NSInvalidArgumentException for a type of another kind.

    static NSEvent*
    mouseEventWithType_location_modifierFlags_timestamp_windowNumber_context_eventNumber_clickCount_pressure(
        NSEventType type, NSPoint place, std::uint32_t modifiers, NSTimeInterval seconds,
        NSInteger windowNumber, id context, NSInteger eventNumber, NSInteger clickCount, float pressure,
        Class* cls = classObject());
    static NSEvent*
    keyEventWithType_location_modifierFlags_timestamp_windowNumber_context_characters_charactersIgnoringModifiers_isARepeat_keyCode(
        NSEventType type, NSPoint place, std::uint32_t modifiers, NSTimeInterval seconds,
        NSInteger windowNumber, id context, NSString* characters, NSString* charactersIgnoringModifiers,
        bool isARepeat, std::uint16_t keyCode, Class* cls = classObject());
    static NSEvent*
    otherEventWithType_location_modifierFlags_timestamp_windowNumber_context_subtype_data1_data2(
        NSEventType type, NSPoint place, std::uint32_t modifiers, NSTimeInterval seconds,
        NSInteger windowNumber, id context, std::int16_t subtype, NSInteger data1, NSInteger data2,
        Class* cls = classObject());
    static NSEvent*
    enterExitEventWithType_location_modifierFlags_timestamp_windowNumber_context_eventNumber_trackingNumber_userData(
        NSEventType type, NSPoint place, std::uint32_t modifiers, NSTimeInterval seconds,
        NSInteger windowNumber, id context, NSInteger eventNumber, NSInteger trackingNumber, void* userData,
        Class* cls = classObject());

    // Every event

    NSEventType type() { return _type; }
    /// Null for events without a window, and once the window has ended.
    NSWindow* window();
    NSInteger windowNumber() { return _windowNumber; }
    /// The pointer's place in base coordinates of the window; on the screen without a window.
    NSPoint locationInWindow() { return _place; }
    /// NS…KeyMask, joined by "|".
    std::uint32_t modifierFlags() { return _modifiers; }
    /// Seconds by the clock of `TickCount`.
    NSTimeInterval timestamp() { return _seconds; }

    // Mouse

    /// Presses that follow each other quickly at one place: 1, 2 for a double click, 3, …
    NSInteger clickCount() { return _clickCount; }
    /// 0 for the main button, 1 for the one that opens context menus, 2 for the middle one, then others.
    NSInteger buttonNumber() { return _buttonNumber; }
    NSInteger eventNumber() { return _eventNumber; }
    float pressure() { return _pressure; }
    /// How far the pointer moved, in points; or how far to scroll, in lines of text. As the pointer moves,
    /// positive is to the right and down; positive scrolling reveals what is to the left and above.
    float deltaX() { return _deltaX; }
    float deltaY() { return _deltaY; }
    float deltaZ() { return 0; }
    NSInteger trackingNumber() { return _data1; }
    void* userData() { return _userData; }

    // Keys. Raise NSInternalInconsistencyException for events that are no presses or releases of a key.

    /// What the key types under the modifiers; "" for half a dead key; a unit such as NSUpArrowFunctionKey
    /// for a key that types nothing.
    NSString* characters();
    /// What the key types with Shift and the third level alone.
    NSString* charactersIgnoringModifiers();
    /// What key equivalents are compared with: the same by the first keyboard layout that gives the key an
    /// ASCII character, so that a Cyrillic "ы" is "s".
    NSString* shortcutCharacters();
    bool isARepeat() { return _isRepeat; }
    /// Names the key itself, whatever the layout.
    std::uint16_t keyCode() { return _keyCode; }

    // Events of the program's own

    std::int16_t subtype() { return _subtype; }
    NSInteger data1() { return _data1; }
    NSInteger data2() { return _data2; }

    // The state of the moment

    /// Where the pointer is on the screen.
    static NSPoint mouseLocation();
    /// From now on the application's queue gets an event of the type NSPeriodic after `delay` and then each
    /// `period` seconds. Raises NSInternalInconsistencyException if such events come already.
    static void startPeriodicEventsAfterDelay_withPeriod(NSTimeInterval delay, NSTimeInterval period);
    static void stopPeriodicEvents();
    /// Seconds within which a second press makes a double click.
    static NSTimeInterval doubleClickInterval();

    /// "NSEvent: type=KeyDown loc=(10, 20) flags=0x100000 win=3 chars="a"".
    NSString* description() override;

    // C++ only
    /// The key as the back end gave it, or made up from the characters; null for other events.
    const BackendKey* backendKey() { return _key.get(); }

  protected:
    NSEvent();
    ~NSEvent();

  private:
    friend class EventMaker;
    const BackendKey& requireKey(const char* operation);
    void setCommon(NSEventType type, NSPoint place, std::uint32_t modifiers, NSTimeInterval seconds,
                   NSInteger windowNumber);

    NSEventType _type = NSApplicationDefined;
    NSPoint _place;
    std::uint32_t _modifiers = 0;
    NSInteger _windowNumber = 0;
    NSTimeInterval _seconds = 0;
    NSInteger _clickCount = 0;
    NSInteger _buttonNumber = 0;
    NSInteger _eventNumber = 0;
    float _pressure = 0;
    float _deltaX = 0;
    float _deltaY = 0;
    NSInteger _data1 = 0;
    NSInteger _data2 = 0;
    void* _userData = nullptr;
    std::int16_t _subtype = 0;
    std::uint16_t _keyCode = 0;
    bool _isRepeat = false;
    std::unique_ptr<BackendKey> _key;
};

}  // namespace pelvor
