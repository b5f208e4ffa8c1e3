// SPDX-License-Identifier: Apache-2.0
// PBKeyboardInputMethod: a keyboard layout, to be listed, compared, stored and restored.
#pragma once

#include "Interface/KeyboardLayouts.h"

namespace pelvor {

class NSDictionary;
class NSImage;

/// A keyboard layout as a value that can be listed, compared, stored in the user's settings and restored:
///
///     auto method = NSInputManager_PelvorAdditions::currentKeyboardLayout();
///     defaults->setObject_forKey(method->serializationDictionary(), u"GermanKeyboard"_ns);
///     …
///     auto* stored = cast<NSDictionary>(defaults->objectForKey(u"GermanKeyboard"_ns));
///     NSInputManager_PelvorAdditions::setCurrentKeyboardLayout(
///         PBKeyboardInputMethod::inputMethodForDictionary(stored));
///
/// A layout that is no longer installed has no handle, but keeps the name that menus show. Main thread.
class PELVOR_EXPORT PBKeyboardInputMethod : public NSObject {
    PELVOR_CLASS(PBKeyboardInputMethod, NSObject);
    PELVOR_CREATORS(initWithKeyboardLayoutRef_scriptCode, initWithKeyboardLayoutRef);

  public:
    /// The layout for the script system. A null layout gives a method without identifier and names.
    static Retained<PBKeyboardInputMethod> initWithKeyboardLayoutRef_scriptCode(KeyboardLayoutRef layoutRef,
                                                                                std::int32_t scriptCode,
                                                                                Class* cls = classObject());
    /// The layout for its own script system.
    static Retained<PBKeyboardInputMethod> initWithKeyboardLayoutRef(KeyboardLayoutRef layoutRef,
                                                                     Class* cls = classObject());
    /// The layout that `serializationDictionary` describes; borrowed. A layout that is not installed gives a
    /// method without a handle, with the identifier 0 and the stored name and script system. A value of the
    /// wrong kind counts as missing; null counts as an empty dictionary.
    static PBKeyboardInputMethod* inputMethodForDictionary(NSDictionary* dictionary);

    /// A property list to store: "keyboardLayoutIdentifier", "keyboardLayoutScriptCode" and, for a layout
    /// with a display name, "keyboardLayoutDisplayName". Made at the first call and then kept.
    NSDictionary* serializationDictionary();

    /// Null for a layout that is not installed.
    KeyboardLayoutRef keyboardLayoutRef() { return _keyRef; }
    /// What `keyboardLayoutIdentifier` makes of the layout's name; 0 for a layout that is not installed.
    std::int32_t keyboardLayoutID() { return _keyID; }
    /// "de(nodeadkeys)"; null for a layout that is not installed.
    NSString* name() { return _name; }
    /// In the user's language; may be null.
    NSString* displayName() { return _displayName; }
    /// The script system, such as `smCyrillic`.
    std::int32_t scriptCode() { return _scriptCode; }
    /// Whether the last attempt to switch to this layout, by this object, failed.
    bool isDisabled() { return _isDisabled; }
    void setDisabled(bool isDisabled) { _isDisabled = isDisabled; }
    /// 16 × 16 points; null for a layout without an icon. Looked up once.
    NSImage* displayIcon();

    /// The value of a property that is a string, `kKLName` or `kKLLocalizedName`; null for other tags, and if
    /// the layout has no such property. Borrowed.
    NSString* stringForPropTag_keyboardLayoutRef(KeyboardLayoutPropertyTag tag, KeyboardLayoutRef layoutRef);
    /// The value of `kKLIcon`, made 16 × 16 points large; null for other tags and for layouts without an
    /// icon.
    NSImage* imageForPropTag_keyboardLayoutRef(KeyboardLayoutPropertyTag tag, KeyboardLayoutRef layoutRef);
    NSString* nameForKeyboardLayoutRef(KeyboardLayoutRef layoutRef);
    NSString* displayNameForKeyboardLayoutRef(KeyboardLayoutRef layoutRef);
    NSImage* iconForKeyboardLayoutRef(KeyboardLayoutRef layoutRef);

    /// Whether the other is a PBKeyboardInputMethod with equal identifier and script system.
    bool isEqual(id other) override;
    bool isEqualToKeyboardInputMethod(PBKeyboardInputMethod* other);
    std::uintptr_t hash() override;
    /// "PBKeyboardLayout "de" [script=0, id=7]"
    NSString* description() override;

  protected:
    PBKeyboardInputMethod() = default;
    ~PBKeyboardInputMethod();

  private:
    KeyboardLayoutRef _keyRef = nullptr;
    std::int32_t _keyID = 0;
    Retained<NSString> _displayName;
    Retained<NSString> _name;
    std::int32_t _scriptCode = 0;
    bool _isDisabled = false;
    bool _isIconLoaded = false;
    Retained<NSImage> _icon;
    Retained<NSDictionary> _serializedInfo;
};

}  // namespace pelvor
