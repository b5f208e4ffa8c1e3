// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSAlert.h"

#include <algorithm>
#include <cmath>

#include "Foundation/LibraryTexts.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/Menus/AlertView.h"
#include "Interface/NSApplication.h"
#include "Interface/NSButton.h"
#include "Interface/NSImage.h"
#include "Interface/NSWindow.h"
#include "Interface/Texts/CopiedText.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSAlert, interfaceLibrary) {
    methods.creator<"init", &NSAlert::init>();
    methods.instance<"messageText", &NSAlert::messageText>();
    methods.instance<"setMessageText:", &NSAlert::setMessageText>();
    methods.instance<"informativeText", &NSAlert::informativeText>();
    methods.instance<"setInformativeText:", &NSAlert::setInformativeText>();
    methods.instance<"icon", &NSAlert::icon>();
    methods.instance<"setIcon:", &NSAlert::setIcon>();
    methods.instance<"addButtonWithTitle:", &NSAlert::addButtonWithTitle>();
    methods.instance<"buttons", &NSAlert::buttons>();
    methods.instance<"runModal", &NSAlert::runModal>();
    methods.instance<"window", &NSAlert::window>();
    methods.instance<"buttonPressed:", &NSAlert::buttonPressed>();
}

NSAlert::NSAlert()
    : _messageText(copiedText(nullptr)), _informativeText(_messageText), _buttons(NSMutableArray::init()) {}
NSAlert::~NSAlert() = default;

Retained<NSAlert> NSAlert::init(Class* cls) { return make<NSAlert>(cls); }

Retained<NSAlert> NSAlert::alertWithMessageText_defaultButton_alternateButton_otherButton_informativeText(
    NSString* message, NSString* defaultButton, NSString* alternateButton, NSString* otherButton,
    NSString* informativeText, Class* cls) {
    auto alert = init(cls);
    alert->setMessageText(message);
    alert->setInformativeText(informativeText);
    alert->addButtonWithTitle(defaultButton)->setTag(NSAlertDefaultReturn);
    if (alternateButton) alert->addButtonWithTitle(alternateButton)->setTag(NSAlertAlternateReturn);
    if (otherButton) alert->addButtonWithTitle(otherButton)->setTag(NSAlertOtherReturn);
    return alert;
}

void NSAlert::setMessageText(NSString* text) { _messageText = copiedText(text); }
void NSAlert::setInformativeText(NSString* text) { _informativeText = copiedText(text); }
void NSAlert::setIcon(NSImage* icon) { _icon.set(icon); }
NSArray* NSAlert::buttons() { return NSArray::arrayWithArray(_buttons); }

NSButton* NSAlert::addButtonWithTitle(NSString* title) {
    auto button = NSButton::initWithFrame(NSZeroRect);
    button->setTitle(title ? title : localizedLibraryText(u"_OK"_ns));
    button->setTag(static_cast<int>(NSAlertFirstButtonReturn + static_cast<NSInteger>(_buttons->count())));
    button->setTarget(this);
    button->setAction("buttonPressed:"_sel);
    if (_buttons->count() == 0)
        button->setKeyEquivalent(u"\r"_ns);
    else if (button->title()->isEqualToString(localizedLibraryText(u"_Cancel"_ns)))
        button->setKeyEquivalent(u"\x1b"_ns);
    _buttons->addObject(button);
    return button;
}

void NSAlert::buttonPressed(id button) {
    auto* pressed = cast<NSButton>(button);
    NSApplication* application = NSApplication::sharedApplication();
    if (!_window || application->modalWindow() != _window) return;  // another window is asked
    application->stopModalWithCode(pressed ? pressed->tag() : NSAlertErrorReturn);
}

NSInteger NSAlert::runModal() {
    NSApplication* application = NSApplication::sharedApplication();
    if (!application->state().canAsk()) {
        NSLog(u"%@: %@"_ns, _messageText.get(), _informativeText.get());
        return NSAlertErrorReturn;
    }
    const auto held = Retained<NSAlert>::retaining(this);
    if (_buttons->count() == 0) addButtonWithTitle(nullptr);
    _window = AlertView::windowFor(this);
    const NSInteger code = application->runModalForWindow(_window);
    const auto window = std::exchange(_window, nullptr);
    window->orderOut(nullptr);
    return code < NSRunContinuesResponse || code > NSRunStoppedResponse ? code : NSAlertErrorReturn;
}

}  // namespace pelvor
