// SPDX-License-Identifier: Apache-2.0
#include "GreetingParts.h"

#include "Foundation/FoundationLibrary.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&GPButton::classRecord, &GPController::classRecord, &GPLabel::classRecord,
                               &GPPanel::classRecord};
constinit Library greetingLibrary{"Greeting", kDependencies, kClasses, {}};

}  // namespace

PELVOR_DEFINE_CLASS(GPLabel, greetingLibrary) {
    methods.instance<"text", &GPLabel::text>();
    methods.instance<"setText:", &GPLabel::setText>();
}

PELVOR_DEFINE_CLASS(GPButton, greetingLibrary) {
    methods.instance<"press", &GPButton::press>();
    methods.instance<"setTarget:", &GPButton::setTarget>();
    methods.instance<"setAction:", &GPButton::setAction>();
}

PELVOR_DEFINE_CLASS(GPPanel, greetingLibrary) {
    methods.creator<"initWithTitle:", &GPPanel::initWithTitle>();
    methods.instance<"parts", &GPPanel::parts>();
    methods.instance<"setParts:", &GPPanel::setParts>();
    methods.instance<"setSize:", &GPPanel::setSize>();
    methods.instance<"setIsResizable:", &GPPanel::setIsResizable>();
    methods.instance<"awakeFromNib", &GPPanel::awakeFromNib>();
}

PELVOR_DEFINE_CLASS(GPController, greetingLibrary) {
    methods.instance<"panel", &GPController::panel>();
    methods.instance<"setPanel:", &GPController::setPanel>();
    methods.instance<"close:", &GPController::close>();
}

void GPButton::press() {
    if (_target) send<void>(_target, _action, this);
}

Retained<GPPanel> GPPanel::initWithTitle(NSString* title, Class* cls) {
    auto panel = make<GPPanel>(cls);
    panel->_title = title->copy();
    return panel;
}

NSString* GPPanel::description() {
    return NSString::stringWithFormat(u"%@, %g by %g, %s, %s"_ns, _title, _size.width, _size.height,
                                      _isResizable ? "resizable" : "fixed",
                                      _isComplete ? "complete" : "unfinished");
}

}  // namespace pelvor
