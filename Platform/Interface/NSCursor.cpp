// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSCursor.h"

#include <array>

#include "Interface/Events/ApplicationState.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/Windows/WindowState.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSCursor, interfaceLibrary) {
    methods.classLevel<"arrowCursor", &NSCursor::arrowCursor>();
    methods.classLevel<"IBeamCursor", &NSCursor::IBeamCursor>();
    methods.classLevel<"pointingHandCursor", &NSCursor::pointingHandCursor>();
    methods.classLevel<"openHandCursor", &NSCursor::openHandCursor>();
    methods.classLevel<"closedHandCursor", &NSCursor::closedHandCursor>();
    methods.classLevel<"crosshairCursor", &NSCursor::crosshairCursor>();
    methods.classLevel<"resizeLeftCursor", &NSCursor::resizeLeftCursor>();
    methods.classLevel<"resizeRightCursor", &NSCursor::resizeRightCursor>();
    methods.classLevel<"resizeLeftRightCursor", &NSCursor::resizeLeftRightCursor>();
    methods.classLevel<"resizeUpCursor", &NSCursor::resizeUpCursor>();
    methods.classLevel<"resizeDownCursor", &NSCursor::resizeDownCursor>();
    methods.classLevel<"resizeUpDownCursor", &NSCursor::resizeUpDownCursor>();
    methods.classLevel<"operationNotAllowedCursor", &NSCursor::operationNotAllowedCursor>();
    methods.classLevel<"currentCursor", &NSCursor::currentCursor>();
    methods.instance<"set", &NSCursor::set>();
    methods.instance<"push", &NSCursor::push>();
    methods.classLevel<"popCursor", &NSCursor::popCursor>();
    methods.instance<"pop", &NSCursor::pop>();
    methods.classLevel<"hide", &NSCursor::hide>();
    methods.classLevel<"unhide", &NSCursor::unhide>();
    methods.classLevel<"setHiddenUntilMouseMoves:", &NSCursor::setHiddenUntilMouseMoves>();
}

namespace {

constexpr const char* kNames[] = {
    "arrow",       "text",         "pointing hand",     "open hand", "closed hand", "crosshair",
    "resize left", "resize right", "resize left right", "resize up", "resize down", "resize up down",
    "not allowed", "hidden"};

ApplicationState& application() { return NSApplication::sharedApplication()->state(); }

}  // namespace

NSCursor::NSCursor() : _shape(BackendCursor::arrow) {}

NSCursor* NSCursor::cursorOf(BackendCursor shape) {
    static std::array<Retained<NSCursor>, std::size(kNames)> cursors;
    Retained<NSCursor>& cursor = cursors[static_cast<std::size_t>(shape)];
    if (!cursor) {
        cursor = make<NSCursor>();
        cursor->_shape = shape;
    }
    return cursor;
}

NSCursor* NSCursor::arrowCursor() { return cursorOf(BackendCursor::arrow); }
NSCursor* NSCursor::IBeamCursor() { return cursorOf(BackendCursor::text); }
NSCursor* NSCursor::pointingHandCursor() { return cursorOf(BackendCursor::pointingHand); }
NSCursor* NSCursor::openHandCursor() { return cursorOf(BackendCursor::openHand); }
NSCursor* NSCursor::closedHandCursor() { return cursorOf(BackendCursor::closedHand); }
NSCursor* NSCursor::crosshairCursor() { return cursorOf(BackendCursor::crosshair); }
NSCursor* NSCursor::resizeLeftCursor() { return cursorOf(BackendCursor::resizeLeft); }
NSCursor* NSCursor::resizeRightCursor() { return cursorOf(BackendCursor::resizeRight); }
NSCursor* NSCursor::resizeLeftRightCursor() { return cursorOf(BackendCursor::resizeLeftRight); }
NSCursor* NSCursor::resizeUpCursor() { return cursorOf(BackendCursor::resizeUp); }
NSCursor* NSCursor::resizeDownCursor() { return cursorOf(BackendCursor::resizeDown); }
NSCursor* NSCursor::resizeUpDownCursor() { return cursorOf(BackendCursor::resizeUpDown); }
NSCursor* NSCursor::operationNotAllowedCursor() { return cursorOf(BackendCursor::notAllowed); }

NSCursor* NSCursor::currentCursor() {
    auto& cursors = application().cursors;
    return cursors.empty() ? arrowCursor() : cursors.back().get();
}

void NSCursor::set() {
    ApplicationState& app = application();
    if (app.cursors.empty())
        app.cursors.push_back(Retained<NSCursor>::retaining(this));
    else
        app.cursors.back().set(this);
    app.showCursor();
}

void NSCursor::push() {
    ApplicationState& app = application();
    if (app.cursors.empty()) app.cursors.push_back(Retained<NSCursor>::retaining(arrowCursor()));
    app.cursors.push_back(Retained<NSCursor>::retaining(this));
    app.showCursor();
}

void NSCursor::popCursor() {
    ApplicationState& app = application();
    if (app.cursors.size() > 1) app.cursors.pop_back();
    app.showCursor();
}

void NSCursor::pop() { popCursor(); }

void NSCursor::hide() {
    ++application().hiddenCursors;
    application().showCursor();
}

void NSCursor::unhide() {
    ApplicationState& app = application();
    if (app.hiddenCursors > 0) --app.hiddenCursors;
    app.showCursor();
}

void NSCursor::setHiddenUntilMouseMoves(bool isHidden) {
    application().isCursorHiddenUntilMove = isHidden;
    application().showCursor();
}

NSString* NSCursor::description() {
    return NSString::stringWithFormat(u"<NSCursor: %s>"_ns, kNames[static_cast<std::size_t>(_shape)]);
}

}  // namespace pelvor
