// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSScreen.h"

#include "Foundation/NSMutableArray.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/InterfaceLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSScreen, interfaceLibrary) {
    methods.classLevel<"screens", &NSScreen::screens>();
    methods.classLevel<"mainScreen", &NSScreen::mainScreen>();
    methods.instance<"frame", &NSScreen::frame>();
    methods.instance<"visibleFrame", &NSScreen::visibleFrame>();
    methods.instance<"userSpaceScaleFactor", &NSScreen::userSpaceScaleFactor>();
    methods.instance<"localizedName", &NSScreen::localizedName>();
}

NSArray* NSScreen::screens() {
    NSApplication::sharedApplication();
    DisplayConnection& display = DisplayConnection::shared();
    NSMutableArray* list = NSMutableArray::array();
    for (const BackendScreen& known : display.screens()) {
        auto screen = make<NSScreen>();
        screen->_frame = display.rectOnScreen(known.frame);
        screen->_visibleFrame = display.rectOnScreen(known.visibleFrame);
        screen->_scale = known.scale;
        screen->_name.set(NSString::ofUTF8(known.name));
        list->addObject(screen);
    }
    return list;
}

NSScreen* NSScreen::mainScreen() {
    NSWindow* key = NSApplication::sharedApplication()->keyWindow();
    if (NSScreen* screen = key ? key->screen() : nullptr) return screen;
    return static_cast<NSScreen*>(screens()->objectAtIndex(0));
}

bool NSScreen::isEqual(id other) {
    auto* screen = cast<NSScreen>(other);
    return screen && screen->_frame == _frame && screen->_visibleFrame == _visibleFrame &&
           screen->_scale == _scale && screen->_name->isEqual(_name);
}

std::uintptr_t NSScreen::hash() { return _name->hash(); }

NSString* NSScreen::description() {
    return NSString::stringWithFormat(u"<NSScreen %p: %@ %@>"_ns, this, _name.get(),
                                      NSStringFromRect(_frame));
}

}  // namespace pelvor
