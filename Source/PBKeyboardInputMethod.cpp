// SPDX-License-Identifier: Apache-2.0
#include "PBKeyboardInputMethod.h"

#include <optional>

#include "BaseInterfaceLibrary.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Interface/NSImage.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBKeyboardInputMethod, baseInterfaceLibrary) {
    methods.creator<"initWithKeyboardLayoutRef:scriptCode:",
                    &PBKeyboardInputMethod::initWithKeyboardLayoutRef_scriptCode>();
    methods.creator<"initWithKeyboardLayoutRef:", &PBKeyboardInputMethod::initWithKeyboardLayoutRef>();
    methods.classLevel<"inputMethodForDictionary:", &PBKeyboardInputMethod::inputMethodForDictionary>();
    methods.instance<"serializationDictionary", &PBKeyboardInputMethod::serializationDictionary>();
    methods.instance<"keyboardLayoutRef", &PBKeyboardInputMethod::keyboardLayoutRef>();
    methods.instance<"keyboardLayoutID", &PBKeyboardInputMethod::keyboardLayoutID>();
    methods.instance<"name", &PBKeyboardInputMethod::name>();
    methods.instance<"displayName", &PBKeyboardInputMethod::displayName>();
    methods.instance<"scriptCode", &PBKeyboardInputMethod::scriptCode>();
    methods.instance<"isDisabled", &PBKeyboardInputMethod::isDisabled>();
    methods.instance<"setDisabled:", &PBKeyboardInputMethod::setDisabled>();
    methods.instance<"displayIcon", &PBKeyboardInputMethod::displayIcon>();
    methods.instance<"stringForPropTag:keyboardLayoutRef:",
                     &PBKeyboardInputMethod::stringForPropTag_keyboardLayoutRef>();
    methods.instance<"imageForPropTag:keyboardLayoutRef:",
                     &PBKeyboardInputMethod::imageForPropTag_keyboardLayoutRef>();
    methods.instance<"nameForKeyboardLayoutRef:", &PBKeyboardInputMethod::nameForKeyboardLayoutRef>();
    methods.instance<"displayNameForKeyboardLayoutRef:",
                     &PBKeyboardInputMethod::displayNameForKeyboardLayoutRef>();
    methods.instance<"iconForKeyboardLayoutRef:", &PBKeyboardInputMethod::iconForKeyboardLayoutRef>();
    methods.instance<"isEqual:", &PBKeyboardInputMethod::isEqual>();
    methods.instance<"isEqualToKeyboardInputMethod:", &PBKeyboardInputMethod::isEqualToKeyboardInputMethod>();
    methods.instance<"hash", &PBKeyboardInputMethod::hash>();
    methods.instance<"description", &PBKeyboardInputMethod::description>();
}

namespace {

constexpr NSString* _PBKeyboardInputMethodKey_id = u"keyboardLayoutIdentifier"_ns;
constexpr NSString* _PBKeyboardInputMethodKey_scriptCode = u"keyboardLayoutScriptCode"_ns;
constexpr NSString* _PBKeyboardInputMethodKey_displayName = u"keyboardLayoutDisplayName"_ns;

std::int32_t integerProperty(KeyboardLayoutRef layout, KeyboardLayoutPropertyTag tag) {
    const void* value = nullptr;
    KLGetKeyboardLayoutProperty(layout, tag, &value);
    return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(value));
}

template <class T>
T* objectProperty(KeyboardLayoutRef layout, KeyboardLayoutPropertyTag tag) {
    const void* value = nullptr;
    KLGetKeyboardLayoutProperty(layout, tag, &value);
    return static_cast<T*>(const_cast<void*>(value));
}

template <class T>
T* stored(NSDictionary* dictionary, NSString* key) {
    return dictionary ? cast<T>(dictionary->objectForKey(key)) : nullptr;
}

// Some forms of property lists, and arguments of a command line, have texts in the place of numbers.
std::optional<std::int32_t> storedInteger(NSDictionary* dictionary, NSString* key) {
    if (auto* number = stored<NSNumber>(dictionary, key)) return number->intValue();
    if (auto* text = stored<NSString>(dictionary, key)) return text->intValue();
    return std::nullopt;
}

}  // namespace

PBKeyboardInputMethod::~PBKeyboardInputMethod() = default;

Retained<PBKeyboardInputMethod> PBKeyboardInputMethod::initWithKeyboardLayoutRef_scriptCode(
    KeyboardLayoutRef layoutRef, std::int32_t scriptCode, Class* cls) {
    auto self = make<PBKeyboardInputMethod>(cls);
    self->_keyRef = layoutRef;
    self->_scriptCode = scriptCode;
    self->_keyID = integerProperty(layoutRef, kKLIdentifier);
    self->_displayName.set(self->displayNameForKeyboardLayoutRef(layoutRef));
    self->_name.set(self->nameForKeyboardLayoutRef(layoutRef));
    return self;
}

