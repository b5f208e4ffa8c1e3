// SPDX-License-Identifier: Apache-2.0
#include "NSInputManager-PelvorAdditions.h"

#include <map>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSWorkspace.h"
#include "Interface/NSAlert.h"
#include "PBUtil.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSInputManager>& methods) {
    using Additions = NSInputManager_PelvorAdditions;
    methods.classLevel<"availableKeyboardLayouts", &Additions::availableKeyboardLayouts>();
    methods.classLevel<"currentKeySciptCode", &Additions::currentKeySciptCode>();
    methods.classLevel<"currentKeyboardLayout", &Additions::currentKeyboardLayout>();
    methods.classLevel<"setCurrentKeyboardLayout:", &Additions::setCurrentKeyboardLayout>();
    methods.classLevel<"showAlertForFailedKeyboardLayout:", &Additions::showAlertForFailedKeyboardLayout>();
}

struct KnownMethods {
    std::vector<KeyboardLayoutRef> layouts;  // that the list is of
    Retained<NSArray> list;
    std::map<KeyboardLayoutRef, Retained<PBKeyboardInputMethod>>
        methods;  // also of layouts no longer enabled
    Retained<PBKeyboardInputMethod> current;
};

KnownMethods& known() {
    static auto& methods = *new KnownMethods;
    return methods;
}

}  // namespace

constinit const Category NSInputManager_PelvorAdditions_category =
    Category::of<NSInputManager, defineAdditions>("PelvorAdditions");

NSArray* NSInputManager_PelvorAdditions::availableKeyboardLayouts() {
    NSInteger count = 0;
    if (KLGetKeyboardLayoutCount(&count) != noErr) return NSArray::array();
    std::vector<KeyboardLayoutRef> layouts;
    KeyboardLayoutRef layout = nullptr;
    for (NSInteger i = 0; i < count && KLGetKeyboardLayoutAtIndex(i, &layout) == noErr; ++i)
        layouts.push_back(layout);
    if (known().list && known().layouts == layouts) return known().list;

    auto list = NSMutableArray::init();
    for (KeyboardLayoutRef each : layouts) {
        auto& method = known().methods[each];
        if (!method) method = PBKeyboardInputMethod::initWithKeyboardLayoutRef(each);
        list->addObject(method);
    }
    known().layouts = std::move(layouts);
    return std::exchange(known().list, list->copy()).autorelease(), known().list;
}

std::int32_t NSInputManager_PelvorAdditions::currentKeySciptCode() {
    return GetScriptManagerVariable(smKeyScript) & 0xFF;
}

PBKeyboardInputMethod* NSInputManager_PelvorAdditions::currentKeyboardLayout() {
    KeyboardLayoutRef layout = nullptr;
    if (KLGetCurrentKeyboardLayout(&layout) != noErr) return nullptr;
    const std::int32_t script = currentKeySciptCode();
    auto& current = known().current;
    if (current && current->keyboardLayoutRef() == layout && current->scriptCode() == script) return current;
    std::exchange(current, PBKeyboardInputMethod::initWithKeyboardLayoutRef_scriptCode(layout, script))
        .autorelease();
    return current;
}

bool NSInputManager_PelvorAdditions::setCurrentKeyboardLayout(PBKeyboardInputMethod* method) {
    if (!method) return false;
    constexpr std::int32_t kForced = 0x80;
    if (method->scriptCode() != currentKeySciptCode())
        KeyScript(static_cast<std::int16_t>(method->scriptCode() | kForced));
    if (KLSetCurrentKeyboardLayout(method->keyboardLayoutRef()) == noErr) {
        method->setDisabled(false);
        return true;
    }
    if (method->isDisabled()) return false;
    method->setDisabled(true);
    NSRunLoop::mainRunLoop()->performSelector_target_argument_order_modes(
        "showAlertForFailedKeyboardLayout:"_sel, NSInputManager::classObject(), method, 0,
        NSArray::of({NSDefaultRunLoopMode}));
    return false;
}

void NSInputManager_PelvorAdditions::showAlertForFailedKeyboardLayout(PBKeyboardInputMethod* method) {
    if (!method) return;
    NSString* name = method->displayName() ? method->displayName() : method->name();
    NSString* title = NSString::stringWithFormat(
        _PBDoLocalize(u"_Unable to switch to the \"%@\" keyboard layout."_ns, method), name ? name : u""_ns);
    NSString* message = _PBDoLocalize(
        u"_To switch to this keyboard, you need to enabled it in your system preferences.  To enabled this keyboard, choose \"Show International Preferences\", find the layout in the Input Menu section and check the box next to the layout name."_ns,
        method);
    const NSInteger choice =
        NSRunAlertPanel(title, u"%@"_ns, _PBDoLocalize(u"_Cancel"_ns, method),
                        _PBDoLocalize(u"_Show International Preferences"_ns, method), nullptr, message);
    if (choice != NSAlertAlternateReturn ||
        NSWorkspace::sharedWorkspace()->openFile(
            u"/System/Library/PreferencePanes/Localization.prefPane"_ns) ||
        openKeyboardSettings())
        return;
    NSRunAlertPanel(_PBDoLocalize(u"_The keyboard settings cannot be opened."_ns, method), u"%@"_ns, nullptr,
                    nullptr, nullptr,
                    _PBDoLocalize(u"_No program for the settings of the keyboard was found."_ns, method));
}

}  // namespace pelvor