Retained<PBKeyboardInputMethod> PBKeyboardInputMethod::initWithKeyboardLayoutRef(KeyboardLayoutRef layoutRef,
                                                                                 Class* cls) {
    return initWithKeyboardLayoutRef_scriptCode(layoutRef, integerProperty(layoutRef, kKLGroupIdentifier),
                                                cls);
}

PBKeyboardInputMethod* PBKeyboardInputMethod::inputMethodForDictionary(NSDictionary* dictionary) {
    const auto identifier = storedInteger(dictionary, _PBKeyboardInputMethodKey_id);
    const auto scriptCode = storedInteger(dictionary, _PBKeyboardInputMethodKey_scriptCode);
    KeyboardLayoutRef layout = nullptr;
    const bool isInstalled = identifier && KLGetKeyboardLayoutWithIdentifier(*identifier, &layout) == noErr;
    if (isInstalled && !scriptCode) return initWithKeyboardLayoutRef(layout).autorelease();
    auto method = initWithKeyboardLayoutRef_scriptCode(layout, scriptCode.value_or(0));
    if (!isInstalled)
        method->_displayName.set(stored<NSString>(dictionary, _PBKeyboardInputMethodKey_displayName));
    return std::move(method).autorelease();
}

NSDictionary* PBKeyboardInputMethod::serializationDictionary() {
    if (_serializedInfo) return _serializedInfo;
    auto info = NSMutableDictionary::init();
    info->setObject_forKey(NSNumber::numberWithInt(_keyID), _PBKeyboardInputMethodKey_id);
    info->setObject_forKey(NSNumber::numberWithInt(_scriptCode), _PBKeyboardInputMethodKey_scriptCode);
    if (_displayName) info->setObject_forKey(_displayName, _PBKeyboardInputMethodKey_displayName);
    return _serializedInfo = info->copy();
}

NSImage* PBKeyboardInputMethod::displayIcon() {
    if (!std::exchange(_isIconLoaded, true)) _icon.set(iconForKeyboardLayoutRef(_keyRef));
    return _icon;
}

NSString* PBKeyboardInputMethod::stringForPropTag_keyboardLayoutRef(KeyboardLayoutPropertyTag tag,
                                                                    KeyboardLayoutRef layoutRef) {
    const bool isString = tag == kKLName || tag == kKLLocalizedName;
    return isString ? objectProperty<NSString>(layoutRef, tag) : nullptr;
}

NSImage* PBKeyboardInputMethod::imageForPropTag_keyboardLayoutRef(KeyboardLayoutPropertyTag tag,
                                                                  KeyboardLayoutRef layoutRef) {
    auto* image = tag == kKLIcon ? objectProperty<NSImage>(layoutRef, tag) : nullptr;
    if (image) image->setSize({16, 16});
    return image;
}

NSString* PBKeyboardInputMethod::nameForKeyboardLayoutRef(KeyboardLayoutRef layoutRef) {
    return stringForPropTag_keyboardLayoutRef(kKLName, layoutRef);
}
NSString* PBKeyboardInputMethod::displayNameForKeyboardLayoutRef(KeyboardLayoutRef layoutRef) {
    return stringForPropTag_keyboardLayoutRef(kKLLocalizedName, layoutRef);
}
NSImage* PBKeyboardInputMethod::iconForKeyboardLayoutRef(KeyboardLayoutRef layoutRef) {
    return imageForPropTag_keyboardLayoutRef(kKLIcon, layoutRef);
}

bool PBKeyboardInputMethod::isEqual(id other) {
    return this == other || isEqualToKeyboardInputMethod(cast<PBKeyboardInputMethod>(other));
}

bool PBKeyboardInputMethod::isEqualToKeyboardInputMethod(PBKeyboardInputMethod* other) {
    return other && _keyID == other->_keyID && _scriptCode == other->_scriptCode;
}

std::uintptr_t PBKeyboardInputMethod::hash() {
    return static_cast<std::uint32_t>(_keyID) * std::uintptr_t{31} + static_cast<std::uint32_t>(_scriptCode);
}

NSString* PBKeyboardInputMethod::description() {
    return NSString::stringWithFormat(u"PBKeyboardLayout \"%@\" [script=%d, id=%d]"_ns, _name.get(),
                                      _scriptCode, _keyID);
}

}  // namespace pelvor
